#include "formattedcurrency.h"

#include "currencyformatter.h"

namespace corvanta::format {

QString formattedCurrency(double number, const predicate::KeyPathSource* currency)
{
    return CurrencyFormatter(currency).stringFromNumber(number);
}

} // namespace corvanta::format
