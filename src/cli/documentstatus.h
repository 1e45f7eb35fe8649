#pragma once

#include <QString>

namespace corvanta::store {
class Record;
}

namespace corvanta::cli {

// The state of a document in one word, as scripts read it: "cancelled" once `cancel_reference`
// is set (the cancelled document and its cancellation alike), "draft" for a draft invoice, then
// "paid" or "unpaid" by the system's paid and unpaid rules, and "" for a document that neither
// rule selects (every type but invoices).
class DocumentStatus
{
public:
    static QString of(const store::Record* document);
};

} // namespace corvanta::cli
