#include "documentsumtotalcurrencyvaluetransformer.h"

#include "format/currencyformatter.h"
#include "store/record.h"

namespace corvanta::editors {

using format::CurrencyFormatter;

QVariant DocumentSumTotalCurrencyValueTransformer::transformedValue(const QVariant& value) const
{
    if (value.metaType() != QMetaType::fromType<store::Record*>())
        return {};
    const store::Record* document = value.value<store::Record*>();
    if (!document)
        return {};
    const CurrencyFormatter formatter(document->related(QStringLiteral("currency")));
    const QString text = formatter.stringForObjectValue(document->value(QStringLiteral("sum_total")));
    return text.isEmpty() ? QVariant() : QVariant(text);
}

} // namespace corvanta::editors
