#include "invoicefinalizer.h"

#include "documentnumbering.h"
#include "finalizequestion.h"
#include "model/companycache.h"
#include "savefailure.h"
#include "stockcalculator.h"
#include "store/editingcontext.h"
#include "store/store.h"

namespace corvanta::documents {

using store::Record;

InvoiceFinalizer::InvoiceFinalizer(store::Store& store, support::Prompter& prompter, Clock clock,
                                   QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_prompter(prompter)
    , m_clock(std::move(clock))
{}

bool InvoiceFinalizer::finalizeInvoiceIfNeeded(const predicate::RecordRef& ref)
{
    // A context of its own: a failed save leaves nothing behind in the program's records.
    std::unique_ptr<store::EditingContext> context = m_store.newContext();
    Record* document = context->fetchRecord(QStringLiteral("Documents"), ref);
    if (!document)
        return false;
    if (!document->value(QStringLiteral("draft")).toBool())
        return true;
    if (!FinalizeQuestion::ask(m_prompter))
        return false;

    DocumentNumbering numbering(*context, m_prompter);
    const DocumentNumbering::NextNumber next = numbering.nextNumberByType(
        document->value(QStringLiteral("type")).toLongLong(),
        document->value(QStringLiteral("date_creation")).toDateTime().toLocalTime(), true);
    document->setValue(QStringLiteral("number"), next.nextNumber);
    document->setValue(QStringLiteral("number_formatted"), next.formattedNumber);
    document->setValue(QStringLiteral("draft"), false);
    document->setValue(QStringLiteral("created"), m_clock());

    StockCalculator(*context).updateItemsCurrentStock(StockCalculator::itemsOf(document), {document});

    store::StoreError error;
    if (!context->save(&error)) {
        SaveFailure::show(m_prompter, error);
        return false;
    }
    Q_EMIT countsChanged();
    if (model::CompanyCache::of(m_store).value(QStringLiteral("sound_finalize_invoice")).toBool())
        Q_EMIT soundRequested(QStringLiteral("tindra"));
    return true;
}

} // namespace corvanta::documents
