#pragma once

#include <QStringList>

namespace corvanta::store {
class Record;
}

namespace corvanta::documents {

// Copies of records within one editing context.
class RecordCopy
{
public:
    // Sets every stored attribute of `source` on `target` (same entity), relationships aside.
    static void copyAttributes(const store::Record* source, store::Record* target);
    // Links `target` to the same records as `source` under each to-one key.
    static void copyLinks(const store::Record* source, store::Record* target, const QStringList& keys);
};

} // namespace corvanta::documents
