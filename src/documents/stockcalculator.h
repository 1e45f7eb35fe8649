#pragma once

#include <QHash>
#include <QList>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::documents {

// The current stock of an item: its deliveries into the warehouse less the quantities of its
// rows in final invoices. Drafts and other document types never move stock; a cancellation's
// negative rows give the quantity back.
class StockCalculator
{
public:
    explicit StockCalculator(store::EditingContext& context);

    // Recomputes and sets `stock_current` of the item (nothing without an item). The documents
    // in `unsavedDocuments` count as they are in this context, with their unsaved rows, type and
    // state; every other document counts as stored.
    void updateItemCurrentStock(store::Record* item, const QList<store::Record*>& unsavedDocuments = {});
    // The same for several items.
    void updateItemsCurrentStock(const QList<store::Record*>& items,
                                 const QList<store::Record*>& unsavedDocuments = {});

    // The sum of the item's warehouse quantities, unsaved deliveries included.
    double incoming(store::Record* item);
    // The sum of the quantities of the item's rows in final invoices.
    double sold(store::Record* item, const QList<store::Record*>& unsavedDocuments = {});

    // The items of a document's rows, each once.
    static QList<store::Record*> itemsOf(const store::Record* document);

private:
    // Sums by item key, each added in the records' stored order.
    QHash<qint64, double> incomingByItem(const QList<store::Record*>& items);
    QHash<qint64, double> soldByItem(const QList<store::Record*>& items,
                                     const QList<store::Record*>& unsavedDocuments);

    store::EditingContext& m_context;
};

} // namespace corvanta::documents
