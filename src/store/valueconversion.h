#pragma once

#include "entitydescription.h"

#include <QDateTime>
#include <QVariant>

namespace corvanta::store::valueconversion {

// Seconds since 2001-01-01 00:00:00 UTC: the store's and the predicate language's date unit.
double toReferenceSeconds(const QDateTime& dateTime);
QDateTime fromReferenceSeconds(double seconds);

// Brings a value into the in-memory form of an attribute type (qint64, double, bool, QString,
// QDateTime, QColor, QByteArray, QVariantList of ints); null stays null. Text that is not a
// number stays text for a Variant attribute.
QVariant toMemory(AttributeType type, const QVariant& value);

// The value bound to an SQL statement for an in-memory value of the type.
QVariant toSql(AttributeType type, const QVariant& value);

// The value bound for a predicate constant (dates to seconds, booleans to 0/1, records to keys).
QVariant constantToSql(const QVariant& value);

} // namespace corvanta::store::valueconversion
