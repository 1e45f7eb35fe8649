#pragma once

#include "store/editingcontext.h"

#include <QMap>
#include <QString>

namespace corvanta::bench {

// Inserts records through an editing context in batches and counts what it inserted. Each
// flush saves the batch in one transaction and then forgets every record of the context, so
// memory stays bounded however large the company grows; later batches reach earlier records
// by key, as faults.
class BatchInserter
{
public:
    explicit BatchInserter(store::EditingContext& context);

    store::Record* insert(const QString& entity);
    // A stored record (or one inserted in this batch) by key; reads nothing until used.
    store::Record* existing(const QString& entity, qint64 pk);
    // Adds `category` to the record's tags.
    void tag(store::Record* record, store::Record* category);
    // Saves the batch and forgets its records; every Record pointer from before is invalid.
    bool flush(store::StoreError* error);

    // Inserted records by entity, and tag links by the tagged record's entity, up to now.
    const QMap<QString, qint64>& inserted() const { return m_inserted; }
    const QMap<QString, qint64>& tagLinks() const { return m_tagLinks; }
    int flushes() const { return m_flushes; }

private:
    store::EditingContext& m_context;
    QMap<QString, qint64> m_inserted;
    QMap<QString, qint64> m_tagLinks;
    int m_flushes = 0;
};

} // namespace corvanta::bench
