#pragma once

#include "valuetransformer.h"

#include <QCoreApplication>

namespace corvanta::editors {

// A payment's type as lists show it: "No Payment" when there is none (null or empty text);
// any other value as it is.
class PaymentTypeValueTransformer : public editors::ValueTransformer
{
    Q_DECLARE_TR_FUNCTIONS(PaymentTypeValueTransformer)

public:
    QVariant transformedValue(const QVariant& value) const override;
};

} // namespace corvanta::editors
