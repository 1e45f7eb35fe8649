#pragma once

#include "workingelements.h"

#include <QList>

namespace corvanta::templates {

// One page of a rendered document or report: the table entries placed on it. The headers,
// footers and background are shared by every page; the last page also draws the table footer.
struct DocumentPDFPage
{
    int pageIndex = 0; // from 0
    int pageCount = 0;
    QList<TableEntry> tableRows;

    int pageNumber() const { return pageIndex + 1; }
    bool isLast() const { return pageIndex == pageCount - 1; }
    // The first page's sections on the first page, the following pages' on every other.
    int pageSide() const { return pageIndex == 0 ? 0 : 1; }
};

} // namespace corvanta::templates
