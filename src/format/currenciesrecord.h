#pragma once

#include "model/record.h"

namespace corvanta::model {
class Store;
}

namespace corvanta::format {

// A currency record. Keeps `sample`, an example amount in the currency's own format, in step
// with the format: it is rebuilt whenever the record is loaded or inserted and whenever
// `grouping_separator`, `decimal_separator`, `digits`, `show_fixed_digits`, `symbol_format`,
// `symbol` or `code` (shown by the "code" placement) is set.
class CurrenciesRecord : public model::Record
{
public:
    using Record::Record;

    // Gives the store's `Currencies` records this class; the program's start-up calls it
    // before the first fetch.
    static void registerOn(model::Store& store);

    // The sample of a format: 12345.6 with fixed digits (to show the padding), otherwise
    // 12345.6789 (to show the cut-off), written as the currency writes amounts.
    static QString makeSample(const model::Record* currency);

protected:
    void awakeFromFetch() override;
    void awakeFromInsert() override;
    void didChangeValue(const QString& key) override;

private:
    void updateSample();
};

} // namespace corvanta::format
