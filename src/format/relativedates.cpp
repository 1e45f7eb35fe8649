#include "relativedates.h"

#include <QTimeZone>
#include <cstdlib>
#include <numeric>

namespace corvanta::format::dates {

namespace {

constexpr int LastSecondOfDay = 24 * 60 * 60 - 1;

// Floor division, so that month -1 belongs to the year before.
int floorDiv(int value, int divisor)
{
    const int quotient = value / divisor;
    return (value % divisor != 0 && value < 0) ? quotient - 1 : quotient;
}

// `day` with the given amounts added to its calendar fields, normalised by the calendar.
QDate shifted(QDate day, int years, int months, qint64 days)
{
    if (!day.isValid())
        return {};
    const int monthIndex = day.month() - 1 + months;
    const int year = day.year() + years + floorDiv(monthIndex, 12);
    const int month = monthIndex - floorDiv(monthIndex, 12) * 12 + 1;
    return QDate(year, month, 1).addDays(day.day() - 1 + days);
}

// The wall-clock time on `day` in the zone of `zoneOf`; invalid when the zone skips that time.
QDateTime exactInstant(QDate day, QTime time, const QDateTime& zoneOf)
{
    if (zoneOf.timeSpec() == Qt::TimeZone)
        return QDateTime(day, time, zoneOf.timeZone());
    return QDateTime(day, time, zoneOf.timeSpec(), zoneOf.offsetFromUtc());
}

QDateTime exactInstantAtSecond(QDate day, int second, const QDateTime& zoneOf)
{
    return exactInstant(day, QTime::fromMSecsSinceStartOfDay(second * 1000), zoneOf);
}

// Narrows down, between a second of `day` that exists and one that was skipped, to the existing
// second next to the edge of the skipped stretch.
int edgeOfSkippedTime(QDate day, int existing, int skipped, const QDateTime& zoneOf)
{
    while (std::abs(existing - skipped) > 1) {
        const int middle = std::midpoint(existing, skipped);
        if (exactInstantAtSecond(day, middle, zoneOf).isValid())
            existing = middle;
        else
            skipped = middle;
    }
    return existing;
}

// The instant of `time` on `day` in the zone of `zoneOf`, resolving a time skipped by a
// daylight-saving jump as described in the header.
QDateTime instant(QDate day, QTime time, const QDateTime& zoneOf)
{
    if (!zoneOf.isValid() || !day.isValid() || !time.isValid())
        return {};
    const QDateTime exact = exactInstant(day, time, zoneOf);
    if (exact.isValid())
        return exact;
    const int skipped = time.msecsSinceStartOfDay() / 1000;
    for (const int bound : {LastSecondOfDay, 0}) {
        if (exactInstantAtSecond(day, bound, zoneOf).isValid())
            return exactInstantAtSecond(day, edgeOfSkippedTime(day, bound, skipped, zoneOf), zoneOf);
    }
    return instant(day.addDays(1), QTime(0, 0), zoneOf);
}

QDateTime startOfDay(QDate day, const QDateTime& zoneOf)
{
    return instant(day, QTime(0, 0), zoneOf);
}

// The date part of `date` after adding to its calendar fields.
QDateTime datePart(const QDateTime& date, int years, int months, int days)
{
    return startOfDay(shifted(date.date(), years, months, days), date);
}

bool isWeekend(QDate day)
{
    return day.dayOfWeek() == Qt::Saturday || day.dayOfWeek() == Qt::Sunday;
}

} // namespace

QDateTime today(const QDateTime& now)
{
    return datePart(now, 0, 0, 0);
}

QDateTime yesterday(const QDateTime& now)
{
    return datePart(now, 0, 0, -1);
}

QDateTime lastWeek(const QDateTime& now)
{
    return datePart(now, 0, 0, -7);
}

QDateTime lastTwoWeeks(const QDateTime& now)
{
    return datePart(now, 0, 0, -14);
}

QDateTime lastThreeMonths(const QDateTime& now)
{
    return datePart(now, 0, -3, 0);
}

QDateTime lastSixMonths(const QDateTime& now)
{
    return datePart(now, 0, -6, 0);
}

QDateTime thisYear(const QDateTime& now)
{
    return yearMin(now);
}

QDateTime lastYear(const QDateTime& now)
{
    return datePart(now, -1, 0, 0);
}

QDateTime thisWeek(const QDateTime& date, Qt::DayOfWeek firstDayOfWeek)
{
    const int daysIntoWeek = (date.date().dayOfWeek() - firstDayOfWeek + 7) % 7;
    return datePart(date, 0, 0, -daysIntoWeek);
}

QDateTime thisMonth(const QDateTime& date)
{
    return startOfDay(QDate(date.date().year(), date.date().month(), 1), date);
}

QDateTime lastMonth(const QDateTime& date)
{
    return datePart(date, 0, -1, 0);
}

QDateTime nextYear(const QDateTime& date)
{
    return datePart(date, 1, 0, 0);
}

QDateTime yearMin(const QDateTime& date)
{
    return startOfDay(QDate(date.date().year(), 1, 1), date);
}

QDateTime yearMax(const QDateTime& date)
{
    return instant(QDate(date.date().year(), 12, 31), QTime(23, 59, 59), date);
}

QDateTime fromMidnight(const QDateTime& date)
{
    return startOfDay(date.date(), date);
}

QDateTime toMidnight(const QDateTime& date)
{
    return instant(date.date(), QTime(23, 59, 59), date);
}

QDateTime midday(const QDateTime& date)
{
    return instant(date.date(), QTime(12, 0), date);
}

QDateTime addDays(const QDateTime& date, int n)
{
    return instant(shifted(date.date(), 0, 0, n), QTime(12, 0), date);
}

QDateTime addBusinessDays(const QDateTime& date, int n)
{
    if (!date.isValid())
        return {};
    QDate day = date.date();
    for (int counted = 0; counted < n; day = day.addDays(1)) {
        if (!isWeekend(day))
            ++counted;
    }
    while (isWeekend(day))
        day = day.addDays(1);
    return instant(day, date.time(), date);
}

QList<RelativeDateToken> relativeDateTokens(const QDateTime& now, Qt::DayOfWeek firstDayOfWeek)
{
    return {
        {QStringLiteral("@today"), today(now)},
        {QStringLiteral("@yesterday"), yesterday(now)},
        {QStringLiteral("@this_week"), thisWeek(now, firstDayOfWeek)},
        {QStringLiteral("@last_week"), lastWeek(now)},
        {QStringLiteral("@last_two_weeks"), lastTwoWeeks(now)},
        {QStringLiteral("@this_month"), thisMonth(now)},
        {QStringLiteral("@last_month"), lastMonth(now)},
        {QStringLiteral("@last_three_months"), lastThreeMonths(now)},
        {QStringLiteral("@last_six_months"), lastSixMonths(now)},
        {QStringLiteral("@this_year"), thisYear(now)},
        {QStringLiteral("@last_year"), lastYear(now)},
    };
}

} // namespace corvanta::format::dates
