#pragma once

#include <QList>
#include <QString>

namespace corvanta::store {
class Record;
}

namespace corvanta::documents {

// Rebuilds what a document derives from its rows: the rows' positions and tax snapshots, one
// summary per tax name, and the four sums. The rows' own amounts are taken as they are.
class DocumentTotals
{
public:
    static void updateTaxSummary(store::Record* document);

    // One tax name's share of the rows, as its summary line would hold it.
    struct TaxLine
    {
        QString name;
        double net = 0.0;
        double tax1Value = 0.0;
        double tax2Value = 0.0;
        double total = 0.0;
    };
    struct Sums
    {
        double net = 0.0;
        double tax1 = 0.0;
        double tax2 = 0.0;
        double total = 0.0;
        QList<TaxLine> taxLines;
    };
    // The sums and tax lines the next updateTaxSummary would store, from the rows as they are
    // now, without changing anything: what an editor shows while the rows are being typed.
    static Sums currentSums(const store::Record* document);
};

} // namespace corvanta::documents
