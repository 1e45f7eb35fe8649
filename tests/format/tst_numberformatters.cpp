#include "format/nodigitlimitnumberformatter.h"
#include "format/numberformatter.h"
#include "modeltestsupport.h"

#include <QTest>

using namespace corvanta::format;
using namespace corvanta::model;
using namespace corvanta::store;
using namespace corvanta::model::testing;

namespace {

// A default currency as the company holds it.
struct Currency
{
    const char* grouping;
    const char* decimal;
    int digits;
    bool fixed;
};

} // namespace

class tst_NumberFormatters : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store = std::make_unique<ScratchCompany>(); }
    void cleanup() { m_store.reset(); }

    void entryFields_data();
    void entryFields();
    void reading_data();
    void reading();
    void readingFollowsTheSystemLocaleOnlyWithoutDigitLimit();

private:
    Record* currency(const Currency& c)
    {
        return m_store->main().insertRecord(
            s("Currencies"), {{s("code"), s("EUR")},
                              {s("symbol"), s("€")},
                              {s("symbol_format"), s("sr")},
                              {s("grouping_separator"), c.grouping ? s(c.grouping) : QVariant()},
                              {s("decimal_separator"), c.decimal ? s(c.decimal) : QVariant()},
                              {s("digits"), c.digits},
                              {s("show_fixed_digits"), c.fixed}});
    }

    std::unique_ptr<ScratchCompany> m_store;
};

Q_DECLARE_METATYPE(Currency)

void tst_NumberFormatters::entryFields_data()
{
    QTest::addColumn<Currency>("currency");
    QTest::addColumn<QString>("systemLocale");
    QTest::addColumn<double>("number");
    QTest::addColumn<QString>("numberFormatter");
    QTest::addColumn<QString>("noDigitLimit");

    const auto row = [](const char* name, Currency c, const char* locale, double number, const char* plain,
                        const char* noLimit) {
        QTest::newRow(name) << c << s(locale) << number << s(plain) << s(noLimit);
    };
    // The entry fields never show the currency mark; the quantity field never groups, keeps up
    // to six digits and takes its decimal separator from the system, not from the currency.
    row("comma grouping, fixed", {",", ".", 2, true}, "C", 1234.5, "1,234.50", "1234.50");
    row("free digits", {",", ".", 2, false}, "C", 1234.5, "1,234.5", "1234.5");
    row("six digits for quantities", {",", ".", 2, false}, "C", 1.23456789, "1.23", "1.234568");
    row("grouping none", {"none", ".", 2, true}, "C", 1234567.5, "1234567.50", "1234567.50");
    row("blank grouping", {" ", ",", 0, false}, "C", 1234567.5, "1 234 568", "1234567.5");
    row("currency comma, system point", {".", ",", 2, true}, "C", 3.25, "3,25", "3.25");
    row("currency point, system comma", {",", ".", 2, true}, "de_DE", 1234.25, "1,234.25", "1234,25");
    row("Hungarian system", {" ", ",", 0, true}, "hu_HU", 0.5, "1", "0,5");
    row("fixed digits above six", {",", ".", 8, true}, "C", 1.5, "1.50000000", "1.50000000");
    row("negative", {",", ".", 2, true}, "C", -1234.567, "-1,234.57", "-1234.567");
    row("missing separators", {nullptr, nullptr, 2, true}, "C", 1234.5, "1234.50", "1234.50");
    row("negative digits", {",", ".", -2, true}, "C", 1234.5, "1,235", "1234.5");
}

void tst_NumberFormatters::entryFields()
{
    QFETCH(Currency, currency);
    QFETCH(QString, systemLocale);
    QFETCH(double, number);
    QFETCH(QString, numberFormatter);
    QFETCH(QString, noDigitLimit);

    Record* record = this->currency(currency);
    QCOMPARE(NumberFormatter(record).stringFromNumber(number), numberFormatter);
    QCOMPARE(NoDigitLimitNumberFormatter(record, QLocale(systemLocale)).stringFromNumber(number),
             noDigitLimit);
}

void tst_NumberFormatters::reading_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("error");

    const auto valid = [](const char* name, const char* text, const QVariant& value) {
        QTest::newRow(name) << s(text) << value << QString();
    };
    const auto invalid = [](const char* name, const char* text, const QString& error) {
        QTest::newRow(name) << s(text) << QVariant() << error;
    };
    // Read with grouping "." and decimal "," (a Hungarian-style default currency).
    valid("plain", "1234", 1234.0);
    valid("grouped with fraction", "1.234.567,891", 1234567.891);
    valid("grouping anywhere in the whole part", "12.34", 1234.0);
    valid("blanks around", "  -1.234,5 ", -1234.5);
    valid("plus sign", "+7", 7.0);
    valid("minus sign character", "\u22123", -3.0);
    valid("fraction only", ",5", 0.5);
    valid("trailing separator", "5,", 5.0);
    valid("more digits than shown are kept", "0,123456", 0.123456);
    valid("empty field", "", QVariant());
    valid("blank field", "   ", QVariant());
    invalid("letters", "abc", s("\u201cabc\u201d is not a valid number."));
    invalid("a mark", "12 €", s("\u201c12 €\u201d is not a valid number."));
    invalid("two decimal separators", "1,2,3", s("\u201c1,2,3\u201d is not a valid number."));
    invalid("grouping in the fraction", "1,234.5", s("\u201c1,234.5\u201d is not a valid number."));
    invalid("grouping before a digit", ".5", s("\u201c.5\u201d is not a valid number."));
    invalid("sign alone", "-", s("\u201c-\u201d is not a valid number."));
    invalid("exponent", "1e5", s("\u201c1e5\u201d is not a valid number."));
    invalid("nan", "nan", s("\u201cnan\u201d is not a valid number."));
    invalid("inf", "inf", s("\u201cinf\u201d is not a valid number."));
    invalid("infinity", "-Infinity", s("\u201c-Infinity\u201d is not a valid number."));
    const QString huge = QString(400, QLatin1Char('9'));
    QTest::newRow("beyond the largest double")
        << huge << QVariant() << s("\u201c%1\u201d is too large to be used as a number.").arg(huge);
}

void tst_NumberFormatters::reading()
{
    QFETCH(QString, text);
    QFETCH(QVariant, value);
    QFETCH(QString, error);

    const NumberFormatter formatter(currency({".", ",", 2, true}));
    QVariant read = s("untouched");
    QString message;
    QCOMPARE(formatter.getObjectValue(&read, text, &message), error.isEmpty());
    QCOMPARE(message, error);
    if (error.isEmpty())
        QCOMPARE(read, value);
    else
        QCOMPARE(read, QVariant(s("untouched")));
}

void tst_NumberFormatters::readingFollowsTheSystemLocaleOnlyWithoutDigitLimit()
{
    Record* record = currency({",", ".", 2, true});
    const NumberFormatter prices(record);
    const NoDigitLimitNumberFormatter quantities(record, QLocale(s("hu_HU")));
    QVariant value;
    QVERIFY(prices.getObjectValue(&value, s("1,234.5")));
    QCOMPARE(value, QVariant(1234.5));
    QVERIFY(quantities.getObjectValue(&value, s("1234,5")));
    QCOMPARE(value, QVariant(1234.5));
    // The quantity field neither groups nor takes the currency's decimal point.
    QVERIFY(!quantities.getObjectValue(&value, s("1234.5")));
    QVERIFY(!quantities.getObjectValue(&value, s("1 234,5")));
}

QTEST_GUILESS_MAIN(tst_NumberFormatters)
#include "tst_numberformatters.moc"
