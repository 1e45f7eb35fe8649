#include "documentcontroller.h"

#include "currencychoices.h"
#include "documentoutput.h"
#include "documents/documentnumbering.h"
#include "documents/documentsnapshot.h"
#include "documents/documenttags.h"
#include "documents/documenttotals.h"
#include "documents/documenttypes.h"
#include "documents/draftnumber.h"
#include "documents/duedate.h"
#include "documents/finalizequestion.h"
#include "documents/numberlimits.h"
#include "documents/rowfiller.h"
#include "documents/savefailure.h"
#include "documents/stockcalculator.h"
#include "exhangeratehiddenvaluetransformer.h"
#include "format/relativedates.h"
#include "model/companycache.h"
#include "model/companyrecord.h"
#include "model/documentrowsrecord.h"
#include "predicate/literal.h"
#include "rownotelibrary.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "support/prompter.h"
#include "support/uuid.h"

namespace corvanta::editors {

using documents::Clock;
using documents::DocumentNumbering;
using documents::DocumentSnapshot;
using documents::DocumentTags;
using documents::DocumentTotals;
using documents::DocumentTypes;
using documents::DraftNumber;
using documents::DueDate;
using documents::FinalizeQuestion;
using documents::NumberLimits;
using documents::PriceLevels;
using documents::RowFiller;
using documents::SaveFailure;
using documents::StockCalculator;
using model::CompanyRecord;
using model::DocumentRowsRecord;

using predicate::RecordRef;
using store::FetchRequest;
using store::Record;
using store::SortDescriptor;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

QVariant refOf(const Record* record)
{
    return record ? QVariant::fromValue(record->ref()) : QVariant();
}

FetchRequest request(const QString& entity, const QString& condition, const QVariantList& arguments,
                     const QList<SortDescriptor>& sort = {})
{
    return FetchRequest(entity, predicate::literal(condition, arguments), sort);
}

// The document keys a save may change on its way to the store.
const char* const kNumberingKeys[] = {"number", "number_formatted", "draft", "created"};

} // namespace

DocumentController::DocumentController(store::Store& store, support::Prompter& prompter, Clock clock,
                                       QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_prompter(prompter)
    , m_clock(std::move(clock))
    , m_context(store.newContext())
    , m_notes(std::make_unique<RowNoteLibrary>(store, prompter))
{
    // What other windows save reaches the document being edited; its own edits win.
    connect(&store, &store::Store::didSave, this,
            [this](const store::ChangeSet& changes, store::EditingContext* origin) {
                if (origin != m_context.get())
                    m_context->mergeChanges(changes);
            });
}

DocumentController::~DocumentController() = default;

void DocumentController::setEdited(bool edited)
{
    if (m_edited == edited)
        return;
    m_edited = edited;
    Q_EMIT editedChanged(edited);
}

Record* DocumentController::newDocument(qint64 type)
{
    if (!DocumentTypes::isValid(type))
        return nullptr;
    m_context->rollback();
    const QDateTime now = m_clock();
    const QDateTime today = format::dates::midday(format::dates::today(now));
    Record* company = CompanyRecord::of(*m_context);
    const auto fromCompany = [&](const char* key) { return company ? company->value(s(key)) : QVariant(); };
    Record* currency = company ? company->related(s("default_currency")) : nullptr;

    m_document = m_context->insertRecord(
        s("Documents"), {{s("type"), type},
                         {s("identifier"), support::UUID()},
                         {s("date_creation"), today},
                         {s("date_completion"), today},
                         {s("exchange_rate"), 1.0},
                         {s("note_header"), fromCompany("default_note_header")},
                         {s("note_footer"), fromCompany("default_note_footer")},
                         {s("currency"), refOf(currency)},
                         {s("default_currency"), refOf(currency)},
                         {s("payment_type"), fromCompany("default_payment_type")},
                         {s("bank"), fromCompany("default_bank")},
                         {s("template"), refOf(DocumentTypes::defaultTemplate(*m_context, type))}});
    if (type == DocumentTypes::Invoice)
        m_document->setValue(s("draft"), false);
    if (const auto due = DueDate::from(company ? company->related(s("default_due_day")) : nullptr, now))
        m_document->setValue(s("date_due"), *due);
    m_selectedRows.clear();
    m_itemsLeft.clear();
    setEdited(false);
    return m_document;
}

Record* DocumentController::openDocument(const RecordRef& document)
{
    m_context->rollback();
    m_document = m_context->fetchRecord(s("Documents"), document);
    m_selectedRows.clear();
    m_itemsLeft.clear();
    setEdited(false);
    return m_document;
}

QList<Record*> DocumentController::rows() const
{
    return DocumentRowsRecord::displayOrder(m_document);
}

// Rows

Record* DocumentController::addRow()
{
    if (!m_document)
        return nullptr;
    qint64 highest = 0;
    for (const Record* row : m_document->relatedList(s("rows")))
        highest = std::max(highest, row->value(s("order")).toLongLong());
    Record* row =
        m_context->insertRecord(s("DocumentRows"), {{s("name"), QString()}, {s("order"), highest + 1}});
    row->setRelated(s("document"), m_document);
    row->setValue(s("quantity"), 1.0);
    RowFiller::setTax(row, CompanyRecord::defaultRecord(*m_context, s("default_tax")));
    RowFiller::setUnit(row, CompanyRecord::defaultRecord(*m_context, s("default_unit")));
    markEdited();
    Q_EMIT rowsChanged();
    Q_EMIT scrollToRowRequested(row);
    return row;
}

Record* DocumentController::duplicateRow()
{
    if (!m_document || m_selectedRows.isEmpty())
        return nullptr;
    const Record* source = m_selectedRows.first();
    QVariantMap values;
    for (const store::AttributeDescription& a : source->entity().attributes())
        values.insert(a.name, source->value(a.name));
    for (const char* link : {"document", "item", "tax", "unit"})
        values.insert(s(link), source->value(s(link)));
    Record* copy = m_context->insertRecord(s("DocumentRows"), values);
    markEdited();
    Q_EMIT rowsChanged();
    return copy;
}

void DocumentController::deleteRow()
{
    if (m_selectedRows.isEmpty())
        return;
    for (Record* row : std::as_const(m_selectedRows)) {
        rememberItemOf(row);
        m_context->deleteRecord(row);
    }
    m_selectedRows.clear();
    markEdited();
    Q_EMIT rowsChanged();
}

bool DocumentController::setQuantity(Record* row, double quantity)
{
    if (!row || !NumberLimits::accept(NumberLimits::Kind::Quantity, quantity, m_prompter))
        return false;
    row->setValue(s("quantity"), quantity);
    markEdited();
    return true;
}

bool DocumentController::setUnitPrice(Record* row, double price)
{
    return setPrice(row, m_priceLevels.active(), price);
}

bool DocumentController::setPrice(Record* row, int level, double price)
{
    if (!row || level < 1 || level > PriceLevels::kCount ||
        !NumberLimits::accept(NumberLimits::Kind::Price, price, m_prompter))
        return false;
    row->setValue(m_priceLevels.fieldKey(level), price);
    markEdited();
    return true;
}

void DocumentController::setRowUnit(Record* row, Record* unit)
{
    if (!row)
        return;
    RowFiller::setUnit(row, unit);
    markEdited();
}

void DocumentController::setRowTax(Record* row, Record* tax)
{
    if (!row)
        return;
    RowFiller::setTax(row, tax);
    markEdited();
}

void DocumentController::itemNameEntered(Record* row, const QString& text)
{
    if (!row)
        return;
    rememberItemOf(row);
    const QList<Record*> matches = m_context->fetch(request(s("Items"), s("name == %@"), {text}));
    if (matches.size() == 1) {
        RowFiller::fillFromItem(row, matches.first(), m_priceLevels.active());
    } else {
        row->setValue(s("name"), text);
        row->setRelated(s("item"), nullptr);
    }
    markEdited();
}

QList<Record*> DocumentController::itemSuggestions(const QString& text)
{
    return m_context->fetch(request(s("Items"),
                                    s("name CONTAINS[c] %@ || code CONTAINS[c] %@ || desc CONTAINS[c] %@"),
                                    {text, text, text}, {SortDescriptor::localized(s("name"))}));
}

void DocumentController::rememberItemOf(Record* row)
{
    if (const Record* item = row->related(s("item")))
        m_itemsLeft.insert(item->pk());
}

// Totals and copies

void DocumentController::defaultPriceChanged(std::optional<int> level)
{
    m_priceLevels.defaultPriceChanged(rows(), level);
}

void DocumentController::updateDocumentFields()
{
    markEdited();
    DocumentSnapshot::update(m_document);
}

void DocumentController::updateTaxSummary()
{
    DocumentTotals::updateTaxSummary(m_document);
}

// Client, terms, type, currency

bool DocumentController::clientEntered(const QString& text)
{
    if (!m_document)
        return false;
    const QList<Record*> matches = m_context->fetch(request(s("Clients"), s("full_name == %@"), {text}));
    if (matches.size() != 1)
        return false;
    takeClient(matches.first());
    return true;
}

QList<Record*> DocumentController::clientSuggestions(const QString& text)
{
    return m_context->fetch(
        request(s("Clients"),
                s("company_name CONTAINS[c] %@ || first_name CONTAINS[c] %@ || last_name CONTAINS[c] %@"),
                {text, text, text}, {SortDescriptor::localized(s("full_name"))}));
}

void DocumentController::takeClient(Record* client)
{
    m_document->setRelated(s("client"), client);
    m_document->setValue(s("client_full_name"), client->value(s("full_name")));
    m_document->setValue(s("client_street"), client->valueForKeyPath(s("default_address.street")));
    Record* company = CompanyRecord::of(*m_context);
    const auto clientOrCompany = [&](const char* key) {
        Record* own = client->related(s(key));
        return own || !company ? own : company->related(s(key));
    };
    m_document->setRelated(s("payment_type"), clientOrCompany("default_payment_type"));
    m_document->setRelated(s("bank"), clientOrCompany("default_bank"));
    if (const auto due = DueDate::from(clientOrCompany("default_due_day"), m_clock()))
        m_document->setValue(s("date_due"), *due);
    markEdited();
}

void DocumentController::dueDaysChanged(Record* dueDay)
{
    if (!m_document)
        return;
    if (const auto due = DueDate::from(dueDay, m_clock())) {
        m_document->setValue(s("date_due"), *due);
        markEdited();
    }
}

QList<Record*> DocumentController::dueDays()
{
    return m_context->fetch(FetchRequest(s("DueDays"), {}, {SortDescriptor::localized(s("name"))}));
}

void DocumentController::typeChanged(qint64 type)
{
    if (!m_document || !DocumentTypes::isValid(type))
        return;
    m_document->setValue(s("type"), type);
    m_document->setRelated(s("template"), DocumentTypes::defaultTemplate(*m_context, type));
    setNewNumber(Sender::Control);
    markEdited();
}

QList<Record*> DocumentController::templates()
{
    if (!m_document)
        return {};
    return m_context->fetch(request(s("Templates"), s("type == %@"), {m_document->value(s("type"))},
                                    {SortDescriptor::localized(s("name"))}));
}

void DocumentController::currencyChanged(Record* currency)
{
    if (!m_document)
        return;
    m_document->setRelated(s("currency"), currency);
    m_document->setValue(s("exchange_rate"), 1.0);
    markEdited();
    Q_EMIT rowsChanged();
}

bool DocumentController::setExchangeRate(double rate)
{
    if (!m_document || !NumberLimits::accept(NumberLimits::Kind::ExchangeRate, rate, m_prompter))
        return false;
    m_document->setValue(s("exchange_rate"), rate);
    markEdited();
    return true;
}

QList<Record*> DocumentController::currencies()
{
    return selectableCurrencies(*m_context, m_document ? m_document->related(s("currency")) : nullptr);
}

bool DocumentController::isExchangeRateHidden() const
{
    return ExhangeRateHiddenValueTransformer::isHidden(m_document ? m_document->related(s("currency"))
                                                                  : nullptr);
}

// Hand-overs

Record* DocumentController::addItem(const RecordRef& item)
{
    if (!m_document)
        return nullptr;
    Record* own = m_context->fetchRecord(s("Items"), item);
    if (!own)
        return nullptr;
    Record* row = addRow();
    RowFiller::fillFromItem(row, own, m_priceLevels.active());
    Q_EMIT handOverReceived();
    return row;
}

Record* DocumentController::ownClient(const RecordRef& client) const
{
    return m_document ? m_context->fetchRecord(s("Clients"), client) : nullptr;
}

bool DocumentController::setClient(const RecordRef& client)
{
    Record* own = ownClient(client);
    if (!own)
        return false;
    m_document->setRelated(s("client"), own);
    updateDocumentFields();
    Q_EMIT handOverReceived();
    return true;
}

bool DocumentController::addClient(const RecordRef& client)
{
    Record* own = ownClient(client);
    if (!own)
        return false;
    takeClient(own);
    Q_EMIT handOverReceived();
    return true;
}

// Saving

bool DocumentController::canSave()
{
    if (!m_document)
        return false;
    if (!m_document->value(s("client_full_name")).toString().isEmpty())
        return true;
    Q_EMIT documentTabRequested();
    m_prompter.alert(tr("No Client Selected"), tr("You cannot save document without client."), {tr("OK")});
    return false;
}

bool DocumentController::save(Sender sender)
{
    if (!saveDocument(sender == Sender::Control))
        return false;
    if (sender == Sender::Control)
        Q_EMIT closeRequested();
    return true;
}

bool DocumentController::saveDocument(bool fromSaveCommand)
{
    if (!canSave())
        return false;
    const StateBeforeSave before = stateBeforeSave();

    defaultPriceChanged();
    updateDocumentFields();
    updateTaxSummary();
    DocumentTags::update(m_document);

    const bool neverSaved = m_document->value(s("created")).isNull();
    const bool invoice = m_document->value(s("type")).toLongLong() == DocumentTypes::Invoice;
    if (fromSaveCommand && neverSaved && invoice)
        DraftNumber::apply(m_document, m_clock());
    else
        setNewNumber(Sender::None);
    if (neverSaved)
        m_document->setValue(s("created"), m_clock());

    StockCalculator(*m_context).updateItemsCurrentStock(stockItems(), {m_document});

    store::StoreError error;
    if (!m_context->save(&error)) {
        restore(before);
        SaveFailure::show(m_prompter, error);
        return false;
    }
    m_itemsLeft.clear();
    setEdited(false);
    Q_EMIT previewCloseRequested();
    return true;
}

void DocumentController::setNewNumber(Sender sender)
{
    if (!m_document || !m_document->value(s("created")).isNull())
        return;
    const qint64 type = m_document->value(s("type")).toLongLong();
    if (!DocumentTypes::isValid(type))
        return;
    QDateTime date = m_document->value(s("date_creation")).toDateTime();
    if (!date.isValid())
        date = m_clock();
    DocumentNumbering numbering(*m_context, m_prompter);
    const DocumentNumbering::NextNumber next =
        numbering.nextNumberByType(type, date.toLocalTime(), sender == Sender::None);
    m_document->setValue(s("number"), next.nextNumber);
    m_document->setValue(s("number_formatted"), next.formattedNumber);
    m_document->setValue(s("draft"), false);
}

QList<Record*> DocumentController::stockItems() const
{
    QList<Record*> items = StockCalculator::itemsOf(m_document);
    for (qint64 pk : m_itemsLeft) {
        Record* item = m_context->record({s("Items"), pk});
        if (item && !items.contains(item))
            items << item;
    }
    return items;
}

DocumentController::StateBeforeSave DocumentController::stateBeforeSave() const
{
    StateBeforeSave state;
    for (const char* key : kNumberingKeys)
        state.document.insert(s(key), m_document->value(s(key)));
    for (Record* item : stockItems())
        state.stock.insert(item, item->value(s("stock_current")));
    return state;
}

void DocumentController::restore(const StateBeforeSave& state)
{
    for (auto it = state.document.cbegin(); it != state.document.cend(); ++it)
        m_document->setValue(it.key(), it.value());
    for (auto it = state.stock.cbegin(); it != state.stock.cend(); ++it)
        it.key()->setValue(s("stock_current"), it.value());
}

bool DocumentController::finalizeIfNeeded()
{
    if (!m_document)
        return false;
    if (m_document->value(s("type")).toLongLong() != DocumentTypes::Invoice)
        return true;
    const bool draft = m_document->value(s("draft")).toBool();
    if (!draft && !m_document->value(s("created")).isNull())
        return true;
    if (!FinalizeQuestion::ask(m_prompter))
        return false;
    // Without `created` the next save numbers the invoice as a new one.
    m_document->setValue(s("created"), QVariant());
    if (model::CompanyCache::of(m_store).value(s("sound_finalize_invoice")).toBool())
        Q_EMIT soundRequested(s("tindra"));
    return true;
}

bool DocumentController::prepareOutput()
{
    if (!canSave())
        return false;
    const QVariant created = m_document->value(s("created"));
    if (!finalizeIfNeeded())
        return false;
    if (!saveDocument(false)) {
        m_document->setValue(s("created"), created);
        return false;
    }
    return true;
}

int DocumentController::printCopies() const
{
    const qint64 type = m_document->value(s("type")).toLongLong();
    const int copies = model::CompanyCache::of(m_store)
                           .value(s("print_copy_") + DocumentTypes::typeNameByNumber(type))
                           .toInt();
    return std::max(1, copies);
}

bool DocumentController::print()
{
    return handOver([this](DocumentOutput& output) { output.print(m_document, printCopies()); });
}

bool DocumentController::saveAs()
{
    return handOver([this](DocumentOutput& output) { output.saveAs(m_document); });
}

bool DocumentController::sendEmail()
{
    return handOver([this](DocumentOutput& output) { output.sendEmail(m_document); });
}

bool DocumentController::handOver(const std::function<void(DocumentOutput&)>& command)
{
    if (!prepareOutput())
        return false;
    if (m_output)
        command(*m_output);
    Q_EMIT closeRequested();
    return true;
}

void DocumentController::preview()
{
    if (!m_document)
        return;
    defaultPriceChanged();
    updateDocumentFields();
    updateTaxSummary();
    if (m_output)
        m_output->preview(m_document);
}

// Notes

bool DocumentController::saveNote()
{
    if (m_selectedRows.isEmpty())
        return false;
    return m_notes->add(m_selectedRows.first()->value(s("note")).toString());
}

void DocumentController::addNote(const QString& note)
{
    if (m_selectedRows.isEmpty())
        return;
    m_selectedRows.first()->setValue(s("note"), note);
    markEdited();
}

bool DocumentController::removeNote(const RowNoteLibrary::Entry& entry)
{
    return m_notes->remove(entry);
}

bool DocumentController::saveCompanyNote(const QString& companyKey, const QString& documentKey)
{
    if (!m_document)
        return false;
    // The company's defaults are stored at once, apart from the document's unsaved changes.
    std::unique_ptr<store::EditingContext> context = m_store.newContext();
    Record* company = CompanyRecord::of(*context);
    if (!company)
        return false;
    company->setValue(companyKey, m_document->value(documentKey));
    store::StoreError error;
    if (context->save(&error))
        return true;
    SaveFailure::show(m_prompter, error);
    return false;
}

bool DocumentController::saveHeaderNoteAsDefault()
{
    return saveCompanyNote(s("default_note_header"), s("note_header"));
}

bool DocumentController::saveFooterNoteAsDefault()
{
    return saveCompanyNote(s("default_note_footer"), s("note_footer"));
}

DocumentController::CloseAnswer DocumentController::windowShouldClose()
{
    if (!m_edited) {
        Q_EMIT previewCloseRequested();
        return CloseAnswer::Close;
    }
    const QString saveButton = tr("Save");
    const QString dontSave = tr("Don't Save");
    const QString answer = m_prompter.alert(
        tr("Save this document?"),
        tr("This document has not been saved and contains unsaved changes. Would you like to save now?"),
        {saveButton, dontSave, tr("Cancel")});
    if (answer == saveButton)
        return saveDocument(true) ? CloseAnswer::Close : CloseAnswer::KeepOpen;
    if (answer == dontSave) {
        m_context->rollback();
        m_document = nullptr;
        m_selectedRows.clear();
        setEdited(false);
        Q_EMIT previewCloseRequested();
        return CloseAnswer::Close;
    }
    return CloseAnswer::KeepOpen;
}

} // namespace corvanta::editors
