#include "format/amountbytext.h"

#include <QRegularExpression>
#include <QTest>
#include <limits>

using corvanta::format::amountByText;

class tst_AmountByText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void words_data();
    void words();
};

void tst_AmountByText::words_data()
{
    QTest::addColumn<double>("amount");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char* name, double amount, const char* expected) {
        QTest::newRow(name) << amount << QString::fromUtf8(expected);
    };
    // Units, tens and the two short tens forms.
    row("1", 1, "Egy 00/100");
    row("2", 2, "Kettő 00/100");
    row("10", 10, "Tíz 00/100");
    row("11", 11, "Tizenegy 00/100");
    row("15", 15, "Tizenöt 00/100");
    row("19", 19, "Tizenkilenc 00/100");
    row("20", 20, "Húsz 00/100");
    row("21", 21, "Huszonegy 00/100");
    row("30", 30, "Harminc 00/100");
    row("99", 99, "Kilencvenkilenc 00/100");
    row("100", 100, "Egyszáz 00/100");
    row("200 keeps the long two", 200, "Kettőszáz 00/100");
    row("512", 512, "Ötszáztizenkettő 00/100");
    row("999", 999, "Kilencszázkilencvenkilenc 00/100");

    // Group boundaries and the hyphens, which come only above 2000.
    row("1 000", 1000, "Egyezer 00/100");
    row("1 999", 1999, "Egyezerkilencszázkilencvenkilenc 00/100");
    row("2 000", 2000, "Kettőezer 00/100");
    row("2 001", 2001, "Kettőezeregy 00/100");
    row("2 500", 2500, "Kettőezerötszáz 00/100");
    row("10 000", 10000, "Tízezer 00/100");
    row("21 021", 21021, "Huszonegyezerhuszonegy 00/100");
    row("999 999", 999999, "Kilencszázkilencvenkilencezerkilencszázkilencvenkilenc 00/100");
    row("1 000 000", 1000000, "Egymillió 00/100");
    row("1 000 001", 1000001, "Egymillió-egy 00/100");
    row("1 500 000", 1500000, "Egymillió-ötszázezer 00/100");
    row("100 000 000", 100000000, "Egyszázmillió 00/100");
    row("1 000 000 000", 1000000000, "Egymilliárd 00/100");
    row("1 000 000 001", 1000000001, "Egymilliárd--egy 00/100");
    row("1 000 005 001", 1000005001, "Egymilliárd--ötezeregy 00/100");
    row("1 002 000 000", 1002000000, "Egymilliárd-kettőmillió 00/100");
    row("999 999 999 999.99", 999999999999.99,
        "Kilencszázkilencvenkilencmilliárd-kilencszázkilencvenkilencmillió-"
        "kilencszázkilencvenkilencezerkilencszázkilencvenkilenc 99/100");

    // Cents and amounts below one.
    row("0", 0, "Nulla");
    row("0.5", 0.5, "Nulla 50/100");
    row("0.05", 0.05, "Nulla 05/100");
    row("0.004 rounds to nothing", 0.004, "Nulla");
    row("12.34", 12.34, "Tizenkettő 34/100");
    row("half a cent rounds up", 2.675, "Kettő 68/100");
    row("cents carry into the whole", 1999.995, "Kettőezer 00/100");

    // Negative amounts.
    row("-3", -3, "minusz Három 00/100");
    row("-0.5", -0.5, "minusz Nulla 50/100");
    row("-0.001 is zero", -0.001, "Nulla");
    row("-1 234.567", -1234.567, "minusz Egyezerkettőszázharmincnégy 57/100");
    row("-2 500 000.1", -2500000.1, "minusz Kettőmillió-ötszázezer 10/100");

    // Beyond the word tables, in digits; nothing for numbers that are not finite.
    row("a whole part of 13 digits", 999999999999.995, "1000000000000 00/100");
    row("-1e15", -1e15, "minusz 1000000000000000 00/100");
    QTest::newRow("NaN") << std::numeric_limits<double>::quiet_NaN() << QString();
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity() << QString();
    QTest::newRow("minus infinity") << -std::numeric_limits<double>::infinity() << QString();
}

void tst_AmountByText::words()
{
    QFETCH(double, amount);
    QFETCH(QString, expected);
    if (expected.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("not finite")));
    QCOMPARE(amountByText(amount), expected);
}

QTEST_GUILESS_MAIN(tst_AmountByText)
#include "tst_amountbytext.moc"
