#include "propertylist.h"

#include <QDateTime>
#include <QXmlStreamReader>
#include <cstring>
#include <memory>
#include <optional>
#include <plist/plist.h>

namespace corvanta::support {

namespace {

// Property-list dates count seconds from 2001-01-01 00:00:00 UTC.
const QDateTime& plistEpoch()
{
    static const QDateTime epoch(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    return epoch;
}

struct PlistFree
{
    void operator()(void* node) const { plist_free(node); }
};
using PlistPtr = std::unique_ptr<void, PlistFree>;

QString takeCString(char* text)
{
    QString result = text ? QString::fromUtf8(text) : QString();
    std::free(text);
    return result;
}

QVariant fromNode(plist_t node, int depth, bool* tooDeep)
{
    if (depth > PropertyList::kMaxDepth) {
        *tooDeep = true;
        return {};
    }
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        uint8_t value = 0;
        plist_get_bool_val(node, &value);
        return bool(value);
    }
    case PLIST_UINT: {
        uint64_t value = 0;
        plist_get_uint_val(node, &value);
        // libplist keeps every integer unsigned; negative numbers come back in two's complement.
        return qint64(value);
    }
    case PLIST_UID: {
        uint64_t value = 0;
        plist_get_uid_val(node, &value);
        return qint64(value);
    }
    case PLIST_REAL: {
        double value = 0;
        plist_get_real_val(node, &value);
        return value;
    }
    case PLIST_STRING: {
        // Not plist_get_string_val, which asserts that the string holds no NUL (see holdsUtf16Nul).
        uint64_t length = 0;
        const char* text = plist_get_string_ptr(node, &length);
        return text ? QString::fromUtf8(text, qsizetype(length)) : QString();
    }
    case PLIST_KEY: {
        char* text = nullptr;
        plist_get_key_val(node, &text);
        return takeCString(text);
    }
    case PLIST_DATA: {
        char* bytes = nullptr;
        uint64_t length = 0;
        plist_get_data_val(node, &bytes, &length);
        QByteArray data(bytes, qsizetype(length));
        std::free(bytes);
        return data;
    }
    case PLIST_DATE: {
        int32_t seconds = 0;
        int32_t microseconds = 0;
        plist_get_date_val(node, &seconds, &microseconds);
        return plistEpoch().addMSecs(qint64(seconds) * 1000 + microseconds / 1000);
    }
    case PLIST_ARRAY: {
        QVariantList list;
        const uint32_t size = plist_array_get_size(node);
        for (uint32_t i = 0; i < size; ++i) {
            list.append(fromNode(plist_array_get_item(node, i), depth + 1, tooDeep));
            if (*tooDeep)
                return {};
        }
        return list;
    }
    case PLIST_DICT: {
        QVariantMap map;
        plist_dict_iter it = nullptr;
        plist_dict_new_iter(node, &it);
        for (;;) {
            char* key = nullptr;
            plist_t value = nullptr;
            plist_dict_next_item(node, it, &key, &value);
            if (!value) {
                std::free(key);
                break;
            }
            const QString name = takeCString(key);
            map.insert(name, fromNode(value, depth + 1, tooDeep));
            if (*tooDeep) {
                std::free(it);
                return {};
            }
        }
        std::free(it);
        return map;
    }
    case PLIST_NONE:
        break;
    }
    return {};
}

// XML 1.0 cannot hold most control characters, not even escaped: they are left out, or the
// written list could not be read again.
QByteArray xmlText(const QString& text)
{
    QString safe;
    safe.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            safe.append(c).append(text.at(++i));
            continue;
        }
        const char16_t u = c.unicode();
        const bool allowed =
            u == 0x09 || u == 0x0A || u == 0x0D || (u >= 0x20 && u < 0xD800) || (u >= 0xE000 && u <= 0xFFFD);
        if (allowed)
            safe.append(c);
    }
    return safe.toUtf8();
}

plist_t toNode(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return plist_new_bool(value.toBool() ? 1 : 0);
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
        return plist_new_uint(uint64_t(value.toLongLong()));
    case QMetaType::Double:
    case QMetaType::Float:
        return plist_new_real(value.toDouble());
    case QMetaType::QByteArray: {
        const QByteArray data = value.toByteArray();
        return plist_new_data(data.constData(), uint64_t(data.size()));
    }
    case QMetaType::QDateTime: {
        const qint64 ms = plistEpoch().msecsTo(value.toDateTime());
        return plist_new_date(int32_t(ms / 1000), int32_t((ms % 1000) * 1000));
    }
    case QMetaType::QVariantList:
    case QMetaType::QStringList: {
        plist_t array = plist_new_array();
        for (const QVariant& item : value.toList())
            plist_array_append_item(array, toNode(item));
        return array;
    }
    case QMetaType::QVariantMap: {
        plist_t dict = plist_new_dict();
        const QVariantMap map = value.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            plist_dict_set_item(dict, xmlText(it.key()).constData(), toNode(it.value()));
        return dict;
    }
    default:
        return plist_new_string(xmlText(value.toString()).constData());
    }
}

// libplist reports nothing about where XML goes wrong; Qt's reader does, and it also keeps
// input that is not XML at all away from libplist's parser.
bool checkXml(const QByteArray& data, QString* error)
{
    QXmlStreamReader reader(data);
    int depth = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::StartElement && ++depth > PropertyList::kMaxDepth + 2) {
            *error = PropertyList::tr("it is nested too deeply");
            return false;
        }
        if (token == QXmlStreamReader::EndElement)
            --depth;
    }
    if (reader.hasError()) {
        *error = PropertyList::tr("it is not well-formed XML (line %1, column %2: %3)")
                     .arg(reader.lineNumber())
                     .arg(reader.columnNumber())
                     .arg(reader.errorString());
        return false;
    }
    return true;
}

// A big-endian unsigned integer of `size` bytes at `at`, or nothing when it lies outside.
std::optional<quint64> bigEndian(const QByteArray& data, quint64 at, quint64 size)
{
    if (size == 0 || size > 8 || at > quint64(data.size()) || size > quint64(data.size()) - at)
        return std::nullopt;
    quint64 value = 0;
    for (quint64 i = 0; i < size; ++i)
        value = (value << 8) | quint8(data.at(qsizetype(at + i)));
    return value;
}

// Whether a UTF-16 string object of a binary list holds U+0000. libplist asserts that its
// strings and keys hold no NUL, so such a list would end the program inside libplist; it is
// refused as damaged before libplist reads it. Objects this cannot locate are left to libplist.
bool holdsUtf16Nul(const QByteArray& data)
{
    constexpr quint64 kTrailer = 32;
    const quint64 size = quint64(data.size());
    if (size < 8 + kTrailer)
        return false;
    const quint64 trailer = size - kTrailer;
    const quint64 offsetSize = quint8(data.at(qsizetype(trailer + 6)));
    const std::optional<quint64> count = bigEndian(data, trailer + 8, 8);
    const std::optional<quint64> table = bigEndian(data, trailer + 24, 8);
    if (offsetSize == 0 || offsetSize > 8 || !count || !table || *table > trailer ||
        *count > (trailer - *table) / offsetSize)
        return false;
    for (quint64 i = 0; i < *count; ++i) {
        const std::optional<quint64> offset = bigEndian(data, *table + i * offsetSize, offsetSize);
        if (!offset || *offset >= trailer)
            continue;
        const quint8 marker = quint8(data.at(qsizetype(*offset)));
        if ((marker >> 4) != 0x6)
            continue;
        quint64 start = *offset + 1;
        std::optional<quint64> length = marker & 0xF;
        if (*length == 0xF) { // the length follows as an integer object
            const quint8 lengthMarker = quint8(data.at(qsizetype(start)));
            const quint64 lengthSize = quint64(1) << (lengthMarker & 0xF);
            length = (lengthMarker >> 4) == 0x1 ? bigEndian(data, start + 1, lengthSize) : std::nullopt;
            start += 1 + lengthSize;
        }
        if (!length || start > trailer || *length > (trailer - start) / 2)
            continue;
        for (quint64 c = 0; c < *length; ++c) {
            if (data.at(qsizetype(start + 2 * c)) == 0 && data.at(qsizetype(start + 2 * c + 1)) == 0)
                return true;
        }
    }
    return false;
}

} // namespace

QVariant PropertyList::parse(const QByteArray& data, QString* error)
{
    QString why;
    const auto fail = [&](const QString& reason) {
        if (error)
            *error = reason;
        return QVariant();
    };
    if (data.isEmpty())
        return fail(tr("the file is empty"));
    if (data.size() > kMaxSize)
        return fail(tr("the file is too large (%1 bytes)").arg(data.size()));

    plist_t root = nullptr;
    const bool binary = data.startsWith("bplist");
    if (binary) {
        if (holdsUtf16Nul(data))
            return fail(tr("it is a damaged binary property list"));
        plist_from_bin(data.constData(), uint32_t(data.size()), &root);
    } else {
        if (data.trimmed().isEmpty())
            return fail(tr("the file holds only white space"));
        if (!checkXml(data, &why))
            return fail(why);
        plist_from_xml(data.constData(), uint32_t(data.size()), &root);
    }
    const PlistPtr owner(root);
    if (!root)
        return fail(binary ? tr("it is a damaged binary property list") : tr("it is not a property list"));

    bool tooDeep = false;
    QVariant value = fromNode(root, 0, &tooDeep);
    if (tooDeep)
        return fail(tr("it is nested too deeply"));
    if (!value.isValid())
        return fail(tr("it is not a property list"));
    return value;
}

QByteArray PropertyList::toXml(const QVariant& value)
{
    const PlistPtr root(toNode(value));
    char* xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(root.get(), &xml, &length);
    QByteArray result(xml, qsizetype(length));
    plist_to_xml_free(xml);
    return result;
}

bool PropertyList::isXmlText(const QString& text)
{
    return xmlText(text) == text.toUtf8();
}

} // namespace corvanta::support
