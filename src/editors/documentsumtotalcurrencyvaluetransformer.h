#pragma once

#include "valuetransformer.h"

namespace corvanta::editors {

// A document (a store::Record* of `Documents`) shown as its `sum_total` in its own `currency`.
class DocumentSumTotalCurrencyValueTransformer : public ValueTransformer
{
public:
    // Null for anything that is not a record and for a document without a total.
    QVariant transformedValue(const QVariant& value) const override;
};

} // namespace corvanta::editors
