#include "recurrencerule.h"

#include "recurrence.h"

#include <QStringList>

namespace corvanta::tasks {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

constexpr qint64 kDay = 86400;

const char* const kWeekdayCodes[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};

// The last date whose position (at the start's time of day) still comes before `end`.
QDate lastDateBefore(const QDateTime& start, const QDateTime& end)
{
    const QDateTime localEnd = end.toLocalTime();
    return start.toLocalTime().time() < localEnd.time() ? localEnd.date() : localEnd.date().addDays(-1);
}

// A day of the month as an RRULE counts it (1 … 31, or -1 … -31 from the month's end), moved
// back by `shift` days; a move past the month's edge lands on the neighbouring month's edge.
int movedDay(int day, qint64 shift)
{
    const int moved = day - int(shift);
    return moved != 0 ? moved : (day > 0 ? -1 : 1);
}

QString dayList(const QList<int>& days)
{
    QStringList texts;
    for (const int day : days)
        texts << QString::number(day);
    return texts.join(QLatin1Char(','));
}

// The months that have a day `day` (29 counts February, which has it in leap years).
QString monthsWithDay(int day)
{
    QList<int> months;
    for (int month = 1; month <= 12; ++month) {
        if (QDate(2024, month, 1).daysInMonth() >= day)
            months << month;
    }
    return dayList(months);
}

// The monthly or yearly rule's parts after FREQ. `shift` is how many days the local date of an
// occurrence is ahead of the date the rule is read in (UTC for timed to-dos): 0, or 1 for a time
// just after local midnight east of Greenwich, -1 just before it west of Greenwich. The days
// move with it, exactly but for these: a start on the 29th (shift 1), on the 28th to 30th
// (shift -1), on the fourth weekday (shift -1, in a February of 28 days), and yearly on
// 28 or 29 February.
QStringList dateParts(const Recurrence& recurrence, qint64 shift)
{
    const QDate start = recurrence.startDate();
    const int weekday = Recurrence::weekdayNumber(start) - 1; // 0 Sunday
    if (recurrence.type() == Recurrence::Yearly) {
        if (shift == 1 && start.day() == 1) // the last day of the month before
            return {s("BYMONTH=%1").arg(start.addMonths(-1).month()), s("BYMONTHDAY=-1")};
        const QDate day = start.addDays(-shift);
        return {s("BYMONTH=%1").arg(day.month()), s("BYMONTHDAY=%1").arg(day.day())};
    }
    if (recurrence.byWeekday()) {
        const int ordinal = Recurrence::weekdayOrdinal(start);
        if (shift == 0)
            return {s("BYDAY=%1%2").arg(ordinal == 5 ? -1 : ordinal).arg(s(kWeekdayCodes[weekday]))};
        // The seven days the weekday can fall on, as they read in the rule's dates.
        QList<int> days;
        for (int i = 0; i < 7; ++i)
            days << movedDay(ordinal == 5 ? i - 7 : 7 * ordinal - 6 + i, shift);
        return {s("BYDAY=") + s(kWeekdayCodes[((weekday - shift) % 7 + 7) % 7]),
                s("BYMONTHDAY=") + dayList(days)};
    }
    const int day = start.day();
    if (shift == 1 && day >= 29) // only in the months that have the local day
        return {s("BYMONTH=") + monthsWithDay(day == 29 ? 30 : day), s("BYMONTHDAY=%1").arg(day - 1)};
    if (shift == -1 && day == 31) // the first day after each month of 31 days
        return {s("BYMONTH=2,4,6,8,9,11,1"), s("BYMONTHDAY=1")};
    return {s("BYMONTHDAY=%1").arg(movedDay(day, shift))};
}

} // namespace

// Our walk steps by 86400 seconds from the start, so timed series are written in UTC, where
// the readers step the same way across daylight-saving changes; all-day ones as dates. The
// series begins at the first occurrence, which for a weekly to-do need not be the start
// itself: readers differ on whether a start that the rule does not match is an occurrence.
// The rule's days are read in the time the series is written in: for a timed to-do they move by
// the difference between the first occurrence's local and UTC dates (a start at 00:30 in Berlin
// is 23:30 the day before in UTC). A start within an hour of midnight whose difference changes
// with daylight saving time recurs a day off in other programs for part of the year.
RecurrenceRule::RecurrenceRule(const Recurrence& recurrence, bool allDay)
{
    if (!recurrence.recurs())
        return;
    const bool counted = recurrence.endType() == 1;
    qint64 first = -1;
    qint64 found = 0;
    // Counting up to the end date tells whether the count or the date ends the series; without
    // an end date only the first occurrence is needed.
    const bool walkToEnd = counted && recurrence.endDate();
    recurrence.forEachOccurrence({}, {}, [&](qint64 offset) {
        if (first < 0)
            first = offset;
        ++found;
        return walkToEnd;
    });
    if (first < 0)
        return; // no occurrence at all
    m_firstOffset = first;

    const QDateTime firstStart = recurrence.start().addSecs(first * kDay);
    const qint64 shift = allDay ? 0 : firstStart.toUTC().date().daysTo(firstStart.toLocalTime().date());
    QStringList parts;
    switch (recurrence.type()) {
    case Recurrence::Daily:
        parts << s("FREQ=DAILY") << s("INTERVAL=%1").arg(recurrence.frequency());
        break;
    case Recurrence::Weekly: {
        QStringList days;
        for (const int weekday : recurrence.weekdays())
            days << s(kWeekdayCodes[((weekday - 1 - shift) % 7 + 7) % 7]);
        parts << s("FREQ=WEEKLY") << s("BYDAY=") + days.join(QLatin1Char(','));
        break;
    }
    case Recurrence::Monthly:
        parts << s("FREQ=MONTHLY") << dateParts(recurrence, shift);
        break;
    case Recurrence::Yearly:
        parts << s("FREQ=YEARLY") << dateParts(recurrence, shift);
        break;
    }
    if (counted && (!recurrence.endDate() || found == recurrence.occurrences())) {
        parts << s("COUNT=%1").arg(recurrence.occurrences());
    } else if (const std::optional<QDateTime>& end = recurrence.endDate()) {
        // Our last occurrence comes before the end date; UNTIL names the last one allowed.
        parts << (allDay ? s("UNTIL=") + lastDateBefore(recurrence.start(), *end).toString(s("yyyyMMdd"))
                         : s("UNTIL=") + end->addSecs(-1).toUTC().toString(s("yyyyMMdd'T'HHmmss'Z'")));
    }
    m_rule = parts.join(QLatin1Char(';'));
}

} // namespace corvanta::tasks
