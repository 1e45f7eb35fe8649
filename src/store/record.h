#pragma once

#include "entitydescription.h"
#include "predicate/keypathsource.h"
#include "predicate/recordref.h"

#include <QBitArray>
#include <QList>
#include <QVariant>
#include <optional>
#include <vector>

namespace corvanta::store {

class EditingContext;

// One record of an entity, owned by the editing context that fetched or inserted it.
// Values are addressed by attribute name and by key path; relationships keep their inverses
// in step. Subclasses derive attributes through the protected hooks.
class Record : public predicate::KeyPathSource
{
public:
    struct Init
    {
        EditingContext* context = nullptr;
        const EntityDescription* entity = nullptr;
        qint64 pk = 0;
    };

    explicit Record(const Init& init);
    ~Record() override;
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    EditingContext* context() const { return m_context; }
    const EntityDescription& entity() const { return *m_entity; }
    const QString& entityName() const { return m_entity->name(); }
    qint64 pk() const { return m_pk; }
    predicate::RecordRef ref() const { return {m_entity->name(), m_pk}; }

    // An attribute's value; for a to-one relationship the destination as a RecordRef; for a
    // to-many a QVariantList of RecordRefs. Null for a missing value.
    QVariant value(const QString& key) const;
    // Sets an attribute (converted to its type) or a relationship (a Record*, a RecordRef, or
    // a list of them for a to-many). Unknown keys are a programming error and are ignored
    // with a warning; so is a number that is not finite (NaN, infinity) for a decimal.
    void setValue(const QString& key, const QVariant& value);

    // Follows a key path: to-one chains (`client.default_address.street`), to-many steps
    // (giving a list), aggregates (`payments.@sum.amount`, `@count`, `@avg`, `@min`, `@max`)
    // and `self`. Sums add in the records' stored order. An unknown key gives null.
    QVariant valueForKeyPath(const QString& keyPath) const override;
    predicate::RecordRef selfRef() const override { return ref(); }

    Record* related(const QString& toOne) const;
    QList<Record*> relatedList(const QString& toMany) const;
    void setRelated(const QString& toOne, Record* destination);
    void addRelated(const QString& toMany, Record* destination);
    void removeRelated(const QString& toMany, Record* destination);

    bool isFault() const { return m_fault; }
    bool isInserted() const { return m_inserted; }
    bool isDeleted() const { return m_deleted; }
    bool isUpdated() const { return m_changed.count(true) > 0; }
    bool hasChanges() const { return m_inserted || m_deleted || isUpdated(); }
    // Names of the stored properties changed since the last save.
    QStringList changedKeys() const;

protected:
    // Called after the record's values were read from the store (also after a merge).
    virtual void awakeFromFetch() {}
    // Called once when the record is inserted into a context.
    virtual void awakeFromInsert() {}
    // Called after setValue changed an attribute, or setValue or setRelated changed a to-one
    // relationship (not when the other end of a relationship moved it).
    virtual void didChangeValue(const QString& key) { Q_UNUSED(key) }
    // Lets a subclass adapt an incoming value before it is stored (lists joined to text ...).
    virtual QVariant willSetValue(const QString& key, const QVariant& value)
    {
        Q_UNUSED(key)
        return value;
    }

    // Sets an attribute without hooks; `markChanged` decides whether the next save writes it.
    void setPrimitiveValue(const QString& key, const QVariant& value, bool markChanged);
    QVariant primitiveValue(const QString& key) const;

private:
    void setToOneNotifying(const RelationshipDescription& relationship, Record* destination);

    friend class EditingContext;
    friend class RecordRelationships;

    void fulfill() const;
    const QVariant& slotValue(int slot) const;
    void setSlot(int slot, const QVariant& value, bool markChanged);
    QVariant valueForPathParts(const QStringList& parts, int from) const;

    EditingContext* m_context;
    const EntityDescription* m_entity;
    qint64 m_pk;
    mutable std::vector<QVariant> m_values;                    // attributes, then to-one keys
    mutable std::vector<std::optional<QList<qint64>>> m_lists; // keys of the other relationships
    std::optional<std::vector<QVariant>> m_committed;          // values before the first change
    QBitArray m_changed;
    mutable bool m_fault = false;
    bool m_inserted = false;
    bool m_deleted = false;
    bool m_tracked = false; // listed among the context's changed records
};

} // namespace corvanta::store

Q_DECLARE_METATYPE(corvanta::store::Record*)
