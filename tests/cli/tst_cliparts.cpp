#include "cli/arguments.h"
#include "cli/cliprompter.h"
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
    void numbers_data();
    void numbers();
    void prompter();
};

void tst_CliParts::arguments_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("parsed"); // "words|amount|rows|draft", or "error: ..."
    const auto row = [](const char* name, const char* input, const char* parsed) {
        QTest::newRow(name) << s(input) << s(parsed);
    };
    row("words, options and a flag mixed", "A --amount 5 --draft B", "A,B|5||true");
    row("value after =", "--amount=7.5", "|7.5||false");
    row("negative value", "--amount -3", "|-3||false");
    row("repeatable option keeps its order", "--row a;1 --row b;2", "||a;1,b;2|false");
    row("after -- everything is a word", "-- --draft -h", "--draft,-h|||false");
    row("-h is help", "-h", "|||false");
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
    QCOMPARE(result->has(s("help")), text == s("-h"));
}

void tst_CliParts::numbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("number"); // null: refused
    const auto row = [](const char* name, const char* text, QVariant number) {
        QTest::newRow(name) << s(text) << number;
    };
    row("fraction after a point", " 1234.5 ", 1234.5);
    row("negative zero", "-0", -0.0);
    row("largest magnitude", "1e308", 1e308);
    row("grouping refused", "1,234.50", QVariant());
    row("too large refused", "1e309", QVariant());
    row("nan refused", "nan", QVariant());
    row("infinity refused", "-inf", QVariant());
}

void tst_CliParts::numbers()
{
    QFETCH(QString, text);
    QFETCH(QVariant, number);
    const std::optional<double> read = ValueText::number(text);
    QCOMPARE(read.has_value(), !number.isNull());
    if (read)
        QCOMPARE(*read, number.toDouble());
}

void tst_CliParts::prompter()
{
    CliPrompter prompter;
    // A message is kept as one line: "title: text", or a title that is a sentence, then the text.
    QCOMPARE(prompter.alert(s("Damaged"), s("First.\n\nSecond."), {s("OK")}), s("OK"));
    prompter.alert(s("The changes could not be saved."), s("Disk full."), {s("OK")});
    QCOMPARE(prompter.takeMessages(),
             (QStringList{s("Damaged: First. Second."), s("The changes could not be saved. Disk full.")}));
    QVERIFY(!prompter.hasMessages());

    // Choosers are cancelled. An entry window asked again in the same command (its answer was
    // refused) is cancelled, so that a script never loops; without an answer it keeps its text.
    QVERIFY(!prompter.chooseFolder(s("Choose")));
    const auto startNumber = [&] { return prompter.askText(s("Start Number"), s("Number:"), s("1")); };
    prompter.beginCommand(s("500"));
    QCOMPARE(startNumber(), std::optional<QString>(s("500")));
    QCOMPARE(startNumber(), std::nullopt);
    prompter.beginCommand(std::nullopt);
    QCOMPARE(startNumber(), std::optional<QString>(s("1")));
}

QTEST_GUILESS_MAIN(tst_CliParts)
#include "tst_cliparts.moc"
