#pragma once

#include <QDateTime>
#include <QString>

namespace corvanta::bench {

class BatchInserter;
class Random;
class ReferenceData;

// What documents copy from a client when they are made out to it.
struct ClientSnapshot
{
    qint64 pk = 0;
    int type = 0; // 0 company, 1 supplier, 2 individual
    QString fullName;
    QString street;
    QString city;
    QString state;
    QString zipCode;
    QString country;
    QString email;
    QString phone;
    QString taxNumber;
};

// Makes one client, with its addresses (the first is the default), contacts and tags.
class ClientFactory
{
public:
    ClientFactory(BatchInserter& inserter, Random& random, const ReferenceData& reference);

    ClientSnapshot make(const QDateTime& created);

private:
    BatchInserter& m_inserter;
    Random& m_random;
    const ReferenceData& m_reference;
};

} // namespace corvanta::bench
