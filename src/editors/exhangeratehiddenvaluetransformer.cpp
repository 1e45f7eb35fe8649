#include "exhangeratehiddenvaluetransformer.h"

#include "model/companyrecord.h"
#include "store/record.h"

namespace corvanta::editors {

using model::CompanyRecord;

QVariant ExhangeRateHiddenValueTransformer::transformedValue(const QVariant& value) const
{
    if (value.metaType() != QMetaType::fromType<store::Record*>())
        return {};
    return isHidden(value.value<store::Record*>());
}

bool ExhangeRateHiddenValueTransformer::isHidden(const store::Record* currency)
{
    if (!currency)
        return false;
    const store::Record* defaultCurrency =
        CompanyRecord::defaultRecord(*currency->context(), QStringLiteral("default_currency"));
    if (!defaultCurrency)
        return false;
    const QVariant code = currency->value(QStringLiteral("code"));
    const QVariant defaultCode = defaultCurrency->value(QStringLiteral("code"));
    return !code.isNull() && !defaultCode.isNull() && code.toString() == defaultCode.toString();
}

} // namespace corvanta::editors
