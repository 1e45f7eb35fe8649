#include "../documents/documenttestsupport.h"
#include "editors/todocontroller.h"
#include "tasks/recurrence.h"

#include <QColor>

using namespace corvanta;
using namespace corvanta::documents::testing;
using corvanta::editors::ToDoController;

// A new to-do's values, times that keep their order and the recurrence values each choice needs.
class tst_ToDoController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_company = std::make_unique<TestCompany>(at(2026, 11, 23, 10, 5)); }
    void roundedStart_data();
    void roundedStart();
    void newToDo();
    void times();
    void recurrenceValues();
    void endsOnTheChosenDay();

private:
    std::unique_ptr<TestCompany> m_company;
};

void tst_ToDoController::roundedStart_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<QDateTime>("start");
    QTest::newRow("just after the hour") << at(2026, 11, 23, 10, 5) << at(2026, 11, 23, 10, 30);
    QTest::newRow("seconds past the half hour")
        << at(2026, 11, 23, 10, 30).addSecs(1) << at(2026, 11, 23, 11, 0);
    QTest::newRow("late evening") << at(2026, 12, 31, 23, 45) << at(2027, 1, 1, 0, 0);
}

void tst_ToDoController::roundedStart()
{
    QFETCH(QDateTime, now);
    QFETCH(QDateTime, start);
    QCOMPARE(ToDoController::roundedStart(now), start);
}

void tst_ToDoController::newToDo()
{
    auto editor = m_company->make<ToDoController>();
    Record* todo = editor.newToDo();
    QCOMPARE(todo->value(s("date_start")).toDateTime(), at(2026, 11, 23, 10, 30));
    QCOMPARE(todo->value(s("date_end")).toDateTime(), at(2026, 11, 23, 11, 30));
    QCOMPARE(todo->value(s("background_color")).value<QColor>().name(), s("#3a87ad"));
    QCOMPARE(todo->value(s("identifier")).toString().size(), 36);
    QVERIFY(!editor.isEdited());

    todo = editor.newToDo(at(2026, 12, 1, 14, 10));
    QCOMPARE(todo->value(s("date_end")).toDateTime(), at(2026, 12, 1, 15, 10));
}

void tst_ToDoController::times()
{
    auto editor = m_company->make<ToDoController>();
    Record* todo = editor.newToDo(at(2026, 12, 1, 9, 0));
    editor.setEnd(at(2026, 12, 1, 11, 30));
    editor.setStart(at(2026, 12, 2, 8, 0));
    QCOMPARE(todo->value(s("date_end")).toDateTime(), at(2026, 12, 2, 10, 30));
    editor.setEnd(at(2026, 12, 1, 8, 0));
    QCOMPARE(todo->value(s("date_end")).toDateTime(), at(2026, 12, 2, 8, 0));
    QVERIFY(editor.isEdited());
}

void tst_ToDoController::recurrenceValues()
{
    auto editor = m_company->make<ToDoController>();
    Record* todo = editor.newToDo(at(2026, 11, 23, 9, 0)); // a Monday
    todo->setValue(s("repeat_frequency"), QVariant());

    editor.setRepeatType(tasks::Recurrence::Weekly);
    QCOMPARE(todo->value(s("repeat_frequency")).toLongLong(), 1);
    editor.setRepeatWeekday(6, true);
    editor.setRepeatWeekday(2, false);
    editor.setRepeatWeekday(6, false); // the last one stays
    QCOMPARE(editor.repeatWeekdays(), QList<int>{6});
    QCOMPARE(todo->value(s("repeat_summary")).toString(), s("Weekly on Friday"));

    editor.setRepeatEndType(2);
    QCOMPARE(todo->value(s("repeat_end_date")).toDateTime().date(), QDate(2027, 11, 23));
    editor.setRepeatEndType(1);
    QCOMPARE(todo->value(s("repeat_occurrences")).toLongLong(), 10);
    // Ending never must not leave a date behind, which would still stop the walk.
    editor.setRepeatEndType(0);
    QVERIFY(todo->value(s("repeat_end_date")).isNull());
    QCOMPARE(todo->value(s("repeat_summary")).toString(), s("Weekly on Friday"));

    // Without a recurrence, an end left behind would still be summarised.
    editor.setRepeatEndType(1);
    editor.setRepeatType(0);
    QCOMPARE(todo->value(s("repeat_end_type")).toLongLong(), 0);
    QCOMPARE(todo->value(s("repeat_summary")).toString(), QString());
}

void tst_ToDoController::endsOnTheChosenDay()
{
    auto editor = m_company->make<ToDoController>();
    Record* todo = editor.newToDo(at(2026, 11, 23, 18, 0));
    editor.setRepeatType(tasks::Recurrence::Daily);
    editor.setRepeatEndType(2);
    editor.setRepeatEndDate(QDate(2026, 11, 27));
    QList<qint64> offsets;
    tasks::Recurrence(todo).forEachOccurrence({}, {}, [&](qint64 offset) {
        offsets << offset;
        return offsets.size() < 100;
    });
    QCOMPARE(offsets, (QList<qint64>{0, 1, 2, 3, 4}));
}

QTEST_GUILESS_MAIN(tst_ToDoController)
#include "tst_todocontroller.moc"
