#include "elementcatalogue.h"

#include "store/record.h"

namespace corvanta::templates {

ElementCatalogue::ElementCatalogue(const QPaintDevice* device)
    : m_fonts(device)
{}

const ElementCatalogue::Entry& ElementCatalogue::entry(store::Record* element)
{
    const auto found = m_entries.constFind(element);
    if (found != m_entries.constEnd())
        return **found;
    auto made = std::make_shared<Entry>();
    if (element)
        made->properties = ElementProperties::read(*element);
    const ElementProperties& p = made->properties;
    if (p.isText()) {
        made->style.font = m_fonts.font(p.fontName, p.fontSize);
        made->style.font.setUnderline(p.underline);
        made->style.font.setStrikeOut(p.strikethrough);
        if (p.fontColor.isValid())
            made->style.color = p.fontColor;
        made->style.background = p.backgroundColor;
        made->style.alignment = p.alignment;
    }
    m_entries.insert(element, made);
    return *made;
}

} // namespace corvanta::templates
