#pragma once

#include "documentpdfpage.h"

#include <functional>

namespace corvanta::templates {

// Distributes the table entries over pages. Every entry, and after them the table footer, is
// added to the current page while the used height stays below the available height; an entry
// that reaches it starts the next page. The table footer is then taken off the last page's
// entries (that page draws it separately), so a footer that did not fit leaves a last page
// without rows.
class Paginator
{
public:
    struct Heights
    {
        double availableFirst = 0;     // for entries on the first page
        double availableFollowing = 0; // on every later page
        int tableFooter = 0;           // the same on every page
        // An entry's height on the page with the given index.
        std::function<int(const TableEntry& entry, int pageIndex)> entry;
    };

    static QList<DocumentPDFPage> paginate(const QList<TableEntry>& rows, const Heights& heights);
};

} // namespace corvanta::templates
