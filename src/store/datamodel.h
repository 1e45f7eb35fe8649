#pragma once

#include "entitydescription.h"

#include <QList>
#include <QString>

namespace corvanta::store {

// The definition of every entity of a company database. Built once with DataModelBuilder,
// immutable afterwards; the store generates and migrates its schema from it.
class DataModel
{
public:
    // Where the model's version is recorded in a database: the value of the record of `entity`
    // whose `keyAttribute` is `key`. Empty when the model records no version.
    struct VersionSetting
    {
        QString entity;
        QString keyAttribute;
        QString valueAttribute;
        QString key;
    };

    const QString& version() const { return m_version; }
    const VersionSetting& versionSetting() const { return m_versionSetting; }
    // The number that marks a database file as one of this model's (SQLite's application id).
    int applicationId() const { return m_applicationId; }
    const QList<EntityDescription>& entities() const { return m_entities; }
    const EntityDescription* entity(const QString& name) const;
    const EntityDescription& entity(int index) const { return m_entities.at(index); }

    // The other end of a relationship.
    const RelationshipDescription& inverseOf(const RelationshipDescription& relationship) const;

    // The join tables of the many-to-many relationships, each named once.
    QStringList joinTables() const;

private:
    friend class DataModelBuilder;
    QString m_version;
    VersionSetting m_versionSetting;
    int m_applicationId = 0;
    QList<EntityDescription> m_entities;
    QHash<QString, int> m_entityByName;
};

// Builds a DataModel: entities with their attributes, then relationships declared as pairs so
// that every relationship has its inverse.
class DataModelBuilder
{
public:
    explicit DataModelBuilder(const QString& version);

    class EntityBuilder
    {
    public:
        EntityBuilder& attribute(const QString& name, AttributeType type);
        EntityBuilder& transientAttribute(const QString& name, AttributeType type);
        EntityBuilder& string(const QString& name) { return attribute(name, AttributeType::String); }
        EntityBuilder& integer(const QString& name) { return attribute(name, AttributeType::Integer); }
        EntityBuilder& decimal(const QString& name) { return attribute(name, AttributeType::Decimal); }
        EntityBuilder& boolean(const QString& name) { return attribute(name, AttributeType::Boolean); }
        EntityBuilder& date(const QString& name) { return attribute(name, AttributeType::Date); }
        EntityBuilder& colour(const QString& name) { return attribute(name, AttributeType::Colour); }
        // `prefix` + "01" ... `prefix` + "NN" (two digits), all of one type.
        EntityBuilder& numbered(const QString& prefix, int count, AttributeType type);
        EntityBuilder& index(const QStringList& columns, bool unique = false);
        // Keeps `toMany.@sum.attribute` in a column of its own; see MaterializedSum.
        EntityBuilder& materializedSum(const QString& toMany, const QString& attribute);

    private:
        friend class DataModelBuilder;
        EntityBuilder(DataModelBuilder& builder, int entity)
            : m_builder(builder)
            , m_entity(entity)
        {}
        DataModelBuilder& m_builder;
        int m_entity;
    };

    EntityBuilder entity(const QString& name);

    void setApplicationId(int id);
    // The record that holds the version (see DataModel::versionSetting).
    void setVersionSetting(const QString& entity, const QString& keyAttribute, const QString& valueAttribute,
                           const QString& key);

    // `ownerEntity.toMany` <-> `memberEntity.toOne`; the member holds the column.
    void oneToMany(const QString& ownerEntity, const QString& toMany, DeleteRule ownerRule,
                   const QString& memberEntity, const QString& toOne, DeleteRule memberRule);
    // `entityA.nameA` <-> `entityB.nameB`, both to-one; entity A holds the column.
    void oneToOne(const QString& entityA, const QString& nameA, DeleteRule ruleA, const QString& entityB,
                  const QString& nameB, DeleteRule ruleB);
    // A to-one that is its own inverse: setting it on one record sets it on the other too.
    void symmetricToOne(const QString& entity, const QString& name, DeleteRule rule);
    // `entityA.nameA` <-> `entityB.nameB`, both to-many, kept in the join table "entityA_nameA".
    void manyToMany(const QString& entityA, const QString& nameA, DeleteRule ruleA, const QString& entityB,
                    const QString& nameB, DeleteRule ruleB);

    // Resolves names and slots; aborts on an inconsistent definition (a programming error).
    DataModel build();

private:
    EntityDescription& entityNamed(const QString& name);
    void addRelationship(const QString& entity, RelationshipDescription description);

    DataModel m_model;
};

} // namespace corvanta::store
