#include "icalendarexport.h"

#include "recurrence.h"
#include "recurrencerule.h"
#include "store/record.h"
#include "support/safefile.h"
#include "support/uuid.h"

#include <libical/ical.h>
#include <optional>

namespace corvanta::tasks {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

constexpr qint64 kDay = 86400;

icaltimetype utcTime(const QDateTime& moment)
{
    return icaltime_from_timet_with_zone(time_t(moment.toSecsSinceEpoch()), 0,
                                         icaltimezone_get_utc_timezone());
}

icaltimetype dateValue(const QDate& date)
{
    icaltimetype value = icaltime_null_date();
    value.year = date.year();
    value.month = date.month();
    value.day = date.day();
    return value;
}

icalcomponent* todoComponent(const Record* todo, const QDateTime& stamp)
{
    icalcomponent* component = icalcomponent_new(ICAL_VTODO_COMPONENT);
    const auto text = [todo](const char* key) { return todo->value(s(key)).toString().toUtf8(); };
    QByteArray uid = text("identifier");
    if (uid.isEmpty()) // a to-do saved before identifiers were given
        uid = support::UUID().toUtf8();
    icalcomponent_add_property(component, icalproperty_new_uid(uid.constData()));
    icalcomponent_add_property(component, icalproperty_new_dtstamp(utcTime(stamp)));
    icalcomponent_add_property(component, icalproperty_new_summary(text("title").constData()));
    if (const QByteArray desc = text("desc"); !desc.isEmpty())
        icalcomponent_add_property(component, icalproperty_new_description(desc.constData()));
    if (const QVariant created = todo->value(s("created")); !created.isNull())
        icalcomponent_add_property(component, icalproperty_new_created(utcTime(created.toDateTime())));
    const bool done = todo->value(s("done")).toBool();
    icalcomponent_add_property(
        component, icalproperty_new_status(done ? ICAL_STATUS_COMPLETED : ICAL_STATUS_NEEDSACTION));
    if (done)
        icalcomponent_add_property(component, icalproperty_new_percentcomplete(100));

    const QVariant startValue = todo->value(s("date_start"));
    if (startValue.isNull())
        return component;
    const bool allDay = todo->value(s("all_day")).toBool();
    const Recurrence recurrence(todo);
    const RecurrenceRule repeat(recurrence, allDay);
    const qint64 shift = repeat.firstOffset() * kDay;
    const QDateTime start = startValue.toDateTime().addSecs(shift);
    const QVariant endValue = todo->value(s("date_end"));
    const std::optional<QDateTime> end =
        endValue.isNull() ? std::nullopt : std::optional(endValue.toDateTime().addSecs(shift));
    if (allDay) {
        const QDate first = start.toLocalTime().date();
        icalcomponent_add_property(component, icalproperty_new_dtstart(dateValue(first)));
        // An all-day to-do is due at the end of its last day: the day after it, as with DTEND.
        const QDate last = end ? std::max(end->toLocalTime().date(), first) : first;
        icalcomponent_add_property(component, icalproperty_new_due(dateValue(last.addDays(1))));
    } else {
        icalcomponent_add_property(component, icalproperty_new_dtstart(utcTime(start)));
        // DUE must come after the start; a to-do that ends when it starts has none.
        if (end && *end > start)
            icalcomponent_add_property(component, icalproperty_new_due(utcTime(*end)));
    }
    if (!repeat.rule().isEmpty()) {
        const icalrecurrencetype rule = icalrecurrencetype_from_string(repeat.rule().toLatin1().constData());
        icalcomponent_add_property(component, icalproperty_new_rrule(rule));
    }
    return component;
}

} // namespace

ICalendarExport::ICalendarExport(QDateTime stamp)
    : m_stamp(std::move(stamp))
{}

// VTODO rather than VEVENT: these are to-dos with a done state, which only a VTODO can carry
// (STATUS:COMPLETED); Evolution, Thunderbird and GNOME's programs show recurring VTODOs with
// their start and due dates. RFC 5545 allows no DTEND in a VTODO, so the end is its DUE.
QByteArray ICalendarExport::calendar(const QList<const Record*>& todos) const
{
    icalcomponent* calendar = icalcomponent_new(ICAL_VCALENDAR_COMPONENT);
    icalcomponent_add_property(calendar, icalproperty_new_prodid("-//Corvanta//Corvanta//EN"));
    icalcomponent_add_property(calendar, icalproperty_new_version("2.0"));
    for (const Record* todo : todos)
        icalcomponent_add_component(calendar, todoComponent(todo, m_stamp));
    char* text = icalcomponent_as_ical_string_r(calendar);
    const QByteArray result(text);
    icalmemory_free_buffer(text);
    icalcomponent_free(calendar);
    return result;
}

bool ICalendarExport::write(const QList<const Record*>& todos, const QString& path, QString* error) const
{
    QString why;
    if (support::writeFileSafely(path, calendar(todos), &why))
        return true;
    *error = tr("The calendar could not be written to \"%1\": %2").arg(path, why);
    return false;
}

} // namespace corvanta::tasks
