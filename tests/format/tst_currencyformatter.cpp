#include "format/currencyformatter.h"
#include "format/formattedcurrency.h"

#include <QTest>
#include <limits>

using namespace corvanta::format;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

CurrencyFormat currency(const char* placement, const char* grouping, const char* decimal, int digits,
                        bool fixed, const char* symbol = "$")
{
    CurrencyFormat format;
    format.code = s("USD");
    format.symbol = s(symbol);
    format.symbolFormat = s(placement);
    format.groupingSeparator = s(grouping);
    format.decimalSeparator = s(decimal);
    format.digits = digits;
    format.showFixedDigits = fixed;
    return format;
}

} // namespace

class tst_CurrencyFormatter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formats_data();
    void formats();
    void nonFiniteNumbersAreNeverShown_data();
    void nonFiniteNumbersAreNeverShown();
    void objectValuesThatAreNotNumbers();
};

void tst_CurrencyFormatter::formats_data()
{
    QTest::addColumn<CurrencyFormat>("format");
    QTest::addColumn<double>("number");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char* name, const CurrencyFormat& format, double number, const char* expected) {
        QTest::newRow(name) << format << number << s(expected);
    };
    const CurrencyFormat usual = currency("l", ",", ".", 2, true);

    // Where the mark stands.
    row("l", usual, 1234.5, "$1,234.50");
    row("ls", currency("ls", ",", ".", 2, true), 1234.5, "$ 1,234.50");
    row("r", currency("r", ",", ".", 2, true), 1234.5, "1,234.50$");
    row("sr", currency("sr", ",", ".", 2, true, "€"), 1234.5, "1,234.50 €");
    row("code", currency("code", ",", ".", 2, true), 1234.5, "1,234.50 USD");
    row("none", currency("none", ",", ".", 2, true), 1234.5, "1,234.50");
    row("no", currency("no", ",", ".", 2, true), 1234.5, "1,234.50");
    row("unknown placement", currency("left", ",", ".", 2, true), 1234.5, "1,234.50");
    row("l with an empty symbol", currency("ls", ",", ".", 2, true, ""), 5, "5.00");

    // Grouping.
    row("grouping none, free digits, sr", currency("sr", "none", ".", 2, false, "€"), 1234.5, "1234.5 €");
    row("grouping dot, decimal comma", currency("sr", ".", ",", 2, true, "€"), 1234567.891, "1.234.567,89 €");
    row("grouping blank", currency("sr", " ", ",", 0, false, "Ft"), 1234567, "1 234 567 Ft");
    row("grouping apostrophe", currency("ls", "'", ".", 2, true, "CHF"), 1234567.5, "CHF 1'234'567.50");
    row("three digits are not grouped", usual, 999, "$999.00");
    row("four digits are", usual, 1000, "$1,000.00");
    row("multi-character separators", currency("none", "--", "::", 2, true), 1234.5, "1--234::50");

    // Fraction digits.
    row("free digits cut trailing zeros", currency("l", ",", ".", 2, false), 12.5, "$12.5");
    row("free digits, whole number", currency("l", ",", ".", 2, false), 12, "$12");
    row("free digits, rounded away", currency("l", ",", ".", 2, false), 12.001, "$12");
    row("fixed three digits", currency("l", ",", ".", 3, true), 12, "$12.000");
    row("no digits", currency("l", ",", ".", 0, true), 1234.4, "$1,234");
    row("four free digits", currency("l", ",", ".", 4, false), 0.10009, "$0.1001");

    // Negative amounts: the sign leads, whatever the placement.
    row("negative l", usual, -1234.5, "-$1,234.50");
    row("negative ls", currency("ls", ",", ".", 2, true), -7, "-$ 7.00");
    row("negative sr", currency("sr", ".", ",", 2, true, "€"), -1234.5, "-1.234,50 €");
    row("negative code", currency("code", ",", ".", 2, false), -5, "-5 USD");
    row("negative rounding to zero has no sign", usual, -0.004, "$0.00");
    row("negative zero", usual, -0.0, "$0.00");

    // Very large and very small.
    row("a quadrillion", usual, 1e15, "$1,000,000,000,000,000.00");
    row("beyond the exact integers", currency("none", ",", ".", 0, false), 123456789012345678.0,
        "123,456,789,012,345,680");
    row("1e21", currency("none", ",", ".", 0, false), 1e21, "1,000,000,000,000,000,000,000");
    QTest::newRow("largest double, every digit")
        << currency("none", "none", ".", 0, false) << std::numeric_limits<double>::max()
        << s("17976931348623157") + QString(292, QLatin1Char('0'));
    row("a millionth, six digits", currency("none", ",", ".", 6, false), 1e-6, "0.000001");
    row("half a millionth rounds up", currency("none", ",", ".", 6, false), 5e-7, "0.000001");
    row("below half a millionth", currency("none", ",", ".", 6, false), 4.9e-7, "0");
    row("smallest double", usual, std::numeric_limits<double>::denorm_min(), "$0.00");

    // Rounding at the half: on the decimal digits, away from zero.
    row("2.675", usual, 2.675, "$2.68");
    row("1.005", usual, 1.005, "$1.01");
    row("2.665", usual, 2.665, "$2.67");
    row("0.125 (exact in binary)", usual, 0.125, "$0.13");
    row("-2.675", usual, -2.675, "-$2.68");
    row("0.5 to whole", currency("l", ",", ".", 0, false), 0.5, "$1");
    row("2.5 to whole (not to even)", currency("l", ",", ".", 0, false), 2.5, "$3");
    row("-2.5 to whole", currency("l", ",", ".", 0, false), -2.5, "-$3");
    row("carry into a new group", usual, 999.995, "$1,000.00");
    row("carry through nines", currency("none", ",", ".", 2, false), 9999999.999, "10,000,000");
    row("just below the half", usual, 2.674999, "$2.67");
    row("sum of tenths", usual, 0.1 + 0.2, "$0.30");

    // Incomplete or odd currency records still format.
    row("empty decimal separator", currency("l", ",", "", 2, true), 1234.5, "$1,234.50");
    row("empty grouping separator", currency("l", "", ".", 2, true), 1234567.5, "$1234567.50");
    row("negative digits", currency("l", ",", ".", -3, true), 1234.56, "$1,235");
    row("everything empty", CurrencyFormat{QString(), QString(), QString(), QString(), QString(), 0, false},
        1234.56, "1235");
}

void tst_CurrencyFormatter::formats()
{
    QFETCH(CurrencyFormat, format);
    QFETCH(double, number);
    QFETCH(QString, expected);

    const CurrencyFormatter formatter(format);
    QCOMPARE(formatter.stringFromNumber(number), expected);
    QCOMPARE(formatter.stringForObjectValue(number), expected);
}

void tst_CurrencyFormatter::nonFiniteNumbersAreNeverShown_data()
{
    QTest::addColumn<double>("number");
    QTest::newRow("NaN") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
    QTest::newRow("minus infinity") << -std::numeric_limits<double>::infinity();
}

void tst_CurrencyFormatter::nonFiniteNumbersAreNeverShown()
{
    QFETCH(double, number);
    const CurrencyFormatter formatter(currency("l", ",", ".", 2, true));
    QCOMPARE(formatter.stringFromNumber(number), QString());
    QCOMPARE(formatter.stringForObjectValue(number), QString());
    QCOMPARE(formattedCurrency(number, nullptr), QString());
}

void tst_CurrencyFormatter::objectValuesThatAreNotNumbers()
{
    const CurrencyFormatter formatter(currency("l", ",", ".", 2, true));
    QCOMPARE(formatter.stringForObjectValue(QVariant()), QString());
    QCOMPARE(formatter.stringForObjectValue(s("12")), QString());
    QCOMPARE(formatter.stringForObjectValue(qint64(12)), s("$12.00"));
    // Without a currency record: no mark, no grouping, at most two digits.
    QCOMPARE(formattedCurrency(1234.567, nullptr), s("1234.57"));
}

QTEST_GUILESS_MAIN(tst_CurrencyFormatter)
#include "tst_currencyformatter.moc"
