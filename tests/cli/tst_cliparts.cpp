#include "cli/arguments.h"
#include "cli/cliprompter.h"
#include "cli/texttable.h"
#include "cli/valuetext.h"

#include <QTest>

using namespace corvanta::cli;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

const QList<OptionSpec> kSpecs = {{s("amount"), true, false},
                                  {s("row"), true, true},
                                  {s("draft"), false, false},
                                  {s("help"), false, false}};

} // namespace

// The pieces of the command line that every command relies on.
class tst_CliParts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void arguments_data();
    void arguments();
    void numbersAndDates_data();
    void numbersAndDates();
    void prompterAnswersAndKeepsMessages();
    void entryWindowIsNotAskedForever();
    void tableAlignsColumns();
};

void tst_CliParts::arguments_data()
{
    QTest::addColumn<QStringList>("input");
    QTest::addColumn<QString>("parsed"); // "words|amount|rows|draft", or "error: ..."
    QTest::newRow("words and options mixed")
        << QStringList{s("A"), s("--amount"), s("5"), s("B")} << s("A,B|5||false");
    QTest::newRow("value after =") << QStringList{s("--amount=7.5")} << s("|7.5||false");
    QTest::newRow("negative value") << QStringList{s("--amount"), s("-3")} << s("|-3||false");
    QTest::newRow("repeated option keeps order")
        << QStringList{s("--row"), s("a;1"), s("--row"), s("b;2")} << s("||a;1,b;2|false");
    QTest::newRow("flag") << QStringList{s("--draft")} << s("|||true");
    QTest::newRow("after -- everything is a word")
        << QStringList{s("--"), s("--draft"), s("-x")} << s("--draft,-x|||false");
    QTest::newRow("-h is help") << QStringList{s("-h")} << s("|||false");
    QTest::newRow("unknown option") << QStringList{s("--colour")} << s("error: Unknown option \"--colour\".");
    QTest::newRow("unknown short option") << QStringList{s("-x")} << s("error: Unknown option \"-x\".");
    QTest::newRow("missing value") << QStringList{s("--amount")}
                                   << s("error: The option \"--amount\" needs a value.");
    QTest::newRow("value given to a flag")
        << QStringList{s("--draft=yes")} << s("error: The option \"--draft\" takes no value.");
    QTest::newRow("single option twice") << QStringList{s("--amount"), s("1"), s("--amount"), s("2")}
                                         << s("error: The option \"--amount\" may be given only once.");
}

void tst_CliParts::arguments()
{
    QFETCH(QStringList, input);
    QFETCH(QString, parsed);
    QString error;
    const std::optional<Arguments> result = Arguments::parse(input, kSpecs, &error);
    if (!result) {
        QCOMPARE(s("error: ") + error, parsed);
        return;
    }
    const QString summary = QStringList{result->words().join(QLatin1Char(',')), result->value(s("amount")),
                                        result->values(s("row")).join(QLatin1Char(',')),
                                        result->has(s("draft")) ? s("true") : s("false")}
                                .join(QLatin1Char('|'));
    QCOMPARE(summary, parsed);
    QCOMPARE(result->has(s("help")), input.contains(s("-h")));
}

void tst_CliParts::numbersAndDates_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("number"); // the number read back in its plain form, or "-"
    QTest::addColumn<QString>("date");   // the date read, or "-"
    QTest::newRow("whole number") << s("12") << s("12") << s("-");
    QTest::newRow("fraction keeps its digits") << s("0.125") << s("0.125") << s("-");
    QTest::newRow("negative") << s("-2.5") << s("-2.5") << s("-");
    QTest::newRow("blanks around") << s(" 7 ") << s("7") << s("-");
    QTest::newRow("large number in full") << s("1e6") << s("1000000") << s("-");
    QTest::newRow("grouped number refused") << s("1,234.5") << s("-") << s("-");
    QTest::newRow("comma decimal refused") << s("12,5") << s("-") << s("-");
    QTest::newRow("iso date") << s("2024-02-29") << s("-") << s("2024-02-29");
    QTest::newRow("date that does not exist") << s("2023-02-29") << s("-") << s("-");
    QTest::newRow("day first") << s("15.03.2024") << s("-") << s("-");
}

void tst_CliParts::numbersAndDates()
{
    QFETCH(QString, text);
    QFETCH(QString, number);
    QFETCH(QString, date);
    const std::optional<double> n = ValueText::number(text);
    QCOMPARE(n ? ValueText::plain(*n) : s("-"), number);
    const std::optional<QDate> d = ValueText::date(text);
    QCOMPARE(d ? d->toString(Qt::ISODate) : s("-"), date);
}

void tst_CliParts::prompterAnswersAndKeepsMessages()
{
    CliPrompter prompter;
    // A question is answered with its action; a message is kept as one line.
    QCOMPARE(prompter.alert(s("Finalize Invoice"), s("Are you sure?"), {s("Finalize"), s("Cancel")}),
             s("Finalize"));
    QCOMPARE(
        prompter.alert(s("No Client Selected"), s("You cannot save document without client."), {s("OK")}),
        s("OK"));
    QCOMPARE(prompter.alert(s("The changes could not be saved."), s("Disk full."), {s("OK")}), s("OK"));
    QCOMPARE(prompter.alert(s("Damaged"), s("First.\n\nSecond."), {s("OK")}), s("OK"));
    QVERIFY(!prompter.chooseFolder(s("Choose")));
    QCOMPARE(prompter.questions(), (QStringList{s("Finalize Invoice"), s("Choose")}));
    QCOMPARE(prompter.takeMessages(),
             (QStringList{s("No Client Selected: You cannot save document without client."),
                          s("The changes could not be saved. Disk full."), s("Damaged: First. Second.")}));
    QVERIFY(!prompter.hasMessages());
}

void tst_CliParts::entryWindowIsNotAskedForever()
{
    CliPrompter prompter;
    // Without an answer the window keeps its pre-filled text.
    prompter.beginCommand(std::nullopt);
    QCOMPARE(prompter.askText(s("Start Number"), s("Number:"), s("1")), std::optional<QString>(s("1")));
    prompter.beginCommand(s("500"));
    QCOMPARE(prompter.askText(s("Start Number"), s("Number:"), s("1")), std::optional<QString>(s("500")));
    // Asked again in the same command: the answer was refused, the window is cancelled.
    QCOMPARE(prompter.askText(s("Start Number"), s("Number:"), s("1")), std::nullopt);
    QCOMPARE(prompter.askText(s("Company Name"), s("Name:"), QString()), std::optional<QString>(s("500")));
    prompter.beginCommand(s("42"));
    QCOMPARE(prompter.askText(s("Start Number"), s("Number:"), s("1")), std::optional<QString>(s("42")));
}

void tst_CliParts::tableAlignsColumns()
{
    TextTable table({{s("Name")}, {s("Total"), TextTable::Align::Right}, {s("Status")}});
    table.addRow({s("INVOICE/2024-0001"), s("$1,250.50"), s("unpaid")});
    table.addRow({s("Q-1"), s("$5"), QString()});
    QString text;
    QTextStream out(&text);
    table.write(out, 2);
    out.flush();
    QCOMPARE(text, s("  Name                   Total  Status\n"
                     "  INVOICE/2024-0001  $1,250.50  unpaid\n"
                     "  Q-1                       $5\n"));
}

QTEST_GUILESS_MAIN(tst_CliParts)
#include "tst_cliparts.moc"
