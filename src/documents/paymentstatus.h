#pragma once

#include <QString>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::documents {

// Whether a final invoice is paid: its total equals the sum of its payments exactly, as two
// doubles. An overpaid invoice is unpaid, and an invoice of 0 without payments is paid. The
// unpaid rule leaves out cancelled invoices and cancellations; the paid rule does not. Drafts
// and other document types are neither.
class PaymentStatus
{
public:
    static QString paidPredicate();
    static QString unpaidPredicate();

    // The rules judged on one document as it is in memory.
    static bool isPaid(const store::Record* document);
    static bool isUnpaid(const store::Record* document);
    // The number of stored documents each rule selects; -1 on a store error.
    static int countPaid(store::EditingContext& context);
    static int countUnpaid(store::EditingContext& context);
};

} // namespace corvanta::documents
