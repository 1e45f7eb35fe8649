#include "textdecoder.h"

#include <memory>
#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>

namespace corvanta::exchange {

namespace {

struct ConverterCloser
{
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, ConverterCloser>;

} // namespace

QList<TextDecoder::Encoding> TextDecoder::encodings()
{
    return {
        {tr("Unicode (UTF-8)"), QStringLiteral("UTF-8")},
        {tr("Unicode (UTF-16, with byte order mark)"), QStringLiteral("UTF-16")},
        {tr("Unicode (UTF-16 Little-Endian)"), QStringLiteral("UTF-16LE")},
        {tr("Unicode (UTF-16 Big-Endian)"), QStringLiteral("UTF-16BE")},
        {tr("Western (ISO Latin 1)"), QStringLiteral("ISO-8859-1")},
        {tr("Western (ISO Latin 9)"), QStringLiteral("ISO-8859-15")},
        {tr("Western (Windows Latin 1)"), QStringLiteral("windows-1252")},
        {tr("Western (Mac OS Roman)"), QStringLiteral("macintosh")},
        {tr("Central European (ISO Latin 2)"), QStringLiteral("ISO-8859-2")},
        {tr("Central European (Windows Latin 2)"), QStringLiteral("windows-1250")},
        {tr("Cyrillic (Windows)"), QStringLiteral("windows-1251")},
        {tr("Cyrillic (KOI8-R)"), QStringLiteral("KOI8-R")},
        {tr("Greek (Windows)"), QStringLiteral("windows-1253")},
        {tr("Turkish (Windows Latin 5)"), QStringLiteral("windows-1254")},
        {tr("Western (DOS Latin 1)"), QStringLiteral("IBM850")},
        {tr("Japanese (Shift JIS)"), QStringLiteral("Shift_JIS")},
        {tr("Chinese (GB 18030)"), QStringLiteral("GB18030")},
        {tr("Korean (EUC)"), QStringLiteral("EUC-KR")},
    };
}

std::optional<QString> TextDecoder::decode(const QByteArray& bytes, const QString& encoding, QString* error)
{
    UErrorCode status = U_ZERO_ERROR;
    const Converter converter(ucnv_open(encoding.toLatin1().constData(), &status));
    // ICU answers a name it does not know with a "file access" error (it looks for a table);
    // an empty name would open the default converter, which is not what was asked for.
    if (encoding.trimmed().isEmpty() || U_FAILURE(status) || !converter) {
        if (error)
            *error = tr("The text encoding \"%1\" is not known.").arg(encoding);
        return std::nullopt;
    }
    // Stop at the first byte sequence the encoding cannot read, rather than substitute it.
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);

    QString text;
    const char* source = bytes.constData();
    const char* const sourceEnd = source + bytes.size();
    QList<UChar> buffer(qMax<qsizetype>(1024, bytes.size() + 16));
    for (;;) {
        UChar* target = buffer.data();
        status = U_ZERO_ERROR;
        ucnv_toUnicode(converter.get(), &target, buffer.data() + buffer.size(), &source, sourceEnd, nullptr,
                       true, &status);
        text.append(reinterpret_cast<const QChar*>(buffer.constData()), target - buffer.data());
        if (status == U_BUFFER_OVERFLOW_ERROR)
            continue;
        if (U_FAILURE(status)) {
            // The source stops just behind the bytes that could not be read.
            char invalid[32];
            int8_t length = sizeof invalid;
            UErrorCode ignored = U_ZERO_ERROR;
            ucnv_getInvalidChars(converter.get(), invalid, &length, &ignored);
            const qsizetype offset = (source - bytes.constData()) - (U_SUCCESS(ignored) ? length : 0);
            if (error)
                *error = tr("The file couldn't be read using the text encoding %1: the bytes at offset %2 "
                            "are not valid in that encoding.")
                             .arg(encoding)
                             .arg(offset);
            return std::nullopt;
        }
        break;
    }
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    return text;
}

} // namespace corvanta::exchange
