#include "recurrence.h"

#include "store/record.h"

namespace corvanta::tasks {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

constexpr qint64 kDay = 86400;

} // namespace

Recurrence::Recurrence(const store::Record* todo)
{
    const qint64 type = todo->value(s("repeat_type")).toLongLong();
    m_type = type >= Daily && type <= Yearly ? int(type) : 0;
    m_frequency = todo->value(s("repeat_frequency")).toLongLong();
    for (const QVariant& weekday : todo->value(s("repeat_weekdays")).toList()) {
        const int number = weekday.toInt();
        if (number >= 1 && number <= 7 && !m_weekdays.contains(number))
            m_weekdays << number;
    }
    m_byWeekday = todo->value(s("repeat_monthly_day_of")).toLongLong() != 0;
    const QVariant start = todo->value(s("date_start"));
    if (!start.isNull()) {
        m_start = start.toDateTime().toUTC();
        m_startDate = m_start.toLocalTime().date();
    }
    const qint64 endType = todo->value(s("repeat_end_type")).toLongLong();
    m_endType = endType == 1 || endType == 2 ? int(endType) : 0;
    m_occurrences = todo->value(s("repeat_occurrences")).toLongLong();
    const QVariant endDate = todo->value(s("repeat_end_date"));
    if (!endDate.isNull())
        m_endDate = endDate.toDateTime().toUTC();
}

bool Recurrence::recurs() const
{
    if (m_type == 0 || !m_start.isValid())
        return false;
    if (m_type == Daily)
        return m_frequency >= 1;
    if (m_type == Weekly)
        return !m_weekdays.isEmpty();
    return true;
}

bool Recurrence::matches(const QDateTime& position) const
{
    const QDate date = position.toLocalTime().date();
    switch (m_type) {
    case Daily:
        return true;
    case Weekly:
        return m_weekdays.contains(weekdayNumber(date));
    case Monthly: {
        if (!m_byWeekday)
            return date.day() == m_startDate.day();
        const int ordinal = weekdayOrdinal(m_startDate);
        const bool sameWeekday = date.dayOfWeek() == m_startDate.dayOfWeek();
        // A start on a fifth weekday recurs on the last such weekday of every month: a fourth
        // one counts when a week later is already another month.
        if (ordinal == 5 && weekdayOrdinal(date) == 4)
            return sameWeekday && date.addDays(7).month() != date.month();
        return sameWeekday && weekdayOrdinal(date) == ordinal;
    }
    case Yearly:
        return date.month() == m_startDate.month() && date.day() == m_startDate.day();
    }
    return false;
}

void Recurrence::forEachOccurrence(const QDateTime& windowStart, const QDateTime& windowEnd,
                                   const std::function<bool(qint64)>& occurrence) const
{
    if (!recurs() || (m_endDate && m_start >= *m_endDate))
        return;
    // Daily steps by the frequency in days; every other type looks at each day in turn.
    const qint64 dayStep = m_type == Daily ? m_frequency : 1;
    qint64 seconds = 0;
    if (qMulOverflow(dayStep, kDay, &seconds))
        seconds = std::numeric_limits<qint64>::max();
    QDateTime cursor = m_start;
    qint64 counter = 1;
    qint64 offset = 0;
    // A step beyond the dates QDateTime can hold makes the cursor invalid: the walk is over.
    while (cursor.isValid() && (!m_endDate || cursor < *m_endDate)) {
        if (windowStart.isValid() && cursor <= windowStart && windowStart <= m_start) {
            cursor = cursor.addSecs(seconds);
            continue;
        }
        if (m_endType == 1 && counter > m_occurrences)
            return;
        if (windowEnd.isValid() && cursor >= windowEnd)
            return;
        if (matches(cursor)) {
            if (!occurrence(offset))
                return;
            ++counter;
        }
        cursor = cursor.addSecs(seconds);
        offset += dayStep;
    }
}

} // namespace corvanta::tasks
