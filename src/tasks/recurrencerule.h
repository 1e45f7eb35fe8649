#pragma once

#include <QString>

namespace corvanta::tasks {

class Recurrence;

// A recurrence in iCalendar's terms: the day its series begins and the RRULE value that gives
// the same occurrences as the calendar here. Timed series are read in UTC, where other programs
// step by whole days of 86400 seconds as the calendar does; all-day ones in local dates.
class RecurrenceRule
{
public:
    RecurrenceRule(const Recurrence& recurrence, bool allDay);

    // Days from `date_start` to the first occurrence, where the series begins, so that no
    // reader takes a start the rule does not match for an occurrence.
    qint64 firstOffset() const { return m_firstOffset; }
    // The RRULE value ("FREQ=WEEKLY;BYDAY=MO,WE;COUNT=5"); empty for a to-do with no
    // occurrence, which is written as a single entry.
    const QString& rule() const { return m_rule; }

private:
    qint64 m_firstOffset = 0;
    QString m_rule;
};

} // namespace corvanta::tasks
