#include "orderbook.h"
#include "store/storefile.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QThread>
#include <sys/stat.h>

using namespace corvanta::store;
using namespace corvanta::store::testing;
using corvanta::predicate::Predicate;

namespace {

QByteArray contentOf(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QStringList columnsOf(const QString& path, const QString& table)
{
    return runSql(path, {s("SELECT name FROM pragma_table_info('%1')").arg(table)});
}

} // namespace

class tst_Store : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusesBadLocations_data();
    void refusesBadLocations();
    void refusesSecondRunningInstance();
    void leftLockFileNeverBlocks_data();
    void leftLockFileNeverBlocks();
    void killedHolderNeverBlocks();
    void migratesOlderFile();
    void copiesWhileOpen();
    void saveWhileAnotherProgramWrites();
};

void tst_Store::refusesBadLocations_data()
{
    QTest::addColumn<QString>("setup"); // what stands in the way
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("message");

    const QString notOurs = s("The file \"%1\" is not a Corvanta company database.");
    const QString damaged = s("The company database \"%1\" is damaged.");
    QTest::newRow("garbage file") << "garbage" << int(StoreError::NotADatabase) << notOurs;
    QTest::newRow("text file") << "text" << int(StoreError::NotADatabase) << notOurs;
    QTest::newRow("database of another program") << "foreign" << int(StoreError::NotADatabase) << notOurs;
    QTest::newRow("another program's, a table named as ours")
        << "foreignSettings" << int(StoreError::NotADatabase) << notOurs;
    QTest::newRow("ours, a page overwritten") << "page" << int(StoreError::Damaged) << damaged;
    QTest::newRow("ours, cut short") << "truncated" << int(StoreError::Damaged) << damaged;
    QTest::newRow("ours, schema overwritten") << "schema" << int(StoreError::Damaged) << damaged;
    QTest::newRow("ours, newer minor version")
        << "newer" << int(StoreError::NewerModel)
        << "The company database \"%1\" was made by a newer version of Corvanta.";
    QTest::newRow("read-only file") << "readOnlyFile" << int(StoreError::NotWritable)
                                    << "The company database \"%1\" cannot be read and written.";
    QTest::newRow("read-only folder")
        << "readOnlyFolder" << int(StoreError::NotWritable)
        << "The company database \"%1\" is in a folder that cannot be written (%2).";
    QTest::newRow("pipe in place of the file") << "pipe" << int(StoreError::NotADatabase) << notOurs;
    QTest::newRow("folder in place of the file")
        << "folder" << int(StoreError::NotADatabase) << "\"%1\" is a folder, not a company database file.";
    QTest::newRow("file in place of the folder")
        << "folderIsFile" << int(StoreError::FolderIsFile)
        << "Expected a folder to store application data, found a file (%2).";
    QTest::newRow("folder that cannot be made")
        << "unwritable" << int(StoreError::NotWritable) << "The folder \"%2\" cannot be created.";
}

void tst_Store::refusesBadLocations()
{
    QFETCH(QString, setup);
    QFETCH(int, code);
    QFETCH(QString, message);

    QTemporaryDir dir;
    QString folder = dir.path();
    QString path = dir.filePath(s("orders.db"));
    const auto overwrite = [&](qint64 offset, const QByteArray& bytes) {
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadWrite) && f.seek(offset) && f.write(bytes) == bytes.size());
    };
    if (setup == QLatin1String("garbage"))
        overwrite(0, QByteArray(4096, '\xA5'));
    else if (setup == QLatin1String("text"))
        overwrite(0, "name;city\nAnn;Oslo\n");
    else if (setup == QLatin1String("foreign"))
        runSql(path, {s("CREATE TABLE songs (title TEXT)"), s("INSERT INTO songs VALUES ('Blue')")});
    else if (setup == QLatin1String("foreignSettings"))
        runSql(path, {s("CREATE TABLE Settings (key TEXT, value)"), s("CREATE TABLE songs (title TEXT)"),
                      s("INSERT INTO Settings VALUES ('version', '1.0')")});
    else if (setup == QLatin1String("folder"))
        QVERIFY(QDir().mkpath(path));
    else if (setup == QLatin1String("pipe"))
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    else if (setup == QLatin1String("folderIsFile") || setup == QLatin1String("unwritable")) {
        folder = setup == QLatin1String("unwritable")
                     ? s("/proc/corvanta-test-%1").arg(QCoreApplication::applicationPid())
                     : dir.filePath(s("data"));
        path = folder + QLatin1String("/orders.db");
        if (setup == QLatin1String("folderIsFile"))
            QVERIFY(QFile(folder).open(QIODevice::WriteOnly));
    } else {
        // A healthy order book of a few pages to spoil.
        {
            auto store = openOrderBook(path);
            QVERIFY(store);
            for (int i = 0; i < 400; ++i)
                store->mainContext().insertRecord(s("Customers"), {{s("name"), s("Customer %1").arg(i)}});
            saveOrFail(store->mainContext());
        }
        const qint64 size = QFileInfo(path).size();
        if (setup == QLatin1String("page"))
            overwrite(size / 2 / 4096 * 4096, QByteArray(4096, '\x5A'));
        else if (setup == QLatin1String("truncated"))
            QVERIFY(QFile::resize(path, size / 2));
        else if (setup == QLatin1String("schema"))
            overwrite(100, QByteArray(3000, '\0'));
        else if (setup == QLatin1String("newer"))
            runSql(path,
                   {s("UPDATE \"Settings\" SET value = '1.1' WHERE key = 'version'"),
                    s("INSERT INTO \"Settings\" (key, value) SELECT 'version', '1.1' WHERE changes() = 0")});
        else if (setup == QLatin1String("readOnlyFile"))
            QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
        else if (setup == QLatin1String("readOnlyFolder"))
            QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
    }
    const QByteArray before = QFileInfo(path).isFile() ? contentOf(path) : QByteArray();

    StoreError error;
    QVERIFY(!openOrderBook(path, &error));
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QCOMPARE(error.code, code);
    QCOMPARE(error.domain, s("YOUR_ERROR_DOMAIN"));
    QCOMPARE(error.description,
             message.replace(QLatin1String("%1"), path).replace(QLatin1String("%2"), folder));
    QVERIFY(!error.reason.isEmpty() || code == StoreError::FolderIsFile || setup == QLatin1String("folder"));

    // Nothing was written over what stood there, nothing was added beside it, and no lock is
    // left behind.
    if (!before.isEmpty()) {
        QVERIFY(contentOf(path) == before);
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList{s("orders.db")});
    }
    if (setup.startsWith(QLatin1String("foreign")))
        QCOMPARE(columnsOf(path, s("Customers")), QStringList());
    QVERIFY(!QFile::exists(path + QLatin1String(".lock")));
}

void tst_Store::refusesSecondRunningInstance()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(s("orders.db"));
    QProcess holder;
    holder.start(s(STORE_HOLDER), {path});
    QVERIFY(holder.waitForStarted());
    QVERIFY(holder.waitForReadyRead(10000));
    QCOMPARE(holder.readLine().trimmed(), QByteArray("open"));

    StoreError error;
    QVERIFY(!openOrderBook(path, &error));
    QCOMPARE(error.code, int(StoreError::AlreadyOpen));
    QCOMPARE(
        error.description,
        s("The company database \"%1\" is already open in another running instance of Corvanta.").arg(path));

    holder.closeWriteChannel();
    QVERIFY(holder.waitForFinished(10000));
    QCOMPARE(holder.exitCode(), 0);
    auto store = openOrderBook(path, &error);
    QVERIFY2(store, qPrintable(error.message()));
}

void tst_Store::leftLockFileNeverBlocks_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty, left by a kill while locking") << QByteArray();
    QTest::newRow("naming a running process") << QByteArray("1\ncorvanta\nhost\n");
    QTest::newRow("garbage") << QByteArray(300, '\xff');
}

void tst_Store::leftLockFileNeverBlocks()
{
    QFETCH(QByteArray, content);
    QTemporaryDir dir;
    const QString path = dir.filePath(s("orders.db"));
    QFile lock(path + QLatin1String(".lock"));
    QVERIFY(lock.open(QIODevice::WriteOnly));
    lock.write(content);
    lock.close();

    StoreError error;
    auto store = openOrderBook(path, &error);
    QVERIFY2(store, qPrintable(error.message()));
    // A new database with every table, locked while it is open.
    QVERIFY(store->storedModelVersion().isEmpty());
    for (const EntityDescription& entity : orderBook().entities())
        QCOMPARE(store->mainContext().count(FetchRequest(entity.name())), 0);
    QVERIFY(QFile::exists(path + QLatin1String(".lock")));
    store.reset();
    QVERIFY(!QFile::exists(path + QLatin1String(".lock")));
}

// Holders killed at random moments, many of them while they take or give up the lock: the next
// open always succeeds.
void tst_Store::killedHolderNeverBlocks()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(s("orders.db"));
    QRandomGenerator random(20261123);
    int refusedWhileAlive = 0;
    for (int round = 0; round < 60; ++round) {
        QProcess holder;
        holder.start(s(STORE_HOLDER), {s("--churn"), path});
        QVERIFY(holder.waitForStarted());
        QThread::usleep(random.bounded(40000));
        StoreError error;
        if (!openOrderBook(path, &error)) {
            QCOMPARE(error.code, int(StoreError::AlreadyOpen));
            ++refusedWhileAlive;
        }
        QThread::usleep(random.bounded(20000));
        holder.kill();
        QVERIFY(holder.waitForFinished(10000));
        QCOMPARE(holder.exitStatus(), QProcess::CrashExit);

        auto store = openOrderBook(path, &error);
        QVERIFY2(store, qPrintable(s("round %1: %2").arg(round).arg(error.message())));
    }
    // The live holder was met at least sometimes, so the kills did land on a holder at work.
    QVERIFY(refusedWhileAlive > 0);
}

void tst_Store::migratesOlderFile()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(s("old.db"));
    // A file of an earlier version: fewer tables and columns, and one column this version
    // does not know.
    runSql(path,
           {s("CREATE TABLE \"Settings\" (pk INTEGER PRIMARY KEY, \"key\" TEXT, \"value\")"),
            s("INSERT INTO \"Settings\" VALUES (1, 'version', '1.0'), (2, 'theme', 1)"),
            s("CREATE TABLE \"Customers\" (pk INTEGER PRIMARY KEY, \"name\" TEXT, \"legacy_note\" TEXT)"),
            s("INSERT INTO \"Customers\" VALUES (7, 'Acme', 'kept')"),
            s("CREATE TABLE \"Orders\" (pk INTEGER PRIMARY KEY, \"total\" REAL)"),
            s("INSERT INTO \"Orders\" VALUES (1, 100.0), (2, 50.0)"),
            s("CREATE TABLE \"Payments\" (pk INTEGER PRIMARY KEY, \"amount\" REAL, \"order\" INTEGER)"),
            s("INSERT INTO \"Payments\" VALUES (1, 60.0, 1), (2, 40.0, 1), (3, 10.0, 2)")});

    StoreError error;
    auto store = openOrderBook(path, &error);
    QVERIFY2(store, qPrintable(error.message()));
    QCOMPARE(store->storedModelVersion(), s("1.0"));

    EditingContext& c = store->mainContext();
    Record* acme = c.fetchFirst(FetchRequest(s("Customers")));
    QVERIFY(acme);
    QCOMPARE(acme->pk(), qint64(7));
    QCOMPARE(acme->value(s("full_name")).toString(), s("Acme")); // the record class derives it
    QCOMPARE(c.count(FetchRequest(s("Settings"))), 2);
    // Sums the database keeps for fetches are computed for the records already there.
    QCOMPARE(c.count(FetchRequest(s("Orders"), totalAgainstPayments(Predicate::Operator::Equal))), 1);

    // New columns and tables work at once; a new record does not reuse an old key.
    acme->setValue(s("tax_number"), s("HU123"));
    Record* other = c.insertRecord(s("Customers"), {{s("name"), s("Beta")}});
    Record* order = c.insertRecord(s("Orders"));
    order->setRelated(s("customer"), acme);
    saveOrFail(c);
    QVERIFY(other->pk() > 7);
    store.reset();

    const QStringList columns = columnsOf(path, s("Customers"));
    QVERIFY(columns.contains(s("legacy_note")));
    QVERIFY(columns.contains(s("full_name")));
    QVERIFY(columns.contains(s("default_address")));
    QVERIFY(!columnsOf(path, s("Customers_tags")).isEmpty());

    store = openOrderBook(path, &error);
    QVERIFY2(store, qPrintable(error.message()));
    Record* reread = store->mainContext().record({s("Customers"), 7});
    QCOMPARE(reread->value(s("tax_number")).toString(), s("HU123"));
    QCOMPARE(reread->relatedList(s("orders")).size(), 1);
}

// A database that a store holds open is copied whole as far as it is saved, through the store or
// through a connection of its own, never over an existing file; a file that is not there yields
// nothing and is not made.
void tst_Store::copiesWhileOpen()
{
    ScratchStore st;
    st.main().insertRecord(s("Customers"), {{s("name"), s("First")}});
    st.main().insertRecord(s("Customers"), {{s("name"), s("Second")}});
    saveOrFail(st.main());
    st.main().insertRecord(s("Customers"), {{s("name"), s("Not yet saved")}});
    QTemporaryDir copies;
    const QString snapshot = copies.filePath(s("snapshot.db")), copy = copies.filePath(s("copy.db"));
    StoreError error;
    QVERIFY2(st.store().writeSnapshot(snapshot, &error), qPrintable(error.message()));
    QVERIFY(!st.store().writeSnapshot(snapshot, &error));
    QCOMPARE(error.code, int(StoreError::NotWritable));
    StoreFile file(st.path());
    QCOMPARE(file.firstValue(s("Customers"), s("name")).toString(), s("First"));
    QString why;
    QVERIFY2(file.writeCopy(copy, &why), qPrintable(why));
    QVERIFY(!file.writeCopy(copy, &why));
    QVERIFY(why.contains(s("already exists")));
    QCOMPARE(StoreFile(copy).firstValue(s("Customers"), s("name")).toString(), s("First"));
    QVERIFY(StoreFile(copies.filePath(s("none.db"))).firstValue(s("Customers"), s("name")).isNull());
    QVERIFY(!QFileInfo::exists(copies.filePath(s("none.db"))));

    auto reopened = openOrderBook(snapshot, &error);
    QVERIFY2(reopened, qPrintable(error.message()));
    EditingContext& c = reopened->mainContext();
    const QList<Record*> saved = c.fetch(FetchRequest(s("Customers"), {}, {SortDescriptor{s("name")}}));
    QCOMPARE(valuesOf(saved), (QStringList{s("First"), s("Second")}));
    // New keys continue after the largest one stored.
    QVERIFY(c.insertRecord(s("Customers"))->pk() > saved.last()->pk());
}

// Another program holds the write lock for longer than a save waits: the save fails saying so,
// nothing is written, and the context keeps its changes for the next save.
void tst_Store::saveWhileAnotherProgramWrites()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(s("orders.db"));
    StoreError error;
    std::unique_ptr<Store> store = openOrderBook(file, &error);
    QVERIFY2(store, qPrintable(error.message()));
    EditingContext& main = store->mainContext();
    main.insertRecord(s("Customers"), {{s("name"), s("Ann")}});
    const QString otherProgram = s("otherProgram");
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(s("QSQLITE"), otherProgram);
        other.setDatabaseName(file);
        QVERIFY(other.open());
        QVERIFY(QSqlQuery(other).exec(s("BEGIN IMMEDIATE")));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(s("^Saving .* failed: ")));
        const bool saved = main.save(&error);
        QVERIFY(QSqlQuery(other).exec(s("ROLLBACK")));
        other.close();
        QVERIFY(!saved);
    }
    QSqlDatabase::removeDatabase(otherProgram);
    QCOMPARE(error.code, int(StoreError::Locked));
    QCOMPARE(error.description,
             s("The company database \"%1\" is in use by another program: it could not be saved.").arg(file));
    QCOMPARE(error.reason,
             s("Your changes are kept. Save again when the other program has finished with the file."));
    QCOMPARE(store->newContext()->count(FetchRequest(s("Customers"))), 0);
    QVERIFY(main.hasChanges());
    saveOrFail(main);
    QCOMPARE(store->newContext()->count(FetchRequest(s("Customers"))), 1);
}

QTEST_GUILESS_MAIN(tst_Store)
#include "tst_store.moc"
