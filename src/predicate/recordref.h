#pragma once

#include <QHashFunctions>
#include <QMetaType>
#include <QString>

namespace corvanta::predicate {

// A reference to one stored record: its entity and primary key. Predicates carry records
// as constants in this form ("item == %@"), so the language needs no knowledge of the store.
struct RecordRef
{
    QString entity;
    qint64 pk = 0;

    bool isNull() const { return pk == 0; }
    friend bool operator==(const RecordRef&, const RecordRef&) = default;
};

inline size_t qHash(const RecordRef& ref, size_t seed = 0)
{
    return qHashMulti(seed, ref.entity, ref.pk);
}

} // namespace corvanta::predicate

Q_DECLARE_METATYPE(corvanta::predicate::RecordRef)
