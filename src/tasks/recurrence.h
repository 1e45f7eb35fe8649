#pragma once

#include <QDateTime>
#include <QList>
#include <functional>
#include <optional>

namespace corvanta::store {
class Record;
}

namespace corvanta::tasks {

// The recurrence of one to-do as read from its record: which positions of a cursor that walks
// from `date_start` in fixed steps of 86400 seconds are occurrences, and where the walk ends.
// The calendar's events and the iCalendar export both walk it, so they cannot disagree.
class Recurrence
{
public:
    enum Type { Daily = 1, Weekly = 2, Monthly = 3, Yearly = 4 };

    explicit Recurrence(const store::Record* todo);

    // Whether the walk can find an occurrence at all: a known type, a start, a daily frequency
    // of at least 1 (a smaller one would never move the cursor forward) and, for a weekly
    // to-do, at least one weekday 1 … 7.
    bool recurs() const;

    // Calls `occurrence` with the day offset of each occurrence, in order, until it returns
    // false or the walk ends: at `repeat_end_date`, after `repeat_occurrences` when the end
    // type is 1, or at the first position at or after `windowEnd` when that is valid. A valid
    // `windowStart` applies the calendar's lower-window rule: a position that is at or before
    // it while it is at or before the start is passed over without counting a day.
    // An occurrence starts at `date_start` plus offset × 86400 seconds.
    void forEachOccurrence(const QDateTime& windowStart, const QDateTime& windowEnd,
                           const std::function<bool(qint64 offset)>& occurrence) const;

    // Whether the cursor's position is an occurrence by the type's rule (local dates).
    bool matches(const QDateTime& position) const;

    int type() const { return m_type; }
    qint64 frequency() const { return m_frequency; }
    // The weekdays 1 Sunday … 7 Saturday of a weekly to-do, without numbers outside that range.
    const QList<int>& weekdays() const { return m_weekdays; }
    bool byWeekday() const { return m_byWeekday; }
    const QDateTime& start() const { return m_start; }
    // The local date of `date_start`.
    const QDate& startDate() const { return m_startDate; }
    int endType() const { return m_endType; }
    qint64 occurrences() const { return m_occurrences; }
    // A missing `repeat_end_date` is read as no end: the walk then stops at the window's end.
    const std::optional<QDateTime>& endDate() const { return m_endDate; }

    // The weekday number of a date, 1 Sunday … 7 Saturday.
    static int weekdayNumber(const QDate& date) { return date.dayOfWeek() % 7 + 1; }
    // The ordinal of a date's weekday in its month: 1 for days 1 … 7, up to 5 for days 29 … 31.
    static int weekdayOrdinal(const QDate& date) { return (date.day() - 1) / 7 + 1; }

private:
    int m_type = 0;
    qint64 m_frequency = 0;
    QList<int> m_weekdays;
    bool m_byWeekday = false;
    QDateTime m_start;
    QDate m_startDate;
    int m_endType = 0;
    qint64 m_occurrences = 0;
    std::optional<QDateTime> m_endDate;
};

} // namespace corvanta::tasks
