#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace corvanta::store {

// One value the database computes over the records a fetch selects, without loading them:
// `Sum` is 0 over no records and skips missing values, `Max` and `Min` are missing over none.
enum class Aggregate { Sum, Max, Min };

// One group of a grouped sum: the value the records share (a RecordRef when the group is a
// relationship, missing for the records without one), how many records the group holds and the
// total of each summed key path, in the order they were asked for (0 where all are missing).
struct GroupSums
{
    QVariant group;
    qint64 count = 0;
    QList<double> sums;
};

// One record as a projection reads it: its key and the values of the asked key paths in their
// stored form (numbers and text as they are, dates as seconds since 2001-01-01 UTC, booleans as 0
// or 1, a relationship as the key of its record; missing values null).
struct StoredRow
{
    qint64 key = 0;
    QVariantList values;
};

// How the database answers a fetch: the statement it runs and the steps of its plan, one per
// line ("SEARCH t0 USING COVERING INDEX ..."). For benchmarks and the tests that keep searches
// over a whole history on their indexes.
struct QueryPlan
{
    QString statement;
    QStringList steps;
};

} // namespace corvanta::store
