#include "documents/documentcanceller.h"
#include "documents/documentcopier.h"
#include "documents/documentdeleter.h"
#include "documents/documentpayments.h"
#include "documents/invoicefinalizer.h"
#include "documents/paymentstatus.h"
#include "documenttestsupport.h"
#include "forcedfailure.h"

#include <QSignalSpy>
#include <cmath>

using namespace corvanta;
using namespace corvanta::documents;
using namespace corvanta::documents::testing;

// What is done to stored documents from the lists: finalising, cancelling, copying and deleting
// them, the stock they move, and payments with the paid and unpaid rules. A refusal or a failed
// save changes nothing.
class tst_StoredDocuments : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_company.reset(); }

    void stockCountsOnlyFinalInvoices();
    void finalisingADraft();
    void refusedFinalisationChangesNothing_data();
    void refusedFinalisationChangesNothing();
    void cancellationIsANegativeTwin();
    void refusedCancellationChangesNothing_data();
    void refusedCancellationChangesNothing();
    void copyOfADocument();
    void deletion();
    void paidRule_data();
    void paidRule();
    void payments();

private:
    // A document of `type` with one row of `quantity` bolts at 10 plus 20 % tax.
    RecordRef document(int type, double quantity, bool final = true, const QVariantMap& values = {})
    {
        return m_company->addDocument(type, m_client, {{m_bolt, quantity}}, final, values);
    }

    std::unique_ptr<TestCompany> m_company;
    RecordRef m_client;
    RecordRef m_bolt;
};

void tst_StoredDocuments::init()
{
    m_company = std::make_unique<TestCompany>(at(2024, 6, 3, 9, 15));
    m_client = m_company->addClient(s("Acme Ltd"));
    m_bolt = m_company->addItem(s("Bolt"), 10, m_company->addTax(s("VAT"), 20));
    m_company->addDelivery(m_bolt, 10);
    m_company->addDelivery(m_bolt, 5);
}

void tst_StoredDocuments::stockCountsOnlyFinalInvoices()
{
    Record* invoice = m_company->record(document(0, 3));
    Record* draft = m_company->record(document(0, 4, false));
    document(3, 2);
    QCOMPARE(m_company->stock(m_bolt), 12.0);

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
    m_company->main().rollback();
    QCOMPARE(StockCalculator::itemsOf(
                 m_company->record(m_company->addDocument(0, m_client, {{m_bolt, 1}, {m_bolt, 2}}))),
             QList<Record*>{bolt});
}

void tst_StoredDocuments::finalisingADraft()
{
    const RecordRef draft = document(0, 4, false);
    m_company->setNow(at(2024, 6, 5, 16, 0));
    auto finalizer = m_company->make<InvoiceFinalizer>();
    QSignalSpy sound(&finalizer, &InvoiceFinalizer::soundRequested);
    QSignalSpy counts(&finalizer, &InvoiceFinalizer::countsChanged);
    m_company->prompter().addAnswer(s("Finalize"));
    m_company->prompter().addAnswer(s("31"));
    QVERIFY(finalizer.finalizeInvoiceIfNeeded(draft));

    const auto& question = m_company->prompter().questions().first();
    QCOMPARE(question.text,
             s("Are you sure you want to finalize this invoice? This action cannot be undone."));
    QCOMPARE(question.buttons, (QStringList{s("Finalize"), s("Cancel")}));
    QCOMPARE(m_company->prompter().titles(), (QStringList{s("Finalize Invoice"), s("Start Number")}));
    QCOMPARE(m_company->storedText(draft, s("number_formatted draft created")),
             s("number_formatted=INVOICE/2024-0031 draft=false created=2024-06-05T16:00:00"));
    QCOMPARE(m_company->stock(m_bolt), 11.0);
    QCOMPARE(sound.count(), 1);
    QCOMPARE(sound.first().first().toString(), s("tindra"));
    QCOMPARE(counts.count(), 1);

    // Once final, nothing is asked again; a document that is not stored is not final.
    m_company->prompter().clear();
    QVERIFY(finalizer.finalizeInvoiceIfNeeded(draft));
    QVERIFY(!finalizer.finalizeInvoiceIfNeeded(RecordRef{s("Documents"), 999}));
    QVERIFY(m_company->prompter().questions().isEmpty());
    QCOMPARE(counts.count(), 1);

    // A draft dated last year takes the next number of its own year, whenever it is finalised.
    const QVariantMap lastYear{{s("date_creation"), at(2023, 12, 30, 12, 0)}};
    document(0, 1, true, lastYear);
    const RecordRef oldDraft = document(0, 1, false, lastYear);
    QVERIFY(finalizer.finalizeInvoiceIfNeeded(oldDraft));
    QCOMPARE(m_company->stored(oldDraft, "number_formatted").toString(), s("INVOICE/2023-0002"));
    QCOMPARE(m_company->prompter().titles(), QStringList{s("Finalize Invoice")});
}

void tst_StoredDocuments::refusedFinalisationChangesNothing_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("failing");
    QTest::addColumn<QStringList>("titles");
    QTest::newRow("declined") << s("Cancel") << false << QStringList{s("Finalize Invoice")};
    QTest::newRow("save fails") << s("Finalize") << true
                                << QStringList{s("Finalize Invoice"), s("Start Number"),
                                               s("The changes could not be saved.")};
}

void tst_StoredDocuments::refusedFinalisationChangesNothing()
{
    QFETCH(QString, answer);
    QFETCH(bool, failing);
    const RecordRef draft = document(0, 4, false);
    const QString before = m_company->storedText(draft, s("number number_formatted draft created"));
    auto finalizer = m_company->make<InvoiceFinalizer>();
    QSignalSpy counts(&finalizer, &InvoiceFinalizer::countsChanged);
    m_company->prompter().addAnswer(answer);
    {
        std::optional<ForcedFailure> failure;
        if (failing)
            failure.emplace(m_company->path(), s("Documents"), s("UPDATE"));
        QVERIFY(!finalizer.finalizeInvoiceIfNeeded(draft));
    }
    QTEST(m_company->prompter().titles(), "titles");
    QCOMPARE(m_company->storedText(draft, s("number number_formatted draft created")), before);
    QCOMPARE(m_company->stock(m_bolt), 15.0);
    QCOMPARE(counts.count(), 0);
}

void tst_StoredDocuments::cancellationIsANegativeTwin()
{
    const RecordRef invoice =
        document(0, 3, true, {{s("note_header"), s("Order 17")}, {s("exchange_rate"), 0.5}});
    QCOMPARE(m_company->stock(m_bolt), 12.0);
    m_company->setNow(at(2024, 7, 1, 16, 45));
    auto canceller = m_company->make<DocumentCanceller>();
    QSignalSpy counts(&canceller, &DocumentCanceller::countsChanged);
    const std::optional<RecordRef> twin = canceller.cancel(invoice);
    QVERIFY(twin);
    const auto& question = m_company->prompter().questions().last();
    QCOMPARE(question.title, s("Are you sure you want to cancel the document \"INVOICE/2024-0001\"?"));
    QCOMPARE(question.text, s("This action cannot be undone."));
    QCOMPARE(question.buttons, (QStringList{s("Cancel Invoice"), s("Don't Cancel")}));
    QCOMPARE(counts.count(), 1);

    // Every amount negated but the tax values in the default currency; dated today; in both folders.
    QCOMPARE(
        m_company->storedText(*twin,
                              s("number_formatted date_creation created sum_net sum_tax1 sum_total "
                                "client.full_name rows.quantity rows.total rows.tax_value "
                                "summaries.tax1_value summaries.default_currency_tax1_value tags.name")),
        s("number_formatted=INVOICE/2024-0002 date_creation=2024-07-01T12:00:00 created=2024-07-01T16:45:00 "
          "sum_net=-30 sum_tax1=-6 sum_total=-36 client.full_name=Acme Ltd rows.quantity=-3 rows.total=-36 "
          "rows.tax_value=-6 summaries.tax1_value=-6 summaries.default_currency_tax1_value=3 "
          "tags.name=Invoice|Cancellation"));
    QCOMPARE(m_company->stored(*twin, "note_header").toString(), s("Reference: INVOICE/2024-0001\nOrder 17"));
    QVERIFY(m_company->stored(*twin, "identifier") != m_company->stored(invoice, "identifier"));

    // Both point at each other; the stock is back; the cancelled invoice is otherwise as it was.
    QCOMPARE(m_company->stored(*twin, "cancel_reference").value<RecordRef>(), invoice);
    QCOMPARE(m_company->stored(invoice, "cancel_reference").value<RecordRef>(), *twin);
    QCOMPARE(m_company->storedText(invoice, s("sum_total tags.name")), s("sum_total=36 tags.name=Invoice"));
    QCOMPARE(m_company->stock(m_bolt), 15.0);
    m_company->main().reset();
    QVERIFY(!DocumentCanceller::canCancel(m_company->record(invoice)));
    QVERIFY(!DocumentCanceller::canCancel(m_company->record(*twin)));
}

void tst_StoredDocuments::refusedCancellationChangesNothing_data()
{
    QTest::addColumn<QString>("which"); // draft, quotation, cancelled, cancellation or final
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("failing");
    QTest::addColumn<QStringList>("titles");
    const QStringList refused{s("Document cannot be cancelled")};
    const QString asked = s("Are you sure you want to cancel the document \"INVOICE/2024-0001\"?");
    QTest::newRow("draft invoice") << s("draft") << QString() << false << refused;
    QTest::newRow("quotation") << s("quotation") << QString() << false << refused;
    QTest::newRow("cancelled invoice") << s("cancelled") << QString() << false << refused;
    QTest::newRow("cancellation") << s("cancellation") << QString() << false << refused;
    QTest::newRow("declined") << s("final") << s("Don't Cancel") << false << QStringList{asked};
    QTest::newRow("save fails") << s("final") << QString() << true
                                << QStringList{asked, s("The changes could not be saved.")};
}

void tst_StoredDocuments::refusedCancellationChangesNothing()
{
    QFETCH(QString, which);
    QFETCH(QString, answer);
    QFETCH(bool, failing);
    auto canceller = m_company->make<DocumentCanceller>();
    RecordRef ref = document(which == QLatin1String("quotation") ? 3 : 0, 1, which != QLatin1String("draft"));
    if (which == QLatin1String("cancelled") || which == QLatin1String("cancellation")) {
        const std::optional<RecordRef> twin = canceller.cancel(ref);
        QVERIFY(twin);
        if (which == QLatin1String("cancellation"))
            ref = *twin;
    }
    m_company->prompter().clear();
    if (!answer.isEmpty())
        m_company->prompter().addAnswer(answer);
    const int documents = m_company->count("Documents");
    const QVariant partner = m_company->stored(ref, "cancel_reference");
    const double stock = m_company->stock(m_bolt);
    {
        std::optional<ForcedFailure> failure;
        if (failing)
            failure.emplace(m_company->path(), s("DocumentSummaries"), s("INSERT"));
        QVERIFY(!canceller.cancel(ref));
    }
    QTEST(m_company->prompter().titles(), "titles");
    if (m_company->prompter().titles().first() == QLatin1String("Document cannot be cancelled"))
        QCOMPARE(m_company->prompter().questions().first().text,
                 s("Only a final invoice that has not been cancelled yet can be cancelled."));
    QCOMPARE(m_company->count("Documents"), documents);
    QCOMPARE(m_company->stored(ref, "cancel_reference"), partner);
    QCOMPARE(m_company->stock(m_bolt), stock);
    // The number a refused cancellation was to take is still free.
    if (which == QLatin1String("final")) {
        QVERIFY(canceller.cancel(ref));
        QCOMPARE(m_company->stored(ref, "cancel_reference.number").toLongLong(), 2);
    }
}

void tst_StoredDocuments::copyOfADocument()
{
    const RecordRef invoice = document(0, 3);
    QVERIFY(m_company->make<DocumentPayments>().addPayment(invoice, 10));
    const auto week = m_company->add("DueDays", {{s("name"), s("7 days")}, {s("days"), 7}, {s("type"), 0}});
    m_company->record(m_client)->setValue(s("default_due_day"), QVariant::fromValue(week));
    m_company->saveMain();

    m_company->setNow(at(2024, 8, 20, 11, 0));
    auto copier = m_company->make<DocumentCopier>();
    QSignalSpy counts(&copier, &DocumentCopier::countsChanged);
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
    QCOMPARE(counts.count(), 1);

    // A draft's copy is a draft and moves no stock.
    const std::optional<RecordRef> draftCopy = copier.duplicate(document(0, 1, false));
    QVERIFY(draftCopy);
    QCOMPARE(m_company->storedText(*draftCopy, s("draft number")), s("draft=true number="));
    QCOMPARE(m_company->stock(m_bolt), 9.0);
    QVERIFY(m_company->prompter().questions().isEmpty());
}

void tst_StoredDocuments::deletion()
{
    const RecordRef invoice = document(0, 3);
    QVERIFY(m_company->make<DocumentPayments>().addPayment(invoice, 10));
    const std::optional<RecordRef> twin = m_company->make<DocumentCanceller>().cancel(invoice);
    QVERIFY(twin);
    auto deleter = m_company->make<DocumentDeleter>();
    QSignalSpy counts(&deleter, &DocumentDeleter::countsChanged);
    m_company->prompter().clear();
    m_company->prompter().addAnswer(s("Cancel"));
    QVERIFY(!deleter.deleteDocument(*twin));
    {
        ForcedFailure failure(m_company->path(), s("DocumentRows"), s("DELETE"));
        QVERIFY(!deleter.deleteDocument(*twin));
    }
    QVERIFY(!deleter.deleteDocument(RecordRef{s("Documents"), 999}));
    const QString asked = s("Are you sure you want to delete the document \"INVOICE/2024-0002\"?");
    QCOMPARE(m_company->prompter().titles(),
             (QStringList{asked, asked, s("The changes could not be saved.")}));
    QCOMPARE(m_company->prompter().questions().first().text, s("This action cannot be undone."));
    QCOMPARE(m_company->prompter().questions().first().buttons,
             (QStringList{s("Delete Document"), s("Cancel")}));
    QCOMPARE(m_company->count("Documents") + m_company->count("DocumentRows"), 4);
    QCOMPARE(m_company->stored(invoice, "cancel_reference").value<RecordRef>(), *twin);
    QCOMPARE(m_company->stock(m_bolt), 15.0);
    QCOMPARE(counts.count(), 0);

    // Without its cancellation, the invoice is sold again and can be cancelled again.
    QVERIFY(deleter.deleteDocument(*twin));
    QCOMPARE(m_company->stock(m_bolt), 12.0);
    QVERIFY(m_company->stored(invoice, "cancel_reference").isNull());
    QCOMPARE(m_company->count("DocumentRows") + m_company->count("DocumentSummaries"), 2);
    // Rows, summary and payments go with their document.
    QVERIFY(deleter.deleteDocument(invoice));
    QCOMPARE(m_company->stock(m_bolt), 15.0);
    for (const char* entity : {"Documents", "DocumentRows", "DocumentSummaries", "Payments"})
        QVERIFY2(m_company->count(entity) == 0, entity);
    QCOMPARE(counts.count(), 2);
}

void tst_StoredDocuments::paidRule_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("draft");
    QTest::addColumn<double>("total");
    QTest::addColumn<QList<double>>("payments");
    QTest::addColumn<bool>("cancelled");
    QTest::addColumn<bool>("paid");
    QTest::addColumn<bool>("unpaid");
    const QVariant final(false);
    QTest::newRow("paid in two parts")
        << 0 << final << 100.0 << QList<double>{60, 40} << false << true << false;
    QTest::newRow("partly paid") << 0 << final << 100.0 << QList<double>{60, 30} << false << false << true;
    QTest::newRow("overpaid") << 0 << final << 100.0 << QList<double>{60, 50} << false << false << true;
    QTest::newRow("paid to the last bit")
        << 0 << final << 100.1 << QList<double>{100.1} << false << true << false;
    QTest::newRow("sums that differ in the last bit")
        << 0 << final << 0.3 << QList<double>{0.1, 0.2} << false << false << true;
    QTest::newRow("nothing to pay") << 0 << final << 0.0 << QList<double>{} << false << true << false;
    QTest::newRow("draft") << 0 << QVariant(true) << 100.0 << QList<double>{} << false << false << false;
    QTest::newRow("draft never set") << 0 << QVariant() << 100.0 << QList<double>{} << false << false
                                     << false;
    QTest::newRow("quotation") << 3 << final << 100.0 << QList<double>{} << false << false << false;
    QTest::newRow("cancelled and unpaid") << 0 << final << 100.0 << QList<double>{} << true << false << false;
    QTest::newRow("cancelled and paid") << 0 << final << 100.0 << QList<double>{100} << true << true << false;
}

void tst_StoredDocuments::paidRule()
{
    QFETCH(int, type);
    QFETCH(QVariant, draft);
    QFETCH(double, total);
    QFETCH(QList<double>, payments);
    QFETCH(bool, cancelled);
    store::EditingContext& c = m_company->main();
    Record* document =
        c.insertRecord(s("Documents"), {{s("type"), type}, {s("draft"), draft}, {s("sum_total"), total}});
    if (cancelled)
        document->setRelated(s("cancel_reference"), c.insertRecord(s("Documents"), {{s("type"), 1}}));
    for (double amount : payments)
        c.insertRecord(s("Payments"),
                       {{s("amount"), amount}, {s("document"), QVariant::fromValue(document->ref())}});
    // Judged in memory before the save, and by the store after it.
    QTEST(PaymentStatus::isPaid(document), "paid");
    QTEST(PaymentStatus::isUnpaid(document), "unpaid");
    m_company->saveMain();
    QTEST(PaymentStatus::countPaid(c) == 1, "paid");
    QTEST(PaymentStatus::countUnpaid(c) == 1, "unpaid");
}

void tst_StoredDocuments::payments()
{
    const RecordRef invoice = document(0, 1); // 12
    auto payments = m_company->make<DocumentPayments>();
    QSignalSpy changed(&payments, &DocumentPayments::paymentsChanged);
    QVERIFY(!payments.addPayment(invoice, std::nan("")));
    QVERIFY(!payments.addPayment(invoice, 1e300));
    QVERIFY(!payments.addPayment(m_client, 1));
    QCOMPARE(m_company->prompter().titles(), (QStringList{s("Invalid number"), s("Invalid number")}));
    QCOMPARE(changed.count(), 0);

    QVERIFY(payments.addPayment(invoice, 4.5, m_company->named("PaymentTypes", s("Cash"))->ref(),
                                at(2024, 6, 1)));
    QCOMPARE(payments.remaining(invoice), 7.5);
    QVERIFY(payments.closeDocumentPayments(invoice, false));
    QCOMPARE(m_company->stored(invoice, "payments.@count").toInt(), 1);

    // Settled: the rest is paid now by the company's default payment type.
    m_company->setNow(at(2024, 6, 9, 8, 0));
    QVERIFY(payments.closeDocumentPayments(invoice, true));
    QCOMPARE(m_company->storedText(invoice, s("payments.amount payments.date")),
             s("payments.amount=4.5|7.5 payments.date=2024-06-01T10:30:00|2024-06-09T08:00:00"));
    const Record* rest = m_company->fetch(s("Payments"), s("amount == 7.5")).value(0);
    QCOMPARE(rest->valueForKeyPath(s("payment.name")).toString(), s("Bank Transfer"));
    QVERIFY(PaymentStatus::isPaid(m_company->record(invoice)));
    QVERIFY(payments.closeDocumentPayments(invoice, true)); // nothing left to settle
    QCOMPARE(m_company->stored(invoice, "payments.@count").toInt(), 2);
    QCOMPARE(changed.count(), 4);
    QCOMPARE(changed.first().first().value<RecordRef>(), invoice);

    QVERIFY(payments.removePayment(rest->ref()));
    QCOMPARE(payments.remaining(invoice), 7.5);
    QVERIFY(!payments.removePayment(invoice));
}

QTEST_GUILESS_MAIN(tst_StoredDocuments)
#include "tst_storeddocuments.moc"
