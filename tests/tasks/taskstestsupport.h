#pragma once

#include "../model/modeltestsupport.h"
#include "model/defaultrecords.h"
#include "predicate/literal.h"
#include "store/record.h"

#include <QRegularExpression>
#include <QTest>
#include <ctime>

namespace corvanta::tasks::testing {

using model::testing::s;
using store::Record;
using Values = QVariantMap;

// Dates are read in Berlin's time, which changes for daylight saving on the last Sundays of March
// and October; names and dates are written in American English.
inline void useBerlinTime()
{
    qputenv("TZ", "Europe/Berlin");
    tzset();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QVERIFY2(QDateTime(QDate(2026, 7, 1), QTime(12, 0)).offsetFromUtc() == 7200,
             "the time zone Europe/Berlin is missing (tzdata)");
}

inline QDateTime at(int year, int month, int day, int hour = 0, int minute = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute));
}

// A recurring to-do an hour long, frequency 1, with `more` values over these.
inline Values recurring(int type, const QDateTime& start, const QVariant& endDate = {},
                        const Values& more = {})
{
    Values values{{s("repeat_type"), type},
                  {s("repeat_frequency"), 1},
                  {s("date_start"), start},
                  {s("date_end"), start.addSecs(3600)},
                  {s("repeat_end_date"), endDate}};
    values.insert(more);
    return values;
}

// `more` with these weekdays (1 Sunday … 7 Saturday) of a weekly to-do.
inline Values weekdays(const QVariantList& days, Values more = {})
{
    more[s("repeat_weekdays")] = days;
    return more;
}

// `more` with an end after `count` occurrences.
inline Values counted(qint64 count, Values more = {})
{
    more.insert(Values{{s("repeat_end_type"), 1}, {s("repeat_occurrences"), count}});
    return more;
}

// A scratch company with its default records (the to-dos' "Pending" and "Done" tags among them).
class ToDoCompany : public model::testing::ScratchCompany
{
public:
    ToDoCompany()
    {
        store::StoreError error;
        if (!model::DefaultRecords(main()).initDatabaseRecords(&error))
            qFatal("no default records: %s", qPrintable(error.message()));
    }

    // A new to-do in the main context with these values, set in the map's order.
    Record* todo(const Values& values)
    {
        Record* record = main().insertRecord(s("ToDos"));
        for (auto it = values.begin(); it != values.end(); ++it)
            record->setValue(it.key(), it.value());
        return record;
    }
};

// The start times of the event entries of a calendar text, in their order, joined by ", ".
inline QString eventStarts(const QString& events)
{
    static const QRegularExpression start(s("start:'([^']*)'"));
    QStringList starts;
    for (const QRegularExpressionMatch& match : start.globalMatch(events))
        starts << match.captured(1);
    return starts.join(s(", "));
}

} // namespace corvanta::tasks::testing
