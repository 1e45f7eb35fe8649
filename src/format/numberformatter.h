#pragma once

#include "decimalformatter.h"

namespace corvanta::model {
class Record;
}

namespace corvanta::format {

// The formatter of entry fields for prices, amounts and rates: the default currency's
// separators and fraction digits, without a currency mark.
class NumberFormatter : public DecimalFormatter
{
public:
    // Configured from the company's default currency at creation.
    explicit NumberFormatter(const model::Record* defaultCurrency);

    // Grouping unless the currency's grouping separator is "none"; its grouping and decimal
    // separators; at most its `digits` fraction digits, and at least that many with
    // `show_fixed_digits`.
    void setDefaultFormat(const model::Record* defaultCurrency);
};

} // namespace corvanta::format
