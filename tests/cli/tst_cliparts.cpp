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

const QList<OptionSpec> kOptions = {{s("amount"), true, false},
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
    void prompter();
    void tableAlignsColumns();
};

void tst_CliParts::arguments_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("parsed"); // "words|amount|rows|draft", or "error: ..."
    const auto row = [](const char* name, const char* input, const char* parsed) {
        QTest::newRow(name) << s(input) << s(parsed);
    };
    row("words and options mixed", "A --amount 5 B", "A,B|5||false");
    row("value after =", "--amount=7.5", "|7.5||false");
    row("negative value", "--amount -3", "|-3||false");
    row("repeated option keeps order", "--row a;1 --row b;2", "||a;1,b;2|false");
    row("flag", "--draft", "|||true");
    row("after -- everything is a word", "-- --draft -x", "--draft,-x|||false");
    row("-h is help", "-h", "|||false");
    row("unknown option", "--colour", "error: Unknown option \"--colour\".");
    row("unknown short option", "-x", "error: Unknown option \"-x\".");
    row("missing value", "--amount", "error: The option \"--amount\" needs a value.");
    row("value given to a flag", "--draft=yes", "error: The option \"--draft\" takes no value.");
    row("single option twice", "--amount 1 --amount 2",
        "error: The option \"--amount\" may be given only once.");
}

void tst_CliParts::arguments()
{
    QFETCH(QString, text);
    QFETCH(QString, parsed);
    const QStringList input = text.split(QLatin1Char(' '));
    QString error;
    const std::optional<Arguments> result = Arguments::parse(input, kOptions, &error);
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

void tst_CliParts::prompter()
{
    CliPrompter prompter;
    // A question is answered with its action; a message is kept as one line.
    QCOMPARE(prompter.alert(s("Finalize Invoice"), s("Are you sure?"), {s("Finalize"), s("Cancel")}),
             s("Finalize"));
    QCOMPARE(
        prompter.alert(s("No Client Selected"), s("You cannot save document without client."), {s("OK")}),
        s("OK"));
    prompter.alert(s("The changes could not be saved."), s("Disk full."), {s("OK")});
    prompter.alert(s("Damaged"), s("First.\n\nSecond."), {s("OK")});
    QVERIFY(!prompter.chooseFolder(s("Choose")));
    QCOMPARE(prompter.questions(), (QStringList{s("Finalize Invoice"), s("Choose")}));
    QCOMPARE(prompter.takeMessages(),
             (QStringList{s("No Client Selected: You cannot save document without client."),
                          s("The changes could not be saved. Disk full."), s("Damaged: First. Second.")}));
    QVERIFY(!prompter.hasMessages());

    // An entry window without an answer keeps its pre-filled text; asked again in the same
    // command (its answer was refused), it is cancelled.
    const auto startNumber = [&] { return prompter.askText(s("Start Number"), s("Number:"), s("1")); };
    prompter.beginCommand(std::nullopt);
    QCOMPARE(startNumber(), std::optional<QString>(s("1")));
    prompter.beginCommand(s("500"));
    QCOMPARE(startNumber(), std::optional<QString>(s("500")));
    QCOMPARE(startNumber(), std::nullopt);
    QCOMPARE(prompter.askText(s("Company Name"), s("Name:"), QString()), std::optional<QString>(s("500")));
    prompter.beginCommand(s("42"));
    QCOMPARE(startNumber(), std::optional<QString>(s("42")));
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
