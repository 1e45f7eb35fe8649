#include "editingcontext.h"

#include "predicate/evaluator.h"
#include "sqlite/sqlitedatabase.h"
#include "store.h"
#include "storelog.h"
#include "valueconversion.h"

#include <QSet>
#include <algorithm>

namespace corvanta::store {

using predicate::Predicate;

namespace {

qint64 keyOf(const QVariant& value)
{
    return value.isNull() ? 0 : value.toLongLong();
}

void insertSorted(QList<qint64>& keys, qint64 key)
{
    const auto it = std::lower_bound(keys.begin(), keys.end(), key);
    if (it == keys.end() || *it != key)
        keys.insert(it, key);
}

void removeKey(QList<qint64>& keys, qint64 key)
{
    keys.removeOne(key);
}

} // namespace

EditingContext::EditingContext(Store& store, bool main)
    : m_store(store)
    , m_main(main)
    , m_autoMerge(main)
    , m_registry(size_t(store.model().entities().size()))
{}

EditingContext::~EditingContext() = default;

Record* EditingContext::registered(int entity, qint64 pk) const
{
    const auto& map = m_registry[size_t(entity)];
    const auto it = map.find(pk);
    return it == map.end() ? nullptr : it->second.get();
}

Record* EditingContext::registerRecord(std::unique_ptr<Record> record)
{
    Record* raw = record.get();
    m_registry[size_t(raw->entity().index())][raw->pk()] = std::move(record);
    return raw;
}

Record* EditingContext::insertRecord(const QString& entityName)
{
    const EntityDescription* entity = m_store.model().entity(entityName);
    if (!entity) {
        qCWarning(lcStore) << "EditingContext::insertRecord: unknown entity" << entityName;
        return nullptr;
    }
    Record* record =
        registerRecord(m_store.createRecord({this, entity, m_store.allocatePk(entity->index())}));
    record->m_inserted = true;
    for (auto& list : record->m_lists)
        list = QList<qint64>();
    noteChanged(record);
    record->awakeFromInsert();
    return record;
}

Record* EditingContext::insertRecord(const QString& entityName, const QVariantMap& values)
{
    Record* record = insertRecord(entityName);
    if (!record)
        return nullptr;
    for (const AttributeDescription& a : record->entity().attributes()) {
        const auto it = values.constFind(a.name);
        if (it != values.cend())
            record->setValue(a.name, *it);
    }
    for (const RelationshipDescription& r : record->entity().relationships()) {
        const auto it = values.constFind(r.name);
        if (it != values.cend())
            record->setValue(r.name, *it);
    }
    return record;
}

Record* EditingContext::record(const predicate::RecordRef& ref)
{
    const EntityDescription* entity = m_store.model().entity(ref.entity);
    if (!entity || ref.pk <= 0)
        return nullptr;
    if (Record* existing = registered(entity->index(), ref.pk))
        return existing;
    Record* fault = registerRecord(m_store.createRecord({this, entity, ref.pk}));
    fault->m_fault = true;
    return fault;
}

void EditingContext::fulfill(Record* record)
{
    const EntityDescription& entity = record->entity();
    record->m_fault = false;
    QString error;
    const bool found = m_store.database().readRecord(
        entity, record->pk(), [&](const ResultRow& row) { fillFromRow(record, row, false); }, &error);
    if (!found) {
        if (error.isEmpty())
            qCWarning(lcStore) << "EditingContext: record" << entity.name() << record->pk()
                               << "is not in the store";
        else
            qCWarning(lcStore) << "EditingContext: cannot read" << entity.name() << record->pk() << error;
    }
    record->awakeFromFetch();
}

void EditingContext::fillFromRow(Record* record, const ResultRow& row, bool keepChanges)
{
    const EntityDescription& entity = record->entity();
    const QList<int>& slots = entity.columnSlots();
    const QList<AttributeType>& types = entity.columnTypes();
    for (qsizetype i = 0; i < slots.size(); ++i) {
        const int slot = slots.at(i);
        if (keepChanges && record->m_changed.testBit(slot))
            continue;
        record->m_values[size_t(slot)] = valueconversion::toMemory(types.at(i), row.value(int(i) + 1));
    }
    record->m_fault = false;
}

QList<qint64>& EditingContext::list(Record* record, const RelationshipDescription& relationship)
{
    auto& slot = record->m_lists[size_t(relationship.slot)];
    if (!slot)
        slot = loadList(record, relationship);
    return *slot;
}

QList<qint64> EditingContext::loadList(Record* record, const RelationshipDescription& relationship)
{
    const RelationshipDescription& inverse = m_store.model().inverseOf(relationship);
    QList<qint64> keys;
    if (!record->m_inserted) {
        QString error;
        if (std::optional<QList<qint64>> stored =
                m_store.database().relatedKeys(relationship, record->pk(), &error))
            keys = *std::move(stored);
        else
            qCWarning(lcStore) << "EditingContext: cannot read" << relationship.name << error;
    }

    // Unsaved changes of this context count as well.
    const int destination = relationship.destinationIndex;
    if (relationship.storage == RelationshipStorage::JoinTable) {
        for (const JoinOperation& op : m_joinOperations) {
            if (op.ownerSide->joinTable != relationship.joinTable)
                continue;
            const qint64 owner = relationship.joinOwner ? op.source : op.target;
            const qint64 member = relationship.joinOwner ? op.target : op.source;
            if (owner != record->pk())
                continue;
            if (op.add)
                insertSorted(keys, member);
            else
                removeKey(keys, member);
        }
        keys.removeIf([&](qint64 pk) {
            const Record* r = registered(destination, pk);
            return r && r->m_deleted;
        });
    } else {
        for (Record* changed : m_changedRecords) {
            if (changed->entity().index() != destination)
                continue;
            const bool member =
                !changed->m_deleted && keyOf(changed->m_values[size_t(inverse.slot)]) == record->pk();
            if (member)
                insertSorted(keys, changed->pk());
            else
                removeKey(keys, changed->pk());
        }
    }
    return keys;
}

void EditingContext::noteChanged(Record* record)
{
    if (!record->m_tracked) {
        record->m_tracked = true;
        m_changedRecords.push_back(record);
    }
}

void EditingContext::listInsert(qint64 owner, int ownerEntity, const RelationshipDescription& relationship,
                                qint64 member)
{
    if (Record* r = registered(ownerEntity, owner)) {
        auto& slot = r->m_lists[size_t(relationship.slot)];
        if (slot)
            insertSorted(*slot, member);
    }
}

void EditingContext::listRemove(qint64 owner, int ownerEntity, const RelationshipDescription& relationship,
                                qint64 member)
{
    if (Record* r = registered(ownerEntity, owner)) {
        auto& slot = r->m_lists[size_t(relationship.slot)];
        if (slot)
            removeKey(*slot, member);
    }
}

void EditingContext::setToOne(Record* record, const RelationshipDescription& relationship,
                              Record* destination)
{
    if (destination && destination->entity().index() != relationship.destinationIndex) {
        qCWarning(lcStore) << "EditingContext: a" << destination->entityName() << "cannot be the"
                           << relationship.name << "of a" << record->entityName();
        return;
    }
    if (relationship.storage == RelationshipStorage::ForeignKey) {
        setForeignKey(record, relationship, destination ? destination->pk() : 0);
        return;
    }
    // The column-less side of a one-to-one: the destination holds the key.
    const RelationshipDescription& inverse = m_store.model().inverseOf(relationship);
    const QList<qint64> current = list(record, relationship);
    for (qint64 pk : current) {
        if (!destination || pk != destination->pk())
            setForeignKey(this->record({relationship.destination, pk}), inverse, 0);
    }
    if (destination)
        setForeignKey(destination, inverse, record->pk());
}

void EditingContext::setForeignKey(Record* record, const RelationshipDescription& relationship,
                                   qint64 destination)
{
    const qint64 old = keyOf(record->slotValue(relationship.slot));
    if (old == destination)
        return;
    record->setSlot(relationship.slot, destination ? QVariant(destination) : QVariant(), true);

    const RelationshipDescription& inverse = m_store.model().inverseOf(relationship);
    const int destinationEntity = relationship.destinationIndex;
    if (inverse.storage == RelationshipStorage::ForeignKey) {
        // A relationship that is its own inverse: both records point at each other.
        if (old) {
            Record* previous = this->record({relationship.destination, old});
            if (keyOf(previous->slotValue(inverse.slot)) == record->pk())
                previous->setSlot(inverse.slot, QVariant(), true);
        }
        if (destination) {
            Record* partner = this->record({relationship.destination, destination});
            const qint64 partnersOld = keyOf(partner->slotValue(inverse.slot));
            if (partnersOld && partnersOld != record->pk()) {
                Record* abandoned = this->record({relationship.destination, partnersOld});
                if (keyOf(abandoned->slotValue(relationship.slot)) == destination)
                    abandoned->setSlot(relationship.slot, QVariant(), true);
            }
            partner->setSlot(inverse.slot, record->pk(), true);
        }
        return;
    }
    if (old)
        listRemove(old, destinationEntity, inverse, record->pk());
    if (!destination)
        return;
    if (!inverse.toMany) {
        // One-to-one: whoever pointed at the destination before lets go of it.
        Record* target = this->record({relationship.destination, destination});
        const QList<qint64> holders = list(target, inverse);
        for (qint64 holder : holders) {
            if (holder == record->pk())
                continue;
            this->record({record->entityName(), holder})->setSlot(relationship.slot, QVariant(), true);
            listRemove(destination, destinationEntity, inverse, holder);
        }
    }
    listInsert(destination, destinationEntity, inverse, record->pk());
}

void EditingContext::addToMany(Record* record, const RelationshipDescription& relationship,
                               Record* destination)
{
    if (!destination || destination->entity().index() != relationship.destinationIndex) {
        qCWarning(lcStore) << "EditingContext: cannot add to" << relationship.name << "of"
                           << record->entityName();
        return;
    }
    const RelationshipDescription& inverse = m_store.model().inverseOf(relationship);
    if (relationship.storage == RelationshipStorage::InverseForeignKey) {
        setForeignKey(destination, inverse, record->pk());
        return;
    }
    const auto& loaded = record->m_lists[size_t(relationship.slot)];
    if (loaded && loaded->contains(destination->pk()))
        return;
    const bool owner = relationship.joinOwner;
    m_joinOperations.push_back({owner ? &relationship : &inverse, owner ? record->pk() : destination->pk(),
                                owner ? destination->pk() : record->pk(), true});
    listInsert(record->pk(), record->entity().index(), relationship, destination->pk());
    listInsert(destination->pk(), destination->entity().index(), inverse, record->pk());
}

void EditingContext::removeToMany(Record* record, const RelationshipDescription& relationship,
                                  Record* destination)
{
    if (!destination || destination->entity().index() != relationship.destinationIndex)
        return;
    const RelationshipDescription& inverse = m_store.model().inverseOf(relationship);
    if (relationship.storage == RelationshipStorage::InverseForeignKey) {
        if (keyOf(destination->slotValue(inverse.slot)) == record->pk())
            setForeignKey(destination, inverse, 0);
        return;
    }
    const bool owner = relationship.joinOwner;
    m_joinOperations.push_back({owner ? &relationship : &inverse, owner ? record->pk() : destination->pk(),
                                owner ? destination->pk() : record->pk(), false});
    listRemove(record->pk(), record->entity().index(), relationship, destination->pk());
    listRemove(destination->pk(), destination->entity().index(), inverse, record->pk());
}

void EditingContext::deleteRecord(Record* record)
{
    if (!record || record->m_deleted || record->context() != this)
        return;
    record->fulfill();
    record->m_deleted = true;
    noteChanged(record);
    applyDeleteRules(record);
}

void EditingContext::applyDeleteRules(Record* record)
{
    const DataModel& model = m_store.model();
    for (const RelationshipDescription& r : record->entity().relationships()) {
        QList<qint64> targets;
        if (r.storage == RelationshipStorage::ForeignKey) {
            if (const qint64 pk = keyOf(record->m_values[size_t(r.slot)]))
                targets << pk;
        } else {
            targets = list(record, r);
        }
        if (targets.isEmpty() || r.deleteRule == DeleteRule::Deny)
            continue;
        const RelationshipDescription& inverse = model.inverseOf(r);
        for (qint64 pk : targets) {
            Record* target = this->record({r.destination, pk});
            if (r.deleteRule == DeleteRule::Cascade) {
                deleteRecord(target);
                continue;
            }
            switch (r.storage) {
            case RelationshipStorage::ForeignKey:
                if (inverse.storage == RelationshipStorage::ForeignKey) {
                    if (keyOf(target->slotValue(inverse.slot)) == record->pk())
                        target->setSlot(inverse.slot, QVariant(), true);
                } else {
                    listRemove(pk, r.destinationIndex, inverse, record->pk());
                }
                break;
            case RelationshipStorage::InverseForeignKey:
                if (!target->m_deleted && keyOf(target->slotValue(inverse.slot)) == record->pk())
                    setForeignKey(target, inverse, 0);
                break;
            case RelationshipStorage::JoinTable:
                removeToMany(record, r, target);
                break;
            }
        }
    }
}

bool EditingContext::hasChanges() const
{
    if (!m_joinOperations.empty())
        return true;
    return std::any_of(m_changedRecords.begin(), m_changedRecords.end(), [](const Record* r) {
        return r->m_inserted ? !r->m_deleted : (r->m_deleted || r->isUpdated());
    });
}

bool EditingContext::checkDenyRules(StoreError* error)
{
    for (Record* record : m_changedRecords) {
        if (!record->m_deleted || record->m_inserted)
            continue;
        for (const RelationshipDescription& r : record->entity().relationships()) {
            if (r.deleteRule != DeleteRule::Deny)
                continue;
            qsizetype users = 0;
            if (r.storage == RelationshipStorage::ForeignKey) {
                const qint64 pk = keyOf(record->m_values[size_t(r.slot)]);
                const Record* target = pk ? this->record({r.destination, pk}) : nullptr;
                users = target && !target->m_deleted ? 1 : 0;
            } else {
                users = list(record, r).size();
            }
            if (users > 0) {
                report(error, StoreError::make(
                                  StoreError::DeleteDenied, tr("The changes could not be saved."),
                                  tr("A record of %1 cannot be deleted while %2 record(s) of %3 use it.")
                                      .arg(record->entityName())
                                      .arg(users)
                                      .arg(r.destination)));
                return false;
            }
        }
    }
    return true;
}

bool EditingContext::save(StoreError* error)
{
    if (!hasChanges()) {
        // Nothing to write; records that were changed back to their old values are clean again.
        for (Record* r : m_changedRecords)
            r->m_tracked = false;
        m_changedRecords.clear();
        return true;
    }
    if (!checkDenyRules(error))
        return false;
    ChangeSet changes;
    if (!writeChanges(changes, error))
        return false;
    finishSave(changes);
    return true;
}

bool EditingContext::writeChanges(ChangeSet& changes, StoreError* error)
{
    SqliteDatabase& database = m_store.database();
    auto fail = [&](const QString& what, const QString& why) {
        const StoreError::Code failure = database.lastWriteFailure();
        database.rollback();
        report(error, saveError(failure, what.isEmpty() ? why : tr("%1: %2").arg(what, why)));
        return false;
    };
    QString why;
    if (!database.begin(&why))
        return fail({}, why);

    // Lists of the destinations of these foreign keys are no longer current elsewhere.
    QSet<int> touched;
    auto touchForeignKeys = [&](const Record* record, bool onlyChanged) {
        const QList<RelationshipDescription>& relationships = record->entity().relationships();
        for (int i = 0; i < relationships.size(); ++i) {
            const RelationshipDescription& r = relationships.at(i);
            if (r.storage == RelationshipStorage::ForeignKey &&
                (!onlyChanged || record->m_changed.testBit(r.slot)))
                touched.insert(record->entity().index() * 1000 + i);
        }
    };

    for (const Record* record : m_changedRecords) {
        const EntityDescription& entity = record->entity();
        if (record->m_inserted && record->m_deleted)
            continue;
        if (record->m_deleted) {
            if (!database.deleteRecord(entity, record->pk(), &why))
                return fail(tr("Deleting a record of %1").arg(entity.name()), why);
            changes.deleted << record->ref();
            touchForeignKeys(record, false);
        } else if (record->m_inserted) {
            if (!database.insertRecord(entity, record->pk(), record->m_values, &why))
                return fail(tr("Adding a record of %1").arg(entity.name()), why);
            changes.inserted << record->ref();
            touchForeignKeys(record, false);
        } else if (record->isUpdated()) {
            ChangeSet::Update update;
            update.ref = record->ref();
            QList<int> columns;
            const QList<int>& slots = entity.columnSlots();
            for (qsizetype i = 0; i < slots.size(); ++i) {
                const int slot = slots.at(i);
                if (!record->m_changed.testBit(slot))
                    continue;
                columns << int(i);
                update.keys << entity.columns().at(i);
                update.slots << slot;
                update.values << record->m_values[size_t(slot)];
            }
            if (columns.isEmpty())
                continue;
            if (!database.updateRecord(entity, record->pk(), columns, record->m_values, &why))
                return fail(tr("Changing a record of %1").arg(entity.name()), why);
            changes.updated << update;
            touchForeignKeys(record, true);
        }
    }
    for (int key : std::as_const(touched))
        changes.touchedForeignKeys << ChangeSet::ForeignKeyTouch{key / 1000, key % 1000};
    for (const JoinOperation& op : m_joinOperations) {
        const QString& table = op.ownerSide->joinTable;
        const bool written = op.add ? database.addPair(table, op.source, op.target, &why)
                                    : database.removePair(table, op.source, op.target, &why);
        if (!written)
            return fail(tr("Changing %1").arg(table), why);
        if (!changes.touchedJoinTables.contains(table))
            changes.touchedJoinTables << table;
    }
    if (!database.commit(&why))
        return fail(tr("Committing"), why);
    return true;
}

// The records keep their changes after a failed save, so the user may free space or fix the
// disk and save the same changes again.
StoreError EditingContext::saveError(StoreError::Code failure, const QString& detail) const
{
    const QString& file = m_store.path();
    qCWarning(lcStore, "Saving %s failed: %s", qPrintable(file), qPrintable(detail));
    switch (failure) {
    case StoreError::DiskFull:
        return StoreError::make(
            StoreError::DiskFull,
            tr("The disk is full: the company database \"%1\" could not be saved.").arg(file),
            tr("Your changes are kept. Free some space on the disk, then save again."));
    case StoreError::WriteFailed:
        return StoreError::make(
            StoreError::WriteFailed,
            tr("Writing to the disk failed: the company database \"%1\" could not be saved.").arg(file),
            tr("Your changes are kept. Check the disk, then save again. (%1)").arg(detail));
    case StoreError::Locked:
        // Another program (a second Corvanta on a shared folder, a backup or sync tool) kept
        // writing to the file for longer than the store waits.
        return StoreError::make(
            StoreError::Locked,
            tr("The company database \"%1\" is in use by another program: it could not be saved.").arg(file),
            tr("Your changes are kept. Save again when the other program has finished with the file."));
    default:
        return StoreError::make(StoreError::SaveFailed, tr("The changes could not be saved."), detail);
    }
}

void EditingContext::finishSave(const ChangeSet& changes)
{
    for (Record* record : m_changedRecords) {
        record->m_tracked = false;
        if (record->m_deleted) {
            auto& map = m_registry[size_t(record->entity().index())];
            const auto it = map.find(record->pk());
            if (it != map.end()) {
                m_forgotten.push_back(std::move(it->second));
                map.erase(it);
            }
            continue;
        }
        record->m_inserted = false;
        record->m_changed.fill(false);
        record->m_committed.reset();
    }
    m_changedRecords.clear();
    m_joinOperations.clear();
    Q_EMIT didSave(changes);
    m_store.contextDidSave(changes, this);
    if (m_main)
        Q_EMIT objectsDidChange(changes);
}

void EditingContext::invalidateLists(const ChangeSet& changes)
{
    const DataModel& model = m_store.model();
    auto forget = [&](int entity, int slot) {
        for (auto& [pk, record] : m_registry[size_t(entity)])
            record->m_lists[size_t(slot)].reset();
    };
    for (const ChangeSet::ForeignKeyTouch& touch : changes.touchedForeignKeys) {
        const RelationshipDescription& r = model.entity(touch.entity).relationships().at(touch.relationship);
        const RelationshipDescription& inverse = model.inverseOf(r);
        if (inverse.storage != RelationshipStorage::ForeignKey)
            forget(r.destinationIndex, inverse.slot);
    }
    for (const QString& table : changes.touchedJoinTables) {
        for (const EntityDescription& e : model.entities()) {
            for (const RelationshipDescription& r : e.relationships()) {
                if (r.storage == RelationshipStorage::JoinTable && r.joinTable == table)
                    forget(e.index(), r.slot);
            }
        }
    }
}

void EditingContext::mergeChanges(const ChangeSet& changes)
{
    for (const predicate::RecordRef& ref : changes.deleted) {
        const EntityDescription* entity = m_store.model().entity(ref.entity);
        auto& map = m_registry[size_t(entity->index())];
        const auto it = map.find(ref.pk);
        if (it == map.end())
            continue;
        Record* record = it->second.get();
        record->m_deleted = true;
        if (record->m_tracked) {
            record->m_tracked = false;
            std::erase(m_changedRecords, record);
        }
        m_forgotten.push_back(std::move(it->second));
        map.erase(it);
    }
    for (const ChangeSet::Update& update : changes.updated) {
        const EntityDescription* entity = m_store.model().entity(update.ref.entity);
        Record* record = registered(entity->index(), update.ref.pk);
        if (!record || record->m_fault)
            continue;
        for (qsizetype i = 0; i < update.slots.size(); ++i) {
            const int slot = update.slots.at(i);
            if (record->m_committed)
                (*record->m_committed)[size_t(slot)] = update.values.at(i);
            if (!record->m_changed.testBit(slot))
                record->m_values[size_t(slot)] = update.values.at(i);
        }
        record->awakeFromFetch();
    }
    invalidateLists(changes);
    Q_EMIT objectsDidChange(changes);
}

void EditingContext::rollback()
{
    for (Record* record : m_changedRecords) {
        record->m_tracked = false;
        if (record->m_inserted) {
            record->m_deleted = true;
            auto& map = m_registry[size_t(record->entity().index())];
            const auto it = map.find(record->pk());
            if (it != map.end()) {
                m_forgotten.push_back(std::move(it->second));
                map.erase(it);
            }
            continue;
        }
        if (record->m_committed)
            record->m_values = *record->m_committed;
        record->m_committed.reset();
        record->m_changed.fill(false);
        record->m_deleted = false;
    }
    m_changedRecords.clear();
    m_joinOperations.clear();
    for (auto& map : m_registry) {
        for (auto& [pk, record] : map) {
            for (auto& list : record->m_lists)
                list.reset();
            if (!record->m_fault)
                record->awakeFromFetch();
        }
    }
}

void EditingContext::reset()
{
    m_changedRecords.clear();
    m_joinOperations.clear();
    for (auto& map : m_registry)
        map.clear();
    m_forgotten.clear();
}

QList<Record*> EditingContext::fetch(const FetchRequest& request, StoreError* error)
{
    const EntityDescription* entity = m_store.model().entity(request.entity);
    const QList<Record*> pending =
        entity && request.includesPendingChanges ? pendingRecords(entity->index()) : QList<Record*>();
    if (pending.isEmpty())
        return runSelect(request, error);

    // Unsaved records are judged in memory by the same rules; the rest comes from the store.
    FetchRequest stored = request;
    stored.limit = 0;
    stored.offset = 0;
    StoreError selectError;
    QList<Record*> results = runSelect(stored, &selectError);
    if (selectError.isError()) {
        report(error, selectError);
        return {};
    }
    results.removeIf([&](Record* r) { return pending.contains(r); });
    for (Record* r : pending) {
        if (!r->m_deleted && predicate::Evaluator::evaluate(request.predicate, *r))
            results << r;
    }
    sortInMemory(results, request.sortDescriptors);
    const qsizetype from = qMin<qsizetype>(qMax(0, request.offset), results.size());
    const qsizetype count =
        request.limit > 0 ? qMin<qsizetype>(request.limit, results.size() - from) : results.size() - from;
    return results.mid(from, count);
}

QList<Record*> EditingContext::runSelect(const FetchRequest& request, StoreError* error)
{
    const EntityDescription* entity = m_store.model().entity(request.entity);
    QList<Record*> results;
    const bool read = m_store.database().select(
        request,
        [&](qint64 pk, const ResultRow& row) {
            Record* record = registered(entity->index(), pk);
            if (record && record->m_deleted && request.includesPendingChanges)
                return;
            if (!record)
                record = registerRecord(m_store.createRecord({this, entity, pk}));
            fillFromRow(record, row, true);
            results << record;
        },
        error);
    if (!read)
        return {};
    // Hooks run after the statement is finished: they may read the store themselves.
    for (Record* record : results)
        record->awakeFromFetch();
    return results;
}

QList<Record*> EditingContext::pendingRecords(int entity) const
{
    QList<Record*> records;
    for (Record* r : m_changedRecords) {
        if (r->entity().index() == entity && (r->hasChanges()))
            records << r;
    }
    // Records whose folders or tags changed are pending too.
    for (const JoinOperation& op : m_joinOperations) {
        const RelationshipDescription& inverse = m_store.model().inverseOf(*op.ownerSide);
        const int sourceEntity = inverse.destinationIndex;
        const int targetEntity = op.ownerSide->destinationIndex;
        Record* r = nullptr;
        if (sourceEntity == entity)
            r = registered(entity, op.source);
        else if (targetEntity == entity)
            r = registered(entity, op.target);
        if (r && !records.contains(r))
            records << r;
    }
    return records;
}

void EditingContext::sortInMemory(QList<Record*>& records, const QList<SortDescriptor>& sort) const
{
    const bool lastDescending = !sort.isEmpty() && !sort.last().ascending;
    std::stable_sort(records.begin(), records.end(), [&](const Record* a, const Record* b) {
        for (const SortDescriptor& d : sort) {
            const QVariant x = a->valueForKeyPath(d.keyPath);
            const QVariant y = b->valueForKeyPath(d.keyPath);
            const int order = d.comparison == SortDescriptor::Comparison::LocalizedCaseInsensitive
                                  ? predicate::Evaluator::compareLocalized(x, y)
                                  : predicate::Evaluator::compareValues(x, y);
            if (order != 0)
                return d.ascending ? order < 0 : order > 0;
        }
        return lastDescending ? a->pk() > b->pk() : a->pk() < b->pk();
    });
}

Record* EditingContext::fetchFirst(FetchRequest request, StoreError* error)
{
    request.limit = 1;
    const QList<Record*> records = fetch(request, error);
    return records.isEmpty() ? nullptr : records.first();
}

Record* EditingContext::fetchRecord(const QString& entity, const predicate::RecordRef& ref, StoreError* error)
{
    if (ref.isNull() || ref.entity != entity)
        return nullptr;
    return fetchFirst(
        FetchRequest(entity, Predicate::compare(QStringLiteral("self"), Predicate::Operator::Equal,
                                                QVariant::fromValue(ref))),
        error);
}

int EditingContext::count(const FetchRequest& request, StoreError* error)
{
    const EntityDescription* entity = m_store.model().entity(request.entity);
    const QList<Record*> pending =
        entity && request.includesPendingChanges ? pendingRecords(entity->index()) : QList<Record*>();
    if (pending.isEmpty())
        return runCount(request, error);
    // The store counts what it holds apart from the unsaved records; those are judged in memory.
    int matching = 0;
    for (Record* r : pending) {
        if (!r->m_deleted && predicate::Evaluator::evaluate(request.predicate, *r))
            ++matching;
    }
    const int storedCount = runCount(storedPartOf(request, pending), error);
    return storedCount < 0 ? -1 : storedCount + matching;
}

std::optional<double> EditingContext::sum(const FetchRequest& request, const QString& keyPath,
                                          StoreError* error)
{
    const EntityDescription* entity = m_store.model().entity(request.entity);
    const QList<Record*> pending =
        entity && request.includesPendingChanges ? pendingRecords(entity->index()) : QList<Record*>();
    // As with counting: the unsaved records are judged in memory, the rest by the store.
    double inMemory = 0;
    for (Record* r : pending) {
        if (!r->m_deleted && predicate::Evaluator::evaluate(request.predicate, *r))
            inMemory += r->valueForKeyPath(keyPath).toDouble();
    }
    const std::optional<QVariant> total =
        storedAggregate(storedPartOf(request, pending), Aggregate::Sum, keyPath, error);
    return total ? std::optional<double>(total->toDouble() + inMemory) : std::nullopt;
}

FetchRequest EditingContext::storedPartOf(const FetchRequest& request, const QList<Record*>& pending)
{
    if (pending.isEmpty())
        return request;
    QVariantList keys;
    for (const Record* r : pending)
        keys << QVariant::fromValue(r->ref());
    FetchRequest stored = request;
    stored.predicate = Predicate::andOf(
        {request.predicate,
         Predicate::notOf(Predicate::compare(QStringLiteral("self"), Predicate::Operator::In, keys))});
    return stored;
}

int EditingContext::runCount(const FetchRequest& request, StoreError* error)
{
    const std::optional<qint64> result = m_store.database().count(request, error);
    return result ? int(*result) : -1;
}

std::optional<QVariant> EditingContext::storedAggregate(const FetchRequest& request, Aggregate function,
                                                        const QString& keyPath, StoreError* error)
{
    return m_store.database().aggregate(request, function, keyPath, error);
}

std::optional<QList<GroupSums>> EditingContext::storedGroupedSums(const FetchRequest& request,
                                                                  const QString& groupKeyPath,
                                                                  const QStringList& sumKeyPaths,
                                                                  StoreError* error)
{
    return m_store.database().groupedSums(request, groupKeyPath, sumKeyPaths, error);
}

std::optional<QList<StoredRow>> EditingContext::storedValues(const FetchRequest& request,
                                                             const QStringList& keyPaths, StoreError* error)
{
    return m_store.database().values(request, keyPaths, error);
}

} // namespace corvanta::store
