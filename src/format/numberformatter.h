#pragma once

#include "decimalformatter.h"

namespace corvanta::predicate {
class KeyPathSource;
}

namespace corvanta::format {

// The formatter of entry fields for prices, amounts and rates: the default currency's
// separators and fraction digits, without a currency mark.
class NumberFormatter : public DecimalFormatter
{
public:
    // Configured from the company's default currency at creation.
    explicit NumberFormatter(const predicate::KeyPathSource* defaultCurrency);

    // Grouping unless the currency's grouping separator is "none"; its grouping and decimal
    // separators; at most its `digits` fraction digits, and at least that many with
    // `show_fixed_digits`.
    void setDefaultFormat(const predicate::KeyPathSource* defaultCurrency);
};

} // namespace corvanta::format
