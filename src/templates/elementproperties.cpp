#include "elementproperties.h"

#include "store/record.h"

namespace corvanta::templates {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

ElementProperties ElementProperties::read(const store::Record& element)
{
    const auto number = [&](const char* key) { return element.value(s(key)).toDouble(); };
    const auto integer = [&](const char* key) { return element.value(s(key)).toInt(); };
    const auto flag = [&](const char* key) { return element.value(s(key)).toBool(); };
    const auto colour = [&](const char* key) { return element.value(s(key)).value<QColor>(); };

    ElementProperties p;
    p.type = element.value(s("type")).toString();
    p.section = element.value(s("section")).toString();
    p.format = element.value(s("format")).toString();
    p.pageSide = integer("page_side");
    p.zorder = element.value(s("zorder")).toLongLong();
    p.designed = QRectF(number("position_x"), number("position_y"), number("position_width"),
                        number("position_height"));
    p.alignment = integer("alignment");
    p.fontName = element.value(s("font_name")).toString();
    p.fontSize = number("font_size");
    p.fontColor = colour("font_color");
    p.underline = integer("font_underline") != 0;
    p.strikethrough = integer("font_strikethrough") != 0;
    p.backgroundColor = colour("background_color");
    p.paddingLeft = number("text_padding_left");
    p.paddingTop = number("text_padding_top");
    p.paddingRight = number("text_padding_right");
    p.paddingBottom = number("text_padding_bottom");
    p.borderColor = colour("border_color");
    p.borderLineWidth = number("border_line_width");
    p.borderStyle = integer("border_style");
    p.borderLeft = flag("border_left_show");
    p.borderTop = flag("border_top_show");
    p.borderRight = flag("border_right_show");
    p.borderBottom = flag("border_bottom_show");
    // An image without a stored opacity is drawn opaque.
    const QVariant opacity = element.value(s("opacity"));
    p.opacity = opacity.isNull() ? 1.0 : opacity.toDouble();
    return p;
}

bool ElementProperties::belongsTo(const QString& askedSection, int askedPageSide) const
{
    if (section != askedSection)
        return false;
    return pageSide == 2 || pageSide == askedPageSide || askedSection.contains(QLatin1String("details")) ||
           askedSection == QLatin1String("table_footer");
}

} // namespace corvanta::templates
