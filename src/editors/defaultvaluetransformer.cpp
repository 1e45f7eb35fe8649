#include "defaultvaluetransformer.h"

#include "model/companyrecord.h"
#include "store/record.h"

namespace corvanta::editors {

using model::CompanyRecord;

namespace {

const QLatin1String kInversePrefix("my_company_");

} // namespace

QString DefaultValueTransformer::companyKeyOf(const store::EntityDescription& entity)
{
    for (const store::RelationshipDescription& relationship : entity.relationships()) {
        if (relationship.name.startsWith(kInversePrefix))
            return relationship.name.mid(kInversePrefix.size());
    }
    return {};
}

QVariant DefaultValueTransformer::transformedValue(const QVariant& value) const
{
    if (value.metaType() != QMetaType::fromType<store::Record*>())
        return {};
    const store::Record* record = value.value<store::Record*>();
    if (!record)
        return {};
    const QString key = companyKeyOf(record->entity());
    if (key.isEmpty())
        return false;
    const store::Record* company = m_company ? m_company : CompanyRecord::of(*record->context());
    if (!company)
        return false;
    return company->value(key).value<predicate::RecordRef>() == record->ref();
}

} // namespace corvanta::editors
