#include "documents/documentcanceller.h"
#include "documents/documentcopier.h"
#include "documents/documentpayments.h"
#include "documents/invoicefinalizer.h"
#include "documents/paymentstatus.h"
#include "documents/stockcalculator.h"
#include "documenttestsupport.h"
#include "editors/documentcontroller.h"
#include "forcedfailure.h"
#include "store/editingcontext.h"

#include <QSignalSpy>

using namespace corvanta;
using namespace corvanta::documents;
using namespace corvanta::editors;
using namespace corvanta::documents::testing;
using predicate::RecordRef;
using store::Record;
using Sender = DocumentController::Sender;

// What happens to stored documents from the lists: finalisation, cancellation and copies, the
// stock they move, and payments with the paid and unpaid rules.
class tst_StockAndPayments : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void stockCountsOnlyFinalInvoices();
    void declinedFinalisationChangesNothing();
    void cancellationIsANegativeTwin();
    void onlyFinalInvoicesCanBeCancelled_data();
    void onlyFinalInvoicesCanBeCancelled();
    void failedCancellationLeavesNothing();
    void copyOfADocument();
    void paidRule_data();
    void paidRule();
    void settlingTheRest();
    void paymentsRefuseAbsurdAmounts();

private:
    // A document of `type` with one row of `quantity` bolts at 10 (tax 20 %), saved through the
    // editor: a draft for an invoice unless `final`.
    RecordRef document(int type, double quantity, bool final = true);

    std::unique_ptr<TestCompany> m_company;
    RecordRef m_client;
    RecordRef m_bolt;
};

void tst_StockAndPayments::init()
{
    m_company = std::make_unique<TestCompany>(at(2024, 6, 3, 9, 15));
    m_client = m_company->addClient(s("Acme Ltd"));
    m_bolt = m_company->addItem(s("Bolt"), 10, m_company->addTax(s("VAT"), 20));
    m_company->addDelivery(m_bolt, 10);
    m_company->addDelivery(m_bolt, 5);
}

void tst_StockAndPayments::cleanup()
{
    m_company.reset();
}

RecordRef tst_StockAndPayments::document(int type, double quantity, bool final)
{
    DocumentController editor(m_company->store(), m_company->prompter(), m_company->clock());
    editor.newDocument(type);
    editor.addClient(m_client);
    editor.setQuantity(editor.addItem(m_bolt), quantity);
    if (!editor.save(final ? Sender::None : Sender::Control))
        qFatal("the document could not be saved");
    return editor.document()->ref();
}

void tst_StockAndPayments::stockCountsOnlyFinalInvoices()
{
    document(0, 3);
    document(0, 4, false);
    document(3, 2);
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 12.0);

    std::unique_ptr<store::EditingContext> context = m_company->store().newContext();
    StockCalculator stock(*context);
    Record* bolt = context->record(m_bolt);
    QCOMPARE(stock.incoming(bolt), 15.0);
    QCOMPARE(stock.sold(bolt), 3.0);
    stock.updateItemCurrentStock(nullptr);
}

void tst_StockAndPayments::declinedFinalisationChangesNothing()
{
    const RecordRef draft = document(0, 4, false);
    InvoiceFinalizer finalizer(m_company->store(), m_company->prompter(), m_company->clock());
    m_company->prompter().addAnswer(s("Cancel"));
    QVERIFY(!finalizer.finalizeInvoiceIfNeeded(draft));
    QCOMPARE(m_company->stored(draft, "draft").toBool(), true);
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 15.0);

    // A failed save leaves the draft a draft.
    {
        ForcedFailure failure(m_company->store().path(), s("Documents"), s("UPDATE"));
        QVERIFY(!finalizer.finalizeInvoiceIfNeeded(draft));
    }
    QCOMPARE(m_company->prompter().titles().last(), s("The changes could not be saved."));
    QCOMPARE(m_company->stored(draft, "draft").toBool(), true);
    QVERIFY(m_company->stored(draft, "number").isNull());
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 15.0);
}

void tst_StockAndPayments::cancellationIsANegativeTwin()
{
    const RecordRef invoice = document(0, 3);
    Record* stored = m_company->record(invoice);
    stored->setValue(s("note_header"), s("Order 17"));
    stored->setValue(s("exchange_rate"), 0.5);
    m_company->saveMain();
    DocumentController editor(m_company->store(), m_company->prompter(), m_company->clock());
    editor.openDocument(invoice);
    QVERIFY(editor.save(Sender::None)); // summaries at the new rate
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 12.0);

    m_company->setNow(at(2024, 7, 1, 16, 45));
    DocumentCanceller canceller(m_company->store(), m_company->prompter(), m_company->clock());
    QSignalSpy counts(&canceller, &DocumentCanceller::countsChanged);
    const std::optional<RecordRef> twin = canceller.cancel(invoice);
    QVERIFY(twin);
    const auto& question = m_company->prompter().questions().last();
    QCOMPARE(question.title, s("Are you sure you want to cancel the document \"INVOICE/2024-0001\"?"));
    QCOMPARE(question.text, s("This action cannot be undone."));
    QCOMPARE(question.buttons, (QStringList{s("Cancel Invoice"), s("Don't Cancel")}));
    QCOMPARE(counts.count(), 1);

    QCOMPARE(
        m_company->stored(*twin, {s("number_formatted"), s("date_creation"), s("created"), s("sum_net"),
                                  s("sum_tax1"), s("sum_total"), s("note_header"), s("client.full_name"),
                                  s("rows.quantity"), s("rows.total"), s("rows.tax_value"),
                                  s("summaries.tax1_value"), s("summaries.default_currency_tax1_value"),
                                  s("tags.name")}),
        (QStringList{s("number_formatted=INVOICE/2024-0002"), s("date_creation=2024-07-01T12:00:00"),
                     s("created=2024-07-01T16:45:00"), s("sum_net=-30"), s("sum_tax1=-6"), s("sum_total=-36"),
                     s("note_header=Reference: INVOICE/2024-0001\nOrder 17"), s("client.full_name=Acme Ltd"),
                     s("rows.quantity=-3"), s("rows.total=-36"), s("rows.tax_value=-6"),
                     s("summaries.tax1_value=-6"), s("summaries.default_currency_tax1_value=3"),
                     s("tags.name=Invoice|Cancellation")}));
    QVERIFY(m_company->stored(*twin, "identifier") != m_company->stored(invoice, "identifier"));

    // Both point at each other; the stock is back; the cancelled invoice is otherwise as it was.
    QCOMPARE(m_company->stored(*twin, "cancel_reference").value<RecordRef>(), invoice);
    QCOMPARE(m_company->stored(invoice, "cancel_reference").value<RecordRef>(), *twin);
    QCOMPARE(m_company->stored(invoice, "sum_total").toDouble(), 36.0);
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 15.0);
}

void tst_StockAndPayments::onlyFinalInvoicesCanBeCancelled_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("final");
    QTest::addColumn<bool>("cancelledBefore");
    QTest::newRow("draft invoice") << 0 << false << false;
    QTest::newRow("quotation") << 3 << true << false;
    QTest::newRow("cancelled invoice") << 0 << true << true;
}

void tst_StockAndPayments::onlyFinalInvoicesCanBeCancelled()
{
    QFETCH(int, type);
    QFETCH(bool, final);
    QFETCH(bool, cancelledBefore);
    const RecordRef ref = document(type, 1, final);
    DocumentCanceller canceller(m_company->store(), m_company->prompter(), m_company->clock());
    if (cancelledBefore)
        QVERIFY(canceller.cancel(ref));
    m_company->prompter().clear();
    const int before = m_company->main().count(store::FetchRequest(s("Documents")));
    QVERIFY(!canceller.cancel(ref));
    QCOMPARE(m_company->prompter().titles(), QStringList{s("Document cannot be cancelled")});
    QCOMPARE(m_company->prompter().questions().first().text,
             s("Only a final invoice that has not been cancelled yet can be cancelled."));
    QCOMPARE(m_company->main().count(store::FetchRequest(s("Documents"))), before);
}

void tst_StockAndPayments::failedCancellationLeavesNothing()
{
    const RecordRef invoice = document(0, 3);
    DocumentCanceller canceller(m_company->store(), m_company->prompter(), m_company->clock());
    m_company->prompter().addAnswer(s("Don't Cancel"));
    QVERIFY(!canceller.cancel(invoice));
    {
        ForcedFailure failure(m_company->store().path(), s("DocumentSummaries"), s("INSERT"));
        QVERIFY(!canceller.cancel(invoice));
    }
    QCOMPARE(m_company->main().count(store::FetchRequest(s("Documents"))), 1);
    QCOMPARE(m_company->main().count(store::FetchRequest(s("DocumentRows"))), 1);
    QVERIFY(m_company->stored(invoice, "cancel_reference").isNull());
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 12.0);
    // The number the failed cancellation was to take is still free.
    QVERIFY(canceller.cancel(invoice));
    QCOMPARE(m_company->stored(invoice, "cancel_reference.number").toLongLong(), 2);
}

void tst_StockAndPayments::copyOfADocument()
{
    const RecordRef invoice = document(0, 3);
    DocumentPayments(m_company->store(), m_company->prompter(), m_company->clock()).addPayment(invoice, 10);
    const auto week = m_company->add("DueDays", {{s("name"), s("7 days")}, {s("days"), 7}, {s("type"), 0}});
    m_company->record(m_client)->setValue(s("default_due_day"), QVariant::fromValue(week));
    m_company->saveMain();

    m_company->setNow(at(2024, 8, 20, 11, 0));
    DocumentCopier copier(m_company->store(), m_company->prompter(), m_company->clock());
    const std::optional<RecordRef> copy = copier.duplicate(invoice);
    QVERIFY(copy);
    QCOMPARE(m_company->stored(*copy, {s("number_formatted"), s("created"), s("date_creation"), s("date_due"),
                                       s("sum_total"), s("rows.@count"), s("summaries.@count"),
                                       s("payments.@count"), s("tags.name")}),
             (QStringList{s("number_formatted=INVOICE/2024-0002"), s("created=2024-08-20T11:00:00"),
                          s("date_creation=2024-08-20T12:00:00"), s("date_due=2024-08-27T12:00:00"),
                          s("sum_total=36"), s("rows.@count=1"), s("summaries.@count=1"),
                          s("payments.@count=0"), s("tags.name=Invoice")}));
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 9.0);

    // A draft's copy is a draft.
    const std::optional<RecordRef> draftCopy = copier.duplicate(document(0, 1, false));
    QVERIFY(draftCopy);
    QCOMPARE(m_company->stored(*draftCopy, "draft").toBool(), true);
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 9.0);
}

void tst_StockAndPayments::paidRule_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("draft");
    QTest::addColumn<double>("total");
    QTest::addColumn<QList<double>>("payments");
    QTest::addColumn<bool>("cancelled");
    QTest::addColumn<bool>("paid");
    QTest::addColumn<bool>("unpaid");

    QTest::newRow("paid in two parts")
        << 0 << QVariant(false) << 100.0 << QList<double>{60, 40} << false << true << false;
    QTest::newRow("partly paid") << 0 << QVariant(false) << 100.0 << QList<double>{60, 30} << false << false
                                 << true;
    QTest::newRow("overpaid") << 0 << QVariant(false) << 100.0 << QList<double>{60, 50} << false << false
                              << true;
    QTest::newRow("paid to the last bit")
        << 0 << QVariant(false) << 100.1 << QList<double>{100.1} << false << true << false;
    QTest::newRow("sums that differ in the last bit")
        << 0 << QVariant(false) << 0.3 << QList<double>{0.1, 0.2} << false << false << true;
    QTest::newRow("nothing to pay") << 0 << QVariant(false) << 0.0 << QList<double>{} << false << true
                                    << false;
    QTest::newRow("draft") << 0 << QVariant(true) << 100.0 << QList<double>{} << false << false << false;
    QTest::newRow("draft never set") << 0 << QVariant() << 100.0 << QList<double>{} << false << false
                                     << false;
    QTest::newRow("quotation") << 3 << QVariant(false) << 100.0 << QList<double>{} << false << false << false;
    QTest::newRow("cancelled and unpaid")
        << 0 << QVariant(false) << 100.0 << QList<double>{} << true << false << false;
    QTest::newRow("cancelled and paid")
        << 0 << QVariant(false) << 100.0 << QList<double>{100} << true << true << false;
}

void tst_StockAndPayments::paidRule()
{
    QFETCH(int, type);
    QFETCH(QVariant, draft);
    QFETCH(double, total);
    QFETCH(QList<double>, payments);
    QFETCH(bool, cancelled);

    Record* document = m_company->main().insertRecord(
        s("Documents"), {{s("type"), type}, {s("draft"), draft}, {s("sum_total"), total}});
    if (cancelled) {
        Record* twin = m_company->main().insertRecord(s("Documents"), {{s("type"), 1}});
        document->setRelated(s("cancel_reference"), twin);
    }
    for (double amount : payments)
        m_company->main().insertRecord(
            s("Payments"), {{s("amount"), amount}, {s("document"), QVariant::fromValue(document->ref())}});
    // Judged in memory before the save, and by the store after it.
    QTEST(PaymentStatus::isPaid(document), "paid");
    QTEST(PaymentStatus::isUnpaid(document), "unpaid");
    m_company->saveMain();
    QTEST(PaymentStatus::countPaid(m_company->main()) == 1, "paid");
    QTEST(PaymentStatus::countUnpaid(m_company->main()) == 1, "unpaid");
}

void tst_StockAndPayments::settlingTheRest()
{
    const RecordRef invoice = document(0, 1); // 12
    DocumentPayments payments(m_company->store(), m_company->prompter(), m_company->clock());
    QSignalSpy changed(&payments, &DocumentPayments::paymentsChanged);
    const auto cash = m_company->named("PaymentTypes", s("Cash"))->ref();
    QVERIFY(payments.addPayment(invoice, 4.5, cash, at(2024, 6, 1)));
    QCOMPARE(payments.remaining(invoice), 7.5);
    QVERIFY(payments.closeDocumentPayments(invoice, false));
    QCOMPARE(m_company->stored(invoice, "payments.@count").toInt(), 1);

    m_company->setNow(at(2024, 6, 9, 8, 0));
    QVERIFY(payments.closeDocumentPayments(invoice, true));
    const Record* rest = m_company->find(s("Payments"), s("amount == %@"), {7.5});
    QVERIFY(rest);
    QCOMPARE(rest->valueForKeyPath(s("payment.name")).toString(), s("Bank Transfer"));
    QCOMPARE(rest->value(s("date")).toDateTime(), at(2024, 6, 9, 8, 0));
    QVERIFY(PaymentStatus::isPaid(m_company->record(invoice)));

    QVERIFY(payments.closeDocumentPayments(invoice, true));
    QCOMPARE(m_company->stored(invoice, "payments.@count").toInt(), 2);
    QCOMPARE(changed.count(), 4);

    QVERIFY(payments.removePayment(rest->ref()));
    QCOMPARE(payments.remaining(invoice), 7.5);
}

void tst_StockAndPayments::paymentsRefuseAbsurdAmounts()
{
    const RecordRef invoice = document(0, 1);
    m_company->prompter().clear();
    DocumentPayments payments(m_company->store(), m_company->prompter(), m_company->clock());
    QVERIFY(!payments.addPayment(invoice, std::nan("")));
    QVERIFY(!payments.addPayment(invoice, 1e300));
    QCOMPARE(m_company->prompter().titles(), (QStringList{s("Invalid number"), s("Invalid number")}));
    QCOMPARE(m_company->prompter().questions().last().text,
             s("The amount must be a number from -1,000,000,000,000 to 1,000,000,000,000."));
    QCOMPARE(m_company->stored(invoice, "payments.@count").toInt(), 0);
}

QTEST_GUILESS_MAIN(tst_StockAndPayments)
#include "tst_stockandpayments.moc"
