#pragma once

#include <QDate>
#include <QDateTime>
#include <QList>

namespace corvanta::store {
class Record;
}

namespace corvanta::bench {

class BatchInserter;
class Random;
class ReferenceData;

// Makes one to-do: a task or appointment, some tied to a client or an item, some repeating.
class ToDoFactory
{
public:
    // To-dos start between `firstDay` and `lastDay`; those before `lastDay` minus a month are
    // mostly done. `clients` and `items` are keys the to-dos may refer to (either may be empty).
    ToDoFactory(BatchInserter& inserter, Random& random, const ReferenceData& reference,
                QList<qint64> clients, QList<qint64> items, QDate firstDay, QDate lastDay);

    // Returns whether the to-do repeats.
    bool make();

private:
    void addRepetition(store::Record* toDo, const QDateTime& start);

    BatchInserter& m_inserter;
    Random& m_random;
    const ReferenceData& m_reference;
    QList<qint64> m_clients;
    QList<qint64> m_items;
    QDate m_firstDay;
    int m_days;
};

} // namespace corvanta::bench
