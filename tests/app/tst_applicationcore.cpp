#include "../companies/companiestestsupport.h"
#include "app/applicationcore.h"
#include "app/companiesmenu.h"
#include "companies/databasemanager.h"
#include "support/zipreader.h"
#include "support/zipwriter.h"

using namespace corvanta;
using namespace corvanta::companies::testing;
using app::ApplicationCore;
using store::EditingContext;
using store::FetchRequest;
using support::ScriptedPrompter;

namespace {

// The shipped templates folder: the two invoice files, the later of which becomes the default.
void writeShippedTemplates(const QString& folder)
{
    for (const char* name : {"invoice1", "invoice2"}) {
        const QVariantMap dictionary{
            {s("name"), s(name)}, {s("type"), qint64(0)}, {s("template_elements"), QVariantList()}};
        support::ZipWriter zip;
        QString error;
        QVERIFY(zip.open(QDir(folder).filePath(s(name) + s(".corvanta")), &error));
        QVERIFY(
            zip.addData(s(name) + s("/template_elements"), support::PropertyList::toXml(dictionary), &error));
        QVERIFY(zip.close(&error));
    }
}

} // namespace

class tst_ApplicationCore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstAndSecondStart();
    void failedStartsTellWhy();
    void quitting();
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
        QVERIFY(core.insertedDefaults());
        databaseFile = core.store()->path();
        QCOMPARE(QFileInfo(databaseFile).absolutePath(), folders.app());
        QCOMPARE(core.myCompany()->value(s("name")).toString(), s("My Company"));
        QCOMPARE(core.myCompany()->valueForKeyPath(s("default_template_invoice.name")).toString(),
                 s("invoice2"));
        const app::DatabaseMenuEntry& entry = core.companiesMenu()->myCompaniesMenu().last();
        QVERIFY(entry.title == s("My Company") && entry.checked && entry.fileExists);
    }
    ApplicationCore again(prompter, folders.folders(), shipped.path());
    QVERIFY(again.start());
    QVERIFY(prompter.questions().isEmpty());
    QVERIFY(!again.insertedDefaults());
    QCOMPARE(again.store()->path(), databaseFile);
    QCOMPARE(again.store()->mainContext().count(FetchRequest(s("Templates"))), 2);
}

// A list that marks no database: the first one is marked and the program starts again. That one
// is not a company database: it is reported, and left as it is.
void tst_ApplicationCore::failedStartsTellWhy()
{
    ScratchFolders folders;
    folders.writeList({ScratchFolders::entry(s("Acme"), folders.app(), s("A.cvdb"), false),
                       ScratchFolders::entry(s("Beta"), folders.app(), s("B.cvdb"), false)});
    ScratchFolders::writeBytes(folders.app(s("A.cvdb")), "Dear customer, this is a letter.");
    ScriptedPrompter prompter;
    {
        ApplicationCore core(prompter, folders.folders());
        QVERIFY(!core.start());
        QVERIFY(!core.store() && core.isRestartRequested());
    }
    ApplicationCore next(prompter, folders.folders());
    QVERIFY(!next.start());
    QVERIFY(!next.isRestartRequested());
    const QStringList asked = alerts(prompter);
    QCOMPARE(asked.size(), 3);
    QCOMPARE(asked.at(0),
             s("No Database Selected | None of the company databases in the list is marked to be "
               "opened. Corvanta will start again and open \"Acme\"."));
    QVERIFY(asked.at(1).startsWith(
        s("The file \"%1\" is not a Corvanta company database. | ").arg(folders.app(s("A.cvdb")))));
    QCOMPARE(asked.at(2),
             s("Failed to initialize the store | There was an error building up the data file."));
    QCOMPARE(ScratchFolders::readBytes(folders.app(s("A.cvdb"))),
             QByteArray("Dear customer, this is a letter."));
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

QTEST_GUILESS_MAIN(tst_ApplicationCore)
#include "tst_applicationcore.moc"
