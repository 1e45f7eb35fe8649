#pragma once

#include <QString>
#include <QStringList>

namespace corvanta::store {

// One value the database computes over the records a fetch selects, without loading them:
// `Sum` is 0 over no records and skips missing values, `Max` and `Min` are missing over none.
enum class Aggregate { Sum, Max, Min };

// How the database answers a fetch: the statement it runs and the steps of its plan, one per
// line ("SEARCH t0 USING COVERING INDEX ..."). For benchmarks and the tests that keep searches
// over a whole history on their indexes.
struct QueryPlan
{
    QString statement;
    QStringList steps;
};

} // namespace corvanta::store
