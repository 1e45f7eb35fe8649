#include "currencyformat.h"

#include "predicate/keypathsource.h"

#include <limits>

namespace corvanta::format {

namespace {

int digitsOf(const QVariant& value)
{
    // Out-of-range counts are kept in range by the formatter; here they must only fit an int.
    const qint64 digits = value.toLongLong();
    if (digits < 0)
        return 0;
    return digits > std::numeric_limits<int>::max() ? std::numeric_limits<int>::max() : int(digits);
}

} // namespace

CurrencyFormat CurrencyFormat::fromRecord(const predicate::KeyPathSource* currency)
{
    CurrencyFormat format;
    if (!currency)
        return format;
    format.code = currency->valueForKeyPath(QStringLiteral("code")).toString();
    format.symbol = currency->valueForKeyPath(QStringLiteral("symbol")).toString();
    format.symbolFormat = currency->valueForKeyPath(QStringLiteral("symbol_format")).toString();
    format.groupingSeparator = currency->valueForKeyPath(QStringLiteral("grouping_separator")).toString();
    format.decimalSeparator = currency->valueForKeyPath(QStringLiteral("decimal_separator")).toString();
    format.digits = digitsOf(currency->valueForKeyPath(QStringLiteral("digits")));
    format.showFixedDigits = currency->valueForKeyPath(QStringLiteral("show_fixed_digits")).toBool();
    return format;
}

} // namespace corvanta::format
