#include "recordcopy.h"

#include "model/record.h"

namespace corvanta::documents {

void RecordCopy::copyAttributes(const model::Record* source, model::Record* target)
{
    for (const model::AttributeDescription& a : source->entity().attributes()) {
        if (!a.transient)
            target->setValue(a.name, source->value(a.name));
    }
}

void RecordCopy::copyLinks(const model::Record* source, model::Record* target, const QStringList& keys)
{
    for (const QString& key : keys)
        target->setValue(key, source->value(key));
}

} // namespace corvanta::documents
