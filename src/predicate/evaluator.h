#pragma once

#include "keypathsource.h"
#include "predicate.h"

namespace corvanta::predicate {

// Evaluates a predicate on one record in memory, for records not yet saved. It follows the
// same rules as the SQL the store compiles, so both select the same records: a missing value
// equals only NULL, `!=` a value is true for it, ordering and text comparisons with it are
// false; a key path through a to-many relationship is true when any member matches (ALL: when
// every member does, also when there is none).
class Evaluator
{
public:
    static bool evaluate(const Predicate& predicate, const KeyPathSource& record);

    // Orders two values as the store's ORDER BY does: missing values first, numbers and dates
    // by value, texts by code point, records by key.
    static int compareValues(const QVariant& a, const QVariant& b);
    // The same with texts in localized, case-insensitive order.
    static int compareLocalized(const QVariant& a, const QVariant& b);
};

} // namespace corvanta::predicate
