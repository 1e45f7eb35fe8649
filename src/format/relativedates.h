#pragma once

#include <QDateTime>
#include <QList>
#include <QLocale>
#include <QString>

// Date operations in the Gregorian calendar. Every result is built in the time zone of the date it
// is given (the user's zone in the program), so callers and tests choose the zone, the moment
// "now" and the first day of the week.
//
// Calendar arithmetic adds to one calendar field and lets the calendar normalise: day 0 is the last
// day of the month before, month 0 is December of the year before, and a day past the end of its
// month runs on into the next month (31 February is 3 March, or 2 March in a leap year).
//
// A wall-clock time that a daylight-saving jump skips stands for the first instant after the jump
// on that day (midnight skipped at 00:00 -> 01:00); when the jump runs to the end of the day, the
// last instant before it; when the whole day was skipped, the first instant of the next day.
namespace corvanta::format::dates {

// Operations stated on the moment `now`.

QDateTime today(const QDateTime& now);
QDateTime yesterday(const QDateTime& now);
// A rolling seven days back, not the previous calendar week.
QDateTime lastWeek(const QDateTime& now);
QDateTime lastTwoWeeks(const QDateTime& now);
QDateTime lastThreeMonths(const QDateTime& now);
QDateTime lastSixMonths(const QDateTime& now);
QDateTime thisYear(const QDateTime& now);
QDateTime lastYear(const QDateTime& now);

// Operations on a given date.

// The first instant of the week that contains `date`.
QDateTime thisWeek(const QDateTime& date, Qt::DayOfWeek firstDayOfWeek = QLocale().firstDayOfWeek());
QDateTime thisMonth(const QDateTime& date);
// Same day number in the month before; 31 March gives 31 February, that is 3 (or 2) March.
QDateTime lastMonth(const QDateTime& date);
QDateTime nextYear(const QDateTime& date);
QDateTime yearMin(const QDateTime& date);
QDateTime yearMax(const QDateTime& date);
QDateTime fromMidnight(const QDateTime& date);
QDateTime toMidnight(const QDateTime& date);
QDateTime midday(const QDateTime& date);
// Lands at 12:00:00, so that a daylight-saving change never moves the result to another day.
QDateTime addDays(const QDateTime& date, int n);
// Counts n business days (Monday to Friday) forward, keeping the time of day: a day counts when it
// is left behind, and a weekend arrival moves on to Monday. Friday + 1 is Monday, Saturday + 1 is
// Tuesday; n <= 0 only moves a weekend date on to Monday.
QDateTime addBusinessDays(const QDateTime& date, int n);

// A relative-date token of stored predicates (written there in double quotes) and its date.
struct RelativeDateToken
{
    QString token;
    QDateTime date;
};

// The eleven relative-date tokens, from "@today" to "@last_year", with their dates computed from
// the one moment `now`, in the order in which they are substituted.
QList<RelativeDateToken> relativeDateTokens(const QDateTime& now,
                                            Qt::DayOfWeek firstDayOfWeek = QLocale().firstDayOfWeek());

} // namespace corvanta::format::dates
