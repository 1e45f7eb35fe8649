#include "exhangeratehiddenvaluetransformer.h"

#include "companyrecord.h"
#include "model/record.h"

namespace corvanta::documents {

QVariant ExhangeRateHiddenValueTransformer::transformedValue(const QVariant& value) const
{
    if (value.metaType() != QMetaType::fromType<model::Record*>())
        return {};
    return isHidden(value.value<model::Record*>());
}

bool ExhangeRateHiddenValueTransformer::isHidden(const model::Record* currency)
{
    if (!currency)
        return false;
    const model::Record* defaultCurrency =
        CompanyRecord::defaultRecord(*currency->context(), QStringLiteral("default_currency"));
    if (!defaultCurrency)
        return false;
    const QVariant code = currency->value(QStringLiteral("code"));
    const QVariant defaultCode = defaultCurrency->value(QStringLiteral("code"));
    return !code.isNull() && !defaultCode.isNull() && code.toString() == defaultCode.toString();
}

} // namespace corvanta::documents
