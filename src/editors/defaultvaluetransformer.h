#pragma once

#include "valuetransformer.h"

#include <QString>

namespace corvanta::store {
class EntityDescription;
class Record;
} // namespace corvanta::store

namespace corvanta::editors {

// Ticks the default row of a list: a record (store::Record*) gives true when the company
// holds this very record as its default of the kind, false otherwise; anything that is not a
// record gives null. The kind is found from the record's relationships: the first whose name
// begins with "my_company_" is the inverse of a company default, and the rest of its name is
// the company's key (`my_company_default_currency` -> `default_currency`).
class DefaultValueTransformer : public editors::ValueTransformer
{
public:
    // Without a company, the one of the record's own editing context is looked up at each use.
    explicit DefaultValueTransformer(const store::Record* company = nullptr)
        : m_company(company)
    {}

    QVariant transformedValue(const QVariant& value) const override;

    // The company key of the entity's default ("default_tax"), or empty when it has none.
    static QString companyKeyOf(const store::EntityDescription& entity);

private:
    const store::Record* m_company;
};

} // namespace corvanta::editors
