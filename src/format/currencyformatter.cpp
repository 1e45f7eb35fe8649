#include "currencyformatter.h"

#include "numberinput.h"

#include <cmath>

namespace corvanta::format {

CurrencyFormatter::CurrencyFormatter(const CurrencyFormat& format)
    : m_format(format)
{
    m_number.setDecimalSeparator(format.decimalSeparator);
    m_number.setUsesGroupingSeparator(format.usesGrouping());
    if (format.usesGrouping())
        m_number.setGroupingSeparator(format.groupingSeparator);
    m_number.setMaximumFractionDigits(format.digits);
    m_number.setMinimumFractionDigits(format.showFixedDigits ? format.digits : 0);
}

CurrencyFormatter::CurrencyFormatter(const predicate::KeyPathSource* currency)
    : CurrencyFormatter(CurrencyFormat::fromRecord(currency))
{}

QString CurrencyFormatter::stringFromNumber(double number) const
{
    if (!std::isfinite(number))
        return {};
    // The sign goes in front of the whole text, the mark is placed around the magnitude.
    QString amount = m_number.stringFromNumber(number);
    const bool negative = amount.startsWith(QLatin1Char('-'));
    if (negative)
        amount.remove(0, 1);

    const QString& placement = m_format.symbolFormat;
    const QString& mark = placement == QLatin1String("code") ? m_format.code : m_format.symbol;
    QString text = amount;
    if (!mark.isEmpty()) {
        if (placement == QLatin1String("l"))
            text = mark + amount;
        else if (placement == QLatin1String("ls"))
            text = mark + QLatin1Char(' ') + amount;
        else if (placement == QLatin1String("r"))
            text = amount + mark;
        else if (placement == QLatin1String("sr") || placement == QLatin1String("code"))
            text = amount + QLatin1Char(' ') + mark;
    }
    return negative ? QLatin1Char('-') + text : text;
}

QString CurrencyFormatter::stringForObjectValue(const QVariant& value) const
{
    const std::optional<double> number = NumberInput::finiteNumber(value);
    if (!number || value.typeId() == QMetaType::QString)
        return {};
    return stringFromNumber(*number);
}

} // namespace corvanta::format
