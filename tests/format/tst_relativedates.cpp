#include "format/relativedatepredicates.h"
#include "format/relativedates.h"
#include "predicate/formatter.h"
#include "predicate/parser.h"
#include "predicate/recordref.h"

#include <QTest>
#include <QTimeZone>
#include <functional>

using namespace corvanta;
using namespace corvanta::format;
using predicate::Predicate;
using Operation = std::function<QDateTime(const QDateTime&)>;
Q_DECLARE_METATYPE(Operation)

namespace {

const QByteArray Budapest("Europe/Budapest");
const QByteArray Auckland("Pacific/Auckland");
const QByteArray SaoPaulo("America/Sao_Paulo"); // skipped 00:00-01:00 on 2018-11-04
const QByteArray Nuuk("America/Nuuk");          // skipped 23:00-24:00 on 2024-03-30
const QByteArray Apia("Pacific/Apia");          // skipped the whole of 2011-12-30

// "yyyy-MM-dd HH:mm" read as a wall-clock time in `zone`; the time must exist there.
QDateTime wallClock(const QByteArray& zone, const char* text)
{
    const QString s = QString::fromLatin1(text);
    return QDateTime(QDate::fromString(s.left(10), Qt::ISODate), QTime::fromString(s.mid(11), Qt::ISODate),
                     QTimeZone(zone));
}

void row(const char* name, const Operation& operation, const QByteArray& zone, const char* date,
         const char* expected)
{
    QTest::newRow(name) << operation << wallClock(zone, date) << QString::fromLatin1(expected);
}

// An addition of `n` days.
Operation plus(QDateTime (*add)(const QDateTime&, int), int n)
{
    return [add, n](const QDateTime& date) { return add(date, n); };
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
    void relativeDateTokens();
    void tokensInPredicates_data();
    void tokensInPredicates();
};

void tst_RelativeDates::operations_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QDateTime>("receiver");
    QTest::addColumn<QString>("expected");
    using namespace dates;

    // Calendar fields, not elapsed seconds: a daylight-saving change never moves the day.
    row("today, midnight skipped", today, SaoPaulo, "2018-11-04 10:00", "2018-11-04 01:00:00");
    // A day past the end of the month runs on into the next: 29 February 2023 is 1 March.
    row("lastYear of 29 February", lastYear, Budapest, "2024-02-29 10:00", "2023-03-01 00:00:00");
    row("yearMax of 1 January", yearMax, Auckland, "2024-01-01 00:00", "2024-12-31 23:59:59");
    row("toMidnight, last hour skipped", toMidnight, Nuuk, "2024-03-30 09:00", "2024-03-30 22:59:59");
    // Without a first day, the default locale's: Saturday in Egypt.
    const auto localeWeeks = [](const QDateTime& date) {
        const QLocale previous;
        QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
        const QDateTime start = thisWeek(date);
        QLocale::setDefault(previous);
        return start;
    };
    row("thisWeek, the locale's weeks", localeWeeks, Budapest, "2024-05-15 09:00", "2024-05-11 00:00:00");

    // addDays lands at midday.
    row("addDays +30 across spring change", plus(addDays, 30), Auckland, "2024-09-15 09:00",
        "2024-10-15 12:00:00");
    row("addDays +1 onto a skipped day", plus(addDays, 1), Apia, "2011-12-29 10:00", "2011-12-31 00:00:00");

    // addBusinessDays keeps the time of day and skips weekends; 18 May 2024 is a Saturday.
    row("Friday +1 business day is Monday, across spring change", plus(addBusinessDays, 1), Budapest,
        "2024-03-29 02:30", "2024-04-01 02:30:00");
    row("Saturday +1 business day is Tuesday", plus(addBusinessDays, 1), Budapest, "2024-05-18 09:30",
        "2024-05-21 09:30:00");
    row("Wednesday -3 business days stays", plus(addBusinessDays, -3), Budapest, "2024-05-15 08:00",
        "2024-05-15 08:00:00");

    // A receiver that is not in a named zone keeps its offset.
    QTest::newRow("toMidnight, offset")
        << Operation(toMidnight) << QDateTime(QDate(2024, 5, 18), QTime(15, 0), Qt::OffsetFromUTC, 19800)
        << QStringLiteral("2024-05-18 23:59:59");
}

void tst_RelativeDates::operations()
{
    QFETCH(Operation, operation);
    QFETCH(QDateTime, receiver);
    QFETCH(QString, expected);

    QVERIFY(receiver.isValid());
    const QDateTime result = operation(receiver);
    QCOMPARE(result.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")), expected);
    QCOMPARE(result.timeSpec(), receiver.timeSpec());
    QCOMPARE(result.timeZone().id(), receiver.timeZone().id());
    QVERIFY(!operation(QDateTime()).isValid());
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
    row("two tokens and a plain row",
        "date_creation >= \"@last_month\" AND date_due <= \"@today\" AND type == 0",
        QStringLiteral("date_creation >= %1 AND date_due <= %2 AND type == 0")
            .arg(cast("2024-02-15"), cast("2024-03-15")));
    // The record bound as an argument is bound again after the dates are put in.
    row("with a record", "ANY tags == %@ AND date_creation >= \"@yesterday\"",
        QStringLiteral("ANY tags == %@ AND date_creation >= ") + cast("2024-03-14"));
    row("a week starting on Monday", "date_creation >= \"@this_week\"",
        QStringLiteral("date_creation >= ") + cast("2024-03-11"));
    row("token inside longer text stays text", "note CONTAINS[cd] \"see @this_month\"");
    row("no tokens", "sum_total == payments.@sum.amount AND draft == NO");
}

void tst_RelativeDates::tokensInPredicates()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    const QVariantList tag{QVariant::fromValue(predicate::RecordRef{QStringLiteral("Categories"), 7})};
    const std::optional<Predicate> replaced =
        replaceRelativeDates(read(text, tag), wallClock(Budapest, "2024-03-15 10:30"), Qt::Monday);
    QVERIFY(replaced);
    QCOMPARE(predicate::Formatter::format(*replaced), expected);
    QVERIFY(*replaced == read(expected, tag));
    // No predicate in, none out.
    QVERIFY(!replaceRelativeDates(std::nullopt));
}

QTEST_GUILESS_MAIN(tst_RelativeDates)
#include "tst_relativedates.moc"
