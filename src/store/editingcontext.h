#pragma once

#include "aggregate.h"
#include "changeset.h"
#include "fetchrequest.h"
#include "record.h"
#include "storeerror.h"

#include <QObject>
#include <QVariantMap>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace corvanta::store {

class ResultRow;
class Store;

// A unit of work over the store: records are fetched, inserted, changed and deleted in memory,
// then written together by save() in one transaction that is rolled back whole on failure.
// Fetches and counts run as SQL against what is stored; records with unsaved changes in this
// context are judged in memory by the same rules (unless the request leaves them out).
class EditingContext : public QObject
{
    Q_OBJECT

public:
    ~EditingContext() override;

    Store& store() const { return m_store; }
    bool isMain() const { return m_main; }

    Record* insertRecord(const QString& entity);
    // Inserts a record and sets, from `values`, first every attribute of the entity that is a
    // key there, then every relationship (Record*, RecordRef, or a list of them). Keys the
    // entity does not know are ignored.
    Record* insertRecord(const QString& entity, const QVariantMap& values);

    // The record with that key in this context: the registered one, or a fault that reads its
    // values on first use. Null for an unknown entity or key 0.
    Record* record(const predicate::RecordRef& ref);

    QList<Record*> fetch(const FetchRequest& request, StoreError* error = nullptr);
    // The first record of the fetch, or null.
    Record* fetchFirst(FetchRequest request, StoreError* error = nullptr);
    // The record `ref` as a fetch sees it now: null when it is not one of `entity`, or is
    // neither stored (and not deleted here) nor inserted here. Unlike record(), which gives a
    // fault for any key, this tells whether the record exists.
    Record* fetchRecord(const QString& entity, const predicate::RecordRef& ref, StoreError* error = nullptr);
    // The number of records the request selects; -1 on error.
    int count(const FetchRequest& request, StoreError* error = nullptr);
    // The total of `keyPath` over the records the request selects, missing values left out;
    // nothing on error.
    std::optional<double> sum(const FetchRequest& request, const QString& keyPath,
                              StoreError* error = nullptr);
    // One value over the stored records the request selects, computed by the database without
    // loading them; unsaved changes in this context are not seen. A null value when there is
    // nothing to take a maximum or minimum of; nothing on error.
    std::optional<QVariant> storedAggregate(const FetchRequest& request, Aggregate function,
                                            const QString& keyPath, StoreError* error = nullptr);

    // The records the request selects, grouped by the value of `groupKeyPath` (an attribute or
    // a to-one relationship, also through to-one steps: "document.client"), with the totals of
    // `sumKeyPaths` per group, computed by the database in one statement. Groups come ordered by
    // their value; only stored records count, as with storedAggregate(). Nothing on error.
    std::optional<QList<GroupSums>> storedGroupedSums(const FetchRequest& request,
                                                      const QString& groupKeyPath,
                                                      const QStringList& sumKeyPaths,
                                                      StoreError* error = nullptr);

    // A few values of each stored record the request selects, in its order and window, read by
    // the database without making records: for long lists of which only some columns are needed
    // at once. Nothing on error.
    std::optional<QList<StoredRow>> storedValues(const FetchRequest& request, const QStringList& keyPaths,
                                                 StoreError* error = nullptr);

    // Deletes the record and applies the delete rules of its relationships now: cascades
    // delete, nullifies clear the other end. Deny rules are checked by save().
    void deleteRecord(Record* record);

    bool hasChanges() const;
    // Writes every change in one transaction. On failure nothing is stored, the records keep
    // their changes and `error` says why.
    bool save(StoreError* error = nullptr);
    // Forgets every unsaved change.
    void rollback();
    // Forgets every record; Record pointers from this context become invalid.
    void reset();

    // Brings another context's saved changes into this one. A record's property changed here
    // and not yet saved keeps the value of this context.
    void mergeChanges(const ChangeSet& changes);
    // The main context merges every other context's saves by itself.
    bool automaticallyMergesChanges() const { return m_autoMerge; }
    void setAutomaticallyMergesChanges(bool on) { m_autoMerge = on; }

Q_SIGNALS:
    // This context saved these changes.
    void didSave(const corvanta::store::ChangeSet& changes);
    // The records of this context changed in the store: after its own save or a merge.
    void objectsDidChange(const corvanta::store::ChangeSet& changes);

private:
    friend class Store;
    friend class Record;

    EditingContext(Store& store, bool main);

    Record* registered(int entity, qint64 pk) const;
    QList<Record*> runSelect(const FetchRequest& request, StoreError* error);
    int runCount(const FetchRequest& request, StoreError* error);
    // The request narrowed to what the store holds apart from the unsaved `pending` records.
    static FetchRequest storedPartOf(const FetchRequest& request, const QList<Record*>& pending);
    // The records of an entity with unsaved changes here, which fetches judge in memory.
    QList<Record*> pendingRecords(int entity) const;
    void sortInMemory(QList<Record*>& records, const QList<SortDescriptor>& sort) const;
    Record* registerRecord(std::unique_ptr<Record> record);
    void fulfill(Record* record);
    void fillFromRow(Record* record, const ResultRow& row, bool keepChanges);
    QList<qint64>& list(Record* record, const RelationshipDescription& relationship);
    QList<qint64> loadList(Record* record, const RelationshipDescription& relationship);
    void noteChanged(Record* record);

    void setToOne(Record* record, const RelationshipDescription& relationship, Record* destination);
    void setForeignKey(Record* record, const RelationshipDescription& relationship, qint64 destination);
    void addToMany(Record* record, const RelationshipDescription& relationship, Record* destination);
    void removeToMany(Record* record, const RelationshipDescription& relationship, Record* destination);
    void listInsert(qint64 owner, int ownerEntity, const RelationshipDescription& relationship,
                    qint64 member);
    void listRemove(qint64 owner, int ownerEntity, const RelationshipDescription& relationship,
                    qint64 member);
    void applyDeleteRules(Record* record);
    bool checkDenyRules(StoreError* error);
    bool writeChanges(ChangeSet& changes, StoreError* error);
    // The error of a save whose write failed (`failure` tells why, `detail` is the database's
    // own text).
    StoreError saveError(StoreError::Code failure, const QString& detail) const;
    void finishSave(const ChangeSet& changes);
    void invalidateLists(const ChangeSet& changes);

    struct JoinOperation
    {
        const RelationshipDescription* ownerSide; // the relationship whose entity fills `source`
        qint64 source;
        qint64 target;
        bool add;
    };

    Store& m_store;
    bool m_main;
    bool m_autoMerge;
    std::vector<std::unordered_map<qint64, std::unique_ptr<Record>>> m_registry; // per entity
    std::vector<Record*> m_changedRecords;
    std::vector<JoinOperation> m_joinOperations;
    std::vector<std::unique_ptr<Record>> m_forgotten; // records deleted by a merge, kept alive until reset
};

} // namespace corvanta::store
