#include "crashsoakledger.h"

#include <QJsonArray>
#include <cmath>

namespace corvanta::bench {

namespace {

qint64 cents(double amount)
{
    return std::llround(amount * 100.0);
}

bool same(double a, double b)
{
    return std::fabs(a - b) <= 1e-9 * std::max(1.0, std::fabs(a));
}

} // namespace

const DocumentToken* Ledger::token(int serial) const
{
    const auto it = m_tokens.constFind(serial);
    return it == m_tokens.constEnd() ? nullptr : &it.value();
}

QString Ledger::issuePayment(const QString& identifier)
{
    // 10.01, 10.02, ...: never two payments of the same amount.
    const qint64 amountCents = 1000 + ++m_lastPayment;
    m_paymentTargets.insert(amountCents, identifier);
    return QStringLiteral("%1.%2").arg(amountCents / 100).arg(amountCents % 100, 2, 10, QLatin1Char('0'));
}

QString Ledger::paymentTarget(double amount) const
{
    return m_paymentTargets.value(cents(amount));
}

QStringList Ledger::finalInvoicesNotCancelled() const
{
    QStringList result;
    for (const Document& document : m_documents)
        if (document.type == 0 && !document.draft && !document.isCancellation &&
            document.cancellation.isEmpty())
            result << document.identifier;
    result.sort();
    return result;
}

QStringList Ledger::drafts() const
{
    QStringList result;
    for (const Document& document : m_documents)
        if (document.draft)
            result << document.identifier;
    result.sort();
    return result;
}

Ledger::Document Ledger::documentOf(const QJsonObject& output)
{
    Document document;
    document.identifier = output.value(QStringLiteral("identifier")).toString();
    document.type = output.value(QStringLiteral("type")).toInt(-1);
    document.draft = output.value(QStringLiteral("draft")).toBool();
    document.numberFormatted = output.value(QStringLiteral("number_formatted")).toString();
    document.sumNet = output.value(QStringLiteral("sum_net")).toDouble();
    document.sumTax1 = output.value(QStringLiteral("sum_tax1")).toDouble();
    document.sumTax2 = output.value(QStringLiteral("sum_tax2")).toDouble();
    document.sumTotal = output.value(QStringLiteral("sum_total")).toDouble();
    const QJsonArray rows = output.value(QStringLiteral("rows")).toArray();
    document.rowCount = int(rows.size());
    if (!rows.isEmpty()) {
        if (const auto name =
                DocumentToken::parse(rows.first().toObject().value(QStringLiteral("name")).toString()))
            document.serial = name->serial;
    }
    return document;
}

QString Ledger::acknowledge(const Operation& operation, const QJsonObject& output)
{
    QString problem;
    switch (operation.kind) {
    case Operation::Kind::NewDocument:
        problem = acknowledgeDocument(operation, output);
        break;
    case Operation::Kind::Pay:
        problem = acknowledgePayment(operation, output);
        break;
    case Operation::Kind::Finalize:
        problem = acknowledgeFinalize(operation, output);
        break;
    case Operation::Kind::Cancel:
        problem = acknowledgeCancel(operation, output);
        break;
    case Operation::Kind::Backup:
        if (const QString path = output.value(QStringLiteral("path")).toString(); path.isEmpty())
            problem = QStringLiteral("no archive path in the result");
        else
            m_archives.insert(path);
        break;
    case Operation::Kind::Info:
        if (output.value(QStringLiteral("path")).toString().isEmpty())
            problem = QStringLiteral("no database path in the result");
        break;
    }
    if (problem.isEmpty())
        ++m_acknowledged[int(operation.kind)];
    return problem;
}

QString Ledger::acknowledgeDocument(const Operation& operation, const QJsonObject& output)
{
    const DocumentToken& token = *operation.token;
    Document document = documentOf(output);
    if (document.identifier.isEmpty())
        return QStringLiteral("no identifier in the result");
    if (document.type != token.type() || document.draft != operation.draft)
        return QStringLiteral("type %1, draft %2 acknowledged for a %3%4")
            .arg(document.type)
            .arg(document.draft)
            .arg(Operation::typeNames().value(token.type()),
                 operation.draft ? QStringLiteral(" draft") : QString());
    if (!document.draft && document.numberFormatted.isEmpty())
        return QStringLiteral("a final document without a number");
    const QJsonArray rows = output.value(QStringLiteral("rows")).toArray();
    if (rows.size() != token.rows().size())
        return QStringLiteral("%1 rows acknowledged of %2 asked").arg(rows.size()).arg(token.rows().size());
    double net = 0;
    for (int i = 0; i < rows.size(); ++i) {
        const QJsonObject row = rows.at(i).toObject();
        if (row.value(QStringLiteral("name")).toString() != token.rowName(i))
            return QStringLiteral("row %1 is \"%2\"")
                .arg(i + 1)
                .arg(row.value(QStringLiteral("name")).toString());
        net += row.value(QStringLiteral("net")).toDouble();
    }
    if (std::fabs(net - document.sumNet) > 1e-6)
        return QStringLiteral("sum_net %1 but the rows add up to %2").arg(document.sumNet).arg(net);
    document.serial = token.serial();
    m_documents.insert(document.identifier, document);
    return {};
}

QString Ledger::acknowledgePayment(const Operation& operation, const QJsonObject& output)
{
    if (output.value(QStringLiteral("identifier")).toString() != operation.target)
        return QStringLiteral("the result is of another document");
    const double amount = operation.amount.toDouble();
    int found = 0;
    for (const QJsonValue& payment : output.value(QStringLiteral("payments")).toArray())
        if (same(payment.toObject().value(QStringLiteral("amount")).toDouble(), amount))
            ++found;
    if (found != 1)
        return QStringLiteral("the payment of %1 shows %2 times in the result")
            .arg(operation.amount)
            .arg(found);
    m_documents[operation.target].payments << amount;
    return {};
}

QString Ledger::acknowledgeFinalize(const Operation& operation, const QJsonObject& output)
{
    const Document result = documentOf(output);
    if (result.identifier != operation.target)
        return QStringLiteral("the result is of another document");
    if (result.draft || result.numberFormatted.isEmpty())
        return QStringLiteral("still a draft after finalising");
    Document& document = m_documents[operation.target];
    if (!document.draft && document.numberFormatted != result.numberFormatted)
        return QStringLiteral("finalised again as %1, was %2")
            .arg(result.numberFormatted, document.numberFormatted);
    document.draft = false;
    document.numberFormatted = result.numberFormatted;
    return {};
}

QString Ledger::acknowledgeCancel(const Operation& operation, const QJsonObject& output)
{
    Document cancellation = documentOf(output);
    Document& original = m_documents[operation.target];
    if (cancellation.identifier.isEmpty() || cancellation.identifier == operation.target)
        return QStringLiteral("the result is not a new cancellation");
    if (output.value(QStringLiteral("cancel_reference")).toString() != original.numberFormatted)
        return QStringLiteral("the cancellation points at \"%1\", not at %2")
            .arg(output.value(QStringLiteral("cancel_reference")).toString(), original.numberFormatted);
    if (cancellation.rowCount != original.rowCount || !same(cancellation.sumTotal, -original.sumTotal))
        return QStringLiteral("the cancellation's rows or total do not negate the invoice's");
    cancellation.serial = original.serial;
    cancellation.isCancellation = true;
    original.cancellation = cancellation.identifier;
    m_documents.insert(cancellation.identifier, cancellation);
    return {};
}

} // namespace corvanta::bench
