#include "orderbook.h"
#include "smalldisk.h"

using namespace corvanta::store;
using namespace corvanta::store::testing;
using corvanta::testing::SmallDisk;

namespace {

QStringList sortedNames(EditingContext& context, const char* entity, const char* key = "name")
{
    return valuesOf(context.fetch(FetchRequest(s(entity), {}, {SortDescriptor{s(key)}})), key);
}

} // namespace

// A save the disk cannot take is rolled back whole and says why; the context keeps every change,
// and the same save succeeds once the disk takes writes again.
class tst_FullDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void failedSaveKeepsChangesForTheNextSave_data();
    void failedSaveKeepsChangesForTheNextSave();
    void openOnFullDiskSaysSo();
};

void tst_FullDisk::failedSaveKeepsChangesForTheNextSave_data()
{
    QTest::addColumn<SmallDisk::Kind>("kind");
    QTest::newRow("disk full") << SmallDisk::Kind::Tmpfs;
    QTest::newRow("write refused, file-size limit") << SmallDisk::Kind::FileSizeLimit;
}

void tst_FullDisk::failedSaveKeepsChangesForTheNextSave()
{
    QFETCH(SmallDisk::Kind, kind);
    SmallDisk disk(8 << 20, kind);
    SMALL_DISK_OR_RETURN(disk);
    const QString file = disk.filePath(s("orders.db"));
    StoreError error;
    std::unique_ptr<Store> store = openOrderBook(file, &error);
    QVERIFY2(store, qPrintable(error.message()));
    EditingContext& main = store->mainContext();
    Record* ann = main.insertRecord(s("Customers"), {{s("name"), s("Ann")}});
    Record* bob = main.insertRecord(s("Customers"), {{s("name"), s("Bob")}});
    Record* cid = main.insertRecord(s("Customers"), {{s("name"), s("Cid")}});
    saveOrFail(main);

    // Inserted, changed and deleted records and a many-to-many pair, larger than any slack the
    // write-ahead log may still have.
    const QString note(100 * 1024, QLatin1Char('n'));
    for (int i = 1; i <= 8; ++i)
        main.insertRecord(s("Orders"),
                          {{s("number"), i}, {s("note"), note}, {s("customer"), QVariant::fromValue(ann)}});
    bob->setValue(s("name"), s("Bea"));
    main.deleteRecord(cid);
    ann->addRelated(s("tags"), main.insertRecord(s("Tags"), {{s("name"), s("VIP")}}));

    QVERIFY(disk.fill());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(s("^Saving .* failed: ")));
    QVERIFY(!main.save(&error));
    if (disk.kind() == SmallDisk::Kind::Tmpfs) {
        QCOMPARE(error.code, int(StoreError::DiskFull));
        QCOMPARE(error.description,
                 s("The disk is full: the company database \"%1\" could not be saved.").arg(store->path()));
        QCOMPARE(error.reason, s("Your changes are kept. Free some space on the disk, then save again."));
    } else {
        QCOMPARE(error.code, int(StoreError::WriteFailed));
        QCOMPARE(error.description,
                 s("Writing to the disk failed: the company database \"%1\" could not be saved.")
                     .arg(store->path()));
        QVERIFY2(error.reason.startsWith(s("Your changes are kept. Check the disk, then save again. (")),
                 qPrintable(error.reason));
    }
    // Nothing of it is stored; the context still holds all of it.
    auto stored = store->newContext();
    QCOMPARE(sortedNames(*stored, "Customers"), (QStringList{s("Ann"), s("Bob"), s("Cid")}));
    QCOMPARE(stored->count(FetchRequest(s("Orders"))), 0);
    QVERIFY(main.hasChanges());
    QCOMPARE(sortedNames(main, "Customers"), (QStringList{s("Ann"), s("Bea")}));
    QCOMPARE(main.count(FetchRequest(s("Orders"))), 8);
    QCOMPARE(valuesOf(ann->relatedList(s("tags"))), QStringList{s("VIP")});

    // Space is back: another context saves first and takes the next keys, then the same save
    // writes everything once.
    disk.release();
    auto other = store->newContext();
    other->insertRecord(s("Customers"), {{s("name"), s("Dan")}});
    saveOrFail(*other);
    saveOrFail(main);
    QVERIFY(!main.hasChanges());

    store.reset();
    QCOMPARE(runSql(file, {s("PRAGMA integrity_check")}), QStringList{s("ok")});
    store = openOrderBook(file, &error);
    QVERIFY2(store, qPrintable(error.message()));
    EditingContext& reopened = store->mainContext();
    QCOMPARE(sortedNames(reopened, "Customers"), (QStringList{s("Ann"), s("Bea"), s("Dan")}));
    const QList<Record*> orders =
        reopened.fetch(FetchRequest(s("Orders"), {}, {SortDescriptor{s("number")}}));
    QCOMPARE(valuesOf(orders, "number"),
             (QStringList{s("1"), s("2"), s("3"), s("4"), s("5"), s("6"), s("7"), s("8")}));
    for (const Record* order : orders) {
        QCOMPARE(order->value(s("note")).toString().size(), note.size());
        QCOMPARE(order->valueForKeyPath(s("customer.name")).toString(), s("Ann"));
    }
    QCOMPARE(reopened.fetch(FetchRequest(s("Tags"))).size(), 1);
    QCOMPARE(valuesOf(reopened.fetchFirst(FetchRequest(s("Tags")))->relatedList(s("customers"))),
             QStringList{s("Ann")});
}

// With no room for the database's shared-memory file, opening fails as a full disk, not as a file
// that is not ours, and the file stays as it was.
void tst_FullDisk::openOnFullDiskSaysSo()
{
    SmallDisk disk(2 << 20);
    SMALL_DISK_OR_RETURN(disk);
    if (disk.kind() != SmallDisk::Kind::Tmpfs)
        QSKIP("needs a disk that fills up");
    const QString file = disk.filePath(s("orders.db"));
    {
        auto store = openOrderBook(file);
        QVERIFY(store);
        store->mainContext().insertRecord(s("Customers"), {{s("name"), s("Ann")}});
        saveOrFail(store->mainContext());
    }
    const auto content = [&file] {
        QFile in(file);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    };
    const QByteArray before = content();

    QVERIFY(disk.fill());
    StoreError error;
    QVERIFY(!openOrderBook(file, &error));
    QCOMPARE(error.code, int(StoreError::DiskFull));
    QCOMPARE(error.description,
             s("The disk is full: the company database \"%1\" cannot be opened.").arg(file));
    QVERIFY(content() == before);

    disk.release();
    auto store = openOrderBook(file, &error);
    QVERIFY2(store, qPrintable(error.message()));
    QCOMPARE(store->mainContext().count(FetchRequest(s("Customers"))), 1);
}

QTEST_GUILESS_MAIN(tst_FullDisk)
#include "tst_fulldisk.moc"
