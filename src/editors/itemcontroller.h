#pragma once

#include "recordeditor.h"

#include <QDateTime>

namespace corvanta::editors {

// The item editor without its window: one item in its own editing context, its prices, its
// deliveries into the warehouse and their stock, and the rules of its save. A saved item is
// added as a row to the document open in the document editor.
class ItemController : public RecordEditor
{
    Q_OBJECT

public:
    // One row of the item's stock view of documents: a row of a document that is not a draft.
    struct MovementOut
    {
        double quantity = 0.0;
        store::Record* client = nullptr;
        QString documentNumber;
        QDateTime date;
    };

    ItemController(store::Store& store, support::Prompter& prompter,
                   documents::Clock clock = documents::systemClock(), QObject* parent = nullptr);
    ~ItemController() override;

    // A new item of `type` (0 service, 1 product).
    store::Record* newItem(qint64 type);
    // The stored item in this editor's context, or null.
    store::Record* openItem(const predicate::RecordRef& item);
    store::Record* item() const { return m_record; }

    // A price level (1 to 5) typed in; refused with a message when not finite or too large.
    bool setPrice(int level, double price);
    // Takes the first tax rate out of all five prices (gross to net); without a tax nothing
    // changes. Applied twice, it divides twice.
    void pricesToNet();

    // A delivery confirmed in the delivery sheet: a warehouse record of the item, stored with it.
    // Refused with a message for a quantity that is not finite or too large.
    store::Record* addIncoming(store::Record* supplier, double quantity, const QDateTime& date);
    void removeIncoming(store::Record* delivery);
    // The deliveries of the item.
    QList<store::Record*> movementsIn();
    // The item's rows in documents that are not drafts, of every type.
    QList<MovementOut> movementsOut();
    // Suppliers offered in the delivery sheet for typed text.
    QList<store::Record*> supplierSuggestions(const QString& text);

protected:
    void prepareSave() override;
    void handOver(DocumentController& openDocument) override;

private:
    QList<store::Record*> fetchForItem(const QString& entity, const QString& condition);
};

} // namespace corvanta::editors
