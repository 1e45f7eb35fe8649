#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace corvanta::store {

enum class AttributeType {
    String,
    Integer,
    Decimal, // every amount, rate, price and quantity: a double
    Boolean,
    Date,       // stored as seconds since 2001-01-01 00:00:00 UTC
    Colour,     // QColor in memory, "#" + 16 hex digits (RGBA, 16 bits each) when stored
    Image,      // picture data
    Variant,    // a value whose type the key decides (setting values)
    IntegerSet, // a set of small integers, such as weekdays; "1,3,5" when stored
};

// What happens to the records at the other end when a record is deleted.
enum class DeleteRule {
    Nullify, // the other end forgets the deleted record
    Cascade, // the records at the other end are deleted too
    Deny,    // the save fails while the other end still holds records
};

// How a relationship is kept in the database.
enum class RelationshipStorage {
    ForeignKey,        // a to-one with its own column holding the destination's key
    InverseForeignKey, // the other end holds the column (a to-many, or the column-less side of a one-to-one)
    JoinTable,         // many-to-many, in a table of key pairs
};

struct AttributeDescription
{
    QString name;
    AttributeType type = AttributeType::String;
    bool transient = false; // kept in memory only, never stored
    int slot = -1;          // position in a record's value slots
};

struct RelationshipDescription
{
    QString name;
    QString destination;
    QString inverse;
    bool toMany = false;
    DeleteRule deleteRule = DeleteRule::Nullify;
    RelationshipStorage storage = RelationshipStorage::ForeignKey;
    QString joinTable;      // JoinTable storage: the table of pairs
    bool joinOwner = false; // JoinTable storage: this entity's keys are the table's `source` column
    int destinationIndex = -1;
    int inverseIndex = -1; // index of the inverse among the destination's relationships
    int slot = -1;         // ForeignKey: value slot; otherwise: list slot
};

struct IndexDescription
{
    QStringList columns;
    bool unique = false;

    // The index's name in the database.
    QString name(const QString& table) const
    {
        return table + QLatin1Char('_') + columns.join(QLatin1Char('_'));
    }
};

// A sum over a to-many relationship that the database keeps in a column of the owner, so that
// lists and counts selecting by it need not add up the members for every record. The column is
// named after the key path it answers ("payments.@sum.amount") and is recomputed by triggers
// whenever a member changes, adding the members in their stored order as the sum always does.
struct MaterializedSum
{
    QString relationship; // the to-many relationship
    QString attribute;    // the members' attribute that is summed
    QString column() const { return relationship + QLatin1String(".@sum.") + attribute; }
};

// One entity: its attributes, relationships and indexes, with lookup by name.
class EntityDescription
{
public:
    explicit EntityDescription(const QString& name = {});

    const QString& name() const { return m_name; }
    int index() const { return m_index; }

    const QList<AttributeDescription>& attributes() const { return m_attributes; }
    const QList<RelationshipDescription>& relationships() const { return m_relationships; }
    const QList<IndexDescription>& indexes() const { return m_indexes; }
    // An index led by the primary key: a narrow copy of a few columns, which a lookup of one
    // record by its key can read instead of the record's whole row. Null when there is none.
    const IndexDescription* lookupIndex() const;
    const QList<MaterializedSum>& materializedSums() const { return m_materializedSums; }

    const AttributeDescription* attribute(const QString& name) const;
    const RelationshipDescription* relationship(const QString& name) const;
    int relationshipIndex(const QString& name) const;
    bool hasProperty(const QString& name) const { return attribute(name) || relationship(name); }

    // Slots: every attribute, then every ForeignKey relationship, hold a value in a record;
    // the other relationships hold a list of keys.
    int valueSlotCount() const { return m_valueSlotCount; }
    int listSlotCount() const { return m_listSlotCount; }

    // The stored columns besides the primary key, in slot order, with their slots.
    const QStringList& columns() const { return m_columns; }
    const QList<int>& columnSlots() const { return m_columnSlots; }
    // The in-memory type of each column's values; foreign keys are Integer.
    const QList<AttributeType>& columnTypes() const { return m_columnTypes; }
    // The attribute or relationship name of a value slot.
    const QString& nameOfSlot(int slot) const { return m_slotNames.at(slot); }
    int slotOfColumn(const QString& column) const;

private:
    friend class DataModel;
    friend class DataModelBuilder;

    QString m_name;
    int m_index = -1;
    QList<AttributeDescription> m_attributes;
    QList<RelationshipDescription> m_relationships;
    QList<IndexDescription> m_indexes;
    QList<MaterializedSum> m_materializedSums;
    QHash<QString, int> m_attributeByName;
    QHash<QString, int> m_relationshipByName;
    int m_valueSlotCount = 0;
    int m_listSlotCount = 0;
    QStringList m_columns;
    QList<int> m_columnSlots;
    QList<AttributeType> m_columnTypes;
    QStringList m_slotNames;
};

} // namespace corvanta::store
