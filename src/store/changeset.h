#pragma once

#include "predicate/recordref.h"

#include <QList>
#include <QMetaType>
#include <QSet>
#include <QStringList>
#include <QVariant>

namespace corvanta::store {

// What one save changed, as listeners and merging contexts see it.
class ChangeSet
{
public:
    struct Update
    {
        predicate::RecordRef ref;
        QStringList keys;    // the stored properties that changed
        QList<int> slots;    // their value slots, parallel to keys
        QVariantList values; // their new values (in-memory form; to-one: the destination's key)
    };
    // A foreign key that pointed somewhere before or after the save: the lists of those
    // destinations are no longer current.
    struct ForeignKeyTouch
    {
        int entity = -1;       // the entity holding the foreign key
        int relationship = -1; // the relationship index within that entity
    };

    QList<predicate::RecordRef> inserted;
    QList<Update> updated;
    QList<predicate::RecordRef> deleted;
    QList<ForeignKeyTouch> touchedForeignKeys;
    QStringList touchedJoinTables;

    bool isEmpty() const { return inserted.isEmpty() && updated.isEmpty() && deleted.isEmpty(); }
    // Names of every entity with an inserted, updated or deleted record.
    QSet<QString> entities() const;
    bool touches(const QString& entity) const { return entities().contains(entity); }
};

} // namespace corvanta::store

Q_DECLARE_METATYPE(corvanta::store::ChangeSet)
