#pragma once

#include <QDate>
#include <QList>
#include <QStringList>

namespace corvanta::store {
class Record;
}

namespace corvanta::browse {

// The chart view of a client's or an item's page: the totals of its finalised documents in
// one currency, per month (per year over a range longer than two years). Each period is one
// sum computed by the database.
class PageChart
{
public:
    struct Series
    {
        QStringList labels;
        QList<double> values;
    };

    // A client's documents by their `sum_total`, an item's by its rows' `total`, dated by
    // `date_creation` from `from` to `to` (both days included), in the currency with `code`.
    static Series of(store::Record* owner, const QString& currencyCode, const QDate& from, const QDate& to);
    // The page's call that draws it: "addChartValues([labels], [values])".
    static QString script(const Series& series);
};

} // namespace corvanta::browse
