#pragma once

#include "valuetransformer.h"

namespace corvanta::model {
class Record;
}

namespace corvanta::format {

// A number shown as text in the company's default currency. The currency record is read at
// every use, so that a change of its format shows at once.
class CurrencyValueTransformer : public ValueTransformer
{
public:
    explicit CurrencyValueTransformer(const model::Record* defaultCurrency)
        : m_defaultCurrency(defaultCurrency)
    {}

    // A number gives its text; null, anything else and non-finite numbers give null.
    QVariant transformedValue(const QVariant& value) const override;

private:
    const model::Record* m_defaultCurrency;
};

} // namespace corvanta::format
