#include "workingelements.h"

#include "store/record.h"

namespace corvanta::templates {

WorkingElements resetReplaceElements(const QList<store::Record*>& elements)
{
    WorkingElements working;
    working.reserve(elements.size());
    for (store::Record* element : elements) {
        WorkingElement values;
        values.element = element;
        values.identifier = element->value(QStringLiteral("identifier")).toString();
        values.section = element->value(QStringLiteral("section")).toString();
        values.type = element->value(QStringLiteral("type")).toString();
        values.format = element->value(QStringLiteral("format")).toString();
        if (!values.isShape())
            values.text = values.format;
        working.append(values);
    }
    return working;
}

} // namespace corvanta::templates
