#include "documentcopier.h"

#include "documentnumbering.h"
#include "documenttags.h"
#include "documenttypes.h"
#include "draftnumber.h"
#include "duedate.h"
#include "format/relativedates.h"
#include "model/companyrecord.h"
#include "model/documentrowsrecord.h"
#include "recordcopy.h"
#include "savefailure.h"
#include "stockcalculator.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "support/uuid.h"

namespace corvanta::documents {

using model::CompanyRecord;
using model::DocumentRowsRecord;

using store::Record;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

const QStringList kDocumentLinks = {s("client"),           s("payment_type"), s("bank"), s("currency"),
                                    s("default_currency"), s("template"),     s("tags")};

} // namespace

DocumentCopier::DocumentCopier(store::Store& store, support::Prompter& prompter, Clock clock, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_prompter(prompter)
    , m_clock(std::move(clock))
{}

std::optional<predicate::RecordRef> DocumentCopier::duplicate(const predicate::RecordRef& ref)
{
    std::unique_ptr<store::EditingContext> context = m_store.newContext();
    Record* original = context->fetchRecord(s("Documents"), ref);
    if (!original)
        return std::nullopt;

    Record* copy = context->insertRecord(s("Documents"));
    RecordCopy::copyAttributes(original, copy);
    RecordCopy::copyLinks(original, copy, kDocumentLinks);
    const QDateTime now = m_clock();
    const QDateTime today = format::dates::midday(format::dates::today(now));
    copy->setValue(s("identifier"), support::UUID());
    copy->setValue(s("created"), now);
    copy->setValue(s("date_creation"), today);
    copy->setValue(s("date_completion"), today);
    const Record* client = copy->related(s("client"));
    const Record* dueDay = client ? client->related(s("default_due_day")) : nullptr;
    if (!dueDay)
        dueDay = CompanyRecord::defaultRecord(*context, s("default_due_day"));
    if (const auto due = DueDate::from(dueDay, now))
        copy->setValue(s("date_due"), *due);

    const qint64 type = copy->value(s("type")).toLongLong();
    if (type == DocumentTypes::Invoice && original->value(s("draft")).toBool()) {
        DraftNumber::apply(copy, now);
    } else {
        DocumentNumbering numbering(*context, m_prompter);
        const DocumentNumbering::NextNumber next = numbering.nextNumberByType(type, today, true);
        copy->setValue(s("number"), next.nextNumber);
        copy->setValue(s("number_formatted"), next.formattedNumber);
        copy->setValue(s("draft"), false);
    }
    DocumentTags::update(copy);

    for (const Record* row : DocumentRowsRecord::displayOrder(original)) {
        Record* rowCopy = context->insertRecord(s("DocumentRows"));
        RecordCopy::copyAttributes(row, rowCopy);
        RecordCopy::copyLinks(row, rowCopy, {s("item"), s("tax"), s("unit")});
        rowCopy->setRelated(s("document"), copy);
    }
    for (const Record* summary : original->relatedList(s("summaries"))) {
        Record* summaryCopy = context->insertRecord(s("DocumentSummaries"));
        RecordCopy::copyAttributes(summary, summaryCopy);
        summaryCopy->setRelated(s("document"), copy);
    }

    StockCalculator(*context).updateItemsCurrentStock(StockCalculator::itemsOf(copy), {copy});

    store::StoreError error;
    if (!context->save(&error)) {
        SaveFailure::show(m_prompter, error);
        return std::nullopt;
    }
    Q_EMIT countsChanged();
    return copy->ref();
}

} // namespace corvanta::documents
