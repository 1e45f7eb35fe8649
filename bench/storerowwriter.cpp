#include "storerowwriter.h"

#include "model/editingcontext.h"
#include "rowsample.h"

namespace corvanta::bench {

StoreRowWriter::StoreRowWriter(model::Store& store)
    : m_store(store)
{}

bool StoreRowWriter::write(const RowSample& sample, model::StoreError* error)
{
    const model::EntityDescription* entity = m_store.model().entity(RowSample::entity());
    if (!entity) {
        model::report(error,
                      model::StoreError::make(model::StoreError::InvalidFetch,
                                              QStringLiteral("No entity %1.").arg(RowSample::entity())));
        return false;
    }
    // For each column, the destination entity when it is a relationship.
    const QStringList& columns = sample.columns();
    QStringList destinations;
    for (const QString& column : columns) {
        const model::RelationshipDescription* r = entity->relationship(column);
        destinations << (r ? r->destination : QString());
    }

    model::EditingContext& context = m_store.mainContext();
    qint64 row = 0;
    for (const qint64 end : sample.batchEnds()) {
        for (; row < end; ++row) {
            model::Record* record = context.insertRecord(RowSample::entity());
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
