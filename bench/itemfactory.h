#pragma once

#include <QDate>
#include <QList>
#include <QString>
#include <array>

namespace corvanta::store {
class Record;
}

namespace corvanta::bench {

class BatchInserter;
class Random;
class ReferenceData;

// What document rows copy from an item.
struct ItemSnapshot
{
    qint64 pk = 0;
    int type = 0; // 0 service, 1 product
    QString name;
    QString code;
    QString unitName;
    qint64 unit = 0;
    double unitPrice = 0.0;
    std::array<double, 5> customPrices{};
    int tax = 0; // index into ReferenceData::taxes()
};

// Makes one item; a product kept in the warehouse gets its stock movements.
class ItemFactory
{
public:
    // Goods are received from `suppliers` (client keys; may be empty) between `firstDay` and `lastDay`.
    ItemFactory(BatchInserter& inserter, Random& random, const ReferenceData& reference,
                QList<qint64> suppliers, QDate firstDay, QDate lastDay);

    // `number` makes the item code unique.
    ItemSnapshot make(int number);

private:
    void addMovements(store::Record* item);

    BatchInserter& m_inserter;
    Random& m_random;
    const ReferenceData& m_reference;
    QList<qint64> m_suppliers;
    QDate m_firstDay;
    int m_days;
};

} // namespace corvanta::bench
