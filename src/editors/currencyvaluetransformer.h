#pragma once

#include "valuetransformer.h"

namespace corvanta::store {
class Record;
}

namespace corvanta::editors {

// A number shown as text in the company's default currency. The currency record is read at
// every use, so that a change of its format shows at once.
class CurrencyValueTransformer : public ValueTransformer
{
public:
    explicit CurrencyValueTransformer(const store::Record* defaultCurrency)
        : m_defaultCurrency(defaultCurrency)
    {}

    // A number gives its text; null, anything else and non-finite numbers give null.
    QVariant transformedValue(const QVariant& value) const override;

private:
    const store::Record* m_defaultCurrency;
};

} // namespace corvanta::editors
