#pragma once

#include "store/record.h"

namespace corvanta::model {

// A row of a document. Setting `quantity`, `unit_price` or `tax` recomputes the row's amounts at
// once (calcPrices); no other key does.
class DocumentRowsRecord : public store::Record
{
public:
    using store::Record::Record;

    // The amounts of one row; missing numbers count as 0, a missing tax as rates 0.
    struct Prices
    {
        double net = 0.0;
        double tax1Value = 0.0;
        double tax2Value = 0.0;
        double total = 0.0;
    };
    static Prices computePrices(double quantity, double unitPrice, double rate1, double rate2,
                                bool cumulative);

    // Links the tax and recomputes the row, even when the tax stays the same.
    void setTax(store::Record* tax);
    // Recomputes net, both tax values, the total, `tax_value` and the default-currency tax
    // values from quantity, unit price and tax.
    void calcPrices();

    // `tax_name`, `tax1_rate`, `tax2_rate` and `tax_cumulative` copied from the linked tax
    // (emptied without one).
    void refreshTaxSnapshot();
    // `unit_name` copied from the linked unit.
    void refreshUnitName();

    // Links `tax` on any row record and recomputes it when it is a DocumentRowsRecord.
    static void setTax(store::Record* row, store::Record* tax);
    // The rows of a document in display order: ascending `order`, a copy after its source.
    static QList<store::Record*> displayOrder(const store::Record* document);

protected:
    void didChangeValue(const QString& key) override;
};

} // namespace corvanta::model
