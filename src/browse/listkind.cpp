#include "browse/listkind.h"

#include "format/relativedatepredicates.h"
#include "predicate/parser.h"
#include "store/record.h"

namespace corvanta::browse {

using predicate::Predicate;
using store::SortDescriptor;

namespace {
QString s(const char* text)
{
    return QString::fromLatin1(text);
}
} // namespace

ListKind ListKinds::ofType(qint64 categoryType)
{
    const qint64 kind = categoryType < 0 ? -categoryType : categoryType;
    return kind >= 1 && kind <= 4 ? ListKind(kind) : ListKind::None;
}

ListKind ListKinds::ofCategory(const store::Record* category)
{
    return category ? ofType(category->value(s("type")).toLongLong()) : ListKind::None;
}

QString ListKinds::entity(ListKind kind)
{
    switch (kind) {
    case ListKind::Clients:
        return s("Clients");
    case ListKind::Items:
        return s("Items");
    case ListKind::Documents:
        return s("Documents");
    case ListKind::ToDos:
        return s("ToDos");
    case ListKind::None:
        break;
    }
    return {};
}

ListKind ListKinds::ofEntity(const QString& entityName)
{
    for (ListKind kind : all()) {
        if (entity(kind) == entityName)
            return kind;
    }
    return ListKind::None;
}

QList<SortDescriptor> ListKinds::defaultSort(ListKind kind)
{
    switch (kind) {
    case ListKind::Clients:
        return {SortDescriptor::localized(s("full_name"))};
    case ListKind::Items:
        return {SortDescriptor::localized(s("name"))};
    case ListKind::Documents:
        return {SortDescriptor{s("date_creation"), false}, SortDescriptor{s("created"), false}};
    case ListKind::ToDos:
        return {SortDescriptor{s("date_start"), false}};
    case ListKind::None:
        break;
    }
    return {};
}

const QList<ListKind>& ListKinds::all()
{
    static const QList<ListKind> kinds{ListKind::Clients, ListKind::Items, ListKind::Documents,
                                       ListKind::ToDos};
    return kinds;
}

std::optional<store::FetchRequest> CategoryFetch::of(store::Record* category, const QDateTime& now,
                                                     QString* error)
{
    const ListKind kind = ListKinds::ofCategory(category);
    if (kind == ListKind::None)
        return std::nullopt;
    store::FetchRequest request(ListKinds::entity(kind), {}, ListKinds::defaultSort(kind));
    if (category->value(s("type")).toLongLong() >= 0) {
        request.predicate =
            Predicate::compare(s("tags"), Predicate::Operator::Equal, QVariant::fromValue(category->ref()),
                               {}, Predicate::Modifier::Any);
        return request;
    }
    const QString text = category->value(s("predicate")).toString().trimmed();
    if (text.isEmpty())
        return request; // a smart folder without a condition lists every record of its kind
    predicate::ParseError parseError;
    std::optional<Predicate> condition = predicate::Parser::parse(text, {}, &parseError);
    if (condition && kind == ListKind::Documents)
        condition = format::replaceRelativeDates(condition, now);
    if (!condition) {
        if (error)
            *error = parseError.message();
        return std::nullopt;
    }
    request.predicate = *condition;
    return request;
}

} // namespace corvanta::browse
