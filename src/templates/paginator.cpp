#include "paginator.h"

namespace corvanta::templates {

QList<DocumentPDFPage> Paginator::paginate(const QList<TableEntry>& rows, const Heights& heights)
{
    // The table footer is the last entry; -1 stands for it among the rows' indexes.
    constexpr qsizetype kTableFooter = -1;
    const auto heightOf = [&](qsizetype entry, int pageIndex) {
        return entry == kTableFooter ? heights.tableFooter : heights.entry(rows[entry], pageIndex);
    };

    QList<QList<qsizetype>> pages;
    QList<qsizetype> current;
    int pageIndex = 0;
    double used = 0;
    for (qsizetype entry = 0; entry <= rows.size(); ++entry) {
        const qsizetype index = entry == rows.size() ? kTableFooter : entry;
        const double available = pageIndex == 0 ? heights.availableFirst : heights.availableFollowing;
        used += heightOf(index, pageIndex);
        current.append(index);
        if (used >= available) {
            current.removeLast();
            pages.append(current);
            ++pageIndex;
            current = {index};
            used = heightOf(index, pageIndex); // measured again for the new page
        }
    }
    if (!current.isEmpty())
        pages.append(current);

    QList<DocumentPDFPage> result;
    result.reserve(pages.size());
    for (qsizetype p = 0; p < pages.size(); ++p) {
        DocumentPDFPage page;
        page.pageIndex = static_cast<int>(p);
        page.pageCount = static_cast<int>(pages.size());
        for (qsizetype index : std::as_const(pages[p])) {
            if (index != kTableFooter)
                page.tableRows.append(rows[index]);
        }
        result.append(page);
    }
    return result;
}

} // namespace corvanta::templates
