#pragma once

#include "clientfactory.h"
#include "documentschedule.h"
#include "itemfactory.h"

#include <vector>

namespace corvanta::store {
class Record;
}

namespace corvanta::bench {

class BatchInserter;
class Random;
class ReferenceData;

// Makes one document as the application would save it: the client's and the company's
// details copied in, its rows with their tax amounts, one summary per tax, the four sums,
// the document-kind tag and, for a final invoice, its payments.
class DocumentFactory
{
public:
    enum class Payment { NotAnInvoice, Draft, Paid, PartlyPaid, Unpaid };

    // Purchase orders go to suppliers, every other document to customers. Payments are not
    // dated after `lastDay`.
    DocumentFactory(BatchInserter& inserter, Random& random, const ReferenceData& reference,
                    const std::vector<ClientSnapshot>& clients, const std::vector<ItemSnapshot>& items,
                    QDate lastDay);

    Payment make(const DocumentSchedule& schedule, const DocumentSchedule::Entry& entry);

private:
    struct Sums
    {
        double net = 0.0;
        double tax1 = 0.0;
        double tax2 = 0.0;
        double total = 0.0;
    };

    const ClientSnapshot& pickClient(int type);
    void copyClient(store::Record* document, const ClientSnapshot& client);
    void copyCompany(store::Record* document);
    Sums addRows(store::Record* document, int rows);
    Payment addPayments(store::Record* document, const QDateTime& created, const QDateTime& due, double total,
                        qint64 paymentType);
    void addPayment(store::Record* document, double amount, const QDateTime& date, qint64 paymentType);

    BatchInserter& m_inserter;
    Random& m_random;
    const ReferenceData& m_reference;
    const std::vector<ClientSnapshot>& m_clients;
    const std::vector<ItemSnapshot>& m_items;
    std::vector<int> m_customers; // indexes into m_clients
    std::vector<int> m_suppliers;
    QDateTime m_end;
};

} // namespace corvanta::bench
