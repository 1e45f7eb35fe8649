#include "clitestsupport.h"

#include <QJsonArray>

using namespace corvanta::cli::testing;

// Whole roads through corvanta-cli on fresh company databases: what the documents add up to, the
// numbers they get, their status, the stock, cancellations, and what is refused.
class tst_Scenarios : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void totals_data();
    void totals();
    void numbering();
    void stockFollowsFinalInvoices();
    void paymentStatus_data();
    void paymentStatus();
    void foreignCurrency();
    void refusalsChangeNothing_data();
    void refusalsChangeNothing();

private:
    std::unique_ptr<Cli> m_cli;
};

void tst_Scenarios::init()
{
    m_cli = std::make_unique<Cli>();
    // Bolt: 10 and 9 at the first two price levels, tax "10%"; Labour carries no tax.
    for (const QStringList& arguments :
         {QStringList{s("clients"), s("add"), s("--kind"), s("company"), s("--name"), s("Acme Ltd")},
          QStringList{s("items"), s("add"), s("--name"), s("Bolt"), s("--price"), s("10"), s("--price"),
                      s("9"), s("--tax"), s("10%"), s("--unit"), s("Each")},
          QStringList{s("items"), s("add"), s("--name"), s("Labour"), s("--kind"), s("service"), s("--price"),
                      s("100")}}) {
        const Run run = m_cli->run(arguments);
        QVERIFY2(run.exitCode == 0, qPrintable(run.err));
    }
}

void tst_Scenarios::cleanup()
{
    m_cli.reset();
}

void tst_Scenarios::totals_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QList<double>>("sums"); // net, tax 1, tax 2, total
    QTest::addColumn<int>("summaries");
    const auto row = [](const char* text) { return QStringList{s("--row"), s(text)}; };
    QTest::newRow("item at its first price") << row("Bolt;3") << QList<double>{30, 3, 0, 33} << 1;
    QTest::newRow("item at the second level")
        << row("Bolt;3") + QStringList{s("--level"), s("2")} << QList<double>{27, 2.7, 0, 29.7} << 1;
    QTest::newRow("price given replaces the item's")
        << row("Bolt;2;12.5") << QList<double>{25, 2.5, 0, 27.5} << 1;
    QTest::newRow("item without tax") << row("Labour;1.5") << QList<double>{150, 0, 0, 150} << 0;
    QTest::newRow("typed row takes the default tax")
        << row("Design;2;50") << QList<double>{100, 10, 0, 110} << 1;
    QTest::newRow("typed row with two rates")
        << row("Design;1;100;GST / PST") << QList<double>{100, 5, 7, 112} << 1;
    QTest::newRow("typed row without price") << row("Note;1") << QList<double>{0, 0, 0, 0} << 1;
    QTest::newRow("two taxes, two summaries")
        << row("Bolt;1") + row("Design;1;100;GST / PST") << QList<double>{110, 6, 7, 123} << 2;
    QTest::newRow("negative quantity") << row("Bolt;-2") << QList<double>{-20, -2, 0, -22} << 1;
}

void tst_Scenarios::totals()
{
    QFETCH(QStringList, options);
    QFETCH(QList<double>, sums);
    QFETCH(int, summaries);
    const QJsonObject document = m_cli
                                     ->json(QStringList{s("documents"), s("new"), s("--type"), s("invoice"),
                                                        s("--client"), s("Acme Ltd")} +
                                            options)
                                     .toObject();
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
        rowTotals += row.toObject().value(s("total")).toDouble();
    QCOMPARE(rowTotals, sums.at(3));
}

void tst_Scenarios::numbering()
{
    const auto invoice = [&](const char* date, const QStringList& more = {}) {
        return m_cli->run(QStringList{s("documents"), s("new"), s("--type"), s("invoice"), s("--client"),
                                      s("Acme Ltd"), s("--date"), s(date), s("--row"), s("Bolt;1")} +
                          more);
    };
    Run run = invoice("2024-03-15", {s("--start-number"), s("500")});
    QCOMPARE(run.exitCode, 0);
    const QStringList lines = run.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines.at(0), s("INVOICE/2024-0500"));
    QCOMPARE(m_cli->document(lines.at(1)).value(s("number_formatted")).toString(), s("INVOICE/2024-0500"));
    // The start number is asked for once a year; a draft takes no number.
    QCOMPARE(invoice("2024-06-01", {s("--start-number"), s("900")}).firstLine(), s("INVOICE/2024-0501"));
    run = invoice("2024-06-02", {s("--draft")});
    QVERIFY2(run.firstLine().startsWith(s("DRAFT - ")), qPrintable(run.out));
    const QString draft = run.out.section(QLatin1Char('\n'), 1, 1);
    QCOMPARE(m_cli->document(draft).value(s("status")).toString(), s("draft"));
    QCOMPARE(invoice("2025-01-02").firstLine(), s("INVOICE/2025-0001"));
    QCOMPARE(m_cli
                 ->run({s("documents"), s("new"), s("--type"), s("quotation"), s("--client"), s("Acme Ltd"),
                        s("--date"), s("2024-06-03")})
                 .firstLine(),
             s("QUOTATION/2024-0001"));
    // Finalising the draft takes the next free number of its year then.
    run = m_cli->run({s("documents"), s("finalize"), draft});
    QCOMPARE(run.firstLine(), s("INVOICE/2024-0502"));
    QCOMPARE(m_cli->document(draft).value(s("status")).toString(), s("unpaid"));
    run = m_cli->run({s("documents"), s("finalize"), draft});
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.err.contains(s("INVOICE/2024-0502 is final already.")), qPrintable(run.err));
    // Listing by number, newest last.
    const QJsonArray invoices =
        m_cli
            ->json({s("documents"), s("list"), s("--type"), s("invoice"), s("--sort"), s("number_formatted")})
            .toArray();
    QStringList numbers;
    for (const QJsonValue& document : invoices)
        numbers << document.toObject().value(s("number_formatted")).toString();
    QCOMPARE(numbers, (QStringList{s("INVOICE/2024-0500"), s("INVOICE/2024-0501"), s("INVOICE/2024-0502"),
                                   s("INVOICE/2025-0001")}));
}

void tst_Scenarios::stockFollowsFinalInvoices()
{
    const auto stock = [&] {
        return m_cli->json({s("items"), s("show"), s("Bolt")})
            .toObject()
            .value(s("stock_current"))
            .toDouble();
    };
    const auto document = [&](const char* type, const char* quantity, const QStringList& more = {}) {
        return m_cli
            ->run(QStringList{s("documents"), s("new"), s("--type"), s(type), s("--client"), s("Acme Ltd"),
                              s("--row"), s("Bolt;") + s(quantity)} +
                  more)
            .firstLine();
    };
    QCOMPARE(m_cli->run({s("items"), s("receive"), s("Bolt"), s("--quantity"), s("10")}).exitCode, 0);
    QCOMPARE(m_cli
                 ->run({s("items"), s("receive"), s("Bolt"), s("--quantity"), s("5"), s("--date"),
                        s("2024-01-05")})
                 .exitCode,
             0);
    const QString sold = document("invoice", "3");
    document("invoice", "4", {s("--draft")});
    document("quotation", "2");
    QCOMPARE(stock(), 12.0);

    // The cancellation gives the bolts back; both documents are cancelled and point at each other.
    const Run cancelled = m_cli->run({s("documents"), s("cancel"), sold});
    QCOMPARE(cancelled.exitCode, 0);
    QCOMPARE(stock(), 15.0);
    const QJsonObject twin = m_cli->document(cancelled.firstLine());
    QCOMPARE(twin.value(s("status")).toString(), s("cancelled"));
    QCOMPARE(twin.value(s("cancel_reference")).toString(), sold);
    QCOMPARE(twin.value(s("sum_total")).toDouble(), -33.0);
    QCOMPARE(m_cli->document(sold).value(s("status")).toString(), s("cancelled"));
    QCOMPARE(m_cli->document(sold).value(s("cancel_reference")).toString(), cancelled.firstLine());
    const Run again = m_cli->run({s("documents"), s("cancel"), sold});
    QCOMPARE(again.exitCode, 1);
    QVERIFY2(again.err.contains(s("Document cannot be cancelled")), qPrintable(again.err));

    // Deleting a final invoice counts its bolts back in stock.
    const QString another = document("invoice", "6");
    QCOMPARE(stock(), 9.0);
    const Run deleted = m_cli->run({s("documents"), s("delete"), another});
    QCOMPARE(deleted.exitCode, 0);
    QCOMPARE(stock(), 15.0);
    QCOMPARE(m_cli->run({s("documents"), s("show"), another}).exitCode, 1);
}

void tst_Scenarios::paymentStatus_data()
{
    QTest::addColumn<QStringList>("payments");
    QTest::addColumn<bool>("settle");
    QTest::addColumn<QString>("status");
    QTest::addColumn<int>("paymentCount");
    QTest::newRow("nothing paid") << QStringList{} << false << s("unpaid") << 0;
    QTest::newRow("paid in two parts") << QStringList{s("60"), s("40")} << false << s("paid") << 2;
    QTest::newRow("paid too little") << QStringList{s("60"), s("30")} << false << s("unpaid") << 2;
    QTest::newRow("overpaid is unpaid") << QStringList{s("60"), s("50")} << false << s("unpaid") << 2;
    QTest::newRow("rest settled") << QStringList{s("30")} << true << s("paid") << 2;
    QTest::newRow("settling a paid one adds nothing") << QStringList{s("100")} << true << s("paid") << 1;
}

void tst_Scenarios::paymentStatus()
{
    QFETCH(QStringList, payments);
    QFETCH(bool, settle);
    QFETCH(QString, status);
    QFETCH(int, paymentCount);
    const QString number = m_cli
                               ->run({s("documents"), s("new"), s("--type"), s("invoice"), s("--client"),
                                      s("Acme Ltd"), s("--row"), s("Labour;1")})
                               .firstLine();
    for (const QString& amount : payments)
        QCOMPARE(m_cli
                     ->run({s("documents"), s("pay"), number, s("--amount"), amount, s("--payment-type"),
                            s("Cash")})
                     .exitCode,
                 0);
    if (settle)
        QCOMPARE(m_cli->run({s("documents"), s("settle"), number}).exitCode, 0);
    const QJsonObject document = m_cli->document(number);
    QCOMPARE(document.value(s("status")).toString(), status);
    const QJsonArray stored = document.value(s("payments")).toArray();
    QCOMPARE(stored.size(), paymentCount);
    if (settle && paymentCount > payments.size()) {
        QCOMPARE(stored.last().toObject().value(s("amount")).toDouble(), 70.0);
        QCOMPARE(stored.last().toObject().value(s("payment")).toString(), s("Bank Transfer"));
    }
    const Run text = m_cli->run({s("documents"), s("list"), s("--type"), s("invoice")});
    QVERIFY2(text.out.contains(status), qPrintable(text.out));
}

void tst_Scenarios::foreignCurrency()
{
    const QJsonObject document =
        m_cli
            ->json({s("documents"), s("new"), s("--type"), s("quotation"), s("--client"), s("Acme Ltd"),
                    s("--currency"), s("EUR"), s("--rate"), s("0.5"), s("--row"), s("Bolt;10")})
            .toObject();
    QCOMPARE(document.value(s("currency")).toString(), s("EUR"));
    QCOMPARE(document.value(s("exchange_rate")).toDouble(), 0.5);
    QCOMPARE(document.value(s("status")).toString(), QString());
    const QJsonObject summary = document.value(s("summaries")).toArray().first().toObject();
    QCOMPARE(summary.value(s("tax1_value")).toDouble(), 10.0);
    QCOMPARE(summary.value(s("default_currency_tax1_value")).toDouble(), 5.0);
    // Only the tax values are converted; the sums stay in the document's currency.
    QCOMPARE(document.value(s("sum_total")).toDouble(), 110.0);
}

void tst_Scenarios::refusalsChangeNothing_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message");
    const QStringList invoice = {s("documents"), s("new"),      s("--type"),
                                 s("invoice"),   s("--client"), s("Acme Ltd")};
    QTest::newRow("unknown client") << QStringList{s("documents"), s("new"),      s("--type"),
                                                   s("invoice"),   s("--client"), s("Acme")}
                                    << 1 << s("No client is named \"Acme\". Known: \"Acme Ltd\".");
    QTest::newRow("unknown tax of a row")
        << invoice + QStringList{s("--row"), s("Bolt;1"), s("--row"), s("X;1;1;VAT")} << 1
        << s("No tax is named \"VAT\".");
    QTest::newRow("quantity too large")
        << invoice + QStringList{s("--row"), s("Bolt;1e12")} << 1 << s("The quantity must be a number");
    QTest::newRow("exchange rate of 0")
        << invoice + QStringList{s("--currency"), s("EUR"), s("--rate"), s("0")} << 1
        << s("The exchange rate must be a number above 0");
    QTest::newRow("unknown currency")
        << invoice + QStringList{s("--currency"), s("XXQ")} << 1 << s("No currency has the code \"XXQ\".");
    QTest::newRow("malformed predicate")
        << QStringList{s("documents"), s("list"), s("--where"), s("sum_total >")} << 1
        << s("The condition is malformed at position 11");
    QTest::newRow("unknown key in predicate")
        << QStringList{s("clients"), s("list"), s("--where"), s("colour == 1")} << 1 << s("colour");
    QTest::newRow("unknown document")
        << QStringList{s("documents"), s("pay"), s("INVOICE/1999-0001"), s("--amount"), s("1")} << 1
        << s("No document has the number or identifier \"INVOICE/1999-0001\".");
    QTest::newRow("unknown item received")
        << QStringList{s("items"), s("receive"), s("Screw"), s("--quantity"), s("1")} << 1
        << s("No item is named \"Screw\".");
    QTest::newRow("missing type") << QStringList{s("documents"), s("new"), s("--client"), s("Acme Ltd")} << 2
                                  << s("The option \"--type\" is required.");
    QTest::newRow("unknown type") << QStringList{s("documents"), s("new"),      s("--type"),
                                                 s("bill"),      s("--client"), s("Acme Ltd")}
                                  << 2 << s("--type must be one of invoice, proforma");
    QTest::newRow("row without quantity")
        << invoice + QStringList{s("--row"), s("Bolt")} << 2 << s("write a row as \"NAME;QUANTITY\"");
    QTest::newRow("rate without currency")
        << invoice + QStringList{s("--rate"), s("2")} << 2 << s("--rate needs --currency");
    QTest::newRow("draft quotation") << QStringList{s("documents"), s("new"),      s("--type"),
                                                    s("quotation"), s("--client"), s("Acme Ltd"),
                                                    s("--draft")}
                                     << 2 << s("Only an invoice can be a draft");
    QTest::newRow("malformed date") << invoice + QStringList{s("--date"), s("15.03.2024")} << 2
                                    << s("\"15.03.2024\" is not a date");
    QTest::newRow("unknown option") << invoice + QStringList{s("--colour"), s("red")} << 2
                                    << s("Unknown option \"--colour\".");
    QTest::newRow("option without value")
        << invoice + QStringList{s("--date")} << 2 << s("The option \"--date\" needs a value.");
    QTest::newRow("one word too many")
        << QStringList{s("documents"), s("show"), s("A"), s("B")} << 2 << s("Unexpected argument \"B\".");
}

void tst_Scenarios::refusalsChangeNothing()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    const Run run = m_cli->run(arguments);
    QCOMPARE(run.exitCode, exitCode);
    QVERIFY2(run.err.contains(message), qPrintable(run.err));
    QVERIFY2(run.out.isEmpty(), qPrintable(run.out));
    if (exitCode == 2)
        QVERIFY2(run.err.contains(s("Usage: corvanta-cli")), qPrintable(run.err));
    QCOMPARE(m_cli->json({s("documents"), s("list")}).toArray().size(), 0);
    QCOMPARE(m_cli->json({s("items"), s("show"), s("Bolt")}).toObject().value(s("stock_current")).toDouble(),
             0.0);
}

QTEST_GUILESS_MAIN(tst_Scenarios)
#include "tst_scenarios.moc"
