#include "documentdeleter.h"

#include "savefailure.h"
#include "stockcalculator.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "support/prompter.h"

namespace corvanta::documents {

using store::Record;

DocumentDeleter::DocumentDeleter(store::Store& store, support::Prompter& prompter, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_prompter(prompter)
{}

bool DocumentDeleter::deleteDocument(const predicate::RecordRef& ref)
{
    // A context of its own: a failed save leaves nothing behind in the program's records.
    std::unique_ptr<store::EditingContext> context = m_store.newContext();
    Record* document = context->fetchRecord(QStringLiteral("Documents"), ref);
    if (!document)
        return false;
    const QString deleteButton = tr("Delete Document");
    if (m_prompter.alert(tr("Are you sure you want to delete the document \"%1\"?")
                             .arg(document->value(QStringLiteral("number_formatted")).toString()),
                         tr("This action cannot be undone."), {deleteButton, tr("Cancel")}) != deleteButton)
        return false;

    const QList<Record*> items = StockCalculator::itemsOf(document);
    context->deleteRecord(document);
    // The deleted invoice's rows no longer count as sold.
    StockCalculator(*context).updateItemsCurrentStock(items, {document});

    store::StoreError error;
    if (!context->save(&error)) {
        SaveFailure::show(m_prompter, error);
        return false;
    }
    Q_EMIT countsChanged();
    return true;
}

} // namespace corvanta::documents
