#include "../documents/documenttestsupport.h"
#include "editors/todocontroller.h"
#include "tasks/recurrence.h"

#include <QColor>
#include <QSignalSpy>

using namespace corvanta;
using namespace corvanta::documents::testing;
using corvanta::editors::ToDoController;

// The to-do editor's own part: a new to-do's values, times that keep their order, the
// recurrence values each choice needs, and its save and close question. The save rules
// themselves are tested with the to-dos.
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
    void saveAndClose();

private:
    std::unique_ptr<TestCompany> m_company;
};

void tst_ToDoController::roundedStart_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<QDateTime>("start");
    QTest::newRow("just after the hour") << at(2026, 11, 23, 10, 5) << at(2026, 11, 23, 10, 30);
    QTest::newRow("on the half hour") << at(2026, 11, 23, 10, 30) << at(2026, 11, 23, 10, 30);
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
    QCOMPARE(todo->value(s("foreground_color")).value<QColor>().name(), s("#ffffff"));
    QCOMPARE(todo->value(s("identifier")).toString().size(), 36);
    QCOMPARE(todo->value(s("repeat_summary")).toString(), QString());
    QVERIFY(!editor.isEdited());

    // A start given by the calendar is taken as it is.
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
    QCOMPARE(editor.repeatWeekdays(), QList<int>{2});
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
    editor.setRepeatEndDate(QDate(2026, 12, 24));
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

void tst_ToDoController::saveAndClose()
{
    auto editor = m_company->make<ToDoController>();
    QSignalSpy closing(&editor, &ToDoController::closeRequested);
    Record* todo = editor.newToDo();
    editor.setValue(s("title"), s("Call the printer"));
    QVERIFY(editor.isEdited());

    // Cancel keeps the window and the changes; a save without a control leaves it open.
    m_company->prompter().addAnswer(s("Cancel"));
    QVERIFY(editor.windowShouldClose() == ToDoController::CloseAnswer::KeepOpen);
    QVERIFY(editor.save(ToDoController::Sender::None));
    QCOMPARE(closing.count(), 0);
    QVERIFY(!editor.isEdited());
    QCOMPARE(m_company->count("ToDos"), 1);
    QCOMPARE(todo->value(s("created")).toDateTime(), at(2026, 11, 23, 10, 5));

    editor.setValue(s("title"), QString());
    QVERIFY(editor.save(ToDoController::Sender::Control));
    QCOMPARE(closing.count(), 1);
    Record* stored = m_company->record(todo->ref());
    QCOMPARE(stored->value(s("title")).toString(), s("No Name"));
    QCOMPARE(stored->relatedList(s("tags")).value(0)->value(s("name")).toString(), s("Pending"));

    // Changes forgotten on Don't Save never reach the store.
    editor.openToDo(stored->ref());
    editor.setValue(s("title"), s("Lunch"));
    m_company->prompter().addAnswer(s("Don't Save"));
    QVERIFY(editor.windowShouldClose() == ToDoController::CloseAnswer::Close);
    m_company->main().rollback();
    QCOMPARE(m_company->record(todo->ref())->value(s("title")).toString(), s("No Name"));
    QCOMPARE(
        m_company->asked(),
        QStringList(2, s("Save this to-do? | This to-do has not been saved and contains unsaved changes. "
                         "Would you like to save now? | Save, Don't Save, Cancel")));
}

QTEST_GUILESS_MAIN(tst_ToDoController)
#include "tst_todocontroller.moc"
