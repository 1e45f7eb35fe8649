#pragma once

#include <QString>

namespace corvanta::store {
class Record;
}

namespace corvanta::model {

// The display text of a row's taxes (`tax_value`): both tax values joined by "+" when the
// second one is above zero, otherwise the first alone, each written by the entry fields' number
// formatter of the company's default currency.
class TaxValueText
{
public:
    static QString text(double tax1Value, double tax2Value, const store::Record* defaultCurrency);
};

} // namespace corvanta::model
