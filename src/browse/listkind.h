#pragma once

#include "store/fetchrequest.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <optional>

namespace corvanta::store {
class Record;
}

namespace corvanta::browse {

// What a sidebar node lists: the absolute value of a category's `type`. Groups and plain
// folders (type 0) list nothing.
enum class ListKind { None = 0, Clients = 1, Items = 2, Documents = 3, ToDos = 4 };

class ListKinds
{
public:
    static ListKind ofType(qint64 categoryType);
    static ListKind ofCategory(const store::Record* category);
    // `Clients`, `Items`, `Documents` or `ToDos`; empty for None.
    static QString entity(ListKind kind);
    // The kind an entity's records make; None for any other entity.
    static ListKind ofEntity(const QString& entity);
    // The list's order when nothing else is chosen: names compared in the user's locale
    // ignoring case, documents newest first (then by creation), to-dos by start, newest first.
    static QList<store::SortDescriptor> defaultSort(ListKind kind);
    static const QList<ListKind>& all();
};

// The records a category selects. A smart folder (negative type) selects by its own stored
// predicate, which for documents has its relative dates ("@this_month") fixed at `now`; a tag
// or folder selects the records that carry it ("ANY tags == category"). Nothing for a group,
// and nothing when a smart folder's predicate cannot be read (`error` says why).
class CategoryFetch
{
public:
    static std::optional<store::FetchRequest> of(store::Record* category,
                                                 const QDateTime& now = QDateTime::currentDateTime(),
                                                 QString* error = nullptr);
};

} // namespace corvanta::browse
