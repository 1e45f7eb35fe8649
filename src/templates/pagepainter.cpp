#include "pagepainter.h"

#include "templatepage.h"

namespace corvanta::templates {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

PagePainter::PagePainter(SectionFiller& filler, ElementPainter& elements, double topMargin,
                         bool groupedEntries)
    : m_filler(filler)
    , m_elements(elements)
    , m_topMargin(topMargin)
    , m_groupedEntries(groupedEntries)
{}

void PagePainter::paint(QPainter& painter, const DocumentPDFPage& page, const FilledTemplate& filled)
{
    drawSection(painter, s("background"), filled.page, page, TemplatePage::kHeight);

    double lineY = TemplatePage::kHeight - m_topMargin;
    lineY -= drawSection(painter, s("document_header"), filled.page, page, lineY);
    lineY -= drawSection(painter, s("table_header"), filled.page, page, lineY);
    for (const TableEntry& entry : page.tableRows) {
        const QString section = m_groupedEntries ? entry.sectionType : s("details");
        lineY -= drawSection(painter, section, entry.values, page, lineY);
    }
    if (page.isLast())
        drawSection(painter, s("table_footer"), filled.tableFooter, page, lineY);

    // The footer's top lies at its own height above the page's bottom edge: filled at 0 and
    // lifted by its height.
    FilledSection footer = m_filler.fill(s("document_footer"), filled.page, page.pageSide(),
                                         page.pageNumber(), page.pageCount, 0);
    for (FilledElement& element : footer.elements)
        element.rect.translate(0, footer.sectionHeight);
    drawElements(painter, footer);
}

double PagePainter::drawSection(QPainter& painter, const QString& section, const WorkingElements& elements,
                                const DocumentPDFPage& page, double lineY)
{
    const FilledSection filled =
        m_filler.fill(section, elements, page.pageSide(), page.pageNumber(), page.pageCount, lineY);
    drawElements(painter, filled);
    return filled.sectionHeight;
}

void PagePainter::drawElements(QPainter& painter, const FilledSection& section)
{
    for (const FilledElement& element : section.elements)
        m_elements.draw(painter, element);
}

} // namespace corvanta::templates
