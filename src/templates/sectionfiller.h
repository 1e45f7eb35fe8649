#pragma once

#include "elementcatalogue.h"
#include "workingelements.h"

#include <QHash>
#include <QList>
#include <QMarginsF>
#include <QRectF>
#include <QString>

namespace corvanta::templates {

// One element placed on a page. `rect` is in page coordinates with the origin at the page's
// bottom-left corner and y growing upward: x, y = its bottom edge, width, height.
struct FilledElement
{
    store::Record* element = nullptr;
    const ElementCatalogue::Entry* entry = nullptr;
    QString text; // page numbers replaced; texts only
    QRectF rect;
};

// A section filled for one page: its elements in drawing order and the height it takes.
struct FilledSection
{
    double sectionHeight = 0;
    QList<FilledElement> elements;
};

// Fills the sections of one template: picks the elements of a section for a page side, sizes
// every text to the height it needs, pushes down the elements under a grown one and gives the
// section's height.
class SectionFiller
{
public:
    SectionFiller(ElementCatalogue& catalogue, qint64 templateType, const QMarginsF& margins,
                  const QString& heightsFirst, const QString& heightsFollowing);

    FilledSection fill(const QString& section, const WorkingElements& elements, int pageSide, int pageNumber,
                       int pageCount, double lineY);

    // The section's height stored for the page side (0 the first page's, any other the following
    // pages'), in whole points; the background is the page's height.
    int storedHeight(const QString& section, int pageSide) const;

private:
    double textHeight(const ElementCatalogue::Entry& entry, const QString& text, double width);

    ElementCatalogue& m_catalogue;
    QMarginsF m_margins;
    QHash<QString, int> m_heightsFirst;
    QHash<QString, int> m_heightsFollowing;
    QHash<const ElementCatalogue::Entry*, QHash<QString, double>> m_textHeights;
};

} // namespace corvanta::templates
