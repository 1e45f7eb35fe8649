#include "datamodel.h"

#include <QtGlobal>

namespace corvanta::store {

const EntityDescription* DataModel::entity(const QString& name) const
{
    const auto it = m_entityByName.constFind(name);
    return it == m_entityByName.cend() ? nullptr : &m_entities.at(*it);
}

const RelationshipDescription& DataModel::inverseOf(const RelationshipDescription& relationship) const
{
    return m_entities.at(relationship.destinationIndex).relationships().at(relationship.inverseIndex);
}

QStringList DataModel::joinTables() const
{
    QStringList tables;
    for (const EntityDescription& e : m_entities) {
        for (const RelationshipDescription& r : e.relationships()) {
            if (r.storage == RelationshipStorage::JoinTable && r.joinOwner)
                tables << r.joinTable;
        }
    }
    return tables;
}

DataModelBuilder::DataModelBuilder(const QString& version)
{
    m_model.m_version = version;
}

void DataModelBuilder::setApplicationId(int id)
{
    m_model.m_applicationId = id;
}

void DataModelBuilder::setVersionSetting(const QString& entity, const QString& keyAttribute,
                                         const QString& valueAttribute, const QString& key)
{
    m_model.m_versionSetting = {entity, keyAttribute, valueAttribute, key};
}

DataModelBuilder::EntityBuilder DataModelBuilder::entity(const QString& name)
{
    if (!m_model.m_entityByName.contains(name)) {
        EntityDescription e(name);
        e.m_index = int(m_model.m_entities.size());
        m_model.m_entityByName.insert(name, e.m_index);
        m_model.m_entities.append(e);
    }
    return EntityBuilder(*this, m_model.m_entityByName.value(name));
}

EntityDescription& DataModelBuilder::entityNamed(const QString& name)
{
    const auto it = m_model.m_entityByName.constFind(name);
    if (it == m_model.m_entityByName.cend())
        qFatal("data model: unknown entity %s", qPrintable(name));
    return m_model.m_entities[*it];
}

DataModelBuilder::EntityBuilder& DataModelBuilder::EntityBuilder::attribute(const QString& name,
                                                                            AttributeType type)
{
    EntityDescription& e = m_builder.m_model.m_entities[m_entity];
    if (e.m_attributeByName.contains(name))
        qFatal("data model: %s.%s defined twice", qPrintable(e.m_name), qPrintable(name));
    e.m_attributeByName.insert(name, int(e.m_attributes.size()));
    e.m_attributes.append({name, type, false, -1});
    return *this;
}

DataModelBuilder::EntityBuilder& DataModelBuilder::EntityBuilder::transientAttribute(const QString& name,
                                                                                     AttributeType type)
{
    attribute(name, type);
    m_builder.m_model.m_entities[m_entity].m_attributes.last().transient = true;
    return *this;
}

DataModelBuilder::EntityBuilder& DataModelBuilder::EntityBuilder::numbered(const QString& prefix, int count,
                                                                           AttributeType type)
{
    for (int i = 1; i <= count; ++i)
        attribute(prefix + QStringLiteral("%1").arg(i, 2, 10, QLatin1Char('0')), type);
    return *this;
}

DataModelBuilder::EntityBuilder& DataModelBuilder::EntityBuilder::index(const QStringList& columns,
                                                                        bool unique)
{
    m_builder.m_model.m_entities[m_entity].m_indexes.append({columns, unique});
    return *this;
}

DataModelBuilder::EntityBuilder& DataModelBuilder::EntityBuilder::materializedSum(const QString& toMany,
                                                                                  const QString& attribute)
{
    m_builder.m_model.m_entities[m_entity].m_materializedSums.append({toMany, attribute});
    return *this;
}

void DataModelBuilder::addRelationship(const QString& entity, RelationshipDescription description)
{
    EntityDescription& e = entityNamed(entity);
    if (e.m_relationshipByName.contains(description.name) || e.m_attributeByName.contains(description.name))
        qFatal("data model: %s.%s defined twice", qPrintable(entity), qPrintable(description.name));
    e.m_relationshipByName.insert(description.name, int(e.m_relationships.size()));
    e.m_relationships.append(description);
}

namespace {

RelationshipDescription relationship(const QString& name, const QString& destination, const QString& inverse,
                                     bool toMany, DeleteRule rule, RelationshipStorage storage,
                                     const QString& joinTable = {}, bool joinOwner = false)
{
    RelationshipDescription r;
    r.name = name;
    r.destination = destination;
    r.inverse = inverse;
    r.toMany = toMany;
    r.deleteRule = rule;
    r.storage = storage;
    r.joinTable = joinTable;
    r.joinOwner = joinOwner;
    return r;
}

} // namespace

void DataModelBuilder::oneToMany(const QString& ownerEntity, const QString& toMany, DeleteRule ownerRule,
                                 const QString& memberEntity, const QString& toOne, DeleteRule memberRule)
{
    addRelationship(ownerEntity, relationship(toMany, memberEntity, toOne, true, ownerRule,
                                              RelationshipStorage::InverseForeignKey));
    addRelationship(memberEntity, relationship(toOne, ownerEntity, toMany, false, memberRule,
                                               RelationshipStorage::ForeignKey));
}

void DataModelBuilder::oneToOne(const QString& entityA, const QString& nameA, DeleteRule ruleA,
                                const QString& entityB, const QString& nameB, DeleteRule ruleB)
{
    addRelationship(entityA,
                    relationship(nameA, entityB, nameB, false, ruleA, RelationshipStorage::ForeignKey));
    addRelationship(
        entityB, relationship(nameB, entityA, nameA, false, ruleB, RelationshipStorage::InverseForeignKey));
}

void DataModelBuilder::symmetricToOne(const QString& entity, const QString& name, DeleteRule rule)
{
    addRelationship(entity, relationship(name, entity, name, false, rule, RelationshipStorage::ForeignKey));
}

void DataModelBuilder::manyToMany(const QString& entityA, const QString& nameA, DeleteRule ruleA,
                                  const QString& entityB, const QString& nameB, DeleteRule ruleB)
{
    const QString table = entityA + QLatin1Char('_') + nameA;
    addRelationship(entityA, relationship(nameA, entityB, nameB, true, ruleA, RelationshipStorage::JoinTable,
                                          table, true));
    addRelationship(entityB, relationship(nameB, entityA, nameA, true, ruleB, RelationshipStorage::JoinTable,
                                          table, false));
}

DataModel DataModelBuilder::build()
{
    for (EntityDescription& e : m_model.m_entities) {
        int valueSlot = 0;
        int listSlot = 0;
        e.m_columns.clear();
        e.m_columnSlots.clear();
        e.m_columnTypes.clear();
        e.m_slotNames.clear();
        for (AttributeDescription& a : e.m_attributes) {
            a.slot = valueSlot++;
            e.m_slotNames << a.name;
            if (!a.transient) {
                e.m_columns << a.name;
                e.m_columnSlots << a.slot;
                e.m_columnTypes << a.type;
            }
        }
        for (RelationshipDescription& r : e.m_relationships) {
            const auto dest = m_model.m_entityByName.constFind(r.destination);
            if (dest == m_model.m_entityByName.cend())
                qFatal("data model: %s.%s leads to unknown entity %s", qPrintable(e.m_name),
                       qPrintable(r.name), qPrintable(r.destination));
            r.destinationIndex = *dest;
            if (r.storage == RelationshipStorage::ForeignKey) {
                r.slot = valueSlot++;
                e.m_slotNames << r.name;
                e.m_columns << r.name;
                e.m_columnSlots << r.slot;
                e.m_columnTypes << AttributeType::Integer;
            } else {
                r.slot = listSlot++;
            }
        }
        e.m_valueSlotCount = valueSlot;
        e.m_listSlotCount = listSlot;
    }
    for (EntityDescription& e : m_model.m_entities) {
        for (RelationshipDescription& r : e.m_relationships) {
            const EntityDescription& dest = m_model.m_entities.at(r.destinationIndex);
            r.inverseIndex = dest.relationshipIndex(r.inverse);
            if (r.inverseIndex < 0)
                qFatal("data model: %s.%s has no inverse %s", qPrintable(e.m_name), qPrintable(r.name),
                       qPrintable(r.inverse));
        }
    }
    for (const EntityDescription& e : m_model.m_entities) {
        for (const MaterializedSum& sum : e.m_materializedSums) {
            const RelationshipDescription* r = e.relationship(sum.relationship);
            if (!r || !r->toMany || r->storage != RelationshipStorage::InverseForeignKey ||
                !m_model.m_entities.at(r->destinationIndex).attribute(sum.attribute))
                qFatal("data model: %s cannot keep the sum %s", qPrintable(e.m_name),
                       qPrintable(sum.column()));
        }
    }
    return m_model;
}

} // namespace corvanta::store
