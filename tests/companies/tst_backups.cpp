#include "companies/backupfolder.h"
#include "companies/databasemanager.h"
#include "companiestestsupport.h"
#include "support/zipreader.h"
#include "support/zipwriter.h"

#include <QSqlDatabase>
#include <QSqlQuery>

using namespace corvanta::companies;
using namespace corvanta::companies::testing;
using corvanta::model::CompanyDatabase;
using corvanta::store::FetchRequest;
using corvanta::store::Store;
using corvanta::store::StoreError;
using corvanta::support::ScriptedPrompter;
using corvanta::support::ZipReader;

namespace {

// "<integrity check> <number of clients>" of a database file.
QString inspect(const QString& database)
{
    QString integrity;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(s("QSQLITE"), s("integrity"));
        db.setDatabaseName(database);
        db.setConnectOptions(s("QSQLITE_OPEN_READONLY"));
        if (db.open()) {
            QSqlQuery q(db);
            if (q.exec(s("PRAGMA integrity_check")) && q.next())
                integrity = q.value(0).toString();
        }
    }
    QSqlDatabase::removeDatabase(s("integrity"));
    StoreError error;
    auto store = CompanyDatabase::open(database, &error);
    return integrity + s(" ") +
           QString::number(store ? store->mainContext().count(FetchRequest(s("Clients"))) : -1);
}

// The names in an archive, sorted, after extracting it into `folder`.
QStringList extract(const QString& archive, const QString& folder)
{
    ZipReader zip;
    QString error;
    if (!zip.open(archive, &error) || !zip.extractAll(folder, &error))
        return {error};
    QStringList names{zip.comment()};
    for (const ZipReader::Entry& entry : zip.entries())
        names << entry.name;
    names.sort();
    return names;
}

void setModified(const QString& file, const QDateTime& when)
{
    QFile f(file);
    QVERIFY(f.open(QIODevice::ReadWrite) && f.setFileTime(when, QFileDevice::FileModificationTime));
}

// A company folder with an open database (with saved and unsaved changes) and a second local
// database that is not open.
struct OpenCompany
{
    ScratchFolders folders;
    ScriptedPrompter prompter;
    DatabaseManager manager{prompter, folders.folders()};
    std::unique_ptr<Store> store;
    QString backups = folders.root() + s("/Documents/Corvanta Backup/");

    OpenCompany()
    {
        folders.writeList({ScratchFolders::entry(s("Mine"), folders.app(), s("MINE.cvdb"), true),
                           ScratchFolders::entry(s("Other"), folders.app(), s("OTHER.cvdb"), false)});
        StoreError error;
        store = CompanyDatabase::open(folders.app(s("OTHER.cvdb")), &error);
        store->mainContext().insertRecord(s("Clients"), {{s("company_name"), s("Other client")}});
        store->mainContext().save(&error);
        store = CompanyDatabase::open(manager.selectedDatabaseFile(), &error);
        // Many small commits: they stay in the write-ahead log, where a plain copy of the file
        // would not see them.
        for (int i = 0; i < 20; ++i) {
            store->mainContext().insertRecord(s("Clients"), {{s("company_name"), s("Client %1").arg(i)}});
            store->mainContext().save(&error);
        }
        store->mainContext().insertRecord(s("Clients"), {{s("company_name"), s("Not saved yet")}});
        manager.setStore(store.get());
        prompter.clear(); // the new database's file was announced as missing
    }
};

} // namespace

class tst_Backups : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void archivesOfAnOpenDatabaseRestore();
    void pruneBoundary_data();
    void pruneBoundary();
    void pruneRemovesOnlyOwnOldArchives();
};

void tst_Backups::archivesOfAnOpenDatabaseRestore()
{
    OpenCompany company;
    ScratchFolders::writeBytes(company.folders.app(s("templates/logo.png")), "picture");
    ScratchFolders::writeBytes(company.folders.app(s("temp/scratch.txt")), "scratch");
    QVERIFY(company.manager.backupApplicationFiles(QDate(2024, 5, 6)));
    // The databases as snapshots, without their logs and locks; scratch files stay out.
    const QString restored = company.folders.root() + s("/restored/");
    QCOMPARE(extract(company.backups + s("CorvantaBackup20240506.zip"), restored),
             (QStringList{s("Corvanta daily backup"), s("MINE.cvdb"), s("OTHER.cvdb"),
                          s("corvanta.databases"), s("templates/logo.png")}));
    QCOMPARE(inspect(restored + s("MINE.cvdb")), s("ok 20")); // every saved client, not the pending one
    QCOMPARE(inspect(restored + s("OTHER.cvdb")), s("ok 1"));
    QCOMPARE(ScratchFolders::readBytes(restored + s("corvanta.databases")),
             ScratchFolders::readBytes(company.folders.listFile()));
    QCOMPARE(ScratchFolders::readBytes(restored + s("templates/logo.png")), QByteArray("picture"));

    // One a day: a second backup replaces the first. No snapshot is left behind beside it.
    StoreError error;
    QVERIFY(company.store->mainContext().save(&error));
    QVERIFY(company.manager.backupApplicationFiles(QDate(2024, 5, 6)));
    QCOMPARE(QDir(company.backups).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{s("CorvantaBackup20240506.zip")});
    extract(company.backups + s("CorvantaBackup20240506.zip"), company.folders.root() + s("/again"));
    QCOMPARE(inspect(company.folders.root() + s("/again/MINE.cvdb")), s("ok 21"));

    // The copy to the desktop is confirmed even when it could not be written (the failure goes
    // to the log), as this command has always done.
    const QString desktop = company.folders.root() + s("/Desktop");
    const QString confirmation = s("Database Saved Successfully | The \"Corvanta 2024-05-06 0930.zip\" local "
                                   "database file successfully saved to the desktop.");
    ScratchFolders::writeBytes(desktop, "a file where the desktop should be");
    QTest::ignoreMessage(QtWarningMsg, "Sorry, didn't work.");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(s("Desktop")));
    QVERIFY(!company.manager.saveDatabase(QDateTime(QDate(2024, 5, 6), QTime(9, 30))));
    QCOMPARE(alerts(company.prompter), QStringList{confirmation});

    QVERIFY(QFile::remove(desktop));
    QVERIFY(company.manager.saveDatabase(QDateTime(QDate(2024, 5, 6), QTime(9, 30))));
    QCOMPARE(alerts(company.prompter), (QStringList{confirmation, confirmation}));
    QCOMPARE(extract(desktop + s("/Corvanta 2024-05-06 0930.zip"), company.folders.root() + s("/copy")),
             (QStringList{s("Corvanta copy"), s("MINE.cvdb"), s("OTHER.cvdb"), s("corvanta.databases"),
                          s("templates/logo.png")}));
}

void tst_Backups::pruneBoundary_data()
{
    QTest::addColumn<QDate>("today");
    QTest::addColumn<QDate>("boundary");
    QTest::newRow("across the year") << QDate(2024, 1, 15) << QDate(2023, 12, 15);
    QTest::newRow("31 March, common year") << QDate(2023, 3, 31) << QDate(2023, 3, 3);
    QTest::newRow("31 March, leap year") << QDate(2024, 3, 31) << QDate(2024, 3, 2);
}

void tst_Backups::pruneBoundary()
{
    QFETCH(QDate, today);
    QTEST(BackupFolder::pruneBoundary(today), "boundary");
}

// Only the program's own backups older than the boundary go: not archives under other names, of
// other programs, links, or files that are no archive at all.
void tst_Backups::pruneRemovesOnlyOwnOldArchives()
{
    ScratchFolders folders;
    const BackupFolder backups(folders.folders().documents);
    const QString folder = QFileInfo(backups.archivePath(QDate(2024, 5, 6))).absolutePath() + s("/");
    QVERIFY(QDir().mkpath(folder));
    const QDateTime old(QDate(2024, 4, 5), QTime(23, 59)); // the boundary of 6 May is 6 April
    const auto write = [&](const char* name, const char* comment, const QDateTime& modified) {
        corvanta::support::ZipWriter zip;
        QVERIFY(zip.open(folder + s(name), nullptr) && zip.addData(s("notes.txt"), "x", nullptr) &&
                zip.setComment(s(comment), nullptr) && zip.close(nullptr));
        setModified(folder + s(name), modified);
    };
    write("CorvantaBackup20240405.zip", BackupFolder::kComment, old);
    write("CorvantaBackup20240406.zip", BackupFolder::kComment, QDateTime(QDate(2024, 4, 6), QTime(0, 0)));
    write("CorvantaBackup20240405.zip.bak", BackupFolder::kComment, old);
    write("CorvantaBackup20241305.zip", BackupFolder::kComment, old);
    write("CorvantaBackup20240102.zip", "Another program", old);
    ScratchFolders::writeBytes(folder + s("CorvantaBackup20240101.zip"), "not an archive");
    setModified(folder + s("CorvantaBackup20240101.zip"), old);
    QVERIFY(
        QFile::link(folder + s("CorvantaBackup20240405.zip.bak"), folder + s("CorvantaBackup20240104.zip")));
    QStringList kept = QDir(folder).entryList(QDir::Files | QDir::System | QDir::Hidden, QDir::Name);
    QVERIFY(kept.removeOne(s("CorvantaBackup20240405.zip")));

    QCOMPARE(backups.prune(QDate(2024, 5, 6)), QStringList{folder + s("CorvantaBackup20240405.zip")});
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::System | QDir::Hidden, QDir::Name), kept);
}

QTEST_GUILESS_MAIN(tst_Backups)
#include "tst_backups.moc"
