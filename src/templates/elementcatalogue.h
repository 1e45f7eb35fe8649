#pragma once

#include "elementproperties.h"
#include "fontresolver.h"
#include "styledtext.h"

#include <QHash>
#include <memory>

namespace corvanta::store {
class Record;
}

namespace corvanta::templates {

// The properties and text style of every element met during one rendering, read from its record
// the first time it is asked for and kept (at a stable address) for the rest of the rendering.
class ElementCatalogue
{
public:
    struct Entry
    {
        ElementProperties properties;
        TextStyle style;
    };

    explicit ElementCatalogue(const QPaintDevice* device);

    const Entry& entry(store::Record* element);

private:
    FontResolver m_fonts;
    QHash<store::Record*, std::shared_ptr<const Entry>> m_entries;
};

} // namespace corvanta::templates
