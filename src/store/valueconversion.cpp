#include "valueconversion.h"

#include "predicate/recordref.h"

#include <QColor>
#include <cmath>

namespace corvanta::store::valueconversion {

namespace {

const QDateTime& referenceDate()
{
    static const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    return reference;
}

QString colourToText(const QColor& colour)
{
    const QRgba64 rgba = colour.rgba64();
    return QStringLiteral("#%1%2%3%4")
        .arg(rgba.red(), 4, 16, QLatin1Char('0'))
        .arg(rgba.green(), 4, 16, QLatin1Char('0'))
        .arg(rgba.blue(), 4, 16, QLatin1Char('0'))
        .arg(rgba.alpha(), 4, 16, QLatin1Char('0'));
}

QColor colourFromText(const QString& text)
{
    if (text.size() == 17 && text.startsWith(QLatin1Char('#'))) {
        bool ok = true;
        quint16 parts[4];
        for (int i = 0; i < 4 && ok; ++i)
            parts[i] = quint16(QStringView(text).mid(1 + 4 * i, 4).toUInt(&ok, 16));
        if (ok)
            return QColor(QRgba64::fromRgba64(parts[0], parts[1], parts[2], parts[3]));
    }
    return QColor(text); // "#rrggbb", "#aarrggbb" or a colour name
}

QVariantList integerSetFromText(const QString& text)
{
    QVariantList list;
    for (const QStringView part : QStringView(text).split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        bool ok = false;
        const int n = part.trimmed().toInt(&ok);
        if (ok && !list.contains(n))
            list << n;
    }
    return list;
}

} // namespace

double toReferenceSeconds(const QDateTime& dateTime)
{
    return double(referenceDate().msecsTo(dateTime)) / 1000.0;
}

QDateTime fromReferenceSeconds(double seconds)
{
    return referenceDate().addMSecs(qint64(std::llround(seconds * 1000.0)));
}

QVariant toMemory(AttributeType type, const QVariant& value)
{
    if (value.isNull() || !value.isValid())
        return {};
    switch (type) {
    case AttributeType::String: {
        // An empty text is a value, not a missing one: keep it apart from NULL.
        const QString text = value.toString();
        return text.isNull() ? QString(QLatin1String("")) : text;
    }
    case AttributeType::Integer:
        if (value.typeId() == QMetaType::Double)
            return qint64(std::llround(value.toDouble()));
        return value.toLongLong();
    case AttributeType::Decimal:
        return value.toDouble();
    case AttributeType::Boolean:
        if (value.typeId() == QMetaType::QString) {
            const QString t = value.toString().trimmed().toUpper();
            return t == QLatin1String("YES") || t == QLatin1String("TRUE") || t == QLatin1String("1");
        }
        return value.toDouble() != 0.0 || value.toBool();
    case AttributeType::Date:
        if (value.typeId() == QMetaType::QDateTime)
            return value.toDateTime().toUTC();
        if (value.typeId() == QMetaType::QDate)
            return value.toDate().startOfDay().toUTC();
        return fromReferenceSeconds(value.toDouble());
    case AttributeType::Colour:
        if (value.typeId() == QMetaType::QColor)
            return value;
        return colourFromText(value.toString());
    case AttributeType::Image:
        return value.toByteArray();
    case AttributeType::IntegerSet:
        if (value.typeId() == QMetaType::QVariantList) {
            QVariantList list;
            for (const QVariant& v : value.toList()) {
                if (!list.contains(v.toInt()))
                    list << v.toInt();
            }
            return list;
        }
        return integerSetFromText(value.toString());
    case AttributeType::Variant:
        return value;
    }
    return value;
}

QVariant toSql(AttributeType type, const QVariant& value)
{
    if (value.isNull() || !value.isValid())
        return QVariant();
    switch (type) {
    case AttributeType::Date:
        return toReferenceSeconds(value.toDateTime());
    case AttributeType::Boolean:
        return value.toBool() ? 1 : 0;
    case AttributeType::Colour:
        return colourToText(value.value<QColor>());
    case AttributeType::IntegerSet: {
        QStringList parts;
        for (const QVariant& v : value.toList())
            parts << QString::number(v.toInt());
        return parts.join(QLatin1Char(','));
    }
    case AttributeType::Variant:
    case AttributeType::String:
        return constantToSql(value);
    default:
        return value;
    }
}

QVariant constantToSql(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QDateTime:
        return toReferenceSeconds(value.toDateTime());
    case QMetaType::QDate:
        return toReferenceSeconds(value.toDate().startOfDay());
    case QMetaType::Bool:
        return value.toBool() ? 1 : 0;
    case QMetaType::QString:
        // The SQLite driver binds a null QString as NULL; an empty text constant is a text.
        return value.toString().isNull() ? QVariant(QString(QLatin1String(""))) : value;
    default:
        break;
    }
    if (value.canConvert<predicate::RecordRef>() && value.typeId() == qMetaTypeId<predicate::RecordRef>())
        return value.value<predicate::RecordRef>().pk;
    return value;
}

} // namespace corvanta::store::valueconversion
