#pragma once

#include "../model/modeltestsupport.h"
#include "model/defaultrecords.h"
#include "predicate/literal.h"
#include "store/record.h"

#include <QRegularExpression>
#include <ctime>

namespace corvanta::tasks::testing {

using model::testing::s;
using store::Record;

// Every test here reads dates in Berlin's time, which changes for daylight saving on the last
// Sundays of March and October, and writes names and dates in American English.
inline void useBerlinTime()
{
    qputenv("TZ", "Europe/Berlin");
    tzset();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

inline QDateTime at(int year, int month, int day, int hour = 0, int minute = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute));
}

// A scratch company with its default records (the to-dos' "Pending" and "Done" tags among them).
class ToDoCompany : public model::testing::ScratchCompany
{
public:
    ToDoCompany()
    {
        model::DefaultRecords defaults(main());
        store::StoreError error;
        if (!defaults.initDatabaseRecords(&error))
            qFatal("no default records: %s", qPrintable(error.message()));
    }

    // A new to-do in the main context with these values, set in the map's order.
    Record* todo(const QVariantMap& values)
    {
        Record* record = main().insertRecord(s("ToDos"));
        for (auto it = values.begin(); it != values.end(); ++it)
            record->setValue(it.key(), it.value());
        return record;
    }

    // The to-dos' system tag of a state (0 pending, 1 done).
    Record* stateTag(qint64 subtype)
    {
        return main().fetchFirst(store::FetchRequest(
            s("Categories"), predicate::literal("type == 4 && subtype == %ld", {subtype})));
    }
};

// The start times of the event entries of a calendar text, in their order.
inline QStringList eventStarts(const QString& events)
{
    static const QRegularExpression start(s("start:'([^']*)'"));
    QStringList starts;
    for (const QRegularExpressionMatch& match : start.globalMatch(events))
        starts << match.captured(1);
    return starts;
}

} // namespace corvanta::tasks::testing
