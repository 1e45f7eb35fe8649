#pragma once

#include <QPointF>
#include <QString>
#include <optional>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::templates {

// The kinds of element a template places, as `type` of TemplateElements stores them, and the
// element the design editor inserts: its kind's defaults, the page side and section it was
// inserted in, a fresh identifier, and a place on top of every other element of the template.
class NewElement
{
public:
    static constexpr const char* kText = "text";
    static constexpr const char* kBox = "shape_box";
    static constexpr const char* kImage = "shape_image";
    static constexpr const char* kHorizontalLine = "shape_horizontal_line";
    static constexpr const char* kVerticalLine = "shape_vertical_line";

    static bool isKnownType(const QString& type);

    // Inserts an element of `type` into `templ` at the point clicked, or 10 points from the
    // section's left edge without one. Null for an unknown type.
    static store::Record* insert(store::EditingContext& context, store::Record* templ, const QString& type,
                                 int pageSide, const QString& section,
                                 std::optional<QPointF> at = std::nullopt);
};

} // namespace corvanta::templates
