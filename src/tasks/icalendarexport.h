#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QDateTime>
#include <QList>

namespace corvanta::store {
class Record;
}

namespace corvanta::tasks {

// To-dos as an iCalendar file (RFC 5545) that other calendar programs read: one VTODO each, with
// its identifier as UID, title, description, start, end (as DUE), creation date, state, and its
// recurrence as an RRULE that gives the occurrences our own calendar shows.
class ICalendarExport
{
    Q_DECLARE_TR_FUNCTIONS(ICalendarExport)

public:
    // `stamp` is written as each entry's DTSTAMP, the moment the file was made.
    explicit ICalendarExport(QDateTime stamp = QDateTime::currentDateTimeUtc());

    // The calendar's text.
    QByteArray calendar(const QList<const store::Record*>& todos) const;
    // Writes the calendar to `path` whole or not at all; false with `error` set on failure.
    bool write(const QList<const store::Record*>& todos, const QString& path, QString* error) const;

private:
    QDateTime m_stamp;
};

} // namespace corvanta::tasks
