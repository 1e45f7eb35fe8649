#include "browse/recordmenus.h"

#include "browse/tagchoices.h"
#include "documents/savefailure.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/store.h"

namespace corvanta::browse {

using predicate::RecordRef;
using store::FetchRequest;
using store::Record;
using store::SortDescriptor;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QList<Record*> byName(store::EditingContext& context, const char* entity,
                      const predicate::Predicate& condition)
{
    return context.fetch(FetchRequest(s(entity), condition, {SortDescriptor::localized(s("name"))}));
}

} // namespace

RecordMenus::RecordMenus(store::Store& store, support::Prompter& prompter, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_prompter(prompter)
{}

QList<RecordMenus::Choice> RecordMenus::designTemplates(const RecordRef& documentRef)
{
    std::unique_ptr<store::EditingContext> context = m_store.newContext();
    const Record* document = context->fetchRecord(s("Documents"), documentRef);
    if (!document)
        return {};
    const QVariant current = document->value(s("template"));
    QList<Choice> choices;
    for (const Record* designTemplate :
         byName(*context, "Templates", predicate::literal("type == %@", {document->value(s("type"))}))) {
        choices << Choice{designTemplate->ref(), designTemplate->value(s("name")).toString(),
                          current == QVariant::fromValue(designTemplate->ref())};
    }
    return choices;
}

bool RecordMenus::setDesignTemplate(const RecordRef& documentRef, const RecordRef& templateRef)
{
    std::unique_ptr<store::EditingContext> context = m_store.newContext();
    Record* document = context->fetchRecord(s("Documents"), documentRef);
    Record* designTemplate = context->fetchRecord(s("Templates"), templateRef);
    if (!document || !designTemplate ||
        designTemplate->value(s("type")).toLongLong() != document->value(s("type")).toLongLong())
        return false;
    document->setRelated(s("template"), designTemplate);
    return save(*context);
}

QList<RecordMenus::Choice> RecordMenus::tags(const RecordRef& selectedRef)
{
    std::unique_ptr<store::EditingContext> context = m_store.newContext();
    Record* selected = context->fetchRecord(selectedRef.entity, selectedRef);
    if (!selected)
        return {};
    QList<Choice> choices;
    for (const TagChoices::Row& row : TagChoices(selected).rows())
        choices << Choice{row.tag->ref(), row.name, row.selected};
    return choices;
}

bool RecordMenus::toggleTag(const RecordRef& tagRef, const QList<RecordRef>& selection)
{
    if (selection.isEmpty())
        return false;
    std::unique_ptr<store::EditingContext> context = m_store.newContext();
    Record* tag = context->fetchRecord(s("Categories"), tagRef);
    QList<Record*> records;
    for (const RecordRef& ref : selection) {
        Record* record = context->fetchRecord(ref.entity, ref);
        if (!record || !tag)
            return false;
        records << record;
    }
    const bool put = !records.first()->relatedList(s("tags")).contains(tag);
    for (Record* record : records) {
        if (!TagChoices(record).setSelected(tag, put))
            return false;
    }
    return save(*context);
}

bool RecordMenus::save(store::EditingContext& context)
{
    return documents::SaveFailure::save(context, m_prompter);
}

} // namespace corvanta::browse
