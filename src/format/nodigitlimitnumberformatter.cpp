#include "nodigitlimitnumberformatter.h"

#include "currencyformat.h"

namespace corvanta::format {

NoDigitLimitNumberFormatter::NoDigitLimitNumberFormatter(const predicate::KeyPathSource* defaultCurrency,
                                                         const QLocale& system)
{
    setDefaultFormat(defaultCurrency, system);
}

void NoDigitLimitNumberFormatter::setDefaultFormat(const predicate::KeyPathSource* defaultCurrency,
                                                   const QLocale& system)
{
    const CurrencyFormat format = CurrencyFormat::fromRecord(defaultCurrency);
    setUsesGroupingSeparator(false);
    setGroupingSeparator(QString());
    setDecimalSeparator(system.decimalPoint());
    setMaximumFractionDigits(kMaximumFractionDigits);
    setMinimumFractionDigits(format.showFixedDigits ? format.digits : 0);
}

} // namespace corvanta::format
