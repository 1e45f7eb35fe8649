#include "store.h"

#include "clientsrecord.h"
#include "corvantamodel.h"
#include "editingcontext.h"
#include "schema.h"
#include "sqlcompiler.h"
#include "sqlitefunctions.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QSqlDriver>
#include <QSqlError>
#include <QVersionNumber>
#include <atomic>

namespace corvanta::model {

namespace {

QString nextConnectionName()
{
    static std::atomic<int> counter{0};
    return QStringLiteral("corvanta-store-%1").arg(++counter);
}

} // namespace

Store::Store(const QString& path, const DataModel& model)
    : m_path(QFileInfo(path).absoluteFilePath())
    , m_model(model)
    , m_connectionName(nextConnectionName())
    , m_lastPk(size_t(model.entities().size()), 0)
    , m_insertStatements(size_t(model.entities().size()))
    , m_deleteStatements(size_t(model.entities().size()), nullptr)
{
    // Lets the predicate evaluator compare records given as Record* with references.
    static const bool converterRegistered = QMetaType::registerConverter<Record*, predicate::RecordRef>(
        [](Record* record) { return record ? record->ref() : predicate::RecordRef(); });
    Q_UNUSED(converterRegistered)
    registerRecordClass(QStringLiteral("Clients"),
                        [](const Record::Init& init) { return std::make_unique<ClientsRecord>(init); });
}

std::unique_ptr<Store> Store::open(const QString& path, StoreError* error)
{
    return open(path, corvantaDataModel(), error);
}

std::unique_ptr<Store> Store::open(const QString& path, const DataModel& model, StoreError* error)
{
    std::unique_ptr<Store> store(new Store(path, model));
    if (!store->openDatabase(error))
        return nullptr;
    return store;
}

Store::~Store()
{
    m_mainContext.reset();
    m_insertStatements.clear();
    m_deleteStatements.clear();
    m_statements.clear();
    if (QSqlDatabase::contains(m_connectionName)) {
        {
            QSqlDatabase db = QSqlDatabase::database(m_connectionName, false);
            db.close();
        }
        QSqlDatabase::removeDatabase(m_connectionName);
    }
    if (m_lock)
        m_lock->unlock();
}

bool Store::openDatabase(StoreError* error)
{
    const QFileInfo file(m_path);
    const QString folder = file.absolutePath();
    const QFileInfo folderInfo(folder);
    if (folderInfo.exists() && !folderInfo.isDir()) {
        report(error, StoreError::make(
                          StoreError::FolderIsFile,
                          tr("Expected a folder to store application data, found a file (%1).").arg(folder)));
        return false;
    }
    if (!folderInfo.exists() && !QDir().mkpath(folder)) {
        report(error, StoreError::make(StoreError::NotWritable,
                                       tr("The folder \"%1\" cannot be created.").arg(folder),
                                       tr("Check that the location exists and that you may write there.")));
        return false;
    }
    if (!QFileInfo(folder).isWritable()) {
        report(error, StoreError::make(StoreError::NotWritable,
                                       tr("The folder \"%1\" cannot be written.").arg(folder),
                                       tr("A company database needs a folder that you may write in.")));
        return false;
    }
    if (file.exists() && file.isDir()) {
        report(error, StoreError::make(StoreError::NotADatabase,
                                       tr("\"%1\" is a folder, not a company database file.").arg(m_path)));
        return false;
    }
    if (file.exists() && (!file.isReadable() || !file.isWritable())) {
        report(error,
               StoreError::make(StoreError::NotWritable,
                                tr("The company database \"%1\" cannot be read and written.").arg(m_path),
                                tr("Check the file's permissions.")));
        return false;
    }

    m_lock = std::make_unique<QLockFile>(m_path + QLatin1String(".lock"));
    m_lock->setStaleLockTime(0); // a lock is stale only when its process is gone
    if (!m_lock->tryLock(0)) {
        if (m_lock->error() == QLockFile::LockFailedError) {
            report(error,
                   StoreError::make(
                       StoreError::AlreadyOpen,
                       tr("The company database \"%1\" is already open in another running instance of "
                          "Corvanta.")
                           .arg(m_path),
                       tr("Quit the other instance first: a company database can be used by one instance "
                          "at a time.")));
        } else {
            report(error, StoreError::make(
                              StoreError::NotWritable,
                              tr("The company database \"%1\" cannot be locked for writing.").arg(m_path),
                              tr("Check that you may write in its folder.")));
        }
        m_lock.reset();
        return false;
    }

    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    db.setDatabaseName(m_path);
    db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
    if (!db.open()) {
        report(error, StoreError::make(StoreError::NotWritable,
                                       tr("The company database \"%1\" cannot be opened.").arg(m_path),
                                       db.lastError().text()));
        return false;
    }

    QSqlQuery q(db);
    const auto notOurs = [&](const QString& reason) {
        report(error, StoreError::make(StoreError::NotADatabase,
                                       tr("The file \"%1\" is not a Corvanta company database.").arg(m_path),
                                       reason));
        return false;
    };
    if (!q.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'")))
        return notOurs(q.lastError().databaseText());
    QStringList tables;
    while (q.next())
        tables << q.value(0).toString();
    if (!q.exec(QStringLiteral("PRAGMA application_id")) || !q.next())
        return notOurs(q.lastError().databaseText());
    const int applicationId = q.value(0).toInt();
    if (applicationId != 0 && applicationId != schema::kApplicationId)
        return notOurs(tr("It belongs to another program."));
    if (applicationId == 0 && !tables.isEmpty() && !tables.contains(QStringLiteral("Settings")))
        return notOurs(tr("It holds tables of another program."));

    if (tables.contains(QStringLiteral("Settings")) &&
        q.exec(QStringLiteral("SELECT value FROM \"Settings\" WHERE \"key\" = 'version'")) && q.next())
        m_storedVersion = q.value(0).toString();
    q.finish();
    const QVersionNumber stored = QVersionNumber::fromString(m_storedVersion);
    if (!m_storedVersion.isEmpty() &&
        stored.majorVersion() > QVersionNumber::fromString(m_model.version()).majorVersion()) {
        report(
            error,
            StoreError::make(
                StoreError::StoreInitFailed,
                tr("The company database \"%1\" was made by a newer version of Corvanta.").arg(m_path),
                tr("Its data model is %1; this version knows %2.").arg(m_storedVersion, m_model.version())));
        return false;
    }

    q.exec(QStringLiteral("PRAGMA journal_mode = WAL"));
    q.exec(QStringLiteral("PRAGMA synchronous = FULL"));
    q.exec(QStringLiteral("PRAGMA foreign_keys = ON"));
    // A company's whole history keeps many indexes busy; a larger cache keeps saves from
    // slowing down as the file grows.
    q.exec(QStringLiteral("PRAGMA cache_size = -32768"));
    q.finish();

    const QVariant handle = db.driver()->handle();
    if (handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0)
        m_handle = *static_cast<sqlite3* const*>(handle.data());
    if (!m_handle || !sqlitefunctions::registerAll(m_handle)) {
        report(error, StoreError::make(StoreError::StoreInitFailed, tr("Failed to initialize the store"),
                                       tr("There was an error building up the data file.")));
        return false;
    }

    QString why;
    if (!schema::migrate(db, m_model, &why)) {
        report(error,
               StoreError::make(
                   StoreError::StoreInitFailed,
                   tr("The company database \"%1\" could not be brought up to date.").arg(m_path), why));
        return false;
    }

    for (const EntityDescription& entity : m_model.entities()) {
        if (q.exec(QStringLiteral("SELECT max(pk) FROM %1").arg(SqlCompiler::quoted(entity.name()))) &&
            q.next())
            m_lastPk[size_t(entity.index())] = q.value(0).toLongLong();
    }
    m_mainContext.reset(new EditingContext(*this, true));
    return true;
}

QSqlDatabase Store::database() const
{
    return QSqlDatabase::database(m_connectionName, false);
}

QSqlQuery* Store::preparedQuery(const QString& sql, QString* error)
{
    const auto it = m_statements.find(sql);
    if (it != m_statements.end())
        return it->second.get();
    auto query = std::make_unique<QSqlQuery>(database());
    query->setForwardOnly(true);
    if (!query->prepare(sql)) {
        if (error)
            *error = query->lastError().text();
        return nullptr;
    }
    QSqlQuery* raw = query.get();
    m_statements.emplace(sql, std::move(query));
    return raw;
}

SqliteStatement* Store::insertStatement(const EntityDescription& entity, QString* error)
{
    std::unique_ptr<SqliteStatement>& cached = m_insertStatements[size_t(entity.index())];
    if (!cached) {
        QStringList names{QStringLiteral("pk")};
        QStringList marks{QStringLiteral("?")};
        for (const QString& column : entity.columns()) {
            names << SqlCompiler::quoted(column);
            marks << QStringLiteral("?");
        }
        cached = SqliteStatement::prepare(m_handle,
                                          QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                                              .arg(SqlCompiler::quoted(entity.name()),
                                                   names.join(QLatin1String(", ")),
                                                   marks.join(QLatin1String(", "))),
                                          error);
    }
    return cached.get();
}

QSqlQuery* Store::deleteStatement(const EntityDescription& entity, QString* error)
{
    QSqlQuery*& cached = m_deleteStatements[size_t(entity.index())];
    if (!cached)
        cached = preparedQuery(
            QStringLiteral("DELETE FROM %1 WHERE pk = ?").arg(SqlCompiler::quoted(entity.name())), error);
    return cached;
}

EditingContext& Store::mainContext()
{
    return *m_mainContext;
}

std::unique_ptr<EditingContext> Store::newContext()
{
    return std::unique_ptr<EditingContext>(new EditingContext(*this, false));
}

bool Store::writeSnapshot(const QString& path, StoreError* error)
{
    if (QFileInfo::exists(path)) {
        report(error,
               StoreError::make(StoreError::NotWritable, tr("The copy \"%1\" already exists.").arg(path)));
        return false;
    }
    QSqlQuery q(database());
    q.prepare(QStringLiteral("VACUUM INTO ?"));
    q.addBindValue(path);
    if (!q.exec()) {
        report(error, StoreError::make(StoreError::NotWritable,
                                       tr("The company database could not be copied to \"%1\".").arg(path),
                                       q.lastError().text()));
        QFile::remove(path);
        return false;
    }
    return true;
}

void Store::registerRecordClass(const QString& entity, RecordFactory factory)
{
    m_factories.insert(entity, std::move(factory));
}

std::unique_ptr<Record> Store::createRecord(const Record::Init& init) const
{
    const auto it = m_factories.constFind(init.entity->name());
    if (it != m_factories.cend())
        return (*it)(init);
    return std::make_unique<Record>(init);
}

QVariant Store::cachedSetting(const QString& key)
{
    if (!m_settingsCache) {
        m_settingsCache.emplace();
        QSqlQuery q(database());
        if (q.exec(QStringLiteral("SELECT \"key\", \"value\" FROM \"Settings\""))) {
            while (q.next())
                m_settingsCache->insert(q.value(0).toString(), q.value(1));
        }
    }
    return m_settingsCache->value(key);
}

void Store::contextDidSave(const ChangeSet& changes, EditingContext* origin)
{
    if (changes.touches(QStringLiteral("Settings")))
        m_settingsCache.reset();
    Q_EMIT didSave(changes, origin);
    if (origin != m_mainContext.get() && m_mainContext->automaticallyMergesChanges())
        m_mainContext->mergeChanges(changes);
}

} // namespace corvanta::model
