#include "clitestsupport.h"

using namespace corvanta::cli::testing;

// Whole roads through corvanta-cli on fresh company databases: what the documents add up to, the
// numbers they get, their status, the stock, cancellations and payments.
class tst_Scenarios : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void totals_data();
    void totals();
    void numberingWithStartNumberAndDrafts();
    void stockThroughCancellationAndDeletion();
    void payments_data();
    void payments();
    void foreignCurrency();

private:
    double stock() const { return m_cli->stock("Bolt"); }

    std::unique_ptr<Cli> m_cli;
};

void tst_Scenarios::init()
{
    m_cli = std::make_unique<Cli>();
    m_cli->addClientAndItems();
}

void tst_Scenarios::totals_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QList<double>>("sums"); // net, tax 1, tax 2, total
    QTest::addColumn<int>("summaries");
    const auto row = [](const char* name, const char* options, const QList<double>& sums, int summaries) {
        QTest::newRow(name) << s(options) << sums << summaries;
    };
    row("item at its first price", "--row Bolt;3", {30, 3, 0, 33}, 1);
    row("item at the second level", "--row Bolt;3 --level 2", {27, 2.7, 0, 29.7}, 1);
    row("price given replaces the item's", "--row Bolt;2;12.5", {25, 2.5, 0, 27.5}, 1);
    row("typed row takes the default tax", "--row Design;2;50", {100, 10, 0, 110}, 1);
    row("typed row with two rates", "--row 'Design;1;100;GST / PST'", {100, 5, 7, 112}, 1);
    row("typed row without price", "--row Note;1", {0, 0, 0, 0}, 1);
    row("two taxes, two summaries", "--row Bolt;1 --row 'Design;1;100;GST / PST'", {110, 6, 7, 123}, 2);
    row("negative quantity", "--row Bolt;-2", {-20, -2, 0, -22}, 1);
}

void tst_Scenarios::totals()
{
    QFETCH(QString, options);
    QFETCH(QList<double>, sums);
    QFETCH(int, summaries);
    const QJsonObject document = m_cli->json(invoice(options)).toObject();
    QCOMPARE(document.value(s("sum_net")).toDouble(), sums.at(0));
    QCOMPARE(document.value(s("sum_tax1")).toDouble(), sums.at(1));
    QCOMPARE(document.value(s("sum_tax2")).toDouble(), sums.at(2));
    QCOMPARE(document.value(s("sum_total")).toDouble(), sums.at(3));
    QCOMPARE(document.value(s("summaries")).toArray().size(), summaries);
    // What was printed is what was stored.
    const QJsonObject stored = m_cli->document(document.value(s("identifier")).toString());
    QCOMPARE(stored.value(s("sum_total")), document.value(s("sum_total")));
    double rowTotals = 0;
    for (const QJsonValue& row : stored.value(s("rows")).toArray())
        rowTotals += row[s("total")].toDouble();
    QCOMPARE(rowTotals, sums.at(3));
}

void tst_Scenarios::numberingWithStartNumberAndDrafts()
{
    const auto dated = [&](const char* date, const char* more = "") {
        return m_cli->run(invoice(s("--row Bolt;1 --date %1 %2").arg(s(date), s(more))));
    };
    Run run = dated("2024-03-15", "--start-number 500");
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, s("INVOICE/2024-0500\n%1\n").arg(run.line(1)));
    QCOMPARE(m_cli->document(run.line(1))[s("number_formatted")].toString(), s("INVOICE/2024-0500"));
    // The start number is asked for once a year; a draft takes no number.
    QCOMPARE(dated("2024-06-01", "--start-number 900").line(0), s("INVOICE/2024-0501"));
    run = dated("2024-06-02", "--draft");
    QVERIFY2(run.line(0).startsWith(s("DRAFT - ")), qPrintable(run.out));
    const QString draft = run.line(1);
    QCOMPARE(m_cli->document(draft)[s("status")].toString(), s("draft"));
    QCOMPARE(dated("2025-01-02").line(0), s("INVOICE/2025-0001"));
    QCOMPARE(m_cli->run("documents new --type quotation --client 'Acme Ltd' --date 2024-06-03").line(0),
             s("QUOTATION/2024-0001"));

    // Finalising the draft takes the next free number of its year then; once is enough.
    QCOMPARE(m_cli->run(s("documents finalize ") + draft).line(0), s("INVOICE/2024-0502"));
    QCOMPARE(m_cli->document(draft)[s("status")].toString(), s("unpaid"));
    run = m_cli->run(s("documents finalize ") + draft);
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.err.contains(s("INVOICE/2024-0502 is final already.")), qPrintable(run.err));
    QStringList numbers;
    for (const QJsonValue& document :
         m_cli->json("documents list --type invoice --sort number_formatted").toArray())
        numbers << document[s("number_formatted")].toString();
    QCOMPARE(numbers, (QStringList{s("INVOICE/2024-0500"), s("INVOICE/2024-0501"), s("INVOICE/2024-0502"),
                                   s("INVOICE/2025-0001")}));
}

void tst_Scenarios::stockThroughCancellationAndDeletion()
{
    QCOMPARE(m_cli->run("items receive Bolt --quantity 10").exitCode, 0);
    QCOMPARE(m_cli->run("items receive Bolt --quantity 5 --date 2024-01-05").exitCode, 0);
    const QString sold = m_cli->run(invoice("--row Bolt;3")).line(0);
    // Drafts and quotations leave the stock alone.
    QCOMPARE(m_cli->run(invoice("--row Bolt;4 --draft")).exitCode, 0);
    QCOMPARE(m_cli->run("documents new --type quotation --client 'Acme Ltd' --row Bolt;2").exitCode, 0);
    QCOMPARE(stock(), 12.0);

    // The cancellation gives the bolts back; both documents are cancelled and point at each other.
    const Run cancelled = m_cli->run(s("documents cancel ") + sold);
    QCOMPARE(cancelled.exitCode, 0);
    QCOMPARE(stock(), 15.0);
    const QJsonObject twin = m_cli->document(cancelled.line(0));
    QCOMPARE(twin.value(s("status")).toString(), s("cancelled"));
    QCOMPARE(twin.value(s("cancel_reference")).toString(), sold);
    QCOMPARE(twin.value(s("sum_total")).toDouble(), -33.0);
    QCOMPARE(m_cli->document(sold)[s("status")].toString(), s("cancelled"));
    QCOMPARE(m_cli->document(sold)[s("cancel_reference")].toString(), cancelled.line(0));
    const Run again = m_cli->run(s("documents cancel ") + sold);
    QCOMPARE(again.exitCode, 1);
    QVERIFY2(again.err.contains(s("Document cannot be cancelled")), qPrintable(again.err));
    QCOMPARE(stock(), 15.0);

    // Deleting a final invoice counts its bolts back in stock.
    const QString another = m_cli->run(invoice("--row Bolt;6")).line(0);
    QCOMPARE(stock(), 9.0);
    QCOMPARE(m_cli->run(s("documents delete ") + another).exitCode, 0);
    QCOMPARE(stock(), 15.0);
    QCOMPARE(m_cli->run(s("documents show ") + another).exitCode, 1);
}

void tst_Scenarios::payments_data()
{
    QTest::addColumn<QString>("amounts");
    QTest::addColumn<bool>("settle");
    QTest::addColumn<QString>("status");
    QTest::addColumn<int>("paymentCount");
    // Against an invoice of 100.
    QTest::newRow("nothing paid") << QString() << false << s("unpaid") << 0;
    QTest::newRow("paid in two parts") << s("60 40") << false << s("paid") << 2;
    QTest::newRow("rest settled") << s("30") << true << s("paid") << 2;
    QTest::newRow("settling a paid one adds nothing") << s("100") << true << s("paid") << 1;
}

void tst_Scenarios::payments()
{
    QFETCH(QString, amounts);
    QFETCH(bool, settle);
    QFETCH(QString, status);
    QFETCH(int, paymentCount);
    const QString number = m_cli->run(invoice("--row Labour;1")).line(0);
    for (const QString& amount : words(amounts))
        QCOMPARE(
            m_cli->run(s("documents pay %1 --amount %2 --payment-type Cash").arg(number, amount)).exitCode,
            0);
    if (settle)
        QCOMPARE(m_cli->run(s("documents settle ") + number).exitCode, 0);
    const QJsonObject document = m_cli->document(number);
    QCOMPARE(document.value(s("status")).toString(), status);
    const QJsonArray stored = document.value(s("payments")).toArray();
    QCOMPARE(stored.size(), paymentCount);
    if (settle && paymentCount > words(amounts).size()) {
        QCOMPARE(stored.last()[s("amount")].toDouble(), 70.0);
        QCOMPARE(stored.last()[s("payment")].toString(), s("Bank Transfer"));
    }
    const Run list = m_cli->run("documents list --type invoice");
    QVERIFY2(list.out.contains(status), qPrintable(list.out));
}

void tst_Scenarios::foreignCurrency()
{
    const QJsonObject document =
        m_cli
            ->json(
                "documents new --type quotation --client 'Acme Ltd' --currency EUR --rate 0.5 --row Bolt;10")
            .toObject();
    QCOMPARE(document.value(s("currency")).toString(), s("EUR"));
    QCOMPARE(document.value(s("exchange_rate")).toDouble(), 0.5);
    QCOMPARE(document.value(s("status")).toString(), QString());
    const QJsonValue summary = document.value(s("summaries"))[0];
    QCOMPARE(summary[s("tax1_value")].toDouble(), 10.0);
    QCOMPARE(summary[s("default_currency_tax1_value")].toDouble(), 5.0);
    // Only the tax values are converted; the sums stay in the document's currency.
    QCOMPARE(document.value(s("sum_total")).toDouble(), 110.0);
}

QTEST_GUILESS_MAIN(tst_Scenarios)
#include "tst_scenarios.moc"
