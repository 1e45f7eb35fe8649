#include "store/storeerror.h"
#include "tasks/icalendarexport.h"
#include "tasks/repeatevents.h"
#include "tasks/tododone.h"
#include "tasks/todosaving.h"
#include "taskstestsupport.h"

#include <QTest>
#include <libical/ical.h>

using namespace corvanta;
using namespace corvanta::tasks::testing;

using Values = QVariantMap;

class tst_ToDos : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void saveRules_data();
    void saveRules();
    void doneToggle_data();
    void doneToggle();
    void exportMatchesCalendar_data();
    void exportMatchesCalendar();
    void exportWestOfGreenwich_data();
    void exportWestOfGreenwich();
    void exportedEntry();

private:
    // The names of a to-do's tags, sorted.
    static QStringList tagNames(const Record* todo);
    Record* userTag(const QString& name);
    // Exports the to-do and compares what a calendar program reads back with our calendar.
    void checkExport(const Values& values, const QDate& reference);

    std::unique_ptr<ToDoCompany> m_company;
    QTemporaryDir m_dir;
};

void tst_ToDos::initTestCase()
{
    useBerlinTime();
    QVERIFY2(at(2026, 7, 1, 12).offsetFromUtc() == 7200, "the time zone Europe/Berlin is missing (tzdata)");
    m_company = std::make_unique<ToDoCompany>();
}

void tst_ToDos::init()
{
    m_company->main().rollback();
}

QStringList tst_ToDos::tagNames(const Record* todo)
{
    QStringList names;
    for (const Record* tag : todo->relatedList(s("tags")))
        names << tag->value(s("name")).toString();
    names.sort();
    return names;
}

Record* tst_ToDos::userTag(const QString& name)
{
    if (Record* tag = m_company->main().fetchFirst(
            store::FetchRequest(s("Categories"), predicate::literal("name == %@ && type == 4", {name}))))
        return tag;
    Record* tag = m_company->main().insertRecord(s("Categories"), {{s("name"), name}, {s("type"), 4}});
    model::testing::saveOrFail(m_company->main());
    return tag;
}

void tst_ToDos::saveRules_data()
{
    QTest::addColumn<Values>("values");
    QTest::addColumn<QStringList>("tags"); // "Pending", "Done" or a user tag's name
    QTest::addColumn<QString>("title");
    QTest::addColumn<QDateTime>("created");
    QTest::addColumn<qint64>("frequency");
    QTest::addColumn<QStringList>("savedTags");

    const QDateTime now = at(2026, 11, 23, 16, 30);
    const QDateTime earlier = at(2026, 1, 2, 3, 4);
    QTest::newRow("empty to-do") << Values{} << QStringList{} << s("No Name") << now << qint64(1)
                                 << QStringList{s("Pending")};
    QTest::newRow("empty title") << Values{{s("title"), s("")}} << QStringList{} << s("No Name") << now
                                 << qint64(1) << QStringList{s("Pending")};
    QTest::newRow("values kept") << Values{{s("title"), s("Call")},
                                           {s("created"), earlier},
                                           {s("repeat_frequency"), 0}}
                                 << QStringList{} << s("Call") << earlier << qint64(0)
                                 << QStringList{s("Pending")};
    QTest::newRow("open to-do loses Done, keeps its user tags")
        << Values{{s("title"), s("Call")}} << QStringList{s("Done"), s("Urgent")} << s("Call") << now
        << qint64(1) << QStringList{s("Pending"), s("Urgent")};
    QTest::newRow("open to-do keeps one Pending")
        << Values{{s("title"), s("Call")}} << QStringList{s("Pending")} << s("Call") << now << qint64(1)
        << QStringList{s("Pending")};
    QTest::newRow("done to-do keeps its tags")
        << Values{{s("title"), s("Call")}, {s("done"), true}} << QStringList{s("Urgent")} << s("Call") << now
        << qint64(1) << QStringList{s("Urgent")};
}

void tst_ToDos::saveRules()
{
    QFETCH(Values, values);
    QFETCH(QStringList, tags);
    QFETCH(QString, title);
    QFETCH(QDateTime, created);
    QFETCH(qint64, frequency);
    QFETCH(QStringList, savedTags);

    const QHash<QString, Record*> tagsByName{{s("Pending"), m_company->stateTag(0)},
                                             {s("Done"), m_company->stateTag(1)},
                                             {s("Urgent"), userTag(s("Urgent"))}};
    Record* todo = m_company->todo(values);
    for (const QString& name : tags)
        todo->addRelated(s("tags"), tagsByName.value(name));
    store::StoreError error;
    QVERIFY(tasks::ToDoSaving([] { return at(2026, 11, 23, 16, 30); }).save(todo, &error));
    QVERIFY(!m_company->main().hasChanges());
    QCOMPARE(todo->value(s("title")).toString(), title);
    QCOMPARE(todo->value(s("created")).toDateTime(), created);
    QCOMPARE(todo->value(s("repeat_frequency")).toLongLong(), frequency);
    QCOMPARE(todo->value(s("identifier")).toString().size(), 36);
    QCOMPARE(tagNames(todo), savedTags);
}

void tst_ToDos::doneToggle_data()
{
    QTest::addColumn<bool>("done");
    QTest::addColumn<QStringList>("tags");
    QTest::addColumn<bool>("nowDone");
    QTest::addColumn<QStringList>("toggledTags");

    QTest::newRow("pending becomes done")
        << false << QStringList{s("Pending"), s("Urgent")} << true << QStringList{s("Done"), s("Urgent")};
    QTest::newRow("done becomes pending")
        << true << QStringList{s("Done")} << false << QStringList{s("Pending")};
    QTest::newRow("untagged becomes done") << false << QStringList{} << true << QStringList{s("Done")};
    QTest::newRow("done with both tags")
        << true << QStringList{s("Done"), s("Pending")} << false << QStringList{s("Pending")};
}

void tst_ToDos::doneToggle()
{
    QFETCH(bool, done);
    QFETCH(QStringList, tags);
    QFETCH(bool, nowDone);
    QFETCH(QStringList, toggledTags);

    const QHash<QString, Record*> tagsByName{{s("Pending"), m_company->stateTag(0)},
                                             {s("Done"), m_company->stateTag(1)},
                                             {s("Urgent"), userTag(s("Urgent"))}};
    Record* todo = m_company->todo({{s("title"), s("Call")}, {s("done"), done}});
    for (const QString& name : tags)
        todo->addRelated(s("tags"), tagsByName.value(name));
    QCOMPARE(tasks::ToDoDone::toggle(todo), nowDone);
    QCOMPARE(todo->value(s("done")).toBool(), nowDone);
    QCOMPARE(tagNames(todo), toggledTags);
}

void tst_ToDos::exportMatchesCalendar_data()
{
    QTest::addColumn<Values>("values");
    QTest::addColumn<QDate>("reference");

    const auto todo = [](int type, const QDateTime& start, const QVariant& endDate, Values more = {}) {
        more[s("repeat_type")] = type;
        more[s("date_start")] = start;
        more[s("date_end")] = start.addSecs(5400);
        more[s("repeat_end_date")] = endDate;
        if (!more.contains(s("repeat_frequency")))
            more[s("repeat_frequency")] = 1;
        return more;
    };
    const QVariant noEnd;
    const Values byWeekday{{s("repeat_monthly_day_of"), 1}};

    QTest::newRow("daily across the autumn change")
        << todo(1, at(2026, 10, 20, 10), noEnd) << QDate(2026, 10, 25);
    QTest::newRow("every 3 days, 4 times")
        << todo(1, at(2026, 3, 20, 22, 30), noEnd,
                {{s("repeat_frequency"), 3}, {s("repeat_end_type"), 1}, {s("repeat_occurrences"), 4}})
        << QDate(2026, 3, 25);
    QTest::newRow("weekly, until a date")
        << todo(2, at(2026, 6, 5, 8), at(2026, 7, 10, 8), {{s("repeat_weekdays"), QVariantList{1, 4, 6}}})
        << QDate(2026, 6, 20);
    QTest::newRow("weekly, just after midnight across the spring change")
        << todo(2, at(2026, 3, 2, 0, 30), noEnd, {{s("repeat_weekdays"), QVariantList{2, 7}}})
        << QDate(2026, 3, 20);
    QTest::newRow("weekly, count and a later end date") << todo(2, at(2026, 6, 1, 8), at(2026, 12, 1),
                                                                {{s("repeat_weekdays"), QVariantList{3}},
                                                                 {s("repeat_end_type"), 1},
                                                                 {s("repeat_occurrences"), 3}})
                                                        << QDate(2026, 6, 20);
    QTest::newRow("weekly, count cut by an earlier end date")
        << todo(2, at(2026, 6, 1, 8), at(2026, 6, 10),
                {{s("repeat_weekdays"), QVariantList{3}},
                 {s("repeat_end_type"), 1},
                 {s("repeat_occurrences"), 9}})
        << QDate(2026, 6, 20);
    QTest::newRow("monthly on the 31st") << todo(3, at(2026, 1, 31, 9), noEnd) << QDate(2026, 3, 1);
    QTest::newRow("monthly on the fifth Friday")
        << todo(3, at(2026, 1, 30, 12), noEnd, byWeekday) << QDate(2026, 3, 10);
    QTest::newRow("monthly on the second Tuesday, 4 times")
        << todo(3, at(2026, 11, 10, 9), noEnd,
                {{s("repeat_monthly_day_of"), 1}, {s("repeat_end_type"), 1}, {s("repeat_occurrences"), 4}})
        << QDate(2027, 1, 1);
    // Just after local midnight the UTC date is the day before: the rule's days move with it.
    QTest::newRow("second Tuesday just after midnight")
        << todo(3, at(2026, 3, 10, 0, 30), noEnd, byWeekday) << QDate(2026, 4, 20);
    QTest::newRow("first Sunday at midnight")
        << todo(3, at(2026, 2, 1), noEnd, byWeekday) << QDate(2026, 4, 1);
    QTest::newRow("last Friday at midnight")
        << todo(3, at(2026, 1, 30), noEnd, byWeekday) << QDate(2026, 3, 10);
    QTest::newRow("monthly on the 1st at midnight") << todo(3, at(2026, 1, 1), noEnd) << QDate(2026, 3, 1);
    QTest::newRow("monthly on the 31st at midnight") << todo(3, at(2026, 1, 31), noEnd) << QDate(2026, 6, 1);
    QTest::newRow("monthly on the 30th at midnight") << todo(3, at(2026, 1, 30), noEnd) << QDate(2026, 3, 15);
    QTest::newRow("yearly on 1 March at midnight") << todo(4, at(2025, 3, 1), noEnd) << QDate(2028, 2, 1);
    QTest::newRow("yearly on 15 July at midnight") << todo(4, at(2025, 7, 15), noEnd) << QDate(2027, 7, 1);
    QTest::newRow("yearly on 29 February") << todo(4, at(2024, 2, 29, 10), noEnd) << QDate(2028, 2, 1);
    QTest::newRow("all-day weekly in summer")
        << todo(2, at(2026, 5, 4), at(2026, 8, 1),
                {{s("repeat_weekdays"), QVariantList{2, 5}}, {s("all_day"), true}})
        << QDate(2026, 6, 15);
}

// What another calendar program makes of the exported file: the occurrences of its one entry's
// RRULE from its DTSTART, in local time, up to `windowEnd`.
static QStringList readBack(const QByteArray& file, const QDateTime& windowEnd)
{
    QStringList starts;
    icalcomponent* calendar = icalparser_parse_string(file.constData());
    if (!calendar)
        return {s("unreadable")};
    icalcomponent* todo = icalcomponent_get_first_component(calendar, ICAL_VTODO_COMPONENT);
    const icaltimetype start = icalcomponent_get_dtstart(todo);
    const auto local = [](icaltimetype time) {
        if (time.is_date)
            return QDate(time.year, time.month, time.day).startOfDay();
        return QDateTime::fromSecsSinceEpoch(
            icaltime_as_timet_with_zone(time, icaltimezone_get_utc_timezone()));
    };
    icalproperty* rule = icalcomponent_get_first_property(todo, ICAL_RRULE_PROPERTY);
    if (!rule) {
        starts << local(start).toString(s("yyyy-MM-dd HH:mm"));
    } else {
        icalrecur_iterator* it = icalrecur_iterator_new(icalproperty_get_rrule(rule), start);
        for (icaltimetype next = icalrecur_iterator_next(it); !icaltime_is_null_time(next);
             next = icalrecur_iterator_next(it)) {
            const QDateTime moment = local(next);
            if (moment >= windowEnd)
                break;
            starts << moment.toString(s("yyyy-MM-dd HH:mm"));
        }
        icalrecur_iterator_free(it);
    }
    icalcomponent_free(calendar);
    return starts;
}

void tst_ToDos::exportMatchesCalendar()
{
    QFETCH(Values, values);
    QFETCH(QDate, reference);
    checkExport(values, reference);
}

void tst_ToDos::exportWestOfGreenwich_data()
{
    QTest::addColumn<Values>("values");
    QTest::addColumn<QDate>("reference");

    // In the evening in New York the UTC date is already the next day.
    const auto monthly = [](const QDateTime& start, int dayOf) {
        return Values{{s("repeat_type"), 3},
                      {s("repeat_frequency"), 1},
                      {s("repeat_monthly_day_of"), dayOf},
                      {s("date_start"), start},
                      {s("date_end"), start.addSecs(3600)}};
    };
    QTest::newRow("second Tuesday") << monthly(at(2026, 3, 10, 20), 1) << QDate(2026, 4, 20);
    QTest::newRow("last Friday") << monthly(at(2026, 1, 30, 20), 1) << QDate(2026, 3, 10);
    QTest::newRow("on the 31st") << monthly(at(2026, 1, 31, 20), 0) << QDate(2026, 6, 1);
    QTest::newRow("on the 10th") << monthly(at(2026, 1, 10, 20), 0) << QDate(2026, 3, 1);
    Values yearly = monthly(at(2025, 12, 31, 20), 0);
    yearly[s("repeat_type")] = 4;
    QTest::newRow("yearly on 31 December") << yearly << QDate(2027, 12, 1);
    Values weekly = monthly(at(2026, 6, 6, 20), 0);
    weekly[s("repeat_type")] = 2;
    weekly[s("repeat_weekdays")] = QVariantList{1, 7};
    QTest::newRow("weekly on the week's ends") << weekly << QDate(2026, 6, 20);
}

void tst_ToDos::exportWestOfGreenwich()
{
    QFETCH(Values, values);
    QFETCH(QDate, reference);
    // The rows' wall-clock times are read in New York's time, then Berlin's comes back.
    qputenv("TZ", "America/New_York");
    tzset();
    const auto berlin = qScopeGuard([] { useBerlinTime(); });
    QVERIFY(at(2026, 7, 1, 12).offsetFromUtc() == -4 * 3600);
    checkExport(values, reference);
}

void tst_ToDos::checkExport(const Values& values, const QDate& reference)
{
    Record* todo = m_company->todo(values);
    todo->setValue(s("title"), s("Meeting"));
    const QString path = m_dir.filePath(s("%1.ics").arg(s(QTest::currentDataTag())));
    QString error;
    QVERIFY2(tasks::ICalendarExport().write({todo}, path, &error), qPrintable(error));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));

    QStringList expected = eventStarts(tasks::repeatEvents(todo, reference));
    QVERIFY(!expected.isEmpty());
    const QByteArray text = file.readAll();
    icalcomponent* calendar = icalparser_parse_string(text.constData());
    QVERIFY(calendar);
    // Every property where RFC 5545 allows it, the RRULE's parts included.
    const bool valid = icalrestriction_check(calendar);
    icalcomponent_free(calendar);
    QVERIFY2(valid, text.constData());
    QStringList exported = readBack(text, reference.startOfDay().addDays(50));
    if (todo->value(s("all_day")).toBool()) {
        // All-day entries are dates; the calendar places them at the start's time of day.
        for (QString& start : expected)
            start.truncate(10);
        for (QString& start : exported)
            start.truncate(10);
    }
    QCOMPARE(exported, expected);
}

void tst_ToDos::exportedEntry()
{
    Record* todo = m_company->todo({{s("title"), s("Stock count")},
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
    QCOMPARE(icalcomponent_isa(calendar), ICAL_VCALENDAR_COMPONENT);
    // The file holds only what RFC 5545 allows where it stands.
    QVERIFY(icalrestriction_check(calendar));
    icalcomponent* entry = icalcomponent_get_first_component(calendar, ICAL_VTODO_COMPONENT);
    QVERIFY(entry);
    QCOMPARE(s(icalcomponent_get_uid(entry)), s("0F6A8C1E-1111-2222-3333-444455556666"));
    QCOMPARE(s(icalcomponent_get_summary(entry)), s("Stock count"));
    QCOMPARE(s(icalcomponent_get_description(entry)), s("Shelves, then the back room"));
    QCOMPARE(icalcomponent_get_status(entry), ICAL_STATUS_COMPLETED);
    const auto utc = [](icaltimetype time) {
        return QDateTime::fromSecsSinceEpoch(
            icaltime_as_timet_with_zone(time, icaltimezone_get_utc_timezone()), Qt::UTC);
    };
    QCOMPARE(utc(icalcomponent_get_dtstart(entry)), QDateTime(QDate(2026, 7, 1), QTime(7, 0), Qt::UTC));
    QCOMPARE(utc(icalcomponent_get_due(entry)), QDateTime(QDate(2026, 7, 1), QTime(9, 0), Qt::UTC));
    icalproperty* created = icalcomponent_get_first_property(entry, ICAL_CREATED_PROPERTY);
    QVERIFY(created);
    QCOMPARE(utc(icalproperty_get_created(created)), QDateTime(QDate(2026, 6, 1), QTime(10, 0), Qt::UTC));
    QVERIFY(!icalcomponent_get_first_property(entry, ICAL_RRULE_PROPERTY));
    icalcomponent_free(calendar);
}

QTEST_GUILESS_MAIN(tst_ToDos)
#include "tst_todos.moc"
