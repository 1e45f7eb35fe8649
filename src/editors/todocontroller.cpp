#include "todocontroller.h"

#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "support/uuid.h"
#include "tasks/recurrence.h"
#include "tasks/tododone.h"
#include "tasks/todosaving.h"

#include <QColor>
#include <algorithm>

namespace corvanta::editors {

using documents::Clock;
using store::FetchRequest;
using store::Record;
using store::SortDescriptor;
using tasks::Recurrence;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

constexpr qint64 kDefaultOccurrences = 10;

} // namespace

QColor ToDoController::defaultBackground()
{
    return QColor(0x3A, 0x87, 0xAD);
}

QColor ToDoController::defaultForeground()
{
    return QColor(Qt::white);
}

ToDoController::ToDoController(store::Store& store, support::Prompter& prompter, Clock clock, QObject* parent)
    : RecordEditor(
          store, prompter, std::move(clock), s("ToDos"),
          {tr("Save this to-do?"),
           tr("This to-do has not been saved and contains unsaved changes. Would you like to save now?")},
          parent)
{}

ToDoController::~ToDoController() = default;

QDateTime ToDoController::roundedStart(const QDateTime& now)
{
    const QTime time = now.time();
    const int minutes = time.hour() * 60 + time.minute();
    const bool onTheMark = time.second() == 0 && time.msec() == 0 && minutes % 30 == 0;
    const int rounded = onTheMark ? minutes : (minutes / 30 + 1) * 30;
    return QDateTime(now.date(), QTime(0, 0)).addSecs(qint64(rounded) * 60);
}

Record* ToDoController::newToDo(const QDateTime& start)
{
    const QDateTime from = start.isValid() ? start : roundedStart(m_clock());
    return editNew({{s("date_start"), from},
                    {s("date_end"), from.addSecs(3600)},
                    {s("all_day"), false},
                    {s("done"), false},
                    {s("repeat_type"), qint64(0)},
                    {s("repeat_frequency"), qint64(1)},
                    {s("repeat_monthly_day_of"), qint64(0)},
                    {s("repeat_end_type"), qint64(0)},
                    {s("background_color"), defaultBackground()},
                    {s("foreground_color"), defaultForeground()},
                    {s("identifier"), support::UUID()}});
}

Record* ToDoController::openToDo(const predicate::RecordRef& todo)
{
    return editStored(todo);
}

void ToDoController::setValue(const QString& key, const QVariant& value)
{
    if (!m_record || m_record->value(key) == value)
        return;
    m_record->setValue(key, value);
    markEdited();
}

void ToDoController::setStart(const QDateTime& start)
{
    if (!m_record || !start.isValid())
        return;
    const QDateTime oldStart = m_record->value(s("date_start")).toDateTime();
    const QDateTime oldEnd = m_record->value(s("date_end")).toDateTime();
    const qint64 length =
        oldStart.isValid() && oldEnd.isValid() ? std::max<qint64>(0, oldStart.secsTo(oldEnd)) : 3600;
    setValue(s("date_start"), start);
    setValue(s("date_end"), start.addSecs(length));
}

void ToDoController::setEnd(const QDateTime& end)
{
    if (!m_record || !end.isValid())
        return;
    const QDateTime start = m_record->value(s("date_start")).toDateTime();
    setValue(s("date_end"), start.isValid() && end < start ? start : end);
}

void ToDoController::setAllDay(bool allDay)
{
    setValue(s("all_day"), allDay);
}

void ToDoController::setDone(bool done)
{
    if (!m_record || m_record->value(s("done")).toBool() == done)
        return;
    tasks::ToDoDone::toggle(m_record);
    markEdited();
}

void ToDoController::setClient(Record* client)
{
    if (!m_record || m_record->related(s("client")) == client)
        return;
    m_record->setRelated(s("client"), client);
    markEdited();
}

void ToDoController::setItem(Record* item)
{
    if (!m_record || m_record->related(s("item")) == item)
        return;
    m_record->setRelated(s("item"), item);
    markEdited();
}

QList<Record*> ToDoController::clientSuggestions(const QString& text)
{
    return m_context->fetch(FetchRequest(s("Clients"), predicate::literal("full_name CONTAINS[c] %@", {text}),
                                         {SortDescriptor::localized(s("full_name"))}));
}

QList<Record*> ToDoController::itemSuggestions(const QString& text)
{
    return m_context->fetch(FetchRequest(s("Items"), predicate::literal("name CONTAINS[c] %@", {text}),
                                         {SortDescriptor::localized(s("name"))}));
}

Record* ToDoController::clientNamed(const QString& text)
{
    const QList<Record*> matches =
        m_context->fetch(FetchRequest(s("Clients"), predicate::literal("full_name == %@", {text})));
    return matches.size() == 1 ? matches.first() : nullptr;
}

Record* ToDoController::itemNamed(const QString& text)
{
    const QList<Record*> matches =
        m_context->fetch(FetchRequest(s("Items"), predicate::literal("name == %@", {text})));
    return matches.size() == 1 ? matches.first() : nullptr;
}

void ToDoController::setRepeatType(int type)
{
    if (!m_record)
        return;
    setValue(s("repeat_type"), qint64(type));
    // A to-do that does not recur has nothing to end.
    if (type < Recurrence::Daily || type > Recurrence::Yearly) {
        setRepeatEndType(0);
        return;
    }
    if (type == Recurrence::Weekly && repeatWeekdays().isEmpty()) {
        const QDateTime start = m_record->value(s("date_start")).toDateTime();
        if (start.isValid())
            setRepeatWeekday(Recurrence::weekdayNumber(start.toLocalTime().date()), true);
    }
    if (m_record->value(s("repeat_frequency")).toLongLong() < 1)
        setValue(s("repeat_frequency"), qint64(1));
}

void ToDoController::setRepeatFrequency(qint64 frequency)
{
    setValue(s("repeat_frequency"), std::max<qint64>(1, frequency));
}

QList<int> ToDoController::repeatWeekdays() const
{
    QList<int> days;
    if (!m_record)
        return days;
    for (const QVariant& day : m_record->value(s("repeat_weekdays")).toList()) {
        const int number = day.toInt();
        if (number >= 1 && number <= 7 && !days.contains(number))
            days << number;
    }
    std::sort(days.begin(), days.end());
    return days;
}

void ToDoController::setRepeatWeekday(int weekday, bool on)
{
    if (!m_record || weekday < 1 || weekday > 7)
        return;
    QList<int> days = repeatWeekdays();
    if (on == days.contains(weekday))
        return;
    if (on) {
        days << weekday;
        std::sort(days.begin(), days.end());
    } else {
        // A weekly to-do with no weekday would never occur.
        if (days.size() == 1 && m_record->value(s("repeat_type")).toLongLong() == Recurrence::Weekly)
            return;
        days.removeAll(weekday);
    }
    QVariantList values;
    for (const int day : std::as_const(days))
        values << day;
    setValue(s("repeat_weekdays"), values);
}

void ToDoController::setRepeatByWeekday(bool byWeekday)
{
    setValue(s("repeat_monthly_day_of"), qint64(byWeekday ? 1 : 0));
}

void ToDoController::setRepeatEndType(int endType)
{
    if (!m_record)
        return;
    setValue(s("repeat_end_type"), qint64(endType));
    if (endType == 1) {
        if (m_record->value(s("repeat_occurrences")).toLongLong() < 1)
            setValue(s("repeat_occurrences"), kDefaultOccurrences);
        setValue(s("repeat_end_date"), QVariant());
    } else if (endType == 2) {
        if (m_record->value(s("repeat_end_date")).isNull()) {
            const QDateTime start = m_record->value(s("date_start")).toDateTime();
            setRepeatEndDate((start.isValid() ? start : m_clock()).toLocalTime().date().addYears(1));
        }
    } else {
        setValue(s("repeat_end_date"), QVariant());
    }
}

void ToDoController::setRepeatOccurrences(qint64 occurrences)
{
    setValue(s("repeat_occurrences"), std::max<qint64>(1, occurrences));
}

void ToDoController::setRepeatEndDate(const QDate& date)
{
    if (date.isValid())
        setValue(s("repeat_end_date"), QDateTime(date, QTime(23, 59, 59)));
}

void ToDoController::prepareSave()
{
    tasks::ToDoSaving(m_clock).apply(m_record);
}

void ToDoController::handOver(DocumentController& openDocument)
{
    // A to-do goes into no document.
    Q_UNUSED(openDocument)
}

} // namespace corvanta::editors
