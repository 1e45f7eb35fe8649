#include "crashsoakdocumentcheck.h"

#include <QSet>
#include <cmath>

namespace corvanta::bench {

namespace {

bool near(double a, double b)
{
    return std::fabs(a - b) <= 1e-6 * std::max(1.0, std::fabs(b));
}

QString differs(const char* what, double stored, double expected)
{
    return QStringLiteral("%1 is %2, expected %3")
        .arg(QLatin1String(what))
        .arg(stored, 0, 'g', 17)
        .arg(expected, 0, 'g', 17);
}

} // namespace

DocumentCheck::DocumentCheck(const Ledger& ledger)
    : m_ledger(ledger)
{}

QStringList DocumentCheck::verify(const StoredDocument& document, int* serial, bool* negated) const
{
    *serial = 0;
    *negated = false;
    if (document.rows.isEmpty())
        return {QStringLiteral("no rows: a half-written document")};
    const auto first = DocumentToken::parse(document.rows.first().name);
    if (!first)
        return {QStringLiteral("row \"%1\" was not written by the soak").arg(document.rows.first().name)};
    *serial = first->serial;
    *negated = document.rows.first().quantity < 0;

    QStringList problems = verifyRows(document, *serial, *negated);
    problems << verifySums(document);
    if (*negated && (document.type != 0 || document.draft || document.cancelReference == 0))
        problems << QStringLiteral("negated rows in a document that is no cancellation");
    if (!document.draft && (!document.hasNumber || document.numberFormatted.isEmpty()))
        problems << QStringLiteral("a final document without a number");
    return problems;
}

QStringList DocumentCheck::verifyRows(const StoredDocument& document, int serial, bool negated) const
{
    const DocumentToken* token = m_ledger.token(serial);
    if (!token)
        return {QStringLiteral("its rows name serial %1, which no command was given").arg(serial)};
    QStringList problems;
    if (token->type() != document.type)
        problems << QStringLiteral("type %1, but written as type %2").arg(document.type).arg(token->type());
    if (document.rows.size() != token->rows().size())
        problems << QStringLiteral("%1 rows of %2: a half-written document")
                        .arg(document.rows.size())
                        .arg(token->rows().size());
    QSet<int> seen;
    const double sign = negated ? -1.0 : 1.0;
    for (const StoredDocument::Row& row : document.rows) {
        const auto name = DocumentToken::parse(row.name);
        if (!name || name->serial != serial) {
            problems << QStringLiteral("row \"%1\" belongs to another document").arg(row.name);
            continue;
        }
        const int index = name->index - 1;
        if (index >= token->rows().size() || row.name != token->rowName(index)) {
            problems << QStringLiteral("row \"%1\" was never asked for").arg(row.name);
            continue;
        }
        if (seen.contains(index))
            problems << QStringLiteral("row %1 stored twice").arg(name->index);
        seen.insert(index);
        const QString where = QStringLiteral("row %1: ").arg(name->index);
        if (row.order != name->index)
            problems << where + QStringLiteral("order %1").arg(row.order);
        const DocumentToken::Tax& tax = DocumentToken::taxes().at(name->tax);
        if (row.taxName != tax.name || !near(row.rate1, tax.rate1) || !near(row.rate2, tax.rate2))
            problems << where +
                            QStringLiteral("tax %1 (%2, %3)").arg(row.taxName).arg(row.rate1).arg(row.rate2);
        if (!near(row.quantity, sign * name->quantity))
            problems << where + differs("quantity", row.quantity, sign * name->quantity);
        if (!near(row.unitPrice, name->price))
            problems << where + differs("unit price", row.unitPrice, name->price);
        const DocumentToken::RowFigures f =
            DocumentToken::figures(sign * name->quantity, name->price, name->tax);
        if (!near(row.net, f.net) || !near(row.tax1, f.tax1) || !near(row.tax2, f.tax2) ||
            !near(row.total, f.total))
            problems << where + QStringLiteral("net %1, taxes %2 + %3, total %4; expected %5, %6 + %7, %8")
                                    .arg(row.net)
                                    .arg(row.tax1)
                                    .arg(row.tax2)
                                    .arg(row.total)
                                    .arg(f.net)
                                    .arg(f.tax1)
                                    .arg(f.tax2)
                                    .arg(f.total);
    }
    return problems;
}

QStringList DocumentCheck::verifySums(const StoredDocument& document)
{
    double net = 0, tax1 = 0, tax2 = 0, total = 0;
    for (const StoredDocument::Row& row : document.rows) {
        net += row.net;
        tax1 += row.tax1;
        tax2 += row.tax2;
        total += row.total;
    }
    QStringList problems;
    if (!near(document.sumNet, net))
        problems << differs("sum_net", document.sumNet, net);
    if (!near(document.sumTax1, tax1))
        problems << differs("sum_tax1", document.sumTax1, tax1);
    if (!near(document.sumTax2, tax2))
        problems << differs("sum_tax2", document.sumTax2, tax2);
    if (!near(document.sumTotal, total))
        problems << differs("sum_total", document.sumTotal, total);
    double summaryNet = 0, summaryTotal = 0;
    for (const StoredDocument::Summary& summary : document.summaries) {
        summaryNet += summary.net;
        summaryTotal += summary.total;
    }
    if (!near(summaryNet, net) || !near(summaryTotal, total))
        problems << QStringLiteral("the tax summary (%1 lines) adds up to %2 net, %3 total")
                        .arg(document.summaries.size())
                        .arg(summaryNet)
                        .arg(summaryTotal);
    double paid = 0;
    for (double amount : document.payments)
        paid += amount;
    if (!near(document.paymentsSum, paid))
        problems << differs("the stored payment total", document.paymentsSum, paid);
    return problems;
}

} // namespace corvanta::bench
