#include "sectionfiller.h"

#include "templatepage.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace corvanta::templates {

namespace {

QHash<QString, int> wholeHeights(qint64 type, int pageSide, const QString& heights)
{
    QHash<QString, int> whole;
    for (const TemplatePage::Band& band : TemplatePage::layout(type, pageSide, heights))
        whole.insert(band.section, static_cast<int>(std::trunc(band.height))); // fractions dropped
    return whole;
}

QString pageNumbersReplaced(QString text, int pageNumber, int pageCount)
{
    if (!text.contains(QLatin1String("@page_number")))
        return text;
    // The total first: "@page_number" is the start of "@page_number_total".
    text.replace(QLatin1String("@page_number_total"), QString::number(pageCount));
    text.replace(QLatin1String("@page_number"), QString::number(pageNumber));
    return text;
}

// Whether `below` reaches into the horizontal extent of `above`: one of its edges lies inside it
// or it spans it. Elements that only touch at an edge stand side by side.
bool overlapsHorizontally(const QRectF& above, const QRectF& below)
{
    const double aLeft = above.left();
    const double aRight = above.right();
    const double bLeft = below.left();
    const double bRight = below.right();
    const bool leftInside = bLeft >= aLeft && bLeft < aRight;
    const bool rightInside = bRight > aLeft && bRight <= aRight;
    const bool spans = bLeft <= aLeft && bRight >= aRight;
    return leftInside || rightInside || spans;
}

} // namespace

SectionFiller::SectionFiller(ElementCatalogue& catalogue, qint64 templateType, const QMarginsF& margins,
                             const QString& heightsFirst, const QString& heightsFollowing)
    : m_catalogue(catalogue)
    , m_margins(margins)
    , m_heightsFirst(wholeHeights(templateType, TemplatePage::FirstPage, heightsFirst))
    , m_heightsFollowing(wholeHeights(templateType, TemplatePage::FollowingPages, heightsFollowing))
{}

int SectionFiller::storedHeight(const QString& section, int pageSide) const
{
    if (section == QLatin1String("background"))
        return static_cast<int>(TemplatePage::kHeight);
    return (pageSide == TemplatePage::FirstPage ? m_heightsFirst : m_heightsFollowing).value(section);
}

double SectionFiller::textHeight(const ElementCatalogue::Entry& entry, const QString& text, double width)
{
    QHash<QString, double>& heights = m_textHeights[&entry];
    const auto found = heights.constFind(text);
    if (found != heights.constEnd())
        return *found;
    const double height = StyledText(entry.style, text).height(width);
    heights.insert(text, height);
    return height;
}

FilledSection SectionFiller::fill(const QString& section, const WorkingElements& elements, int pageSide,
                                  int pageNumber, int pageCount, double lineY)
{
    FilledSection filled;
    filled.elements.reserve(elements.size());
    const double left = section == QLatin1String("background") ? 0 : m_margins.left();
    double lowestDesigned = 0; // B1
    for (const WorkingElement& working : elements) {
        const ElementCatalogue::Entry& entry = m_catalogue.entry(working.element);
        const ElementProperties& p = entry.properties;
        if (!p.belongsTo(section, pageSide))
            continue;
        FilledElement element{working.element, &entry, {}, {}};
        const double width = p.designed.width();
        double height = p.designed.height();
        if (p.isText()) {
            element.text = pageNumbersReplaced(working.text, pageNumber, pageCount);
            height = p.paddingTop + p.paddingBottom +
                     textHeight(entry, element.text, width - p.paddingLeft - p.paddingRight);
        }
        element.rect = QRectF(p.designed.x() + left, lineY - (p.designed.y() + height), width, height);
        lowestDesigned = std::max(lowestDesigned, p.designed.y() + height);
        filled.elements.append(element);
    }
    // Drawn in ascending `zorder`, as the template's elements are fetched; kept so whatever
    // order a caller hands them in.
    const auto byZorder = [](const FilledElement& a, const FilledElement& b) {
        return a.entry->properties.zorder < b.entry->properties.zorder;
    };
    if (!std::is_sorted(filled.elements.cbegin(), filled.elements.cend(), byZorder))
        std::stable_sort(filled.elements.begin(), filled.elements.end(), byZorder);

    // Push-down: an element under one that grew keeps the distance the template gave them.
    QList<qsizetype> byTop(filled.elements.size());
    std::iota(byTop.begin(), byTop.end(), 0);
    std::stable_sort(byTop.begin(), byTop.end(), [&](qsizetype a, qsizetype b) {
        return filled.elements[a].entry->properties.designed.y() <
               filled.elements[b].entry->properties.designed.y();
    });
    for (qsizetype i = 0; i < byTop.size(); ++i) {
        const FilledElement& above = filled.elements[byTop[i]];
        const QRectF& designedAbove = above.entry->properties.designed;
        for (qsizetype j = i + 1; j < byTop.size(); ++j) {
            FilledElement& below = filled.elements[byTop[j]];
            if (!(above.rect.y() < below.rect.y() + below.rect.height()) ||
                !overlapsHorizontally(above.rect, below.rect))
                continue;
            const double gap = below.entry->properties.designed.y() - designedAbove.bottom();
            below.rect.moveTop(above.rect.y() - gap - below.rect.height());
        }
    }

    double lowest = 0; // B2
    for (const FilledElement& element : std::as_const(filled.elements))
        lowest = std::max(lowest, lineY - element.rect.y());
    const int stored = storedHeight(section, pageSide);
    filled.sectionHeight = stored > lowestDesigned ? lowest + (stored - lowestDesigned) : lowest;
    return filled;
}

} // namespace corvanta::templates
