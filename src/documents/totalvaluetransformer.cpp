#include "totalvaluetransformer.h"

#include "format/formattedcurrency.h"
#include "model/record.h"

namespace corvanta::documents {

QVariant TotalValueTransformer::transformedValue(const QVariant& value) const
{
    const model::Record* document =
        value.metaType() == QMetaType::fromType<model::Record*>() ? value.value<model::Record*>() : nullptr;
    const model::Record* currency = document ? document->related(QStringLiteral("currency")) : nullptr;
    if (!currency || document->relatedList(QStringLiteral("rows")).isEmpty())
        return QString();
    return tr("Total: %1")
        .arg(format::formattedCurrency(document->value(QStringLiteral("sum_total")).toDouble(), currency));
}

} // namespace corvanta::documents
