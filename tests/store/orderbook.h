#pragma once

#include "store/datamodel.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"

#include <QTemporaryDir>
#include <QTest>
#include <memory>

namespace corvanta::store::testing {

inline QString s(const char* text)
{
    return QString::fromUtf8(text);
}

// The store's own test model, a small order book with every kind of attribute, relationship,
// delete rule and index the store supports:
//
//   Settings    key (unique), value (any type); the model's version is the "version" setting
//   Customers   kind, name, first_name, last_name, full_name (derived), tax_number, rating,
//               desc, spent (kept in memory only); addresses (cascade), default_address
//               (one-to-one), orders, tags (many-to-many)
//   Addresses   street, city; customer, default_of
//   Orders      number, kind, draft, total, created, note; customer, lines (cascade),
//               payments (cascade, their sum kept in a column), cancel_reference (its own
//               inverse), tags; indexes (kind, created, draft, number) and (pk, kind, draft)
//   Lines       name, quantity, price; order, product; index (product, order, quantity)
//   Products    name, price, picture; lines (deny), deliveries (cascade)
//   Deliveries  quantity; product; index (product, quantity)
//   Payments    amount; order
//   Tags        name, type, colour, weekdays; customers, orders
const DataModel& orderBook();

// Customers derive `full_name`: the name of a company or supplier (kind 0 or 1), "first last"
// for a person (kind 2).
class CustomersRecord : public Record
{
public:
    using Record::Record;

protected:
    void awakeFromFetch() override { updateFullName(); }
    void awakeFromInsert() override { updateFullName(); }
    void didChangeValue(const QString& key) override;

private:
    void updateFullName();
};

// Opens a store of the order book with its record class.
std::unique_ptr<Store> openOrderBook(const QString& path, StoreError* error = nullptr);

// A fresh order book in a scratch folder.
class ScratchStore
{
public:
    ScratchStore();
    QString path() const { return m_dir.filePath(s("orders.db")); }
    Store& store() { return *m_store; }
    EditingContext& main() { return m_store->mainContext(); }
    // Closes and opens the file again, as a new start of a program does.
    void reopen();

private:
    QTemporaryDir m_dir;
    std::unique_ptr<Store> m_store;
};

inline void saveOrFail(EditingContext& context)
{
    StoreError error;
    if (!context.save(&error))
        QFAIL(qPrintable(s("save failed: ") + error.message()));
}

inline predicate::Predicate where(const QString& keyPath, predicate::Predicate::Operator op,
                                  const QVariant& value)
{
    return predicate::Predicate::compare(keyPath, op, value);
}

// An order's total against the sum of its payments: with Equal, the paid rule.
inline predicate::Predicate totalAgainstPayments(predicate::Predicate::Operator op)
{
    return predicate::Predicate::comparison(predicate::Expression::keyPath(s("total")), op,
                                            predicate::Expression::keyPath(s("payments.@sum.amount")));
}

// Runs SQL on a database file through a connection of its own, as another program would, and
// gives the first column of what the last statement returns.
QStringList runSql(const QString& path, const QStringList& statements);

// The values of `key` of the records, in order.
inline QStringList valuesOf(const QList<Record*>& records, const char* key = "name")
{
    QStringList result;
    for (const Record* r : records)
        result << r->value(s(key)).toString();
    return result;
}

} // namespace corvanta::store::testing
