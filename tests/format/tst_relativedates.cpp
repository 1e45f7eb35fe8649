#include "format/relativedatepredicates.h"
#include "format/relativedates.h"
#include "predicate/formatter.h"
#include "predicate/parser.h"
#include "predicate/recordref.h"

#include <QRegularExpression>
#include <QTest>
#include <QTimeZone>
#include <functional>
#include <map>

using namespace corvanta;
using namespace corvanta::format;
using predicate::Predicate;

namespace {

const QByteArray Budapest("Europe/Budapest");
const QByteArray NewYork("America/New_York");
const QByteArray Auckland("Pacific/Auckland");
const QByteArray SaoPaulo("America/Sao_Paulo"); // skipped 00:00-01:00 on 2018-11-04
const QByteArray Cairo("Africa/Cairo");         // skipped 00:00-01:00 on 2023-04-28, a Friday
const QByteArray Nuuk("America/Nuuk");          // skipped 23:00-24:00 on 2024-03-30
const QByteArray Apia("Pacific/Apia");          // skipped the whole of 2011-12-30

using Operation = std::function<QDateTime(const QDateTime&, int)>;

Operation plain(QDateTime (*operation)(const QDateTime&))
{
    return [operation](const QDateTime& date, int) { return operation(date); };
}

// Every operation by name; `n` is the day count of the additions and the first day of thisWeek.
const std::map<QString, Operation> kOperations{
    {QStringLiteral("today"), plain(dates::today)},
    {QStringLiteral("yesterday"), plain(dates::yesterday)},
    {QStringLiteral("lastWeek"), plain(dates::lastWeek)},
    {QStringLiteral("lastTwoWeeks"), plain(dates::lastTwoWeeks)},
    {QStringLiteral("lastThreeMonths"), plain(dates::lastThreeMonths)},
    {QStringLiteral("lastSixMonths"), plain(dates::lastSixMonths)},
    {QStringLiteral("thisYear"), plain(dates::thisYear)},
    {QStringLiteral("lastYear"), plain(dates::lastYear)},
    {QStringLiteral("thisMonth"), plain(dates::thisMonth)},
    {QStringLiteral("lastMonth"), plain(dates::lastMonth)},
    {QStringLiteral("nextYear"), plain(dates::nextYear)},
    {QStringLiteral("yearMin"), plain(dates::yearMin)},
    {QStringLiteral("yearMax"), plain(dates::yearMax)},
    {QStringLiteral("fromMidnight"), plain(dates::fromMidnight)},
    {QStringLiteral("toMidnight"), plain(dates::toMidnight)},
    {QStringLiteral("midday"), plain(dates::midday)},
    {QStringLiteral("thisWeek"),
     [](const QDateTime& d, int n) { return dates::thisWeek(d, Qt::DayOfWeek(n)); }},
    {QStringLiteral("addDays"), dates::addDays},
    {QStringLiteral("addBusinessDays"), dates::addBusinessDays},
};

// "yyyy-MM-dd HH:mm" read as a wall-clock time in `zone`; the time must exist there.
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

// A row whose name starts with the operation it checks.
void row(const char* name, const QDateTime& receiver, const char* expected, int n = 0)
{
    QTest::newRow(name) << receiver << QString::fromLatin1(expected) << n;
}

void row(const char* name, const QByteArray& zone, const char* date, const char* expected, int n = 0)
{
    row(name, wallClock(zone, date), expected, n);
}

// A day's midnight in Budapest as a predicate writes it: CAST(seconds, "NSDate").
QString cast(const char* day)
{
    const QDateTime midnight(QDate::fromString(QString::fromLatin1(day), Qt::ISODate), QTime(0, 0),
                             QTimeZone(Budapest));
    return predicate::Formatter::format(predicate::Expression::constant(midnight.toUTC()));
}

Predicate read(const QString& text, const QVariantList& arguments = {})
{
    return predicate::Parser::parse(text, arguments).value_or(Predicate::falsePredicate());
}

} // namespace

class tst_RelativeDates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void operations_data();
    void operations();
    void thisWeekStartsOnTheLocalesFirstDay();
    void relativeDateTokens();
    void tokensInPredicates_data();
    void tokensInPredicates();
    void recordsInPredicatesSurvive();
};

void tst_RelativeDates::operations_data()
{
    QTest::addColumn<QDateTime>("receiver");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("n");

    row("today, last second", NewYork, "2024-05-15 23:59:59", "2024-05-15 00:00:00");
    row("today, midnight skipped", SaoPaulo, "2018-11-04 10:00", "2018-11-04 01:00:00");
    row("yesterday on 1 January", Budapest, "2024-01-01 08:00", "2023-12-31 00:00:00");
    row("yesterday on 1 March, leap year", NewYork, "2024-03-01 08:00", "2024-02-29 00:00:00");
    row("lastWeek, spring change", Budapest, "2024-04-03 12:00", "2024-03-27 00:00:00");
    row("lastTwoWeeks, leap February", Budapest, "2024-03-10 12:00", "2024-02-25 00:00:00");
    row("thisMonth on the 31st", Budapest, "2024-01-31 23:30", "2024-01-01 00:00:00");
    // A day past the end of the month runs on into the next: 31 February is 3 (or 2) March.
    row("lastMonth of 31 March 2023", Budapest, "2023-03-31 10:00", "2023-03-03 00:00:00");
    row("lastMonth of 31 March 2024", Budapest, "2024-03-31 10:00", "2024-03-02 00:00:00");
    row("lastMonth of 15 January", NewYork, "2024-01-15 10:00", "2023-12-15 00:00:00");
    row("lastThreeMonths of 31 May", Budapest, "2023-05-31 10:00", "2023-03-03 00:00:00");
    row("lastThreeMonths of 15 February", Auckland, "2024-02-15 10:00", "2023-11-15 00:00:00");
    row("lastSixMonths of 31 August 2024", NewYork, "2024-08-31 10:00", "2024-03-02 00:00:00");
    row("lastSixMonths of 31 March", Budapest, "2024-03-31 10:00", "2023-10-01 00:00:00");
    row("thisYear on 31 December", NewYork, "2024-12-31 23:59:59", "2024-01-01 00:00:00");
    row("lastYear of 29 February", Budapest, "2024-02-29 10:00", "2023-03-01 00:00:00");
    row("nextYear of 29 February", Auckland, "2024-02-29 15:00", "2025-03-01 00:00:00");
    row("yearMax of 1 January", Auckland, "2024-01-01 00:00", "2024-12-31 23:59:59");
    row("fromMidnight, autumn change", Budapest, "2024-10-27 18:00", "2024-10-27 00:00:00");
    row("toMidnight, spring change", NewYork, "2024-03-10 01:00", "2024-03-10 23:59:59");
    row("toMidnight, last hour skipped", Nuuk, "2024-03-30 09:00", "2024-03-30 22:59:59");
    row("midday, spring change", Auckland, "2024-09-29 01:30", "2024-09-29 12:00:00");

    // 13 May 2024 is a Monday.
    row("thisWeek from Monday, Monday weeks", Budapest, "2024-05-13 08:00", "2024-05-13 00:00:00",
        Qt::Monday);
    row("thisWeek from Sunday, Monday weeks", Budapest, "2024-05-19 20:00", "2024-05-13 00:00:00",
        Qt::Monday);
    row("thisWeek, year end", Budapest, "2025-01-01 10:00", "2024-12-30 00:00:00", Qt::Monday);
    row("thisWeek, leap February", Auckland, "2024-03-02 10:00", "2024-02-26 00:00:00", Qt::Monday);
    row("thisWeek from Sunday, Sunday weeks", NewYork, "2024-05-19 20:00", "2024-05-19 00:00:00", Qt::Sunday);
    row("thisWeek from Saturday, Sunday weeks", NewYork, "2024-05-18 23:00", "2024-05-12 00:00:00",
        Qt::Sunday);
    row("thisWeek, Saturday weeks", Auckland, "2024-05-15 09:00", "2024-05-11 00:00:00", Qt::Saturday);

    // addDays lands at midday.
    row("addDays -1 on 1 March 2023", Budapest, "2023-03-01 08:00", "2023-02-28 12:00:00", -1);
    row("addDays -1 on 1 March 2024", NewYork, "2024-03-01 23:30", "2024-02-29 12:00:00", -1);
    row("addDays +1 on 31 December", Auckland, "2024-12-31 18:00", "2025-01-01 12:00:00", 1);
    row("addDays +30 across spring change", Auckland, "2024-09-15 09:00", "2024-10-15 12:00:00", 30);
    row("addDays -365 across leap day", Budapest, "2024-12-31 22:00", "2024-01-01 12:00:00", -365);
    row("addDays +1 onto a skipped day", Apia, "2011-12-29 10:00", "2011-12-31 00:00:00", 1);

    // addBusinessDays keeps the time of day.
    row("addBusinessDays Friday +1 is Monday", Budapest, "2024-05-17 09:30", "2024-05-20 09:30:00", 1);
    row("addBusinessDays Saturday +1 is Tuesday", Budapest, "2024-05-18 09:30", "2024-05-21 09:30:00", 1);
    row("addBusinessDays Sunday +1 is Tuesday", NewYork, "2024-05-19 16:00", "2024-05-21 16:00:00", 1);
    row("addBusinessDays Friday +10", Budapest, "2024-05-17 10:00", "2024-05-31 10:00:00", 10);
    row("addBusinessDays Saturday 0 is Monday", Budapest, "2024-05-18 15:45:30", "2024-05-20 15:45:30", 0);
    row("addBusinessDays Wednesday 0 stays", NewYork, "2024-05-15 08:00", "2024-05-15 08:00:00", 0);
    row("addBusinessDays Wednesday -3 stays", Budapest, "2024-05-15 08:00", "2024-05-15 08:00:00", -3);
    row("addBusinessDays Saturday -1 is Monday", Auckland, "2024-05-18 07:00", "2024-05-20 07:00:00", -1);
    row("addBusinessDays across spring change", Budapest, "2024-03-29 02:30", "2024-04-01 02:30:00", 1);
    row("addBusinessDays across year end", NewYork, "2021-12-31 17:00", "2022-01-03 17:00:00", 1);
    row("addBusinessDays onto skipped hour", Cairo, "2023-04-27 00:30", "2023-04-28 01:00:00", 1);

    // Receivers that are not in a named zone; Saturday 18 May 2024, 15:00.
    const QDate day(2024, 5, 18);
    const QTime time(15, 0);
    row("today, UTC", QDateTime(day, time, Qt::UTC), "2024-05-18 00:00:00");
    row("toMidnight, offset", QDateTime(day, time, Qt::OffsetFromUTC, 19800), "2024-05-18 23:59:59");
    row("addBusinessDays, offset", QDateTime(day, time, Qt::OffsetFromUTC, 19800), "2024-05-20 15:00:00", 0);
    row("lastMonth, local time", QDateTime(day, time, Qt::LocalTime), "2024-04-18 00:00:00");
}

void tst_RelativeDates::operations()
{
    QFETCH(QDateTime, receiver);
    QFETCH(QString, expected);
    QFETCH(int, n);

    QVERIFY(receiver.isValid());
    const QString name = QRegularExpression(QStringLiteral("^\\w+"))
                             .match(QString::fromLatin1(QTest::currentDataTag()))
                             .captured();
    const auto& operation = kOperations.at(name);
    const QDateTime result = operation(receiver, n);
    QCOMPARE(wallClockText(result), expected);
    QCOMPARE(result.timeSpec(), receiver.timeSpec());
    QCOMPARE(result.timeZone().id(), receiver.timeZone().id());
    QVERIFY(!operation(QDateTime(), n).isValid());
}

void tst_RelativeDates::thisWeekStartsOnTheLocalesFirstDay()
{
    // From Sunday 19 May 2024: a Sunday week in the United States, a Monday week in Hungary.
    const QDateTime sunday = wallClock(Budapest, "2024-05-19 20:00");
    const QLocale previous;
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    const QDateTime unitedStates = dates::thisWeek(sunday);
    QLocale::setDefault(QLocale(QLocale::Hungarian, QLocale::Hungary));
    const QDateTime hungary = dates::thisWeek(sunday);
    QLocale::setDefault(previous);
    QCOMPARE(wallClockText(unitedStates), QStringLiteral("2024-05-19 00:00:00"));
    QCOMPARE(wallClockText(hungary), QStringLiteral("2024-05-13 00:00:00"));
}

void tst_RelativeDates::relativeDateTokens()
{
    // Sunday 31 March 2024 in a leap year, with weeks starting on Sunday; every date at midnight.
    QStringList tokens;
    for (const auto& [token, date] :
         dates::relativeDateTokens(wallClock(Budapest, "2024-03-31 10:00"), Qt::Sunday)) {
        tokens << token + QLatin1Char(' ') + date.date().toString(Qt::ISODate);
        QCOMPARE(date.time(), QTime(0, 0));
        QCOMPARE(date.timeZone().id(), Budapest);
    }
    QCOMPARE(tokens.join(QLatin1String(", ")),
             QStringLiteral(
                 "@today 2024-03-31, @yesterday 2024-03-30, @this_week 2024-03-31, @last_week 2024-03-24, "
                 "@last_two_weeks 2024-03-17, @this_month 2024-03-01, @last_month 2024-03-02, "
                 "@last_three_months 2023-12-31, @last_six_months 2023-10-01, "
                 "@this_year 2024-01-01, @last_year 2023-03-31"));
}

void tst_RelativeDates::tokensInPredicates_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    // Without an expected text the predicate comes back as it was.
    const auto row = [](const char* name, const char* text, const QString& expected = {}) {
        const QString original = QString::fromUtf8(text);
        QTest::newRow(name) << original << (expected.isNull() ? original : expected);
    };
    // On Friday 15 March 2024, 10:30 in Budapest, with weeks starting on Monday.
    row("this month", "date_creation == \"@this_month\"",
        QStringLiteral("date_creation == ") + cast("2024-03-01"));
    row("two tokens and a plain row",
        "date_creation >= \"@last_month\" AND date_due <= \"@today\" AND type == 0",
        QStringLiteral("date_creation >= %1 AND date_due <= %2 AND type == 0")
            .arg(cast("2024-02-15"), cast("2024-03-15")));
    row("the same token twice", "date_creation == \"@this_year\" OR date_due == \"@this_year\"",
        QStringLiteral("date_creation == %1 OR date_due == %1").arg(cast("2024-01-01")));
    row("a week starting on Monday", "date_creation >= \"@this_week\"",
        QStringLiteral("date_creation >= ") + cast("2024-03-11"));
    row("token inside longer text stays text", "note CONTAINS[cd] \"see @this_month\"");
    row("no tokens", "sum_total == payments.@sum.amount AND draft == NO");
}

void tst_RelativeDates::tokensInPredicates()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    const std::optional<Predicate> replaced =
        replaceRelativeDates(read(text), wallClock(Budapest, "2024-03-15 10:30"), Qt::Monday);
    QVERIFY(replaced);
    QCOMPARE(predicate::Formatter::format(*replaced), expected);
    QVERIFY(*replaced == read(expected));
}

void tst_RelativeDates::recordsInPredicatesSurvive()
{
    const QVariant tag = QVariant::fromValue(predicate::RecordRef{QStringLiteral("Categories"), 7});
    const std::optional<Predicate> replaced = replaceRelativeDates(
        read(QStringLiteral("ANY tags == %@ AND date_creation >= \"@yesterday\""), {tag}),
        wallClock(Budapest, "2024-03-15 10:30"), Qt::Monday);
    QVERIFY(replaced);
    QVERIFY(*replaced == read(QStringLiteral("ANY tags == %@ AND date_creation >= %@"),
                              {tag, wallClock(Budapest, "2024-03-14 00:00").toUTC()}));
    // No predicate in, none out.
    QVERIFY(!replaceRelativeDates(std::nullopt));
}

QTEST_GUILESS_MAIN(tst_RelativeDates)
#include "tst_relativedates.moc"
