#include "paymenttypevaluetransformer.h"

#include "model/record.h"

namespace corvanta::documents {

QVariant PaymentTypeValueTransformer::transformedValue(const QVariant& value) const
{
    const bool noRecord =
        value.metaType() == QMetaType::fromType<model::Record*>() && !value.value<model::Record*>();
    if (value.isNull() || noRecord || (value.typeId() == QMetaType::QString && value.toString().isEmpty()))
        return tr("No Payment");
    return value;
}

} // namespace corvanta::documents
