#pragma once

#include "databaseentry.h"
#include "databasefolders.h"
#include "databaselist.h"
#include "databasemenuentry.h"

#include <QDateTime>
#include <QObject>
#include <optional>

namespace corvanta::model {

class Prompter;
class Store;
struct StoreError;

// The company databases of the user: the database list, the database that a start opens, the
// menu entries to create, add, rename, forget and connect to databases, and the ZIP copies of
// the application files folder (to the desktop on request, to the backup folder on quitting).
// Questions and messages go through the Prompter. Switching databases only records that the
// program should start again; the front end starts it and quits.
class DatabaseManager : public QObject
{
    Q_OBJECT

public:
    // What the confirmation of the company-name window does.
    enum DatabaseAction {
        NewLocalDatabaseAction = 0,
        NewRemoteDatabaseAction = 1,
        AddExistingDatabaseAction = 2,
        RenameDatabaseAction = 10,
    };

    explicit DatabaseManager(Prompter& prompter, const DatabaseFolders& folders = DatabaseFolders::standard(),
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
    bool checkApplicationFilesDirectory(StoreError* error) const;

    // The file of the database to open, resolved once per run from the list (created when
    // missing, repaired when damaged); empty when no entry is selected or the list cannot be
    // read. A selected database whose file is missing is announced; the store creates it.
    QString selectedDatabaseFile();

    // The entries of the list as it is now; nothing when it cannot be read.
    std::optional<QList<DatabaseEntry>> databases() const;

    // The open database, whose copies are taken through its store.
    void setStore(Store* store) { m_store = store; }

    // The company-name window for a new local, new remote or existing database.
    void newLocalDatabase();
    void newRemoteDatabase();
    void addExistingDatabase();
    // Carries out the pending action with the entered name; false when nothing changed.
    bool databaseNameChanged(const QString& name);
    int myCompanyDatabaseAction() const { return m_action; }

    void myCompaniesMenuConnect(const QString& path);
    void myCompaniesMenuRename(const QString& path);
    void myCompaniesMenuRemove(const QString& path);
    // Runs the action of a menu entry; `path` is the entry's.
    void trigger(DatabaseMenuEntry::Action action, const QString& path = {});

    // Rebuilds the company-databases menu from the list.
    const QList<DatabaseMenuEntry>& setupMyCompaniesMenu();
    const QList<DatabaseMenuEntry>& myCompaniesMenu() const { return m_menu; }

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
    void myCompaniesMenuChanged();
    // The database to open changed: the program should start again.
    void restartRequested();

private:
    QString resolveSelectedDatabaseFile();
    // The list after repairing a damaged one; nothing when it cannot be used.
    std::optional<QList<DatabaseEntry>> repairList(const DatabaseList::ReadResult& damaged, bool* fresh);
    // The list for a change; reports and gives nothing when it cannot be read.
    std::optional<QList<DatabaseEntry>> listForChange();
    bool writeList(const QList<DatabaseEntry>& entries);
    // Where the entry's file is on this machine: a database kept in a user's data folder is
    // looked for in this user's application files folder, wherever the list says it was.
    QString locate(const DatabaseEntry& entry) const;
    bool isInUserDataFolder(const QString& directory) const;
    DatabaseEntry newEntry(const QString& name, const QString& directory) const;
    void showNameWindow(DatabaseAction action, const QString& initial);
    std::optional<DatabaseEntry> chooseRemoteLocation(const QString& name);
    std::optional<DatabaseEntry> chooseExistingDatabase(const QString& name,
                                                        const QList<DatabaseEntry>& entries);
    bool archiveApplicationFiles(const QString& destination, const QString& comment, QString* error);
    void showError(const StoreError& error) const;

    Prompter& m_prompter;
    DatabaseFolders m_folders;
    Store* m_store = nullptr;
    QString m_currentDatabaseDirectory;
    std::optional<QString> m_selectedFile;
    int m_action = NewLocalDatabaseAction;
    QString m_databaseURLToRenameMenu;
    QList<DatabaseMenuEntry> m_menu;
    bool m_restartRequested = false;
};

} // namespace corvanta::model
