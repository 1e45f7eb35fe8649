#include "../companies/companiestestsupport.h"
#include "app/applicationcore.h"
#include "app/companiesmenu.h"
#include "app/databasenamewindow.h"
#include "app/updatechecker.h"
#include "companies/databasemanager.h"
#include "support/zipreader.h"
#include "support/zipwriter.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>

using namespace corvanta;
using namespace corvanta::app;
using namespace corvanta::companies::testing;
using companies::DatabaseManager;
using store::EditingContext;
using store::FetchRequest;
using support::ScriptedPrompter;
using Action = DatabaseMenuEntry::Action;

namespace {

// A shipped templates folder of one invoice template, which a first start makes the default.
void writeShippedTemplate(const QString& folder)
{
    const QVariantMap dictionary{
        {s("name"), s("Shipped")}, {s("type"), qint64(0)}, {s("template_elements"), QVariantList()}};
    support::ZipWriter zip;
    QString error;
    QVERIFY(zip.open(QDir(folder).filePath(s("invoice2.corvanta")), &error));
    QVERIFY(zip.addData(s("Shipped/template_elements"), support::PropertyList::toXml(dictionary), &error));
    QVERIFY(zip.close(&error));
}

// The company-databases menu of a start on the scratch folders, as the application builds it.
struct Menu
{
    ScratchFolders folders;
    ScriptedPrompter prompter;
    DatabaseManager manager{prompter, folders.folders()};
    DatabaseNameWindow nameWindow{manager, prompter};
    CompaniesMenu menu{manager, nameWindow};

    // The menu's database entries, "*" for the checked one.
    QStringList databases() const
    {
        QStringList titles;
        for (const DatabaseMenuEntry& entry : menu.myCompaniesMenu()) {
            if (entry.kind == DatabaseMenuEntry::Kind::Database)
                titles << entry.title + (entry.checked ? s("*") : QString());
        }
        return titles;
    }
};

// A real HTTP server on 127.0.0.1 that answers every request with `status` and `body`, or not
// at all when the status is empty.
class LocalServer : public QObject
{
public:
    LocalServer(const QByteArray& status, const QByteArray& body)
    {
        QVERIFY(m_server.listen(QHostAddress::LocalHost, 0));
        connect(&m_server, &QTcpServer::newConnection, this, [this, status, body]() {
            QTcpSocket* socket = m_server.nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket, status, body]() {
                m_request += socket->readAll();
                if (!m_request.contains("\r\n\r\n") ||
                    requestBody().size() < header("Content-Length").toInt() || status.isEmpty())
                    return;
                socket->write("HTTP/1.1 " + status + "\r\nContent-Type: text/plain\r\nContent-Length: " +
                              QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
                socket->disconnectFromHost();
            });
        });
    }

    QUrl url() const { return QUrl(s("http://127.0.0.1:%1/update").arg(m_server.serverPort())); }
    const QByteArray& request() const { return m_request; }
    QByteArray header(const QByteArray& name) const
    {
        for (const QByteArray& line : m_request.split('\n')) {
            if (line.toLower().startsWith(name.toLower() + ':'))
                return line.mid(name.size() + 1).trimmed();
        }
        return {};
    }
    QByteArray requestBody() const { return m_request.mid(m_request.indexOf("\r\n\r\n") + 4); }

private:
    QTcpServer m_server;
    QByteArray m_request;
};

const QString kUpToDate = s("Corvanta Update | Corvanta is up to date.");

QString announcement(const char* version, const char* notes)
{
    return s("Corvanta Update | A new version of %1 is available.\n%2\n\nPlease download the new version and "
             "replace it with old one.")
        .arg(s(version), s(notes));
}

} // namespace

// Start-up, quitting, the company-databases menu with its name window, and the update check.
class tst_ApplicationCore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstAndSecondStart();
    void failedStartsTellWhy_data();
    void failedStartsTellWhy();
    void quitting();
    void menuEntriesAndTheirCommands();
    void nameWindow_data();
    void nameWindow();
    void updateReplies_data();
    void updateReplies();
};

void tst_ApplicationCore::firstAndSecondStart()
{
    ScratchFolders folders;
    QTemporaryDir shipped;
    writeShippedTemplate(shipped.path());
    ScriptedPrompter prompter;
    QString databaseFile;
    {
        ApplicationCore core(prompter, folders.folders(), shipped.path());
        QVERIFY(core.start());
        QVERIFY(core.insertedDefaults());
        databaseFile = core.store()->path();
        QCOMPARE(QFileInfo(databaseFile).absolutePath(), folders.app());
        QCOMPARE(core.myCompany()->valueForKeyPath(s("default_template_invoice.name")).toString(),
                 s("Shipped"));
        const DatabaseMenuEntry& entry = core.companiesMenu()->myCompaniesMenu().last();
        QVERIFY(entry.title == s("My Company") && entry.checked && entry.fileExists);
    }
    ApplicationCore again(prompter, folders.folders(), shipped.path());
    QVERIFY(again.start());
    QVERIFY(prompter.questions().isEmpty());
    QVERIFY(!again.insertedDefaults());
    QCOMPARE(again.store()->path(), databaseFile);
    QCOMPARE(again.store()->mainContext().count(FetchRequest(s("Templates"))), 1);
}

// A start that opens nothing tells why, and leaves the list and every file as they were.
void tst_ApplicationCore::failedStartsTellWhy_data()
{
    QTest::addColumn<bool>("selected");    // whether the list marks "A.cvdb"
    QTest::addColumn<QByteArray>("bytes"); // what "A.cvdb" holds
    QTest::addColumn<QString>("reported"); // the alert before "Failed to initialize the store"

    const QByteArray damaged = QByteArray("SQLite format 3\0", 16) + QByteArray(8176, '\0');
    QTest::newRow("no database marked") << false << damaged << QString();
    QTest::newRow("marked file is a letter")
        << true << QByteArray("Dear customer, this is a letter.")
        << s("The file \"%1\" is not a Corvanta company database. | It is not a database file. Nothing in it "
             "was changed; choose the company database's own file, whose name ends in \".cvdb\".");
    QTest::newRow("marked database damaged")
        << true << damaged
        << s("The company database \"%1\" is damaged. | SQLite reports: file is not a database. Nothing in "
             "it was changed; restore the company database from a backup. The latest daily backup is "
             "\"%2/CorvantaBackup20240506.zip\".");
}

void tst_ApplicationCore::failedStartsTellWhy()
{
    QFETCH(bool, selected);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reported);

    ScratchFolders folders;
    folders.writeList({ScratchFolders::entry(s("Acme"), folders.app(), s("A.cvdb"), selected),
                       ScratchFolders::entry(s("Beta"), folders.app(), s("B.cvdb"), false)});
    const QByteArray list = ScratchFolders::readBytes(folders.listFile());
    ScratchFolders::writeBytes(folders.app(s("A.cvdb")), bytes);
    const QString backups = folders.root() + s("/Documents/Corvanta Backup");
    for (const char* name :
         {"CorvantaBackup20240401.zip", "CorvantaBackup20240506.zip", "CorvantaBackup2025.zip"})
        ScratchFolders::writeBytes(backups + QLatin1Char('/') + QLatin1String(name), "PK");

    ScriptedPrompter prompter;
    ApplicationCore core(prompter, folders.folders());
    QVERIFY(!core.start());
    QVERIFY(!core.store() && !core.isRestartRequested());
    QStringList expected;
    if (!reported.isEmpty())
        expected << reported.replace(s("%1"), folders.app(s("A.cvdb"))).replace(s("%2"), backups);
    expected << s("Failed to initialize the store | There was an error building up the data file.");
    QCOMPARE(alerts(prompter), expected);
    QCOMPARE(ScratchFolders::readBytes(folders.listFile()), list);
    QCOMPARE(ScratchFolders::readBytes(folders.app(s("A.cvdb"))), bytes);
    QCOMPARE(QDir(folders.app()).entryList({s("*.cvdb*")}, QDir::Files), QStringList{s("A.cvdb")});
}

// Quitting saves the sidebar, backs up what was saved so far, then saves the pending changes;
// when that save fails, the user is told why and warned, and the program quits all the same.
void tst_ApplicationCore::quitting()
{
    ScratchFolders folders;
    ScriptedPrompter prompter;
    ApplicationCore core(prompter, folders.folders());
    QVERIFY(core.start());
    EditingContext& context = core.store()->mainContext();
    context.insertRecord(s("Clients"), {{s("company_name"), s("Saved at quit")}});
    const QString archive = folders.root() + s("/Documents/Corvanta Backup/CorvantaBackup20240506.zip");
    bool archiveExistedAtSidebarSave = true;
    const auto reply = core.applicationShouldTerminate(
        [&]() { archiveExistedAtSidebarSave = QFileInfo::exists(archive); }, QDate(2024, 5, 6));
    QCOMPARE(int(reply), int(ApplicationCore::TerminateReply::Now));
    QVERIFY(!archiveExistedAtSidebarSave);
    QVERIFY(prompter.questions().isEmpty());
    QVERIFY(!context.hasChanges());
    QCOMPARE(context.count(FetchRequest(s("Clients"))), 1);
    support::ZipReader zip;
    QVERIFY(zip.open(archive, nullptr) && zip.extractAll(folders.root() + s("/restored"), nullptr));
    store::StoreError error;
    const auto restored = model::CompanyDatabase::open(
        folders.root() + s("/restored/") + QFileInfo(core.store()->path()).fileName(), &error);
    QVERIFY2(restored, qPrintable(error.message()));
    QCOMPARE(restored->mainContext().count(FetchRequest(s("Clients"))), 0);

    store::Record* cheque = context.insertRecord(s("PaymentTypes"), {{s("name"), s("Cheque")}});
    context.insertRecord(s("Documents"), {{s("type"), 0}})->setRelated(s("payment_type"), cheque);
    QVERIFY(context.save());
    context.deleteRecord(cheque); // refused when saved: a document uses it
    prompter.addAnswer(s("OK"));
    prompter.addAnswer(s("Cancel"));
    QCOMPARE(int(core.applicationShouldTerminate({}, QDate(2024, 5, 6))),
             int(ApplicationCore::TerminateReply::Now));
    QCOMPARE(
        alerts(prompter),
        (QStringList{s("The changes could not be saved. | A record of PaymentTypes cannot be deleted while 1 "
                       "record(s) of Documents use it."),
                     s("Could not save changes while quitting. Quit r? | Quitting now will lose any changes "
                       "you have made since the last successful save")}));
    QCOMPARE(prompter.questions().last().buttons, (QStringList{s("Quit anyway"), s("Cancel")}));
}

// What the menu offers, and that it follows every change its commands make to the list.
void tst_ApplicationCore::menuEntriesAndTheirCommands()
{
    Menu m;
    m.folders.writeList({ScratchFolders::entry(s("Zeta"), m.folders.app(), s("Z.cvdb"), false),
                         ScratchFolders::entry(s("Acme"), m.folders.app(), s("A1.cvdb"), false),
                         ScratchFolders::entry(s("Mine"), m.folders.app(), s("M.cvdb"), true),
                         ScratchFolders::entry(s("Acme"), m.folders.app(), s("A2.cvdb"), false)});
    for (const char* file : {"Z.cvdb", "A1.cvdb", "M.cvdb"})
        ScratchFolders::writeBytes(m.folders.app(s(file)), {});
    // Commands, a separator, then the databases by name (equal names in the order of the list),
    // each with its path (or that it is not found) and its commands.
    const QList<DatabaseMenuEntry> menu = m.menu.setupMyCompaniesMenu();
    QStringList shown;
    for (const DatabaseMenuEntry& entry : menu) {
        QStringList items;
        for (const auto& item : entry.items)
            items << item.title;
        shown << s("%1%2 %3 [%4]")
                     .arg(entry.title, entry.checked ? s("*") : QString(),
                          QString(entry.detail).replace(m.folders.app(), s("APP")), items.join(s(", ")));
    }
    const QString others = s("[Connect, Rename, Remove from Menu, Database Path]");
    QCOMPARE(shown,
             (QStringList{s("New Local Database  []"), s("New Remote Database  []"),
                          s("Add Existing Database  []"), s("Save Local Database to Desktop  []"), s("  []"),
                          s("Acme APP/A1.cvdb ") + others, s("Acme APP/A2.cvdb (not found) ") + others,
                          s("Mine* APP/M.cvdb [Database Path, Rename]"), s("Zeta APP/Z.cvdb ") + others}));
    QCOMPARE(int(menu.at(4).kind), int(DatabaseMenuEntry::Kind::Separator));

    // The commands on a database reach the list, and the menu follows each change.
    QSignalSpy changed(&m.menu, &CompaniesMenu::myCompaniesMenuChanged);
    m.prompter.addAnswer(s("New Name"));
    m.menu.trigger(Action::Rename, m.folders.app(s("Z.cvdb")));
    QCOMPARE(m.prompter.questions().first().title + s(": ") + m.prompter.questions().first().initial,
             s("Rename Database: Zeta"));
    m.prompter.addAnswer(s("Connect"));
    m.menu.trigger(Action::Connect, m.folders.app(s("Z.cvdb")));
    QVERIFY(m.manager.isRestartRequested());
    m.prompter.addAnswer(s("Remove"));
    m.menu.trigger(Action::RemoveFromMenu, m.folders.app(s("M.cvdb")));
    QCOMPARE(m.databases(), (QStringList{s("Acme"), s("Acme"), s("New Name*")}));
    QCOMPARE(changed.count(), 3);
}

void tst_ApplicationCore::nameWindow_data()
{
    QTest::addColumn<int>("action");
    QTest::addColumn<QString>("title");
    QTest::newRow("new local") << int(Action::NewLocalDatabase) << s("New Local Database");
    QTest::newRow("new remote") << int(Action::NewRemoteDatabase) << s("New Remote Database");
    QTest::newRow("add existing") << int(Action::AddExistingDatabase) << s("Add Existing Database");
}

// Each command asks for the name first: cancelling changes nothing, an empty name is refused and
// asked again, a name carries the action out (a local database at once, the other two after
// their chooser, cancelled here).
void tst_ApplicationCore::nameWindow()
{
    QFETCH(int, action);
    QFETCH(QString, title);
    Menu m;
    m.manager.selectedDatabaseFile(); // a first start makes the list
    m.prompter.addAnswer(std::nullopt);
    m.menu.trigger(Action(action));
    m.prompter.addAnswer(s("   "));
    m.prompter.addAnswer(s("OK"));
    m.prompter.addAnswer(s("  Acme Ltd  "));
    m.menu.trigger(Action(action));
    const bool local = action == int(Action::NewLocalDatabase);
    QStringList expected{title, title, s("No Company Name"), title};
    if (!local)
        expected << (action == int(Action::NewRemoteDatabase) ? s("Choose the Folder for the New Database")
                                                              : s("Choose a Company Database"));
    QCOMPARE(m.prompter.titles(), expected);
    QCOMPARE(m.prompter.questions().at(1).text, s("Company name:"));
    QCOMPARE(m.prompter.questions().at(2).text, s("Enter the name of the company."));
    QCOMPARE(m.databases(),
             local ? (QStringList{s("Acme Ltd"), s("My Company*")}) : QStringList{s("My Company*")});
}

// The request is this program's version, form-encoded. Whatever the server answers, the user
// sees plain text, and only an announcement offers the download.
void tst_ApplicationCore::updateReplies_data()
{
    QTest::addColumn<QByteArray>("status"); // empty: the server never answers
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("shown");
    const QByteArray ok = "200 OK";
    QTest::newRow("a new version") << ok << QByteArray("ok|2.0 (7)|Faster reports.")
                                   << announcement("2.0 (7)", "Faster reports.");
    QTest::newRow("wrong shape") << ok << QByteArray("ok|2.0|notes|more") << kUpToDate;
    QTest::newRow("mark-up stays text") << ok << QByteArray("ok|<b>3.0</b>|<a href=\"x\">notes</a>\n")
                                        << announcement("<b>3.0</b>", "<a href=\"x\">notes</a>\n");
    QTest::newRow("control characters are dropped")
        << ok << QByteArray("ok|3.0\x1b[31m|line\r\ntwo") << announcement("3.0[31m", "line\ntwo");
    QTest::newRow("NUL bytes") << ok << QByteArray("ok|2.0|a\x00b", 10) << kUpToDate;
    QTest::newRow("not UTF-8") << ok << QByteArray("ok|2.0|caf\xe9") << kUpToDate;
    QTest::newRow("oversized") << ok << QByteArray("ok|2.0|") + QByteArray(300 * 1024, 'x') << kUpToDate;
    QTest::newRow("server error") << QByteArray("500 Internal Server Error") << QByteArray("ok|2.0|notes")
                                  << kUpToDate;
    QTest::newRow("slow server") << QByteArray() << QByteArray() << kUpToDate;
}

void tst_ApplicationCore::updateReplies()
{
    QFETCH(QByteArray, status);
    QFETCH(QByteArray, body);
    QFETCH(QString, shown);
    LocalServer server(status, body);
    ScriptedPrompter prompter;
    prompter.addAnswer(s("Download"));
    UpdateChecker checker(prompter, server.url(), std::chrono::milliseconds(500));
    QElapsedTimer clock;
    clock.start();
    const std::optional<QUrl> download = checker.update();
    QVERIFY(clock.elapsed() < 5000);
    QCOMPARE(prompter.questions().size(), 1);
    const ScriptedPrompter::Question& asked = prompter.questions().first();
    QCOMPARE(asked.title + s(" | ") + asked.text, shown);
    QVERIFY(server.request().startsWith("POST /update HTTP/1.1\r\n"));
    QCOMPARE(server.header("Content-Type"), QByteArray("application/x-www-form-urlencoded"));
    const QByteArray sent = server.requestBody(); // "<version> (<build>)"
    QVERIFY2(sent.startsWith("version=" CORVANTA_VERSION "+%28") && sent.endsWith("%29"), sent.constData());
    QCOMPARE(server.header("Content-Length"), QByteArray::number(server.requestBody().size()));
    const bool offered = shown != kUpToDate;
    QCOMPARE(asked.buttons, offered ? (QStringList{s("Download"), s("Cancel")}) : QStringList{s("OK")});
    QCOMPARE(download, offered ? std::make_optional(UpdateChecker::defaultDownloadPage()) : std::nullopt);
}

QTEST_GUILESS_MAIN(tst_ApplicationCore)
#include "tst_applicationcore.moc"
