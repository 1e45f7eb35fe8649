#include "format/amountbytext.h"
#include "format/currencyformatter.h"
#include "format/formattedcurrency.h"
#include "format/nodigitlimitnumberformatter.h"
#include "format/numberformatter.h"
#include "predicate/keypathsource.h"

#include <QRegularExpression>
#include <QTest>
#include <limits>

using namespace corvanta::format;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

// A currency record as the formatters read it: its attributes by name. A null text in the
// format stands for an attribute the record does not have (a null value).
class CurrencySource : public corvanta::predicate::KeyPathSource
{
public:
    explicit CurrencySource(const CurrencyFormat& f)
    {
        const auto text = [](const QString& t) { return t.isNull() ? QVariant() : QVariant(t); };
        m_values = {{s("code"), text(f.code)},
                    {s("symbol"), text(f.symbol)},
                    {s("symbol_format"), text(f.symbolFormat)},
                    {s("grouping_separator"), text(f.groupingSeparator)},
                    {s("decimal_separator"), text(f.decimalSeparator)},
                    {s("digits"), f.digits},
                    {s("show_fixed_digits"), f.showFixedDigits}};
    }

    QVariant valueForKeyPath(const QString& keyPath) const override { return m_values.value(keyPath); }
    corvanta::predicate::RecordRef selfRef() const override { return {s("Currencies"), 1}; }

private:
    QVariantHash m_values;
};

// The format of a currency "USD"; a null pointer leaves that attribute out of its record.
CurrencyFormat currency(const char* placement, const char* grouping, const char* decimal, int digits,
                        bool fixed, const char* symbol = "$")
{
    const auto text = [](const char* t) { return t ? s(t) : QString(); };
    return {s("USD"), text(symbol), text(placement), text(grouping), text(decimal), digits, fixed};
}

} // namespace

// Amounts and numbers as text: with a currency's mark, in the entry fields (which take the
// company's default currency), read back from the entry fields, and in words.
class tst_NumberFormatters : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void currencyFormats_data();
    void currencyFormats();
    void valuesThatAreNotDoubles();
    void entryFields_data();
    void entryFields();
    void reading_data();
    void reading();
    void amountsInWords_data();
    void amountsInWords();
};

void tst_NumberFormatters::currencyFormats_data()
{
    QTest::addColumn<CurrencyFormat>("format");
    QTest::addColumn<double>("number");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char* name, const CurrencyFormat& format, double number, const char* expected) {
        QTest::newRow(name) << format << number << s(expected);
    };
    const CurrencyFormat usual = currency("l", ",", ".", 2, true);

    // Where the mark stands; without a mark there is no stray blank.
    row("l", usual, 1234.5, "$1,234.50");
    row("ls", currency("ls", ",", ".", 2, true), 1234.5, "$ 1,234.50");
    row("r", currency("r", ",", ".", 2, true), 1234.5, "1,234.50$");
    row("sr", currency("sr", ",", ".", 2, true, "€"), 1234.5, "1,234.50 €");
    row("code", currency("code", ",", ".", 2, true), 1234.5, "1,234.50 USD");
    row("unknown placement", currency("left", ",", ".", 2, true), 1234.5, "1,234.50");
    row("ls with an empty symbol", currency("ls", ",", ".", 2, true, ""), 5, "5.00");

    // Separators; an empty decimal separator falls back to the point.
    row("grouping none, free digits", currency("sr", "none", ".", 2, false, "€"), 1234.5, "1234.5 €");
    row("grouping dot, decimal comma", currency("sr", ".", ",", 2, true, "€"), 1234567.891, "1.234.567,89 €");
    row("empty decimal separator", currency("l", ",", "", 2, true), 1234.5, "$1,234.50");
    row("nothing set", currency(nullptr, nullptr, nullptr, 0, false, nullptr), 1234.56, "1235");

    // Fraction digits.
    row("free digits, rounded away", currency("l", ",", ".", 2, false), 12.001, "$12");
    row("negative digits count as none", currency("l", ",", ".", -3, true), 1234.56, "$1,235");

    // Negative amounts: the sign leads, in front of the mark too.
    row("negative", usual, -1234.5, "-$1,234.50");
    row("negative rounding to zero has no sign", usual, -0.004, "$0.00");

    // Rounding: half away from zero on the shortest decimal that reads back as the double.
    row("2.675", usual, 2.675, "$2.68");
    row("-2.5 to whole (not to even)", currency("l", ",", ".", 0, false), -2.5, "-$3");
    row("carry into a new group", usual, 999.995, "$1,000.00");

    // Very large and very small: every digit, never an exponent.
    row("beyond the exact integers", currency("none", ",", ".", 0, false), 123456789012345678.0,
        "123,456,789,012,345,680");
    row("half a millionth rounds up", currency("none", ",", ".", 6, false), 5e-7, "0.000001");

    // Never shown.
    row("NaN", usual, std::numeric_limits<double>::quiet_NaN(), "");
}

void tst_NumberFormatters::currencyFormats()
{
    QFETCH(CurrencyFormat, format);
    QFETCH(double, number);
    QFETCH(QString, expected);

    const CurrencyFormatter formatter(format);
    QCOMPARE(formatter.stringFromNumber(number), expected);
    QCOMPARE(formatter.stringForObjectValue(number), expected);
    // The same currency read from a record.
    const CurrencySource record(format);
    QCOMPARE(formattedCurrency(number, &record), expected);
}

void tst_NumberFormatters::valuesThatAreNotDoubles()
{
    const CurrencyFormatter formatter(currency("l", ",", ".", 2, true));
    QCOMPARE(formatter.stringForObjectValue(QVariant()), QString());
    QCOMPARE(formatter.stringForObjectValue(s("12")), QString());
    QCOMPARE(formatter.stringForObjectValue(qint64(12)), s("$12.00"));
    // Without a currency record: no mark, no grouping, at most two digits.
    QCOMPARE(formattedCurrency(-1234.567, nullptr), s("-1234.57"));
}

void tst_NumberFormatters::entryFields_data()
{
    QTest::addColumn<CurrencyFormat>("currency");
    QTest::addColumn<QString>("systemLocale");
    QTest::addColumn<double>("number");
    QTest::addColumn<QString>("prices");
    QTest::addColumn<QString>("quantities");

    const auto row = [](const char* name, const CurrencyFormat& c, const char* locale, double number,
                        const char* prices, const char* quantities) {
        QTest::newRow(name) << c << s(locale) << number << s(prices) << s(quantities);
    };
    // Neither shows the currency mark; quantities are never grouped, keep up to six digits and
    // take their decimal separator from the system, not from the currency.
    row("six digits for quantities", currency("sr", ",", ".", 2, false), "C", 1.23456789, "1.23", "1.234568");
    row("currency point, system comma", currency("sr", ",", ".", 2, true), "de_DE", 1234.5, "1,234.50",
        "1234,50");
    row("fixed digits above six", currency("sr", ",", ".", 8, true), "C", 1.5, "1.50000000", "1.50000000");
}

void tst_NumberFormatters::entryFields()
{
    QFETCH(CurrencyFormat, currency);
    QFETCH(QString, systemLocale);
    QFETCH(double, number);
    QFETCH(QString, prices);
    QFETCH(QString, quantities);

    const CurrencySource record(currency);
    QCOMPARE(NumberFormatter(&record).stringFromNumber(number), prices);
    const NoDigitLimitNumberFormatter quantityField(&record, QLocale(systemLocale));
    QCOMPARE(quantityField.stringFromNumber(number), quantities);
    // What a quantity field shows, it reads back, with the system's decimal separator.
    QVariant read;
    QVERIFY(quantityField.getObjectValue(&read, quantities));
    QCOMPARE(quantityField.stringForObjectValue(read), quantities);
}

void tst_NumberFormatters::reading_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("error");

    const auto valid = [](const char* name, const char* text, const QVariant& value) {
        QTest::newRow(name) << s(text) << value << QString();
    };
    const auto invalid = [](const char* name, const char* text) {
        QTest::newRow(name) << s(text) << QVariant()
                            << s("\u201c%1\u201d is not a valid number.").arg(s(text));
    };
    // Read with grouping "." and decimal "," (a Hungarian-style default currency).
    valid("grouped, with fraction and blanks", "  -1.234.567,891 ", -1234567.891);
    valid("minus sign character", "\u22123", -3.0);
    valid("fraction only", ",5", 0.5);
    valid("empty field", "", QVariant());
    invalid("grouping in the fraction", "1,234.5");
    invalid("grouping before a digit", ".5");
    invalid("sign alone", "-");
    invalid("infinity", "-Infinity");
    const QString huge(400, QLatin1Char('9'));
    QTest::newRow("beyond the largest double")
        << huge << QVariant() << s("\u201c%1\u201d is too large to be used as a number.").arg(huge);
}

void tst_NumberFormatters::reading()
{
    QFETCH(QString, text);
    QFETCH(QVariant, value);
    QFETCH(QString, error);

    const CurrencySource record(currency("sr", ".", ",", 2, true));
    QVariant read = s("untouched");
    QString message;
    QCOMPARE(NumberFormatter(&record).getObjectValue(&read, text, &message), error.isEmpty());
    QCOMPARE(message, error);
    // A refused text leaves the value as it was.
    QCOMPARE(read, error.isEmpty() ? value : QVariant(s("untouched")));
}

void tst_NumberFormatters::amountsInWords_data()
{
    QTest::addColumn<double>("amount");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char* name, double amount, const char* expected) {
        QTest::newRow(name) << amount << s(expected);
    };
    // The two short tens forms.
    row("11", 11, "Tizenegy 00/100");
    row("21", 21, "Huszonegy 00/100");

    // Group names, and the hyphens after milliárd and millió, which are trimmed at the ends only.
    row("2 001", 2001, "Kettőezeregy 00/100");
    row("1 000 000", 1000000, "Egymillió 00/100");
    row("1 000 000 000", 1000000000, "Egymilliárd 00/100");
    row("1 000 005 001", 1000005001, "Egymilliárd--ötezeregy 00/100");
    row("999 999 999 999.99", 999999999999.99,
        "Kilencszázkilencvenkilencmilliárd-kilencszázkilencvenkilencmillió-"
        "kilencszázkilencvenkilencezerkilencszázkilencvenkilenc 99/100");

    // An amount below one: zero in words, the cents in two digits, and the sign.
    row("0.004 rounds to nothing", 0.004, "Nulla");
    row("-0.05", -0.05, "minusz Nulla 05/100");

    // Beyond the word tables, in digits; nothing for numbers that are not finite.
    row("a whole part of 13 digits", 999999999999.995, "1000000000000 00/100");
    row("minus infinity", -std::numeric_limits<double>::infinity(), "");
}

void tst_NumberFormatters::amountsInWords()
{
    QFETCH(double, amount);
    QFETCH(QString, expected);
    if (expected.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("not finite")));
    QCOMPARE(amountByText(amount), expected);
}

QTEST_GUILESS_MAIN(tst_NumberFormatters)
#include "tst_numberformatters.moc"
