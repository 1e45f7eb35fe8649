#pragma once

#include "recordeditor.h"

#include <QDateTime>

namespace corvanta::editors {

// The to-do editor without its window: one to-do in its own editing context, the changes its
// controls make (times that keep their order, the recurrence with the values each kind needs, the
// optional client and item), and the rules of its save. Nothing is handed to an open document.
class ToDoController : public RecordEditor
{
    Q_OBJECT

public:
    // The colours of a new to-do in the calendar.
    static QColor defaultBackground();
    static QColor defaultForeground();

    ToDoController(store::Store& store, support::Prompter& prompter,
                   documents::Clock clock = documents::systemClock(), QObject* parent = nullptr);
    ~ToDoController() override;

    // A new to-do an hour long from `start`, or from the clock's time rounded up to the next
    // half hour when `start` is not valid.
    store::Record* newToDo(const QDateTime& start = {});
    // The stored to-do in this editor's context, or null.
    store::Record* openToDo(const predicate::RecordRef& todo);
    store::Record* todo() const { return m_record; }

    // The moment a new to-do starts when none is given: the next full or half hour.
    static QDateTime roundedStart(const QDateTime& now);

    // Plain values of the to-do (title, notes, colours, done ...): set and marked as edited.
    void setValue(const QString& key, const QVariant& value);

    // A new start moves the end with it, keeping the to-do's length; an end before the start is
    // taken as the start.
    void setStart(const QDateTime& start);
    void setEnd(const QDateTime& end);
    void setAllDay(bool allDay);
    // Marks the to-do done or pending, with the to-dos' tag of its new state.
    void setDone(bool done);

    // The client and item the to-do is about; null unlinks. Suggestions for typed text, by name.
    void setClient(store::Record* client);
    void setItem(store::Record* item);
    QList<store::Record*> clientSuggestions(const QString& text);
    QList<store::Record*> itemSuggestions(const QString& text);
    // The one client or item named exactly `text`, or null.
    store::Record* clientNamed(const QString& text);
    store::Record* itemNamed(const QString& text);

    // 0 for none, or Recurrence::Daily … Yearly. A weekly to-do without weekdays recurs on its
    // start's weekday; a to-do that stops recurring loses its end.
    void setRepeatType(int type);
    void setRepeatFrequency(qint64 frequency);
    // Weekday numbers 1 Sunday … 7 Saturday; a weekly to-do keeps at least one.
    void setRepeatWeekday(int weekday, bool on);
    QList<int> repeatWeekdays() const;
    // By the start's day of the month (false), or by its weekday and ordinal week (true).
    void setRepeatByWeekday(bool byWeekday);
    // 0 never, 1 after a number of occurrences, 2 on a date. Ending never clears the end date,
    // which would otherwise still stop the recurrence; the other ends get a value when they have
    // none: 10 occurrences, or a year after the start.
    void setRepeatEndType(int endType);
    void setRepeatOccurrences(qint64 occurrences);
    // The recurrence ends with the given day: its occurrences on that day still count.
    void setRepeatEndDate(const QDate& date);

protected:
    void prepareSave() override;
    void handOver(DocumentController& openDocument) override;
};

} // namespace corvanta::editors
