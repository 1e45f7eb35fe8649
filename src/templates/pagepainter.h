#pragma once

#include "documentpdfpage.h"
#include "elementpainter.h"
#include "sectionfiller.h"

class QPainter;

namespace corvanta::templates {

// Draws one page in its order: the background over the whole page, then from the top margin
// down the document header, the table header and the page's rows, on the last page the table
// footer right under the last row, and the document footer flush with the page's bottom edge.
class PagePainter
{
public:
    PagePainter(SectionFiller& filler, ElementPainter& elements, double topMargin, bool groupedEntries);

    void paint(QPainter& painter, const DocumentPDFPage& page, const FilledTemplate& filled);

private:
    // Fills a section for the page, draws its elements in drawing order and returns its height.
    double drawSection(QPainter& painter, const QString& section, const WorkingElements& elements,
                       const DocumentPDFPage& page, double lineY);
    void drawElements(QPainter& painter, const FilledSection& section);

    SectionFiller& m_filler;
    ElementPainter& m_elements;
    double m_topMargin;
    bool m_groupedEntries;
};

} // namespace corvanta::templates
