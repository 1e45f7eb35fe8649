#include "../documents/documenttestsupport.h"
#include "../documents/forcedfailure.h"
#include "documents/documentcanceller.h"
#include "documents/documentpayments.h"
#include "documents/invoicefinalizer.h"
#include "documents/paymentstatus.h"
#include "editors/documentcontroller.h"
#include "editors/documentoutput.h"

#include <QSignalSpy>
#include <cmath>

using namespace corvanta;
using namespace corvanta::documents;
using namespace corvanta::editors;
using namespace corvanta::documents::testing;
using Sender = DocumentController::Sender;

namespace {

// Stands where the renderer will be: notes what was handed over, with the document's number as
// it was at that moment.
class RecordingOutput : public DocumentOutput
{
public:
    QStringList calls;

    void print(Record* d, int copies) override { calls << s("print %1 x%2").arg(number(d)).arg(copies); }
    void saveAs(Record* d) override { calls << s("save as ") + number(d); }
    void sendEmail(Record* d) override { calls << s("e-mail ") + number(d); }
    void preview(Record* d) override { calls << s("preview ") + number(d); }

private:
    static QString number(const Record* d) { return d->value(s("number_formatted")).toString(); }
};

} // namespace

// The document editor from a new document to a saved, finalised and handed-over one: the save
// check, drafts, rows, client and terms, currency, notes, the close question, a save that fails
// without losing anything, and the whole road of an invoice from quotation to cancellation.
class tst_DocumentEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void saveWithoutClientChangesNothing();
    void previewThenSaveMakesADraft();
    void handingOverFinalisesFirst_data();
    void handingOverFinalisesFirst();
    void rows();
    void itemNameEntered_data();
    void itemNameEntered();
    void clientChoiceTakesTerms_data();
    void clientChoiceTakesTerms();
    void dueDaysAndCurrency();
    void notes();
    void typeChangeRenumbersOnlyNewDocuments();
    void closeQuestion_data();
    void closeQuestion();
    void failedSaveLosesNothing_data();
    void failedSaveLosesNothing();
    void roadOfAnInvoice();

private:
    DocumentController& newEditor()
    {
        m_editor = std::make_unique<DocumentController>(m_company->store(), m_company->prompter(),
                                                        m_company->clock());
        m_editor->setOutput(&m_output);
        return *m_editor;
    }
    // A new invoice with a row of 3 bolts (36 with tax).
    DocumentController& newInvoice(bool withClient = true)
    {
        DocumentController& editor = newEditor();
        editor.newDocument(0);
        if (withClient)
            editor.addClient(m_client);
        editor.setQuantity(editor.addItem(m_bolt), 3);
        return editor;
    }

    std::unique_ptr<TestCompany> m_company;
    std::unique_ptr<DocumentController> m_editor;
    RecordingOutput m_output;
    RecordRef m_client;
    RecordRef m_bolt;
};

void tst_DocumentEditor::init()
{
    m_company = std::make_unique<TestCompany>(at(2024, 3, 15, 10, 30)); // a Friday
    m_client = m_company->addClient(s("Acme Ltd"));
    m_bolt = m_company->addItem(s("Bolt"), 10, m_company->addTax(s("VAT"), 20));
    m_company->addDelivery(m_bolt, 100);
    m_output.calls.clear();
}

void tst_DocumentEditor::cleanup()
{
    m_editor.reset();
    m_company.reset();
}

void tst_DocumentEditor::saveWithoutClientChangesNothing()
{
    DocumentController& editor = newInvoice(false);
    QSignalSpy tab(&editor, &DocumentController::documentTabRequested);
    QVERIFY(!editor.save(Sender::Control));
    QVERIFY(!editor.print());
    QCOMPARE(m_company->prompter().titles(), QStringList(2, s("No Client Selected")));
    QCOMPARE(m_company->prompter().questions().first().text, s("You cannot save document without client."));
    QCOMPARE(m_company->prompter().questions().first().buttons, QStringList{s("OK")});
    QCOMPARE(tab.count(), 2);
    QCOMPARE(m_company->count("Documents"), 0);
    QVERIFY(m_company->stored(m_bolt, "stock_current").isNull());
    QVERIFY(editor.document()->value(s("number_formatted")).isNull());
    QVERIFY(m_output.calls.isEmpty());
}

void tst_DocumentEditor::previewThenSaveMakesADraft()
{
    DocumentController& editor = newInvoice();
    editor.preview(); // refreshes the copies and sums without saving
    QCOMPARE(m_output.calls, QStringList{s("preview ")});
    QCOMPARE(TestCompany::text(editor.document(), s("sum_total client_full_name")),
             s("sum_total=36 client_full_name=Acme Ltd"));
    QCOMPARE(m_company->count("Documents"), 0);
    QVERIFY(editor.isEdited());

    QSignalSpy closing(&editor, &DocumentController::closeRequested);
    QVERIFY(editor.save(Sender::Control));
    m_company->setNow(at(2024, 3, 16, 9, 0));
    QVERIFY(editor.save(Sender::Control));
    const QString draftText = m_company->stored(editor.document()->ref(), "number_formatted").toString();
    QCOMPARE(draftText, DraftNumber::text(at(2024, 3, 15, 10, 30)));
    QVERIFY(draftText.startsWith(s("DRAFT - ")) && draftText.endsWith(s(" 10:30")));
    QCOMPARE(m_company->storedText(editor.document()->ref(), s("draft number created sum_total tags.name")),
             s("draft=true number= created=2024-03-15T10:30:00 sum_total=36 tags.name=Invoice"));
    QCOMPARE(m_company->stock(m_bolt), 100.0); // a draft moves no stock
    QCOMPARE(closing.count(), 2);
    QVERIFY(!editor.isEdited());
    QVERIFY(m_company->prompter().questions().isEmpty());
}

void tst_DocumentEditor::handingOverFinalisesFirst_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<bool>("draftBefore");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("handedOver"); // empty when nothing is
    QTest::newRow("print a new invoice")
        << s("print") << false << s("Finalize") << s("print INVOICE/2024-0001 x2");
    QTest::newRow("print a draft") << s("print") << true << s("Finalize") << s("print INVOICE/2024-0001 x2");
    QTest::newRow("export a draft") << s("save as") << true << s("Finalize")
                                    << s("save as INVOICE/2024-0001");
    QTest::newRow("e-mail a new invoice")
        << s("e-mail") << false << s("Finalize") << s("e-mail INVOICE/2024-0001");
    QTest::newRow("e-mail declined") << s("e-mail") << true << s("Cancel") << QString();
}

void tst_DocumentEditor::handingOverFinalisesFirst()
{
    QFETCH(QString, command);
    QFETCH(bool, draftBefore);
    QFETCH(QString, answer);
    QFETCH(QString, handedOver);
    DocumentController& editor = newInvoice();
    if (draftBefore)
        QVERIFY(editor.save(Sender::Control));
    const QString numberBefore = editor.document()->value(s("number_formatted")).toString();
    QSignalSpy sound(&editor, &DocumentController::soundRequested);
    QSignalSpy closing(&editor, &DocumentController::closeRequested);
    m_company->prompter().addAnswer(answer);

    const bool done = command == QLatin1String("print")     ? editor.print()
                      : command == QLatin1String("save as") ? editor.saveAs()
                                                            : editor.sendEmail();
    const bool finalised = !handedOver.isEmpty();
    QCOMPARE(done, finalised);
    QCOMPARE(m_output.calls, finalised ? QStringList{handedOver} : QStringList());
    // The first invoice of the year asks for its start number; unanswered, it starts at 1.
    QStringList titles{s("Finalize Invoice")};
    if (finalised)
        titles << s("Start Number");
    QCOMPARE(m_company->prompter().titles(), titles);
    QCOMPARE(sound.count(), int(finalised));
    QCOMPARE(closing.count(), int(finalised));
    QCOMPARE(m_company->stored(editor.document()->ref(), "draft").toBool(), !finalised);
    QCOMPARE(editor.document()->value(s("number_formatted")).toString(),
             finalised ? s("INVOICE/2024-0001") : numberBefore);
    QCOMPARE(m_company->stock(m_bolt), finalised ? 97.0 : 100.0);
    // Once final, nothing is asked any more.
    m_company->prompter().clear();
    if (finalised) {
        QVERIFY(editor.print());
        QVERIFY(m_company->prompter().questions().isEmpty());
    }
}

void tst_DocumentEditor::rows()
{
    DocumentController& editor = newInvoice();
    Record* first = editor.rows().first();
    Record* second = editor.addRow(); // with the company's default tax and unit
    QCOMPARE(TestCompany::text(second, s("order quantity name tax_name unit_name total")),
             s("order=2 quantity=1 name= tax_name=10% unit_name=Each total=0"));
    QVERIFY(editor.setUnitPrice(second, 20));
    QVERIFY(!editor.duplicateRow());

    editor.setSelectedRows({first});
    Record* copy = editor.duplicateRow();
    QVERIFY(copy);
    QCOMPARE(copy->related(s("tax")), first->related(s("tax")));
    editor.updateTaxSummary();
    QCOMPARE(editor.rows(), (QList<Record*>{first, copy, second}));
    QCOMPARE(TestCompany::text(copy, s("order total document.sum_total")),
             s("order=2 total=36 document.sum_total=94"));

    editor.setSelectedRows({first, copy});
    editor.deleteRow();
    editor.updateTaxSummary();
    QCOMPARE(editor.rows(), QList<Record*>{second});
    QCOMPARE(TestCompany::text(second, s("order document.sum_total")), s("order=1 document.sum_total=22"));

    // Refused numbers leave the row and the document as they were.
    QVERIFY(!editor.setQuantity(second, std::nan("")));
    QVERIFY(!editor.setUnitPrice(second, 1e13));
    QVERIFY(!editor.setPrice(second, 2, -1e13));
    QVERIFY(!editor.setExchangeRate(0));
    QCOMPARE(m_company->prompter().titles(), QStringList(4, s("Invalid number")));
    QCOMPARE(TestCompany::text(second, s("quantity unit_price custom_price02 total document.exchange_rate")),
             s("quantity=1 unit_price=20 custom_price02= total=22 document.exchange_rate=1"));
}

void tst_DocumentEditor::itemNameEntered_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("linked");
    QTest::addColumn<QString>("prices");
    QTest::newRow("one match, at the active level") << s("Bolt") << true << s("unit_price=40 tax_name=VAT");
    QTest::newRow("two matches keep the text") << s("Nut") << false << s("unit_price=7 tax_name=10%");
    QTest::newRow("no match keeps the text") << s("Washer") << false << s("unit_price=7 tax_name=10%");
}

void tst_DocumentEditor::itemNameEntered()
{
    QFETCH(QString, typed);
    m_company->addItem(s("Nut"), 1);
    m_company->addItem(s("Nut"), 2);
    DocumentController& editor = newEditor();
    editor.newDocument(0);
    editor.defaultPriceChanged(4);
    Record* row = editor.addRow();
    QVERIFY(editor.setUnitPrice(row, 7));
    editor.itemNameEntered(row, typed);
    QTEST(!row->value(s("item")).isNull(), "linked");
    QCOMPARE(row->value(s("name")).toString(), typed);
    QTEST(TestCompany::text(row, s("unit_price tax_name")), "prices");
    QVERIFY(editor.isEdited());
}

void tst_DocumentEditor::clientChoiceTakesTerms_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("chosen");
    QTest::addColumn<QString>("terms");
    // The company's term is 8 business days: from Friday 15 March to Wednesday 27 March.
    QTest::newRow("client without terms takes the company's")
        << s("Acme Ltd") << true
        << s("payment_type.name=Bank Transfer bank.line1=My Bank date_due=2024-03-27T00:00:00");
    QTest::newRow("client with its own terms")
        << s("Own Terms") << true
        << s("payment_type.name=Cash bank.line1=Other Bank date_due=2024-03-29T00:00:00");
    QTest::newRow("two clients of one name")
        << s("Twin") << false << s("payment_type.name= bank.line1= date_due=");
    QTest::newRow("no such client") << s("Nobody") << false << s("payment_type.name= bank.line1= date_due=");
}

void tst_DocumentEditor::clientChoiceTakesTerms()
{
    QFETCH(QString, typed);
    QFETCH(bool, chosen);
    const auto tenDays =
        m_company->add("DueDays", {{s("name"), s("10 days")}, {s("days"), 10}, {s("type"), 1}});
    m_company->addClient(
        s("Own Terms"),
        {{s("default_payment_type"), QVariant::fromValue(m_company->named("PaymentTypes", s("Cash"))->ref())},
         {s("default_bank"), QVariant::fromValue(m_company->add("Banks", {{s("line1"), s("Other Bank")}}))},
         {s("default_due_day"), QVariant::fromValue(tenDays)}});
    m_company->addClient(s("Twin"));
    m_company->addClient(s("Twin"));

    Record* document = newEditor().newDocument(0);
    document->setRelated(s("payment_type"), nullptr);
    document->setRelated(s("bank"), nullptr);
    document->setValue(s("date_due"), QVariant());
    QCOMPARE(m_editor->clientEntered(typed), chosen);
    QCOMPARE(document->value(s("client_full_name")).toString(), chosen ? typed : QString());
    QTEST(TestCompany::text(document, s("payment_type.name bank.line1 date_due")), "terms");
}

void tst_DocumentEditor::dueDaysAndCurrency()
{
    DocumentController& editor = newInvoice();
    const auto month =
        m_company->add("DueDays", {{s("name"), s("30 days")}, {s("days"), 30}, {s("type"), 0}});
    QCOMPARE(editor.dueDays().size(), 2);
    editor.dueDaysChanged(editor.context().record(month));
    QCOMPARE(TestCompany::text(editor.document(), s("date_due")), s("date_due=2024-04-14T12:00:00"));

    QVERIFY(editor.isExchangeRateHidden());
    Record* euro = editor.context().fetchFirst(
        store::FetchRequest(s("Currencies"), predicate::literal("code == 'EUR'")));
    QVERIFY(editor.setExchangeRate(1.08));
    editor.currencyChanged(euro);
    QCOMPARE(editor.document()->value(s("exchange_rate")).toDouble(), 1.0);
    QVERIFY(!editor.isExchangeRateHidden());
    QVERIFY(editor.currencies().contains(euro));
}

void tst_DocumentEditor::notes()
{
    DocumentController& editor = newInvoice();
    QVERIFY(!editor.saveNote());
    Record* row = editor.rows().first();
    editor.setSelectedRows({row});
    for (const QString& note : {s("first line\nsecond line"), s("Apples")}) {
        row->setValue(s("note"), note);
        QVERIFY(editor.saveNote());
    }
    const QList<RowNoteLibrary::Entry> entries = editor.noteLibrary().entries();
    QCOMPARE(entries.size(), 2);
    QCOMPARE(entries.at(1).title, s("first line second line"));
    editor.addNote(entries.at(1).note);
    QCOMPARE(row->value(s("note")).toString(), s("first line\nsecond line"));
    QVERIFY(editor.removeNote(entries.at(0)));
    // The library is stored at once, whatever becomes of the document.
    QCOMPARE(m_company->count("DocumentRowNotes"), 1);
    QCOMPARE(m_company->count("Documents"), 0);

    editor.document()->setValue(s("note_header"), s("Dear customer,"));
    editor.document()->setValue(s("note_footer"), s("Thank you."));
    QVERIFY(editor.saveHeaderNoteAsDefault());
    QVERIFY(editor.saveFooterNoteAsDefault());
    QCOMPARE(TestCompany::text(newEditor().newDocument(2), s("note_header note_footer")),
             s("note_header=Dear customer, note_footer=Thank you."));
}

void tst_DocumentEditor::typeChangeRenumbersOnlyNewDocuments()
{
    m_company->add("Documents", {{s("type"), 3},
                                 {s("date_creation"), at(2024, 2, 1)},
                                 {s("number"), 11},
                                 {s("draft"), false},
                                 {s("created"), at(2024, 2, 1)}});
    DocumentController& editor = newInvoice();
    editor.typeChanged(3);
    QCOMPARE(editor.document()->value(s("number_formatted")).toString(), s("QUOTATION/2024-0012"));
    QVERIFY(editor.save(Sender::Control));
    QCOMPARE(m_company->storedText(editor.document()->ref(), s("number draft")), s("number=12 draft=false"));
    // A saved document keeps its number but moves to its new type's folder.
    editor.typeChanged(5);
    QVERIFY(editor.save(Sender::Control));
    QCOMPARE(m_company->storedText(editor.document()->ref(), s("number_formatted tags.name")),
             s("number_formatted=QUOTATION/2024-0012 tags.name=Credit Note"));
    QVERIFY(m_company->prompter().questions().isEmpty());
}

void tst_DocumentEditor::closeQuestion_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<int>("stored");
    QTest::newRow("save") << s("Save") << true << 1;
    QTest::newRow("don't save") << s("Don't Save") << true << 0;
    QTest::newRow("cancel") << s("Cancel") << false << 0;
}

void tst_DocumentEditor::closeQuestion()
{
    QFETCH(QString, answer);
    QFETCH(bool, closes);
    DocumentController& editor = newInvoice();
    m_company->prompter().addAnswer(answer);
    QCOMPARE(editor.windowShouldClose() == DocumentController::CloseAnswer::Close, closes);
    QTEST(int(m_company->fetch(s("Documents"), s("draft == YES")).size()), "stored");
    const auto& question = m_company->prompter().questions().first();
    QCOMPARE(question.title, s("Save this document?"));
    QCOMPARE(question.text,
             s("This document has not been saved and contains unsaved changes. Would you like to save now?"));
    QCOMPARE(question.buttons, (QStringList{s("Save"), s("Don't Save"), s("Cancel")}));
    // Saved or forgotten, nothing is left to ask about.
    m_company->prompter().clear();
    m_company->prompter().addAnswer(s("Cancel"));
    QCOMPARE(editor.windowShouldClose() == DocumentController::CloseAnswer::Close, closes);
    QCOMPARE(m_company->prompter().questions().size(), closes ? 0 : 1);
}

void tst_DocumentEditor::failedSaveLosesNothing_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("operation");
    QTest::newRow("document cannot be changed") << s("Documents") << s("UPDATE");
    QTest::newRow("rows cannot be added") << s("DocumentRows") << s("INSERT");
    QTest::newRow("stock cannot be changed") << s("Items") << s("UPDATE");
}

void tst_DocumentEditor::failedSaveLosesNothing()
{
    QFETCH(QString, table);
    QFETCH(QString, operation);
    DocumentController& editor = newInvoice();
    QVERIFY(editor.save(Sender::Control)); // a draft of 3 bolts
    const RecordRef ref = editor.document()->ref();
    const QString draft = m_company->storedText(ref, s("number_formatted draft"));
    editor.setQuantity(editor.addItem(m_bolt), 5);
    {
        ForcedFailure failure(m_company->path(), table, operation);
        QVERIFY(!editor.print());
    }
    QVERIFY(m_output.calls.isEmpty());
    QCOMPARE(m_company->prompter().titles().last(), s("The changes could not be saved."));
    QVERIFY(m_company->prompter().questions().last().text.contains(s("forced failure")));
    // The store holds the draft as it was; the editor still holds the user's work, not a number
    // it never got.
    QCOMPARE(m_company->storedText(ref, s("number_formatted draft rows.@count sum_total")),
             draft + s(" rows.@count=1 sum_total=36"));
    QCOMPARE(m_company->stock(m_bolt), 100.0);
    QCOMPARE(m_company->count("DocumentSummaries"), 1);
    QCOMPARE(TestCompany::text(editor.document(), s("number_formatted draft")), draft);
    QCOMPARE(editor.rows().size(), 2);
    QVERIFY(editor.isEdited());

    // Once the store accepts writes again, the same command goes through.
    m_company->prompter().clear();
    QVERIFY(editor.print());
    QCOMPARE(m_output.calls, QStringList{s("print INVOICE/2024-0001 x2")});
    QCOMPARE(m_company->stored(ref, "sum_total").toDouble(), 96.0);
    QCOMPARE(m_company->stock(m_bolt), 92.0);
}

void tst_DocumentEditor::roadOfAnInvoice()
{
    const RecordRef nut = m_company->addItem(s("Nut"), 0.5, m_company->addTax(s("Reduced"), 27));
    m_company->addDelivery(nut, 1000);

    // A quotation of 20 bolts and 200 nuts, typed in.
    DocumentController& quote = newEditor();
    quote.newDocument(3);
    QVERIFY(quote.clientEntered(s("Acme Ltd")));
    quote.setQuantity(quote.addItem(m_bolt), 20);
    Record* nuts = quote.addRow();
    quote.itemNameEntered(nuts, s("Nut"));
    quote.setQuantity(nuts, 200);
    QVERIFY(quote.save(Sender::Control));
    const QList<Record*> quoted = quote.rows();
    QCOMPARE(m_company->storedText(quote.document()->ref(), s("number_formatted sum_total draft")),
             s("number_formatted=QUOTATION/2024-0001 sum_total=367 draft=false"));
    QCOMPARE(m_company->stock(m_bolt), 100.0); // only invoices move stock

    // Accepted: the invoice is written from the browser's "add to document" and saved as a draft.
    m_company->setNow(at(2024, 5, 8, 15, 20));
    auto invoice = m_company->make<DocumentController>();
    invoice.newDocument(0);
    QVERIFY(invoice.addClient(m_client));
    for (const Record* row : quoted)
        invoice.setQuantity(invoice.addItem(row->related(s("item"))->ref()),
                            row->value(s("quantity")).toDouble());
    QVERIFY(invoice.save(Sender::Control));
    const RecordRef ref = invoice.document()->ref();
    QCOMPARE(m_company->fetch(s("Documents"), s("draft == YES")).size(), 1);

    // Finalised from the list: the first invoice of the year starts at 31.
    m_company->setNow(at(2024, 5, 9, 10, 0));
    m_company->prompter().clear();
    m_company->prompter().addAnswer(s("Finalize"));
    m_company->prompter().addAnswer(s("31"));
    QVERIFY(m_company->make<InvoiceFinalizer>().finalizeInvoiceIfNeeded(ref));
    QCOMPARE(m_company->storedText(ref, s("number_formatted created sum_total")),
             s("number_formatted=INVOICE/2024-0031 created=2024-05-09T10:00:00 sum_total=367"));
    QCOMPARE((QList<double>{m_company->stock(m_bolt), m_company->stock(nut)}), (QList<double>{80, 800}));
    QCOMPARE(PaymentStatus::countUnpaid(m_company->main()), 1);

    // Paid in parts; the rest is settled in one step.
    auto payments = m_company->make<DocumentPayments>();
    QVERIFY(payments.addPayment(ref, 200));
    QVERIFY(payments.addPayment(ref, 100.5));
    QCOMPARE(payments.remaining(ref), 66.5);
    QVERIFY(payments.closeDocumentPayments(ref, true));
    QCOMPARE(PaymentStatus::countPaid(m_company->main()), 1);
    QCOMPARE(PaymentStatus::countUnpaid(m_company->main()), 0);

    // Printing the paid invoice asks nothing more.
    m_company->prompter().clear();
    newEditor().openDocument(ref);
    QVERIFY(m_editor->print());
    QCOMPARE(m_output.calls, QStringList{s("print INVOICE/2024-0031 x2")});
    QVERIFY(m_company->prompter().questions().isEmpty());

    // Cancelled at last: the stock comes back, and neither document is unpaid.
    const std::optional<RecordRef> twin = m_company->make<DocumentCanceller>().cancel(ref);
    QVERIFY(twin);
    QCOMPARE(m_company->storedText(*twin, s("number_formatted sum_total")),
             s("number_formatted=INVOICE/2024-0032 sum_total=-367"));
    QCOMPARE((QList<double>{m_company->stock(m_bolt), m_company->stock(nut)}), (QList<double>{100, 1000}));
    QCOMPARE(PaymentStatus::countUnpaid(m_company->main()), 0);
}

QTEST_GUILESS_MAIN(tst_DocumentEditor)
#include "tst_documenteditor.moc"
