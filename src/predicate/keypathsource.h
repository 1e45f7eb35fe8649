#pragma once

#include "recordref.h"

#include <QVariant>

namespace corvanta::predicate {

// Anything a predicate can be evaluated on in memory: a record that answers key paths.
// A to-one relationship answers a RecordRef, a path through a to-many relationship a
// QVariantList of the members' values, a missing value a null QVariant.
class KeyPathSource
{
public:
    virtual ~KeyPathSource() = default;
    virtual QVariant valueForKeyPath(const QString& keyPath) const = 0;
    virtual RecordRef selfRef() const = 0;
};

} // namespace corvanta::predicate
