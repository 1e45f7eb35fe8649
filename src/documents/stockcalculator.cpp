#include "stockcalculator.h"

#include "predicate/evaluator.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"

namespace corvanta::documents {

using store::FetchRequest;
using store::Record;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

QVariantList refsOf(const QList<Record*>& records)
{
    QVariantList refs;
    for (const Record* r : records)
        refs << QVariant::fromValue(r->ref());
    return refs;
}

} // namespace

StockCalculator::StockCalculator(store::EditingContext& context)
    : m_context(context)
{}

QList<Record*> StockCalculator::itemsOf(const Record* document)
{
    QList<Record*> items;
    for (const Record* row : document->relatedList(s("rows"))) {
        Record* item = row->related(s("item"));
        if (item && !items.contains(item))
            items << item;
    }
    return items;
}

// One sum per item, added up by the database: an equality on `item` is answered by an index that
// holds the quantities too, so no row is read from the tables themselves.
QHash<qint64, double> StockCalculator::incomingByItem(const QList<Record*>& items)
{
    QHash<qint64, double> sums;
    for (const Record* item : items) {
        const predicate::Predicate condition =
            predicate::literal("item == %@", {QVariant::fromValue(item->ref())});
        sums[item->pk()] =
            m_context.sum(FetchRequest(s("Warehouse"), condition), s("quantity")).value_or(0.0);
    }
    return sums;
}

QHash<qint64, double> StockCalculator::soldByItem(const QList<Record*>& items,
                                                  const QList<Record*>& unsavedDocuments)
{
    const QString finalInvoiceRows = s("item == %@ && document.type == 0 && document.draft == NO");
    const QVariant excluded = refsOf(unsavedDocuments);
    QHash<qint64, double> sums;
    for (const Record* item : items) {
        const QVariant itemRef = QVariant::fromValue(item->ref());
        double& sum = sums[item->pk()];

        // Stored rows of every other document, as the store holds them.
        const predicate::Predicate condition = predicate::literal(
            unsavedDocuments.isEmpty() ? finalInvoiceRows : finalInvoiceRows + s(" && NOT (document IN %@)"),
            {itemRef, excluded});
        FetchRequest stored(s("DocumentRows"), condition);
        stored.includesPendingChanges = false;
        sum = m_context.sum(stored, s("quantity")).value_or(0.0);

        // The unsaved documents' rows as they are in memory.
        const predicate::Predicate inMemory = predicate::literal(finalInvoiceRows, {itemRef});
        for (const Record* document : unsavedDocuments) {
            if (document->isDeleted())
                continue;
            for (const Record* row : document->relatedList(s("rows"))) {
                if (predicate::Evaluator::evaluate(inMemory, *row))
                    sum += row->value(s("quantity")).toDouble();
            }
        }
    }
    return sums;
}

double StockCalculator::incoming(Record* item)
{
    return item ? incomingByItem({item}).value(item->pk()) : 0.0;
}

double StockCalculator::sold(Record* item, const QList<Record*>& unsavedDocuments)
{
    return item ? soldByItem({item}, unsavedDocuments).value(item->pk()) : 0.0;
}

void StockCalculator::updateItemCurrentStock(Record* item, const QList<Record*>& unsavedDocuments)
{
    updateItemsCurrentStock({item}, unsavedDocuments);
}

void StockCalculator::updateItemsCurrentStock(const QList<Record*>& items,
                                              const QList<Record*>& unsavedDocuments)
{
    QList<Record*> present;
    for (Record* item : items) {
        if (item && !item->isDeleted() && !present.contains(item))
            present << item;
    }
    if (present.isEmpty())
        return;
    const QHash<qint64, double> in = incomingByItem(present);
    const QHash<qint64, double> out = soldByItem(present, unsavedDocuments);
    for (Record* item : std::as_const(present))
        item->setValue(s("stock_current"), in.value(item->pk()) - out.value(item->pk()));
}

} // namespace corvanta::documents
