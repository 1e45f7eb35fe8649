#include "todosaving.h"

#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/storeerror.h"
#include "support/uuid.h"

namespace corvanta::tasks {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

ToDoSaving::ToDoSaving(Clock clock)
    : m_clock(clock ? std::move(clock) : Clock([] { return QDateTime::currentDateTime(); }))
{}

void ToDoSaving::apply(Record* todo) const
{
    if (todo->value(s("title")).toString().isEmpty())
        todo->setValue(s("title"), tr("No Name"));
    if (todo->value(s("created")).isNull())
        todo->setValue(s("created"), m_clock());
    if (todo->value(s("repeat_frequency")).isNull())
        todo->setValue(s("repeat_frequency"), 1);
    // The calendar, the detail pages and the export name a to-do by its identifier.
    if (todo->value(s("identifier")).toString().isEmpty())
        todo->setValue(s("identifier"), support::UUID());
    if (todo->value(s("done")).toBool())
        return;
    QVariantList tags;
    for (const Record* tag : todo->relatedList(s("tags"))) {
        if (tag->value(s("subtype")).isNull())
            tags << QVariant::fromValue(tag->ref());
    }
    if (const Record* pending = todo->context()->fetchFirst(
            store::FetchRequest(s("Categories"), predicate::literal("type == 4 && subtype == 0", {}))))
        tags << QVariant::fromValue(pending->ref());
    todo->setValue(s("tags"), tags);
}

bool ToDoSaving::save(Record* todo, store::StoreError* error) const
{
    apply(todo);
    store::EditingContext* context = todo->context();
    if (context->save(error))
        return true;
    context->rollback();
    return false;
}

} // namespace corvanta::tasks
