#include "store.h"

#include "databaselock.h"
#include "editingcontext.h"
#include "sqlite/sqlitedatabase.h"

#include <QDir>
#include <QFileInfo>

namespace corvanta::store {

namespace {

// Files up to this size are read whole at every open: some 15 ms when the file is in the cache.
// Larger ones are read whole after an unclean end only, so that a command on a company with
// years of documents (printing one of them, say) does not spend most of its time reading pages
// it never needs.
constexpr qint64 kFullCheckSizeLimit = qint64(4) * 1024 * 1024;

// Writable by this user, and not marked read-only for everybody: a superuser, who may write
// anything, still leaves alone what was made read-only.
bool isWritable(const QFileInfo& info)
{
    return info.isWritable() &&
           (info.permissions() & (QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther)) != 0;
}

} // namespace

Store::Store(const QString& path, const DataModel& model)
    : m_path(QFileInfo(path).absoluteFilePath())
    , m_model(model)
    , m_database(std::make_unique<SqliteDatabase>(&model))
    , m_lastPk(size_t(model.entities().size()), 0)
{
    // Lets the predicate evaluator compare records given as Record* with references.
    static const bool converterRegistered = QMetaType::registerConverter<Record*, predicate::RecordRef>(
        [](Record* record) { return record ? record->ref() : predicate::RecordRef(); });
    Q_UNUSED(converterRegistered)
}

std::unique_ptr<Store> Store::open(const QString& path, const DataModel& model, StoreError* error)
{
    std::unique_ptr<Store> store(new Store(path, model));
    if (!store->openDatabase(error))
        return nullptr;
    return store;
}

Store::ReadSnapshot::ReadSnapshot(Store& store)
    : m_store(store)
    , m_active(store.database().beginRead())
{}

Store::ReadSnapshot::~ReadSnapshot()
{
    if (m_active)
        m_store.database().endRead();
}

Store::~Store()
{
    m_mainContext.reset();
    m_database.reset();
    m_lock.reset();
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
    if (!isWritable(QFileInfo(folder))) {
        report(error, StoreError::make(
                          StoreError::NotWritable,
                          tr("The company database \"%1\" is in a folder that cannot be written (%2).")
                              .arg(m_path, folder),
                          tr("Nothing in it was changed. Copy the file to a folder you may write in and "
                             "open it from there, or make its folder writable.")));
        return false;
    }
    if (file.exists() && file.isDir()) {
        report(error, StoreError::make(StoreError::NotADatabase,
                                       tr("\"%1\" is a folder, not a company database file.").arg(m_path)));
        return false;
    }
    if (file.exists() && !file.isFile()) {
        // A pipe or a device: reading it could wait forever or never end.
        report(error,
               StoreError::make(StoreError::NotADatabase,
                                tr("The file \"%1\" is not a Corvanta company database.").arg(m_path),
                                tr("It is not a regular file. Nothing in it was changed; choose the company "
                                   "database's own file, whose name ends in \".cvdb\".")));
        return false;
    }
    if (file.exists() && (!file.isReadable() || !isWritable(file))) {
        report(error,
               StoreError::make(StoreError::NotWritable,
                                tr("The company database \"%1\" cannot be read and written.").arg(m_path),
                                tr("Nothing in it was changed. Allow yourself to read and write the file, or "
                                   "copy it to a folder of your own and open it from there.")));
        return false;
    }

    // Every page is read at open when that is quick, and always after an instance holding the
    // file ended without closing it (its lock file is still there).
    const bool endedUncleanly = QFileInfo::exists(m_path + QLatin1String(".lock"));
    const bool checkIntegrity = endedUncleanly || file.size() <= kFullCheckSizeLimit;
    if (!lock(error) || !m_database->open(m_path, checkIntegrity, &m_storedVersion, error))
        return false;
    for (const EntityDescription& entity : m_model.entities())
        m_lastPk[size_t(entity.index())] = m_database->largestKey(entity);
    m_mainContext.reset(new EditingContext(*this, true));
    return true;
}

bool Store::lock(StoreError* error)
{
    m_lock = std::make_unique<DatabaseLock>(m_path + QLatin1String(".lock"));
    QString why;
    switch (m_lock->acquire(&why)) {
    case DatabaseLock::Result::Acquired:
        return true;
    case DatabaseLock::Result::HeldElsewhere:
        report(error,
               StoreError::make(
                   StoreError::AlreadyOpen,
                   tr("The company database \"%1\" is already open in another running instance of Corvanta.")
                       .arg(m_path),
                   tr("Quit the other instance first: a company database can be used by one instance at a "
                      "time.")));
        break;
    case DatabaseLock::Result::Failed:
        report(error,
               StoreError::make(StoreError::NotWritable,
                                tr("The company database \"%1\" cannot be locked for writing.").arg(m_path),
                                tr("Check that you may write in its folder (%1).").arg(why)));
        break;
    }
    m_lock.reset();
    return false;
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
    QString why;
    if (m_database->writeCopy(path, &why))
        return true;
    report(error, StoreError::make(StoreError::NotWritable,
                                   tr("The company database could not be copied to \"%1\".").arg(path), why));
    return false;
}

QueryPlan Store::explain(const FetchRequest& request, Aggregate function, const QString& keyPath)
{
    return m_database->explain(request, function, keyPath);
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

void Store::contextDidSave(const ChangeSet& changes, EditingContext* origin)
{
    Q_EMIT didSave(changes, origin);
    if (origin != m_mainContext.get() && m_mainContext->automaticallyMergesChanges())
        m_mainContext->mergeChanges(changes);
}

} // namespace corvanta::store
