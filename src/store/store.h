#pragma once

#include "aggregate.h"
#include "changeset.h"
#include "datamodel.h"
#include "record.h"
#include "storeerror.h"

#include <QCoreApplication>
#include <QObject>
#include <functional>
#include <memory>

namespace corvanta::store {

class DatabaseLock;
class EditingContext;
class SqliteDatabase;
struct FetchRequest;

// One open database of a data model: its file, its schema kept in step with the model, and the
// editing contexts that read and write it. Only one running instance of the program may hold a
// database; a second one is refused with a clear error.
//
// The store is generic: it knows the entities only through the DataModel it is given, and
// gives every record the plain Record class unless a record class is registered for its entity.
class Store : public QObject
{
    Q_OBJECT

public:
    using RecordFactory = std::function<std::unique_ptr<Record>(const Record::Init&)>;

    // Opens (creating when missing) the database at `path` and migrates its schema to `model`,
    // which must outlive the store: missing tables and columns are added, data is kept.
    // Returns null with `error` set on failure.
    static std::unique_ptr<Store> open(const QString& path, const DataModel& model,
                                       StoreError* error = nullptr);
    ~Store() override;

    const QString& path() const { return m_path; }
    const DataModel& model() const { return m_model; }
    // The model version the file recorded when it was opened; empty for a new database.
    const QString& storedModelVersion() const { return m_storedVersion; }

    // The context that the application reads and writes through; it merges every other
    // context's saves and announces them.
    EditingContext& mainContext();
    // A secondary context, as an editor window uses: its changes reach the store only when it saves.
    std::unique_ptr<EditingContext> newContext();

    // Writes a consistent copy of the whole database, as saved so far, to a new file at
    // `path` (which must not exist yet), while the store stays open.
    bool writeSnapshot(const QString& path, StoreError* error = nullptr);

    // Gives an entity's records a class of their own (derived attributes). Register before the
    // first record of the entity is read.
    void registerRecordClass(const QString& entity, RecordFactory factory);

    // Reads that see one state of the database, for as long as the object lives: printing a
    // long document or report reads thousands of records, and takes the file's lock once for
    // all of them instead of once per query. No context may save meanwhile.
    class ReadSnapshot
    {
    public:
        explicit ReadSnapshot(Store& store);
        ~ReadSnapshot();
        ReadSnapshot(const ReadSnapshot&) = delete;
        ReadSnapshot& operator=(const ReadSnapshot&) = delete;

    private:
        Store& m_store;
        bool m_active;
    };

    // How the database answers an aggregate over a fetch (see QueryPlan).
    QueryPlan explain(const FetchRequest& request, Aggregate function, const QString& keyPath);

Q_SIGNALS:
    // After any context saved; `origin` is the context that did.
    void didSave(const corvanta::store::ChangeSet& changes, corvanta::store::EditingContext* origin);

private:
    friend class EditingContext;

    Store(const QString& path, const DataModel& model);
    bool openDatabase(StoreError* error);
    bool lock(StoreError* error);
    SqliteDatabase& database() { return *m_database; }
    qint64 allocatePk(int entity) { return ++m_lastPk[size_t(entity)]; }
    std::unique_ptr<Record> createRecord(const Record::Init& init) const;
    void contextDidSave(const ChangeSet& changes, EditingContext* origin);

    QString m_path;
    const DataModel& m_model;
    QString m_storedVersion;
    std::unique_ptr<DatabaseLock> m_lock;
    std::unique_ptr<SqliteDatabase> m_database;
    std::vector<qint64> m_lastPk;
    QHash<QString, RecordFactory> m_factories;
    std::unique_ptr<EditingContext> m_mainContext;
};

} // namespace corvanta::store
