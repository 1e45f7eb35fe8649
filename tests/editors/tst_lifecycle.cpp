#include "documents/draftnumber.h"
#include "documenttestsupport.h"
#include "editors/documentcontroller.h"
#include "editors/rownotelibrary.h"
#include "forcedfailure.h"
#include "recordingoutput.h"
#include "store/editingcontext.h"

#include <QSignalSpy>

using namespace corvanta;
using namespace corvanta::documents;
using namespace corvanta::editors;
using namespace corvanta::documents::testing;
using store::Record;
using Sender = DocumentController::Sender;

// The document editor from a new document to a saved, finalised and handed-over one: the save
// check and sequence, drafts, finalisation, client and terms, currency, notes, the close question,
// and a save that fails without losing anything.
class tst_Lifecycle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void saveWithoutClientChangesNothing();
    void editorSaveMakesDraftsOfNewInvoices();
    void handingOverFinalisesFirst_data();
    void handingOverFinalisesFirst();
    void declinedFinalisationStopsTheCommand();
    void previewRefreshesWithoutSaving();
    void clientChoiceTakesTerms_data();
    void clientChoiceTakesTerms();
    void dueDaysAndCurrency();
    void rowNotes();
    void companyDefaultNotes();
    void closeQuestion_data();
    void closeQuestion();
    void enteredNumbersAreChecked_data();
    void enteredNumbersAreChecked();
    void failedSaveLosesNothing_data();
    void failedSaveLosesNothing();

private:
    DocumentController& newInvoice(bool withClient = true);

    std::unique_ptr<TestCompany> m_company;
    std::unique_ptr<DocumentController> m_editor;
    RecordingOutput m_output;
    predicate::RecordRef m_client;
    predicate::RecordRef m_bolt;
};

void tst_Lifecycle::init()
{
    m_company = std::make_unique<TestCompany>(at(2024, 3, 15, 10, 30)); // a Friday
    m_client = m_company->addClient(s("Acme Ltd"));
    m_bolt = m_company->addItem(s("Bolt"), 10, m_company->addTax(s("VAT"), 20));
    m_company->addDelivery(m_bolt, 100);
    m_output.calls.clear();
}

void tst_Lifecycle::cleanup()
{
    m_editor.reset();
    m_company.reset();
}

DocumentController& tst_Lifecycle::newInvoice(bool withClient)
{
    m_editor =
        std::make_unique<DocumentController>(m_company->store(), m_company->prompter(), m_company->clock());
    m_editor->setOutput(&m_output);
    m_editor->newDocument(0);
    if (withClient)
        m_editor->addClient(m_client);
    Record* row = m_editor->addItem(m_bolt);
    m_editor->setQuantity(row, 3);
    return *m_editor;
}

void tst_Lifecycle::saveWithoutClientChangesNothing()
{
    DocumentController& editor = newInvoice(false);
    QSignalSpy tab(&editor, &DocumentController::documentTabRequested);
    QVERIFY(!editor.save(Sender::Control));
    QVERIFY(!editor.print());
    QCOMPARE(m_company->prompter().titles(), (QStringList{s("No Client Selected"), s("No Client Selected")}));
    QCOMPARE(m_company->prompter().questions().first().text, s("You cannot save document without client."));
    QCOMPARE(m_company->prompter().questions().first().buttons, QStringList{s("OK")});
    QCOMPARE(tab.count(), 2);
    QCOMPARE(m_company->main().count(store::FetchRequest(s("Documents"))), 0);
    QCOMPARE(m_company->stored(m_bolt, "stock_current"), QVariant());
    QVERIFY(editor.document()->value(s("number_formatted")).isNull());
    QVERIFY(m_output.calls.isEmpty());
}

void tst_Lifecycle::editorSaveMakesDraftsOfNewInvoices()
{
    DocumentController& editor = newInvoice();
    QSignalSpy closing(&editor, &DocumentController::closeRequested);
    QVERIFY(editor.save(Sender::Control));
    m_company->setNow(at(2024, 3, 16, 9, 0));
    QVERIFY(editor.save(Sender::Control));

    const auto ref = editor.document()->ref();
    const QString draftText = m_company->stored(ref, "number_formatted").toString();
    QCOMPARE(draftText, DraftNumber::text(at(2024, 3, 15, 10, 30)));
    QVERIFY(draftText.startsWith(s("DRAFT - ")) && draftText.endsWith(s(" 10:30")));
    QCOMPARE(m_company->stored(ref, {s("draft"), s("number"), s("created"), s("sum_total"), s("tags.name")}),
             (QStringList{s("draft=true"), s("number="), s("created=2024-03-15T10:30:00"), s("sum_total=36"),
                          s("tags.name=Invoice")}));
    // A draft moves no stock.
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 100.0);
    QCOMPARE(closing.count(), 2);
    QVERIFY(!editor.isEdited());
    QVERIFY(m_company->prompter().questions().isEmpty());
}

void tst_Lifecycle::handingOverFinalisesFirst_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<bool>("savedAsDraftBefore");
    QTest::addColumn<QString>("handedOver");
    QTest::newRow("print a new invoice") << s("print") << false << s("print INVOICE/2024-0001 x2");
    QTest::newRow("print a draft") << s("print") << true << s("print INVOICE/2024-0001 x2");
    QTest::newRow("export a draft") << s("save as") << true << s("save as INVOICE/2024-0001");
    QTest::newRow("e-mail a new invoice") << s("e-mail") << false << s("e-mail INVOICE/2024-0001");
}

void tst_Lifecycle::handingOverFinalisesFirst()
{
    QFETCH(QString, command);
    QFETCH(bool, savedAsDraftBefore);
    DocumentController& editor = newInvoice();
    if (savedAsDraftBefore)
        QVERIFY(editor.save(Sender::Control));
    QSignalSpy sound(&editor, &DocumentController::soundRequested);
    QSignalSpy closing(&editor, &DocumentController::closeRequested);
    closing.clear();

    const bool done = command == QLatin1String("print")     ? editor.print()
                      : command == QLatin1String("save as") ? editor.saveAs()
                                                            : editor.sendEmail();
    QVERIFY(done);
    QTEST(m_output.calls.value(0), "handedOver");
    const auto& question = m_company->prompter().questions().first();
    QCOMPARE(question.title, s("Finalize Invoice"));
    QCOMPARE(question.text,
             s("Are you sure you want to finalize this invoice? This action cannot be undone."));
    QCOMPARE(question.buttons, (QStringList{s("Finalize"), s("Cancel")}));
    // The first invoice of the year asks for its start number; unanswered, it starts at 1.
    QCOMPARE(m_company->prompter().titles(), (QStringList{s("Finalize Invoice"), s("Start Number")}));
    QCOMPARE(sound.count(), 1);
    QCOMPARE(sound.first().first().toString(), s("tindra"));
    QCOMPARE(closing.count(), 1);

    const auto ref = editor.document()->ref();
    QCOMPARE(m_company->stored(ref, "draft").toBool(), false);
    QCOMPARE(m_company->stored(ref, "number").toLongLong(), 1);
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 97.0);
    // Once final, nothing is asked any more.
    m_company->prompter().clear();
    QVERIFY(editor.print());
    QVERIFY(m_company->prompter().questions().isEmpty());
}

void tst_Lifecycle::declinedFinalisationStopsTheCommand()
{
    DocumentController& editor = newInvoice();
    QVERIFY(editor.save(Sender::Control));
    const QString draftText = editor.document()->value(s("number_formatted")).toString();
    m_company->prompter().addAnswer(s("Cancel"));
    QVERIFY(!editor.sendEmail());
    QVERIFY(m_output.calls.isEmpty());
    QCOMPARE(m_company->stored(editor.document()->ref(), "number_formatted").toString(), draftText);
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 100.0);
}

void tst_Lifecycle::previewRefreshesWithoutSaving()
{
    DocumentController& editor = newInvoice();
    editor.preview();
    QCOMPARE(m_output.calls, QStringList{s("preview ")});
    QCOMPARE(editor.document()->value(s("sum_total")).toDouble(), 36.0);
    QCOMPARE(editor.document()->value(s("client_full_name")).toString(), s("Acme Ltd"));
    QVERIFY(editor.isEdited());
    QCOMPARE(m_company->main().count(store::FetchRequest(s("Documents"))), 0);
}

void tst_Lifecycle::clientChoiceTakesTerms_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("chosen");
    QTest::addColumn<QString>("paymentType");
    QTest::addColumn<QString>("bank");
    QTest::addColumn<QDateTime>("due");

    // The company's term is 8 business days: from Friday 15 March to Wednesday 27 March.
    QTest::newRow("client without terms takes the company's")
        << s("Acme Ltd") << true << s("Bank Transfer") << s("My Bank") << at(2024, 3, 27, 0, 0);
    QTest::newRow("client with its own terms")
        << s("Own Terms") << true << s("Cash") << s("Other Bank") << at(2024, 3, 29, 0, 0);
    QTest::newRow("two clients of one name") << s("Twin") << false << QString() << QString() << QDateTime();
    QTest::newRow("no such client") << s("Nobody") << false << QString() << QString() << QDateTime();
}

void tst_Lifecycle::clientChoiceTakesTerms()
{
    QFETCH(QString, typed);
    QFETCH(bool, chosen);
    const auto tenBusinessDays =
        m_company->add("DueDays", {{s("name"), s("10 days")}, {s("days"), 10}, {s("type"), 1}});
    const auto otherBank = m_company->add("Banks", {{s("line1"), s("Other Bank")}});
    m_company->addClient(
        s("Own Terms"),
        {{s("default_payment_type"), QVariant::fromValue(m_company->named("PaymentTypes", s("Cash"))->ref())},
         {s("default_bank"), QVariant::fromValue(otherBank)},
         {s("default_due_day"), QVariant::fromValue(tenBusinessDays)}});
    m_company->addClient(s("Twin"));
    m_company->addClient(s("Twin"));

    m_editor =
        std::make_unique<DocumentController>(m_company->store(), m_company->prompter(), m_company->clock());
    Record* document = m_editor->newDocument(0);
    document->setRelated(s("payment_type"), nullptr);
    document->setRelated(s("bank"), nullptr);
    document->setValue(s("date_due"), QVariant());
    QCOMPARE(m_editor->clientEntered(typed), chosen);
    QCOMPARE(document->value(s("client_full_name")).toString(), chosen ? typed : QString());
    QTEST(document->valueForKeyPath(s("payment_type.name")).toString(), "paymentType");
    QTEST(document->valueForKeyPath(s("bank.line1")).toString(), "bank");
    QTEST(document->value(s("date_due")).toDateTime().toLocalTime(), "due");
}

void tst_Lifecycle::dueDaysAndCurrency()
{
    DocumentController& editor = newInvoice();
    const auto month =
        m_company->add("DueDays", {{s("name"), s("30 days")}, {s("days"), 30}, {s("type"), 0}});
    QCOMPARE(editor.dueDays().size(), 2);
    editor.dueDaysChanged(editor.context().record(month));
    QCOMPARE(editor.document()->value(s("date_due")).toDateTime().toLocalTime().date(), QDate(2024, 4, 14));

    QVERIFY(editor.isExchangeRateHidden());
    Record* euro = editor.context().fetchFirst(
        store::FetchRequest(s("Currencies"), *predicate::Parser::parse(s("code == 'EUR'"))));
    QVERIFY(euro);
    QVERIFY(editor.setExchangeRate(1.08));
    editor.currencyChanged(euro);
    QCOMPARE(editor.document()->value(s("exchange_rate")).toDouble(), 1.0);
    QVERIFY(!editor.isExchangeRateHidden());
    QVERIFY(editor.currencies().contains(euro));
}

void tst_Lifecycle::rowNotes()
{
    DocumentController& editor = newInvoice();
    QVERIFY(!editor.saveNote());
    Record* row = editor.rows().first();
    editor.setSelectedRows({row});
    const QString fifty = QString(50, QLatin1Char('x'));
    for (const QString& note : {fifty, fifty + s("y"), s("first line\nsecond line"), s("Apples")}) {
        row->setValue(s("note"), note);
        QVERIFY(editor.saveNote());
    }
    const QList<RowNoteLibrary::Entry> entries = editor.noteLibrary().entries();
    QStringList titles;
    for (const auto& entry : entries)
        titles << entry.title;
    QCOMPARE(titles, (QStringList{s("Apples"), s("first line second line"), fifty, fifty + s("...")}));

    editor.addNote(entries.at(1).note);
    QCOMPARE(row->value(s("note")).toString(), s("first line\nsecond line"));
    QVERIFY(editor.removeNote(entries.at(0)));
    QCOMPARE(editor.noteLibrary().entries().size(), 3);
    // The library is stored at once, whatever becomes of the document.
    QCOMPARE(m_company->main().count(store::FetchRequest(s("DocumentRowNotes"))), 3);
    QCOMPARE(m_company->main().count(store::FetchRequest(s("Documents"))), 0);
}

void tst_Lifecycle::companyDefaultNotes()
{
    DocumentController& editor = newInvoice();
    editor.document()->setValue(s("note_header"), s("Dear customer,"));
    editor.document()->setValue(s("note_footer"), s("Thank you."));
    QVERIFY(editor.saveHeaderNoteAsDefault());
    QVERIFY(editor.saveFooterNoteAsDefault());

    DocumentController next(m_company->store(), m_company->prompter(), m_company->clock());
    next.newDocument(2);
    QCOMPARE(next.document()->value(s("note_header")).toString(), s("Dear customer,"));
    QCOMPARE(next.document()->value(s("note_footer")).toString(), s("Thank you."));
}

void tst_Lifecycle::closeQuestion_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<int>("documentsStored");
    QTest::newRow("save") << s("Save") << true << 1;
    QTest::newRow("don't save") << s("Don't Save") << true << 0;
    QTest::newRow("cancel") << s("Cancel") << false << 0;
}

void tst_Lifecycle::closeQuestion()
{
    QFETCH(QString, answer);
    DocumentController& editor = newInvoice();
    m_company->prompter().addAnswer(answer);
    QTEST(editor.windowShouldClose() == DocumentController::CloseAnswer::Close, "closes");
    QTEST(m_company->main().count(store::FetchRequest(s("Documents"))), "documentsStored");
    const auto& question = m_company->prompter().questions().first();
    QCOMPARE(question.title, s("Save this document?"));
    QCOMPARE(question.text,
             s("This document has not been saved and contains unsaved changes. Would you like to save now?"));
    QCOMPARE(question.buttons, (QStringList{s("Save"), s("Don't Save"), s("Cancel")}));
    if (answer == QLatin1String("Save"))
        QCOMPARE(m_company->find(s("Documents"), s("TRUEPREDICATE"))->value(s("draft")).toBool(), true);
}

void tst_Lifecycle::enteredNumbersAreChecked_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("message");
    const QString notFinite = s("Only finite numbers can be entered: NaN and infinity are not amounts.");
    QTest::newRow("NaN quantity") << s("quantity") << std::nan("") << notFinite;
    QTest::newRow("infinite price") << s("price") << std::numeric_limits<double>::infinity() << notFinite;
    QTest::newRow("1e308 quantity")
        << s("quantity") << 1e308 << s("The quantity must be a number from -1,000,000,000 to 1,000,000,000.");
    QTest::newRow("1e13 price")
        << s("price") << 1e13
        << s("The price must be a number from -1,000,000,000,000 to 1,000,000,000,000.");
    QTest::newRow("zero exchange rate")
        << s("rate") << 0.0 << s("The exchange rate must be a number above 0 and at most 1,000,000.");
    QTest::newRow("negative infinity rate")
        << s("rate") << -std::numeric_limits<double>::infinity() << notFinite;
}

void tst_Lifecycle::enteredNumbersAreChecked()
{
    QFETCH(QString, field);
    QFETCH(double, value);
    DocumentController& editor = newInvoice();
    Record* row = editor.rows().first();
    const bool accepted = field == QLatin1String("quantity") ? editor.setQuantity(row, value)
                          : field == QLatin1String("price")  ? editor.setUnitPrice(row, value)
                                                             : editor.setExchangeRate(value);
    QVERIFY(!accepted);
    QCOMPARE(m_company->prompter().titles(), QStringList{s("Invalid number")});
    QTEST(m_company->prompter().questions().first().text, "message");
    QCOMPARE(row->value(s("quantity")).toDouble(), 3.0);
    QCOMPARE(row->value(s("unit_price")).toDouble(), 10.0);
    QCOMPARE(row->value(s("total")).toDouble(), 36.0);
    QCOMPARE(editor.document()->value(s("exchange_rate")).toDouble(), 1.0);
}

void tst_Lifecycle::failedSaveLosesNothing_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("operation");
    QTest::newRow("document cannot be changed") << s("Documents") << s("UPDATE");
    QTest::newRow("rows cannot be added") << s("DocumentRows") << s("INSERT");
    QTest::newRow("stock cannot be changed") << s("Items") << s("UPDATE");
}

void tst_Lifecycle::failedSaveLosesNothing()
{
    QFETCH(QString, table);
    QFETCH(QString, operation);
    DocumentController& editor = newInvoice();
    QVERIFY(editor.save(Sender::Control)); // a draft of 3 bolts
    const auto ref = editor.document()->ref();
    const QString draftText = m_company->stored(ref, "number_formatted").toString();

    Record* row = editor.addItem(m_bolt);
    editor.setQuantity(row, 5);
    {
        ForcedFailure failure(m_company->store().path(), table, operation);
        QVERIFY(!editor.print());
    }
    QVERIFY(m_output.calls.isEmpty());
    QCOMPARE(m_company->prompter().titles().last(), s("The changes could not be saved."));
    QVERIFY(m_company->prompter().questions().last().text.contains(s("forced failure")));

    // The store holds the draft as it was.
    QCOMPARE(m_company->stored(ref, {s("number_formatted"), s("draft"), s("rows.@count"), s("sum_total")}),
             (QStringList{s("number_formatted=") + draftText, s("draft=true"), s("rows.@count=1"),
                          s("sum_total=36")}));
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 100.0);
    QCOMPARE(m_company->main().count(store::FetchRequest(s("DocumentSummaries"))), 1);
    // The editor still holds the user's work, not a number it never got.
    QCOMPARE(editor.document()->value(s("number_formatted")).toString(), draftText);
    QCOMPARE(editor.document()->value(s("draft")).toBool(), true);
    QCOMPARE(editor.rows().size(), 2);
    QVERIFY(editor.isEdited());

    // Once the store accepts writes again, the same command goes through.
    m_company->prompter().clear();
    QVERIFY(editor.print());
    QCOMPARE(m_output.calls, QStringList{s("print INVOICE/2024-0001 x2")});
    QCOMPARE(m_company->stored(ref, "sum_total").toDouble(), 96.0);
    QCOMPARE(m_company->stored(m_bolt, "stock_current").toDouble(), 92.0);
}

QTEST_GUILESS_MAIN(tst_Lifecycle)
#include "tst_lifecycle.moc"
