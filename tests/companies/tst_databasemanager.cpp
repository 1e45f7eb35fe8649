#include "companies/databasemanager.h"
#include "companiestestsupport.h"
#include "store/storeerror.h"

#include <QRegularExpression>
#include <QSignalSpy>

using namespace corvanta::companies;
using namespace corvanta::companies::testing;
using corvanta::store::StoreError;
using corvanta::support::PropertyList;
using corvanta::support::ScriptedPrompter;

namespace {

const QString kNoDatabase =
    s("No Database | No database was found on the given path. The program will create a new database.");

} // namespace

class tst_DatabaseManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstStartCreatesTheList();
    void resolvesTheSelectedEntry_data();
    void resolvesTheSelectedEntry();
    void damagedListIsRebuiltFromLocalDatabases();
    void unreadableListIsLeftAlone();
    void fileInPlaceOfTheDataFolder();
    void addLocalDatabase();
    void newRemoteDatabase_data();
    void newRemoteDatabase();
    void addExistingDatabase_data();
    void addExistingDatabase();
    void renameKeepsFileAndOtherKeys();
    void removeFromMenu_data();
    void removeFromMenu();
    void connect_data();
    void connect();
};

void tst_DatabaseManager::firstStartCreatesTheList()
{
    ScratchFolders folders;
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    const QString file = manager.selectedDatabaseFile();
    QVERIFY(prompter.questions().isEmpty());
    const QVariantList list = folders.readList();
    QCOMPARE(list.size(), 1);
    const QVariantMap entry = list.first().toMap();
    QCOMPARE(entry.value(s("name")).toString(), s("My Company"));
    QCOMPARE(entry.value(s("selected")).toLongLong(), 1);
    QCOMPARE(entry.value(s("directory")).toString(), folders.app());
    QVERIFY(QRegularExpression(s("\\A[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\.cvdb\\z"))
                .match(entry.value(s("filename")).toString())
                .hasMatch());
    QCOMPARE(entry.value(s("path")).toString(), folders.app(entry.value(s("filename")).toString()));
    QCOMPARE(file, entry.value(s("path")).toString());
    QCOMPARE(manager.databaseFilesDirectory(), folders.app());
    QVERIFY(!QFileInfo::exists(file)); // the store makes it

    // The selected database is fixed for the run; the next run finds the same one, and since the
    // list was there before, tells that the file is missing.
    QCOMPARE(manager.selectedDatabaseFile(), file);
    ScriptedPrompter again;
    QCOMPARE(DatabaseManager(again, folders.folders()).selectedDatabaseFile(), file);
    QCOMPARE(alerts(again), QStringList{kNoDatabase});
}

void tst_DatabaseManager::resolvesTheSelectedEntry_data()
{
    QTest::addColumn<QVariantList>("entries");
    QTest::addColumn<QString>("expected"); // "APP/<file>" for the scratch data folder, empty for none

    const QString file = s("A.cvdb");
    QTest::newRow("only entry not selected")
        << QVariantList{ScratchFolders::entry(s("A"), s("/srv/a"), file, false)} << QString();
    QTest::newRow("first selected wins")
        << QVariantList{ScratchFolders::entry(s("A"), s("/srv/a"), s("A.cvdb"), false),
                        ScratchFolders::entry(s("B"), s("/srv/b"), s("B.cvdb"), true),
                        ScratchFolders::entry(s("C"), s("/srv/c"), s("C.cvdb"), true)}
        << s("/srv/b/B.cvdb");
    QTest::newRow("another user's data folder")
        << QVariantList{ScratchFolders::entry(s("A"), s("/home/other/.local/share/corvanta"), file, true)}
        << s("APP/A.cvdb");
    QTest::newRow("a moved home folder")
        << QVariantList{ScratchFolders::entry(s("A"), s("/home/old/name/.local/share/corvanta/x"), file,
                                              true)}
        << s("APP/A.cvdb");
    QTest::newRow("home folder outside the data folder")
        << QVariantList{ScratchFolders::entry(s("A"), s("/home/other/Documents"), file, true)}
        << s("/home/other/Documents/A.cvdb");
    QTest::newRow("data folder outside home")
        << QVariantList{ScratchFolders::entry(s("A"), s("/srv/home/x/.local/share/c"), file, true)}
        << s("/srv/home/x/.local/share/c/A.cvdb");
    QVariantMap boolean = ScratchFolders::entry(s("A"), s("/srv/a"), file, false);
    boolean.insert(s("selected"), true);
    QTest::newRow("selected as a boolean") << QVariantList{boolean} << s("/srv/a/A.cvdb");
    QVariantMap text = ScratchFolders::entry(s("A"), s("/srv/a"), file, false);
    text.insert(s("selected"), s("1"));
    QTest::newRow("selected as text is not selected") << QVariantList{text} << QString();
    QVariantMap noPath = ScratchFolders::entry(s("A"), s("/srv/a"), file, true);
    noPath.remove(s("path"));
    QTest::newRow("path missing") << QVariantList{noPath} << s("/srv/a/A.cvdb");
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

void tst_DatabaseManager::damagedListIsRebuiltFromLocalDatabases()
{
    ScratchFolders folders;
    makeDatabase(folders.app(s("OLD.cvdb")), s("Older Ltd"));
    makeDatabase(folders.app(s("NEW.cvdb")), s("Newer Ltd"));
    QFile old(folders.app(s("OLD.cvdb")));
    QVERIFY(old.open(QIODevice::ReadWrite));
    QVERIFY(old.setFileTime(QDateTime::currentDateTime().addDays(-3), QFileDevice::FileModificationTime));
    old.close();
    ScratchFolders::writeBytes(folders.listFile(), "garbage");
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    // The database used last is opened; both stay known under their companies' names.
    QCOMPARE(manager.selectedDatabaseFile(), folders.app(s("NEW.cvdb")));
    const QList<DatabaseEntry> entries = manager.databases().value();
    QCOMPARE(entries.size(), 2);
    QCOMPARE(entries.at(0).name, s("Newer Ltd"));
    QVERIFY(entries.at(0).selected);
    QCOMPARE(entries.at(1).name, s("Older Ltd"));
    QVERIFY(!entries.at(1).selected);
    QCOMPARE(prompter.questions().size(), 1);
    QVERIFY(prompter.questions().first().text.endsWith(
        s("A new list was made from the company databases found in \"%1\".").arg(folders.app())));
}

void tst_DatabaseManager::unreadableListIsLeftAlone()
{
    ScratchFolders folders;
    QVERIFY(QDir().mkpath(folders.listFile()));
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    QCOMPARE(manager.selectedDatabaseFile(), QString());
    QCOMPARE(
        alerts(prompter),
        QStringList{s("Database List Unreadable | The list of company databases \"%1\" could not be read: a "
                      "folder stands where the file should be.\n\nNo company database can be opened until "
                      "it can be read.")
                        .arg(folders.listFile())});
    QVERIFY(QFileInfo(folders.listFile()).isDir());
    QVERIFY(folders.keptCopies().isEmpty());
}

void tst_DatabaseManager::fileInPlaceOfTheDataFolder()
{
    ScratchFolders folders;
    QVERIFY(QDir(folders.app()).removeRecursively());
    ScratchFolders::writeBytes(folders.app(), "a file");
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    StoreError error;
    QVERIFY(!manager.checkApplicationFilesDirectory(&error));
    QCOMPARE(error.code, 101);
    QCOMPARE(error.domain, s("YOUR_ERROR_DOMAIN"));
    QCOMPARE(manager.selectedDatabaseFile(), QString());
    QCOMPARE(
        prompter.titles(),
        QStringList{s("Expected a folder to store application data, found a file (%1).").arg(folders.app())});
    QCOMPARE(ScratchFolders::readBytes(folders.app()), QByteArray("a file"));
}

void tst_DatabaseManager::addLocalDatabase()
{
    ScratchFolders folders;
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    const QString selected = manager.selectedDatabaseFile();
    QSignalSpy changed(&manager, &DatabaseManager::databasesChanged);

    QVERIFY(!manager.addLocalDatabase(s("   "))); // no name, no entry
    QVERIFY(manager.addLocalDatabase(s("  Acme Ltd  ")));
    QVERIFY(prompter.questions().isEmpty());
    const QList<DatabaseEntry> entries = manager.databases().value();
    QCOMPARE(entries.size(), 2);
    const DatabaseEntry& added = entries.last();
    QCOMPARE(added.name, s("Acme Ltd"));
    QVERIFY(!added.selected);
    QCOMPARE(added.directory, folders.app());
    QCOMPARE(added.path, folders.app(added.filename));
    QVERIFY(added.filename.endsWith(s(".cvdb")));
    QVERIFY(added.filename != entries.first().filename);
    QVERIFY(!QFileInfo::exists(added.path)); // made when first opened
    QCOMPARE(changed.count(), 1);
    QCOMPARE(manager.selectedDatabaseFile(), selected);
    QVERIFY(!manager.isRestartRequested());
}

void tst_DatabaseManager::newRemoteDatabase_data()
{
    QTest::addColumn<QString>("folder"); // relative to the scratch root; "-" cancels the chooser
    QTest::addColumn<QString>("alert");

    QTest::newRow("shared folder") << s("share") << QString();
    QTest::newRow("chooser cancelled") << s("-") << QString();
    QTest::newRow("folder that does not exist")
        << s("nowhere")
        << s("Folder Not Usable | The folder \"ROOT/nowhere\" cannot hold a company database: it "
             "does not exist.");
}

void tst_DatabaseManager::newRemoteDatabase()
{
    QFETCH(QString, folder);
    QFETCH(QString, alert);
    ScratchFolders folders;
    QDir().mkpath(folders.root() + s("/share"));
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    manager.selectedDatabaseFile();
    const QByteArray before = ScratchFolders::readBytes(folders.listFile());
    prompter.addAnswer(folder == s("-") ? std::nullopt
                                        : std::optional<QString>(folders.root() + s("/") + folder));
    QCOMPARE(manager.addRemoteDatabase(s("Remote Co")), folder == s("share"));
    QCOMPARE(prompter.questions().at(0).title, s("Choose the Folder for the New Database"));
    QCOMPARE(alerts(prompter),
             alert.isEmpty() ? QStringList() : QStringList{alert.replace(s("ROOT"), folders.root())});
    if (folder != s("share")) {
        QCOMPARE(ScratchFolders::readBytes(folders.listFile()), before);
        return;
    }
    const DatabaseEntry added = manager.databases()->last();
    QCOMPARE(added.name, s("Remote Co"));
    QCOMPARE(added.directory, folders.root() + s("/share"));
    QCOMPARE(added.path, added.directory + s("/") + added.filename);
    QVERIFY(!added.selected);
}

void tst_DatabaseManager::addExistingDatabase_data()
{
    QTest::addColumn<QString>("chosen"); // in the scratch root
    QTest::addColumn<QString>("alert");

    QTest::newRow("a company database") << s("Existing.cvdb") << QString();
    QTest::newRow("an empty database file") << s("Empty.cvdb") << QString();
    QTest::newRow("missing file")
        << s("Missing.cvdb")
        << s("Not a Company Database | \"ROOT/Missing.cvdb\" cannot be added: the file "
             "does not exist.");
    QTest::newRow("another extension")
        << s("Existing.sqlite")
        << s("Not a Company Database | \"ROOT/Existing.sqlite\" cannot be added: its name "
             "does not end in \".cvdb\".");
    QTest::newRow("not a database")
        << s("Text.cvdb")
        << s("Not a Company Database | \"ROOT/Text.cvdb\" cannot be added: it is not a "
             "Corvanta company database.");
    QTest::newRow("a folder")
        << s("Folder.cvdb")
        << s("Not a Company Database | \"ROOT/Folder.cvdb\" cannot be added: it is a folder.");
    QTest::newRow("already in the menu")
        << s("Listed.cvdb")
        << s("Database Already in the Menu | \"ROOT/Listed.cvdb\" is already in the menu as "
             "\"Listed Co\".");
}

void tst_DatabaseManager::addExistingDatabase()
{
    QFETCH(QString, chosen);
    QFETCH(QString, alert);
    ScratchFolders folders;
    const QString root = folders.root();
    makeDatabase(root + s("/Existing.cvdb"), s("Existing Co"));
    QFile::copy(root + s("/Existing.cvdb"), root + s("/Existing.sqlite"));
    ScratchFolders::writeBytes(root + s("/Empty.cvdb"), {});
    ScratchFolders::writeBytes(root + s("/Text.cvdb"), "Dear customer, ...");
    QDir().mkpath(root + s("/Folder.cvdb"));
    ScratchFolders::writeBytes(root + s("/Listed.cvdb"), {});
    folders.writeList({ScratchFolders::entry(s("Mine"), folders.app(), s("M.cvdb"), true),
                       ScratchFolders::entry(s("Listed Co"), root, s("Listed.cvdb"), false)});
    const QByteArray before = ScratchFolders::readBytes(folders.listFile());

    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    prompter.addAnswer(root + s("/") + chosen);
    QCOMPARE(manager.addExistingDatabase(s("Added Co")), alert.isEmpty());
    QCOMPARE(prompter.questions().at(0).title, s("Choose a Company Database"));
    QCOMPARE(prompter.questions().at(0).extensions, QStringList{s("cvdb")});
    QCOMPARE(alerts(prompter), alert.isEmpty() ? QStringList() : QStringList{alert.replace(s("ROOT"), root)});
    if (!alert.isEmpty()) {
        QCOMPARE(ScratchFolders::readBytes(folders.listFile()), before);
        return;
    }
    const DatabaseEntry added = manager.databases()->last();
    QCOMPARE(added.name, s("Added Co"));
    QCOMPARE(added.path, root + s("/") + chosen);
    QCOMPARE(added.directory, root);
    QCOMPARE(added.filename, chosen);
    QVERIFY(!added.selected);
}

void tst_DatabaseManager::renameKeepsFileAndOtherKeys()
{
    ScratchFolders folders;
    QVariantMap other = ScratchFolders::entry(s("Old Name"), folders.app(), s("B.cvdb"), false);
    other.insert(s("colour"), s("blue"));
    folders.writeList({ScratchFolders::entry(s("Mine"), folders.app(), s("A.cvdb"), true), other});
    ScratchFolders::writeBytes(folders.app(s("B.cvdb")), "unchanged");
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    QVERIFY(manager.renameDatabase(folders.app(s("B.cvdb")), s(" New Name ")));
    const QVariantList list = folders.readList();
    QCOMPARE(list.at(0).toMap().value(s("name")).toString(), s("Mine"));
    QCOMPARE(list.at(1).toMap().value(s("name")).toString(), s("New Name"));
    QCOMPARE(list.at(1).toMap().value(s("colour")).toString(), s("blue"));
    QCOMPARE(ScratchFolders::readBytes(folders.app(s("B.cvdb"))), QByteArray("unchanged"));

    // An entry that left the list meanwhile is told about, and nothing changes.
    const QByteArray before = ScratchFolders::readBytes(folders.listFile());
    QVERIFY(!manager.renameDatabase(folders.app(s("C.cvdb")), s("Gone")));
    QCOMPARE(
        alerts(prompter),
        QStringList{s("Database Not in the List | The database \"%1\" is no longer in the list of company "
                      "databases.")
                        .arg(folders.app(s("C.cvdb")))});
    QCOMPARE(ScratchFolders::readBytes(folders.listFile()), before);
}

void tst_DatabaseManager::removeFromMenu_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QStringList>("remaining");
    QTest::addColumn<QStringList>("alerts");

    const QString question = s("Remove Menu | The database will not be removed, only the menu.");
    QTest::newRow("remove") << s("Remove") << s("B.cvdb") << QStringList{s("Mine")} << QStringList{question};
    QTest::newRow("cancel") << s("Cancel") << s("B.cvdb") << QStringList{s("Mine"), s("Other"), s("Other")}
                            << QStringList{question};
    QTest::newRow("the open database")
        << s("Remove") << s("A.cvdb") << QStringList{s("Mine"), s("Other"), s("Other")}
        << QStringList{question,
                       s("Database Is Open | The database that is open cannot be removed from the menu.")};
}

void tst_DatabaseManager::removeFromMenu()
{
    QFETCH(QString, answer);
    QFETCH(QString, file);
    QFETCH(QStringList, remaining);
    QFETCH(QStringList, alerts);
    ScratchFolders folders;
    // Entries are identified by path: both entries of B go.
    folders.writeList({ScratchFolders::entry(s("Mine"), folders.app(), s("A.cvdb"), true),
                       ScratchFolders::entry(s("Other"), folders.app(), s("B.cvdb"), false),
                       ScratchFolders::entry(s("Other"), folders.app(), s("B.cvdb"), false)});
    ScratchFolders::writeBytes(folders.app(s("B.cvdb")), "kept");
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    prompter.addAnswer(answer);
    manager.removeDatabase(folders.app(file));
    QCOMPARE(::alerts(prompter), alerts);
    QCOMPARE(prompter.questions().first().buttons, (QStringList{s("Remove"), s("Cancel")}));
    QStringList names;
    const QList<DatabaseEntry> entries = manager.databases().value();
    for (const DatabaseEntry& entry : entries)
        names << entry.name;
    QCOMPARE(names, remaining);
    QCOMPARE(ScratchFolders::readBytes(folders.app(s("B.cvdb"))), QByteArray("kept"));
}

void tst_DatabaseManager::connect_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("fileExists");
    QTest::addColumn<bool>("switches");
    QTest::addColumn<QStringList>("alerts");

    const QString question = s("Connecting to Database | The program is going to restart, will you continue "
                               "connecting to the database?");
    QTest::newRow("connect") << s("Connect") << true << true << QStringList{question};
    QTest::newRow("connect to a missing file")
        << s("Connect") << false << true << QStringList{question, kNoDatabase};
    QTest::newRow("cancel") << s("Cancel") << true << false << QStringList{question};
    QTest::newRow("dismissed") << QString() << false << false << QStringList{question};
}

void tst_DatabaseManager::connect()
{
    QFETCH(QString, answer);
    QFETCH(bool, fileExists);
    QFETCH(bool, switches);
    QFETCH(QStringList, alerts);
    ScratchFolders folders;
    folders.writeList({ScratchFolders::entry(s("Mine"), folders.app(), s("A.cvdb"), true),
                       ScratchFolders::entry(s("Other"), folders.root() + s("/shared"), s("B.cvdb"), false)});
    const QString other = folders.root() + s("/shared/B.cvdb");
    if (fileExists)
        makeDatabase(other, s("Other Co"));
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    QSignalSpy restart(&manager, &DatabaseManager::restartRequested);
    prompter.addAnswer(answer);
    manager.connectDatabase(other);
    QCOMPARE(::alerts(prompter), alerts);
    QCOMPARE(prompter.questions().first().buttons, (QStringList{s("Connect"), s("Cancel")}));
    QCOMPARE(manager.isRestartRequested(), switches);
    QCOMPARE(restart.count(), switches ? 1 : 0);
    const QList<DatabaseEntry> entries = manager.databases().value();
    QCOMPARE(entries.at(0).selected, !switches);
    QCOMPARE(entries.at(1).selected, switches);
    // A missing file is begun at once, so that the next start opens what it was told about.
    QCOMPARE(QFileInfo::exists(other), fileExists || switches);
    if (switches) {
        ScriptedPrompter next;
        QCOMPARE(DatabaseManager(next, folders.folders()).selectedDatabaseFile(), other);
        QVERIFY(next.questions().isEmpty());
    }
}

QTEST_GUILESS_MAIN(tst_DatabaseManager)
#include "tst_databasemanager.moc"
