#pragma once

#include "valuetransformer.h"

#include <QCoreApplication>

namespace corvanta::editors {

// The total under a document's rows in the editor: "Total: " and `sum_total` in the document's
// currency, for a document (a store::Record*) that has a currency and at least one row; an empty
// text otherwise.
class TotalValueTransformer : public editors::ValueTransformer
{
    Q_DECLARE_TR_FUNCTIONS(TotalValueTransformer)

public:
    QVariant transformedValue(const QVariant& value) const override;
};

} // namespace corvanta::editors
