#include "clitestsupport.h"

#include <QRegularExpression>
#include <QStandardPaths>

using namespace corvanta::cli::testing;

// corvanta-cli as a user meets it: exit codes, help, the database list, copies and the demo.
class tst_CommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exitCodes_data();
    void exitCodes();
    void helpAndManPageCoverEveryCommand();
    void databaseListAndBackup();
    void demo();
};

void tst_CommandLine::exitCodes_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("printed"); // on standard output for 0, on standard error otherwise
    const auto row = [](const char* name, QAnyStringView line, int exitCode, const char* printed) {
        QTest::newRow(name) << line.toString() << exitCode << s(printed);
    };
    // Done: only what was asked for is printed.
    row("help command", "help documents pay", 0,
        "Usage: corvanta-cli [--database FILE] [--json] documents pay");
    // Refused by the data: 1. A file, a name, a value and a condition.
    row("not a database", "--database notes.txt info", 1, "is not a Corvanta company database.");
    row("unknown client", "documents new --type invoice --client Acm", 1,
        "No client is named \"Acm\". Known: \"Acme\".");
    row("exchange rate of 0", invoice("--currency EUR --rate 0"), 1,
        "The exchange rate must be a number above 0");
    row("malformed predicate", "documents list --where sum_total>", 1,
        "The condition is malformed at position 10");
    // A wrong command line: 2.
    row("unknown command", "frobnicate", 2, "Unknown command \"frobnicate\".");
    row("group without command", "documents", 2, "documents finalize");
    row("unknown option of a command", invoice("--colour red"), 2, "Unknown option \"--colour\".");
    row("missing option", "documents new --client Acme", 2, "The option \"--type\" is required.");
    row("date that does not exist", invoice("--date 2023-02-29"), 2, "\"2023-02-29\" is not a date");
    row("option without the one it needs", invoice("--rate 2"), 2, "--rate needs --currency");
    row("one word too many", "documents show A B", 2, "Unexpected argument \"B\".");
}

void tst_CommandLine::exitCodes()
{
    QFETCH(QString, line);
    QFETCH(int, exitCode);
    QFETCH(QString, printed);
    const Cli cli;
    cli.addClientAndItems();
    QFile notes(cli.path("notes.txt"));
    QVERIFY(notes.open(QIODevice::WriteOnly) && notes.write("my notes\n") == 9);
    notes.close();

    const Run run = cli.run(line);
    QCOMPARE(run.exitCode, exitCode);
    QVERIFY2((exitCode == 0 ? run.out : run.err).contains(printed), qPrintable(run.out + run.err));
    if (exitCode != 0)
        QVERIFY2(run.out.isEmpty(), qPrintable(run.out));
    if (exitCode == 2) // with the usage of the program or of the command
        QVERIFY2(run.err.contains(s("Usage: corvanta-cli")) || run.err.contains(s("commands:")),
                 qPrintable(run.err));
    // Nothing was changed.
    QVERIFY(notes.open(QIODevice::ReadOnly));
    QCOMPARE(notes.readAll(), QByteArray("my notes\n"));
    QCOMPARE(cli.json("documents list").toArray().size(), 0);
    QCOMPARE(cli.stock("Bolt"), 0.0);
    QVERIFY(!QFileInfo::exists(cli.path("data/corvanta")));
}

void tst_CommandLine::helpAndManPageCoverEveryCommand()
{
    const Cli cli;
    QStringList names; // as the program lists them in its help
    const QString commands = cli.raw("--help").out.section(s("Commands:\n"), 1).section(s("\n\n"), 0, 0);
    for (const QString& line : commands.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        names << line.trimmed().section(s("  "), 0, 0);
    QVERIFY(names.contains(s("documents new")));
    QFile file(QStringLiteral(CORVANTA_MANPAGE));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString page = QString::fromUtf8(file.readAll());

    for (const QString& name : names) {
        const Run run = cli.exec(name.split(QLatin1Char(' ')) + QStringList{s("--help")});
        QCOMPARE(run.exitCode, 0);
        QVERIFY2(run.out.startsWith(s("Usage: corvanta-cli [--database FILE] [--json] ") + name),
                 qPrintable(run.out));
        QVERIFY2(run.out.contains(s("Example")), qPrintable(name));
        // Command names are set in bold in the page: \fBdocuments new\fR.
        QVERIFY2(page.contains(s("\\fB") + name), qPrintable(name));
    }
    // The page renders without a warning.
    const QString groff = QStandardPaths::findExecutable(s("groff"));
    if (groff.isEmpty())
        QSKIP("groff is not installed");
    QProcess process;
    process.start(groff, {s("-man"), s("-Tutf8"), s("-ww"), s("-z"), QStringLiteral(CORVANTA_MANPAGE)});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(QString::fromUtf8(process.readAllStandardError()), QString());
}

void tst_CommandLine::databaseListAndBackup()
{
    const Cli cli;
    const auto list = [&] { return cli.raw("--json databases").json().toArray(); };
    // The first use makes the list and the company database it selects, with its defaults, and
    // tells the data-model version it has just written.
    QCOMPARE(cli.raw("info").line(1), s("Data model: 1.0"));
    QJsonArray databases = list();
    QCOMPARE(databases.size(), 1);
    const QJsonObject first = databases.at(0).toObject();
    QCOMPARE(first.value(s("name")).toString(), s("My Company"));
    QVERIFY(first.value(s("selected")).toBool());
    QVERIFY(first.value(s("path")).toString().startsWith(cli.path("data/corvanta/")));
    QVERIFY(QFileInfo::exists(first.value(s("path")).toString()));

    Run run = cli.raw("databases new Second");
    const QString second = run.line(1);
    QCOMPARE(cli.raw("databases select Second").exitCode, 0);
    QCOMPARE(cli.raw("info").line(0), s("Database: ") + second);
    databases = list();
    QCOMPARE(databases.size(), 2);

    // A refusal leaves the list as it was.
    run = cli.raw("databases select Third");
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(list(), databases);

    // The copy of the list's databases goes to the desktop folder unless told otherwise.
    run = cli.raw("backup");
    QCOMPARE(run.exitCode, 0);
    const QString archive = run.out.trimmed();
    QVERIFY2(archive.contains(QRegularExpression(s("/Desktop/Corvanta \\d{4}-\\d\\d-\\d\\d \\d{4}\\.zip$"))),
             qPrintable(archive));
    QVERIFY(QFileInfo(archive).size() > 0);
    // --to names the folder instead, made when missing.
    const QString other = cli.run(s("--json backup --to %1").arg(cli.path("copies/today")))
                              .json()
                              .toObject()
                              .value(s("path"))
                              .toString();
    QVERIFY2(other.startsWith(cli.path("copies/today/Corvanta ")) && QFileInfo(other).size() > 0,
             qPrintable(other));

    // A list that marks no database opens nothing and stays as it is.
    QFile listFile(cli.path("data/corvanta/corvanta.databases"));
    QVERIFY(listFile.open(QIODevice::ReadOnly));
    QString unmarked = QString::fromUtf8(listFile.readAll());
    listFile.close();
    unmarked.replace(QRegularExpression(s("(<key>selected</key>\\s*)<integer>1</integer>")),
                     s("\\1<integer>0</integer>"));
    QVERIFY(listFile.open(QIODevice::WriteOnly | QIODevice::Truncate));
    listFile.write(unmarked.toUtf8());
    listFile.close();
    run = cli.raw("info");
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.err.contains(s("Failed to initialize the store")), qPrintable(run.err));
    QVERIFY(listFile.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(listFile.readAll()), unmarked);
    for (const QJsonValue& database : list())
        QVERIFY(!database.toObject().value(s("selected")).toBool());
}

void tst_CommandLine::demo()
{
    const Cli cli;
    const Run run = cli.run("demo");
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.out.contains(cli.database()), qPrintable(run.out));
    QVERIFY(!QFileInfo::exists(cli.database() + s(".lock"))); // released on exit
    QStringList seen;
    for (const QJsonValue& document : cli.json("documents list").toArray())
        seen << document[s("status")].toString() << document[s("type_name")].toString();
    for (const char* kind :
         {"paid", "unpaid", "cancelled", "draft", "invoice", "quotation", "delivery_note", "purchase_order"})
        QVERIFY2(seen.contains(s(kind)), kind);
    // 500 bolts came in; 100 were invoiced; the cancelled invoice's 10 came back.
    QCOMPARE(cli.stock("Bolt"), 400.0);
    // A second demo on the same file is refused; one without --database goes to a new folder.
    QCOMPARE(cli.run("demo").exitCode, 1);
    const QJsonObject scratch = cli.raw("--json demo").json().toObject();
    QVERIFY(scratch.value(s("database")).toString().startsWith(cli.home() + s("/corvanta-demo-")));
    QCOMPARE(scratch.value(s("clients")).toArray().size(), 3);
}

QTEST_GUILESS_MAIN(tst_CommandLine)
#include "tst_commandline.moc"
