#pragma once

#include <QDateTime>
#include <QList>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::browse {

// The number beside each sidebar node: how many records it selects, kept in the node's `count`
// as decimal text. Each node costs one count query; no record it selects is loaded. Folders and
// groups of type 0 select nothing and get no count; a smart folder whose condition cannot be
// read counts 0.
class CategoryCounts
{
public:
    // Counts every node of the context at `now` (documents' relative dates are fixed then) and
    // returns the nodes whose count changed. The context is not saved.
    static QList<store::Record*> update(store::EditingContext& context,
                                        const QDateTime& now = QDateTime::currentDateTime());
    // The number of records `category` selects at `now`; -1 for a node that counts nothing.
    static int countOf(store::Record* category, const QDateTime& now);
};

} // namespace corvanta::browse
