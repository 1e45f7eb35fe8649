#include "clitestsupport.h"

#include <QJsonArray>
#include <QRegularExpression>
#include <QStandardPaths>

using namespace corvanta::cli::testing;

namespace {

// The command names as the program lists them in its help.
QStringList commandNames(const Cli& cli)
{
    const Run run = cli.raw({s("--help")});
    const QString commands = run.out.section(s("Commands:\n"), 1).section(s("\n\n"), 0, 0);
    QStringList names;
    for (const QString& line : commands.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        names << line.trimmed().section(s("  "), 0, 0);
    return names;
}

} // namespace

// corvanta-cli as a user meets it: exit codes, help, the database list, copies and the demo.
class tst_CommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exitCodes_data();
    void exitCodes();
    void everyCommandHasHelp();
    void manPageCoversEveryCommand();
    void infoCreatesDatabase();
    void infoReportsStoreErrors();
    void databaseListOnFirstUse();
    void backupCopies();
    void demo();
};

void tst_CommandLine::exitCodes_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("stdoutHas");
    QTest::addColumn<QString>("stderrHas");
    QTest::newRow("help") << QStringList{s("--help")} << 0 << s("Usage: corvanta-cli") << QString();
    QTest::newRow("version") << QStringList{s("--version")} << 0 << s("corvanta-cli 0.") << QString();
    QTest::newRow("unknown option") << QStringList{s("--colour")} << 2 << QString()
                                    << s("Unknown option \"--colour\".");
    QTest::newRow("unknown command") << QStringList{s("frobnicate")} << 2 << QString()
                                     << s("Unknown command \"frobnicate\".");
    QTest::newRow("database without file")
        << QStringList{s("--database")} << 2 << QString() << s("--database needs a file name.");
    QTest::newRow("group without command")
        << QStringList{s("documents")} << 2 << QString() << s("documents finalize");
    QTest::newRow("group help") << QStringList{s("items"), s("--help")} << 0 << s("items receive")
                                << QString();
    QTest::newRow("help command") << QStringList{s("help"), s("documents"), s("pay")} << 0
                                  << s("Usage: corvanta-cli [--database FILE] [--json] documents pay")
                                  << QString();
    QTest::newRow("database list with --database")
        << QStringList{s("--database"), s("x.cvdb"), s("databases")} << 2 << QString()
        << s("\"databases\" works on the database list");
}

void tst_CommandLine::exitCodes()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, stdoutHas);
    QFETCH(QString, stderrHas);
    const Run run = Cli().raw(arguments);
    QCOMPARE(run.exitCode, exitCode);
    QVERIFY2(run.out.contains(stdoutHas), qPrintable(run.out));
    QVERIFY2(run.err.contains(stderrHas), qPrintable(run.err));
}

void tst_CommandLine::everyCommandHasHelp()
{
    const Cli cli;
    const QStringList names = commandNames(cli);
    QVERIFY(names.contains(s("documents new")));
    QVERIFY(names.contains(s("demo")));
    for (const QString& name : names) {
        const Run run = cli.raw(name.split(QLatin1Char(' ')) + QStringList{s("--help")});
        QCOMPARE(run.exitCode, 0);
        QVERIFY2(run.out.startsWith(s("Usage: corvanta-cli [--database FILE] [--json] ") + name),
                 qPrintable(run.out));
        QVERIFY2(run.out.contains(s("Example")), qPrintable(name));
        // Help needs no database: nothing was made in the home folder.
        QVERIFY2(!QFileInfo::exists(cli.path(s("data/corvanta"))), qPrintable(name));
    }
}

void tst_CommandLine::manPageCoversEveryCommand()
{
    QFile file(QStringLiteral(CORVANTA_MANPAGE));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString page = QString::fromUtf8(file.readAll());
    for (const char* section : {".SH NAME", ".SH SYNOPSIS", ".SH DESCRIPTION", ".SH OPTIONS",
                                ".SH EXIT STATUS", ".SH EXAMPLES", ".SH FILES"})
        QVERIFY2(page.contains(s(section)), section);
    for (const QString& name : commandNames(Cli())) {
        // Command names are set in bold in the page: \fBdocuments new\fR.
        QVERIFY2(page.contains(s("\\fB") + name), qPrintable(name));
    }
    const QString groff = QStandardPaths::findExecutable(s("groff"));
    if (groff.isEmpty())
        QSKIP("groff is not installed");
    QProcess process;
    process.start(groff, {s("-man"), s("-Tutf8"), s("-ww"), s("-z"), QStringLiteral(CORVANTA_MANPAGE)});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(QString::fromUtf8(process.readAllStandardError()), QString());
}

void tst_CommandLine::infoCreatesDatabase()
{
    const Cli cli;
    const QString path = cli.path(s("sub/company.cvdb"));
    const Run run = cli.raw({s("info"), s("--database"), path});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.firstLine(), s("Database: ") + path);
    QVERIFY(run.out.contains(QRegularExpression(s("Documents\\s+0\n"))));
    QVERIFY(run.out.contains(QRegularExpression(s("MyCompany\\s+1\n"))));
    QVERIFY(!QFileInfo::exists(path + s(".lock"))); // released on exit
    // The database list is not touched when a file is named.
    QVERIFY(!QFileInfo::exists(cli.path(s("data/corvanta"))));
}

void tst_CommandLine::infoReportsStoreErrors()
{
    const Cli cli;
    QFile file(cli.database());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("these are my notes, not a database\n");
    file.close();
    const Run run = cli.run({s("info")});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.err.contains(s("The file \"%1\" is not a Corvanta company database.").arg(cli.database())),
             qPrintable(run.err));
    QVERIFY(run.out.isEmpty());
}

void tst_CommandLine::databaseListOnFirstUse()
{
    const Cli cli;
    // The first use makes the list and the company database it selects, with its defaults.
    QJsonArray list = cli.raw({s("--json"), s("databases")}).json().toArray();
    QCOMPARE(list.size(), 1);
    QCOMPARE(list.at(0).toObject().value(s("name")).toString(), s("My Company"));
    QVERIFY(list.at(0).toObject().value(s("selected")).toBool());
    const QString first = list.at(0).toObject().value(s("path")).toString();
    QVERIFY(first.startsWith(cli.path(s("data/corvanta/"))));
    QVERIFY(QFileInfo::exists(first));

    Run run = cli.raw({s("databases"), s("new"), s("Second Co")});
    QCOMPARE(run.exitCode, 0);
    const QString second = run.out.section(QLatin1Char('\n'), 1, 1);
    QVERIFY2(second.endsWith(s(".cvdb")), qPrintable(run.out));
    QCOMPARE(cli.raw({s("clients"), s("add"), s("--name"), s("In The First")}).exitCode, 0);
    run = cli.raw({s("databases"), s("select"), s("Second Co")});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(cli.raw({s("info")}).firstLine(), s("Database: ") + second);
    QCOMPARE(cli.raw({s("--json"), s("clients"), s("list")}).json().toArray().size(), 0);
    list = cli.raw({s("--json"), s("databases")}).json().toArray();
    QCOMPARE(list.size(), 2);
    QVERIFY(!list.at(0).toObject().value(s("selected")).toBool());
    QVERIFY(list.at(1).toObject().value(s("selected")).toBool());

    run = cli.raw({s("databases"), s("select"), s("Third Co")});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.err.contains(s("No company database is named \"Third Co\".")), qPrintable(run.err));
    run = cli.raw({s("databases"), s("new"), s(" ")});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.err.contains(s("Enter the name of the company.")), qPrintable(run.err));
    QCOMPARE(cli.raw({s("--json"), s("databases")}).json().toArray().size(), 2);
}

void tst_CommandLine::backupCopies()
{
    const Cli cli;
    // The desktop copy of the list's databases goes to the desktop folder unless told otherwise.
    Run run = cli.raw({s("backup")});
    QCOMPARE(run.exitCode, 0);
    const QString archive = run.out.trimmed();
    QVERIFY2(QRegularExpression(s("/Desktop/Corvanta \\d{4}-\\d\\d-\\d\\d \\d{4}\\.zip$"))
                 .match(archive)
                 .hasMatch(),
             qPrintable(archive));
    QVERIFY(QFileInfo(archive).size() > 0);
    run = cli.run({s("--json"), s("backup"), s("--to"), cli.path(s("copies/today"))});
    QCOMPARE(run.exitCode, 0);
    const QString single = run.json().toObject().value(s("path")).toString();
    QVERIFY(single.startsWith(cli.path(s("copies/today/Corvanta "))));
    QVERIFY(QFileInfo(single).size() > 0);
}

void tst_CommandLine::demo()
{
    const Cli cli;
    const Run run = cli.run({s("demo")});
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.out.contains(cli.database()), qPrintable(run.out));
    QVERIFY2(run.err.isEmpty(), qPrintable(run.err));
    QStringList statuses;
    QStringList types;
    for (const QJsonValue& document : cli.json({s("documents"), s("list")}).toArray()) {
        statuses << document.toObject().value(s("status")).toString();
        types << document.toObject().value(s("type_name")).toString();
    }
    for (const char* status : {"paid", "unpaid", "cancelled", "draft"})
        QVERIFY2(statuses.contains(s(status)), status);
    for (const char* type : {"invoice", "quotation", "delivery_note", "purchase_order"})
        QVERIFY2(types.contains(s(type)), type);
    // 500 bolts came in; 100 were invoiced; the cancelled invoice's 10 came back.
    QCOMPARE(cli.json({s("items"), s("show"), s("Bolt")}).toObject().value(s("stock_current")).toDouble(),
             400.0);
    // A second demo on the same file is refused; one without --database goes to a new folder.
    QCOMPARE(cli.run({s("demo")}).exitCode, 1);
    const QJsonObject scratch = cli.raw({s("--json"), s("demo")}).json().toObject();
    QVERIFY(scratch.value(s("database")).toString().startsWith(cli.home() + s("/corvanta-demo-")));
    QCOMPARE(scratch.value(s("clients")).toArray().size(), 3);
}

QTEST_GUILESS_MAIN(tst_CommandLine)
#include "tst_commandline.moc"
