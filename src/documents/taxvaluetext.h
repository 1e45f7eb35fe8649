#pragma once

#include <QString>

namespace corvanta::model {
class Record;
}

namespace corvanta::documents {

// The display text of a row's taxes (`tax_value`): both tax values joined by "+" when the
// second one is above zero, otherwise the first alone, each written by the entry fields' number
// formatter of the company's default currency.
class TaxValueText
{
public:
    static QString text(double tax1Value, double tax2Value, const model::Record* defaultCurrency);
};

} // namespace corvanta::documents
