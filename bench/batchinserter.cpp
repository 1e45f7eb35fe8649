#include "batchinserter.h"

namespace corvanta::bench {

BatchInserter::BatchInserter(model::EditingContext& context)
    : m_context(context)
{}

model::Record* BatchInserter::insert(const QString& entity)
{
    model::Record* record = m_context.insertRecord(entity);
    if (!record)
        qFatal("BatchInserter: the data model has no entity %s", qPrintable(entity));
    ++m_inserted[entity];
    return record;
}

model::Record* BatchInserter::existing(const QString& entity, qint64 pk)
{
    return m_context.record(predicate::RecordRef{entity, pk});
}

void BatchInserter::tag(model::Record* record, model::Record* category)
{
    record->addRelated(QStringLiteral("tags"), category);
    ++m_tagLinks[record->entityName()];
}

bool BatchInserter::flush(model::StoreError* error)
{
    if (!m_context.save(error))
        return false;
    m_context.reset();
    ++m_flushes;
    return true;
}

} // namespace corvanta::bench
