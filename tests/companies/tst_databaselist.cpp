#include "companies/databasemanager.h"
#include "companiestestsupport.h"

#include <QDirIterator>

using namespace corvanta::companies;
using namespace corvanta::companies::testing;
using corvanta::support::ScriptedPrompter;

namespace {

struct Expectation
{
    DatabaseList::Status status;
    QString problem;
    int entries;
};

// What the list files of the fixture folder hold. Files added to the folder without an entry
// here are still checked against the rules every list must follow.
const QHash<QString, Expectation>& expectations()
{
    using S = DatabaseList::Status;
    static const QHash<QString, Expectation> table = {
        {s("two-entries.databases"), {S::Ok, {}, 2}},
        {s("two-entries-binary.databases"), {S::Ok, {}, 2}},
        {s("none-selected.databases"), {S::Ok, {}, 1}},
        {s("selected-boolean.databases"), {S::Ok, {}, 1}},
        {s("missing-files.databases"), {S::Ok, {}, 2}},
        {s("empty.databases"), {S::Damaged, s("the file is empty"), 0}},
        {s("whitespace.databases"), {S::Damaged, s("the file holds only white space"), 0}},
        {s("truncated.databases"),
         {S::Damaged, s("it is not well-formed XML (line 13, column 76: Premature end of document.)"), 0}},
        {s("garbage.databases"),
         {S::Damaged, s("it is not well-formed XML (line 1, column 1: Start tag expected.)"), 0}},
        {s("html.databases"), {S::Damaged, s("it is not a property list"), 0}},
        {s("dictionary.databases"), {S::Damaged, s("it does not hold a list of databases"), 0}},
        {s("empty-array.databases"), {S::Damaged, s("the list holds no databases"), 0}},
        {s("strings.databases"), {S::Damaged, s("2 of its 2 entries name no database file"), 0}},
        {s("partly-unusable.databases"), {S::Damaged, s("2 of its 3 entries name no database file"), 1}},
        {s("deeply-nested.databases"), {S::Damaged, s("it is nested too deeply"), 0}},
        {s("binary-truncated.databases"), {S::Damaged, s("it is a damaged binary property list"), 0}},
    };
    return table;
}

} // namespace

class tst_DatabaseList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesAndReadsBack();
    void listFiles_data();
    void listFiles();
};

void tst_DatabaseList::writesAndReadsBack()
{
    ScratchFolders folders;
    DatabaseEntry entry;
    entry.name = s("Café & Co <Ltd>\x01\x1b"); // control characters cannot be written in XML
    entry.directory = s("/srv/shared");
    entry.filename = s("X.cvdb");
    entry.path = s("/srv/shared/X.cvdb");
    entry.selected = true;
    const QDateTime when(QDate(2024, 2, 29), QTime(13, 14, 15), Qt::UTC);
    entry.otherKeys = {{s("note"), s("kept")},
                       {s("count"), qint64(-3)},
                       {s("ratio"), 0.25},
                       {s("flag"), true},
                       {s("when"), when},
                       {s("bytes"), QByteArray("\x00\x01\xff", 3)},
                       {s("nested"), QVariantList{s("a"), QVariantMap{{s("b"), qint64(2)}}}}};
    DatabaseEntry other;
    other.name = s("Other");
    other.directory = s("/srv/other");
    other.filename = s("Y.cvdb");
    other.path = s("/srv/other/Y.cvdb");
    QString error;
    QVERIFY(DatabaseList::write(folders.listFile(), {entry, other}, &error));
    const DatabaseList::ReadResult read = DatabaseList::read(folders.listFile());
    QCOMPARE(int(read.status), int(DatabaseList::Status::Ok));
    QCOMPARE(read.entries.size(), 2);
    const DatabaseEntry& back = read.entries.first();
    QCOMPARE(back.name, s("Café & Co <Ltd>"));
    QCOMPARE(back.path, entry.path);
    QCOMPARE(back.directory, entry.directory);
    QCOMPARE(back.filename, entry.filename);
    QVERIFY(back.selected);
    QVERIFY(!read.entries.at(1).selected);
    QCOMPARE(back.otherKeys, entry.otherKeys);
    QCOMPARE(folders.readList().first().toMap().value(s("selected")), QVariant(qint64(1)));

    // A folder in the way: the write fails and says why.
    QVERIFY(!DatabaseList::write(folders.app(), {entry}, &error));
    QVERIFY(!error.isEmpty());
}

void tst_DatabaseList::listFiles_data()
{
    QTest::addColumn<QString>("fixture");
    QDirIterator it(QStringLiteral(DATABASE_LISTS), QDir::Files);
    QStringList files;
    while (it.hasNext())
        files << it.next();
    files.sort();
    QVERIFY(files.size() >= expectations().size());
    for (const QString& file : files)
        QTest::newRow(qPrintable(QFileInfo(file).fileName())) << file;
}

void tst_DatabaseList::listFiles()
{
    QFETCH(QString, fixture);
    const QByteArray original = ScratchFolders::readBytes(fixture);
    ScratchFolders folders;
    ScratchFolders::writeBytes(folders.listFile(), original);

    const DatabaseList::ReadResult read = DatabaseList::read(folders.listFile());
    const auto expected = expectations().constFind(QFileInfo(fixture).fileName());
    if (expected != expectations().cend()) {
        QCOMPARE(int(read.status), int(expected->status));
        QCOMPARE(read.problem, expected->problem);
        QCOMPARE(read.entries.size(), expected->entries);
    }
    QVERIFY(read.status == DatabaseList::Status::Ok || !read.problem.isEmpty());

    // Every list, whatever it holds, leaves the program with a readable list, and nothing of the
    // original is lost: a good list stays as it is, a damaged one is kept byte for byte.
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    const QString file = manager.selectedDatabaseFile();
    QCOMPARE(int(DatabaseList::read(folders.listFile()).status), int(DatabaseList::Status::Ok));
    const QStringList asked = alerts(prompter);
    if (read.status == DatabaseList::Status::Ok) {
        QCOMPARE(ScratchFolders::readBytes(folders.listFile()), original);
        QVERIFY(folders.keptCopies().isEmpty());
    } else {
        QCOMPARE(folders.keptCopies().size(), 1);
        QCOMPARE(ScratchFolders::readBytes(folders.app(folders.keptCopies().first())), original);
        // What became of it is told too: the readable entries stay, or a first database starts.
        const QString outcome = read.entries.isEmpty()
                                    ? s("A new company database \"My Company\" was started.")
                                    : s("The entries that could be read stay in the list.");
        QCOMPARE(
            asked.value(0),
            s("Damaged Database List | The list of company databases \"%1\" could not be "
              "read: %2.\n\nA copy of it was kept as \"%3\". %4")
                .arg(folders.listFile(), read.problem, folders.app(folders.keptCopies().first()), outcome));
        QCOMPARE(DatabaseList::read(folders.listFile()).entries.size(), qMax(1, int(read.entries.size())));
    }
    // A selected database is either found or announced as missing.
    if (!file.isEmpty() && !QFileInfo::exists(file) && read.status == DatabaseList::Status::Ok)
        QVERIFY(asked.contains(s("No Database | No database was found on the given path. The program will "
                                 "create a new database.")));
}

QTEST_GUILESS_MAIN(tst_DatabaseList)
#include "tst_databaselist.moc"
