#pragma once

#include <QList>
#include <QString>

namespace corvanta::store {
class Record;
}

namespace corvanta::templates {

// One element's values during one rendering pass. Filling starts from the element's stored text
// and replaces its fields step by step; the record itself is never changed.
struct WorkingElement
{
    store::Record* element = nullptr; // the `TemplateElements` record
    QString identifier;
    QString section;
    QString type;
    QString format;
    QString text; // the text being filled; stays empty for shapes

    // Lines, boxes and images ("shape_…") carry no text.
    bool isShape() const { return type.startsWith(QLatin1String("shap")); }
};

// A template's elements in drawing order (ascending `zorder`).
using WorkingElements = QList<WorkingElement>;

// The elements of `templateRecord` in drawing order: "template == %@" sorted by `zorder`.
QList<store::Record*> templateElements(store::Record* templateRecord);

// Fresh working values of `elements` (already in drawing order): each element's stored `format`
// as the text to fill, so that no pass ever works on a text that an earlier pass replaced.
WorkingElements resetReplaceElements(const QList<store::Record*>& elements);

// One entry of the table: a details set, or for a grouped report the section it is drawn as
// ("details_header", "details" or "details_footer").
struct TableEntry
{
    QString sectionType = QStringLiteral("details");
    WorkingElements values;
};

// A template filled with one document's or one report's values, ready for pagination.
struct FilledTemplate
{
    WorkingElements page;        // every element; the page sections' fields replaced
    WorkingElements tableFooter; // every element; the table footer's fields replaced
    QList<TableEntry> rows;      // in table order
};

} // namespace corvanta::templates
