#include "numberformatter.h"

#include "currencyformat.h"

namespace corvanta::format {

NumberFormatter::NumberFormatter(const predicate::KeyPathSource* defaultCurrency)
{
    setDefaultFormat(defaultCurrency);
}

void NumberFormatter::setDefaultFormat(const predicate::KeyPathSource* defaultCurrency)
{
    const CurrencyFormat format = CurrencyFormat::fromRecord(defaultCurrency);
    setUsesGroupingSeparator(format.usesGrouping());
    setGroupingSeparator(format.usesGrouping() ? format.groupingSeparator : QString());
    setDecimalSeparator(format.decimalSeparator);
    setMaximumFractionDigits(format.digits);
    setMinimumFractionDigits(format.showFixedDigits ? format.digits : 0);
}

} // namespace corvanta::format
