#include "documents/documentcanceller.h"
#include "documents/documentcopier.h"
#include "documents/documentdeleter.h"
#include "documents/documentpayments.h"
#include "documents/documenttypes.h"
#include "documents/invoicefinalizer.h"
#include "documents/numberformat.h"
#include "documents/paymentstatus.h"
#include "documents/pricelevels.h"
#include "documenttestsupport.h"
#include "model/companyrecord.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <cmath>

using namespace corvanta;
using namespace corvanta::documents;
using namespace corvanta::documents::testing;

// The business rules of documents: numbers and their formats, taxes and sums, what a document
// copies, stock, payments with the paid and unpaid rules, and finalising, cancelling, copying and
// deleting stored documents, where a refusal or a failed save changes nothing.
class tst_Documents : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_company.reset(); }

    void render_data();
    void render();
    void startNumberAnswer_data();
    void startNumberAnswer();
    void sequencesCountStoredNonDraftsPerTypeAndYear();
    void taxSummaryAndSums_data();
    void taxSummaryAndSums();
    void copiesOfItemClientAndCompany();
    void stockCountsUnsavedDocumentsAsTheyAre();
    void finalisingADraft();
    void cancellationAndDeletion();
    void copyOfADocument();
    void paidRule_data();
    void paidRule();
    void payments();

private:
    Record* insert(const char* entity, const QVariantMap& values = {})
    {
        return m_company->main().insertRecord(s(entity), values);
    }
    // A document of `type` with one row of `quantity` bolts at 10 plus 20 % tax.
    RecordRef document(int type, double quantity, bool final = true, const QVariantMap& values = {})
    {
        return m_company->addDocument(type, m_client, m_bolt, quantity, final, values);
    }
    // What a refused or failed command must leave as it was.
    QString state(const RecordRef& ref)
    {
        return m_company->storedText(ref, s("number_formatted draft created cancel_reference.number")) +
               s(" documents=%1 stock=%2").arg(m_company->count("Documents")).arg(m_company->stock(m_bolt));
    }

    std::unique_ptr<TestCompany> m_company;
    RecordRef m_client;
    RecordRef m_bolt;
};

// A company with a client and 15 bolts in stock.
void tst_Documents::init()
{
    m_company = std::make_unique<TestCompany>(at(2024, 6, 3, 9, 15));
    m_client = m_company->addClient(s("Acme Ltd"));
    m_bolt = m_company->addItem(s("Bolt"), 10, m_company->addTax(s("VAT"), 20));
    m_company->addDelivery(m_bolt, 10);
    m_company->addDelivery(m_bolt, 5);
}

void tst_Documents::render_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QDate>("date");
    QTest::addColumn<qint64>("number"); // none: the sample shown in the preferences
    QTest::addColumn<QString>("expected");
    const QDate june(2024, 6, 1);
    const auto row = [](const char* name, const char* format, const QDate& date, std::optional<qint64> number,
                        const char* expected) {
        QTest::newRow(name) << s(format) << date << number.value_or(-1) << s(expected);
    };
    row("default invoice format", "INVOICE/,YYYY,-,NNNN", june, 7, "INVOICE/2024-0007");
    row("wider than the padding", "NNNN", june, 12345, "12345");
    row("short year, five and six digits", "YY,/,NNNNN,NNNNNN", june, 3, "24/00003000003");
    row("the longer year token first", "YYYYY", june, 1, "2024Y");
    // A sample shows the year of the week the day is in; a number, the calendar year.
    row("sample on 1 January", "YY-NNNN", QDate(2021, 1, 1), std::nullopt, "20-0123");
    row("number on 1 January", "YY", QDate(2021, 1, 1), 1, "21");
}

void tst_Documents::render()
{
    QFETCH(QString, format);
    QFETCH(QDate, date);
    QFETCH(qint64, number);
    QTEST(number < 0 ? NumberFormat::sample(format, date) : NumberFormat::render(format, date, number),
          "expected");
}

void tst_Documents::startNumberAnswer_data()
{
    QTest::addColumn<std::optional<QString>>("answer");
    QTest::addColumn<qint64>("expected");
    for (const auto& [answer, expected] : QList<std::pair<const char*, qint64>>{
             {"99999", 99999}, {"100000", 1}, {"0", 1}, {"abc", 1}, {" 42 pieces", 42}})
        QTest::newRow(answer) << std::optional<QString>(s(answer)) << expected;
    QTest::newRow("cancelled") << std::optional<QString>() << qint64(1);
}

void tst_Documents::startNumberAnswer()
{
    QFETCH(std::optional<QString>, answer);
    QTEST(DocumentNumbering::startNumberFrom(answer), "expected");
}

void tst_Documents::sequencesCountStoredNonDraftsPerTypeAndYear()
{
    QVERIFY(!DocumentTypes::isValid(8) && DocumentTypes::displayName(-1).isEmpty());
    QVERIFY_THROWS_EXCEPTION(std::out_of_range, DocumentTypes::typeNameByNumber(8));

    TestCompany& company = *m_company;
    DocumentNumbering numbering(company.main(), company.prompter());
    const auto document = [&](int type, const QDateTime& date, qint64 number, const QVariant& draft) {
        company.add(
            "Documents",
            {{s("type"), type}, {s("date_creation"), date}, {s("number"), number}, {s("draft"), draft}});
    };
    document(0, at(2023, 12, 31, 23, 59), 41, false);
    document(0, at(2024, 1, 1, 0, 1), 3, false);
    document(0, at(2024, 5, 1), 9, true);       // a draft takes no number
    document(3, at(2024, 5, 1), 77, false);     // another type
    document(0, at(2024, 12, 30), 2, false);    // dated last, numbered low
    document(0, at(2024, 2, 1), 5, QVariant()); // draft never set

    QCOMPARE(numbering.nextNumberByType(0, at(2023, 6, 1), true).nextNumber, 42);
    QCOMPARE(numbering.nextNumberByType(0, at(2024, 12, 31), true).formattedNumber, s("INVOICE/2024-0006"));
    QCOMPARE(numbering.nextNumberByType(3, at(2024, 1, 1), true).formattedNumber, s("QUOTATION/2024-0078"));
    // Without the question a new year starts at 1; with it, the first number is the user's.
    QCOMPARE(numbering.nextNumberByType(0, at(2025, 1, 1), false).nextNumber, 1);
    QVERIFY(company.prompter().questions().isEmpty());
    company.prompter().addAnswer(s("1001"));
    QCOMPARE(numbering.nextNumberByType(0, at(2025, 1, 2), true).formattedNumber, s("INVOICE/2025-1001"));
    QCOMPARE(company.question(), s("Start Number | This is the first document of its type in 2025. Enter the "
                                   "number it starts with: | "));
    QCOMPARE(company.prompter().questions().first().initial, s("1"));
}

void tst_Documents::taxSummaryAndSums_data()
{
    // Each row is "quantity*price@tax": A (VAT 20), B (VAT 10), C (GST 5+7), D (QST 5, then 9.975
    // on net and first tax) or - for none. A summary line is "name net tax1 tax2 total", then both
    // tax values in the default currency.
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<double>("exchangeRate");
    QTest::addColumn<QStringList>("summaries");
    QTest::addColumn<QList<double>>("sums"); // net, tax1, tax2, total

    // Two taxes of one name share a line; rows without a tax count in the sums only.
    QTest::newRow("one line per tax name, in the order of the rows")
        << QStringList{s("1*100@A"), s("2*100@C"), s("1*10@B"), s("1*50@-")} << 1.0
        << QStringList{s("VAT 110 21 0 131 21 0"), s("GST 200 10 14 224 10 14")}
        << QList<double>{360, 31, 14, 405};
    QTest::newRow("foreign currency takes the tax values at the rate")
        << QStringList{s("4*10@C"), s("200*0.5@D"), s("2*30@C")} << 1.25
        << QStringList{s("GST 100 5 7 112 6.25 8.75"), s("QST 100 5 10.4737 115.474 6.25 13.0922")}
        << QList<double>{200, 10, 2.8 + 10.47375 + 4.2, 227.47375};
}

void tst_Documents::taxSummaryAndSums()
{
    QFETCH(QStringList, rows);
    QFETCH(double, exchangeRate);
    QFETCH(QStringList, summaries);
    QFETCH(QList<double>, sums);

    const QHash<QString, RecordRef> taxes{{s("A"), m_company->addTax(s("VAT"), 20)},
                                          {s("B"), m_company->addTax(s("VAT"), 10)},
                                          {s("C"), m_company->addTax(s("GST"), 5, 7)},
                                          {s("D"), m_company->addTax(s("QST"), 5, 9.975, true)}};
    Record* document = insert("Documents", {{s("exchange_rate"), exchangeRate}});
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const QStringList parts = rows[i].split(QRegularExpression(s("[*@]")));
        Record* row = insert("DocumentRows", {{s("order"), 3 * i + 5}});
        row->setRelated(s("document"), document);
        RowFiller::setTax(row, m_company->record(taxes.value(parts[2])));
        row->setValue(s("quantity"), parts[0].toDouble());
        row->setValue(s("unit_price"), parts[1].toDouble());
    }
    // While the rows are edited, the sums shown are those the next update stores, and nothing
    // is written yet.
    const DocumentTotals::Sums live = DocumentTotals::currentSums(document);
    QVERIFY(document->relatedList(s("summaries")).isEmpty());
    QStringList liveLines;
    for (const DocumentTotals::TaxLine& line : live.taxLines)
        liveLines << QStringList{line.name, QString::number(line.net), QString::number(line.tax1Value),
                                 QString::number(line.tax2Value), QString::number(line.total)}
                         .join(QLatin1Char(' '));

    // Run twice: the second run replaces the summary of the first.
    DocumentTotals::updateTaxSummary(document);
    DocumentTotals::updateTaxSummary(document);

    QList<Record*> lines = document->relatedList(s("summaries"));
    std::sort(lines.begin(), lines.end(), [](Record* a, Record* b) {
        return a->value(s("order")).toInt() < b->value(s("order")).toInt();
    });
    QStringList actual;
    for (const Record* line : lines) {
        QStringList values{line->value(s("tax_name")).toString()};
        for (const char* key : {"net", "tax1_value", "tax2_value", "total", "default_currency_tax1_value",
                                "default_currency_tax2_value"})
            values << QString::number(line->value(s(key)).toDouble());
        actual << values.join(QLatin1Char(' '));
    }
    QCOMPARE(actual, summaries);
    for (qsizetype i = 0; i < summaries.size(); ++i)
        QVERIFY2(summaries[i].startsWith(liveLines.value(i) + QLatin1Char(' ')),
                 qPrintable(liveLines.value(i)));
    const char* const keys[] = {"sum_net", "sum_tax1", "sum_tax2", "sum_total"};
    const double liveSums[] = {live.net, live.tax1, live.tax2, live.total};
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(document->value(s(keys[i])).toDouble(), sums.at(i));
        QVERIFY2(liveSums[i] == document->value(s(keys[i])).toDouble(), keys[i]);
    }
}

void tst_Documents::copiesOfItemClientAndCompany()
{
    Record* item = m_company->record(m_company->addItem(s("Bolt"), 4, m_company->addTax(s("VAT"), 25)));
    item->setValue(s("custom03"), s("steel"));
    item->setRelated(s("unit"), m_company->named("Units", s("Hours")));
    Record* row = insert("DocumentRows", {{s("quantity"), 2.0}});
    // The price of the level, and the item's tax to compute the row with.
    RowFiller::fillFromItem(row, item, 4);
    QCOMPARE(TestCompany::text(row, s("unit_price net total item.name code custom03 unit_name tax_name")),
             s("unit_price=16 net=32 total=40 item.name=Bolt code=BOL custom03=steel unit_name=Hours "
               "tax_name=VAT"));

    // The active level's price is typed into unit_price and kept in its slot when another level
    // becomes active; invalid levels change nothing.
    PriceLevels levels;
    row->setValue(levels.fieldKey(1), 12.5);
    levels.defaultPriceChanged({row}, 3);
    QCOMPARE(TestCompany::text(row, s("unit_price net custom_price01")),
             s("unit_price=12 net=24 custom_price01=12.5"));
    row->setValue(levels.fieldKey(3), 33.0);
    for (int invalid : {0, 6})
        levels.defaultPriceChanged({row}, invalid);
    levels.defaultPriceChanged({row}); // as every save does: the active level keeps its typed price
    levels.defaultPriceChanged({row}, 1);
    QCOMPARE(TestCompany::text(row, s("unit_price custom_price03")), s("unit_price=12.5 custom_price03=33"));

    // A document copies the company's data, its payment type's name and its client's data; a
    // list the client leaves empty (Acme has no e-mail) keeps what the document had.
    model::CompanyRecord::of(m_company->main())->setValue(s("custom10"), s("ten"));
    Record* document = insert("Documents", {{s("client_email"), s("kept@old.test")}});
    document->setRelated(s("client"), m_company->record(m_client));
    document->setRelated(s("payment_type"), m_company->named("PaymentTypes", s("Cash")));
    DocumentSnapshot::update(document);
    QCOMPARE(
        TestCompany::text(document, s("client_full_name client_email payment_type_name my_name my_custom10")),
        s("client_full_name=Acme Ltd client_email=kept@old.test payment_type_name=Cash my_name=My Company "
          "my_custom10=ten"));
    document->setRelated(s("payment_type"), nullptr);
    DocumentSnapshot::update(document);
    QCOMPARE(document->value(s("payment_type_name")), QVariant());
}

void tst_Documents::stockCountsUnsavedDocumentsAsTheyAre()
{
    Record* invoice = m_company->record(document(0, 3));
    Record* draft = m_company->record(document(0, 4, false));
    StockCalculator stock(m_company->main());
    Record* bolt = m_company->record(m_bolt);
    QCOMPARE(stock.incoming(bolt), 15.0);
    QCOMPARE(stock.sold(bolt), 3.0);
    // Documents changed in memory count as they are there, instead of as stored.
    invoice->relatedList(s("rows")).first()->setValue(s("quantity"), 1.0);
    draft->setValue(s("draft"), false);
    QCOMPARE(stock.sold(bolt, {invoice}), 1.0);
    QCOMPARE(stock.sold(bolt, {invoice, draft}), 5.0);
    draft->setValue(s("type"), 3);
    QCOMPARE(stock.sold(bolt, {draft}), 3.0);
}

void tst_Documents::finalisingADraft()
{
    const RecordRef draft = document(0, 4, false);
    const QString before = state(draft);
    m_company->setNow(at(2024, 6, 5, 16, 0));
    auto finalizer = m_company->make<InvoiceFinalizer>();
    QSignalSpy sound(&finalizer, &InvoiceFinalizer::soundRequested);
    QSignalSpy counts(&finalizer, &InvoiceFinalizer::countsChanged);
    // Declined, then failing after the document is written, before the stock is.
    m_company->prompter().addAnswer(s("Cancel"));
    QVERIFY(!finalizer.finalizeInvoiceIfNeeded(draft));
    {
        ForcedFailure failure(m_company->path(), s("Items"), s("UPDATE"));
        m_company->prompter().addAnswer(s("Finalize"));
        QVERIFY(!finalizer.finalizeInvoiceIfNeeded(draft));
    }
    QCOMPARE(m_company->prompter().titles(),
             (QStringList{s("Finalize Invoice"), s("Finalize Invoice"), s("Start Number"),
                          s("The changes could not be saved.")}));
    QCOMPARE(state(draft), before);

    m_company->prompter().clear();
    m_company->prompter().addAnswer(s("Finalize"));
    m_company->prompter().addAnswer(s("31"));
    QVERIFY(finalizer.finalizeInvoiceIfNeeded(draft));
    QCOMPARE(m_company->question(),
             s("Finalize Invoice | Are you sure you want to finalize this invoice? This "
               "action cannot be undone. | Finalize, Cancel"));
    QCOMPARE(m_company->storedText(draft, s("number_formatted draft created")),
             s("number_formatted=INVOICE/2024-0031 draft=false created=2024-06-05T16:00:00"));
    QCOMPARE(m_company->stock(m_bolt), 11.0);
    QCOMPARE(QList<QVariantList>(sound), QList<QVariantList>{{s("tindra")}});
    // Once final, nothing is asked again.
    QVERIFY(finalizer.finalizeInvoiceIfNeeded(draft));
    QCOMPARE(m_company->prompter().questions().size(), 2);
    QCOMPARE(counts.count(), 1);
}

void tst_Documents::cancellationAndDeletion()
{
    const RecordRef invoice =
        document(0, 3, true, {{s("note_header"), s("Order 17")}, {s("exchange_rate"), 0.5}});
    QVERIFY(m_company->make<DocumentPayments>().addPayment(invoice, 10));
    auto canceller = m_company->make<DocumentCanceller>();
    QSignalSpy cancelled(&canceller, &DocumentCanceller::countsChanged);
    // Only a final invoice can be cancelled; declined or failing half-way, nothing changes.
    for (const RecordRef& refused : {document(0, 1, false), document(3, 1)})
        QVERIFY(!canceller.cancel(refused));
    QCOMPARE(m_company->question(), s("Document cannot be cancelled | Only a final invoice that has not been "
                                      "cancelled yet can be cancelled. | OK"));
    const QString before = state(invoice);
    m_company->prompter().clear();
    m_company->prompter().addAnswer(s("Don't Cancel"));
    QVERIFY(!canceller.cancel(invoice));
    {
        ForcedFailure failure(m_company->path(), s("DocumentSummaries"), s("INSERT"));
        QVERIFY(!canceller.cancel(invoice));
    }
    QCOMPARE(state(invoice), before);

    m_company->setNow(at(2024, 7, 1, 16, 45));
    m_company->prompter().clear();
    const std::optional<RecordRef> twin = canceller.cancel(invoice);
    QVERIFY(twin);
    QCOMPARE(m_company->question(), s("Are you sure you want to cancel the document \"INVOICE/2024-0001\"? | "
                                      "This action cannot be undone. | Cancel Invoice, Don't Cancel"));
    // Every amount negated but the tax values in the default currency; dated today; in both folders;
    // both point at each other; the cancelled invoice is otherwise as it was; the stock is back.
    QCOMPARE(
        m_company->storedText(
            *twin, s("number_formatted date_creation created sum_net sum_tax1 sum_total "
                     "client.full_name rows.quantity rows.total rows.tax_value summaries.tax1_value "
                     "summaries.default_currency_tax1_value tags.name cancel_reference.number note_header")),
        s("number_formatted=INVOICE/2024-0002 date_creation=2024-07-01T12:00:00 created=2024-07-01T16:45:00 "
          "sum_net=-30 sum_tax1=-6 sum_total=-36 client.full_name=Acme Ltd rows.quantity=-3 rows.total=-36 "
          "rows.tax_value=-6 summaries.tax1_value=-6 summaries.default_currency_tax1_value=3 "
          "tags.name=Invoice|Cancellation cancel_reference.number=1 note_header=Reference: "
          "INVOICE/2024-0001\nOrder 17"));
    QVERIFY(m_company->stored(*twin, "identifier") != m_company->stored(invoice, "identifier"));
    QCOMPARE(m_company->storedText(invoice, s("sum_total tags.name cancel_reference.number")),
             s("sum_total=36 tags.name=Invoice cancel_reference.number=2"));
    QCOMPARE(m_company->stock(m_bolt), 15.0);
    QVERIFY(!canceller.cancel(invoice) && !canceller.cancel(*twin)); // neither can be cancelled again
    QCOMPARE(cancelled.count(), 1);

    auto deleter = m_company->make<DocumentDeleter>();
    QSignalSpy deleted(&deleter, &DocumentDeleter::countsChanged);
    const QString cancelledState = state(invoice);
    m_company->prompter().clear();
    m_company->prompter().addAnswer(s("Cancel"));
    QVERIFY(!deleter.deleteDocument(*twin));
    {
        ForcedFailure failure(m_company->path(), s("DocumentRows"), s("DELETE"));
        QVERIFY(!deleter.deleteDocument(*twin));
    }
    QVERIFY(!deleter.deleteDocument(RecordRef{s("Documents"), 999}));
    QCOMPARE(m_company->question(), s("Are you sure you want to delete the document \"INVOICE/2024-0002\"? | "
                                      "This action cannot be undone. | Delete Document, Cancel"));
    QCOMPARE(m_company->prompter().titles().size(), 3); // a missing document asks nothing
    QCOMPARE(state(invoice), cancelledState);

    // Without its cancellation, the invoice is sold again and can be cancelled again.
    QVERIFY(deleter.deleteDocument(*twin));
    QCOMPARE(m_company->stock(m_bolt), 12.0);
    QVERIFY(m_company->stored(invoice, "cancel_reference").isNull());
    // Rows, summary and payments go with their document; the refused draft and quotation stay.
    QVERIFY(deleter.deleteDocument(invoice));
    QCOMPARE(m_company->stock(m_bolt), 15.0);
    QCOMPARE((QList<int>{m_company->count("Documents"), m_company->count("DocumentRows"),
                         m_company->count("DocumentSummaries"), m_company->count("Payments")}),
             (QList<int>{2, 2, 2, 0}));
    QCOMPARE(deleted.count(), 2);
}

void tst_Documents::copyOfADocument()
{
    const RecordRef invoice = document(0, 3);
    QVERIFY(m_company->make<DocumentPayments>().addPayment(invoice, 10));
    const auto week = m_company->add("DueDays", {{s("name"), s("7 days")}, {s("days"), 7}, {s("type"), 0}});
    m_company->record(m_client)->setValue(s("default_due_day"), QVariant::fromValue(week));
    m_company->saveMain();

    m_company->setNow(at(2024, 8, 20, 11, 0));
    auto copier = m_company->make<DocumentCopier>();
    QSignalSpy counts(&copier, &DocumentCopier::countsChanged);
    const QString before = state(invoice);
    {
        // The copy's document is written, then its rows fail: nothing of it is left.
        ForcedFailure failure(m_company->path(), s("DocumentRows"), s("INSERT"));
        QVERIFY(!copier.duplicate(invoice));
    }
    QCOMPARE(state(invoice), before);

    const std::optional<RecordRef> copy = copier.duplicate(invoice);
    QVERIFY(copy);
    QCOMPARE(
        m_company->storedText(*copy,
                              s("number_formatted created date_creation date_due sum_total rows.@count "
                                "summaries.@count payments.@count client.full_name tags.name")),
        s("number_formatted=INVOICE/2024-0002 created=2024-08-20T11:00:00 date_creation=2024-08-20T12:00:00 "
          "date_due=2024-08-27T12:00:00 sum_total=36 rows.@count=1 summaries.@count=1 payments.@count=0 "
          "client.full_name=Acme Ltd tags.name=Invoice"));
    QVERIFY(m_company->stored(*copy, "identifier") != m_company->stored(invoice, "identifier"));
    QCOMPARE(m_company->stock(m_bolt), 9.0);

    // A draft's copy is a draft and moves no stock.
    const std::optional<RecordRef> draftCopy = copier.duplicate(document(0, 1, false));
    QVERIFY(draftCopy);
    QCOMPARE(m_company->storedText(*draftCopy, s("draft number")), s("draft=true number="));
    QCOMPARE(m_company->stock(m_bolt), 9.0);
    QCOMPARE(counts.count(), 2);
}

void tst_Documents::paidRule_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("draft");
    QTest::addColumn<double>("total");
    QTest::addColumn<QList<double>>("payments");
    QTest::addColumn<bool>("cancelled");
    QTest::addColumn<QString>("status"); // paid, unpaid or neither
    const auto row = [](const char* name, int type, const QVariant& draft, double total,
                        const QList<double>& payments, bool cancelled, const char* status) {
        QTest::newRow(name) << type << draft << total << payments << cancelled << s(status);
    };
    const QVariant final(false);
    row("paid in two parts", 0, final, 100.0, {60, 40}, false, "paid");
    row("partly paid", 0, final, 100.0, {60, 30}, false, "unpaid");
    row("sums that differ in the last bit", 0, final, 0.3, {0.1, 0.2}, false, "unpaid");
    row("nothing to pay", 0, final, 0.0, {}, false, "paid");
    row("draft", 0, QVariant(true), 100.0, {}, false, "neither");
    row("draft never set", 0, QVariant(), 100.0, {}, false, "neither");
    row("quotation", 3, final, 100.0, {}, false, "neither");
    row("cancelled and unpaid", 0, final, 100.0, {}, true, "neither");
    row("cancelled and paid", 0, final, 100.0, {100}, true, "paid");
}

void tst_Documents::paidRule()
{
    QFETCH(int, type);
    QFETCH(QVariant, draft);
    QFETCH(double, total);
    QFETCH(QList<double>, payments);
    QFETCH(bool, cancelled);
    QFETCH(QString, status);
    Record* document = insert("Documents", {{s("type"), type}, {s("draft"), draft}, {s("sum_total"), total}});
    if (cancelled)
        document->setRelated(s("cancel_reference"), insert("Documents", {{s("type"), 1}}));
    for (double amount : payments)
        insert("Payments", {{s("amount"), amount}, {s("document"), QVariant::fromValue(document->ref())}});
    // Judged in memory before the save, and by the store after it.
    const auto judged = [](bool paid, bool unpaid) {
        return paid ? (unpaid ? s("both") : s("paid")) : (unpaid ? s("unpaid") : s("neither"));
    };
    QCOMPARE(judged(PaymentStatus::isPaid(document), PaymentStatus::isUnpaid(document)), status);
    m_company->saveMain();
    store::EditingContext& c = m_company->main();
    QCOMPARE(judged(PaymentStatus::countPaid(c) == 1, PaymentStatus::countUnpaid(c) == 1), status);
}

void tst_Documents::payments()
{
    const RecordRef invoice = document(0, 1); // 12
    auto payments = m_company->make<DocumentPayments>();
    QSignalSpy changed(&payments, &DocumentPayments::paymentsChanged);
    QVERIFY(!payments.addPayment(invoice, 1e12 + 1));
    QVERIFY(!payments.addPayment(m_client, 1));
    QCOMPARE(m_company->asked(),
             QStringList{s("Invalid number | The amount must be a number from -1,000,000,000,000 to "
                           "1,000,000,000,000. | OK")});
    const auto cash =
        payments.addPayment(invoice, 4.5, m_company->named("PaymentTypes", s("Cash"))->ref(), at(2024, 6, 1));
    QVERIFY(cash && payments.closeDocumentPayments(invoice, false)); // closed without settling
    // Settled: the rest is paid now by the company's default payment type.
    m_company->setNow(at(2024, 6, 9, 8, 0));
    QVERIFY(payments.closeDocumentPayments(invoice, true));
    QCOMPARE(m_company->storedText(invoice, s("payments.amount payments.date payments.payment.name")),
             s("payments.amount=4.5|7.5 payments.date=2024-06-01T10:30:00|2024-06-09T08:00:00 "
               "payments.payment.name=Cash|Bank Transfer"));
    QCOMPARE(changed.count(), 3);
    QCOMPARE(changed.first().first().value<RecordRef>(), invoice);
    // Changed in place: a refused amount leaves the payment as it was.
    QVERIFY(!payments.changePayment(*cash, qQNaN(), {}, at(2024, 6, 2)));
    QVERIFY(payments.changePayment(*cash, 5, {}, at(2024, 6, 2)));
    QCOMPARE(m_company->storedText(invoice, s("payments.amount payments.date payments.payment.name")),
             s("payments.amount=5|7.5 payments.date=2024-06-02T10:30:00|2024-06-09T08:00:00 "
               "payments.payment.name=Bank Transfer|Bank Transfer"));
    QCOMPARE(payments.remaining(invoice), -0.5);
    QVERIFY(payments.removePayment(*cash));
    QCOMPARE(payments.remaining(invoice), 4.5);
    QVERIFY(!payments.removePayment(invoice));
}

QTEST_GUILESS_MAIN(tst_Documents)
#include "tst_documents.moc"
