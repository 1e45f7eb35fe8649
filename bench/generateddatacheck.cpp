#include "generateddatacheck.h"

#include "store/store.h"

namespace corvanta::bench {

namespace {

using predicate::Expression;
using predicate::Predicate;
using store::FetchRequest;
using Op = Predicate::Operator;

Predicate where(const QString& keyPath, Op op, const QVariant& value)
{
    return Predicate::compare(keyPath, op, value);
}

Predicate sameValue(const QString& leftKeyPath, const QString& rightKeyPath)
{
    return Predicate::comparison(Expression::keyPath(leftKeyPath), Op::Equal,
                                 Expression::keyPath(rightKeyPath));
}

Predicate finalInvoice()
{
    return Predicate::andOf(
        {where(QStringLiteral("type"), Op::Equal, 0), where(QStringLiteral("draft"), Op::Equal, false)});
}

} // namespace

GeneratedDataCheck::GeneratedDataCheck(store::EditingContext& context)
    : m_context(context)
{}

QStringList GeneratedDataCheck::compare(const CompanyGenerator::Counts& expected)
{
    m_failures.clear();
    m_comparisons = 0;
    // Every entity, so that records nobody asked for are noticed too.
    for (const store::EntityDescription& entity : m_context.store().model().entities())
        expectCount(entity.name(), FetchRequest(entity.name()), expected.records.value(entity.name(), 0));

    checkKinds(QStringLiteral("Clients"), 1, expected.clientsByType.data(),
               int(expected.clientsByType.size()));
    checkKinds(QStringLiteral("Items"), 2, expected.itemsByType.data(), int(expected.itemsByType.size()));
    checkKinds(QStringLiteral("Documents"), 3, expected.documentsByType.data(),
               int(expected.documentsByType.size()));
    const qint64 toDos = expected.records.value(QStringLiteral("ToDos"), 0);
    const qint64 toDoKinds[] = {toDos - expected.repeatingToDos, expected.repeatingToDos};
    checkKinds(QStringLiteral("ToDos"), 4, toDoKinds, 2);
    expectCount(QStringLiteral("repeating ToDos"),
                FetchRequest(QStringLiteral("ToDos"), where(QStringLiteral("repeat_type"), Op::Greater, 0)),
                expected.repeatingToDos);

    checkInvoices(expected);
    checkDocumentContents(expected.records.value(QStringLiteral("Documents"), 0));
    checkTagLinks(expected);
    m_context.reset();
    return m_failures;
}

void GeneratedDataCheck::expect(const QString& what, qint64 actual, qint64 expected)
{
    ++m_comparisons;
    if (actual != expected)
        m_failures << QStringLiteral("%1: the database holds %2, %3 were generated")
                          .arg(what)
                          .arg(actual)
                          .arg(expected);
}

void GeneratedDataCheck::expectCount(const QString& what, const FetchRequest& request, qint64 expected)
{
    store::StoreError error;
    const int actual = m_context.count(request, &error);
    if (actual < 0) {
        ++m_comparisons;
        m_failures << QStringLiteral("%1: cannot be counted: %2").arg(what, error.message());
        return;
    }
    expect(what, actual, expected);
}

void GeneratedDataCheck::checkKinds(const QString& entity, int categoryType, const qint64* expected,
                                    int kinds)
{
    for (int kind = 0; kind < kinds; ++kind) {
        const QString what = QStringLiteral("%1 of kind %2").arg(entity).arg(kind);
        // To-dos have no type of their own; their kind is whether they repeat.
        if (entity != QLatin1String("ToDos"))
            expectCount(what, FetchRequest(entity, where(QStringLiteral("type"), Op::Equal, kind)),
                        expected[kind]);

        const QList<store::Record*> categories = m_context.fetch(
            FetchRequest(QStringLiteral("Categories"),
                         Predicate::andOf({where(QStringLiteral("type"), Op::Equal, categoryType),
                                           where(QStringLiteral("subtype"), Op::Equal, kind)})));
        expect(QStringLiteral("kind tags of %1").arg(what), categories.size(), 1);
        if (categories.size() != 1)
            continue;
        const QVariant tag = QVariant::fromValue(categories.first()->ref());
        expectCount(QStringLiteral("%1 carrying their kind tag").arg(what),
                    FetchRequest(entity, where(QStringLiteral("tags"), Op::Contains, tag)), expected[kind]);
    }
}

void GeneratedDataCheck::checkInvoices(const CompanyGenerator::Counts& expected)
{
    const FetchRequest drafts(QStringLiteral("Documents"),
                              Predicate::andOf({where(QStringLiteral("type"), Op::Equal, 0),
                                                where(QStringLiteral("draft"), Op::Equal, true)}));
    expectCount(QStringLiteral("draft invoices"), drafts, expected.draftInvoices);
    expectCount(QStringLiteral("documents with a number and a draft mark"),
                FetchRequest(QStringLiteral("Documents"),
                             Predicate::andOf({where(QStringLiteral("draft"), Op::Equal, true),
                                               where(QStringLiteral("number"), Op::NotEqual, QVariant())})),
                0);
    expectCount(
        QStringLiteral("final invoices paid in full"),
        FetchRequest(QStringLiteral("Documents"),
                     Predicate::andOf({finalInvoice(), sameValue(QStringLiteral("payments.@sum.amount"),
                                                                 QStringLiteral("sum_total"))})),
        expected.paidInvoices);
    expectCount(QStringLiteral("final invoices paid in part"),
                FetchRequest(
                    QStringLiteral("Documents"),
                    Predicate::andOf(
                        {finalInvoice(), where(QStringLiteral("payments.@count"), Op::Greater, 0),
                         Predicate::comparison(Expression::keyPath(QStringLiteral("payments.@sum.amount")),
                                               Op::Less, Expression::keyPath(QStringLiteral("sum_total")))})),
                expected.partlyPaidInvoices);
    expectCount(QStringLiteral("final invoices without payments"),
                FetchRequest(QStringLiteral("Documents"),
                             Predicate::andOf(
                                 {finalInvoice(), where(QStringLiteral("payments.@count"), Op::Equal, 0)})),
                expected.unpaidInvoices);
    expectCount(QStringLiteral("payments of documents other than final invoices"),
                FetchRequest(QStringLiteral("Payments"),
                             Predicate::notOf(Predicate::andOf(
                                 {where(QStringLiteral("document.type"), Op::Equal, 0),
                                  where(QStringLiteral("document.draft"), Op::Equal, false)}))),
                0);
}

void GeneratedDataCheck::checkDocumentContents(qint64 documents)
{
    // The stored sums are the plain sums of the rows, added in row order as the store adds them.
    expectCount(
        QStringLiteral("documents whose four sums equal the sums of their rows"),
        FetchRequest(
            QStringLiteral("Documents"),
            Predicate::andOf({sameValue(QStringLiteral("rows.@sum.net"), QStringLiteral("sum_net")),
                              sameValue(QStringLiteral("rows.@sum.tax1_value"), QStringLiteral("sum_tax1")),
                              sameValue(QStringLiteral("rows.@sum.tax2_value"), QStringLiteral("sum_tax2")),
                              sameValue(QStringLiteral("rows.@sum.total"), QStringLiteral("sum_total"))})),
        documents);
    expectCount(QStringLiteral("documents whose client name and city are their client's"),
                FetchRequest(QStringLiteral("Documents"),
                             Predicate::andOf({sameValue(QStringLiteral("client_full_name"),
                                                         QStringLiteral("client.full_name")),
                                               sameValue(QStringLiteral("client_city"),
                                                         QStringLiteral("client.default_address.city"))})),
                documents);
    expectCount(QStringLiteral("documents without rows"),
                FetchRequest(QStringLiteral("Documents"), where(QStringLiteral("rows.@count"), Op::Equal, 0)),
                0);
    expectCount(
        QStringLiteral("documents without a summary"),
        FetchRequest(QStringLiteral("Documents"), where(QStringLiteral("summaries.@count"), Op::Equal, 0)),
        0);
}

void GeneratedDataCheck::checkTagLinks(const CompanyGenerator::Counts& expected)
{
    // Read from the categories' side, as the sidebar reads them.
    const QStringList sides{QStringLiteral("clients"), QStringLiteral("items"), QStringLiteral("documents"),
                            QStringLiteral("todos")};
    const QStringList entities{QStringLiteral("Clients"), QStringLiteral("Items"),
                               QStringLiteral("Documents"), QStringLiteral("ToDos")};
    QList<qint64> links(sides.size(), 0);
    for (const store::Record* category : m_context.fetch(FetchRequest(QStringLiteral("Categories")))) {
        for (qsizetype i = 0; i < sides.size(); ++i)
            links[i] += category->value(sides.at(i)).toList().size();
    }
    m_context.reset();
    for (qsizetype i = 0; i < sides.size(); ++i)
        expect(QStringLiteral("tag links of %1").arg(entities.at(i)), links.at(i),
               expected.tagLinks.value(entities.at(i), 0));
}

} // namespace corvanta::bench
