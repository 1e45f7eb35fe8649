#include "totalvaluetransformer.h"

#include "format/formattedcurrency.h"
#include "store/record.h"

namespace corvanta::editors {

QVariant TotalValueTransformer::transformedValue(const QVariant& value) const
{
    const store::Record* document =
        value.metaType() == QMetaType::fromType<store::Record*>() ? value.value<store::Record*>() : nullptr;
    const store::Record* currency = document ? document->related(QStringLiteral("currency")) : nullptr;
    if (!currency || document->relatedList(QStringLiteral("rows")).isEmpty())
        return QString();
    return tr("Total: %1")
        .arg(format::formattedCurrency(document->value(QStringLiteral("sum_total")).toDouble(), currency));
}

} // namespace corvanta::editors
