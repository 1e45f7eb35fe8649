#include "crashsoakplanner.h"

namespace corvanta::bench {

OperationPlanner::OperationPlanner(Ledger& ledger, Random& random, QString client)
    : m_ledger(ledger)
    , m_random(random)
    , m_client(std::move(client))
{}

Operation OperationPlanner::next()
{
    switch (m_random.weighted({45, 16, 10, 10, 8, 11})) {
    case 1:
        return onDocument(Operation::Kind::Pay, m_ledger.finalInvoicesNotCancelled());
    case 2:
        return onDocument(Operation::Kind::Finalize, m_ledger.drafts());
    case 3:
        return onDocument(Operation::Kind::Cancel, m_ledger.finalInvoicesNotCancelled());
    case 4:
        return plain(Operation::Kind::Backup);
    case 5:
        return plain(Operation::Kind::Info);
    default:
        return newDocument();
    }
}

Operation OperationPlanner::newDocument()
{
    Operation operation;
    operation.kind = Operation::Kind::NewDocument;
    // Invoices most, a third of them drafts; every other type now and then.
    const int type = m_random.chance(0.65) ? 0 : m_random.between(1, int(Operation::typeNames().size()) - 1);
    operation.draft = type == 0 && m_random.chance(0.3);
    QList<DocumentToken::Row> rows;
    const int count = m_random.between(2, 8);
    for (int i = 0; i < count; ++i) {
        DocumentToken::Row row;
        const int halves = m_random.between(1, 40);
        row.quantity = halves % 2 == 0 ? QString::number(halves / 2) : QStringLiteral("%1.5").arg(halves / 2);
        row.price = QString::number(m_random.money(0.5, 900), 'f', 2);
        row.tax = m_random.between(0, int(DocumentToken::taxes().size()) - 1);
        rows << row;
    }
    operation.token.emplace(m_ledger.nextSerial(), type, rows);
    m_ledger.issue(*operation.token);
    operation.arguments << QStringLiteral("--json") << QStringLiteral("documents") << QStringLiteral("new")
                        << QStringLiteral("--type") << Operation::typeNames().at(type)
                        << QStringLiteral("--client") << m_client << operation.token->rowArguments();
    if (operation.draft)
        operation.arguments << QStringLiteral("--draft");
    return operation;
}

Operation OperationPlanner::onDocument(Operation::Kind kind, const QStringList& candidates)
{
    if (candidates.isEmpty())
        return newDocument();
    Operation operation;
    operation.kind = kind;
    operation.target = candidates.at(m_random.between(0, int(candidates.size()) - 1));
    operation.arguments << QStringLiteral("--json") << QStringLiteral("documents");
    switch (kind) {
    case Operation::Kind::Pay:
        operation.amount = m_ledger.issuePayment(operation.target);
        operation.arguments << QStringLiteral("pay") << operation.target << QStringLiteral("--amount")
                            << operation.amount;
        break;
    case Operation::Kind::Finalize:
        operation.arguments << QStringLiteral("finalize") << operation.target;
        break;
    default:
        operation.arguments << QStringLiteral("cancel") << operation.target;
        break;
    }
    return operation;
}

Operation OperationPlanner::plain(Operation::Kind kind)
{
    Operation operation;
    operation.kind = kind;
    operation.arguments << QStringLiteral("--json")
                        << (kind == Operation::Kind::Backup ? QStringLiteral("backup")
                                                            : QStringLiteral("info"));
    return operation;
}

} // namespace corvanta::bench
