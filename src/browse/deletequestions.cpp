#include "browse/deletequestions.h"

#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/record.h"

namespace corvanta::browse {

using store::FetchRequest;
using store::Record;

namespace {

int usesIn(Record* record, const char* entity, const char* condition)
{
    return record->context()->count(FetchRequest(
        QString::fromLatin1(entity), predicate::literal(condition, {QVariant::fromValue(record->ref())})));
}

} // namespace

std::optional<DeleteQuestion> DeleteQuestion::of(Record* record)
{
    if (!record)
        return std::nullopt;
    const QString& entity = record->entityName();
    const auto name = [record](const char* key) {
        return record->value(QString::fromLatin1(key)).toString();
    };
    if (entity == QLatin1String("Clients")) {
        return DeleteQuestion{tr("Are you sure you want to delete the client \"%1\"?").arg(name("full_name")),
                              tr("The chosen client is in use in %1 documents. This action cannot be undone.")
                                  .arg(usesIn(record, "Documents", "client == %@")),
                              tr("Delete Client")};
    }
    if (entity == QLatin1String("Items")) {
        return DeleteQuestion{
            tr("Are you sure you want to delete the item \"%1\"?").arg(name("name")),
            tr("The chosen item is in use in %1 document lines. This action cannot be undone.")
                .arg(usesIn(record, "DocumentRows", "item == %@")),
            tr("Delete Item")};
    }
    if (entity == QLatin1String("ToDos")) {
        return DeleteQuestion{tr("Are you sure you want to delete the ToDo \"%1\"?").arg(name("title")),
                              tr("This action cannot be undone."), tr("Delete ToDo")};
    }
    return std::nullopt;
}

} // namespace corvanta::browse
