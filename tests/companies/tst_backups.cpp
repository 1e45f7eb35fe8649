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
using corvanta::support::ZipWriter;

namespace {

int countClients(const QString& database)
{
    StoreError error;
    auto store = CompanyDatabase::open(database, &error);
    if (!store)
        return -1;
    return store->mainContext().count(FetchRequest(s("Clients")));
}

QString integrityOf(const QString& database)
{
    QString result;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(s("QSQLITE"), s("integrity"));
        db.setDatabaseName(database);
        db.setConnectOptions(s("QSQLITE_OPEN_READONLY"));
        if (db.open()) {
            QSqlQuery q(db);
            if (q.exec(s("PRAGMA integrity_check")) && q.next())
                result = q.value(0).toString();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(s("integrity"));
    return result;
}

void setModified(const QString& file, const QDateTime& when)
{
    QFile f(file);
    QVERIFY(f.open(QIODevice::ReadWrite));
    QVERIFY(f.setFileTime(when, QFileDevice::FileModificationTime));
}

// An archive with the given entries, written with libzip.
void writeArchive(const QString& path, const QList<std::pair<QString, QByteArray>>& entries,
                  const QString& comment = {})
{
    ZipWriter zip;
    QString error;
    QVERIFY(zip.open(path, &error));
    for (const auto& [name, data] : entries)
        QVERIFY(zip.addData(name, data, &error));
    if (!comment.isEmpty())
        QVERIFY(zip.setComment(comment, &error));
    QVERIFY2(zip.close(&error), qPrintable(error));
}

// A company folder with an open database (with saved and unsaved changes) and a second local
// database that is not open.
struct OpenCompany
{
    ScratchFolders folders;
    ScriptedPrompter prompter;
    DatabaseManager manager{prompter, folders.folders()};
    std::unique_ptr<Store> store;
    QString otherFile;

    OpenCompany()
    {
        otherFile = folders.app(s("OTHER.cvdb"));
        folders.writeList({ScratchFolders::entry(s("Mine"), folders.app(), s("MINE.cvdb"), true),
                           ScratchFolders::entry(s("Other"), folders.app(), s("OTHER.cvdb"), false)});
        {
            StoreError error;
            auto other = CompanyDatabase::open(otherFile, &error);
            other->mainContext().insertRecord(s("Clients"), {{s("company_name"), s("Other client")}});
            other->mainContext().save(&error);
        }
        StoreError error;
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
    void backupOfAnOpenDatabaseRestores();
    void oneBackupPerDay();
    void desktopCopy();
    void desktopCopyFailureStillConfirms();
    void pruneBoundary_data();
    void pruneBoundary();
    void pruneRemovesOnlyOwnOldArchives();
};

void tst_Backups::backupOfAnOpenDatabaseRestores()
{
    OpenCompany company;
    ScratchFolders::writeBytes(company.folders.app(s("templates/logo.png")), "picture");
    ScratchFolders::writeBytes(company.folders.app(s("temp/scratch.txt")), "scratch");
    QVERIFY(company.manager.backupApplicationFiles(QDate(2024, 5, 6)));
    const QString archive =
        company.folders.root() + s("/Documents/Corvanta Backup/CorvantaBackup20240506.zip");
    QVERIFY(QFileInfo::exists(archive));

    ZipReader zip;
    QString error;
    QVERIFY2(zip.open(archive, &error), qPrintable(error));
    QCOMPARE(zip.comment(), s("Corvanta daily backup"));
    QStringList names;
    for (const ZipReader::Entry& entry : zip.entries())
        names << entry.name;
    names.sort();
    // The databases as snapshots, without their logs and locks; scratch files stay out.
    QCOMPARE(names, (QStringList{s("MINE.cvdb"), s("OTHER.cvdb"), s("corvanta.databases"),
                                 s("templates/logo.png")}));

    const QString restored = company.folders.root() + s("/restored");
    QVERIFY2(zip.extractAll(restored, &error), qPrintable(error));
    QCOMPARE(integrityOf(restored + s("/MINE.cvdb")), s("ok"));
    QCOMPARE(integrityOf(restored + s("/OTHER.cvdb")), s("ok"));
    QCOMPARE(countClients(restored + s("/MINE.cvdb")), 20); // every saved client, not the pending one
    QCOMPARE(countClients(restored + s("/OTHER.cvdb")), 1);
    QCOMPARE(ScratchFolders::readBytes(restored + s("/corvanta.databases")),
             ScratchFolders::readBytes(company.folders.listFile()));
    QCOMPARE(ScratchFolders::readBytes(restored + s("/templates/logo.png")), QByteArray("picture"));
    // No snapshot is left behind beside the archive.
    QCOMPARE(QDir(QFileInfo(archive).absolutePath())
                 .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{s("CorvantaBackup20240506.zip")});
}

void tst_Backups::oneBackupPerDay()
{
    OpenCompany company;
    QVERIFY(company.manager.backupApplicationFiles(QDate(2024, 5, 6)));
    StoreError error;
    QVERIFY(company.store->mainContext().save(&error));
    QVERIFY(company.manager.backupApplicationFiles(QDate(2024, 5, 6)));
    const QDir backups(company.folders.root() + s("/Documents/Corvanta Backup"));
    QCOMPARE(backups.entryList(QDir::Files | QDir::Hidden), QStringList{s("CorvantaBackup20240506.zip")});
    ZipReader zip;
    QVERIFY(zip.open(backups.filePath(s("CorvantaBackup20240506.zip")), nullptr));
    QVERIFY(zip.extractAll(company.folders.root() + s("/restored"), nullptr));
    QCOMPARE(countClients(company.folders.root() + s("/restored/MINE.cvdb")), 21);
}

void tst_Backups::desktopCopy()
{
    OpenCompany company;
    QVERIFY(company.manager.saveDatabase(QDateTime(QDate(2024, 5, 6), QTime(9, 30))));
    QCOMPARE(alerts(company.prompter),
             QStringList{
                 s("Database Saved Successfully | The \"Corvanta 2024-05-06 0930.zip\" local database file "
                   "successfully saved to the desktop.")});
    ZipReader zip;
    QVERIFY(zip.open(company.folders.root() + s("/Desktop/Corvanta 2024-05-06 0930.zip"), nullptr));
    QVERIFY(zip.extractAll(company.folders.root() + s("/restored"), nullptr));
    QCOMPARE(integrityOf(company.folders.root() + s("/restored/MINE.cvdb")), s("ok"));
    QCOMPARE(countClients(company.folders.root() + s("/restored/MINE.cvdb")), 20);
    QCOMPARE(countClients(company.folders.root() + s("/restored/OTHER.cvdb")), 1);
}

void tst_Backups::desktopCopyFailureStillConfirms()
{
    OpenCompany company;
    ScratchFolders::writeBytes(company.folders.root() + s("/Desktop"), "a file where the desktop should be");
    QTest::ignoreMessage(QtWarningMsg, "Sorry, didn't work.");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(s("Desktop")));
    QVERIFY(!company.manager.saveDatabase(QDateTime(QDate(2024, 5, 6), QTime(9, 30))));
    QCOMPARE(company.prompter.titles(), QStringList{s("Database Saved Successfully")});
}

void tst_Backups::pruneBoundary_data()
{
    QTest::addColumn<QDate>("today");
    QTest::addColumn<QDate>("boundary");
    QTest::newRow("same day number") << QDate(2024, 5, 6) << QDate(2024, 4, 6);
    QTest::newRow("across the year") << QDate(2024, 1, 15) << QDate(2023, 12, 15);
    QTest::newRow("31 March, common year") << QDate(2023, 3, 31) << QDate(2023, 3, 3);
    QTest::newRow("31 March, leap year") << QDate(2024, 3, 31) << QDate(2024, 3, 2);
    QTest::newRow("29 March, common year") << QDate(2023, 3, 29) << QDate(2023, 3, 1);
    QTest::newRow("31 May") << QDate(2024, 5, 31) << QDate(2024, 5, 1);
}

void tst_Backups::pruneBoundary()
{
    QFETCH(QDate, today);
    QFETCH(QDate, boundary);
    QCOMPARE(BackupFolder::pruneBoundary(today), boundary);
}

void tst_Backups::pruneRemovesOnlyOwnOldArchives()
{
    OpenCompany company;
    const QString folder = company.folders.root() + s("/Documents/Corvanta Backup");
    const QDateTime old(QDate(2024, 4, 5), QTime(23, 59));
    const QDateTime recent(QDate(2024, 4, 6), QTime(0, 0));
    QVERIFY(company.manager.backupApplicationFiles(QDate(2024, 4, 5)));
    QVERIFY(company.manager.backupApplicationFiles(QDate(2024, 4, 6)));
    QVERIFY(company.manager.backupApplicationFiles(QDate(2024, 5, 6)));
    setModified(folder + s("/CorvantaBackup20240405.zip"), old);
    setModified(folder + s("/CorvantaBackup20240406.zip"), recent);
    // An own archive under a name that is not a backup's.
    QVERIFY(QFile::copy(folder + s("/CorvantaBackup20240405.zip"),
                        folder + s("/CorvantaBackup20240405.zip.bak")));
    QVERIFY(
        QFile::copy(folder + s("/CorvantaBackup20240405.zip"), folder + s("/CorvantaBackup20241305.zip")));
    QVERIFY(
        QFile::copy(folder + s("/CorvantaBackup20240405.zip"), folder + s("/corvantabackup20240401.zip")));
    // Files named like backups that this program did not write.
    QVERIFY(QFile::copy(company.otherFile, folder + s("/CorvantaBackup20240101.zip")));
    writeArchive(folder + s("/CorvantaBackup20240102.zip"), {{s("notes.txt"), "mine"}});
    writeArchive(folder + s("/CorvantaBackup20240103.zip"), {{s("notes.txt"), "mine"}}, s("Another program"));
    ScratchFolders::writeBytes(folder + s("/notes.txt"), "mine");
    QVERIFY(QFile::link(folder + s("/CorvantaBackup20240405.zip.bak"),
                        folder + s("/CorvantaBackup20240104.zip")));
    const QStringList untouched = {s("CorvantaBackup20240101.zip"),     s("CorvantaBackup20240102.zip"),
                                   s("CorvantaBackup20240103.zip"),     s("CorvantaBackup20240104.zip"),
                                   s("CorvantaBackup20240405.zip.bak"), s("CorvantaBackup20241305.zip"),
                                   s("corvantabackup20240401.zip"),     s("notes.txt")};
    for (const QString& name : untouched) {
        if (!QFileInfo(folder + s("/") + name).isSymLink())
            setModified(folder + s("/") + name, old.addYears(-1));
    }

    const QStringList removed = company.manager.pruneBackups(QDate(2024, 5, 6));
    QCOMPARE(removed, QStringList{folder + s("/CorvantaBackup20240405.zip")});
    QStringList expected = untouched;
    expected << s("CorvantaBackup20240406.zip") << s("CorvantaBackup20240506.zip");
    expected.sort();
    QStringList present = QDir(folder).entryList(QDir::Files | QDir::System | QDir::Hidden);
    present.sort();
    QCOMPARE(present, expected);
    QCOMPARE(integrityOf(folder + s("/CorvantaBackup20240101.zip")), s("ok"));
}

QTEST_GUILESS_MAIN(tst_Backups)
#include "tst_backups.moc"
