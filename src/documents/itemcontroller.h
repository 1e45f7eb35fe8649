#pragma once

#include "clock.h"
#include "predicate/recordref.h"

#include <QDateTime>
#include <QObject>
#include <memory>

namespace corvanta::model {
class EditingContext;
class Prompter;
class Record;
class Store;
} // namespace corvanta::model

namespace corvanta::documents {

class DocumentController;

// The item editor without its window: one item in its own editing context, its prices, its
// deliveries into the warehouse and their stock, and the rules of its save. A saved item is
// added as a row to the document open in the document editor.
class ItemController : public QObject
{
    Q_OBJECT

public:
    enum class Sender { None, Control };
    enum class CloseAnswer { Close, KeepOpen };
    // One row of the item's stock view of documents: a row of a document that is not a draft.
    struct MovementOut
    {
        double quantity = 0.0;
        model::Record* client = nullptr;
        QString documentNumber;
        QDateTime date;
    };

    ItemController(model::Store& store, model::Prompter& prompter, Clock clock = systemClock(),
                   QObject* parent = nullptr);
    ~ItemController() override;

    // A new item of `type` (0 service, 1 product).
    model::Record* newItem(qint64 type);
    // The stored item in this editor's context, or null.
    model::Record* openItem(const predicate::RecordRef& item);
    model::Record* item() const { return m_item; }
    model::EditingContext& context() { return *m_context; }

    bool isEdited() const { return m_edited; }
    void markEdited() { setEdited(true); }

    // A price level (1 to 5) typed in; refused with a message when not finite or too large.
    bool setPrice(int level, double price);
    // Takes the first tax rate out of all five prices (gross to net); without a tax nothing
    // changes. Applied twice, it divides twice.
    void pricesToNet();

    // A delivery confirmed in the delivery sheet: a warehouse record of the item, stored with it.
    // Refused with a message for a quantity that is not finite or too large.
    model::Record* addIncoming(model::Record* supplier, double quantity, const QDateTime& date);
    void removeIncoming(model::Record* delivery);
    // The deliveries of the item.
    QList<model::Record*> movementsIn();
    // The item's rows in documents that are not drafts, of every type.
    QList<MovementOut> movementsOut();
    // Suppliers offered in the delivery sheet for typed text.
    QList<model::Record*> supplierSuggestions(const QString& text);

    // Saves the item and its stock; `openDocument` is the document editor when its window is
    // shown or minimised, which then gets a row of this item. False when the save failed.
    bool save(Sender sender, DocumentController* openDocument = nullptr);
    CloseAnswer windowShouldClose(DocumentController* openDocument = nullptr);

Q_SIGNALS:
    void editedChanged(bool edited);
    void closeRequested();

private:
    void setEdited(bool edited);
    QList<model::Record*> fetchForItem(const QString& entity, const QString& condition);

    model::Prompter& m_prompter;
    Clock m_clock;
    std::unique_ptr<model::EditingContext> m_context;
    model::Record* m_item = nullptr;
    bool m_edited = false;
};

} // namespace corvanta::documents
