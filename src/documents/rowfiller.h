#pragma once

#include <QStringList>

namespace corvanta::store {
class Record;
}

namespace corvanta::documents {

// Copies an item into a document row, as the item-name field, the item editor and the browser's
// "add to document" do.
class RowFiller
{
public:
    // The sixteen keys a row takes from its item.
    static const QStringList& itemKeys();

    // Copies the item's keys (its unit and tax with their snapshots), sets `unit_price` from the
    // item's price of `priceLevel` (1 to 5) and links the item.
    static void fillFromItem(store::Record* row, store::Record* item, int priceLevel);
    // Links the unit and copies its name.
    static void setUnit(store::Record* row, store::Record* unit);
    // Links the tax, copies its name and rates and recomputes the row.
    static void setTax(store::Record* row, store::Record* tax);
};

} // namespace corvanta::documents
