#pragma once

#include "databaseentry.h"
#include "databasefolders.h"
#include "databaselist.h"

#include <QDateTime>
#include <QObject>
#include <functional>
#include <optional>

namespace corvanta::store {
class Store;
struct StoreError;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::companies {

// The company databases of the user: the database list, the database that a start opens, the
// rules for adding, renaming, connecting to and forgetting databases, and the ZIP copies of the
// application files folder (to the desktop on request, to the backup folder on quitting).
// Questions and messages go through the Prompter. Switching databases only records that the
// program should start again; the front end starts it and quits. The menu that offers these
// actions, and the window that asks for a company's name, are the application's.
class DatabaseManager : public QObject
{
    Q_OBJECT

public:
    explicit DatabaseManager(support::Prompter& prompter,
                             const DatabaseFolders& folders = DatabaseFolders::standard(),
                             QObject* parent = nullptr);
    ~DatabaseManager() override;

    // Folders. The database files folder is the folder of the selected database, known once
    // selectedDatabaseFile() has resolved it; the other two are made when asked for.
    const QString& applicationFilesDirectory() const { return m_folders.applicationFiles; }
    QString databaseFilesDirectory() const;
    QString databaseTempFilesDirectory() const;
    QString templateFilesDirectory() const;
    QString databaseListFile() const;
    const DatabaseFolders& folders() const { return m_folders; }

    // Makes the application files folder when it is missing; a file in its place is an error.
    bool checkApplicationFilesDirectory(store::StoreError* error) const;

    // The file of the database to open, resolved once per run from the list (created when
    // missing, repaired when damaged); empty when no entry is selected or the list cannot be
    // read. A selected database whose file is missing is announced; the store creates it.
    QString selectedDatabaseFile();

    // Where the entry's file is on this machine: a database kept in a user's data folder is
    // looked for in this user's application files folder, wherever the list says it was.
    QString locate(const DatabaseEntry& entry) const;
    // The entry of `path` in the list as it is now; nothing when it is not there any more (or
    // the list cannot be read), which the user is told.
    std::optional<DatabaseEntry> listedEntry(const QString& path) const;
    // The entries of the list as it is now; nothing when it cannot be read.
    std::optional<QList<DatabaseEntry>> databases() const;

    // The open database, whose copies are taken through its store.
    void setStore(store::Store* store) { m_store = store; }

    // Adds an entry named `name` (trimmed, not empty) to the list, not selected: a new local
    // database in the application files folder, a new database in a folder the user chooses,
    // or an existing database file the user chooses. False when nothing changed (a chooser
    // cancelled, a refusal told to the user).
    bool addLocalDatabase(const QString& name);
    bool addRemoteDatabase(const QString& name);
    bool addExistingDatabase(const QString& name);
    // Gives the entry of `path` a new name; the file is never touched.
    bool renameDatabase(const QString& path, const QString& name);
    // Asks whether to restart with the database of `path`, selects it and requests the restart.
    void connectDatabase(const QString& path);
    // Asks whether to forget the entry of `path` (never the open database's) and removes it
    // from the list; the file stays.
    void removeDatabase(const QString& path);

    // Marks the database with `path` as the one to open at the next start and writes the list.
    bool selectDatabase(const QString& path, QString* error);
    bool isRestartRequested() const { return m_restartRequested; }
    void requestRestart();

    // "Corvanta <yyyy-MM-dd HHmm>.zip" on the desktop. The confirmation is shown either way; a
    // failure is logged as "Sorry, didn't work.".
    bool saveDatabase(const QDateTime& now = QDateTime::currentDateTime());
    // The daily backup "Corvanta Backup/CorvantaBackup<yyyyMMdd>.zip" in the documents folder.
    bool backupApplicationFiles(const QDate& today = QDate::currentDate());
    // Removes the backups older than a month; returns their paths.
    QStringList pruneBackups(const QDate& today = QDate::currentDate());

Q_SIGNALS:
    // The database list was written anew.
    void databasesChanged();
    // The database to open changed: the program should start again.
    void restartRequested();

private:
    QString resolveSelectedDatabaseFile();
    // The list after repairing a damaged one; nothing when it cannot be used.
    std::optional<QList<DatabaseEntry>> repairList(const DatabaseList::ReadResult& damaged, bool* fresh);
    // The list for a change; reports and gives nothing when it cannot be read.
    std::optional<QList<DatabaseEntry>> listForChange();
    bool writeList(const QList<DatabaseEntry>& entries);
    bool isInUserDataFolder(const QString& directory) const;
    DatabaseEntry newEntry(const QString& name, const QString& directory) const;
    // Adds the entry `make` gives for the list as it is now (nothing when it gives none).
    using EntryMaker = std::function<std::optional<DatabaseEntry>(const QList<DatabaseEntry>&)>;
    bool addEntry(const QString& name, const EntryMaker& make);
    void notInList(const QString& path) const;
    std::optional<DatabaseEntry> chooseRemoteLocation(const QString& name);
    std::optional<DatabaseEntry> chooseExistingDatabase(const QString& name,
                                                        const QList<DatabaseEntry>& entries);
    bool archiveApplicationFiles(const QString& destination, const QString& comment, QString* error);
    void showError(const store::StoreError& error) const;

    support::Prompter& m_prompter;
    DatabaseFolders m_folders;
    store::Store* m_store = nullptr;
    QString m_currentDatabaseDirectory;
    std::optional<QString> m_selectedFile;
    bool m_restartRequested = false;
};

} // namespace corvanta::companies
