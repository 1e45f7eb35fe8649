#pragma once

#include "browse/listkind.h"

#include <QString>
#include <optional>

namespace corvanta::browse {

// The address of a detail page: the page's path, "?", the list kind's digit, "&" and the shown
// record's `identifier` ("client.html?1&9F3A…"). The record commands act on the record read
// back from it.
struct PageAddress
{
    ListKind kind = ListKind::None;
    QString identifier;

    // The page of a kind: "client.html", "item.html", "document.html", "todo.html"; the empty
    // page "no_selected.html" for None.
    static QString pageName(ListKind kind);
    // "%@?1&%@" … "%@?4&%@" with `path` and the identifier (percent-encoded where it is not
    // made of letters, digits and "-._~", as a UUID is); `path` alone for None.
    static QString of(const QString& path, ListKind kind, const QString& identifier);
    static QString of(ListKind kind, const QString& identifier)
    {
        return of(pageName(kind), kind, identifier);
    }

    // The kind and identifier of an address (a full URL too): the query must be a digit 1 to 4
    // and a percent-encoded identifier that is not blank and holds no control character, and
    // the page must be the kind's own (any folder before it). Nothing for anything else, the
    // empty page included.
    static std::optional<PageAddress> parse(const QString& address);
};

} // namespace corvanta::browse
