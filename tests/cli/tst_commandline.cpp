#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;
};

Run runCli(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral(CORVANTA_CLI), arguments);
    process.waitForFinished(30000);
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

// corvanta-cli as a user meets it: exit codes and the texts it prints.
class tst_CommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exitCodes_data();
    void exitCodes();
    void infoCreatesAndReportsDatabase();
    void infoReportsStoreErrors();
};

void tst_CommandLine::exitCodes_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("stdoutHas");
    QTest::addColumn<QString>("stderrHas");
    QTest::newRow("help") << QStringList{QStringLiteral("--help")} << 0
                          << QStringLiteral("Usage: corvanta-cli") << QString();
    QTest::newRow("version") << QStringList{QStringLiteral("--version")} << 0
                             << QStringLiteral("corvanta-cli 0.") << QString();
    QTest::newRow("unknown option") << QStringList{QStringLiteral("--colour")} << 2 << QString()
                                    << QStringLiteral("Unknown option \"--colour\".");
    QTest::newRow("unknown command") << QStringList{QStringLiteral("frobnicate")} << 2 << QString()
                                     << QStringLiteral("Unknown command \"frobnicate\".");
    QTest::newRow("database without file") << QStringList{QStringLiteral("--database")} << 2 << QString()
                                           << QStringLiteral("--database needs a file name.");
}

void tst_CommandLine::exitCodes()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, stdoutHas);
    QFETCH(QString, stderrHas);
    const Run run = runCli(arguments);
    QCOMPARE(run.exitCode, exitCode);
    QVERIFY2(run.out.contains(stdoutHas), qPrintable(run.out));
    QVERIFY2(run.err.contains(stderrHas), qPrintable(run.err));
}

void tst_CommandLine::infoCreatesAndReportsDatabase()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("sub/company.cvdb"));
    const Run run = runCli({QStringLiteral("--database"), path, QStringLiteral("info")});
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.out.contains(QStringLiteral("Database: ") + path));
    QVERIFY(run.out.contains(QRegularExpression(QStringLiteral("Documents\\s+0"))));
    QVERIFY(QFile::exists(path));
    QVERIFY(!QFile::exists(path + QLatin1String(".lock"))); // released on exit
}

void tst_CommandLine::infoReportsStoreErrors()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("notes.cvdb"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("these are my notes, not a database\n");
    file.close();
    const Run run = runCli({QStringLiteral("--database"), path, QStringLiteral("info")});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(
        run.err.contains(QStringLiteral("The file \"%1\" is not a Corvanta company database.").arg(path)),
        qPrintable(run.err));
    QVERIFY(run.out.isEmpty());
}

QTEST_GUILESS_MAIN(tst_CommandLine)
#include "tst_commandline.moc"
