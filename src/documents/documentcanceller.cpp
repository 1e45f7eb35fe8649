#include "documentcanceller.h"

#include "documentnumbering.h"
#include "documenttags.h"
#include "documenttypes.h"
#include "format/relativedates.h"
#include "model/documentrowsrecord.h"
#include "recordcopy.h"
#include "savefailure.h"
#include "stockcalculator.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "support/prompter.h"
#include "support/uuid.h"

namespace corvanta::documents {

using model::DocumentRowsRecord;

using store::Record;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

void negate(Record* record, const QStringList& keys)
{
    for (const QString& key : keys) {
        const QVariant value = record->value(key);
        if (!value.isNull())
            record->setValue(key, -value.toDouble());
    }
}

} // namespace

DocumentCanceller::DocumentCanceller(store::Store& store, support::Prompter& prompter, Clock clock,
                                     QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_prompter(prompter)
    , m_clock(std::move(clock))
{}

bool DocumentCanceller::canCancel(const Record* document)
{
    return document && document->value(s("type")).toLongLong() == DocumentTypes::Invoice &&
           document->value(s("draft")).toInt() == 0 && !document->value(s("created")).isNull() &&
           document->value(s("cancel_reference")).isNull();
}

std::optional<predicate::RecordRef> DocumentCanceller::cancel(const predicate::RecordRef& ref)
{
    // A context of its own: a failed save leaves nothing behind in the program's records.
    std::unique_ptr<store::EditingContext> context = m_store.newContext();
    Record* original = context->fetchRecord(s("Documents"), ref);
    if (!original)
        return std::nullopt;
    if (!canCancel(original)) {
        m_prompter.alert(tr("Document cannot be cancelled"),
                         tr("Only a final invoice that has not been cancelled yet can be cancelled."),
                         {tr("OK")});
        return std::nullopt;
    }
    const QString cancelButton = tr("Cancel Invoice");
    if (m_prompter.alert(tr("Are you sure you want to cancel the document \"%1\"?")
                             .arg(original->value(s("number_formatted")).toString()),
                         tr("This action cannot be undone."),
                         {cancelButton, tr("Don't Cancel")}) != cancelButton)
        return std::nullopt;

    Record* twin = makeTwin(*context, original);
    copyRows(*context, original, twin);
    copySummaries(*context, original, twin);

    StockCalculator(*context).updateItemsCurrentStock(StockCalculator::itemsOf(twin), {twin});
    // The link is mutual: the cancelled document points at its cancellation too.
    original->setRelated(s("cancel_reference"), twin);

    store::StoreError error;
    if (!context->save(&error)) {
        SaveFailure::show(m_prompter, error);
        return std::nullopt;
    }
    Q_EMIT countsChanged();
    return twin->ref();
}

Record* DocumentCanceller::makeTwin(store::EditingContext& context, Record* original)
{
    Record* twin = context.insertRecord(s("Documents"));
    RecordCopy::copyAttributes(original, twin);
    const QDateTime now = m_clock();
    twin->setValue(s("identifier"), support::UUID());
    twin->setValue(s("created"), now);
    const QDateTime date = format::dates::midday(format::dates::today(now));
    twin->setValue(s("date_creation"), date);
    DocumentNumbering numbering(context, m_prompter);
    const DocumentNumbering::NextNumber next =
        numbering.nextNumberByType(twin->value(s("type")).toLongLong(), date, false);
    twin->setValue(s("number"), next.nextNumber);
    twin->setValue(s("number_formatted"), next.formattedNumber);

    twin->setRelated(s("cancel_reference"), original);
    negate(twin, {s("sum_total"), s("sum_net"), s("sum_tax1"), s("sum_tax2")});
    RecordCopy::copyLinks(
        original, twin,
        {s("bank"), s("client"), s("currency"), s("default_currency"), s("payment_type"), s("template")});
    twin->setValue(s("note_header"), tr("Reference: %1\n%2")
                                         .arg(original->value(s("number_formatted")).toString(),
                                              original->value(s("note_header")).toString()));

    QVariantList tags = original->value(s("tags")).toList();
    if (Record* cancelled = DocumentTags::typeCategory(twin, DocumentTypes::kCancellationSubtype))
        tags << QVariant::fromValue(cancelled->ref());
    twin->setValue(s("tags"), tags);
    return twin;
}

void DocumentCanceller::copyRows(store::EditingContext& context, Record* original, Record* twin)
{
    for (const Record* row : DocumentRowsRecord::displayOrder(original)) {
        Record* copy = context.insertRecord(s("DocumentRows"));
        copy->setRelated(s("document"), twin);
        RecordCopy::copyLinks(row, copy, {s("item"), s("tax"), s("unit")});
        RecordCopy::copyAttributes(row, copy);
        // A new quantity recomputes the row's amounts with its tax.
        copy->setValue(s("quantity"), -row->value(s("quantity")).toDouble());
    }
}

void DocumentCanceller::copySummaries(store::EditingContext& context, Record* original, Record* twin)
{
    for (const Record* summary : original->relatedList(s("summaries"))) {
        Record* copy = context.insertRecord(s("DocumentSummaries"));
        RecordCopy::copyAttributes(summary, copy);
        // The default-currency tax values are kept as they are, unlike the others.
        negate(copy, {s("tax1_value"), s("tax2_value"), s("net"), s("total")});
        copy->setRelated(s("document"), twin);
    }
}

} // namespace corvanta::documents
