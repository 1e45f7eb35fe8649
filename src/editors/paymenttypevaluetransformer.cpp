#include "paymenttypevaluetransformer.h"

#include "store/record.h"

namespace corvanta::editors {

QVariant PaymentTypeValueTransformer::transformedValue(const QVariant& value) const
{
    const bool noRecord =
        value.metaType() == QMetaType::fromType<store::Record*>() && !value.value<store::Record*>();
    if (value.isNull() || noRecord || (value.typeId() == QMetaType::QString && value.toString().isEmpty()))
        return tr("No Payment");
    return value;
}

} // namespace corvanta::editors
