#include "databasemanager.h"

#include "backupfolder.h"
#include "companieslog.h"
#include "datafolderarchive.h"
#include "store/storeerror.h"
#include "store/storefile.h"
#include "support/prompter.h"
#include "support/uuid.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <numeric>

namespace corvanta::companies {

using store::report;
using support::UUID;

using store::StoreError;
using support::Prompter;

namespace {

// The first bytes of every SQLite database file; an empty file is a database not yet begun.
bool looksLikeDatabase(const QString& file)
{
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly))
        return false;
    const QByteArray header = in.read(16);
    return header.isEmpty() || header == QByteArray("SQLite format 3\0", 16);
}

} // namespace

DatabaseManager::DatabaseManager(Prompter& prompter, const DatabaseFolders& folders, QObject* parent)
    : QObject(parent)
    , m_prompter(prompter)
    , m_folders(folders)
{
    m_folders.applicationFiles = QDir(m_folders.applicationFiles).absolutePath();
}

DatabaseManager::~DatabaseManager() = default;

QString DatabaseManager::databaseFilesDirectory() const
{
    return m_currentDatabaseDirectory.isEmpty() ? m_folders.applicationFiles : m_currentDatabaseDirectory;
}

QString DatabaseManager::databaseTempFilesDirectory() const
{
    const QString folder = QDir(databaseFilesDirectory()).filePath(QStringLiteral("temp"));
    QDir().mkpath(folder);
    return folder;
}

QString DatabaseManager::templateFilesDirectory() const
{
    const QString folder = QDir(databaseFilesDirectory()).filePath(QStringLiteral("templates"));
    QDir().mkpath(folder);
    return folder;
}

QString DatabaseManager::databaseListFile() const
{
    return QDir(m_folders.applicationFiles).filePath(QString::fromLatin1(DatabaseList::kFileName));
}

bool DatabaseManager::checkApplicationFilesDirectory(StoreError* error) const
{
    const QFileInfo info(m_folders.applicationFiles);
    if (info.exists() && !info.isDir()) {
        report(error, StoreError::make(StoreError::FolderIsFile,
                                       tr("Expected a folder to store application data, found a file (%1).")
                                           .arg(m_folders.applicationFiles)));
        return false;
    }
    if (!info.exists() && !QDir().mkpath(m_folders.applicationFiles)) {
        report(error,
               StoreError::make(StoreError::NotWritable,
                                tr("The folder \"%1\" cannot be created.").arg(m_folders.applicationFiles),
                                tr("Check that the location exists and that you may write there.")));
        return false;
    }
    return true;
}

bool DatabaseManager::isInUserDataFolder(const QString& directory) const
{
    return directory.startsWith(QLatin1String("/home/")) &&
           directory.contains(QLatin1String("/.local/share/"));
}

QString DatabaseManager::locate(const DatabaseEntry& entry) const
{
    const QString folder = isInUserDataFolder(entry.directory) ? m_folders.applicationFiles : entry.directory;
    return QDir(folder).filePath(entry.filename);
}

DatabaseEntry DatabaseManager::newEntry(const QString& name, const QString& directory) const
{
    DatabaseEntry entry;
    entry.name = name;
    entry.filename = QStringLiteral("%1.%2").arg(UUID(), QString::fromLatin1(DatabaseList::kExtension));
    entry.directory = directory;
    entry.path = QDir(directory).filePath(entry.filename);
    return entry;
}

QString DatabaseManager::selectedDatabaseFile()
{
    if (!m_selectedFile)
        m_selectedFile = resolveSelectedDatabaseFile();
    return *m_selectedFile;
}

QString DatabaseManager::resolveSelectedDatabaseFile()
{
    StoreError folderError;
    if (!checkApplicationFilesDirectory(&folderError)) {
        showError(folderError);
        return {};
    }
    const QString listFile = databaseListFile();
    const DatabaseList::ReadResult list = DatabaseList::read(listFile);
    QList<DatabaseEntry> entries;
    bool fresh = false; // the selected database was only just entered: no file is expected yet
    switch (list.status) {
    case DatabaseList::Status::Missing: {
        DatabaseEntry entry = newEntry(tr("My Company"), m_folders.applicationFiles);
        entry.selected = true;
        entries = {entry};
        if (!writeList(entries))
            return {};
        fresh = true;
        break;
    }
    case DatabaseList::Status::Unreadable:
        m_prompter.alert(tr("Database List Unreadable"),
                         tr("The list of company databases \"%1\" could not be read: %2.\n\nNo company "
                            "database can be opened until it can be read.")
                             .arg(listFile, list.problem),
                         {tr("OK")});
        return {};
    case DatabaseList::Status::Damaged: {
        const auto repaired = repairList(list, &fresh);
        if (!repaired)
            return {};
        entries = *repaired;
        break;
    }
    case DatabaseList::Status::Ok:
        entries = list.entries;
        break;
    }

    const auto selected =
        std::find_if(entries.cbegin(), entries.cend(), [](const DatabaseEntry& e) { return e.selected; });
    if (selected == entries.cend())
        return {};
    m_currentDatabaseDirectory =
        isInUserDataFolder(selected->directory) ? m_folders.applicationFiles : selected->directory;
    const QString file = QDir(m_currentDatabaseDirectory).filePath(selected->filename);
    if (!fresh && !QFileInfo::exists(file))
        m_prompter.alert(
            tr("No Database"),
            tr("No database was found on the given path. The program will create a new database."),
            {tr("OK")});
    return file;
}

std::optional<QList<DatabaseEntry>> DatabaseManager::repairList(const DatabaseList::ReadResult& damaged,
                                                                bool* fresh)
{
    const QString listFile = databaseListFile();
    QString why;
    const QString copy = DatabaseList::keepAside(listFile, QDateTime::currentDateTime(), &why);
    if (copy.isEmpty()) {
        m_prompter.alert(tr("Damaged Database List"),
                         tr("The list of company databases \"%1\" could not be read: %2.\n\nA copy of it "
                            "could not be kept (%3), so it was left as it is and no company database can "
                            "be opened.")
                             .arg(listFile, damaged.problem, why),
                         {tr("OK")});
        return std::nullopt;
    }

    QList<DatabaseEntry> entries = damaged.entries;
    QString outcome;
    if (!entries.isEmpty()) {
        outcome = tr("The entries that could be read stay in the list.");
    } else {
        // Local databases keep their company's name inside; the list is made again from them,
        // the one used last to be opened.
        const QFileInfoList files =
            QDir(m_folders.applicationFiles)
                .entryInfoList({QStringLiteral("*.cvdb")}, QDir::Files | QDir::NoDotAndDotDot, QDir::Time);
        for (const QFileInfo& file : files) {
            DatabaseEntry entry;
            entry.name = store::StoreFile(file.absoluteFilePath())
                             .firstValue(QStringLiteral("MyCompany"), QStringLiteral("name"))
                             .toString()
                             .trimmed();
            if (entry.name.isEmpty())
                entry.name = tr("My Company");
            entry.filename = file.fileName();
            entry.directory = m_folders.applicationFiles;
            entry.path = file.absoluteFilePath();
            entry.selected = entries.isEmpty();
            entries.append(entry);
        }
        if (!entries.isEmpty()) {
            outcome = tr("A new list was made from the company databases found in \"%1\".")
                          .arg(m_folders.applicationFiles);
        } else {
            DatabaseEntry entry = newEntry(tr("My Company"), m_folders.applicationFiles);
            entry.selected = true;
            entries.append(entry);
            *fresh = true;
            outcome = tr("A new company database \"%1\" was started.").arg(entry.name);
        }
    }
    if (!writeList(entries))
        return std::nullopt;
    m_prompter.alert(tr("Damaged Database List"),
                     tr("The list of company databases \"%1\" could not be read: %2.\n\nA copy of it was "
                        "kept as \"%3\". %4")
                         .arg(listFile, damaged.problem, copy, outcome),
                     {tr("OK")});
    return entries;
}

std::optional<QList<DatabaseEntry>> DatabaseManager::databases() const
{
    const DatabaseList::ReadResult list = DatabaseList::read(databaseListFile());
    if (list.status == DatabaseList::Status::Missing || list.status == DatabaseList::Status::Unreadable)
        return std::nullopt;
    return list.entries;
}

std::optional<QList<DatabaseEntry>> DatabaseManager::listForChange()
{
    const QString listFile = databaseListFile();
    const DatabaseList::ReadResult list = DatabaseList::read(listFile);
    if (list.status == DatabaseList::Status::Ok)
        return list.entries;
    const QString problem =
        list.status == DatabaseList::Status::Missing ? tr("the file does not exist") : list.problem;
    m_prompter.alert(tr("Database List Unreadable"),
                     tr("The list of company databases \"%1\" could not be read: %2.\n\nNothing was changed.")
                         .arg(listFile, problem),
                     {tr("OK")});
    return std::nullopt;
}

bool DatabaseManager::writeList(const QList<DatabaseEntry>& entries)
{
    QString why;
    if (DatabaseList::write(databaseListFile(), entries, &why)) {
        Q_EMIT databasesChanged();
        return true;
    }
    m_prompter.alert(
        tr("Database List Not Saved"),
        tr("The list of company databases \"%1\" could not be written: %2\n\nNothing was changed.")
            .arg(databaseListFile(), why),
        {tr("OK")});
    return false;
}

bool DatabaseManager::addLocalDatabase(const QString& name)
{
    return addEntry(name, [&](const QList<DatabaseEntry>&) -> std::optional<DatabaseEntry> {
        return newEntry(name.trimmed(), m_folders.applicationFiles);
    });
}

bool DatabaseManager::addRemoteDatabase(const QString& name)
{
    return addEntry(name, [&](const QList<DatabaseEntry>&) { return chooseRemoteLocation(name.trimmed()); });
}

bool DatabaseManager::addExistingDatabase(const QString& name)
{
    return addEntry(name, [&](const QList<DatabaseEntry>& entries) {
        return chooseExistingDatabase(name.trimmed(), entries);
    });
}

bool DatabaseManager::addEntry(const QString& name, const EntryMaker& make)
{
    if (name.trimmed().isEmpty())
        return false;
    std::optional<QList<DatabaseEntry>> entries = listForChange();
    if (!entries)
        return false;
    const std::optional<DatabaseEntry> entry = make(*entries);
    if (!entry)
        return false;
    entries->append(*entry);
    return writeList(*entries);
}

bool DatabaseManager::renameDatabase(const QString& path, const QString& name)
{
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty())
        return false;
    std::optional<QList<DatabaseEntry>> entries = listForChange();
    if (!entries)
        return false;
    bool found = false;
    for (DatabaseEntry& entry : *entries) {
        if (entry.path == path) {
            entry.name = trimmed;
            found = true;
        }
    }
    if (!found) {
        notInList(path);
        return false;
    }
    return writeList(*entries);
}

std::optional<DatabaseEntry> DatabaseManager::listedEntry(const QString& path) const
{
    for (const DatabaseEntry& entry : databases().value_or(QList<DatabaseEntry>())) {
        if (entry.path == path)
            return entry;
    }
    notInList(path);
    return std::nullopt;
}

void DatabaseManager::notInList(const QString& path) const
{
    m_prompter.alert(tr("Database Not in the List"),
                     tr("The database \"%1\" is no longer in the list of company databases.").arg(path),
                     {tr("OK")});
}

std::optional<DatabaseEntry> DatabaseManager::chooseRemoteLocation(const QString& name)
{
    const std::optional<QString> folder =
        m_prompter.chooseFolder(tr("Choose the Folder for the New Database"));
    if (!folder)
        return std::nullopt;
    const QFileInfo info(*folder);
    QString problem;
    if (!info.isDir())
        problem = tr("it does not exist");
    else if (!info.isWritable())
        problem = tr("you may not write in it");
    if (!problem.isEmpty()) {
        m_prompter.alert(tr("Folder Not Usable"),
                         tr("The folder \"%1\" cannot hold a company database: %2.").arg(*folder, problem),
                         {tr("OK")});
        return std::nullopt;
    }
    return newEntry(name, info.absoluteFilePath());
}

std::optional<DatabaseEntry> DatabaseManager::chooseExistingDatabase(const QString& name,
                                                                     const QList<DatabaseEntry>& entries)
{
    const std::optional<QString> chosen = m_prompter.chooseFile(
        tr("Choose a Company Database"), {QString::fromLatin1(DatabaseList::kExtension)});
    if (!chosen)
        return std::nullopt;
    const QFileInfo info(*chosen);
    const QString path = info.absoluteFilePath();
    QString problem;
    if (!info.exists())
        problem = tr("the file does not exist");
    else if (info.isDir())
        problem = tr("it is a folder");
    else if (info.suffix() != QLatin1String(DatabaseList::kExtension))
        problem = tr("its name does not end in \".cvdb\"");
    else if (!info.isReadable())
        problem = tr("it cannot be read");
    else if (!looksLikeDatabase(path))
        problem = tr("it is not a Corvanta company database");
    if (!problem.isEmpty()) {
        m_prompter.alert(tr("Not a Company Database"), tr("\"%1\" cannot be added: %2.").arg(path, problem),
                         {tr("OK")});
        return std::nullopt;
    }
    for (const DatabaseEntry& entry : entries) {
        if (entry.path == path || locate(entry) == path) {
            m_prompter.alert(tr("Database Already in the Menu"),
                             tr("\"%1\" is already in the menu as \"%2\".").arg(path, entry.name),
                             {tr("OK")});
            return std::nullopt;
        }
    }
    DatabaseEntry entry;
    entry.name = name;
    entry.path = path;
    entry.directory = info.absolutePath();
    entry.filename = info.fileName();
    return entry;
}

void DatabaseManager::connectDatabase(const QString& path)
{
    if (m_prompter.alert(tr("Connecting to Database"),
                         tr("The program is going to restart, will you continue connecting to the database?"),
                         {tr("Connect"), tr("Cancel")}) != tr("Connect"))
        return;
    std::optional<QList<DatabaseEntry>> entries = listForChange();
    if (!entries)
        return;
    const auto entry = std::find_if(entries->cbegin(), entries->cend(),
                                    [&](const DatabaseEntry& e) { return e.path == path; });
    if (entry == entries->cend()) {
        notInList(path);
        return;
    }
    const QString file = locate(*entry);
    if (!QFileInfo::exists(file)) {
        m_prompter.alert(
            tr("No Database"),
            tr("No database was found on the given path. The program will create a new database."),
            {tr("OK")});
        // Begun now, so that the next start finds the file it was told about.
        QDir().mkpath(QFileInfo(file).absolutePath());
        QFile created(file);
        if (!created.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
            m_prompter.alert(tr("Database Not Created"),
                             tr("The database \"%1\" cannot be created: %2").arg(file, created.errorString()),
                             {tr("OK")});
            return;
        }
    }
    QString why;
    if (!selectDatabase(path, &why)) {
        m_prompter.alert(tr("Database List Not Saved"),
                         tr("The list of company databases \"%1\" could not be written: %2\n\nNothing was "
                            "changed.")
                             .arg(databaseListFile(), why),
                         {tr("OK")});
        return;
    }
    requestRestart();
}

bool DatabaseManager::selectDatabase(const QString& path, QString* error)
{
    DatabaseList::ReadResult list = DatabaseList::read(databaseListFile());
    if (list.status != DatabaseList::Status::Ok) {
        if (error)
            *error =
                list.status == DatabaseList::Status::Missing ? tr("the file does not exist") : list.problem;
        return false;
    }
    for (DatabaseEntry& entry : list.entries)
        entry.selected = entry.path == path;
    if (!DatabaseList::write(databaseListFile(), list.entries, error))
        return false;
    Q_EMIT databasesChanged();
    return true;
}

void DatabaseManager::requestRestart()
{
    m_restartRequested = true;
    Q_EMIT restartRequested();
}

void DatabaseManager::removeDatabase(const QString& path)
{
    if (m_prompter.alert(tr("Remove Menu"), tr("The database will not be removed, only the menu."),
                         {tr("Remove"), tr("Cancel")}) != tr("Remove"))
        return;
    std::optional<QList<DatabaseEntry>> entries = listForChange();
    if (!entries)
        return;
    const auto selected =
        std::find_if(entries->cbegin(), entries->cend(), [](const DatabaseEntry& e) { return e.selected; });
    if (selected != entries->cend() && selected->path == path) {
        m_prompter.alert(tr("Database Is Open"),
                         tr("The database that is open cannot be removed from the menu."), {tr("OK")});
        return;
    }
    const qsizetype removed = entries->removeIf([&](const DatabaseEntry& e) { return e.path == path; });
    if (removed == 0) {
        notInList(path);
        return;
    }
    writeList(*entries);
}

bool DatabaseManager::archiveApplicationFiles(const QString& destination, const QString& comment,
                                              QString* error)
{
    return DataFolderArchive(m_folders.applicationFiles, m_store).write(destination, comment, error);
}

bool DatabaseManager::saveDatabase(const QDateTime& now)
{
    const QString name =
        QStringLiteral("Corvanta %1.zip").arg(now.toString(QStringLiteral("yyyy-MM-dd HHmm")));
    QString why;
    const bool saved = archiveApplicationFiles(QDir(m_folders.desktop).filePath(name),
                                               QStringLiteral("Corvanta copy"), &why);
    if (!saved) {
        qCWarning(lcCompanies, "Sorry, didn't work.");
        qCWarning(lcCompanies, "%s", qPrintable(why));
    }
    // The confirmation is shown whether or not the archive was written, as this command has
    // always done; the failure goes to the console.
    m_prompter.alert(tr("Database Saved Successfully"),
                     tr("The \"%1\" local database file successfully saved to the desktop.").arg(name),
                     {tr("OK")});
    return saved;
}

bool DatabaseManager::backupApplicationFiles(const QDate& today)
{
    const BackupFolder backups(m_folders.documents);
    QString why;
    if (archiveApplicationFiles(backups.archivePath(today), QString::fromLatin1(BackupFolder::kComment),
                                &why))
        return true;
    qCWarning(lcCompanies, "Sorry, didn't work.");
    qCWarning(lcCompanies, "%s", qPrintable(why));
    return false;
}

QStringList DatabaseManager::pruneBackups(const QDate& today)
{
    return BackupFolder(m_folders.documents).prune(today);
}

void DatabaseManager::showError(const StoreError& error) const
{
    m_prompter.alert(error.description, error.reason, {tr("OK")});
}

} // namespace corvanta::companies
