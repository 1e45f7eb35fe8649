#include "currencyvaluetransformer.h"

#include "format/currencyformatter.h"
#include "store/record.h"

namespace corvanta::editors {

using format::CurrencyFormatter;

QVariant CurrencyValueTransformer::transformedValue(const QVariant& value) const
{
    const QString text = CurrencyFormatter(m_defaultCurrency).stringForObjectValue(value);
    return text.isEmpty() ? QVariant() : QVariant(text);
}

} // namespace corvanta::editors
