#pragma once

#include <QVariant>

namespace corvanta::editors {

// Maps one stored value to the value a list or field shows (a number to its text, a record to
// a tick). A value it has nothing to show for gives a null QVariant.
class ValueTransformer
{
public:
    virtual ~ValueTransformer() = default;
    virtual QVariant transformedValue(const QVariant& value) const = 0;
};

} // namespace corvanta::editors
