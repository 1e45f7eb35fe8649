#pragma once

#include "crashsoakoperation.h"
#include "crashsoaktoken.h"

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QSet>
#include <QString>
#include <array>

namespace corvanta::bench {

// What the writers were asked to do and what they acknowledged: a command is acknowledged when
// its process exited 0 and printed its result. Every document token and payment amount handed
// out is unique, so whatever is found in the database can be traced to the command that wrote it.
class Ledger
{
public:
    struct Document
    {
        QString identifier;
        int serial = 0;
        int type = 0;
        bool draft = false;
        QString numberFormatted;
        int rowCount = 0;
        double sumNet = 0;
        double sumTax1 = 0;
        double sumTax2 = 0;
        double sumTotal = 0;
        QList<double> payments; // acknowledged amounts
        QString cancellation;   // identifier of its acknowledged cancellation
        bool isCancellation = false;
    };

    int nextSerial() { return ++m_lastSerial; }
    void issue(const DocumentToken& token) { m_tokens.insert(token.serial(), token); }
    const DocumentToken* token(int serial) const;
    // A payment amount no command was given before, as typed; remembered with its document.
    QString issuePayment(const QString& identifier);
    // The document a payment of `amount` was issued for; empty when none was.
    QString paymentTarget(double amount) const;

    // Takes the result `output` of `operation` into the ledger. Returns what is wrong when the
    // result does not say what the command was asked to do.
    QString acknowledge(const Operation& operation, const QJsonObject& output);

    const QHash<QString, Document>& documents() const { return m_documents; }
    QStringList finalInvoicesNotCancelled() const;
    QStringList drafts() const;
    const QSet<QString>& archives() const { return m_archives; }
    int acknowledged(Operation::Kind kind) const { return m_acknowledged[int(kind)]; }

private:
    QString acknowledgeDocument(const Operation& operation, const QJsonObject& output);
    QString acknowledgePayment(const Operation& operation, const QJsonObject& output);
    QString acknowledgeFinalize(const Operation& operation, const QJsonObject& output);
    QString acknowledgeCancel(const Operation& operation, const QJsonObject& output);
    static Document documentOf(const QJsonObject& output);

    int m_lastSerial = 0;
    int m_lastPayment = 0;
    QHash<int, DocumentToken> m_tokens;
    QHash<qint64, QString> m_paymentTargets; // cents -> document identifier
    QHash<QString, Document> m_documents;
    QSet<QString> m_archives;
    std::array<int, Operation::kKindCount> m_acknowledged{};
};

} // namespace corvanta::bench
