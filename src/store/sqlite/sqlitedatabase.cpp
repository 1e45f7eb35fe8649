#include "sqlitedatabase.h"

#include "predicate/recordref.h"
#include "schema.h"
#include "sqlitefunctions.h"
#include "sqlitestatement.h"
#include "store/datamodel.h"
#include "store/valueconversion.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QVersionNumber>
#include <atomic>
#include <cerrno>
#include <sqlite3.h>

namespace corvanta::store {

namespace {

QString nextConnectionName()
{
    static std::atomic<int> counter{0};
    return QStringLiteral("corvanta-store-%1").arg(++counter);
}

QString quoted(const QString& name)
{
    return SqlCompiler::quoted(name);
}

enum class FileStart {
    Empty,    // missing or empty: a database not begun yet
    Database, // begins as every SQLite database does
    Other,
};

FileStart fileStart(const QString& path)
{
    QFile in(path);
    if (!in.open(QIODevice::ReadOnly))
        return FileStart::Empty;
    const QByteArray header = in.read(16);
    if (header.isEmpty())
        return FileStart::Empty;
    return header == QByteArray("SQLite format 3\0", 16) ? FileStart::Database : FileStart::Other;
}

} // namespace

StoreError SqliteDatabase::notOursError(const QString& path, const QString& what)
{
    return StoreError::make(StoreError::NotADatabase,
                            tr("The file \"%1\" is not a Corvanta company database.").arg(path),
                            tr("%1. Nothing in it was changed; choose the company database's own file, whose "
                               "name ends in \".cvdb\".")
                                .arg(what.endsWith(QLatin1Char('.')) ? what.chopped(1) : what));
}

// Why SQLite could not read or set up a file being opened: damage, a disk that is full or
// failing, or a file that is not ours.
StoreError SqliteDatabase::openError(const QString& path, const QSqlError& sqlError) const
{
    const int code = sqlError.nativeErrorCode().toInt() & 0xff;
    const int systemError = m_handle ? sqlite3_system_errno(m_handle) : 0;
    if (code == SQLITE_CORRUPT || code == SQLITE_NOTADB)
        return damagedError(path, sqlError.databaseText());
    if (code == SQLITE_FULL || systemError == ENOSPC || systemError == EDQUOT)
        return StoreError::make(
            StoreError::DiskFull,
            tr("The disk is full: the company database \"%1\" cannot be opened.").arg(path),
            tr("Nothing in it was changed. Free some space on the disk, then try again."));
    if (code == SQLITE_IOERR || code == SQLITE_CANTOPEN || code == SQLITE_READONLY || code == SQLITE_PERM)
        return StoreError::make(
            StoreError::WriteFailed,
            tr("The company database \"%1\" cannot be opened: the disk could not be read or written.")
                .arg(path),
            tr("Nothing in it was changed. Check the disk, then try again. (%1)")
                .arg(sqlError.databaseText()));
    return notOursError(path, sqlError.databaseText());
}

StoreError SqliteDatabase::damagedError(const QString& path, const QString& problem)
{
    return StoreError::make(StoreError::Damaged, tr("The company database \"%1\" is damaged.").arg(path),
                            tr("SQLite reports: %1. Nothing in it was changed; restore the company database "
                               "from a backup.")
                                .arg(problem));
}

SqliteDatabase::SqliteDatabase(const DataModel* model)
    : m_model(model)
    , m_connectionName(nextConnectionName())
    , m_insertStatements(model ? size_t(model->entities().size()) : 0)
{}

SqliteDatabase::~SqliteDatabase()
{
    m_insertStatements.clear();
    m_statements.clear();
    if (QSqlDatabase::contains(m_connectionName)) {
        {
            QSqlDatabase db = QSqlDatabase::database(m_connectionName, false);
            db.close();
        }
        QSqlDatabase::removeDatabase(m_connectionName);
    }
}

QSqlDatabase SqliteDatabase::connection() const
{
    return QSqlDatabase::database(m_connectionName, false);
}

bool SqliteDatabase::openConnection(const QString& path, const QString& options, QString* error)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    db.setDatabaseName(path);
    db.setConnectOptions(options);
    if (!db.open()) {
        *error = db.lastError().text();
        return false;
    }
    return true;
}

bool SqliteDatabase::openReadOnly(const QString& path, QString* error)
{
    if (!QFileInfo(path).isFile()) {
        *error = tr("The database \"%1\" does not exist.").arg(path);
        return false;
    }
    return openConnection(path, QStringLiteral("QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=5000"), error);
}

bool SqliteDatabase::open(const QString& path, bool checkIntegrity, QString* storedVersion, StoreError* error)
{
    const FileStart start = fileStart(path);
    if (start == FileStart::Other) {
        report(error, notOursError(path, tr("It is not a database file.")));
        return false;
    }
    QString why;
    if (!openConnection(path, QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"), &why)) {
        report(error, StoreError::make(StoreError::NotWritable,
                                       tr("The company database \"%1\" cannot be opened.").arg(path), why));
        return false;
    }
    const QVariant handle = connection().driver()->handle();
    if (handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0)
        m_handle = *static_cast<sqlite3* const*>(handle.data());
    if (!checkOwnership(path, storedVersion, error))
        return false;
    if (checkIntegrity && start == FileStart::Database && !this->checkIntegrity(path, error))
        return false;

    QSqlQuery q(connection());
    q.exec(QStringLiteral("PRAGMA journal_mode = WAL"));
    q.exec(QStringLiteral("PRAGMA synchronous = FULL"));
    q.exec(QStringLiteral("PRAGMA foreign_keys = ON"));
    // A company's whole history keeps many indexes busy; a larger cache keeps saves from
    // slowing down as the file grows.
    q.exec(QStringLiteral("PRAGMA cache_size = -32768"));
    q.finish();

    if (!m_handle || !sqlitefunctions::registerAll(m_handle)) {
        report(error, StoreError::make(StoreError::StoreInitFailed, tr("Failed to initialize the store"),
                                       tr("There was an error building up the data file.")));
        return false;
    }

    QSqlDatabase db = connection();
    QSqlError failure;
    if (!schema::migrate(db, *m_model, &failure)) {
        StoreError e = openError(path, failure);
        if (e.code == StoreError::NotADatabase)
            e = StoreError::make(StoreError::StoreInitFailed,
                                 tr("The company database \"%1\" could not be brought up to date.").arg(path),
                                 failure.text());
        report(error, e);
        return false;
    }
    return true;
}

// A file is ours when it carries the model's application id, or when it is new: no tables at
// all, or those of a file written before the id was set. A file that SQLite cannot read is
// damaged; one written by a newer data model than ours is refused before anything is changed.
bool SqliteDatabase::checkOwnership(const QString& path, QString* storedVersion, StoreError* error)
{
    QSqlQuery q(connection());
    const auto unreadable = [&](const QSqlError& sqlError) {
        report(error, openError(path, sqlError));
        return false;
    };
    if (!q.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'")))
        return unreadable(q.lastError());
    QStringList tables;
    while (q.next())
        tables << q.value(0).toString();
    if (!q.exec(QStringLiteral("PRAGMA application_id")) || !q.next())
        return unreadable(q.lastError());
    const int applicationId = q.value(0).toInt();
    if (applicationId != 0 && applicationId != m_model->applicationId()) {
        report(error, notOursError(path, tr("It belongs to another program.")));
        return false;
    }
    // A file without our id is one written before the id was set: only tables of the model, and
    // the model version recorded (checked below). A table the model does not know is another
    // program's, and our tables are never added beside it.
    const bool unmarked = applicationId == 0 && !tables.isEmpty();
    const QStringList joinTables = m_model->joinTables();
    const bool onlyModelTables = std::all_of(tables.cbegin(), tables.cend(), [&](const QString& table) {
        return table.startsWith(QLatin1String("sqlite_")) || joinTables.contains(table) ||
               m_model->entity(table) != nullptr;
    });
    if (unmarked && !onlyModelTables) {
        report(error, notOursError(path, tr("It holds the tables of another program.")));
        return false;
    }

    const DataModel::VersionSetting& setting = m_model->versionSetting();
    storedVersion->clear();
    if (!setting.entity.isEmpty() && tables.contains(setting.entity)) {
        if (!q.prepare(QStringLiteral("SELECT %1 FROM %2 WHERE %3 = ?")
                           .arg(quoted(setting.valueAttribute), quoted(setting.entity),
                                quoted(setting.keyAttribute))))
            return unreadable(q.lastError());
        q.addBindValue(setting.key);
        if (!q.exec())
            return unreadable(q.lastError());
        if (q.next())
            *storedVersion = q.value(0).toString();
    }
    q.finish();
    if (unmarked && storedVersion->isEmpty()) {
        report(error, notOursError(path, tr("It records no data-model version.")));
        return false;
    }
    const QVersionNumber stored = QVersionNumber::fromString(*storedVersion);
    if (!storedVersion->isEmpty() &&
        QVersionNumber::compare(stored, QVersionNumber::fromString(m_model->version())) > 0) {
        report(error,
               StoreError::make(
                   StoreError::NewerModel,
                   tr("The company database \"%1\" was made by a newer version of Corvanta.").arg(path),
                   tr("Its data model is %1; this version knows %2. Open it with the newer version "
                      "of Corvanta; nothing in it was changed.")
                       .arg(*storedVersion, m_model->version())));
        return false;
    }
    return true;
}

// Reads every page of the file: damage anywhere is found before the first write, not by the
// save that happens to touch it.
bool SqliteDatabase::checkIntegrity(const QString& path, StoreError* error)
{
    QSqlQuery q(connection());
    if (!q.exec(QStringLiteral("PRAGMA quick_check"))) {
        report(error, openError(path, q.lastError()));
        return false;
    }
    QStringList problems;
    while (q.next() && problems.size() < 3)
        problems << q.value(0).toString().simplified();
    q.finish();
    if (problems == QStringList{QStringLiteral("ok")})
        return true;
    report(error, damagedError(path, problems.join(QLatin1String("; "))));
    return false;
}

qint64 SqliteDatabase::largestKey(const EntityDescription& entity)
{
    QSqlQuery q(connection());
    if (q.exec(QStringLiteral("SELECT max(pk) FROM %1").arg(quoted(entity.name()))) && q.next())
        return q.value(0).toLongLong();
    return 0;
}

QSqlQuery* SqliteDatabase::prepared(const QString& sql, QString* error)
{
    const auto it = m_statements.find(sql);
    if (it != m_statements.end())
        return it->second.get();
    auto query = std::make_unique<QSqlQuery>(connection());
    query->setForwardOnly(true);
    if (!query->prepare(sql)) {
        *error = query->lastError().text();
        return nullptr;
    }
    QSqlQuery* raw = query.get();
    m_statements.emplace(sql, std::move(query));
    return raw;
}

bool SqliteDatabase::exec(QSqlQuery* query, QString* error)
{
    const bool ok = query->exec();
    if (!ok)
        writeFailed(query->lastError().text(), error);
    query->finish();
    return ok;
}

bool SqliteDatabase::writeFailed(const QString& text, QString* error)
{
    // Read before anything else runs on the connection: the next statement replaces them.
    m_failedWriteCode = m_handle ? sqlite3_extended_errcode(m_handle) : SQLITE_ERROR;
    m_failedWriteErrno = m_handle ? sqlite3_system_errno(m_handle) : 0;
    *error = text;
    return false;
}

StoreError::Code SqliteDatabase::lastWriteFailure() const
{
    if (m_failedWriteErrno == ENOSPC || m_failedWriteErrno == EDQUOT)
        return StoreError::DiskFull;
    switch (m_failedWriteCode & 0xff) {
    case SQLITE_FULL:
        return StoreError::DiskFull;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return StoreError::Locked;
    case SQLITE_IOERR:
    case SQLITE_READONLY:
    case SQLITE_CANTOPEN:
        return StoreError::WriteFailed;
    default:
        return StoreError::SaveFailed;
    }
}

bool SqliteDatabase::run(const QString& sql, const QVariantList& values, QString* error)
{
    QSqlQuery* query = prepared(sql, error);
    if (!query)
        return false;
    for (qsizetype i = 0; i < values.size(); ++i)
        query->bindValue(int(i), values.at(i));
    return exec(query, error);
}

bool SqliteDatabase::readRecord(const EntityDescription& entity, qint64 pk,
                                const std::function<void(const ResultRow&)>& read, QString* error)
{
    QString columns = QStringLiteral("pk");
    for (const QString& column : entity.columns())
        columns += QLatin1String(", ") + quoted(column);
    QSqlQuery* query =
        prepared(QStringLiteral("SELECT %1 FROM %2 WHERE pk = ?").arg(columns, quoted(entity.name())), error);
    if (!query)
        return false;
    query->bindValue(0, pk);
    if (!query->exec()) {
        *error = query->lastError().text();
        return false;
    }
    const bool found = query->next();
    if (found)
        read(ResultRow(*query));
    query->finish();
    return found;
}

std::optional<QList<qint64>> SqliteDatabase::relatedKeys(const RelationshipDescription& relationship,
                                                         qint64 owner, QString* error)
{
    QString sql;
    if (relationship.storage == RelationshipStorage::JoinTable) {
        const char* own = relationship.joinOwner ? "source" : "target";
        const char* other = relationship.joinOwner ? "target" : "source";
        sql = QStringLiteral("SELECT %1 FROM %2 WHERE %3 = ? ORDER BY %1")
                  .arg(QLatin1String(other), quoted(relationship.joinTable), QLatin1String(own));
    } else {
        sql = QStringLiteral("SELECT pk FROM %1 WHERE %2 = ? ORDER BY pk")
                  .arg(quoted(relationship.destination), quoted(m_model->inverseOf(relationship).name));
    }
    QSqlQuery* query = prepared(sql, error);
    if (!query)
        return std::nullopt;
    query->bindValue(0, owner);
    if (!query->exec()) {
        *error = query->lastError().text();
        return std::nullopt;
    }
    QList<qint64> keys;
    while (query->next())
        keys << query->value(0).toLongLong();
    query->finish();
    return keys;
}

bool SqliteDatabase::select(const FetchRequest& request,
                            const std::function<void(qint64 pk, const ResultRow&)>& each, StoreError* error)
{
    const std::optional<SqlStatement> statement = SqlCompiler(*m_model).select(request, error);
    if (!statement)
        return false;
    QString why;
    QSqlQuery* query = prepared(statement->text, &why);
    if (!query) {
        report(error, StoreError::make(StoreError::InvalidFetch, tr("The records could not be read."), why));
        return false;
    }
    for (qsizetype i = 0; i < statement->bindings.size(); ++i)
        query->bindValue(int(i), statement->bindings.at(i));
    if (!query->exec()) {
        report(error, StoreError::make(StoreError::InvalidFetch, tr("The records could not be read."),
                                       query->lastError().text()));
        query->finish();
        return false;
    }
    const ResultRow row(*query);
    while (query->next())
        each(query->value(0).toLongLong(), row);
    query->finish();
    return true;
}

QSqlQuery* SqliteDatabase::executed(const SqlStatement& statement, const QString& failure, StoreError* error)
{
    QString why;
    QSqlQuery* query = prepared(statement.text, &why);
    if (!query) {
        report(error, StoreError::make(StoreError::InvalidFetch, failure, why));
        return nullptr;
    }
    for (qsizetype i = 0; i < statement.bindings.size(); ++i)
        query->bindValue(int(i), statement.bindings.at(i));
    if (!query->exec()) {
        report(error, StoreError::make(StoreError::InvalidFetch, failure, query->lastError().text()));
        query->finish();
        return nullptr;
    }
    return query;
}

std::optional<QVariant> SqliteDatabase::scalar(const std::optional<SqlStatement>& statement,
                                               const QString& failure, StoreError* error)
{
    if (!statement)
        return std::nullopt;
    QSqlQuery* query = executed(*statement, failure, error);
    if (!query)
        return std::nullopt;
    std::optional<QVariant> result;
    if (query->next())
        result = query->value(0);
    else
        report(error, StoreError::make(StoreError::InvalidFetch, failure, query->lastError().text()));
    query->finish();
    return result;
}

std::optional<qint64> SqliteDatabase::count(const FetchRequest& request, StoreError* error)
{
    const std::optional<QVariant> result =
        scalar(SqlCompiler(*m_model).count(request, error), tr("The records could not be counted."), error);
    return result ? std::optional<qint64>(result->toLongLong()) : std::nullopt;
}

std::optional<QVariant> SqliteDatabase::aggregate(const FetchRequest& request, Aggregate function,
                                                  const QString& keyPath, StoreError* error)
{
    return scalar(SqlCompiler(*m_model).aggregate(request, function, keyPath, error),
                  tr("The records could not be added up."), error);
}

std::optional<QList<GroupSums>> SqliteDatabase::groupedSums(const FetchRequest& request,
                                                            const QString& groupKeyPath,
                                                            const QStringList& sumKeyPaths, StoreError* error)
{
    QString groupEntity;
    std::optional<AttributeType> groupType;
    const std::optional<SqlStatement> statement = SqlCompiler(*m_model).groupedSums(
        request, groupKeyPath, sumKeyPaths, &groupEntity, &groupType, error);
    if (!statement)
        return std::nullopt;
    QSqlQuery* query = executed(*statement, tr("The records could not be added up."), error);
    if (!query)
        return std::nullopt;
    QList<GroupSums> groups;
    while (query->next()) {
        GroupSums group;
        const QVariant value = query->value(0);
        if (!value.isNull()) {
            if (!groupEntity.isEmpty())
                group.group = QVariant::fromValue(predicate::RecordRef{groupEntity, value.toLongLong()});
            else
                group.group = groupType ? valueconversion::toMemory(*groupType, value) : value;
        }
        group.count = query->value(1).toLongLong();
        group.sums.reserve(sumKeyPaths.size());
        for (int i = 0; i < sumKeyPaths.size(); ++i)
            group.sums << query->value(2 + i).toDouble();
        groups << group;
    }
    query->finish();
    return groups;
}

std::optional<QList<StoredRow>> SqliteDatabase::values(const FetchRequest& request,
                                                       const QStringList& keyPaths, StoreError* error)
{
    const std::optional<SqlStatement> statement = SqlCompiler(*m_model).values(request, keyPaths, error);
    if (!statement)
        return std::nullopt;
    QSqlQuery* query = executed(*statement, tr("The records could not be read."), error);
    if (!query)
        return std::nullopt;
    QList<StoredRow> rows;
    const int columns = int(keyPaths.size());
    while (query->next()) {
        StoredRow row;
        row.key = query->value(0).toLongLong();
        row.values.reserve(columns);
        for (int i = 1; i <= columns; ++i)
            row.values << query->value(i);
        rows << std::move(row);
    }
    query->finish();
    return rows;
}

QueryPlan SqliteDatabase::explain(const FetchRequest& request, Aggregate function, const QString& keyPath)
{
    QueryPlan plan;
    const std::optional<SqlStatement> statement = SqlCompiler(*m_model).aggregate(request, function, keyPath);
    if (!statement)
        return plan;
    plan.statement = statement->text;
    QSqlQuery query(connection());
    if (!query.prepare(QStringLiteral("EXPLAIN QUERY PLAN ") + statement->text))
        return plan;
    for (qsizetype i = 0; i < statement->bindings.size(); ++i)
        query.bindValue(int(i), statement->bindings.at(i));
    if (query.exec()) {
        while (query.next())
            plan.steps << query.value(3).toString();
    }
    return plan;
}

bool SqliteDatabase::beginRead()
{
    QSqlQuery control(connection());
    return control.exec(QStringLiteral("BEGIN DEFERRED"));
}

void SqliteDatabase::endRead()
{
    QSqlQuery control(connection());
    control.exec(QStringLiteral("COMMIT"));
}

bool SqliteDatabase::begin(QString* error)
{
    m_failedWriteCode = SQLITE_OK;
    m_failedWriteErrno = 0;
    QSqlQuery control(connection());
    if (!control.exec(QStringLiteral("BEGIN IMMEDIATE")))
        return writeFailed(control.lastError().text(), error);
    // Records may be written before the records they point at, within one save.
    control.exec(QStringLiteral("PRAGMA defer_foreign_keys = ON"));
    return true;
}

bool SqliteDatabase::commit(QString* error)
{
    QSqlQuery control(connection());
    if (control.exec(QStringLiteral("COMMIT")))
        return true;
    return writeFailed(control.lastError().text(), error);
}

void SqliteDatabase::rollback()
{
    // A full disk or an I/O error may have ended the transaction already; ROLLBACK then only
    // reports that none is active.
    if (m_handle && sqlite3_get_autocommit(m_handle))
        return;
    QSqlQuery control(connection());
    control.exec(QStringLiteral("ROLLBACK"));
}

bool SqliteDatabase::insertRecord(const EntityDescription& entity, qint64 pk,
                                  const std::vector<QVariant>& slotValues, QString* error)
{
    // Written through SQLite directly: binding through Qt costs more per value than SQLite's
    // own work, and a record binds dozens of values.
    std::unique_ptr<SqliteStatement>& insert = m_insertStatements[size_t(entity.index())];
    if (!insert) {
        QStringList names{QStringLiteral("pk")};
        QStringList marks{QStringLiteral("?")};
        for (const QString& column : entity.columns()) {
            names << quoted(column);
            marks << QStringLiteral("?");
        }
        QString why;
        insert = SqliteStatement::prepare(
            m_handle,
            QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                .arg(quoted(entity.name()), names.join(QLatin1String(", ")), marks.join(QLatin1String(", "))),
            &why);
        if (!insert)
            return writeFailed(why, error);
    }
    insert->bind(0, pk);
    const QList<int>& slots = entity.columnSlots();
    const QList<AttributeType>& types = entity.columnTypes();
    for (qsizetype i = 0; i < slots.size(); ++i) {
        const QVariant& value = slotValues[size_t(slots.at(i))];
        if (!value.isNull())
            insert->bind(int(i) + 1, valueconversion::toSql(types.at(i), value));
    }
    QString why;
    if (!insert->run(&why))
        return writeFailed(why, error);
    return true;
}

bool SqliteDatabase::updateRecord(const EntityDescription& entity, qint64 pk, const QList<int>& columns,
                                  const std::vector<QVariant>& slotValues, QString* error)
{
    QStringList assignments;
    QVariantList values;
    for (int column : columns) {
        assignments << quoted(entity.columns().at(column)) + QLatin1String(" = ?");
        values << valueconversion::toSql(entity.columnTypes().at(column),
                                         slotValues[size_t(entity.columnSlots().at(column))]);
    }
    values << pk;
    return run(QStringLiteral("UPDATE %1 SET %2 WHERE pk = ?")
                   .arg(quoted(entity.name()), assignments.join(QLatin1String(", "))),
               values, error);
}

bool SqliteDatabase::deleteRecord(const EntityDescription& entity, qint64 pk, QString* error)
{
    return run(QStringLiteral("DELETE FROM %1 WHERE pk = ?").arg(quoted(entity.name())), {pk}, error);
}

bool SqliteDatabase::addPair(const QString& joinTable, qint64 source, qint64 target, QString* error)
{
    return run(
        QStringLiteral("INSERT OR IGNORE INTO %1 (source, target) VALUES (?, ?)").arg(quoted(joinTable)),
        {source, target}, error);
}

bool SqliteDatabase::removePair(const QString& joinTable, qint64 source, qint64 target, QString* error)
{
    return run(QStringLiteral("DELETE FROM %1 WHERE source = ? AND target = ?").arg(quoted(joinTable)),
               {source, target}, error);
}

bool SqliteDatabase::writeCopy(const QString& path, QString* error)
{
    if (QFileInfo::exists(path)) {
        *error = tr("The copy \"%1\" already exists.").arg(path);
        return false;
    }
    QSqlQuery q(connection());
    q.prepare(QStringLiteral("VACUUM INTO ?"));
    q.addBindValue(path);
    if (!q.exec()) {
        *error = q.lastError().text();
        QFile::remove(path);
        return false;
    }
    return true;
}

QVariant SqliteDatabase::firstValue(const QString& table, const QString& column)
{
    QSqlQuery q(connection());
    if (q.exec(QStringLiteral("SELECT %1 FROM %2 ORDER BY pk LIMIT 1").arg(quoted(column), quoted(table))) &&
        q.next())
        return q.value(0);
    return {};
}

} // namespace corvanta::store
