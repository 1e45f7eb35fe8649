#pragma once

#include "crashsoakledger.h"
#include "crashsoakstoreddocument.h"

#include <QHash>
#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

namespace corvanta::bench {

// Reads a company database file read-only with plain SQL and checks it: SQLite's integrity and
// foreign keys, every document whole (see DocumentCheck), no number given twice within a type and
// year, every payment traced to the command that made it, and everything the ledger holds as
// acknowledged present as acknowledged.
class DatabaseCheck
{
public:
    explicit DatabaseCheck(const Ledger& ledger);

    // The failures found in `path`, each a line of detail.
    QStringList run(const QString& path);
    // Documents found and checked by the last run.
    int documentsChecked() const { return m_documentsChecked; }

    // Only `PRAGMA integrity_check` of `path`: empty when it says ok.
    static QStringList integrity(const QString& path);

private:
    static QStringList integrityOf(QSqlDatabase& db);
    static QString load(QSqlDatabase& db, QList<StoredDocument>* documents);
    QStringList checkDocuments(const QList<StoredDocument>& documents);
    static QStringList checkNumbers(const QList<StoredDocument>& documents);
    QStringList checkPayments(const QList<StoredDocument>& documents) const;
    QStringList checkAcknowledged(const QList<StoredDocument>& documents) const;

    const Ledger& m_ledger;
    int m_documentsChecked = 0;
};

} // namespace corvanta::bench
