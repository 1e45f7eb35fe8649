#include "record.h"

#include "editingcontext.h"
#include "store.h"
#include "storelog.h"
#include "valueconversion.h"

#include <cmath>

namespace corvanta::store {

namespace {

bool sameValue(const QVariant& a, const QVariant& b)
{
    if (a.isNull() || b.isNull())
        return a.isNull() == b.isNull();
    return a == b;
}

Record* toRecord(EditingContext* context, const QVariant& value)
{
    if (value.typeId() == qMetaTypeId<Record*>())
        return value.value<Record*>();
    if (value.typeId() == qMetaTypeId<predicate::RecordRef>())
        return context->record(value.value<predicate::RecordRef>());
    return nullptr;
}

QVariant aggregate(const QString& function, const QVariantList& values)
{
    if (function == QLatin1String("@count"))
        return qint64(values.size());
    QVariantList present;
    for (const QVariant& v : values) {
        if (!v.isNull())
            present << v;
    }
    if (function == QLatin1String("@sum") || function == QLatin1String("@avg")) {
        double sum = 0.0; // added in the members' stored order, as the SQL sum does
        for (const QVariant& v : present)
            sum += v.toDouble();
        if (function == QLatin1String("@sum"))
            return sum;
        return present.isEmpty() ? QVariant() : QVariant(sum / double(present.size()));
    }
    if (function == QLatin1String("@min") || function == QLatin1String("@max")) {
        QVariant best;
        for (const QVariant& v : present) {
            const auto order = QVariant::compare(v, best);
            if (best.isNull() || (function == QLatin1String("@min") ? order == QPartialOrdering::Less
                                                                    : order == QPartialOrdering::Greater))
                best = v;
        }
        return best;
    }
    qCWarning(lcStore) << "unknown aggregate" << function;
    return {};
}

} // namespace

Record::Record(const Init& init)
    : m_context(init.context)
    , m_entity(init.entity)
    , m_pk(init.pk)
    , m_values(size_t(init.entity->valueSlotCount()))
    , m_lists(size_t(init.entity->listSlotCount()))
    , m_changed(init.entity->valueSlotCount())
{}

Record::~Record() = default;

void Record::fulfill() const
{
    if (m_fault)
        m_context->fulfill(const_cast<Record*>(this));
}

const QVariant& Record::slotValue(int slot) const
{
    fulfill();
    return m_values[size_t(slot)];
}

void Record::setSlot(int slot, const QVariant& value, bool markChanged)
{
    fulfill();
    if (markChanged) {
        if (!m_inserted && !m_committed)
            m_committed = m_values;
        m_changed.setBit(slot);
        m_context->noteChanged(this);
    }
    m_values[size_t(slot)] = value;
}

QVariant Record::value(const QString& key) const
{
    if (const AttributeDescription* a = m_entity->attribute(key))
        return slotValue(a->slot);
    if (const RelationshipDescription* r = m_entity->relationship(key)) {
        const QString& destination = r->destination;
        if (r->storage == RelationshipStorage::ForeignKey) {
            const QVariant& pk = slotValue(r->slot);
            return pk.isNull() ? QVariant()
                               : QVariant::fromValue(predicate::RecordRef{destination, pk.toLongLong()});
        }
        const QList<qint64>& keys = m_context->list(const_cast<Record*>(this), *r);
        if (!r->toMany)
            return keys.isEmpty() ? QVariant()
                                  : QVariant::fromValue(predicate::RecordRef{destination, keys.first()});
        QVariantList refs;
        refs.reserve(keys.size());
        for (qint64 pk : keys)
            refs << QVariant::fromValue(predicate::RecordRef{destination, pk});
        return refs;
    }
    if (key == QLatin1String("self"))
        return QVariant::fromValue(ref());
    qCWarning(lcStore) << "Record::value: unknown key" << key << "of" << m_entity->name();
    return {};
}

void Record::setValue(const QString& key, const QVariant& value)
{
    if (const AttributeDescription* a = m_entity->attribute(key)) {
        const QVariant converted = valueconversion::toMemory(a->type, willSetValue(key, value));
        if (a->type == AttributeType::Decimal && !converted.isNull() &&
            !std::isfinite(converted.toDouble())) {
            // Amounts are finite numbers; whoever takes the value in reports it to the user.
            qCWarning(lcStore) << "Record::setValue: refused" << converted.toDouble() << "for"
                               << m_entity->name() << key;
            return;
        }
        if (sameValue(slotValue(a->slot), converted))
            return;
        setSlot(a->slot, converted, !a->transient);
        didChangeValue(key);
        return;
    }
    const RelationshipDescription* r = m_entity->relationship(key);
    if (!r) {
        qCWarning(lcStore) << "Record::setValue: unknown key" << key << "of" << m_entity->name();
        return;
    }
    if (!r->toMany) {
        setToOneNotifying(*r, toRecord(m_context, value));
        return;
    }
    QList<Record*> wanted;
    for (const QVariant& item : value.toList()) {
        if (Record* d = toRecord(m_context, item))
            wanted << d;
    }
    for (Record* current : relatedList(key)) {
        if (!wanted.contains(current))
            m_context->removeToMany(this, *r, current);
    }
    for (Record* d : wanted)
        m_context->addToMany(this, *r, d);
}

void Record::setPrimitiveValue(const QString& key, const QVariant& value, bool markChanged)
{
    const AttributeDescription* a = m_entity->attribute(key);
    if (!a) {
        qCWarning(lcStore) << "Record::setPrimitiveValue: unknown attribute" << key << "of"
                           << m_entity->name();
        return;
    }
    const QVariant converted = valueconversion::toMemory(a->type, value);
    if (sameValue(slotValue(a->slot), converted))
        return;
    setSlot(a->slot, converted, markChanged && !a->transient);
}

QVariant Record::primitiveValue(const QString& key) const
{
    const AttributeDescription* a = m_entity->attribute(key);
    return a ? slotValue(a->slot) : QVariant();
}

QVariant Record::valueForKeyPath(const QString& keyPath) const
{
    // Most paths name one attribute: it is read without taking the path apart.
    if (const AttributeDescription* a = m_entity->attribute(keyPath))
        return slotValue(a->slot);
    return valueForPathParts(keyPath.split(QLatin1Char('.')), 0);
}

QVariant Record::valueForPathParts(const QStringList& parts, int from) const
{
    const QString& name = parts.at(from);
    const bool last = from == parts.size() - 1;
    if (name == QLatin1String("self"))
        return last ? QVariant::fromValue(ref()) : valueForPathParts(parts, from + 1);
    if (m_entity->attribute(name))
        return last ? value(name) : QVariant();
    const RelationshipDescription* r = m_entity->relationship(name);
    if (!r)
        return {};
    if (!r->toMany) {
        if (last)
            return value(name);
        const Record* destination = related(name);
        return destination ? destination->valueForPathParts(parts, from + 1) : QVariant();
    }
    const QList<Record*> members = relatedList(name);
    if (last)
        return value(name);
    const QString& next = parts.at(from + 1);
    if (next.startsWith(QLatin1Char('@'))) {
        QVariantList values;
        for (const Record* member : members) {
            if (from + 2 < parts.size())
                values << member->valueForPathParts(parts, from + 2);
            else
                values << QVariant::fromValue(member->ref());
        }
        return aggregate(next, values);
    }
    QVariantList values;
    for (const Record* member : members) {
        const QVariant v = member->valueForPathParts(parts, from + 1);
        if (v.typeId() == QMetaType::QVariantList)
            values += v.toList();
        else
            values << v;
    }
    return values;
}

Record* Record::related(const QString& toOne) const
{
    const QVariant v = value(toOne);
    if (v.typeId() != qMetaTypeId<predicate::RecordRef>())
        return nullptr;
    return m_context->record(v.value<predicate::RecordRef>());
}

QList<Record*> Record::relatedList(const QString& toMany) const
{
    QList<Record*> records;
    const RelationshipDescription* r = m_entity->relationship(toMany);
    if (!r || r->storage == RelationshipStorage::ForeignKey) {
        if (Record* one = related(toMany))
            records << one;
        return records;
    }
    const QList<qint64> keys = m_context->list(const_cast<Record*>(this), *r);
    records.reserve(keys.size());
    for (qint64 pk : keys)
        records << m_context->record({r->destination, pk});
    return records;
}

void Record::setRelated(const QString& toOne, Record* destination)
{
    const RelationshipDescription* r = m_entity->relationship(toOne);
    if (!r || r->toMany) {
        qCWarning(lcStore) << "Record::setRelated: no to-one" << toOne << "on" << m_entity->name();
        return;
    }
    setToOneNotifying(*r, destination);
}

void Record::setToOneNotifying(const RelationshipDescription& relationship, Record* destination)
{
    const Record* before = related(relationship.name);
    m_context->setToOne(this, relationship, destination);
    if (related(relationship.name) != before)
        didChangeValue(relationship.name);
}

void Record::addRelated(const QString& toMany, Record* destination)
{
    const RelationshipDescription* r = m_entity->relationship(toMany);
    if (!r || !r->toMany || !destination) {
        qCWarning(lcStore) << "Record::addRelated: no to-many" << toMany << "on" << m_entity->name();
        return;
    }
    m_context->addToMany(this, *r, destination);
}

void Record::removeRelated(const QString& toMany, Record* destination)
{
    const RelationshipDescription* r = m_entity->relationship(toMany);
    if (!r || !r->toMany || !destination) {
        qCWarning(lcStore) << "Record::removeRelated: no to-many" << toMany << "on" << m_entity->name();
        return;
    }
    m_context->removeToMany(this, *r, destination);
}

QStringList Record::changedKeys() const
{
    QStringList keys;
    for (int slot = 0; slot < m_changed.size(); ++slot) {
        if (m_changed.testBit(slot))
            keys << m_entity->nameOfSlot(slot);
    }
    return keys;
}

} // namespace corvanta::store
