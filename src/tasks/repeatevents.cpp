#include "repeatevents.h"

#include "recurrence.h"
#include "store/record.h"

#include <QColor>

namespace corvanta::tasks {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// A stored colour as "#RRGGBB"; `fallback` for a to-do that has none.
QString colourText(const QVariant& value, const char* fallback)
{
    const QColor colour = value.value<QColor>();
    return value.isNull() || !colour.isValid() ? s(fallback) : colour.name(QColor::HexRgb).toUpper();
}

QString shiftedTime(const QDateTime& moment, qint64 offset)
{
    return moment.addSecs(offset * 86400).toLocalTime().toString(s("yyyy-MM-dd HH:mm"));
}

} // namespace

QString repeatEvents(const store::Record* todo, const QDate& referenceDate)
{
    const Recurrence recurrence(todo);
    if (!recurrence.recurs())
        return {};
    const QDateTime day = referenceDate.startOfDay();
    const QDateTime windowStart = day.addDays(-50);
    const QDateTime windowEnd = day.addDays(50);

    const QString identifier = todo->value(s("identifier")).toString();
    const QString title = todo->value(s("title")).toString().replace(QLatin1Char('\''), s("\\'"));
    // Colours the calendar draws a to-do with that was never given any: white on blue.
    const QString background = colourText(todo->value(s("background_color")), "#3A87AD");
    const QString foreground = colourText(todo->value(s("foreground_color")), "#FFFFFF");
    const QString allDay = todo->value(s("all_day")).toBool() ? s("true") : s("false");
    const QDateTime start = recurrence.start();
    // A to-do without an end is drawn as ending when it starts.
    const QVariant storedEnd = todo->value(s("date_end"));
    const QDateTime end = storedEnd.isNull() ? start : storedEnd.toDateTime();

    QString events;
    recurrence.forEachOccurrence(windowStart, windowEnd, [&](qint64 offset) {
        // One pass of arg(): a title holding "%1" stays as it is.
        events += s("{id:'%1', title:'%2', start:'%3', end:'%4', backgroundColor:'%5', borderColor:'%5', "
                    "textColor:'%6', allDay:%7, editable:false},")
                      .arg(identifier, title, shiftedTime(start, offset), shiftedTime(end, offset),
                           background, foreground, allDay);
        return true;
    });
    return events;
}

} // namespace corvanta::tasks
