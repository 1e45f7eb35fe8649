#include "fieldreplacer.h"

#include "format/formattedcurrency.h"
#include "format/nodigitlimitnumberformatter.h"
#include "store/entitydescription.h"
#include "store/record.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>

namespace corvanta::templates {

FieldReplacer::FieldReplacer(const store::EntityDescription& entity, const QStringList& skippedKeys)
    : m_entity(entity)
{
    for (const store::AttributeDescription& attribute : entity.attributes()) {
        if (!skippedKeys.contains(attribute.name))
            m_keys.append({attribute.name, QLatin1Char('@') + attribute.name});
    }
    std::stable_sort(m_keys.begin(), m_keys.end(),
                     [](const Key& a, const Key& b) { return a.name.size() > b.name.size(); });
}

QString FieldReplacer::replaced(const QString& text, const store::Record& record,
                                const store::Record* currency) const
{
    if (!text.contains(QLatin1Char('@')))
        return text;
    QString result = text;
    for (const Key& key : m_keys) {
        if (result.contains(key.token))
            result = replacedText(m_entity, key.name, result, record.value(key.name), currency);
    }
    return result;
}

QString FieldReplacer::replacedText(const store::EntityDescription& entity, const QString& key,
                                    const QString& text, const QVariant& value, const store::Record* currency)
{
    const QString token = QLatin1Char('@') + key;
    if (!text.contains(token))
        return text;
    const store::AttributeDescription* attribute = entity.attribute(key);
    if (!attribute)
        return text;

    QString replacement;
    switch (attribute->type) {
    case store::AttributeType::String:
        replacement = value.isNull() ? QString() : value.toString();
        break;
    case store::AttributeType::Decimal:
        if (value.isNull())
            return text;
        if (key == QLatin1String("quantity") || key == QLatin1String("stock"))
            replacement = formattedNumber(value.toDouble(), currency);
        else
            replacement = format::formattedCurrency(value.toDouble(), currency);
        break;
    case store::AttributeType::Date:
        if (value.isNull())
            return text;
        replacement = shortDate(value);
        break;
    default:
        return text;
    }
    QString result = text;
    return result.replace(token, replacement);
}

QString FieldReplacer::formattedNumber(double number, const store::Record* currency)
{
    return format::NoDigitLimitNumberFormatter(currency).stringFromNumber(number);
}

QString FieldReplacer::shortDate(const QVariant& value)
{
    if (value.isNull())
        return {};
    const QDate date =
        value.typeId() == QMetaType::QDate ? value.toDate() : value.toDateTime().toLocalTime().date();
    return QLocale().toString(date, QLocale::ShortFormat);
}

} // namespace corvanta::templates
