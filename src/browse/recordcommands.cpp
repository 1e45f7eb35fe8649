#include "browse/recordcommands.h"

#include "browse/deletequestions.h"
#include "documents/documentcanceller.h"
#include "documents/documentcopier.h"
#include "documents/documentdeleter.h"
#include "documents/recordcopy.h"
#include "documents/savefailure.h"
#include "documents/stockcalculator.h"
#include "model/companycache.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "support/prompter.h"
#include "support/uuid.h"

namespace corvanta::browse {

using documents::RecordCopy;
using predicate::RecordRef;
using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

bool is(const RecordRef& ref, const char* entity)
{
    return ref.entity == QLatin1String(entity);
}

void appendCopy(Record* record, const QString& key)
{
    record->setValue(key, RecordCommands::tr("%1 Copy").arg(record->value(key).toString()));
}

// Copies the records a client owns (addresses, contacts) and which of them is its default.
void copyOwned(Record* original, Record* copy, const char* list, const char* entity, const char* defaultKey)
{
    const Record* defaultRecord = original->related(s(defaultKey));
    for (const Record* owned : original->relatedList(s(list))) {
        Record* ownedCopy = copy->context()->insertRecord(s(entity));
        RecordCopy::copyAttributes(owned, ownedCopy);
        ownedCopy->setRelated(s("client"), copy);
        if (owned == defaultRecord)
            copy->setRelated(s(defaultKey), ownedCopy);
    }
}

} // namespace

RecordCommands::RecordCommands(store::Store& store, support::Prompter& prompter, Clock clock, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_prompter(prompter)
    , m_clock(clock ? std::move(clock) : Clock([] { return QDateTime::currentDateTime(); }))
{}

std::optional<RecordRef> RecordCommands::lookUp(store::EditingContext& context, ListKind kind,
                                                const QString& identifier)
{
    if (kind == ListKind::None || identifier.isEmpty())
        return std::nullopt;
    const Record* record = context.fetchFirst(
        store::FetchRequest(ListKinds::entity(kind), predicate::literal("identifier == %@", {identifier})));
    return record ? std::optional<RecordRef>(record->ref()) : std::nullopt;
}

bool RecordCommands::deleteRecord(const RecordRef& record)
{
    if (is(record, "Documents"))
        return documents::DocumentDeleter(m_store, m_prompter).deleteDocument(record);
    return deleteAfterQuestion(record);
}

bool RecordCommands::deleteAfterQuestion(const RecordRef& ref)
{
    std::unique_ptr<store::EditingContext> context = m_store.newContext();
    Record* record = context->fetchRecord(ref.entity, ref);
    const std::optional<DeleteQuestion> question = DeleteQuestion::of(record);
    if (!question)
        return false;
    if (m_prompter.alert(question->message, question->informativeText,
                         {question->button, DeleteQuestion::cancelButton()}) != question->button)
        return false;
    context->deleteRecord(record);
    return save(*context);
}

std::optional<RecordRef> RecordCommands::cancelDocument(const RecordRef& document)
{
    if (!is(document, "Documents"))
        return std::nullopt;
    return documents::DocumentCanceller(m_store, m_prompter, m_clock).cancel(document);
}

std::optional<RecordRef> RecordCommands::duplicate(const RecordRef& ref)
{
    if (is(ref, "Documents"))
        return documents::DocumentCopier(m_store, m_prompter, m_clock).duplicate(ref);
    if (!is(ref, "Clients") && !is(ref, "Items") && !is(ref, "ToDos"))
        return std::nullopt;

    std::unique_ptr<store::EditingContext> context = m_store.newContext();
    Record* original = context->fetchRecord(ref.entity, ref);
    if (!original)
        return std::nullopt;
    Record* copy = context->insertRecord(ref.entity);
    RecordCopy::copyAttributes(original, copy);
    RecordCopy::copyLinks(original, copy, {s("tags")});
    copy->setValue(s("identifier"), support::UUID());
    if (is(ref, "Clients"))
        copyClient(original, copy);
    else if (is(ref, "Items"))
        copyItem(original, copy);
    else
        RecordCopy::copyLinks(original, copy, {s("client"), s("item")});
    if (copy->entity().attribute(s("created")))
        copy->setValue(s("created"), m_clock());
    if (!save(*context))
        return std::nullopt;
    return copy->ref();
}

void RecordCommands::copyClient(Record* original, Record* copy)
{
    RecordCopy::copyLinks(original, copy,
                          {s("default_payment_type"), s("default_bank"), s("default_due_day")});
    copyOwned(original, copy, "addresses", "Addresses", "default_address");
    copyOwned(original, copy, "contacts", "Contacts", "default_contact");
    // The full name is derived from the name fields: " Copy" goes to the field shown last.
    if (copy->value(s("type")).toLongLong() <= 1) {
        appendCopy(copy, s("company_name"));
        return;
    }
    const bool lastNameFirst =
        model::CompanyCache::of(m_store).value(s("first_name_position")).toLongLong() != 0;
    QString shownLast = lastNameFirst ? s("first_name") : s("last_name");
    if (copy->value(shownLast).toString().trimmed().isEmpty())
        shownLast = lastNameFirst ? s("last_name") : s("first_name");
    appendCopy(copy, shownLast);
}

void RecordCommands::copyItem(Record* original, Record* copy)
{
    RecordCopy::copyLinks(original, copy, {s("unit"), s("tax")});
    appendCopy(copy, s("name"));
    // A new item has neither deliveries nor sales yet.
    documents::StockCalculator(*copy->context()).updateItemCurrentStock(copy);
}

bool RecordCommands::save(store::EditingContext& context)
{
    return documents::SaveFailure::save(context, m_prompter);
}

} // namespace corvanta::browse
