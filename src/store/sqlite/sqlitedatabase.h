#pragma once

#include "sqlcompiler.h"
#include "store/aggregate.h"
#include "store/fetchrequest.h"
#include "store/storeerror.h"

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

struct sqlite3;

namespace corvanta::store {

class DataModel;
class EntityDescription;
class SqliteStatement;
struct RelationshipDescription;

// One row of a result as the store reads it: column 0 is the primary key, then the entity's
// stored columns in their order.
class ResultRow
{
public:
    explicit ResultRow(const QSqlQuery& query)
        : m_query(query)
    {}
    QVariant value(int column) const { return m_query.value(column); }

private:
    const QSqlQuery& m_query;
};

// The store's connection to its SQLite file and every statement run on it: opening and
// checking the file, migration, reading records, related keys and fetches, the writes of a save
// in one transaction, copies of the file and query plans. This is the one place that speaks
// SQL; the editing contexts talk to it in terms of entities, keys and fetch requests.
class SqliteDatabase
{
    Q_DECLARE_TR_FUNCTIONS(SqliteDatabase)

public:
    // Marks a SQLite file as written by a store of `model` (its application id).
    explicit SqliteDatabase(const DataModel* model = nullptr);
    ~SqliteDatabase();
    SqliteDatabase(const SqliteDatabase&) = delete;
    SqliteDatabase& operator=(const SqliteDatabase&) = delete;

    // Opens the file for reading and writing, checks that it belongs to the model (or is new),
    // that it is whole (with `checkIntegrity`, every page is read) and not of a newer model,
    // reads the model version it records, sets up the connection and migrates the schema. A file
    // that fails a check is left exactly as it was.
    bool open(const QString& path, bool checkIntegrity, QString* storedVersion, StoreError* error);
    // Opens a file for reading only, beside any store that has it open; nothing is checked.
    bool openReadOnly(const QString& path, QString* error);

    // The largest primary key an entity's table holds; 0 for none.
    qint64 largestKey(const EntityDescription& entity);

    // Reads one record's row and hands it to `read`. False when there is no such record;
    // `error` tells a failure apart from a missing record.
    bool readRecord(const EntityDescription& entity, qint64 pk,
                    const std::function<void(const ResultRow&)>& read, QString* error);
    // The keys of the records at the other end of a to-many or column-less relationship of the
    // record `owner`, ascending.
    std::optional<QList<qint64>> relatedKeys(const RelationshipDescription& relationship, qint64 owner,
                                             QString* error);
    // Runs a fetch and hands every row to `each`, in the requested order.
    bool select(const FetchRequest& request, const std::function<void(qint64 pk, const ResultRow&)>& each,
                StoreError* error);
    std::optional<qint64> count(const FetchRequest& request, StoreError* error);
    std::optional<QVariant> aggregate(const FetchRequest& request, Aggregate function, const QString& keyPath,
                                      StoreError* error);
    // The sums of a fetch's records per value of `groupKeyPath` (see EditingContext).
    std::optional<QList<GroupSums>> groupedSums(const FetchRequest& request, const QString& groupKeyPath,
                                                const QStringList& sumKeyPaths, StoreError* error);
    // The values of `keyPaths` of a fetch's records, in their stored form (see EditingContext).
    std::optional<QList<StoredRow>> values(const FetchRequest& request, const QStringList& keyPaths,
                                           StoreError* error);
    // The statement and plan of an aggregate; an empty plan when it cannot be compiled.
    QueryPlan explain(const FetchRequest& request, Aggregate function, const QString& keyPath);

    // Many reads that should see one state of the file and take the file's lock once, not once
    // per statement. Nothing may be saved between them; false when it cannot begin (a save or
    // another read is under way).
    bool beginRead();
    void endRead();

    // The writes of a save, between begin() and commit(); rollback() undoes all of them.
    // Values are given in memory form, by the record's value slots.
    bool begin(QString* error);
    bool insertRecord(const EntityDescription& entity, qint64 pk, const std::vector<QVariant>& slotValues,
                      QString* error);
    // Writes the columns at `columns` (positions in the entity's stored columns).
    bool updateRecord(const EntityDescription& entity, qint64 pk, const QList<int>& columns,
                      const std::vector<QVariant>& slotValues, QString* error);
    bool deleteRecord(const EntityDescription& entity, qint64 pk, QString* error);
    bool addPair(const QString& joinTable, qint64 source, qint64 target, QString* error);
    bool removePair(const QString& joinTable, qint64 source, qint64 target, QString* error);
    bool commit(QString* error);
    void rollback();
    // What made the last failed write of a save fail: DiskFull when the disk (or the user's
    // quota) is full, WriteFailed when the disk refused the write otherwise, SaveFailed when the
    // statement itself failed (a constraint, a busy database).
    StoreError::Code lastWriteFailure() const;

    // Writes a consistent copy of the database as committed so far to `path`, which must not
    // exist yet.
    bool writeCopy(const QString& path, QString* error);
    // The value of `column` in the row of `table` with the lowest key; null when there is none.
    QVariant firstValue(const QString& table, const QString& column);

private:
    bool openConnection(const QString& path, const QString& options, QString* error);
    QSqlDatabase connection() const;
    // A statement prepared once and kept for reuse.
    QSqlQuery* prepared(const QString& sql, QString* error);
    // Runs a prepared statement with its values bound in order.
    bool run(const QString& sql, const QVariantList& values, QString* error);
    bool exec(QSqlQuery* query, QString* error);
    // Notes SQLite's result and the system's error of a failed write, sets `error` to `text`
    // and returns false.
    bool writeFailed(const QString& text, QString* error);
    // Prepares, binds and runs a reading statement; the query is then ready for next() and must
    // be finished by the caller. Null after reporting `failure` with the database's reason.
    QSqlQuery* executed(const SqlStatement& statement, const QString& failure, StoreError* error);
    std::optional<QVariant> scalar(const std::optional<SqlStatement>& statement, const QString& failure,
                                   StoreError* error);
    bool checkOwnership(const QString& path, QString* storedVersion, StoreError* error);
    bool checkIntegrity(const QString& path, StoreError* error);
    static StoreError notOursError(const QString& path, const QString& what);
    static StoreError damagedError(const QString& path, const QString& problem);
    StoreError openError(const QString& path, const QSqlError& sqlError) const;

    const DataModel* m_model;
    QString m_connectionName;
    sqlite3* m_handle = nullptr;
    int m_failedWriteCode = 0;  // SQLite's extended result code of the last failed write
    int m_failedWriteErrno = 0; // and the system's error number behind it, if any
    std::unordered_map<QString, std::unique_ptr<QSqlQuery>> m_statements;
    std::vector<std::unique_ptr<SqliteStatement>> m_insertStatements; // by entity
};

} // namespace corvanta::store
