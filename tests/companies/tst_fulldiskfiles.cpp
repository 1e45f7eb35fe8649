#include "../store/smalldisk.h"
#include "companies/backupfolder.h"
#include "companies/datafolderarchive.h"
#include "companiestestsupport.h"

#include <QRandomGenerator>

using namespace corvanta::companies;
using corvanta::model::CompanyDatabase;
using corvanta::store::Store;
using corvanta::store::StoreError;
using corvanta::testing::SmallDisk;

namespace {

using corvanta::companies::testing::archiveContents;
using corvanta::companies::testing::s;
using corvanta::companies::testing::ScratchFolders;

QStringList everythingIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                  QDir::Name);
}

DatabaseEntry entry(const QString& folder, const char* name)
{
    const QString file = s(name) + s(".cvdb");
    return {s(name), QDir(folder).filePath(file), folder, file, false, {}};
}

} // namespace

// Files that must never be half-written, on a disk that fills up while they are written: the
// old file stays whole under its name and nothing is left beside it.
class tst_FullDiskFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void databaseListKeepsTheOldList();
    void backupKeepsTheOlderArchive_data();
    void backupKeepsTheOlderArchive();
};

void tst_FullDiskFiles::databaseListKeepsTheOldList()
{
    SmallDisk disk(1 << 20);
    SMALL_DISK_OR_RETURN(disk);
    const QString folder = disk.filePath(s("data"));
    const QString list = QDir(folder).filePath(QString::fromLatin1(DatabaseList::kFileName));
    QVERIFY(QDir().mkpath(folder));
    QString why;
    QVERIFY2(DatabaseList::write(list, {entry(folder, "First")}, &why), qPrintable(why));
    const QByteArray before = ScratchFolders::readBytes(list);

    QVERIFY(disk.fill());
    QVERIFY(!DatabaseList::write(list, {entry(folder, "First"), entry(folder, "Second")}, &why));
    QVERIFY(!why.isEmpty());
    QCOMPARE(ScratchFolders::readBytes(list), before);
    QCOMPARE(everythingIn(folder), QStringList{QString::fromLatin1(DatabaseList::kFileName)});

    disk.release();
    QVERIFY2(DatabaseList::write(list, {entry(folder, "First"), entry(folder, "Second")}, &why),
             qPrintable(why));
    QCOMPARE(DatabaseList::read(list).entries.size(), 2);
    QCOMPARE(everythingIn(folder), QStringList{QString::fromLatin1(DatabaseList::kFileName)});
}

void tst_FullDiskFiles::backupKeepsTheOlderArchive_data()
{
    // The space left when the disk fills: none stops the snapshot of the database, 1 MiB lets
    // the snapshot be made and stops the archive.
    QTest::addColumn<qint64>("spare");
    QTest::newRow("snapshot fails") << qint64(0);
    QTest::newRow("archive fails") << qint64(1 << 20);
}

void tst_FullDiskFiles::backupKeepsTheOlderArchive()
{
    QFETCH(qint64, spare);
    SmallDisk disk(12 << 20);
    SMALL_DISK_OR_RETURN(disk);
    const QString data = disk.filePath(s("data"));
    const BackupFolder backups(disk.filePath(s("Documents")));
    QVERIFY(QDir().mkpath(data) && QDir().mkpath(backups.path()));
    StoreError error;
    std::unique_ptr<Store> store = CompanyDatabase::open(QDir(data).filePath(s("MINE.cvdb")), &error);
    QVERIFY2(store, qPrintable(error.message()));
    store->mainContext().insertRecord(s("Clients"), {{s("company_name"), s("Client")}});
    QVERIFY2(store->mainContext().save(&error), qPrintable(error.message()));
    QString why;
    QVERIFY2(DatabaseList::write(QDir(data).filePath(QString::fromLatin1(DatabaseList::kFileName)),
                                 {entry(data, "MINE")}, &why),
             qPrintable(why));
    const QString archive = backups.archivePath(QDate(2024, 5, 6));
    const QString comment = QString::fromLatin1(BackupFolder::kComment);
    const DataFolderArchive folder(data, store.get());
    QVERIFY2(folder.write(archive, comment, &why), qPrintable(why));
    const QByteArray older = ScratchFolders::readBytes(archive);
    const QStringList olderContents{comment, s("MINE.cvdb"), s("corvanta.databases")};
    QCOMPARE(archiveContents(archive), olderContents);

    // Two MiB that do not compress make the next archive larger than the space left.
    QByteArray picture(2 << 20, Qt::Uninitialized);
    QRandomGenerator(7).fillRange(reinterpret_cast<quint32*>(picture.data()), picture.size() / 4);
    ScratchFolders::writeBytes(QDir(data).filePath(s("templates/logo.png")), picture);
    QVERIFY(disk.fill(spare));
    QVERIFY(!folder.write(archive, comment, &why));
    if (disk.kind() == SmallDisk::Kind::Tmpfs && spare > 0)
        QCOMPARE(why, s("The disk is full: the archive \"%1\" could not be written.").arg(archive));
    QCOMPARE(everythingIn(backups.path()), QStringList{QFileInfo(archive).fileName()});
    QCOMPARE(ScratchFolders::readBytes(archive), older);
    QCOMPARE(archiveContents(archive), olderContents);

    disk.release();
    QVERIFY2(folder.write(archive, comment, &why), qPrintable(why));
    QCOMPARE(everythingIn(backups.path()), QStringList{QFileInfo(archive).fileName()});
    QCOMPARE(archiveContents(archive),
             (QStringList{comment, s("MINE.cvdb"), s("corvanta.databases"), s("templates/logo.png")}));
}

QTEST_GUILESS_MAIN(tst_FullDiskFiles)
#include "tst_fulldiskfiles.moc"
