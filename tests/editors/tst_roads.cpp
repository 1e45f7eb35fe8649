#include "documents/documentcanceller.h"
#include "documents/documentpayments.h"
#include "documents/invoicefinalizer.h"
#include "documents/paymentstatus.h"
#include "documenttestsupport.h"
#include "editors/documentcontroller.h"
#include "recordingoutput.h"
#include "store/editingcontext.h"

#include <QSignalSpy>

using namespace corvanta;
using namespace corvanta::documents;
using namespace corvanta::editors;
using namespace corvanta::documents::testing;
using predicate::RecordRef;
using store::Record;
using Sender = DocumentController::Sender;

namespace {

// The documents a smart folder of the sidebar selects, by number.
QStringList numbersIn(TestCompany& company, const QString& predicate)
{
    QStringList numbers;
    for (const Record* d : company.fetch(s("Documents"), predicate))
        numbers << d->value(s("number_formatted")).toString();
    numbers.sort();
    return numbers;
}

} // namespace

// Whole roads of documents through the core, as a user walks them.
class tst_Roads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void quoteToPaidInvoice();
    void invoiceCancelledRestoresStock();
    void firstInvoiceOfAYearWithStartNumber();
    void twoYearsOfSequences();
    void foreignCurrencyWithTwoTaxes();

private:
    std::unique_ptr<DocumentController> editor();

    std::unique_ptr<TestCompany> m_company;
    RecordRef m_client;
    RecordRef m_bolt;
    RecordRef m_nut;
    RecordingOutput m_output;
};

void tst_Roads::init()
{
    m_company = std::make_unique<TestCompany>(at(2024, 5, 6, 9, 0));
    m_client = m_company->addClient(s("Acme Ltd"));
    const auto vat = m_company->addTax(s("VAT"), 27);
    m_bolt = m_company->addItem(s("Bolt"), 10, vat);
    m_nut = m_company->addItem(s("Nut"), 0.5, vat);
    m_company->addDelivery(m_bolt, 100);
    m_company->addDelivery(m_nut, 1000);
    m_output.calls.clear();
}

void tst_Roads::cleanup()
{
    m_company.reset();
}

std::unique_ptr<DocumentController> tst_Roads::editor()
{
    auto controller =
        std::make_unique<DocumentController>(m_company->store(), m_company->prompter(), m_company->clock());
    controller->setOutput(&m_output);
    return controller;
}

void tst_Roads::quoteToPaidInvoice()
{
    // A quotation of 20 bolts and 200 nuts.
    auto quote = editor();
    quote->newDocument(3);
    QVERIFY(quote->clientEntered(s("Acme Ltd")));
    quote->setQuantity(quote->addItem(m_bolt), 20);
    Record* nuts = quote->addRow();
    quote->itemNameEntered(nuts, s("Nut"));
    quote->setQuantity(nuts, 200);
    QVERIFY(quote->save(Sender::Control));
    QCOMPARE(m_company->stored(quote->document()->ref(), "number_formatted").toString(),
             s("QUOTATION/2024-0001"));
    QCOMPARE(m_company->stored(quote->document()->ref(), "sum_total").toDouble(), 381.0);
    QCOMPARE(m_company->stored(quote->document()->ref(), "draft").toBool(), false);
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 100.0); // only invoices move stock

    // Accepted: the invoice is written from the browser's "add to document" and saved as a draft.
    m_company->setNow(at(2024, 5, 8, 15, 20));
    auto invoice = editor();
    invoice->newDocument(0);
    QVERIFY(invoice->addClient(m_client));
    for (const Record* row : quote->rows()) {
        Record* copy = invoice->addItem(row->related(s("item"))->ref());
        invoice->setQuantity(copy, row->value(s("quantity")).toDouble());
    }
    QVERIFY(invoice->save(Sender::Control));
    const RecordRef ref = invoice->document()->ref();
    QCOMPARE(m_company->stored(ref, "draft").toBool(), true);
    QCOMPARE(numbersIn(*m_company, s("draft == YES")).size(), 1);
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 100.0);

    // Finalised from the list: the first invoice of the year starts at 31.
    m_company->setNow(at(2024, 5, 9, 10, 0));
    InvoiceFinalizer finalizer(m_company->store(), m_company->prompter(), m_company->clock());
    QSignalSpy sound(&finalizer, &InvoiceFinalizer::soundRequested);
    QSignalSpy counts(&finalizer, &InvoiceFinalizer::countsChanged);
    m_company->prompter().clear();
    m_company->prompter().addAnswer(s("Finalize"));
    m_company->prompter().addAnswer(s("31"));
    QVERIFY(finalizer.finalizeInvoiceIfNeeded(ref));
    QCOMPARE(m_company->prompter().titles(), (QStringList{s("Finalize Invoice"), s("Start Number")}));
    QCOMPARE(m_company->stored(ref, {s("number_formatted"), s("draft"), s("created")}),
             (QStringList{s("number_formatted=INVOICE/2024-0031"), s("draft=false"),
                          s("created=2024-05-09T10:00:00")}));
    QCOMPARE(sound.count(), 1);
    QCOMPARE(counts.count(), 1);
    // Once final, nothing is asked again.
    QVERIFY(finalizer.finalizeInvoiceIfNeeded(ref));
    QCOMPARE(m_company->prompter().questions().size(), 2);
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 80.0);
    QCOMPARE(m_company->stored(m_nut, "stock_current").toDouble(), 800.0);
    QCOMPARE(numbersIn(*m_company, PaymentStatus::unpaidPredicate()), QStringList{s("INVOICE/2024-0031")});

    // Paid in parts; the rest is settled in one step.
    DocumentPayments payments(m_company->store(), m_company->prompter(), m_company->clock());
    QVERIFY(payments.addPayment(ref, 200));
    QVERIFY(payments.addPayment(ref, 100.5));
    QVERIFY(numbersIn(*m_company, PaymentStatus::paidPredicate()).isEmpty());
    QCOMPARE(payments.remaining(ref), 80.5);
    QVERIFY(payments.closeDocumentPayments(ref, true));
    QCOMPARE(numbersIn(*m_company, PaymentStatus::paidPredicate()), QStringList{s("INVOICE/2024-0031")});
    QVERIFY(numbersIn(*m_company, PaymentStatus::unpaidPredicate()).isEmpty());

    // Printing the paid invoice asks nothing more.
    m_company->prompter().clear();
    auto reopened = editor();
    reopened->openDocument(ref);
    QVERIFY(reopened->print());
    QCOMPARE(m_output.calls, QStringList{s("print INVOICE/2024-0031 x2")});
    QVERIFY(m_company->prompter().questions().isEmpty());
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 80.0);
}

void tst_Roads::invoiceCancelledRestoresStock()
{
    auto invoice = editor();
    invoice->newDocument(0);
    QVERIFY(invoice->addClient(m_client));
    invoice->setQuantity(invoice->addItem(m_bolt), 30);
    invoice->setQuantity(invoice->addItem(m_nut), 300);
    QVERIFY(invoice->print());
    const RecordRef ref = invoice->document()->ref();
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 70.0);
    QCOMPARE(m_company->stored(m_nut, "stock_current").toDouble(), 700.0);
    QCOMPARE(numbersIn(*m_company, PaymentStatus::unpaidPredicate()), QStringList{s("INVOICE/2024-0001")});

    DocumentCanceller canceller(m_company->store(), m_company->prompter(), m_company->clock());
    const std::optional<RecordRef> twin = canceller.cancel(ref);
    QVERIFY(twin);
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 100.0);
    QCOMPARE(m_company->stored(m_nut, "stock_current").toDouble(), 1000.0);
    QCOMPARE(m_company->stored(ref, "cancel_reference").value<RecordRef>(), *twin);
    QCOMPARE(m_company->stored(*twin, "cancel_reference").value<RecordRef>(), ref);
    QCOMPARE(m_company->stored(*twin, "sum_total").toDouble(),
             -m_company->stored(ref, "sum_total").toDouble());
    // Neither is unpaid any more; the sidebar shows the twin under Cancellation.
    QVERIFY(numbersIn(*m_company, PaymentStatus::unpaidPredicate()).isEmpty());
    const Record* cancellations = m_company->find(s("Categories"), s("type == 3 && subtype == 100"));
    QCOMPARE(
        m_company->fetch(s("Documents"), s("ANY tags == %@"), {QVariant::fromValue(cancellations->ref())})
            .size(),
        1);
    QVERIFY(!DocumentCanceller::canCancel(m_company->record(ref)));
    QVERIFY(!DocumentCanceller::canCancel(m_company->record(*twin)));
}

void tst_Roads::firstInvoiceOfAYearWithStartNumber()
{
    m_company->setNow(at(2025, 1, 2, 8, 0));
    m_company->prompter().addAnswer(s("Finalize"));
    m_company->prompter().addAnswer(s("1001"));
    QStringList numbers;
    for (int i = 0; i < 3; ++i) {
        auto invoice = editor();
        invoice->newDocument(0);
        QVERIFY(invoice->addClient(m_client));
        invoice->addItem(m_bolt);
        QVERIFY(invoice->sendEmail());
        numbers << invoice->document()->value(s("number_formatted")).toString();
    }
    QCOMPARE(numbers, (QStringList{s("INVOICE/2025-1001"), s("INVOICE/2025-1002"), s("INVOICE/2025-1003")}));
    const auto& question = m_company->prompter().questions().at(1);
    QCOMPARE(question.kind, support::ScriptedPrompter::Question::Kind::AskText);
    QCOMPARE(question.text,
             s("This is the first document of its type in 2025. Enter the number it starts with:"));
    QCOMPARE(question.initial, s("1"));
    QCOMPARE(m_company->prompter().titles(), (QStringList{s("Finalize Invoice"), s("Start Number"),
                                                          s("Finalize Invoice"), s("Finalize Invoice")}));
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 97.0);
}

void tst_Roads::twoYearsOfSequences()
{
    // Invoices dated in two years, written on the road from December into January.
    const struct
    {
        QDateTime now;
        QDate dated;
        const char* expected;
    } invoices[] = {
        {at(2023, 12, 28), QDate(2023, 12, 28), "INVOICE/2023-0001"},
        {at(2023, 12, 29), QDate(2023, 12, 31), "INVOICE/2023-0002"},
        {at(2024, 1, 2), QDate(2024, 1, 1), "INVOICE/2024-0001"},
        {at(2024, 1, 3), QDate(2023, 12, 31), "INVOICE/2023-0003"},
        {at(2024, 1, 3), QDate(2024, 1, 3), "INVOICE/2024-0002"},
    };
    RecordRef draft2023;
    for (const auto& i : invoices) {
        m_company->setNow(i.now);
        auto invoice = editor();
        invoice->newDocument(0);
        invoice->document()->setValue(s("date_creation"), QDateTime(i.dated, QTime(12, 0)));
        QVERIFY(invoice->addClient(m_client));
        invoice->addItem(m_nut);
        QVERIFY(invoice->save(Sender::None));
        QCOMPARE(invoice->document()->value(s("number_formatted")).toString(), s(i.expected));
        // A draft of the old year waits while others are numbered.
        if (i.dated == QDate(2023, 12, 28)) {
            auto draft = editor();
            draft->newDocument(0);
            draft->document()->setValue(s("date_creation"), QDateTime(QDate(2023, 12, 30), QTime(12, 0)));
            QVERIFY(draft->addClient(m_client));
            QVERIFY(draft->save(Sender::Control));
            draft2023 = draft->document()->ref();
        }
    }
    // Finalised at last, the draft takes the number free at that moment in its own year.
    InvoiceFinalizer finalizer(m_company->store(), m_company->prompter(), m_company->clock());
    QVERIFY(finalizer.finalizeInvoiceIfNeeded(draft2023));
    QCOMPARE(m_company->stored(draft2023, "number_formatted").toString(), s("INVOICE/2023-0004"));
    QCOMPARE(m_company->stored(m_nut, "stock_current").toDouble(), 995.0);
    // Each year's first invoice asked for its start number.
    QCOMPARE(m_company->prompter().titles(),
             (QStringList{s("Start Number"), s("Start Number"), s("Finalize Invoice")}));
}

void tst_Roads::foreignCurrencyWithTwoTaxes()
{
    // Two rates on the net, and two where the second is levied on net plus first.
    const auto gst = m_company->addTax(s("GST/PST"), 5, 7, false);
    const auto qst = m_company->addTax(s("GST/QST"), 5, 9.975, true);
    auto invoice = editor();
    invoice->newDocument(0);
    QVERIFY(invoice->addClient(m_client));
    Record* euro = invoice->context().fetchFirst(
        store::FetchRequest(s("Currencies"), *predicate::Parser::parse(s("code == 'EUR'"))));
    QVERIFY(euro);
    invoice->currencyChanged(euro);
    QVERIFY(!invoice->isExchangeRateHidden());
    QVERIFY(invoice->setExchangeRate(1.25));

    Record* first = invoice->addItem(m_bolt);
    invoice->setQuantity(first, 4); // 40
    invoice->setRowTax(first, invoice->context().record(gst));
    Record* second = invoice->addItem(m_nut);
    invoice->setQuantity(second, 200); // 100
    invoice->setRowTax(second, invoice->context().record(qst));
    Record* third = invoice->addRow();
    invoice->setRowTax(third, invoice->context().record(gst));
    invoice->setQuantity(third, 2);
    invoice->setUnitPrice(third, 30); // 60
    QCOMPARE(first->value(s("tax_value")).toString(), s("2+2.8"));
    QCOMPARE(second->value(s("tax_value")).toString(), s("5+10.47"));
    QCOMPARE(second->value(s("tax2_value")).toDouble(), 9.975 / 100.0 * 105.0);
    QVERIFY(invoice->saveAs());

    const RecordRef ref = invoice->document()->ref();
    QCOMPARE(m_company->stored(ref, "currency.code").toString(), s("EUR"));
    QCOMPARE(m_company->stored(ref, "sum_net").toDouble(), 200.0);
    QCOMPARE(m_company->stored(ref, "sum_tax1").toDouble(), 10.0);
    const double qst2 = 9.975 / 100.0 * 105.0;
    QCOMPARE(m_company->stored(ref, "sum_tax2").toDouble(), 2.8 + qst2 + 4.2);
    QCOMPARE(m_company->stored(ref, "sum_total").toDouble(), 200.0 + 10.0 + 2.8 + qst2 + 4.2);

    QList<Record*> lines = m_company->record(ref)->relatedList(s("summaries"));
    std::sort(lines.begin(), lines.end(), [](Record* a, Record* b) {
        return a->value(s("order")).toInt() < b->value(s("order")).toInt();
    });
    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines[0]->value(s("tax_name")).toString(), s("GST/PST"));
    QCOMPARE(lines[0]->value(s("net")).toDouble(), 100.0);
    QCOMPARE(lines[0]->value(s("tax2_value")).toDouble(), 7.0);
    QCOMPARE(lines[0]->value(s("default_currency_tax1_value")).toDouble(), 6.25);
    QCOMPARE(lines[0]->value(s("default_currency_tax2_value")).toDouble(), 8.75);
    QCOMPARE(lines[1]->value(s("tax_name")).toString(), s("GST/QST"));
    QCOMPARE(lines[1]->value(s("total")).toDouble(), 105.0 + qst2);
    QCOMPARE(lines[1]->value(s("default_currency_tax2_value")).toDouble(), qst2 * 1.25);
    QCOMPARE(m_output.calls, QStringList{s("save as INVOICE/2024-0001")});
}

QTEST_GUILESS_MAIN(tst_Roads)
#include "tst_roads.moc"
