#include "../companies/companiestestsupport.h"
#include "app/applicationcore.h"
#include "app/companiesmenu.h"
#include "companies/databasemanager.h"
#include "support/zipreader.h"
#include "support/zipwriter.h"

using namespace corvanta;
using namespace corvanta::companies::testing;
using app::ApplicationCore;
using app::DatabaseMenuEntry;
using store::EditingContext;
using store::FetchRequest;
using store::Record;
using store::StoreError;
using support::PropertyList;
using support::ScriptedPrompter;
using support::ZipReader;
using support::ZipWriter;

namespace {

const QString kFailed = s("Failed to initialize the store | There was an error building up the data file.");

// The shipped templates folder: the two invoice files, the later of which becomes the default.
void writeShippedTemplates(const QString& folder)
{
    for (const char* name : {"invoice1", "invoice2"}) {
        const QVariantMap dictionary{
            {s("name"), s(name)}, {s("type"), qint64(0)}, {s("template_elements"), QVariantList()}};
        ZipWriter zip;
        QString error;
        QVERIFY(zip.open(QDir(folder).filePath(s(name) + s(".corvanta")), &error));
        QVERIFY(zip.addData(s(name) + s("/template_elements"), PropertyList::toXml(dictionary), &error));
        QVERIFY(zip.close(&error));
    }
}

int clients(const QString& database)
{
    StoreError error;
    auto store = model::CompanyDatabase::open(database, &error);
    return store ? store->mainContext().count(FetchRequest(s("Clients"))) : -1;
}

} // namespace

class tst_ApplicationCore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstAndSecondStart();
    void listWithoutSelectionStartsAgain();
    void unusableDatabaseIsReported();
    void quitBacksUpBeforeSaving();
    void quitWhenTheSaveFails();
};

void tst_ApplicationCore::firstAndSecondStart()
{
    ScratchFolders folders;
    QTemporaryDir shipped;
    writeShippedTemplates(shipped.path());
    ScriptedPrompter prompter;
    QString databaseFile;
    {
        ApplicationCore core(prompter, folders.folders(), shipped.path());
        QVERIFY(core.start());
        QVERIFY(prompter.questions().isEmpty());
        QVERIFY(core.insertedDefaults());
        databaseFile = core.store()->path();
        QCOMPARE(QFileInfo(databaseFile).absolutePath(), folders.app());
        QVERIFY(core.myCompany());
        QCOMPARE(core.myCompany()->value(s("name")).toString(), s("My Company"));
        QCOMPARE(core.myCompany()->valueForKeyPath(s("default_template_invoice.name")).toString(),
                 s("invoice2"));
        const QList<DatabaseMenuEntry>& menu = core.companiesMenu()->myCompaniesMenu();
        QCOMPARE(menu.size(), 6);
        QCOMPARE(menu.last().title, s("My Company"));
        QVERIFY(menu.last().checked);
        QVERIFY(menu.last().fileExists);
    }
    ApplicationCore again(prompter, folders.folders(), shipped.path());
    QVERIFY(again.start());
    QVERIFY(prompter.questions().isEmpty());
    QVERIFY(!again.insertedDefaults());
    QCOMPARE(again.store()->path(), databaseFile);
    QCOMPARE(again.store()->mainContext().count(FetchRequest(s("Templates"))), 2);
    QCOMPARE(again.store()->mainContext().count(FetchRequest(s("MyCompany"))), 1);
}

void tst_ApplicationCore::listWithoutSelectionStartsAgain()
{
    ScratchFolders folders;
    folders.writeList({ScratchFolders::entry(s("Acme"), folders.app(), s("A.cvdb"), false),
                       ScratchFolders::entry(s("Beta"), folders.app(), s("B.cvdb"), false)});
    ScriptedPrompter prompter;
    {
        ApplicationCore core(prompter, folders.folders());
        QVERIFY(!core.start());
        QVERIFY(!core.store());
        QVERIFY(core.isRestartRequested());
        QCOMPARE(alerts(prompter),
                 QStringList{s("No Database Selected | None of the company databases in the list "
                               "is marked to be opened. Corvanta will start again and open "
                               "\"Acme\".")});
    }
    prompter.clear();
    ApplicationCore next(prompter, folders.folders());
    QVERIFY(next.start());
    QCOMPARE(next.store()->path(), folders.app(s("A.cvdb")));
    QCOMPARE(alerts(prompter),
             QStringList{s("No Database | No database was found on the given path. The program "
                           "will create a new database.")});
}

void tst_ApplicationCore::unusableDatabaseIsReported()
{
    ScratchFolders folders;
    folders.writeList({ScratchFolders::entry(s("Acme"), folders.app(), s("A.cvdb"), true)});
    ScratchFolders::writeBytes(folders.app(s("A.cvdb")), "Dear customer, this is a letter.");
    ScriptedPrompter prompter;
    ApplicationCore core(prompter, folders.folders());
    QVERIFY(!core.start());
    QVERIFY(!core.isRestartRequested());
    const QStringList asked = alerts(prompter);
    QCOMPARE(asked.size(), 2);
    QVERIFY(asked.first().startsWith(
        s("The file \"%1\" is not a Corvanta company database. | ").arg(folders.app(s("A.cvdb")))));
    QCOMPARE(asked.last(), kFailed);
    QCOMPARE(ScratchFolders::readBytes(folders.app(s("A.cvdb"))),
             QByteArray("Dear customer, this is a letter."));
}

void tst_ApplicationCore::quitBacksUpBeforeSaving()
{
    ScratchFolders folders;
    ScriptedPrompter prompter;
    ApplicationCore core(prompter, folders.folders());
    QVERIFY(core.start());
    core.store()->mainContext().insertRecord(s("Clients"), {{s("company_name"), s("Saved at quit")}});
    const QString archive = folders.root() + s("/Documents/Corvanta Backup/CorvantaBackup20240506.zip");
    bool archiveExistedAtSidebarSave = true;
    const auto reply = core.applicationShouldTerminate(
        [&]() { archiveExistedAtSidebarSave = QFileInfo::exists(archive); }, QDate(2024, 5, 6));
    QCOMPARE(int(reply), int(ApplicationCore::TerminateReply::Now));
    QVERIFY(!archiveExistedAtSidebarSave);
    QVERIFY(prompter.questions().isEmpty());
    QVERIFY(!core.store()->mainContext().hasChanges());

    ZipReader zip;
    QVERIFY(zip.open(archive, nullptr));
    QVERIFY(zip.extractAll(folders.root() + s("/restored"), nullptr));
    const QString databaseName = QFileInfo(core.store()->path()).fileName();
    QCOMPARE(clients(folders.root() + s("/restored/") + databaseName), 0);
    QCOMPARE(core.store()->mainContext().count(FetchRequest(s("Clients"), {}, {})), 1);
}

void tst_ApplicationCore::quitWhenTheSaveFails()
{
    ScratchFolders folders;
    ScriptedPrompter prompter;
    ApplicationCore core(prompter, folders.folders());
    QVERIFY(core.start());
    EditingContext& context = core.store()->mainContext();
    Record* cash = context.fetchFirst(FetchRequest(
        s("PaymentTypes"),
        predicate::Predicate::compare(s("name"), predicate::Predicate::Operator::Equal, s("Cash"))));
    Record* document = context.insertRecord(s("Documents"), {{s("type"), 0}});
    document->setRelated(s("payment_type"), cash);
    QVERIFY(context.save());
    context.deleteRecord(cash); // refused: a document uses it

    prompter.addAnswer(s("OK"));
    prompter.addAnswer(s("Cancel"));
    QCOMPARE(int(core.applicationShouldTerminate({}, QDate(2024, 5, 6))),
             int(ApplicationCore::TerminateReply::Now));
    const QList<ScriptedPrompter::Question>& asked = prompter.questions();
    QCOMPARE(asked.size(), 2);
    QCOMPARE(
        asked.first().title + s(" | ") + asked.first().text,
        s("The changes could not be saved. | A record of PaymentTypes cannot be deleted while 1 record(s) of "
          "Documents use it."));
    QCOMPARE(asked.last().title, s("Could not save changes while quitting. Quit r?"));
    QCOMPARE(asked.last().text,
             s("Quitting now will lose any changes you have made since the last successful save"));
    QCOMPARE(asked.last().buttons, (QStringList{s("Quit anyway"), s("Cancel")}));
}

QTEST_GUILESS_MAIN(tst_ApplicationCore)
#include "tst_applicationcore.moc"
