#include "companies/databasemanager.h"
#include "companiestestsupport.h"

#include <QDirIterator>

using namespace corvanta::companies;
using namespace corvanta::companies::testing;
using corvanta::support::ScriptedPrompter;

namespace {

// What the list files of the fixture folder hold: the number of entries read, then for a damaged
// list what is wrong with it. Files added to the folder without an entry here are still checked
// against the rules every list must follow.
const QHash<QString, QString> kExpected = {
    {s("two-entries.databases"), s("2")},
    {s("two-entries-binary.databases"), s("2")},
    {s("none-selected.databases"), s("1")},
    {s("selected-boolean.databases"), s("1")},
    {s("missing-files.databases"), s("2")},
    {s("empty.databases"), s("0: the file is empty")},
    {s("whitespace.databases"), s("0: the file holds only white space")},
    {s("truncated.databases"),
     s("0: it is not well-formed XML (line 13, column 76: Premature end of document.)")},
    {s("garbage.databases"), s("0: it is not well-formed XML (line 1, column 1: Start tag expected.)")},
    {s("html.databases"), s("0: it is not a property list")},
    {s("dictionary.databases"), s("0: it does not hold a list of databases")},
    {s("empty-array.databases"), s("0: the list holds no databases")},
    {s("strings.databases"), s("0: 2 of its 2 entries name no database file")},
    {s("partly-unusable.databases"), s("1: 2 of its 3 entries name no database file")},
    {s("deeply-nested.databases"), s("0: it is nested too deeply")},
    {s("binary-truncated.databases"), s("0: it is a damaged binary property list")},
};

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
    // Keys this program does not use come back as they were written.
    const QVariantMap unused{{s("note"), s("kept")},
                             {s("nested"), QVariantList{s("a"), QVariantMap{{s("b"), qint64(2)}}}}};
    const DatabaseEntry entry{
        s("Café & Co <Ltd>\x01\x1b"), s("/srv/shared/X.cvdb"), s("/srv/shared"), s("X.cvdb"), true, unused};
    const DatabaseEntry other{s("Other"), s("/srv/other/Y.cvdb"), s("/srv/other"), s("Y.cvdb"), false, {}};
    QString error;
    QVERIFY(DatabaseList::write(folders.listFile(), {entry, other}, &error));
    const DatabaseList::ReadResult read = DatabaseList::read(folders.listFile());
    QCOMPARE(int(read.status), int(DatabaseList::Status::Ok));
    // Control characters cannot be written in XML.
    QCOMPARE(names(read.entries), (QStringList{s("Café & Co <Ltd>*"), s("Other")}));
    const DatabaseEntry& back = read.entries.first();
    QCOMPARE(back.path + s(" ") + back.directory + s(" ") + back.filename,
             s("/srv/shared/X.cvdb /srv/shared X.cvdb"));
    QCOMPARE(back.otherKeys, unused);
    // "selected" is written as the integer it always was.
    QVERIFY(ScratchFolders::readBytes(folders.listFile()).contains("<integer>1</integer>"));

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
    QVERIFY(files.size() >= kExpected.size());
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
    const bool ok = read.status == DatabaseList::Status::Ok;
    QCOMPARE(ok, read.problem.isEmpty());
    QVERIFY(ok || read.status == DatabaseList::Status::Damaged);
    const QString found = QString::number(read.entries.size()) + (ok ? QString() : s(": ") + read.problem);
    QCOMPARE(found, kExpected.value(QFileInfo(fixture).fileName(), found));

    // Every list, whatever it holds, leaves the program with a readable list, and nothing of the
    // original is lost: a good list stays as it is, a damaged one is kept byte for byte.
    ScriptedPrompter prompter;
    DatabaseManager manager(prompter, folders.folders());
    const QString file = manager.selectedDatabaseFile();
    QCOMPARE(int(DatabaseList::read(folders.listFile()).status), int(DatabaseList::Status::Ok));
    const QStringList asked = alerts(prompter);
    if (ok) {
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
    if (!file.isEmpty() && !QFileInfo::exists(file) && ok)
        QVERIFY(asked.contains(s("No Database | No database was found on the given path. The program will "
                                 "create a new database.")));
}

QTEST_GUILESS_MAIN(tst_DatabaseList)
#include "tst_databaselist.moc"
