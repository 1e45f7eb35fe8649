#pragma once

#include "documents/clock.h"
#include "documents/pricelevels.h"
#include "predicate/recordref.h"
#include "rownotelibrary.h"

#include <QCoreApplication>
#include <QObject>
#include <QSet>
#include <functional>
#include <memory>
#include <optional>

namespace corvanta::store {
class EditingContext;
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::editors {

class DocumentOutput;

// The document editor without its window: one document in its own editing context, its rows,
// client, terms, type and currency, and the road from a new document over a draft to a saved,
// numbered, printed or sent one. Every question to the user goes through the prompter; the window
// binds its fields to the records and its commands to these operations.
class DocumentController : public QObject
{
    Q_OBJECT

public:
    // Who runs a command: the editor's own control, or nobody (another command on its way).
    enum class Sender { None, Control };
    enum class CloseAnswer { Close, KeepOpen };

    DocumentController(store::Store& store, support::Prompter& prompter,
                       documents::Clock clock = documents::systemClock(), QObject* parent = nullptr);
    ~DocumentController() override;

    // Where print, export, e-mail and preview hand the document over; without one those commands
    // stop after saving.
    void setOutput(DocumentOutput* output) { m_output = output; }

    // A new document of `type` (0 to 7) dated today, with the company's currency, terms, template
    // and notes; it has no number until it is saved. Null for an unknown type.
    store::Record* newDocument(qint64 type);
    // The stored document in this editor's context, or null when there is none.
    store::Record* openDocument(const predicate::RecordRef& document);
    store::Record* document() const { return m_document; }
    store::EditingContext& context() { return *m_context; }
    // The rows in display order.
    QList<store::Record*> rows() const;

    bool isEdited() const { return m_edited; }
    void markEdited() { setEdited(true); }

    // Rows.
    void setSelectedRows(const QList<store::Record*>& rows) { m_selectedRows = rows; }
    const QList<store::Record*>& selectedRows() const { return m_selectedRows; }
    store::Record* addRow();
    // Copies the first selected row; null without a selection.
    store::Record* duplicateRow();
    void deleteRow();
    // Entered numbers, refused with a message when not finite or too large.
    bool setQuantity(store::Record* row, double quantity);
    bool setUnitPrice(store::Record* row, double price);
    // The price field of a level: the active level's edits `unit_price`, the others their slot.
    bool setPrice(store::Record* row, int level, double price);
    void setRowUnit(store::Record* row, store::Record* unit);
    void setRowTax(store::Record* row, store::Record* tax);
    // The row's item-name field was left with `text`: exactly one item of that name fills the
    // row, otherwise the text becomes the row's name and the row loses its item.
    void itemNameEntered(store::Record* row, const QString& text);
    QList<store::Record*> itemSuggestions(const QString& text);

    // Totals and copies.
    documents::PriceLevels& priceLevels() { return m_priceLevels; }
    void defaultPriceChanged(std::optional<int> level = std::nullopt);
    void updateDocumentFields();
    void updateTaxSummary();

    // Client, terms, type, currency.
    // The client field was left with `text`: exactly one client of that full name becomes the
    // document's client with its terms. False when none or several match.
    bool clientEntered(const QString& text);
    QList<store::Record*> clientSuggestions(const QString& text);
    void dueDaysChanged(store::Record* dueDay);
    QList<store::Record*> dueDays();
    void typeChanged(qint64 type);
    QList<store::Record*> templates();
    void currencyChanged(store::Record* currency);
    bool setExchangeRate(double rate);
    QList<store::Record*> currencies();
    bool isExchangeRateHidden() const;

    // Hand-overs. A saved item becomes a new row at the active price level; a saved client
    // becomes the document's client with a fresh copy of its data (client editor), or with its
    // terms as well (the browser's "add to document").
    store::Record* addItem(const predicate::RecordRef& item);
    bool setClient(const predicate::RecordRef& client);
    bool addClient(const predicate::RecordRef& client);

    // Saving, finalising and the commands that hand the document on.
    bool canSave();
    bool save(Sender sender);
    void setNewNumber(Sender sender);
    bool finalizeIfNeeded();
    bool print();
    bool saveAs();
    bool sendEmail();
    void preview();

    // Row notes and the company's default notes.
    RowNoteLibrary& noteLibrary() { return *m_notes; }
    bool saveNote();
    // "Add to Selected Line": the note's text becomes the selected row's note.
    void addNote(const QString& note);
    // "Remove from Menu": the note leaves the library.
    bool removeNote(const RowNoteLibrary::Entry& entry);
    bool saveHeaderNoteAsDefault();
    bool saveFooterNoteAsDefault();

    CloseAnswer windowShouldClose();

Q_SIGNALS:
    void editedChanged(bool edited);
    void rowsChanged();
    void scrollToRowRequested(corvanta::store::Record* row);
    void documentTabRequested();
    void previewCloseRequested();
    void closeRequested();
    void soundRequested(const QString& name);
    // A client or an item saved in another window reached the document (addItem, setClient,
    // addClient): its window shows the header, the rows and the totals again.
    void handOverReceived();

private:
    struct StateBeforeSave
    {
        QVariantMap document;
        QHash<store::Record*, QVariant> stock;
    };

    void setEdited(bool edited);
    bool saveDocument(bool fromSaveCommand);
    bool prepareOutput();
    // Saves and finalises as printing does, then gives the document to the output, if any.
    bool handOver(const std::function<void(DocumentOutput&)>& command);
    // This context's copy of a client, or null without a document or with no such client.
    store::Record* ownClient(const predicate::RecordRef& client) const;
    void takeClient(store::Record* client);
    QList<store::Record*> stockItems() const;
    void rememberItemOf(store::Record* row);
    StateBeforeSave stateBeforeSave() const;
    void restore(const StateBeforeSave& state);
    bool saveCompanyNote(const QString& companyKey, const QString& documentKey);
    int printCopies() const;

    store::Store& m_store;
    support::Prompter& m_prompter;
    documents::Clock m_clock;
    DocumentOutput* m_output = nullptr;
    std::unique_ptr<store::EditingContext> m_context;
    std::unique_ptr<RowNoteLibrary> m_notes;
    store::Record* m_document = nullptr;
    QList<store::Record*> m_selectedRows;
    QSet<qint64> m_itemsLeft; // items whose rows were removed or relinked since the last save
    documents::PriceLevels m_priceLevels;
    bool m_edited = false;
};

} // namespace corvanta::editors
