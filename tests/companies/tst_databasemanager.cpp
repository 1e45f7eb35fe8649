#include "companies/backupfolder.h"
#include "companies/databasemanager.h"
#include "companiestestsupport.h"
#include "support/zipwriter.h"

#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <fcntl.h>
#include <sys/stat.h>

using namespace corvanta::companies;
using namespace corvanta::companies::testing;
using corvanta::model::CompanyDatabase;
using corvanta::store::FetchRequest;
using corvanta::store::Store;
using corvanta::store::StoreError;
using corvanta::support::ScriptedPrompter;

namespace {

const QString kNoDatabase =
    s("No Database | No database was found on the given path. The program will create a new database.");

// What the list files of the fixture folder hold: the number of entries read, then for a damaged
// list what is wrong with it. Files added to the folder without an entry here are still checked
// against the rules every list must follow.
const QHash<QString, QString> kExpected = {
    {s("two-entries.databases"), s("2")},
    {s("two-entries-binary.databases"), s("2")},
    {s("none-selected.databases"), s("1")},
    {s("selected-boolean.databases"), s("1")},
    {s("missing-files.databases"), s("2")},
    {s("empty.databases"), s("0: the file is empty")},
    {s("whitespace.databases"), s("0: the file holds only white space")},
    {s("truncated.databases"),
     s("0: it is not well-formed XML (line 13, column 76: Premature end of document.)")},
    {s("garbage.databases"), s("0: it is not well-formed XML (line 1, column 1: Start tag expected.)")},
    {s("html.databases"), s("0: it is not a property list")},
    {s("dictionary.databases"), s("0: it does not hold a list of databases")},
    {s("empty-array.databases"), s("0: the list holds no databases")},
    {s("strings.databases"), s("0: 2 of its 2 entries name no database file")},
    {s("partly-unusable.databases"), s("1: 2 of its 3 entries name no database file")},
    {s("deeply-nested.databases"), s("0: it is nested too deeply")},
    {s("binary-truncated.databases"), s("0: it is a damaged binary property list")},
    {s("nul-in-unicode-string.databases"), s("0: it is a damaged binary property list")},
    {s("nul-in-unicode-key.databases"), s("0: it is a damaged binary property list")},
    {s("control-characters-binary.databases"), s("1: 2 of its 3 entries name no database file")},
};

// "<integrity check> <number of clients>" of a database file.
QString inspect(const QString& database)
{
    QString integrity;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(s("QSQLITE"), s("integrity"));
        db.setDatabaseName(database);
        QSqlQuery q(db);
        if (db.open() && q.exec(s("PRAGMA integrity_check")) && q.next())
            integrity = q.value(0).toString();
    }
    QSqlDatabase::removeDatabase(s("integrity"));
    auto store = CompanyDatabase::open(database);
    return integrity + s(" ") +
           QString::number(store ? store->mainContext().count(FetchRequest(s("Clients"))) : -1);
}

// Sets the modification time of a file or a folder.
void age(const QString& path, const QDateTime& when)
{
    const timespec times[2] = {{when.toSecsSinceEpoch(), 0}, {when.toSecsSinceEpoch(), 0}};
    QVERIFY(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0) == 0);
}

} // namespace

class tst_DatabaseManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void resolvesTheSelectedEntry_data();
    void resolvesTheSelectedEntry();
    void unusableOrDamagedList();
    void listChanges_data();
    void listChanges();
    void listWritesAndReadsBack();
    void listFiles_data();
    void listFiles();
    void archivesOfAnOpenDatabaseRestore();
    void pruneRemovesOnlyOwnOldArchives_data();
    void pruneRemovesOnlyOwnOldArchives();
};

void tst_DatabaseManager::resolvesTheSelectedEntry_data()
{
    QTest::addColumn<QVariantList>("entries");
    QTest::addColumn<QString>("expected"); // "APP/<file>" for the scratch data folder, empty for none
    const auto one = [](const char* directory, const QVariant& selected) {
        QVariantMap entry = ScratchFolders::entry(s("A"), s(directory), s("A.cvdb"), false);
        entry.insert(s("selected"), selected);
        return QVariantList{entry};
    };
    QTest::newRow("first selected wins")
        << QVariantList{ScratchFolders::entry(s("A"), s("/srv/a"), s("A.cvdb"), false),
                        ScratchFolders::entry(s("B"), s("/srv/b"), s("B.cvdb"), true),
                        ScratchFolders::entry(s("C"), s("/srv/c"), s("C.cvdb"), true)}
        << s("/srv/b/B.cvdb");
    QTest::newRow("another user's data folder")
        << one("/home/other/.local/share/corvanta", qint64(1)) << s("APP/A.cvdb");
    QTest::newRow("home folder outside the data folder")
        << one("/home/other/Documents", qint64(1)) << s("/home/other/Documents/A.cvdb");
    QTest::newRow("selected as a boolean") << one("/srv/a", true) << s("/srv/a/A.cvdb");
    QTest::newRow("selected as text is not selected") << one("/srv/a", s("1")) << QString();
}

void tst_DatabaseManager::resolvesTheSelectedEntry()
{
    QFETCH(QVariantList, entries);
    QFETCH(QString, expected);
    ScratchFolders folders;
    folders.writeList(entries);
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    expected.replace(s("APP/"), folders.app() + QLatin1Char('/'));
    QCOMPARE(manager.selectedDatabaseFile(), expected);
    if (!expected.isEmpty())
        QCOMPARE(manager.databaseFilesDirectory(), QFileInfo(expected).absolutePath());
    QCOMPARE(alerts(prompter), expected.isEmpty() ? QStringList() : QStringList{kNoDatabase});
}

// A folder where the list should be opens nothing and changes nothing; once it is gone, a damaged
// list is made again from the local databases; a file where the data folder should be opens
// nothing either.
void tst_DatabaseManager::unusableOrDamagedList()
{
    ScratchFolders folders;
    QVERIFY(QDir().mkpath(folders.listFile()));
    ScriptedPrompter prompter;
    QCOMPARE(DatabaseManager(prompter, folders.folders()).selectedDatabaseFile(), QString());
    QCOMPARE(
        alerts(prompter),
        QStringList{s("Database List Unreadable | The list of company databases \"%1\" could not be read: a "
                      "folder stands where the file should be.\n\nNo company database can be opened until "
                      "it can be read.")
                        .arg(folders.listFile())});
    QVERIFY(QFileInfo(folders.listFile()).isDir());
    QVERIFY(folders.keptCopies().isEmpty());

    // A pipe is never read: reading it would wait for a writer.
    QVERIFY(QDir(folders.listFile()).removeRecursively());
    QCOMPARE(::mkfifo(QFile::encodeName(folders.listFile()).constData(), 0600), 0);
    prompter.clear();
    QCOMPARE(DatabaseManager(prompter, folders.folders()).selectedDatabaseFile(), QString());
    QVERIFY(alerts(prompter).value(0).contains(s("could not be read: it is not a regular file.")));
    QVERIFY(QFile::remove(folders.listFile()));
    ScratchFolders::writeBytes(folders.listFile(), "garbage");
    makeDatabase(folders.app(s("OLD.cvdb")), s("Older Ltd"));
    makeDatabase(folders.app(s("NEW.cvdb")), s("Newer Ltd"));
    age(folders.app(s("OLD.cvdb")), QDateTime::currentDateTime().addDays(-3));
    prompter.clear();
    DatabaseManager manager(prompter, folders.folders());
    // The database used last is opened; both stay known under their companies' names.
    QCOMPARE(manager.selectedDatabaseFile(), folders.app(s("NEW.cvdb")));
    QCOMPARE(names(manager.databases()), (QStringList{s("Newer Ltd*"), s("Older Ltd")}));
    QCOMPARE(prompter.questions().size(), 1);
    QVERIFY(prompter.questions().first().text.endsWith(
        s("A new list was made from the company databases found in \"%1\".").arg(folders.app())));

    QVERIFY(QDir(folders.app()).removeRecursively());
    ScratchFolders::writeBytes(folders.app(), "a file");
    prompter.clear();
    QCOMPARE(DatabaseManager(prompter, folders.folders()).selectedDatabaseFile(), QString());
    QCOMPARE(
        prompter.titles(),
        QStringList{s("Expected a folder to store application data, found a file (%1).").arg(folders.app())});
    QCOMPARE(ScratchFolders::readBytes(folders.app()), QByteArray("a file"));
}

// What the menu's commands do to the list. The scratch root holds a company database, a copy
// under another extension, a text file, a folder, the listed file (empty: a database not yet
// begun) and a shared folder; the list holds the open database, the listed file twice (entries
// are identified by path) with a key this program does not use, and an entry whose file is gone.
void tst_DatabaseManager::listChanges_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("argument"); // the name given, or the path of the entry
    QTest::addColumn<QString>("answer");   // to the chooser or the question; "-" cancels
    QTest::addColumn<QStringList>("alerts");
    QTest::addColumn<QString>("after"); // the names in the list, "*" selected; "=" unchanged byte for byte
    QTest::addColumn<QString>("added"); // the new entry's path, "*" for a new file name
    const QString all = s("Mine*, Listed Co, Listed Co, Gone, ");
    const auto refused = [](const char* file, const char* why) {
        return QStringList{
            s("Not a Company Database | \"ROOT/%1\" cannot be added: %2.").arg(s(file), s(why))};
    };
    const auto row = [](const char* name, const char* command, const char* argument, const char* answer,
                        const QStringList& alerts, const QString& after, const char* added = "") {
        QTest::newRow(name) << s(command) << s(argument) << s(answer) << alerts << after << s(added);
    };
    const QString remove = s("Remove Menu | The database will not be removed, only the menu.");
    const QString connect = s("Connecting to Database | The program is going to restart, will you continue "
                              "connecting to the database?");

    row("new local database", "add local", "  Acme Ltd  ", "", {}, all + s("Acme Ltd"), "APP/*");
    row("local database without a name", "add local", "   ", "", {}, s("="));
    row("new remote database", "add remote", "Remote Co", "ROOT/share", {}, all + s("Remote Co"),
        "ROOT/share/*");
    row("remote folder chooser cancelled", "add remote", "Remote Co", "-", {}, s("="));
    row("remote folder that does not exist", "add remote", "Remote Co", "ROOT/nowhere",
        {s("Folder Not Usable | The folder \"ROOT/nowhere\" cannot hold a company database: it does not "
           "exist.")},
        s("="));
    row("existing company database", "add existing", "Added Co", "ROOT/Existing.cvdb", {},
        all + s("Added Co"), "ROOT/Existing.cvdb");
    row("existing file missing", "add existing", "Added Co", "ROOT/Missing.cvdb",
        refused("Missing.cvdb", "the file does not exist"), s("="));
    row("existing file of another extension", "add existing", "Added Co", "ROOT/Existing.sqlite",
        refused("Existing.sqlite", "its name does not end in \".cvdb\""), s("="));
    row("existing file not a database", "add existing", "Added Co", "ROOT/Text.cvdb",
        refused("Text.cvdb", "it is not a Corvanta company database"), s("="));
    row("existing file a folder", "add existing", "Added Co", "ROOT/Folder.cvdb",
        refused("Folder.cvdb", "it is a folder"), s("="));
    row("existing file already in the menu", "add existing", "Added Co", "ROOT/Listed.cvdb",
        {s("Database Already in the Menu | \"ROOT/Listed.cvdb\" is already in the menu as \"Listed Co\".")},
        s("="));
    row("rename", "rename", "ROOT/Listed.cvdb", "", {}, s("Mine*, New Name, New Name, Gone"));
    row("rename an entry no longer listed", "rename", "ROOT/Other.cvdb", "",
        {s("Database Not in the List | The database \"ROOT/Other.cvdb\" is no longer in the list of company "
           "databases.")},
        s("="));
    row("remove from menu", "remove", "ROOT/Listed.cvdb", "Remove", {remove}, s("Mine*, Gone"));
    row("remove cancelled", "remove", "ROOT/Listed.cvdb", "Cancel", {remove}, s("="));
    row("remove the open database", "remove", "APP/A.cvdb", "Remove",
        {remove, s("Database Is Open | The database that is open cannot be removed from the menu.")}, s("="));
    row("connect", "connect", "ROOT/Listed.cvdb", "Connect", {connect},
        s("Mine, Listed Co*, Listed Co*, Gone"));
    row("connect to a missing file", "connect", "ROOT/gone/G.cvdb", "Connect", {connect, kNoDatabase},
        s("Mine, Listed Co, Listed Co, Gone*"));
    row("connect cancelled", "connect", "ROOT/Listed.cvdb", "Cancel", {connect}, s("="));
}

void tst_DatabaseManager::listChanges()
{
    QFETCH(QString, command);
    QFETCH(QString, answer);
    QFETCH(QString, after);
    QFETCH(QString, added);
    ScratchFolders folders;
    const QString root = folders.root();
    const auto place = [&](QString text) {
        return text.replace(s("APP/"), folders.app() + s("/")).replace(s("ROOT/"), root + s("/"));
    };
    makeDatabase(root + s("/Existing.cvdb"), s("Existing Co"));
    QFile::copy(root + s("/Existing.cvdb"), root + s("/Existing.sqlite"));
    ScratchFolders::writeBytes(root + s("/Text.cvdb"), "Dear customer, ...");
    ScratchFolders::writeBytes(root + s("/Listed.cvdb"), {});
    ScratchFolders::writeBytes(folders.app(s("A.cvdb")), {});
    QDir().mkpath(root + s("/Folder.cvdb"));
    QDir().mkpath(root + s("/share"));
    QVariantMap listed = ScratchFolders::entry(s("Listed Co"), root, s("Listed.cvdb"), false);
    listed.insert(s("colour"), s("blue"));
    folders.writeList({ScratchFolders::entry(s("Mine"), folders.app(), s("A.cvdb"), true), listed, listed,
                       ScratchFolders::entry(s("Gone"), root + s("/gone"), s("G.cvdb"), false)});
    const QByteArray before = ScratchFolders::readBytes(folders.listFile());
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    QCOMPARE(manager.selectedDatabaseFile(), folders.app(s("A.cvdb")));
    QSignalSpy changed(&manager, &DatabaseManager::databasesChanged);

    if (!answer.isEmpty())
        prompter.addAnswer(answer == s("-") ? std::nullopt : std::optional<QString>(place(answer)));
    QFETCH(QString, argument);
    const QString path = place(argument);
    if (command == s("add local"))
        manager.addLocalDatabase(argument);
    else if (command == s("add remote"))
        manager.addRemoteDatabase(argument);
    else if (command == s("add existing"))
        manager.addExistingDatabase(argument);
    else if (command == s("rename"))
        manager.renameDatabase(path, s(" New Name "));
    else if (command == s("remove"))
        manager.removeDatabase(path);
    else
        manager.connectDatabase(path);
    QFETCH(QStringList, alerts);
    QCOMPARE(::alerts(prompter).join(s("\n")).replace(root + s("/"), s("ROOT/")), alerts.join(s("\n")));
    QVERIFY(QFileInfo::exists(root + s("/Listed.cvdb"))); // the menu forgets files, never removes them

    if (after == s("=")) {
        QCOMPARE(ScratchFolders::readBytes(folders.listFile()), before);
        QCOMPARE(changed.count(), 0);
        QVERIFY(!manager.isRestartRequested());
        return;
    }
    QCOMPARE(names(manager.databases()).join(s(", ")), after);
    QCOMPARE(changed.count(), 1);
    // Keys this program does not use are written back with their entry.
    QCOMPARE(ScratchFolders::readBytes(folders.listFile()).count("<key>colour</key>"),
             after.count(s("Listed Co")) + after.count(s("New Name")));
    if (!added.isEmpty()) {
        const DatabaseEntry entry = manager.databases()->last();
        QCOMPARE(entry.path, entry.directory + s("/") + entry.filename);
        QCOMPARE(added.endsWith(QLatin1Char('*')) ? entry.directory + s("/*") : entry.path, place(added));
        QVERIFY(entry.filename.endsWith(s(".cvdb")));
        QCOMPARE(QFileInfo::exists(entry.path),
                 !added.endsWith(QLatin1Char('*'))); // a new one is made when opened
    }
    // A connection is for the next start, which opens the file it was told about; a missing one
    // is begun at once.
    QCOMPARE(manager.isRestartRequested(), command == s("connect"));
    if (manager.isRestartRequested()) {
        ScriptedPrompter next;
        QCOMPARE(DatabaseManager(next, folders.folders()).selectedDatabaseFile(), path);
        QVERIFY(next.questions().isEmpty());
    }
}

void tst_DatabaseManager::listWritesAndReadsBack()
{
    ScratchFolders folders;
    // Keys this program does not use come back as they were written.
    const QVariantMap unused{{s("note"), s("kept")},
                             {s("nested"), QVariantList{s("a"), QVariantMap{{s("b"), qint64(2)}}}}};
    const DatabaseEntry entry{
        s("Café & Co <Ltd>\x01\x1b"), s("/srv/shared/X.cvdb"), s("/srv/shared"), s("X.cvdb"), true, unused};
    QString error;
    QVERIFY(DatabaseList::write(folders.listFile(), {entry}, &error));
    const DatabaseList::ReadResult read = DatabaseList::read(folders.listFile());
    QCOMPARE(int(read.status), int(DatabaseList::Status::Ok));
    // Control characters cannot be written in XML.
    QCOMPARE(names(read.entries), QStringList{s("Café & Co <Ltd>*")});
    const DatabaseEntry& back = read.entries.first();
    QCOMPARE(back.path + s(" ") + back.directory + s(" ") + back.filename,
             s("/srv/shared/X.cvdb /srv/shared X.cvdb"));
    QCOMPARE(back.otherKeys, unused);
    // "selected" is written as the integer it always was.
    QVERIFY(ScratchFolders::readBytes(folders.listFile()).contains("<integer>1</integer>"));

    // A folder in the way: the write fails and says why.
    QVERIFY(!DatabaseList::write(folders.app(), {entry}, &error));
    QVERIFY(!error.isEmpty());
}

void tst_DatabaseManager::listFiles_data()
{
    QTest::addColumn<QString>("fixture");
    const QDir folder(QStringLiteral(DATABASE_LISTS));
    const QStringList files = folder.entryList(QDir::Files, QDir::Name);
    QVERIFY(files.size() >= kExpected.size());
    for (const QString& file : files)
        QTest::newRow(qPrintable(file)) << folder.filePath(file);
}

void tst_DatabaseManager::listFiles()
{
    QFETCH(QString, fixture);
    const QByteArray original = ScratchFolders::readBytes(fixture);
    ScratchFolders folders;
    ScratchFolders::writeBytes(folders.listFile(), original);

    const DatabaseList::ReadResult read = DatabaseList::read(folders.listFile());
    const bool ok = read.status == DatabaseList::Status::Ok;
    QCOMPARE(ok, read.problem.isEmpty());
    QVERIFY(ok || read.status == DatabaseList::Status::Damaged);
    const QString found = QString::number(read.entries.size()) + (ok ? QString() : s(": ") + read.problem);
    QCOMPARE(found, kExpected.value(QFileInfo(fixture).fileName(), found));

    // Every list, whatever it holds, leaves the program with a readable list, and nothing of the
    // original is lost: a good list stays as it is, a damaged one is kept byte for byte.
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    manager.selectedDatabaseFile();
    QCOMPARE(int(DatabaseList::read(folders.listFile()).status), int(DatabaseList::Status::Ok));
    if (ok) {
        QCOMPARE(ScratchFolders::readBytes(folders.listFile()), original);
        QVERIFY(folders.keptCopies().isEmpty());
    } else {
        QCOMPARE(folders.keptCopies().size(), 1);
        QCOMPARE(ScratchFolders::readBytes(folders.app(folders.keptCopies().first())), original);
        // What became of it is told too: the readable entries stay, or a first database starts.
        const QString outcome = read.entries.isEmpty()
                                    ? s("A new company database \"My Company\" was started.")
                                    : s("The entries that could be read stay in the list.");
        QCOMPARE(
            alerts(prompter).value(0),
            s("Damaged Database List | The list of company databases \"%1\" could not be "
              "read: %2.\n\nA copy of it was kept as \"%3\". %4")
                .arg(folders.listFile(), read.problem, folders.app(folders.keptCopies().first()), outcome));
        QCOMPARE(DatabaseList::read(folders.listFile()).entries.size(), qMax(1, int(read.entries.size())));
    }
}

// A backup of an open database (with saved and unsaved changes) and of a second local database
// that is not open; each restores whole.
void tst_DatabaseManager::archivesOfAnOpenDatabaseRestore()
{
    ScratchFolders folders;
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    const QString backups = folders.root() + s("/Documents/Corvanta Backup/");
    folders.writeList({ScratchFolders::entry(s("Mine"), folders.app(), s("MINE.cvdb"), true),
                       ScratchFolders::entry(s("Other"), folders.app(), s("OTHER.cvdb"), false)});
    StoreError error;
    std::unique_ptr<Store> store = CompanyDatabase::open(folders.app(s("OTHER.cvdb")), &error);
    store->mainContext().insertRecord(s("Clients"), {{s("company_name"), s("Other client")}});
    QVERIFY(store->mainContext().save(&error));
    store = CompanyDatabase::open(manager.selectedDatabaseFile(), &error);
    // Many small commits: they stay in the write-ahead log, where a plain copy of the file would
    // not see them.
    for (int i = 0; i < 20; ++i) {
        store->mainContext().insertRecord(s("Clients"), {{s("company_name"), s("Client %1").arg(i)}});
        QVERIFY(store->mainContext().save(&error));
    }
    store->mainContext().insertRecord(s("Clients"), {{s("company_name"), s("Not saved yet")}});
    manager.setStore(store.get());
    prompter.clear(); // the new database's file was announced as missing
    ScratchFolders::writeBytes(folders.app(s("templates/logo.png")), "picture");
    ScratchFolders::writeBytes(folders.app(s("temp/scratch.txt")), "scratch");
    QVERIFY(manager.backupApplicationFiles(QDate(2024, 5, 6)));
    // The databases as snapshots, without their logs and locks; scratch files stay out.
    const QString restored = folders.root() + s("/restored/");
    QCOMPARE(archiveContents(backups + s("CorvantaBackup20240506.zip"), restored),
             (QStringList{s("Corvanta daily backup"), s("MINE.cvdb"), s("OTHER.cvdb"),
                          s("corvanta.databases"), s("templates/logo.png")}));
    QCOMPARE(inspect(restored + s("MINE.cvdb")), s("ok 20")); // every saved client, not the pending one
    QCOMPARE(inspect(restored + s("OTHER.cvdb")), s("ok 1"));
    QCOMPARE(ScratchFolders::readBytes(restored + s("corvanta.databases")),
             ScratchFolders::readBytes(folders.listFile()));

    // One a day: a second backup replaces the first. No snapshot is left behind beside it.
    QVERIFY(store->mainContext().save(&error));
    QVERIFY(manager.backupApplicationFiles(QDate(2024, 5, 6)));
    QCOMPARE(QDir(backups).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{s("CorvantaBackup20240506.zip")});
    archiveContents(backups + s("CorvantaBackup20240506.zip"), folders.root() + s("/again"));
    QCOMPARE(inspect(folders.root() + s("/again/MINE.cvdb")), s("ok 21"));

    // The copy to the desktop is confirmed even when it could not be written (the failure goes
    // to the log), as this command has always done.
    const QString desktop = folders.root() + s("/Desktop");
    const QString confirmation = s("Database Saved Successfully | The \"Corvanta 2024-05-06 0930.zip\" local "
                                   "database file successfully saved to the desktop.");
    ScratchFolders::writeBytes(desktop, "a file where the desktop should be");
    QTest::ignoreMessage(QtWarningMsg, "Sorry, didn't work.");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(s("Desktop")));
    QVERIFY(!manager.saveDatabase(QDateTime(QDate(2024, 5, 6), QTime(9, 30))));
    QCOMPARE(alerts(prompter), QStringList{confirmation});

    QVERIFY(QFile::remove(desktop));
    QVERIFY(manager.saveDatabase(QDateTime(QDate(2024, 5, 6), QTime(9, 30))));
    QCOMPARE(alerts(prompter), (QStringList{confirmation, confirmation}));
    QCOMPARE(archiveContents(desktop + s("/Corvanta 2024-05-06 0930.zip"), folders.root() + s("/copy")),
             (QStringList{s("Corvanta copy"), s("MINE.cvdb"), s("OTHER.cvdb"), s("corvanta.databases"),
                          s("templates/logo.png")}));
}

// The boundary is the same day a month back, counted in days from that month's first.
void tst_DatabaseManager::pruneRemovesOnlyOwnOldArchives_data()
{
    QTest::addColumn<QDate>("today");
    QTest::addColumn<QDate>("boundary");
    QTest::newRow("a month back") << QDate(2024, 5, 6) << QDate(2024, 4, 6);
    QTest::newRow("across the year") << QDate(2024, 1, 15) << QDate(2023, 12, 15);
    QTest::newRow("31 March, common year") << QDate(2023, 3, 31) << QDate(2023, 3, 3);
    QTest::newRow("31 March, leap year") << QDate(2024, 3, 31) << QDate(2024, 3, 2);
}

// Only the program's own backups older than the boundary go: not archives under other names, of
// other programs, links, or files that are no archive at all.
void tst_DatabaseManager::pruneRemovesOnlyOwnOldArchives()
{
    QFETCH(QDate, today);
    QFETCH(QDate, boundary);
    ScratchFolders folders;
    const BackupFolder backups(folders.folders().documents);
    const QString folder = QFileInfo(backups.archivePath(today)).absolutePath() + s("/");
    QVERIFY(QDir().mkpath(folder));
    const QDateTime old = boundary.startOfDay().addSecs(-60);
    const auto write = [&](const char* name, const char* comment, const QDateTime& modified) {
        corvanta::support::ZipWriter zip;
        QVERIFY(zip.open(folder + s(name), nullptr) && zip.addData(s("notes.txt"), "x", nullptr) &&
                zip.setComment(s(comment), nullptr) && zip.close(nullptr));
        age(folder + s(name), modified);
    };
    write("CorvantaBackup20240405.zip", BackupFolder::kComment, old);
    write("CorvantaBackup20240406.zip", BackupFolder::kComment, boundary.startOfDay());
    write("CorvantaBackup20240405.zip.bak", BackupFolder::kComment, old);
    write("CorvantaBackup20241305.zip", BackupFolder::kComment, old);
    write("CorvantaBackup20240102.zip", "Another program", old);
    ScratchFolders::writeBytes(folder + s("CorvantaBackup20240101.zip"), "not an archive");
    age(folder + s("CorvantaBackup20240101.zip"), old);
    QVERIFY(
        QFile::link(folder + s("CorvantaBackup20240405.zip.bak"), folder + s("CorvantaBackup20240104.zip")));
    // What backups that never finished left: a snapshot folder and a partial archive go once
    // untouched for hours; those of a backup being written now stay.
    const QDateTime hoursAgo = QDateTime::currentDateTime().addSecs(-2 * 3600);
    for (const char* leftover :
         {".corvanta-snapshot-AbC123/1.cvdb", ".CorvantaBackup20240405.zip.Xy12Zq.part"}) {
        ScratchFolders::writeBytes(folder + s(leftover), "PK");
        age(folder + s(leftover), hoursAgo);
    }
    age(folder + s(".corvanta-snapshot-AbC123"), hoursAgo);
    ScratchFolders::writeBytes(folder + s(".corvanta-snapshot-Now123/1.cvdb"), "PK");
    ScratchFolders::writeBytes(folder + s(".CorvantaBackup20240506.zip.Now123.part"), "PK");
    QStringList kept = QDir(folder).entryList(QDir::Files | QDir::System | QDir::Hidden, QDir::Name);
    QVERIFY(kept.removeOne(s("CorvantaBackup20240405.zip")));
    QVERIFY(kept.removeOne(s(".CorvantaBackup20240405.zip.Xy12Zq.part")));

    QCOMPARE(backups.prune(today), QStringList{folder + s("CorvantaBackup20240405.zip")});
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::System | QDir::Hidden, QDir::Name), kept);
    QCOMPARE(QDir(folder).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{s(".corvanta-snapshot-Now123")});
}

QTEST_GUILESS_MAIN(tst_DatabaseManager)
#include "tst_databasemanager.moc"
