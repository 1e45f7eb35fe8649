#include "currencyformat.h"

#include "model/record.h"

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

CurrencyFormat CurrencyFormat::fromRecord(const model::Record* currency)
{
    CurrencyFormat format;
    if (!currency)
        return format;
    format.code = currency->value(QStringLiteral("code")).toString();
    format.symbol = currency->value(QStringLiteral("symbol")).toString();
    format.symbolFormat = currency->value(QStringLiteral("symbol_format")).toString();
    format.groupingSeparator = currency->value(QStringLiteral("grouping_separator")).toString();
    format.decimalSeparator = currency->value(QStringLiteral("decimal_separator")).toString();
    format.digits = digitsOf(currency->value(QStringLiteral("digits")));
    format.showFixedDigits = currency->value(QStringLiteral("show_fixed_digits")).toBool();
    return format;
}

} // namespace corvanta::format
