#include "defaultvaluetransformer.h"

#include "companyrecord.h"
#include "model/record.h"

namespace corvanta::documents {

namespace {

const QLatin1String kInversePrefix("my_company_");

} // namespace

QString DefaultValueTransformer::companyKeyOf(const model::EntityDescription& entity)
{
    for (const model::RelationshipDescription& relationship : entity.relationships()) {
        if (relationship.name.startsWith(kInversePrefix))
            return relationship.name.mid(kInversePrefix.size());
    }
    return {};
}

QVariant DefaultValueTransformer::transformedValue(const QVariant& value) const
{
    if (value.metaType() != QMetaType::fromType<model::Record*>())
        return {};
    const model::Record* record = value.value<model::Record*>();
    if (!record)
        return {};
    const QString key = companyKeyOf(record->entity());
    if (key.isEmpty())
        return false;
    const model::Record* company = m_company ? m_company : CompanyRecord::of(*record->context());
    if (!company)
        return false;
    return company->value(key).value<predicate::RecordRef>() == record->ref();
}

} // namespace corvanta::documents
