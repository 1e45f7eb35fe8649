#include "store/storeerror.h"
#include "tasks/icalendarexport.h"
#include "tasks/repeatevents.h"
#include "tasks/tododone.h"
#include "tasks/todosaving.h"
#include "taskstestsupport.h"

#include <libical/ical.h>

using namespace corvanta;
using namespace corvanta::tasks::testing;

class tst_ToDos : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_company->main().rollback(); }
    void stateRules_data();
    void stateRules();
    void exportMatchesCalendar_data();
    void exportMatchesCalendar();
    void exportedEntry();

private:
    std::unique_ptr<ToDoCompany> m_company;
};

void tst_ToDos::initTestCase()
{
    useBerlinTime();
    m_company = std::make_unique<ToDoCompany>();
    m_company->main().insertRecord(s("Categories"), {{s("name"), s("Urgent")}, {s("type"), 4}});
    model::testing::saveOrFail(m_company->main());
}

void tst_ToDos::stateRules_data()
{
    QTest::addColumn<bool>("toggle"); // toggles `done` instead of saving
    QTest::addColumn<Values>("values");
    QTest::addColumn<QString>("tags"); // "Pending", "Done" or the user's "Urgent"
    QTest::addColumn<Values>("then");
    QTest::addColumn<QString>("thenTags");

    const auto row = [](const char* name, bool toggle, const Values& values, const char* tags,
                        const Values& then, const char* thenTags) {
        QTest::newRow(name) << toggle << values << s(tags) << then << s(thenTags);
    };
    const QDateTime now = at(2026, 11, 23, 16, 30);
    const Values call{{s("title"), s("Call")}};
    const Values saved{{s("title"), s("Call")}, {s("created"), now}, {s("repeat_frequency"), 1}};
    const Values unnamed{{s("title"), s("No Name")}, {s("created"), now}, {s("repeat_frequency"), 1}};
    const Values kept{
        {s("title"), s("Call")}, {s("created"), at(2026, 1, 2, 3, 4)}, {s("repeat_frequency"), 0}};
    const Values done{{s("title"), s("Call")}, {s("done"), true}};
    const Values open{{s("done"), false}};
    row("saving an empty to-do", false, {}, "", unnamed, "Pending");
    row("saving an empty title", false, {{s("title"), s("")}}, "", unnamed, "Pending");
    row("saving keeps given values", false, kept, "", kept, "Pending");
    row("saving an open to-do drops Done, keeps user tags", false, call, "Done Urgent", saved,
        "Pending Urgent");
    row("saving an open to-do keeps one Pending", false, call, "Pending", saved, "Pending");
    row("saving a done to-do keeps its tags", false, done, "Urgent", saved, "Urgent");
    row("toggling a pending to-do", true, call, "Pending Urgent", done, "Done Urgent");
    row("toggling an untagged to-do", true, call, "", done, "Done");
    row("toggling a done to-do", true, done, "Done", open, "Pending");
    row("toggling a done to-do with both tags", true, done, "Done Pending", open, "Pending");
}

void tst_ToDos::stateRules()
{
    QFETCH(bool, toggle);
    QFETCH(Values, values);
    QFETCH(QString, tags);
    QFETCH(Values, then);
    QFETCH(QString, thenTags);

    Record* todo = m_company->todo(values);
    for (const QString& name : tags.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const predicate::Predicate tag =
            name == s("Urgent")
                ? predicate::literal("type == 4 && name == %@", {name})
                : predicate::literal("type == 4 && subtype == %ld", {qint64(name == s("Done"))});
        todo->addRelated(s("tags"), m_company->main().fetchFirst(store::FetchRequest(s("Categories"), tag)));
    }
    if (toggle) {
        QCOMPARE(tasks::ToDoDone::toggle(todo), then.value(s("done")).toBool());
    } else {
        store::StoreError error;
        QVERIFY(tasks::ToDoSaving([] { return at(2026, 11, 23, 16, 30); }).save(todo, &error));
        QVERIFY(!m_company->main().hasChanges());
        QCOMPARE(todo->value(s("identifier")).toString().size(), 36);
    }
    for (auto it = then.begin(); it != then.end(); ++it)
        QCOMPARE(todo->value(it.key()), it.value());
    QStringList names;
    for (const Record* tag : todo->relatedList(s("tags")))
        names << tag->value(s("name")).toString();
    names.sort();
    QCOMPARE(names.join(QLatin1Char(' ')), thenTags);
}

// What another calendar program makes of an exported file: the occurrences of its one entry's
// RRULE from its DTSTART, in local time, up to `windowEnd`.
static QStringList readBack(icalcomponent* calendar, const QDateTime& windowEnd)
{
    icalcomponent* todo = icalcomponent_get_first_component(calendar, ICAL_VTODO_COMPONENT);
    const icaltimetype start = icalcomponent_get_dtstart(todo);
    const auto local = [](icaltimetype time) {
        return time.is_date ? QDate(time.year, time.month, time.day).startOfDay()
                            : QDateTime::fromSecsSinceEpoch(
                                  icaltime_as_timet_with_zone(time, icaltimezone_get_utc_timezone()));
    };
    icalproperty* rule = icalcomponent_get_first_property(todo, ICAL_RRULE_PROPERTY);
    if (!rule)
        return {local(start).toString(s("yyyy-MM-dd HH:mm"))};
    QStringList starts;
    icalrecur_iterator* it = icalrecur_iterator_new(icalproperty_get_rrule(rule), start);
    for (icaltimetype next = icalrecur_iterator_next(it);
         !icaltime_is_null_time(next) && local(next) < windowEnd; next = icalrecur_iterator_next(it))
        starts << local(next).toString(s("yyyy-MM-dd HH:mm"));
    icalrecur_iterator_free(it);
    return starts;
}

void tst_ToDos::exportMatchesCalendar_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<Values>("values");
    QTest::addColumn<QDate>("reference");

    const QByteArray berlin("Europe/Berlin");
    const QByteArray newYork("America/New_York"); // in the evening the UTC date is already the next day
    const QVariant noEnd;
    const Values byWeekday{{s("repeat_monthly_day_of"), 1}};
    const auto row = [](const char* name, const QByteArray& zone, const Values& values,
                        const QDate& reference) { QTest::newRow(name) << zone << values << reference; };
    row("every 3 days, 4 times, across the spring change", berlin,
        recurring(1, at(2026, 3, 20, 22, 30), noEnd, counted(4, {{s("repeat_frequency"), 3}})),
        QDate(2026, 3, 25));
    row("weekly from another weekday, until a date", berlin,
        recurring(2, at(2026, 6, 4, 8), at(2026, 7, 10, 8), weekdays({1, 4, 6})), QDate(2026, 6, 20));
    row("weekly, just after midnight across the spring change", berlin,
        recurring(2, at(2026, 3, 2, 0, 30), noEnd, weekdays({2, 7})), QDate(2026, 3, 20));
    row("weekly, count and a later end date", berlin,
        recurring(2, at(2026, 6, 1, 8), at(2026, 12, 1), counted(3, weekdays({3}))), QDate(2026, 6, 20));
    row("weekly, count cut by an earlier end date", berlin,
        recurring(2, at(2026, 6, 1, 8), at(2026, 6, 10), counted(9, weekdays({3}))), QDate(2026, 6, 20));
    row("all-day weekly in summer", berlin,
        recurring(2, at(2026, 5, 4), at(2026, 8, 1), weekdays({2, 5}, {{s("all_day"), true}})),
        QDate(2026, 6, 15));
    row("monthly on the fifth Friday", berlin, recurring(3, at(2026, 1, 30, 12), noEnd, byWeekday),
        QDate(2026, 3, 10));
    // Just after local midnight the UTC date is the day before: the rule's days move with it.
    row("second Tuesday just after midnight", berlin, recurring(3, at(2026, 3, 10, 0, 30), noEnd, byWeekday),
        QDate(2026, 4, 20));
    row("first Sunday at midnight", berlin, recurring(3, at(2026, 2, 1), noEnd, byWeekday),
        QDate(2026, 4, 1));
    row("last Friday at midnight", berlin, recurring(3, at(2026, 1, 30), noEnd, byWeekday),
        QDate(2026, 3, 10));
    row("monthly on the 1st at midnight", berlin, recurring(3, at(2026, 1, 1)), QDate(2026, 3, 1));
    row("monthly on the 31st at midnight", berlin, recurring(3, at(2026, 1, 31)), QDate(2026, 6, 1));
    row("monthly on the 30th at midnight", berlin, recurring(3, at(2026, 1, 30)), QDate(2026, 3, 15));
    row("yearly on 1 March at midnight", berlin, recurring(4, at(2025, 3, 1)), QDate(2028, 2, 1));
    row("yearly on 15 July at midnight", berlin, recurring(4, at(2025, 7, 15)), QDate(2027, 7, 1));
    row("yearly on 29 February", berlin, recurring(4, at(2024, 2, 29, 10)), QDate(2028, 2, 1));
    row("New York, second Tuesday", newYork, recurring(3, at(2026, 3, 10, 20), noEnd, byWeekday),
        QDate(2026, 4, 20));
    row("New York, last Friday", newYork, recurring(3, at(2026, 1, 30, 20), noEnd, byWeekday),
        QDate(2026, 3, 10));
    row("New York, on the 31st", newYork, recurring(3, at(2026, 1, 31, 20)), QDate(2026, 6, 1));
    row("New York, on the 10th", newYork, recurring(3, at(2026, 1, 10, 20)), QDate(2026, 3, 1));
    row("New York, yearly on 31 December", newYork, recurring(4, at(2025, 12, 31, 20)), QDate(2027, 12, 1));
    row("New York, weekly on the week's ends", newYork,
        recurring(2, at(2026, 6, 6, 20), noEnd, weekdays({1, 7})), QDate(2026, 6, 20));
}

void tst_ToDos::exportMatchesCalendar()
{
    QFETCH(QByteArray, zone);
    QFETCH(Values, values);
    QFETCH(QDate, reference);
    // The row's wall-clock times are read in its zone, then Berlin's comes back.
    qputenv("TZ", zone);
    tzset();
    const auto berlin = qScopeGuard([] { useBerlinTime(); });

    Record* todo = m_company->todo(values);
    QStringList expected = eventStarts(tasks::repeatEvents(todo, reference)).split(s(", "));
    QVERIFY(!expected.first().isEmpty());
    const QByteArray text = tasks::ICalendarExport().calendar({todo});
    icalcomponent* calendar = icalparser_parse_string(text.constData());
    QVERIFY(calendar);
    const auto release = qScopeGuard([calendar] { icalcomponent_free(calendar); });
    // Every property where RFC 5545 allows it, the RRULE's parts included.
    QVERIFY2(icalrestriction_check(calendar), text.constData());
    QStringList exported = readBack(calendar, reference.startOfDay().addDays(50));
    if (todo->value(s("all_day")).toBool()) {
        // All-day entries are dates; the calendar places them at the start's time of day.
        for (QStringList* starts : {&expected, &exported})
            for (QString& start : *starts)
                start.truncate(10);
    }
    QCOMPARE(exported, expected);
}

void tst_ToDos::exportedEntry()
{
    const Record* todo = m_company->todo({{s("title"), s("Stock count")},
                                          {s("desc"), s("Shelves, then the back room")},
                                          {s("date_start"), at(2026, 7, 1, 9)},
                                          {s("date_end"), at(2026, 7, 1, 11)},
                                          {s("done"), true},
                                          {s("created"), at(2026, 6, 1, 12)},
                                          {s("identifier"), s("0F6A8C1E-1111-2222-3333-444455556666")}});
    const QByteArray file =
        tasks::ICalendarExport(QDateTime(QDate(2026, 11, 23), QTime(12, 0), Qt::UTC)).calendar({todo});
    icalcomponent* calendar = icalparser_parse_string(file.constData());
    QVERIFY(calendar);
    const bool valid = icalrestriction_check(calendar);
    icalcomponent_free(calendar);
    QVERIFY2(valid, file.constData());
    const QStringList lines = QString::fromUtf8(file).split(s("\r\n"));
    for (const char* line :
         {"UID:0F6A8C1E-1111-2222-3333-444455556666", "SUMMARY:Stock count",
          "DESCRIPTION:Shelves\\, then the back room", "STATUS:COMPLETED", "DTSTART:20260701T070000Z",
          "DUE:20260701T090000Z", "CREATED:20260601T100000Z", "DTSTAMP:20261123T120000Z"})
        QVERIFY2(lines.contains(s(line)), file.constData());
    QVERIFY(!file.contains("RRULE"));
}

QTEST_GUILESS_MAIN(tst_ToDos)
#include "tst_todos.moc"
