#pragma once

#include "changeset.h"
#include "datamodel.h"
#include "record.h"
#include "sqlitestatement.h"
#include "storeerror.h"

#include <QCoreApplication>
#include <QObject>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <functional>
#include <memory>
#include <unordered_map>

class QLockFile;
struct sqlite3;

namespace corvanta::model {

class EditingContext;

// One open company database: the SQLite file, its schema kept in step with the data model,
// and the editing contexts that read and write it. Only one running instance of the program
// may hold a database; a second one is refused with a clear error.
class Store : public QObject
{
    Q_OBJECT

public:
    using RecordFactory = std::function<std::unique_ptr<Record>(const Record::Init&)>;

    // Opens (creating when missing) the database at `path` and migrates its schema: missing
    // tables and columns are added, data is kept. Returns null with `error` set on failure.
    static std::unique_ptr<Store> open(const QString& path, StoreError* error = nullptr);
    static std::unique_ptr<Store> open(const QString& path, const DataModel& model, StoreError* error);
    ~Store() override;

    const QString& path() const { return m_path; }
    const DataModel& model() const { return m_model; }
    // The `version` setting as the file held it when opened; empty for a new database.
    const QString& storedModelVersion() const { return m_storedVersion; }

    // The context that the application reads and writes through; it merges every other
    // context's saves and announces them.
    EditingContext& mainContext();
    // A secondary context, as an editor window uses: its changes reach the store only when it saves.
    std::unique_ptr<EditingContext> newContext();

    // Writes a consistent copy of the whole database, as saved so far, to a new file at
    // `path` (which must not exist yet), while the store stays open.
    bool writeSnapshot(const QString& path, StoreError* error = nullptr);

    // Lets another library give an entity its record class (derived attributes).
    void registerRecordClass(const QString& entity, RecordFactory factory);

    // A setting's value read from the store and cached until Settings records are saved again;
    // for record classes that derive values from settings on every load.
    QVariant cachedSetting(const QString& key);

Q_SIGNALS:
    // After any context saved; `origin` is the context that did.
    void didSave(const corvanta::model::ChangeSet& changes, corvanta::model::EditingContext* origin);

private:
    friend class EditingContext;

    Store(const QString& path, const DataModel& model);
    bool openDatabase(StoreError* error);
    QSqlDatabase database() const;
    // A prepared statement kept for reuse; prepared on first use.
    QSqlQuery* preparedQuery(const QString& sql, QString* error);
    // The statements that add and remove one record of an entity, prepared once.
    SqliteStatement* insertStatement(const EntityDescription& entity, QString* error);
    QSqlQuery* deleteStatement(const EntityDescription& entity, QString* error);
    qint64 allocatePk(int entity) { return ++m_lastPk[size_t(entity)]; }
    std::unique_ptr<Record> createRecord(const Record::Init& init) const;
    void contextDidSave(const ChangeSet& changes, EditingContext* origin);

    QString m_path;
    const DataModel& m_model;
    QString m_connectionName;
    QString m_storedVersion;
    std::unique_ptr<QLockFile> m_lock;
    std::vector<qint64> m_lastPk;
    std::unordered_map<QString, std::unique_ptr<QSqlQuery>> m_statements;
    std::vector<std::unique_ptr<SqliteStatement>> m_insertStatements;
    sqlite3* m_handle = nullptr;
    std::vector<QSqlQuery*> m_deleteStatements;
    QHash<QString, RecordFactory> m_factories;
    std::optional<QHash<QString, QVariant>> m_settingsCache;
    std::unique_ptr<EditingContext> m_mainContext;
};

} // namespace corvanta::model
