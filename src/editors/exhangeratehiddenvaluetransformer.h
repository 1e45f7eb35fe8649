#pragma once

#include "valuetransformer.h"

namespace corvanta::store {
class Record;
}

namespace corvanta::editors {

// Whether a document's exchange-rate field is hidden: exactly when its currency (a Currencies
// store::Record*) has the same code as the company's default currency, compared as exact text.
// The class keeps its name, misspelling included, as the rest of the program knows it.
class ExhangeRateHiddenValueTransformer : public editors::ValueTransformer
{
public:
    // True or false; null for anything that is not a record.
    QVariant transformedValue(const QVariant& value) const override;

    static bool isHidden(const store::Record* currency);
};

} // namespace corvanta::editors
