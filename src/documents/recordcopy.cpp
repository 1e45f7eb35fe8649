#include "recordcopy.h"

#include "store/record.h"

namespace corvanta::documents {

void RecordCopy::copyAttributes(const store::Record* source, store::Record* target)
{
    for (const store::AttributeDescription& a : source->entity().attributes()) {
        if (!a.transient)
            target->setValue(a.name, source->value(a.name));
    }
}

void RecordCopy::copyLinks(const store::Record* source, store::Record* target, const QStringList& keys)
{
    for (const QString& key : keys)
        target->setValue(key, source->value(key));
}

} // namespace corvanta::documents
