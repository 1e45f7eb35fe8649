#pragma once

#include "currencyformat.h"
#include "decimalformatter.h"

namespace corvanta::format {

// Writes amounts in one currency's format: its separators and fraction digits (see
// DecimalFormatter), with the symbol or the code placed by `symbol_format`:
//   "l"    symbol, then the number        $1,234.50
//   "ls"   symbol, a blank, the number    $ 1,234.50
//   "r"    the number, then the symbol    1,234.50$
//   "sr"   the number, a blank, symbol    1,234.50 $
//   "code" the number, a blank, the code  1,234.50 USD
//   other  the number alone
// A negative amount starts with "-" in front of everything ("-$5"). A placement whose mark is
// empty (no symbol, no code) shows the number alone, without a stray blank.
class CurrencyFormatter
{
public:
    explicit CurrencyFormatter(const CurrencyFormat& format);
    // initWithCurrency: the format of a `Currencies` record (the neutral format for none).
    explicit CurrencyFormatter(const predicate::KeyPathSource* currency);

    const CurrencyFormat& format() const { return m_format; }
    // The number with its currency mark; an empty text for NaN or infinity.
    QString stringFromNumber(double number) const;
    // The same for a number value; an empty text for null and for anything not a finite number.
    QString stringForObjectValue(const QVariant& value) const;

private:
    CurrencyFormat m_format;
    DecimalFormatter m_number;
};

} // namespace corvanta::format
