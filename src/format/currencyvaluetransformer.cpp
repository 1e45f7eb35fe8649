#include "currencyvaluetransformer.h"

#include "currencyformatter.h"

namespace corvanta::format {

QVariant CurrencyValueTransformer::transformedValue(const QVariant& value) const
{
    const QString text = CurrencyFormatter(m_defaultCurrency).stringForObjectValue(value);
    return text.isEmpty() ? QVariant() : QVariant(text);
}

} // namespace corvanta::format
