#include "storerowwriter.h"

#include "rowsample.h"
#include "store/editingcontext.h"

namespace corvanta::bench {

StoreRowWriter::StoreRowWriter(store::Store& store)
    : m_store(store)
{}

bool StoreRowWriter::write(const RowSample& sample, store::StoreError* error)
{
    const store::EntityDescription* entity = m_store.model().entity(RowSample::entity());
    if (!entity) {
        store::report(error,
                      store::StoreError::make(store::StoreError::InvalidFetch,
                                              QStringLiteral("No entity %1.").arg(RowSample::entity())));
        return false;
    }
    // For each column, the destination entity when it is a relationship.
    const QStringList& columns = sample.columns();
    QStringList destinations;
    for (const QString& column : columns) {
        const store::RelationshipDescription* r = entity->relationship(column);
        destinations << (r ? r->destination : QString());
    }

    store::EditingContext& context = m_store.mainContext();
    qint64 row = 0;
    for (const qint64 end : sample.batchEnds()) {
        for (; row < end; ++row) {
            store::Record* record = context.insertRecord(RowSample::entity());
            for (int c = 0; c < int(columns.size()); ++c) {
                const QVariant& value = sample.value(row, c);
                if (destinations.at(c).isEmpty())
                    record->setValue(columns.at(c), value);
                else
                    record->setRelated(columns.at(c), context.record(predicate::RecordRef{
                                                          destinations.at(c), value.toLongLong()}));
            }
        }
        if (!context.save(error))
            return false;
        context.reset();
    }
    return true;
}

} // namespace corvanta::bench
