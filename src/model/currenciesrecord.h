#pragma once

#include "store/record.h"

namespace corvanta::model {

// A currency record. Keeps `sample`, an example amount in the currency's own format, in step
// with the format: it is rebuilt whenever the record is loaded or inserted and whenever
// `grouping_separator`, `decimal_separator`, `digits`, `show_fixed_digits`, `symbol_format`,
// `symbol` or `code` (shown by the "code" placement) is set.
class CurrenciesRecord : public store::Record
{
public:
    using store::Record::Record;

    // The sample of a format: 12345.6 with fixed digits (to show the padding), otherwise
    // 12345.6789 (to show the cut-off), written as the currency writes amounts.
    static QString makeSample(const store::Record* currency);

protected:
    void awakeFromFetch() override;
    void awakeFromInsert() override;
    void didChangeValue(const QString& key) override;

private:
    void updateSample();
};

} // namespace corvanta::model
