#pragma once

#include <QStringList>

namespace corvanta::model {
class Record;
}

namespace corvanta::documents {

// Copies of records within one editing context.
class RecordCopy
{
public:
    // Sets every stored attribute of `source` on `target` (same entity), relationships aside.
    static void copyAttributes(const model::Record* source, model::Record* target);
    // Links `target` to the same records as `source` under each to-one key.
    static void copyLinks(const model::Record* source, model::Record* target, const QStringList& keys);
};

} // namespace corvanta::documents
