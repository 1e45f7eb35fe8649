#include "model/todosrecord.h"
#include "tasks/repeatevents.h"
#include "taskstestsupport.h"

#include <QColor>

using namespace corvanta;
using namespace corvanta::tasks::testing;

class tst_Recurrence : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_company->main().rollback(); }
    void summary_data();
    void summary();
    void summaryIsStored_data();
    void summaryIsStored();
    void expansion_data();
    void expansion();
    void entryText_data();
    void entryText();

private:
    std::unique_ptr<ToDoCompany> m_company;
};

void tst_Recurrence::initTestCase()
{
    useBerlinTime();
    m_company = std::make_unique<ToDoCompany>();
}

void tst_Recurrence::summary_data()
{
    QTest::addColumn<Values>("values");
    QTest::addColumn<Values>("then"); // set one by one after the first values
    QTest::addColumn<QString>("expected");

    const auto row = [](const char* name, const Values& values, const char* expected,
                        const Values& then = {}) { QTest::newRow(name) << values << then << s(expected); };
    const auto every = [](int frequency, Values more = {}) {
        more[s("repeat_frequency")] = frequency;
        return more;
    };
    const Values byWeekday{{s("repeat_monthly_day_of"), 1}};
    const QDateTime nov10 = at(2026, 11, 10, 9); // the second Tuesday of November
    row("daily", recurring(1, nov10), "Daily");
    row("every 3 days", recurring(1, nov10, {}, every(3)), "Every 3 days");
    row("weekly on one day", recurring(2, nov10, {}, weekdays({2})), "Weekly on Monday");
    row("every 2 weeks, days named Sunday first", recurring(2, nov10, {}, weekdays({6, 2, 4}, every(2))),
        "Every 2 weeks on Monday, Wednesday, Friday");
    row("weekly without days", recurring(2, nov10), "Weekly on Sunday");
    row("monthly by day", recurring(3, at(2026, 1, 31, 9)), "Monthly on day 31");
    row("fifth weekday is the last", recurring(3, at(2026, 1, 30, 9), {}, byWeekday),
        "Monthly on the last Friday");
    row("any day-of but 0 is by weekday, Sunday",
        recurring(3, at(2026, 11, 1, 9), {}, {{s("repeat_monthly_day_of"), 2}}),
        "Monthly on the first Sunday");
    row("annually on 29 February", recurring(4, at(2024, 2, 29, 9)), "Annually on February 29");
    row("every 2 years", recurring(4, nov10, {}, every(2)), "Every 2 years");
    row("count shows the frequency", recurring(2, nov10, {}, counted(5, weekdays({3}, every(2)))),
        "Every 2 weeks on Tuesday, 2 times");
    row("until a date", recurring(1, nov10, at(2026, 12, 31), {{s("repeat_end_type"), 2}}),
        "Daily, until 12/31/26");
    row("end date without its end type", recurring(1, nov10, at(2026, 12, 31)), "Daily");
    row("unknown type", recurring(5, nov10), "");
    // Each setter rebuilds the summary of a to-do every 2 months on the second Tuesday, 3 times.
    const Values monthly = recurring(3, nov10, at(2027, 1, 31), counted(3, every(2, byWeekday)));
    row("by weekday, 3 times", monthly, "Every 2 months on the second Tuesday, 2 times");
    row("type set", monthly, "Every 2 days, 2 times", {{s("repeat_type"), 1}});
    row("frequency set", monthly, "Monthly on the second Tuesday, 1 times", every(1));
    row("day of set", monthly, "Every 2 months on day 10, 2 times", {{s("repeat_monthly_day_of"), 0}});
    row("end type set", monthly, "Every 2 months on the second Tuesday, until 1/31/27",
        {{s("repeat_end_type"), 2}});
    row("start set", monthly, "Every 2 months on the fourth Tuesday, 2 times",
        {{s("date_start"), at(2026, 11, 24, 9)}});
}

void tst_Recurrence::summary()
{
    QFETCH(Values, values);
    QFETCH(Values, then);
    QFETCH(QString, expected);
    Record* todo = m_company->todo(values);
    for (auto it = then.begin(); it != then.end(); ++it)
        todo->setValue(it.key(), it.value());
    QCOMPARE(todo->value(s("repeat_summary")).toString(), expected);
}

void tst_Recurrence::summaryIsStored_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("stored"); // the summary written over the record's own
    QTest::addColumn<QVariant>("read");

    // A summary made under another language is corrected when the to-do is read; a missing one
    // with nothing to summarise stays missing, so that reading changes nothing.
    QTest::newRow("weekly") << 2 << QVariant(s("Hebdomadaire")) << QVariant(s("Weekly on Monday, Friday"));
    QTest::newRow("not recurring, no summary") << 0 << QVariant() << QVariant();
}

void tst_Recurrence::summaryIsStored()
{
    QFETCH(int, type);
    QFETCH(QVariant, stored);
    QFETCH(QVariant, read);
    Record* todo = m_company->todo(
        {{s("repeat_type"), type}, {s("repeat_frequency"), 1}, {s("repeat_weekdays"), QVariantList{2, 6}}});
    todo->setValue(s("repeat_summary"), stored);
    model::testing::saveOrFail(m_company->main());
    const predicate::RecordRef ref = todo->ref();
    m_company->reopen();
    const Record* fetched = m_company->main().fetchRecord(s("ToDos"), ref);
    QVERIFY(fetched);
    QCOMPARE(fetched->value(s("repeat_summary")), read);
    QCOMPARE(m_company->main().hasChanges(), read != stored);
}

void tst_Recurrence::expansion_data()
{
    QTest::addColumn<Values>("values");
    QTest::addColumn<QDate>("reference");
    QTest::addColumn<QString>("starts");

    const auto row = [](const char* name, const Values& values, const QDate& reference, const char* starts) {
        QTest::newRow(name) << values << reference << s(starts);
    };
    const QVariant noEnd;

    // Fixed steps of 86400 seconds: the wall-clock hour follows the change of the clocks.
    row("daily across the spring change", recurring(1, at(2026, 3, 27, 10), at(2026, 3, 31)),
        QDate(2026, 3, 28), "2026-03-27 10:00, 2026-03-28 10:00, 2026-03-29 11:00, 2026-03-30 11:00");
    row("daily across the autumn change", recurring(1, at(2026, 10, 24, 10), at(2026, 10, 27)),
        QDate(2026, 10, 24), "2026-10-24 10:00, 2026-10-25 09:00, 2026-10-26 09:00");
    row("daily, frequency 0", recurring(1, at(2026, 5, 1, 9), noEnd, {{s("repeat_frequency"), 0}}),
        QDate(2026, 5, 1), "");
    row("every 3 days, 2 times",
        recurring(1, at(2026, 5, 1, 9), noEnd, counted(2, {{s("repeat_frequency"), 3}})), QDate(2026, 5, 1),
        "2026-05-01 09:00, 2026-05-04 09:00");
    row("no occurrences allowed", recurring(1, at(2026, 5, 1, 9), noEnd, counted(0)), QDate(2026, 5, 1), "");
    row("end date equal to the start", recurring(1, at(2026, 5, 1, 9), at(2026, 5, 1, 9)), QDate(2026, 5, 1),
        "");
    row("weekly, frequency 2 recurs every week",
        recurring(2, at(2026, 6, 1, 8), at(2026, 6, 23), weekdays({2}, {{s("repeat_frequency"), 2}})),
        QDate(2026, 6, 1), "2026-06-01 08:00, 2026-06-08 08:00, 2026-06-15 08:00, 2026-06-22 08:00");
    row("weekly, start on another weekday",
        recurring(2, at(2026, 6, 5, 8), at(2026, 6, 15), weekdays({1, 4})), QDate(2026, 6, 5),
        "2026-06-07 08:00, 2026-06-10 08:00, 2026-06-14 08:00");
    row("weekly, 5 times counts occurrences, not days",
        recurring(2, at(2026, 6, 1, 8), noEnd, counted(5, weekdays({2, 4, 6}))), QDate(2026, 6, 1),
        "2026-06-01 08:00, 2026-06-03 08:00, 2026-06-05 08:00, 2026-06-08 08:00, 2026-06-10 08:00");
    // Occurrences before the window are written too; only its end limits the list.
    row("monthly on the 31st skips short months", recurring(3, at(2026, 1, 31, 9), at(2026, 9, 1)),
        QDate(2026, 8, 1),
        "2026-01-31 09:00, 2026-03-31 10:00, 2026-05-31 10:00, 2026-07-31 10:00, 2026-08-31 10:00");
    row("fifth Friday recurs on the last Friday",
        recurring(3, at(2026, 1, 30, 12), at(2026, 6, 1), {{s("repeat_monthly_day_of"), 1}}),
        QDate(2026, 4, 15),
        "2026-01-30 12:00, 2026-02-27 12:00, 2026-03-27 12:00, 2026-04-24 13:00, 2026-05-29 13:00");
    row("29 February in leap years only", recurring(4, at(2024, 2, 29, 10)), QDate(2028, 2, 1),
        "2024-02-29 10:00, 2028-02-29 10:00");
    // A start on the window's first moment is passed over once without counting a day: the later
    // events come one step early, and the last one before the end is lost.
    row("daily start on the window's start", recurring(1, at(2026, 5, 1), at(2026, 5, 4)), QDate(2026, 6, 20),
        "2026-05-01 00:00, 2026-05-02 00:00");
    row("weekly start on the window's start lands a day early",
        recurring(2, at(2026, 5, 1), at(2026, 5, 10), weekdays({6})), QDate(2026, 6, 20), "2026-05-07 00:00");
    row("start a minute after the window's start",
        recurring(2, at(2026, 5, 1, 0, 1), at(2026, 5, 10), weekdays({6})), QDate(2026, 6, 20),
        "2026-05-01 00:01, 2026-05-08 00:01");
}

void tst_Recurrence::expansion()
{
    QFETCH(Values, values);
    QFETCH(QDate, reference);
    QFETCH(QString, starts);
    const QString events = tasks::repeatEvents(m_company->todo(values), reference);
    QCOMPARE(eventStarts(events), starts);
    // Every event is one entry with its trailing comma, nothing between them.
    QCOMPARE(events.count(s("editable:false},")), events.count(s("{id:'")));
}

void tst_Recurrence::entryText_data()
{
    QTest::addColumn<Values>("values");
    QTest::addColumn<QString>("expected");

    const Values once = recurring(1, at(2026, 6, 1, 8), {},
                                  {{s("identifier"), s("todo-1")},
                                   {s("date_end"), at(2026, 6, 1, 9, 30)},
                                   {s("repeat_end_type"), 1},
                                   {s("repeat_occurrences"), 1}});
    Values apostrophe = once;
    apostrophe.insert(Values{{s("title"), s("Bob's 100% \"list\"")},
                             {s("background_color"), QColor(255, 128, 0)},
                             {s("foreground_color"), QColor(0x10, 0x20, 0x30)}});
    QTest::newRow("apostrophe and colours")
        << apostrophe
        << s("{id:'todo-1', title:'Bob\\'s 100% \"list\"', start:'2026-06-01 08:00', end:'2026-06-01 09:30', "
             "backgroundColor:'#FF8000', borderColor:'#FF8000', textColor:'#102030', allDay:false, "
             "editable:false},");
    Values allDay = once;
    allDay.insert(Values{{s("title"), s("%1 day")}, {s("all_day"), true}, {s("date_end"), QVariant()}});
    QTest::newRow("all day, no colours, no end")
        << allDay
        << s("{id:'todo-1', title:'%1 day', start:'2026-06-01 08:00', end:'2026-06-01 08:00', "
             "backgroundColor:'#3A87AD', borderColor:'#3A87AD', textColor:'#FFFFFF', allDay:true, "
             "editable:false},");
}

void tst_Recurrence::entryText()
{
    QFETCH(Values, values);
    QFETCH(QString, expected);
    QCOMPARE(tasks::repeatEvents(m_company->todo(values), QDate(2026, 6, 1)), expected);
}

QTEST_GUILESS_MAIN(tst_Recurrence)
#include "tst_recurrence.moc"
