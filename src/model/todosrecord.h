#pragma once

#include "store/record.h"

#include <QCoreApplication>

namespace corvanta::model {

// A to-do record. Keeps `repeat_summary`, the readable text of its recurrence ("Weekly on
// Monday, Friday", "Every 2 months on the second Tuesday, until 31/12/26"), in step with the
// recurrence: it is rebuilt whenever the record is loaded or inserted and whenever one of the
// recurrence attributes or `date_start` is set.
class ToDosRecord : public store::Record
{
    Q_DECLARE_TR_FUNCTIONS(ToDosRecord)

public:
    using store::Record::Record;

    // The summary of a to-do's current recurrence values, in the interface language, with the
    // locale's weekday and month names and short date style. Dates are read in local time.
    static QString summary(const store::Record* todo);
    // Rebuilds `repeat_summary` from the current values.
    void setSummary();

protected:
    void awakeFromFetch() override;
    void awakeFromInsert() override;
    void didChangeValue(const QString& key) override;
};

} // namespace corvanta::model
