#include "model/todosrecord.h"
#include "tasks/repeatevents.h"
#include "taskstestsupport.h"

#include <QColor>
#include <QTest>

using namespace corvanta;
using namespace corvanta::tasks::testing;

using Values = QVariantMap;

class tst_Recurrence : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void summary_data();
    void summary();
    void summaryFollowsEachSetter_data();
    void summaryFollowsEachSetter();
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
    QVERIFY2(at(2026, 7, 1, 12).offsetFromUtc() == 7200, "the time zone Europe/Berlin is missing (tzdata)");
    m_company = std::make_unique<ToDoCompany>();
}

void tst_Recurrence::summary_data()
{
    QTest::addColumn<Values>("values");
    QTest::addColumn<QString>("expected");

    const auto recurring = [](int type, int frequency, Values more = {}) {
        more[s("repeat_type")] = type;
        more[s("repeat_frequency")] = frequency;
        return more;
    };
    const QVariant start = at(2026, 11, 10, 9); // the second Tuesday of November
    QTest::newRow("daily") << recurring(1, 1) << s("Daily");
    QTest::newRow("every 3 days") << recurring(1, 3) << s("Every 3 days");
    QTest::newRow("weekly on one day")
        << recurring(2, 1, {{s("repeat_weekdays"), QVariantList{2}}}) << s("Weekly on Monday");
    QTest::newRow("every 2 weeks, days named Sunday first")
        << recurring(2, 2, {{s("repeat_weekdays"), QVariantList{6, 2, 4}}})
        << s("Every 2 weeks on Monday, Wednesday, Friday");
    QTest::newRow("weekly without days") << recurring(2, 1) << s("Weekly on Sunday");
    QTest::newRow("monthly by day") << recurring(3, 1, {{s("date_start"), at(2026, 1, 31, 9)}})
                                    << s("Monthly on day 31");
    QTest::newRow("every 2 months by weekday")
        << recurring(3, 2, {{s("date_start"), start}, {s("repeat_monthly_day_of"), 1}})
        << s("Every 2 months on the second Tuesday");
    QTest::newRow("fourth weekday") << recurring(3, 1,
                                                 {{s("date_start"), at(2026, 1, 23, 9)},
                                                  {s("repeat_monthly_day_of"), 1}})
                                    << s("Monthly on the fourth Friday");
    QTest::newRow("fifth weekday is the last")
        << recurring(3, 1, {{s("date_start"), at(2026, 1, 30, 9)}, {s("repeat_monthly_day_of"), 1}})
        << s("Monthly on the last Friday");
    QTest::newRow("monthly by weekday on the first Sunday")
        << recurring(3, 1, {{s("date_start"), at(2026, 11, 1, 9)}, {s("repeat_monthly_day_of"), 2}})
        << s("Monthly on the first Sunday");
    QTest::newRow("annually") << recurring(4, 1, {{s("date_start"), at(2024, 2, 29, 9)}})
                              << s("Annually on February 29");
    QTest::newRow("every 2 years") << recurring(4, 2, {{s("date_start"), start}}) << s("Every 2 years");
    QTest::newRow("count shows the frequency")
        << recurring(1, 3, {{s("repeat_end_type"), 1}, {s("repeat_occurrences"), 3}})
        << s("Every 3 days, 3 times");
    QTest::newRow("five occurrences, frequency 2") << recurring(2, 2,
                                                                {{s("repeat_weekdays"), QVariantList{3}},
                                                                 {s("repeat_end_type"), 1},
                                                                 {s("repeat_occurrences"), 5}})
                                                   << s("Every 2 weeks on Tuesday, 2 times");
    QTest::newRow("until a date") << recurring(2, 1,
                                               {{s("repeat_weekdays"), QVariantList{2}},
                                                {s("repeat_end_type"), 2},
                                                {s("repeat_end_date"), at(2026, 12, 31)}})
                                  << s("Weekly on Monday, until 12/31/26");
    QTest::newRow("end date without its end type")
        << recurring(1, 1, {{s("repeat_end_type"), 0}, {s("repeat_end_date"), at(2026, 12, 31)}})
        << s("Daily");
    QTest::newRow("not recurring") << recurring(0, 1, {{s("date_start"), start}}) << QString();
    QTest::newRow("unknown type") << recurring(5, 1, {{s("date_start"), start}}) << QString();
}

void tst_Recurrence::summary()
{
    QFETCH(Values, values);
    QFETCH(QString, expected);
    Record* todo = m_company->todo(values);
    QCOMPARE(todo->value(s("repeat_summary")).toString(), expected);
    m_company->main().rollback();
}

void tst_Recurrence::summaryFollowsEachSetter_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("expected");

    // Each row changes one value of a monthly to-do on the second Tuesday, every 2 months,
    // 3 times, by weekday.
    QTest::newRow("type") << s("repeat_type") << QVariant(1) << s("Every 2 days, 2 times");
    QTest::newRow("frequency") << s("repeat_frequency") << QVariant(1)
                               << s("Monthly on the second Tuesday, 1 times");
    QTest::newRow("monthly day of") << s("repeat_monthly_day_of") << QVariant(0)
                                    << s("Every 2 months on day 10, 2 times");
    QTest::newRow("end type") << s("repeat_end_type") << QVariant(2)
                              << s("Every 2 months on the second Tuesday, until 1/31/27");
    QTest::newRow("start") << s("date_start") << QVariant(at(2026, 11, 24, 9))
                           << s("Every 2 months on the fourth Tuesday, 2 times");
}

void tst_Recurrence::summaryFollowsEachSetter()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(QString, expected);
    Record* todo = m_company->todo({{s("date_start"), at(2026, 11, 10, 9)},
                                    {s("repeat_type"), 3},
                                    {s("repeat_frequency"), 2},
                                    {s("repeat_monthly_day_of"), 1},
                                    {s("repeat_end_type"), 1},
                                    {s("repeat_occurrences"), 3},
                                    {s("repeat_end_date"), at(2027, 1, 31)}});
    QCOMPARE(todo->value(s("repeat_summary")).toString(), s("Every 2 months on the second Tuesday, 2 times"));
    todo->setValue(key, value);
    QCOMPARE(todo->value(s("repeat_summary")).toString(), expected);
    m_company->main().rollback();
}

void tst_Recurrence::summaryIsStored_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("stored"); // the summary written over the record's own
    QTest::addColumn<QVariant>("read");

    // A summary made under another language is corrected when the to-do is read; a missing
    // one with nothing to summarise stays missing, so that reading changes nothing.
    QTest::newRow("weekly") << 2 << QVariant(s("Hebdomadaire")) << QVariant(s("Weekly on Monday, Friday"));
    QTest::newRow("not recurring, no summary") << 0 << QVariant() << QVariant();
}

void tst_Recurrence::summaryIsStored()
{
    QFETCH(int, type);
    QFETCH(QVariant, stored);
    QFETCH(QVariant, read);
    Record* todo = m_company->todo({{s("title"), s("Weekly call")},
                                    {s("repeat_type"), type},
                                    {s("repeat_frequency"), 1},
                                    {s("repeat_weekdays"), QVariantList{2, 6}}});
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
    QTest::addColumn<QStringList>("starts");

    const auto todo = [](int type, const QDateTime& start, const QVariant& endDate, Values more = {}) {
        more[s("repeat_type")] = type;
        more[s("date_start")] = start;
        more[s("date_end")] = start.addSecs(3600);
        more[s("repeat_end_date")] = endDate;
        if (!more.contains(s("repeat_frequency")))
            more[s("repeat_frequency")] = 1;
        return more;
    };
    const QVariant noEnd;
    const auto weekdays = [](QVariantList days) { return Values{{s("repeat_weekdays"), days}}; };
    const auto byWeekday = Values{{s("repeat_monthly_day_of"), 1}};

    // Fixed steps of 86400 seconds: the wall-clock hour follows the change of the clocks.
    QTest::newRow("daily across the spring change")
        << todo(1, at(2026, 3, 27, 10), at(2026, 3, 31)) << QDate(2026, 3, 28)
        << QStringList{s("2026-03-27 10:00"), s("2026-03-28 10:00"), s("2026-03-29 11:00"),
                       s("2026-03-30 11:00")};
    QTest::newRow("daily across the autumn change")
        << todo(1, at(2026, 10, 23, 10), at(2026, 10, 27)) << QDate(2026, 10, 24)
        << QStringList{s("2026-10-23 10:00"), s("2026-10-24 10:00"), s("2026-10-25 09:00"),
                       s("2026-10-26 09:00")};
    QTest::newRow("daily, frequency 0") << todo(1, at(2026, 5, 1, 9), noEnd, {{s("repeat_frequency"), 0}})
                                        << QDate(2026, 5, 1) << QStringList();
    QTest::newRow("daily, negative frequency")
        << todo(1, at(2026, 5, 1, 9), noEnd, {{s("repeat_frequency"), -1}}) << QDate(2026, 5, 1)
        << QStringList();
    QTest::newRow("every 3 days, 2 times, no end date")
        << todo(1, at(2026, 5, 1, 9), noEnd,
                {{s("repeat_frequency"), 3}, {s("repeat_end_type"), 1}, {s("repeat_occurrences"), 2}})
        << QDate(2026, 5, 1) << QStringList{s("2026-05-01 09:00"), s("2026-05-04 09:00")};
    QTest::newRow("every 20 days up to the window's end")
        << todo(1, at(2026, 5, 1, 9), noEnd, {{s("repeat_frequency"), 20}}) << QDate(2026, 5, 1)
        << QStringList{s("2026-05-01 09:00"), s("2026-05-21 09:00"), s("2026-06-10 09:00")};
    QTest::newRow("weekly, frequency 2 recurs every week")
        << todo(2, at(2026, 6, 1, 8), at(2026, 6, 23),
                {{s("repeat_weekdays"), QVariantList{2}}, {s("repeat_frequency"), 2}})
        << QDate(2026, 6, 1)
        << QStringList{s("2026-06-01 08:00"), s("2026-06-08 08:00"), s("2026-06-15 08:00"),
                       s("2026-06-22 08:00")};
    QTest::newRow("weekly, start on another weekday")
        << todo(2, at(2026, 6, 5, 8), at(2026, 6, 15), weekdays({1, 4})) << QDate(2026, 6, 5)
        << QStringList{s("2026-06-07 08:00"), s("2026-06-10 08:00"), s("2026-06-14 08:00")};
    QTest::newRow("weekly, 5 times") << todo(2, at(2026, 6, 1, 8), noEnd,
                                             {{s("repeat_weekdays"), QVariantList{2, 4, 6}},
                                              {s("repeat_end_type"), 1},
                                              {s("repeat_occurrences"), 5},
                                              {s("repeat_frequency"), 2}})
                                     << QDate(2026, 6, 1)
                                     << QStringList{s("2026-06-01 08:00"), s("2026-06-03 08:00"),
                                                    s("2026-06-05 08:00"), s("2026-06-08 08:00"),
                                                    s("2026-06-10 08:00")};
    QTest::newRow("weekly without weekdays")
        << todo(2, at(2026, 6, 1, 8), noEnd) << QDate(2026, 6, 1) << QStringList();
    // Occurrences before the window are written too; only its end limits the list.
    QTest::newRow("monthly on the 31st skips short months")
        << todo(3, at(2026, 1, 31, 9), at(2026, 9, 1)) << QDate(2026, 8, 1)
        << QStringList{s("2026-01-31 09:00"), s("2026-03-31 10:00"), s("2026-05-31 10:00"),
                       s("2026-07-31 10:00"), s("2026-08-31 10:00")};
    QTest::newRow("fifth Friday recurs on the last Friday")
        << todo(3, at(2026, 1, 30, 12), at(2026, 6, 1), byWeekday) << QDate(2026, 4, 15)
        << QStringList{s("2026-01-30 12:00"), s("2026-02-27 12:00"), s("2026-03-27 12:00"),
                       s("2026-04-24 13:00"), s("2026-05-29 13:00")};
    QTest::newRow("second Tuesday up to the window's end")
        << todo(3, at(2026, 11, 10, 9), at(2027, 2, 1), byWeekday) << QDate(2026, 12, 1)
        << QStringList{s("2026-11-10 09:00"), s("2026-12-08 09:00"), s("2027-01-12 09:00")};
    QTest::newRow("29 February in leap years only")
        << todo(4, at(2024, 2, 29, 10), noEnd) << QDate(2028, 2, 1)
        << QStringList{s("2024-02-29 10:00"), s("2028-02-29 10:00")};
    QTest::newRow("end date equal to the start")
        << todo(1, at(2026, 5, 1, 9), at(2026, 5, 1, 9)) << QDate(2026, 5, 1) << QStringList();
    QTest::newRow("start after the window")
        << todo(1, at(2026, 8, 1, 9), noEnd) << QDate(2026, 5, 1) << QStringList();
    QTest::newRow("no occurrences allowed")
        << todo(1, at(2026, 5, 1, 9), noEnd, {{s("repeat_end_type"), 1}, {s("repeat_occurrences"), 0}})
        << QDate(2026, 5, 1) << QStringList();
    QTest::newRow("not recurring") << todo(0, at(2026, 5, 1, 9), noEnd) << QDate(2026, 5, 1) << QStringList();
    // A start on the window's first moment is passed over once without counting a day: the
    // later events come one step early, and the last one before the end is lost.
    QTest::newRow("daily start on the window's start")
        << todo(1, at(2026, 5, 1), at(2026, 5, 4)) << QDate(2026, 6, 20)
        << QStringList{s("2026-05-01 00:00"), s("2026-05-02 00:00")};
    QTest::newRow("weekly start on the window's start lands a day early")
        << todo(2, at(2026, 5, 1), at(2026, 5, 10), weekdays({6})) << QDate(2026, 6, 20)
        << QStringList{s("2026-05-07 00:00")};
    QTest::newRow("start a minute after the window's start")
        << todo(2, at(2026, 5, 1, 0, 1), at(2026, 5, 10), weekdays({6})) << QDate(2026, 6, 20)
        << QStringList{s("2026-05-01 00:01"), s("2026-05-08 00:01")};
}

void tst_Recurrence::expansion()
{
    QFETCH(Values, values);
    QFETCH(QDate, reference);
    QFETCH(QStringList, starts);
    const Record* todo = m_company->todo(values);
    const QString events = tasks::repeatEvents(todo, reference);
    QCOMPARE(eventStarts(events), starts);
    // Every event is one entry with its trailing comma, nothing between them.
    QCOMPARE(events.count(s("editable:false},")), starts.size());
    QVERIFY(events.isEmpty() || (events.startsWith(s("{id:'")) && events.endsWith(s("},"))));
    m_company->main().rollback();
}

void tst_Recurrence::entryText_data()
{
    QTest::addColumn<Values>("values");
    QTest::addColumn<QString>("expected");

    const Values once{{s("identifier"), s("todo-1")},
                      {s("date_start"), at(2026, 6, 1, 8)},
                      {s("date_end"), at(2026, 6, 1, 9, 30)},
                      {s("repeat_type"), 1},
                      {s("repeat_frequency"), 1},
                      {s("repeat_end_type"), 1},
                      {s("repeat_occurrences"), 1}};
    Values apostrophe = once;
    apostrophe[s("title")] = s("Bob's 100% \"list\"");
    apostrophe[s("background_color")] = QColor(255, 128, 0);
    apostrophe[s("foreground_color")] = QColor(0x10, 0x20, 0x30);
    QTest::newRow("apostrophe and colours")
        << apostrophe
        << s("{id:'todo-1', title:'Bob\\'s 100% \"list\"', start:'2026-06-01 08:00', end:'2026-06-01 09:30', "
             "backgroundColor:'#FF8000', borderColor:'#FF8000', textColor:'#102030', allDay:false, "
             "editable:false},");
    Values allDay = once;
    allDay[s("title")] = s("%1 day");
    allDay[s("all_day")] = true;
    allDay.remove(s("date_end"));
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
    const Record* todo = m_company->todo(values);
    QCOMPARE(tasks::repeatEvents(todo, QDate(2026, 6, 1)), expected);
    m_company->main().rollback();
}

QTEST_GUILESS_MAIN(tst_Recurrence)
#include "tst_recurrence.moc"
