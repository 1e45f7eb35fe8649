#include "workingelements.h"

#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"

namespace corvanta::templates {

QList<store::Record*> templateElements(store::Record* templateRecord)
{
    if (!templateRecord || !templateRecord->context())
        return {};
    const store::FetchRequest request(
        QStringLiteral("TemplateElements"),
        predicate::literal(QStringLiteral("template == %@"), {QVariant::fromValue(templateRecord->ref())}),
        {{QStringLiteral("zorder"), true}});
    return templateRecord->context()->fetch(request);
}

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
