#include "documentsumtotalcurrencyvaluetransformer.h"

#include "currencyformatter.h"
#include "model/record.h"

namespace corvanta::format {

QVariant DocumentSumTotalCurrencyValueTransformer::transformedValue(const QVariant& value) const
{
    if (value.metaType() != QMetaType::fromType<model::Record*>())
        return {};
    const model::Record* document = value.value<model::Record*>();
    if (!document)
        return {};
    const CurrencyFormatter formatter(document->related(QStringLiteral("currency")));
    const QString text = formatter.stringForObjectValue(document->value(QStringLiteral("sum_total")));
    return text.isEmpty() ? QVariant() : QVariant(text);
}

} // namespace corvanta::format
