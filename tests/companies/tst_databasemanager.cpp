#include "companies/databasemanager.h"
#include "companiestestsupport.h"

#include <QSignalSpy>

using namespace corvanta::companies;
using namespace corvanta::companies::testing;
using corvanta::support::ScriptedPrompter;

namespace {

const QString kNoDatabase =
    s("No Database | No database was found on the given path. The program will create a new database.");

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
    const QByteArray before = ScratchFolders::readBytes(folders.listFile());
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    expected.replace(s("APP/"), folders.app() + QLatin1Char('/'));
    QCOMPARE(manager.selectedDatabaseFile(), expected);
    if (!expected.isEmpty())
        QCOMPARE(manager.databaseFilesDirectory(), QFileInfo(expected).absolutePath());
    QCOMPARE(alerts(prompter), expected.isEmpty() ? QStringList() : QStringList{kNoDatabase});
    QCOMPARE(ScratchFolders::readBytes(folders.listFile()), before); // resolving never rewrites a good list
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

    QVERIFY(QDir(folders.listFile()).removeRecursively());
    ScratchFolders::writeBytes(folders.listFile(), "garbage");
    makeDatabase(folders.app(s("OLD.cvdb")), s("Older Ltd"));
    makeDatabase(folders.app(s("NEW.cvdb")), s("Newer Ltd"));
    QFile old(folders.app(s("OLD.cvdb")));
    QVERIFY(old.open(QIODevice::ReadWrite) &&
            old.setFileTime(QDateTime::currentDateTime().addDays(-3), QFileDevice::FileModificationTime));
    old.close();
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

QTEST_GUILESS_MAIN(tst_DatabaseManager)
#include "tst_databasemanager.moc"
