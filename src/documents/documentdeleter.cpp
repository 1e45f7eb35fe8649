#include "documentdeleter.h"

#include "model/editingcontext.h"
#include "model/prompter.h"
#include "model/store.h"
#include "predicate/parser.h"
#include "savefailure.h"
#include "stockcalculator.h"

namespace corvanta::documents {

using model::Record;

DocumentDeleter::DocumentDeleter(model::Store& store, model::Prompter& prompter, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_prompter(prompter)
{}

bool DocumentDeleter::deleteDocument(const predicate::RecordRef& ref)
{
    // A context of its own: a failed save leaves nothing behind in the program's records.
    std::unique_ptr<model::EditingContext> context = m_store.newContext();
    Record* document = context->fetchFirst(model::FetchRequest(
        QStringLiteral("Documents"),
        *predicate::Parser::parse(QStringLiteral("self == %@"), {QVariant::fromValue(ref)})));
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

    model::StoreError error;
    if (!context->save(&error)) {
        SaveFailure::show(m_prompter, error);
        return false;
    }
    Q_EMIT countsChanged();
    return true;
}

} // namespace corvanta::documents
