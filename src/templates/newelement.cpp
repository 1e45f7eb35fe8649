#include "newelement.h"

#include "store/editingcontext.h"
#include "store/record.h"
#include "support/uuid.h"

#include <QSizeF>
#include <algorithm>

namespace corvanta::templates {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// A size to start from, which the user then drags to what the design needs.
QSizeF initialSize(const QString& type)
{
    if (type == QLatin1String(NewElement::kHorizontalLine))
        return {100, 0};
    if (type == QLatin1String(NewElement::kVerticalLine))
        return {0, 100};
    if (type == QLatin1String(NewElement::kText))
        return {150, 20};
    return {100, 100};
}

} // namespace

bool NewElement::isKnownType(const QString& type)
{
    for (const char* known : {kText, kBox, kImage, kHorizontalLine, kVerticalLine}) {
        if (type == QLatin1String(known))
            return true;
    }
    return false;
}

store::Record* NewElement::insert(store::EditingContext& context, store::Record* templ, const QString& type,
                                  int pageSide, const QString& section, std::optional<QPointF> at)
{
    if (!isKnownType(type))
        return nullptr;
    qint64 topmost = 0;
    for (const store::Record* element : templ->relatedList(s("template_elements")))
        topmost = std::max(topmost, element->value(s("zorder")).toLongLong());

    const QPointF position = at.value_or(QPointF(10, 10));
    const QSizeF size = initialSize(type);
    QVariantMap values{
        {s("identifier"), support::UUID()},
        {s("type"), type},
        {s("page_side"), pageSide},
        {s("section"), section},
        {s("zorder"), topmost + 1},
        {s("position_x"), position.x()},
        {s("position_y"), position.y()},
        {s("position_width"), size.width()},
        {s("position_height"), size.height()},
    };
    if (type == QLatin1String(kText)) {
        values.insert({{s("format"), QString()},
                       {s("font_family"), s("Helvetica")},
                       {s("font_name"), s("Helvetica")},
                       {s("font_member"), s("Regular")},
                       {s("font_size"), 12}});
    } else if (type == QLatin1String(kBox)) {
        values.insert({{s("border_line_width"), 1},
                       {s("border_left_show"), true},
                       {s("border_top_show"), true},
                       {s("border_right_show"), true},
                       {s("border_bottom_show"), true}});
    } else if (type == QLatin1String(kImage)) {
        values.insert({{s("opacity"), 1}, {s("scale_proportionally"), true}});
    } else {
        values.insert(s("border_line_width"), 1);
    }
    store::Record* element = context.insertRecord(s("TemplateElements"), values);
    element->setRelated(s("template"), templ);
    return element;
}

} // namespace corvanta::templates
