#include "batchinserter.h"

namespace corvanta::bench {

BatchInserter::BatchInserter(store::EditingContext& context)
    : m_context(context)
{}

store::Record* BatchInserter::insert(const QString& entity)
{
    store::Record* record = m_context.insertRecord(entity);
    if (!record)
        qFatal("BatchInserter: the data model has no entity %s", qPrintable(entity));
    ++m_inserted[entity];
    return record;
}

store::Record* BatchInserter::existing(const QString& entity, qint64 pk)
{
    return m_context.record(predicate::RecordRef{entity, pk});
}

void BatchInserter::tag(store::Record* record, store::Record* category)
{
    record->addRelated(QStringLiteral("tags"), category);
    ++m_tagLinks[record->entityName()];
}

bool BatchInserter::flush(store::StoreError* error)
{
    if (!m_context.save(error))
        return false;
    m_context.reset();
    ++m_flushes;
    return true;
}

} // namespace corvanta::bench
