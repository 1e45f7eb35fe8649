#include "format/relativedates.h"

#include <QTest>
#include <QTimeZone>
#include <map>

using namespace corvanta::format;

namespace {

const QByteArray Budapest("Europe/Budapest");
const QByteArray NewYork("America/New_York");
const QByteArray Auckland("Pacific/Auckland");
const QByteArray SaoPaulo("America/Sao_Paulo"); // skipped 00:00-01:00 on 2018-11-04
const QByteArray Havana("America/Havana");      // skipped 00:00-01:00 on 2024-03-10
const QByteArray Cairo("Africa/Cairo");         // skipped 00:00-01:00 on 2023-04-28, a Friday
const QByteArray Nuuk("America/Nuuk");          // skipped 23:00-24:00 on 2024-03-30
const QByteArray Apia("Pacific/Apia");          // skipped the whole of 2011-12-30

using Operation = QDateTime (*)(const QDateTime&);

const std::map<QString, Operation>& operations()
{
    static const std::map<QString, Operation> table{
        {QStringLiteral("today"), dates::today},
        {QStringLiteral("yesterday"), dates::yesterday},
        {QStringLiteral("lastWeek"), dates::lastWeek},
        {QStringLiteral("lastTwoWeeks"), dates::lastTwoWeeks},
        {QStringLiteral("lastThreeMonths"), dates::lastThreeMonths},
        {QStringLiteral("lastSixMonths"), dates::lastSixMonths},
        {QStringLiteral("thisYear"), dates::thisYear},
        {QStringLiteral("lastYear"), dates::lastYear},
        {QStringLiteral("thisMonth"), dates::thisMonth},
        {QStringLiteral("lastMonth"), dates::lastMonth},
        {QStringLiteral("nextYear"), dates::nextYear},
        {QStringLiteral("yearMin"), dates::yearMin},
        {QStringLiteral("yearMax"), dates::yearMax},
        {QStringLiteral("fromMidnight"), dates::fromMidnight},
        {QStringLiteral("toMidnight"), dates::toMidnight},
        {QStringLiteral("midday"), dates::midday},
    };
    return table;
}

// "yyyy-MM-dd HH:mm:ss" read as a wall-clock time in `zone`; the time must exist there.
QDateTime wallClock(const QByteArray& zone, const char* text)
{
    const QString s = QString::fromLatin1(text);
    return QDateTime(QDate::fromString(s.left(10), Qt::ISODate), QTime::fromString(s.mid(11), Qt::ISODate),
                     QTimeZone(zone));
}

QString wallClockText(const QDateTime& date)
{
    return date.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

// Checks the result's wall-clock time and that it stays in the receiver's zone.
void verifyResult(const QDateTime& result, const QDateTime& receiver, const QString& expected)
{
    QVERIFY2(result.isValid(), qPrintable(expected));
    QCOMPARE(wallClockText(result), expected);
    QCOMPARE(result.timeSpec(), receiver.timeSpec());
    QCOMPARE(result.timeZone().id(), receiver.timeZone().id());
}

void addOperationRow(const char* name, const char* operation, const QByteArray& zone, const char* date,
                     const char* expected)
{
    QTest::newRow(name) << QString::fromLatin1(operation) << zone << QString::fromLatin1(date)
                        << QString::fromLatin1(expected);
}

} // namespace

class tst_RelativeDates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void operationsOnOneDate_data();
    void operationsOnOneDate();
    void thisWeek_data();
    void thisWeek();
    void thisWeekStartsOnTheLocalesFirstDay_data();
    void thisWeekStartsOnTheLocalesFirstDay();
    void addDays_data();
    void addDays();
    void addBusinessDays_data();
    void addBusinessDays();
    void resultStaysInTheReceiversZone_data();
    void resultStaysInTheReceiversZone();
    void invalidReceiverGivesInvalidResult();
    void relativeDateTokens_data();
    void relativeDateTokens();
};

void tst_RelativeDates::initTestCase()
{
    for (const QByteArray& zone : {Budapest, NewYork, Auckland, SaoPaulo, Havana, Cairo, Nuuk, Apia})
        QVERIFY2(QTimeZone(zone).isValid(), zone.constData());
}

void tst_RelativeDates::operationsOnOneDate_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("date");
    QTest::addColumn<QString>("expected");

    addOperationRow("today, afternoon", "today", Budapest, "2024-05-15 16:45:10", "2024-05-15 00:00:00");
    addOperationRow("today, last second", "today", NewYork, "2024-05-15 23:59:59", "2024-05-15 00:00:00");
    addOperationRow("today, spring change", "today", Budapest, "2024-03-31 10:00:00", "2024-03-31 00:00:00");
    addOperationRow("today, midnight skipped", "today", SaoPaulo, "2018-11-04 10:00:00",
                    "2018-11-04 01:00:00");
    addOperationRow("today, midnight skipped (Havana)", "today", Havana, "2024-03-10 09:00:00",
                    "2024-03-10 01:00:00");
    addOperationRow("yesterday on 1 January", "yesterday", Budapest, "2024-01-01 08:00:00",
                    "2023-12-31 00:00:00");
    addOperationRow("yesterday on 1 March, leap year", "yesterday", NewYork, "2024-03-01 08:00:00",
                    "2024-02-29 00:00:00");
    addOperationRow("yesterday, autumn change", "yesterday", NewYork, "2024-11-04 09:00:00",
                    "2024-11-03 00:00:00");
    addOperationRow("yesterday, onto skipped midnight", "yesterday", SaoPaulo, "2018-11-05 12:00:00",
                    "2018-11-04 01:00:00");
    addOperationRow("lastWeek, spring change", "lastWeek", Budapest, "2024-04-03 12:00:00",
                    "2024-03-27 00:00:00");
    addOperationRow("lastWeek, year end", "lastWeek", NewYork, "2024-01-03 07:00:00", "2023-12-27 00:00:00");
    addOperationRow("lastTwoWeeks, leap February", "lastTwoWeeks", Budapest, "2024-03-10 12:00:00",
                    "2024-02-25 00:00:00");
    addOperationRow("lastTwoWeeks, autumn change", "lastTwoWeeks", Auckland, "2024-04-14 12:00:00",
                    "2024-03-31 00:00:00");
    addOperationRow("thisMonth on the 31st", "thisMonth", Budapest, "2024-01-31 23:30:00",
                    "2024-01-01 00:00:00");
    addOperationRow("thisMonth, spring change", "thisMonth", Auckland, "2024-09-30 10:00:00",
                    "2024-09-01 00:00:00");
    addOperationRow("lastMonth of 31 March 2023", "lastMonth", Budapest, "2023-03-31 10:00:00",
                    "2023-03-03 00:00:00");
    addOperationRow("lastMonth of 31 March 2024", "lastMonth", Budapest, "2024-03-31 10:00:00",
                    "2024-03-02 00:00:00");
    addOperationRow("lastMonth of 31 May", "lastMonth", NewYork, "2024-05-31 10:00:00",
                    "2024-05-01 00:00:00");
    addOperationRow("lastMonth of 15 January", "lastMonth", NewYork, "2024-01-15 10:00:00",
                    "2023-12-15 00:00:00");
    addOperationRow("lastThreeMonths of 31 May", "lastThreeMonths", Budapest, "2023-05-31 10:00:00",
                    "2023-03-03 00:00:00");
    addOperationRow("lastThreeMonths of 15 February", "lastThreeMonths", Auckland, "2024-02-15 10:00:00",
                    "2023-11-15 00:00:00");
    addOperationRow("lastSixMonths of 31 August 2024", "lastSixMonths", NewYork, "2024-08-31 10:00:00",
                    "2024-03-02 00:00:00");
    addOperationRow("lastSixMonths of 31 March", "lastSixMonths", Budapest, "2024-03-31 10:00:00",
                    "2023-10-01 00:00:00");
    addOperationRow("thisYear on 31 December", "thisYear", NewYork, "2024-12-31 23:59:59",
                    "2024-01-01 00:00:00");
    addOperationRow("thisYear, southern winter", "thisYear", Auckland, "2024-07-01 10:00:00",
                    "2024-01-01 00:00:00");
    addOperationRow("lastYear of 29 February", "lastYear", Budapest, "2024-02-29 10:00:00",
                    "2023-03-01 00:00:00");
    addOperationRow("lastYear of 1 January", "lastYear", NewYork, "2024-01-01 00:00:00",
                    "2023-01-01 00:00:00");
    addOperationRow("nextYear of 29 February", "nextYear", Auckland, "2024-02-29 15:00:00",
                    "2025-03-01 00:00:00");
    addOperationRow("nextYear of 31 December", "nextYear", Budapest, "2023-12-31 23:59:59",
                    "2024-12-31 00:00:00");
    addOperationRow("yearMin", "yearMin", NewYork, "2024-06-15 14:00:00", "2024-01-01 00:00:00");
    addOperationRow("yearMax", "yearMax", Budapest, "2024-06-15 14:00:00", "2024-12-31 23:59:59");
    addOperationRow("yearMax of 1 January", "yearMax", Auckland, "2024-01-01 00:00:00",
                    "2024-12-31 23:59:59");
    addOperationRow("fromMidnight, autumn change", "fromMidnight", Budapest, "2024-10-27 18:00:00",
                    "2024-10-27 00:00:00");
    addOperationRow("fromMidnight, midnight skipped", "fromMidnight", SaoPaulo, "2018-11-04 23:00:00",
                    "2018-11-04 01:00:00");
    addOperationRow("toMidnight, spring change", "toMidnight", NewYork, "2024-03-10 01:00:00",
                    "2024-03-10 23:59:59");
    addOperationRow("toMidnight, last hour skipped", "toMidnight", Nuuk, "2024-03-30 09:00:00",
                    "2024-03-30 22:59:59");
    addOperationRow("midday, spring change", "midday", Auckland, "2024-09-29 01:30:00",
                    "2024-09-29 12:00:00");
    addOperationRow("midday, autumn change", "midday", NewYork, "2024-11-03 00:05:00", "2024-11-03 12:00:00");
}

void tst_RelativeDates::operationsOnOneDate()
{
    QFETCH(QString, operation);
    QFETCH(QByteArray, zone);
    QFETCH(QString, date);
    QFETCH(QString, expected);

    const QDateTime receiver = wallClock(zone, qPrintable(date));
    QVERIFY(receiver.isValid());
    verifyResult(operations().at(operation)(receiver), receiver, expected);
}

void tst_RelativeDates::thisWeek_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("date");
    QTest::addColumn<int>("firstDay");
    QTest::addColumn<QString>("expected");

    QTest::newRow("Monday week, from Wednesday")
        << Budapest << "2024-05-15 14:00:00" << int(Qt::Monday) << "2024-05-13 00:00:00";
    QTest::newRow("Monday week, from Monday")
        << Budapest << "2024-05-13 08:00:00" << int(Qt::Monday) << "2024-05-13 00:00:00";
    QTest::newRow("Monday week, from Sunday")
        << Budapest << "2024-05-19 20:00:00" << int(Qt::Monday) << "2024-05-13 00:00:00";
    QTest::newRow("Monday week, year end")
        << Budapest << "2025-01-01 10:00:00" << int(Qt::Monday) << "2024-12-30 00:00:00";
    QTest::newRow("Monday week, leap February")
        << Auckland << "2024-03-02 10:00:00" << int(Qt::Monday) << "2024-02-26 00:00:00";
    QTest::newRow("Monday week, spring change")
        << Budapest << "2024-03-31 10:00:00" << int(Qt::Monday) << "2024-03-25 00:00:00";
    QTest::newRow("Sunday week, from Sunday")
        << NewYork << "2024-05-19 20:00:00" << int(Qt::Sunday) << "2024-05-19 00:00:00";
    QTest::newRow("Sunday week, from Saturday")
        << NewYork << "2024-05-18 23:00:00" << int(Qt::Sunday) << "2024-05-12 00:00:00";
    QTest::newRow("Sunday week, autumn change")
        << NewYork << "2024-11-06 09:00:00" << int(Qt::Sunday) << "2024-11-03 00:00:00";
    QTest::newRow("Sunday week, midnight skipped")
        << SaoPaulo << "2018-11-07 09:00:00" << int(Qt::Sunday) << "2018-11-04 01:00:00";
    QTest::newRow("Saturday week, from Wednesday")
        << Auckland << "2024-05-15 09:00:00" << int(Qt::Saturday) << "2024-05-11 00:00:00";
}

void tst_RelativeDates::thisWeek()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, date);
    QFETCH(int, firstDay);
    QFETCH(QString, expected);

    const QDateTime receiver = wallClock(zone, qPrintable(date));
    verifyResult(dates::thisWeek(receiver, Qt::DayOfWeek(firstDay)), receiver, expected);
}

void tst_RelativeDates::thisWeekStartsOnTheLocalesFirstDay_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("expected");

    // From Sunday 19 May 2024.
    QTest::newRow("United States: Sunday")
        << QLocale(QLocale::English, QLocale::UnitedStates) << "2024-05-19 00:00:00";
    QTest::newRow("Hungary: Monday") << QLocale(QLocale::Hungarian, QLocale::Hungary)
                                     << "2024-05-13 00:00:00";
}

void tst_RelativeDates::thisWeekStartsOnTheLocalesFirstDay()
{
    QFETCH(QLocale, locale);
    QFETCH(QString, expected);

    const QLocale previous;
    QLocale::setDefault(locale);
    const QDateTime receiver = wallClock(Budapest, "2024-05-19 20:00:00");
    const QDateTime result = dates::thisWeek(receiver);
    QLocale::setDefault(previous);
    verifyResult(result, receiver, expected);
}

void tst_RelativeDates::addDays_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("date");
    QTest::addColumn<int>("n");
    QTest::addColumn<QString>("expected");

    QTest::newRow("-1 on 1 March 2023") << Budapest << "2023-03-01 08:00:00" << -1 << "2023-02-28 12:00:00";
    QTest::newRow("-1 on 1 March 2024") << NewYork << "2024-03-01 23:30:00" << -1 << "2024-02-29 12:00:00";
    QTest::newRow("+1 on 31 December") << Auckland << "2024-12-31 18:00:00" << 1 << "2025-01-01 12:00:00";
    QTest::newRow("0 moves to midday") << Budapest << "2024-05-15 03:00:00" << 0 << "2024-05-15 12:00:00";
    QTest::newRow("+1 onto spring change") << Budapest << "2024-03-30 23:30:00" << 1 << "2024-03-31 12:00:00";
    QTest::newRow("+1 onto autumn change") << NewYork << "2024-11-02 00:30:00" << 1 << "2024-11-03 12:00:00";
    QTest::newRow("+30 across spring change")
        << Auckland << "2024-09-15 09:00:00" << 30 << "2024-10-15 12:00:00";
    QTest::newRow("-365 across leap day")
        << Budapest << "2024-12-31 22:00:00" << -365 << "2024-01-01 12:00:00";
    QTest::newRow("+1 onto a skipped day") << Apia << "2011-12-29 10:00:00" << 1 << "2011-12-31 00:00:00";
}

void tst_RelativeDates::addDays()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, date);
    QFETCH(int, n);
    QFETCH(QString, expected);

    const QDateTime receiver = wallClock(zone, qPrintable(date));
    verifyResult(dates::addDays(receiver, n), receiver, expected);
}

void tst_RelativeDates::addBusinessDays_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("date");
    QTest::addColumn<int>("n");
    QTest::addColumn<QString>("expected");

    // 13 May 2024 is a Monday.
    QTest::newRow("Friday +1 is Monday") << Budapest << "2024-05-17 09:30:00" << 1 << "2024-05-20 09:30:00";
    QTest::newRow("Saturday +1 is Tuesday")
        << Budapest << "2024-05-18 09:30:00" << 1 << "2024-05-21 09:30:00";
    QTest::newRow("Sunday +1 is Tuesday") << NewYork << "2024-05-19 16:00:00" << 1 << "2024-05-21 16:00:00";
    QTest::newRow("Monday +1 is Tuesday") << NewYork << "2024-05-13 16:00:00" << 1 << "2024-05-14 16:00:00";
    QTest::newRow("Thursday +1 is Friday") << Auckland << "2024-05-16 07:15:00" << 1 << "2024-05-17 07:15:00";
    QTest::newRow("Wednesday +5 is Wednesday")
        << Budapest << "2024-05-15 11:00:00" << 5 << "2024-05-22 11:00:00";
    QTest::newRow("Friday +10 is Friday two weeks on")
        << Budapest << "2024-05-17 10:00:00" << 10 << "2024-05-31 10:00:00";
    QTest::newRow("Saturday 0 is Monday") << Budapest << "2024-05-18 15:45:30" << 0 << "2024-05-20 15:45:30";
    QTest::newRow("Sunday 0 is Monday") << NewYork << "2024-05-19 08:00:00" << 0 << "2024-05-20 08:00:00";
    QTest::newRow("Wednesday 0 stays") << NewYork << "2024-05-15 08:00:00" << 0 << "2024-05-15 08:00:00";
    QTest::newRow("Wednesday -3 stays") << Budapest << "2024-05-15 08:00:00" << -3 << "2024-05-15 08:00:00";
    QTest::newRow("Saturday -1 is Monday")
        << Auckland << "2024-05-18 07:00:00" << -1 << "2024-05-20 07:00:00";
    QTest::newRow("Friday +1 across spring change")
        << Budapest << "2024-03-29 02:30:00" << 1 << "2024-04-01 02:30:00";
    QTest::newRow("Friday +1 across autumn change")
        << Auckland << "2024-04-05 02:30:00" << 1 << "2024-04-08 02:30:00";
    QTest::newRow("Friday +1 across year end")
        << NewYork << "2021-12-31 17:00:00" << 1 << "2022-01-03 17:00:00";
    QTest::newRow("Thursday +1 onto skipped hour")
        << Cairo << "2023-04-27 00:30:00" << 1 << "2023-04-28 01:00:00";
}

void tst_RelativeDates::addBusinessDays()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, date);
    QFETCH(int, n);
    QFETCH(QString, expected);

    const QDateTime receiver = wallClock(zone, qPrintable(date));
    verifyResult(dates::addBusinessDays(receiver, n), receiver, expected);
}

void tst_RelativeDates::resultStaysInTheReceiversZone_data()
{
    QTest::addColumn<QDateTime>("receiver");

    // Saturday 18 May 2024, 15:00.
    const QDate day(2024, 5, 18);
    const QTime time(15, 0);
    QTest::newRow("UTC") << QDateTime(day, time, Qt::UTC);
    QTest::newRow("offset +05:30") << QDateTime(day, time, Qt::OffsetFromUTC, 5 * 3600 + 30 * 60);
    QTest::newRow("local time") << QDateTime(day, time, Qt::LocalTime);
    QTest::newRow("named zone") << QDateTime(day, time, QTimeZone(NewYork));
}

void tst_RelativeDates::resultStaysInTheReceiversZone()
{
    QFETCH(QDateTime, receiver);

    verifyResult(dates::today(receiver), receiver, QStringLiteral("2024-05-18 00:00:00"));
    verifyResult(dates::lastMonth(receiver), receiver, QStringLiteral("2024-04-18 00:00:00"));
    verifyResult(dates::toMidnight(receiver), receiver, QStringLiteral("2024-05-18 23:59:59"));
    verifyResult(dates::addBusinessDays(receiver, 0), receiver, QStringLiteral("2024-05-20 15:00:00"));
}

void tst_RelativeDates::invalidReceiverGivesInvalidResult()
{
    const QDateTime invalid;
    for (const auto& [name, operation] : operations())
        QVERIFY2(!operation(invalid).isValid(), qPrintable(name));
    QVERIFY(!dates::thisWeek(invalid, Qt::Monday).isValid());
    QVERIFY(!dates::addDays(invalid, 1).isValid());
    QVERIFY(!dates::addBusinessDays(invalid, 1).isValid());
}

void tst_RelativeDates::relativeDateTokens_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("now");
    QTest::addColumn<int>("firstDay");

    QTest::newRow("Budapest, 31 March of a leap year")
        << Budapest << "2024-03-31 10:00:00" << int(Qt::Monday);
    QTest::newRow("New York, Sunday weeks, on a Sunday")
        << NewYork << "2024-05-19 10:00:00" << int(Qt::Sunday);
    QTest::newRow("Auckland, 1 January") << Auckland << "2024-01-01 00:30:00" << int(Qt::Monday);
}

void tst_RelativeDates::relativeDateTokens()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, now);
    QFETCH(int, firstDay);

    const QDateTime moment = wallClock(zone, qPrintable(now));
    const QList<std::pair<const char*, QDateTime>> expected{
        {"@today", dates::today(moment)},
        {"@yesterday", dates::yesterday(moment)},
        {"@this_week", dates::thisWeek(moment, Qt::DayOfWeek(firstDay))},
        {"@last_week", dates::lastWeek(moment)},
        {"@last_two_weeks", dates::lastTwoWeeks(moment)},
        {"@this_month", dates::thisMonth(moment)},
        {"@last_month", dates::lastMonth(moment)},
        {"@last_three_months", dates::lastThreeMonths(moment)},
        {"@last_six_months", dates::lastSixMonths(moment)},
        {"@this_year", dates::thisYear(moment)},
        {"@last_year", dates::lastYear(moment)},
    };

    const QList<dates::RelativeDateToken> tokens = dates::relativeDateTokens(moment, Qt::DayOfWeek(firstDay));
    QCOMPARE(tokens.size(), expected.size());
    for (qsizetype i = 0; i < tokens.size(); ++i) {
        QCOMPARE(tokens[i].token, QString::fromLatin1(expected[i].first));
        QVERIFY(tokens[i].date.isValid());
        QCOMPARE(tokens[i].date, expected[i].second);
        QCOMPARE(tokens[i].date.timeZone().id(), zone);
    }
}

QTEST_GUILESS_MAIN(tst_RelativeDates)
#include "tst_relativedates.moc"
