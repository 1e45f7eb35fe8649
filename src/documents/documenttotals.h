#pragma once

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
};

} // namespace corvanta::documents
