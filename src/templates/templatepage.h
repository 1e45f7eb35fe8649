#pragma once

#include <QCoreApplication>
#include <QList>
#include <QMarginsF>
#include <QString>
#include <QStringList>

namespace corvanta::store {
class Record;
}

namespace corvanta::templates {

// The page every template describes, an A4 portrait page in points, and how a template divides
// it: the unit of its margins, its three page sides and the sections stacked on each.
class TemplatePage
{
    Q_DECLARE_TR_FUNCTIONS(TemplatePage)

public:
    static constexpr double kWidth = 595;
    static constexpr double kHeight = 842;

    enum PageSide {
        FirstPage = 0,
        FollowingPages = 1,
        Background = 2,
    };

    // One section of a page side: where it starts below the top of the first section, and its
    // height, in points.
    struct Band
    {
        QString section;
        double top = 0;
        double height = 0;

        bool operator==(const Band&) const = default;
    };

    // Points per unit of the margins: 0 centimetres (28.35, rounded on purpose), 1 inches, 2
    // points, 3 picas; any other code counts as points.
    static double pointsPerUnit(qint64 unit);
    // The ruler's label of a unit: "cm", "in", "pt", "pc"; "pt" for any other code.
    static QString unitLabel(qint64 unit);
    // The template's four margins in points (`calculated_margins`).
    static QMarginsF calculatedMargins(const store::Record& templ);
    // The width of a page side's sections: the page between the margins, or the whole page for
    // the background.
    static double sectionWidth(int pageSide, const QMarginsF& margins);

    // The sections of a template type in their order: five, or seven for the grouped report.
    static QStringList sections(qint64 type);
    // "Document Header" ... "Background"; empty for an unknown name.
    static QString caption(const QString& section);
    // The heights a new template of the type starts with, on both page sides.
    static QString defaultHeights(qint64 type);
    // The bands of a page side from its stored heights ("100,100,..."): the pieces are read as
    // numbers in the order of the type's sections (a piece that is no number counts 0, a
    // missing one 0). The background is one band of the page's height whatever is stored.
    static QList<Band> layout(qint64 type, int pageSide, const QString& heights);
    // The editor's name of a section: " Section 2 - Table Header", or on the following pages
    // " Following Page | Section 2 - Table Header"; `number` counts from 1.
    static QString editorLabel(int pageSide, int number, const QString& section);
};

} // namespace corvanta::templates
