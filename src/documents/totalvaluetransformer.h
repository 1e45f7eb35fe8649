#pragma once

#include "format/valuetransformer.h"

#include <QCoreApplication>

namespace corvanta::documents {

// The total under a document's rows in the editor: "Total: " and `sum_total` in the document's
// currency, for a document (a model::Record*) that has a currency and at least one row; an empty
// text otherwise.
class TotalValueTransformer : public format::ValueTransformer
{
    Q_DECLARE_TR_FUNCTIONS(TotalValueTransformer)

public:
    QVariant transformedValue(const QVariant& value) const override;
};

} // namespace corvanta::documents
