#include "fieldreplacer.h"

#include "format/currencyformatter.h"
#include "format/nodigitlimitnumberformatter.h"
#include "store/entitydescription.h"
#include "store/record.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>

namespace corvanta::templates {

struct FieldReplacer::Writers
{
    explicit Writers(const store::Record* currency)
        : amount(currency)
        , quantity(currency)
    {}

    format::CurrencyFormatter amount;
    format::NoDigitLimitNumberFormatter quantity;
};

FieldReplacer::FieldReplacer(const store::EntityDescription& entity, const store::Record* currency,
                             const QStringList& skippedKeys)
    : m_writers(std::make_unique<Writers>(currency))
{
    for (const store::AttributeDescription& attribute : entity.attributes()) {
        if (!skippedKeys.contains(attribute.name))
            m_keys.append(&attribute);
    }
    std::stable_sort(m_keys.begin(), m_keys.end(),
                     [](const auto* a, const auto* b) { return a->name.size() > b->name.size(); });
}

FieldReplacer::~FieldReplacer() = default;

QString FieldReplacer::replaced(const QString& text, const store::Record& record) const
{
    qsizetype at = text.indexOf(QLatin1Char('@'));
    if (at < 0)
        return text;
    QString result;
    qsizetype from = 0;
    for (; at >= 0; at = text.indexOf(QLatin1Char('@'), from)) {
        result += QStringView(text).mid(from, at - from);
        const QStringView rest = QStringView(text).mid(at + 1);
        std::optional<QString> value;
        qsizetype length = 0;
        for (const store::AttributeDescription* key : m_keys) {
            if (!rest.startsWith(key->name))
                continue;
            value = formattedValue(*key, record.value(key->name), *m_writers);
            if (value) {
                length = key->name.size();
                break;
            }
        }
        if (value) {
            result += *value;
            from = at + 1 + length;
        } else {
            result += QLatin1Char('@');
            from = at + 1;
        }
    }
    result += QStringView(text).mid(from);
    return result;
}

QString FieldReplacer::replacedText(const store::EntityDescription& entity, const QString& key,
                                    const QString& text, const QVariant& value, const store::Record* currency)
{
    const QString token = QLatin1Char('@') + key;
    if (!text.contains(token))
        return text;
    const store::AttributeDescription* attribute = entity.attribute(key);
    const std::optional<QString> replacement =
        attribute ? formattedValue(*attribute, value, Writers(currency)) : std::nullopt;
    if (!replacement)
        return text;
    QString result = text;
    return result.replace(token, *replacement);
}

std::optional<QString> FieldReplacer::formattedValue(const store::AttributeDescription& attribute,
                                                     const QVariant& value, const Writers& writers)
{
    switch (attribute.type) {
    case store::AttributeType::String:
        return value.isNull() ? QString() : value.toString();
    case store::AttributeType::Decimal:
        if (value.isNull())
            return std::nullopt;
        if (attribute.name == QLatin1String("quantity") || attribute.name == QLatin1String("stock"))
            return writers.quantity.stringFromNumber(value.toDouble());
        return writers.amount.stringFromNumber(value.toDouble());
    case store::AttributeType::Date:
        if (value.isNull())
            return std::nullopt;
        return shortDate(value);
    default:
        return std::nullopt;
    }
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
