#pragma once

#include "crashsoakledger.h"
#include "crashsoakoperation.h"
#include "random.h"

#include <QString>

namespace corvanta::bench {

// Chooses the writers' commands: mostly new documents of several rows, then payments,
// finalising drafts and cancelling invoices that the ledger knows, backups and info.
class OperationPlanner
{
public:
    OperationPlanner(Ledger& ledger, Random& random, QString client);

    Operation next();

private:
    Operation newDocument();
    Operation onDocument(Operation::Kind kind, const QStringList& candidates);
    Operation plain(Operation::Kind kind);

    Ledger& m_ledger;
    Random& m_random;
    QString m_client;
};

} // namespace corvanta::bench
