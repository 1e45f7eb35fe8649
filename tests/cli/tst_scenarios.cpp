#include "clitestsupport.h"

using namespace corvanta::cli::testing;

// Whole roads through corvanta-cli on fresh company databases: each command reaches the core and
// reports what it did. The rules themselves are tested with the documents library.
class tst_Scenarios : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void invoiceToCancelledAndForeignQuotation();
    void numberingWithStartNumberAndDrafts();

private:
    std::unique_ptr<Cli> m_cli;
};

void tst_Scenarios::init()
{
    m_cli = std::make_unique<Cli>();
    m_cli->addClientAndItems();
}

void tst_Scenarios::invoiceToCancelledAndForeignQuotation()
{
    QCOMPARE(m_cli->run("items receive Bolt --quantity 10").exitCode, 0);
    // Bolt: 3 x 10 with 10% tax; Labour: 100 without tax.
    const QJsonObject created = m_cli->json(invoice("--row Bolt;3 --row Labour;1")).toObject();
    QCOMPARE(created.value(s("sum_total")).toDouble(), 133.0);
    const QString number = created.value(s("number_formatted")).toString();
    QCOMPARE(m_cli->stock("Bolt"), 7.0);

    // Paid in part by the payment type given, then settled: the rest is paid.
    QCOMPARE(m_cli->run(s("documents pay %1 --amount 33 --payment-type Cash").arg(number)).exitCode, 0);
    QCOMPARE(m_cli->run(s("documents settle ") + number).exitCode, 0);
    const QJsonObject paid = m_cli->document(number);
    QCOMPARE(paid.value(s("status")).toString(), s("paid"));
    const QJsonArray payments = paid.value(s("payments")).toArray();
    QCOMPARE(payments.size(), 2);
    QCOMPARE(payments.first()[s("payment")].toString(), s("Cash"));
    QCOMPARE(payments.last()[s("amount")].toDouble(), 100.0);
    const Run list = m_cli->run("documents list --type invoice");
    QVERIFY2(list.line(1).startsWith(number) && list.line(1).endsWith(s(" paid")), qPrintable(list.out));

    // The cancellation is a twin that points back and gives the bolts back.
    const Run cancelled = m_cli->run(s("documents cancel ") + number);
    QCOMPARE(cancelled.exitCode, 0);
    const QJsonObject twin = m_cli->document(cancelled.line(0));
    QCOMPARE(twin.value(s("status")).toString(), s("cancelled"));
    QCOMPARE(twin.value(s("cancel_reference")).toString(), number);
    QCOMPARE(m_cli->stock("Bolt"), 10.0);

    // A quotation in a foreign currency also gives its tax in the default currency, at its rate.
    const QString quotation = s("documents new --type quotation --client Acme --row Bolt;10");
    const QJsonObject foreign = m_cli->json(quotation + s(" --currency EUR --rate 0.5")).toObject();
    const QJsonValue summary = foreign.value(s("summaries"))[0];
    QCOMPARE(summary[s("tax1_value")].toDouble(), 10.0);
    QCOMPARE(summary[s("default_currency_tax1_value")].toDouble(), 5.0);
}

void tst_Scenarios::numberingWithStartNumberAndDrafts()
{
    const auto dated = [&](const char* date, const char* more = "") {
        return m_cli->run(invoice(s("--row Bolt;1 --date %1 %2").arg(s(date), s(more))));
    };
    // The number, then the identifier.
    Run run = dated("2024-03-15", "--start-number 500");
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, s("INVOICE/2024-0500\n%1\n").arg(run.line(1)));
    // The start number is asked for once a year; a draft takes its number when finalised.
    QCOMPARE(dated("2024-06-01", "--start-number 900").line(0), s("INVOICE/2024-0501"));
    const QString draft = dated("2024-06-02", "--draft").line(1);
    QCOMPARE(dated("2025-01-02").line(0), s("INVOICE/2025-0001"));
    QCOMPARE(m_cli->run(s("documents finalize ") + draft).line(0), s("INVOICE/2024-0502"));
    // Finalising again is no error: it is said on standard error.
    run = m_cli->run(s("documents finalize ") + draft);
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.err.contains(s("INVOICE/2024-0502 is final already.")), qPrintable(run.err));
}

QTEST_GUILESS_MAIN(tst_Scenarios)
#include "tst_scenarios.moc"
