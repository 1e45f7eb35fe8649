#include "entitydescription.h"

namespace corvanta::store {

EntityDescription::EntityDescription(const QString& name)
    : m_name(name)
{}

const AttributeDescription* EntityDescription::attribute(const QString& name) const
{
    const auto it = m_attributeByName.constFind(name);
    return it == m_attributeByName.cend() ? nullptr : &m_attributes.at(*it);
}

const RelationshipDescription* EntityDescription::relationship(const QString& name) const
{
    const auto it = m_relationshipByName.constFind(name);
    return it == m_relationshipByName.cend() ? nullptr : &m_relationships.at(*it);
}

int EntityDescription::relationshipIndex(const QString& name) const
{
    return m_relationshipByName.value(name, -1);
}

int EntityDescription::slotOfColumn(const QString& column) const
{
    const qsizetype i = m_columns.indexOf(column);
    return i < 0 ? -1 : m_columnSlots.at(i);
}

const IndexDescription* EntityDescription::lookupIndex() const
{
    for (const IndexDescription& index : m_indexes) {
        if (index.columns.value(0) == QLatin1String("pk"))
            return &index;
    }
    return nullptr;
}

} // namespace corvanta::store
