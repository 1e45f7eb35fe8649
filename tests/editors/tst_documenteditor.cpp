#include "../documents/documenttestsupport.h"
#include "editors/clientcontroller.h"
#include "editors/documentcontroller.h"
#include "editors/documentoutput.h"
#include "editors/itemcontroller.h"
#include "editors/numberformatpreferences.h"
#include "model/companyrecord.h"

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

// The document editor from a new document to a saved, finalised and handed-over one, and the
// client and item editors with the hand-over of what they save to the document being edited.
class tst_DocumentEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void saveNeedsAClientAndMakesADraft();
    void handingOverFinalisesFirst_data();
    void handingOverFinalisesFirst();
    void rows();
    void clientTermsAndCurrency();
    void notes();
    void numbersOfNewDocuments();
    void closeQuestions();
    void failedSaveLosesNothing();
    void typedQuotationAndFinalPrint();
    void clientSave_data();
    void clientSave();
    void savedRecordsReachTheOpenDocument();
    void deliveriesAndMovements();

private:
    // A new document (an invoice unless told) with a row of 3 bolts (36 with tax).
    DocumentController& newEditor(int type = 0, bool withClient = true)
    {
        m_editor = std::make_unique<DocumentController>(m_company->store(), m_company->prompter(),
                                                        m_company->clock());
        m_editor->setOutput(&m_output);
        m_editor->newDocument(type);
        if (withClient)
            m_editor->addClient(m_client);
        m_editor->setQuantity(m_editor->addItem(m_bolt), 3);
        return *m_editor;
    }

    std::unique_ptr<TestCompany> m_company;
    std::unique_ptr<DocumentController> m_editor;
    RecordingOutput m_output;
    RecordRef m_client;
    RecordRef m_bolt;
};

void tst_DocumentEditor::init()
{
    // The editor goes before the store it works on.
    m_editor.reset();
    m_company = std::make_unique<TestCompany>(at(2024, 3, 15, 10, 30)); // a Friday
    m_client = m_company->addClient(s("Acme Ltd"));
    m_bolt = m_company->addItem(s("Bolt"), 10, m_company->addTax(s("VAT"), 20));
    m_company->addDelivery(m_bolt, 100);
    m_output.calls.clear();
}

void tst_DocumentEditor::saveNeedsAClientAndMakesADraft()
{
    DocumentController& editor = newEditor(0, false);
    QSignalSpy tab(&editor, &DocumentController::documentTabRequested);
    QSignalSpy closing(&editor, &DocumentController::closeRequested);
    QVERIFY(!editor.save(Sender::Control) && !editor.print());
    QCOMPARE(m_company->question(), s("No Client Selected | You cannot save document without client. | OK"));
    QCOMPARE(m_company->prompter().titles().size() + tab.count(), 4);
    QCOMPARE(m_company->count("Documents") + closing.count(), 0);

    // The preview refreshes the copies and sums without saving.
    m_company->prompter().clear();
    QVERIFY(editor.addClient(m_client));
    editor.preview();
    QCOMPARE(m_output.calls, QStringList{s("preview ")});
    QCOMPARE(TestCompany::text(editor.document(), s("sum_total client_full_name")),
             s("sum_total=36 client_full_name=Acme Ltd"));
    QCOMPARE(m_company->count("Documents"), 0);

    // A new invoice saved by its command is a draft, named by when it was first saved.
    QVERIFY(editor.save(Sender::Control));
    m_company->setNow(at(2024, 3, 16, 9, 0));
    QVERIFY(editor.save(Sender::Control));
    QCOMPARE(m_company->stored(editor.document()->ref(), "number_formatted").toString(),
             DraftNumber::text(at(2024, 3, 15, 10, 30)));
    QCOMPARE(m_company->storedText(editor.document()->ref(), s("draft number created sum_total tags.name")),
             s("draft=true number= created=2024-03-15T10:30:00 sum_total=36 tags.name=Invoice"));
    QCOMPARE(closing.count(), 2);
    QVERIFY(!editor.isEdited() && m_company->prompter().questions().isEmpty());
}

void tst_DocumentEditor::handingOverFinalisesFirst_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<bool>("draftBefore");
    QTest::addColumn<QString>("answer");
    QTest::newRow("e-mail a new invoice") << s("e-mail") << false << s("Finalize");
    QTest::newRow("export a draft") << s("save as") << true << s("Finalize");
    QTest::newRow("print declined") << s("print") << true << s("Cancel");
}

void tst_DocumentEditor::handingOverFinalisesFirst()
{
    QFETCH(QString, command);
    QFETCH(bool, draftBefore);
    QFETCH(QString, answer);
    DocumentController& editor = newEditor();
    if (draftBefore)
        QVERIFY(editor.save(Sender::Control));
    QSignalSpy sound(&editor, &DocumentController::soundRequested);
    QSignalSpy closing(&editor, &DocumentController::closeRequested);
    m_company->prompter().addAnswer(answer);

    const bool done = command == QLatin1String("print")     ? editor.print()
                      : command == QLatin1String("save as") ? editor.saveAs()
                                                            : editor.sendEmail();
    const bool finalised = answer == QLatin1String("Finalize");
    QCOMPARE(done, finalised);
    QCOMPARE(m_output.calls, finalised ? QStringList{command + s(" INVOICE/2024-0001")} : QStringList());
    // The first invoice of the year asks for its start number; unanswered, it starts at 1.
    QCOMPARE(m_company->prompter().titles().join(s(", ")),
             finalised ? s("Finalize Invoice, Start Number") : s("Finalize Invoice"));
    QCOMPARE(sound.count() + closing.count(), 2 * int(finalised));
    QCOMPARE(m_company->stored(editor.document()->ref(), "draft").toBool(), !finalised);
    QCOMPARE(m_company->stock(m_bolt), finalised ? 97.0 : 100.0);
}

void tst_DocumentEditor::rows()
{
    DocumentController& editor = newEditor();
    Record* first = editor.rows().first();
    Record* second = editor.addRow(); // with the company's default tax and unit
    QCOMPARE(TestCompany::text(second, s("order quantity tax_name unit_name")),
             s("order=2 quantity=1 tax_name=10% unit_name=Each"));
    QVERIFY(editor.setUnitPrice(second, 20));
    QVERIFY(!editor.duplicateRow());
    editor.setSelectedRows({first});
    Record* copy = editor.duplicateRow();
    QVERIFY(copy);
    editor.updateTaxSummary();
    QCOMPARE(editor.rows(), (QList<Record*>{first, copy, second}));
    QCOMPARE(TestCompany::text(copy, s("order total tax.name document.sum_total")),
             s("order=2 total=36 tax.name=VAT document.sum_total=94"));
    editor.setSelectedRows({first, copy});
    editor.deleteRow();
    editor.updateTaxSummary();
    QCOMPARE(TestCompany::text(second, s("order document.sum_total")), s("order=1 document.sum_total=22"));

    // Numbers beyond their limits are refused, saying why, and leave the row and the document as
    // they were; the limits themselves are accepted.
    QVERIFY(!editor.setQuantity(second, 1e9 + 1));
    QVERIFY(!editor.setUnitPrice(second, -1e13));
    QVERIFY(!editor.setPrice(second, 2, std::nan("")));
    QVERIFY(!editor.setExchangeRate(0));
    QCOMPARE(
        m_company->asked(),
        (QStringList{
            s("Invalid number | The quantity must be a number from -1,000,000,000 to 1,000,000,000. | OK"),
            s("Invalid number | The price must be a number from -1,000,000,000,000 to 1,000,000,000,000. | "
              "OK"),
            s("Invalid number | Only finite numbers can be entered: NaN and infinity are not amounts. | OK"),
            s("Invalid number | The exchange rate must be a number above 0 and at most 1,000,000. | OK")}));
    QCOMPARE(TestCompany::text(second, s("quantity unit_price custom_price02 total document.exchange_rate")),
             s("quantity=1 unit_price=20 custom_price02= total=22 document.exchange_rate=1"));
    QVERIFY(editor.setExchangeRate(1e6) && editor.setPrice(second, 2, 1e12));
}

void tst_DocumentEditor::clientTermsAndCurrency()
{
    const auto tenDays =
        m_company->add("DueDays", {{s("name"), s("10 days")}, {s("days"), 10}, {s("type"), 1}});
    m_company->add(
        "Clients",
        {{s("type"), 0},
         {s("company_name"), s("Own Terms")},
         {s("default_payment_type"), QVariant::fromValue(m_company->named("PaymentTypes", s("Cash"))->ref())},
         {s("default_bank"), QVariant::fromValue(m_company->add("Banks", {{s("line1"), s("Other Bank")}}))},
         {s("default_due_day"), QVariant::fromValue(tenDays)}});
    DocumentController& editor = newEditor(0, false);
    Record* document = editor.document();
    // A client brings its own terms, or the company's (8 business days: Friday 15 to Wednesday 27).
    const QString terms = s("payment_type.name bank.line1 date_due");
    QVERIFY(editor.clientEntered(s("Own Terms")));
    QCOMPARE(TestCompany::text(document, terms),
             s("payment_type.name=Cash bank.line1=Other Bank date_due=2024-03-29T00:00:00"));
    QVERIFY(editor.clientEntered(s("Acme Ltd")));
    QCOMPARE(TestCompany::text(document, terms),
             s("payment_type.name=Bank Transfer bank.line1=My Bank date_due=2024-03-27T00:00:00"));
    const auto month =
        m_company->add("DueDays", {{s("name"), s("30 days")}, {s("days"), 30}, {s("type"), 0}});
    editor.dueDaysChanged(editor.context().record(month));
    QCOMPARE(TestCompany::text(document, s("date_due")), s("date_due=2024-04-14T12:00:00"));

    // Another currency shows the exchange rate, which starts again at 1. The document offers the
    // selectable currencies, the company's and its own.
    QVERIFY(editor.isExchangeRateHidden());
    const auto currency = [&](const char* code) {
        return editor.context().fetchFirst(
            store::FetchRequest(s("Currencies"), predicate::literal("code == %@", {s(code)})));
    };
    currency("GBP")->setValue(s("selectable"), true);
    QVERIFY(editor.setExchangeRate(1.08));
    editor.currencyChanged(currency("EUR"));
    QCOMPARE(document->value(s("exchange_rate")).toDouble(), 1.0);
    QVERIFY(!editor.isExchangeRateHidden());
    QStringList offered;
    for (const Record* r : editor.currencies())
        offered << r->value(s("code")).toString();
    QCOMPARE(offered, (QStringList{s("EUR"), s("GBP"), s("USD")}));
}

void tst_DocumentEditor::notes()
{
    DocumentController& editor = newEditor();
    Record* row = editor.rows().first();
    editor.setSelectedRows({row});
    // The library is stored at once, whatever becomes of the document; a failed save leaves
    // nothing behind in it.
    row->setValue(s("note"), s("lost"));
    {
        ForcedFailure failure(m_company->path(), s("DocumentRowNotes"), s("INSERT"));
        QVERIFY(!editor.saveNote());
    }
    // Without a selected row nothing is stored; a selected row's empty note is stored all the same.
    editor.setSelectedRows({});
    QVERIFY(!editor.saveNote());
    editor.setSelectedRows({row});
    const QString fifty(50, QLatin1Char('x'));
    for (const QString& note : {s("first\nsecond\r\nthird"), fifty + s("y"), QString()}) {
        row->setValue(s("note"), note);
        QVERIFY(editor.saveNote());
    }
    // The menu shows a note on one line, cut after 50 characters.
    const QList<RowNoteLibrary::Entry> entries = editor.noteLibrary().entries();
    QCOMPARE(entries.size(), 3);
    QCOMPARE(entries.at(0).title + s("|") + entries.at(1).title + s("|") + entries.at(2).title,
             s("|first second third|") + fifty + s("..."));
    editor.addNote(entries.at(1).note);
    QCOMPARE(row->value(s("note")).toString(), s("first\nsecond\r\nthird"));
    QVERIFY(editor.removeNote(entries.at(2)));
    QCOMPARE((QList<int>{m_company->count("DocumentRowNotes"), m_company->count("Documents")}),
             (QList<int>{2, 0}));

    // The company's default notes are stored at once too, and start every new document.
    editor.document()->setValue(s("note_footer"), s("Thank you."));
    QVERIFY(editor.saveFooterNoteAsDefault());
    QCOMPARE(newEditor(2).document()->value(s("note_footer")), QVariant(s("Thank you.")));
}

void tst_DocumentEditor::numbersOfNewDocuments()
{
    // A new document takes the next number of its type, again when its type changes; a saved one
    // keeps its number but changes its folder.
    m_company->addDocument(3, m_client, m_bolt, 1);
    DocumentController& editor = newEditor();
    editor.typeChanged(3);
    QCOMPARE(editor.document()->value(s("number_formatted")).toString(), s("QUOTATION/2024-0002"));
    QVERIFY(editor.save(Sender::Control));
    editor.typeChanged(5);
    QVERIFY(editor.save(Sender::Control));
    QCOMPARE(m_company->storedText(editor.document()->ref(), s("number_formatted draft tags.name")),
             s("number_formatted=QUOTATION/2024-0002 draft=false tags.name=Credit Note"));
    QVERIFY(m_company->prompter().questions().isEmpty());

    // The preferences replace a token only by one of its menu's entries; their sample shows the
    // week's year, a real number the calendar year.
    m_company->setNow(at(2024, 12, 30));
    NumberFormatPreferences preferences(m_company->main(), m_company->clock());
    QVERIFY(preferences.chooseToken(0, 3, s("NNNNNN")) && preferences.chooseToken(0, 1, s("YY")));
    QVERIFY(!preferences.chooseToken(0, 0, s("YY")) && !preferences.chooseToken(0, 4, s("YY")));
    QCOMPARE(preferences.sample(preferences.format(0)), s("INVOICE/25-000123"));
    DocumentNumbering numbering(m_company->main(), m_company->prompter());
    QCOMPARE(numbering.nextNumberByType(0, m_company->now(), false).formattedNumber, s("INVOICE/24-000001"));
    QVERIFY(preferences.reset(0) && !preferences.setFormat(8, s("X")));
    QCOMPARE(preferences.format(0), s("INVOICE/,YYYY,-,NNNN"));
}

void tst_DocumentEditor::closeQuestions()
{
    // Each editor asks before it closes with unsaved changes; once saved or forgotten, nothing is
    // left to ask about.
    DocumentController& editor = newEditor();
    auto clients = m_company->make<ClientController>();
    clients.newClient(0);
    clients.addAddress();
    auto items = m_company->make<ItemController>();
    items.newItem(1);
    QVERIFY(items.setPrice(1, 5));
    for (const char* answer : {"Cancel", "Save", "Cancel", "Don't Save", "Save", "Don't Save"})
        m_company->prompter().addAnswer(s(answer));
    QVERIFY(editor.windowShouldClose() == DocumentController::CloseAnswer::KeepOpen);
    QVERIFY(editor.windowShouldClose() == DocumentController::CloseAnswer::Close);
    QVERIFY(clients.windowShouldClose() == ClientController::CloseAnswer::KeepOpen);
    QVERIFY(clients.windowShouldClose() == ClientController::CloseAnswer::Close);
    QVERIFY(items.windowShouldClose() == ItemController::CloseAnswer::Close);
    QVERIFY(editor.windowShouldClose() == DocumentController::CloseAnswer::Close);
    QVERIFY(clients.windowShouldClose() == ClientController::CloseAnswer::Close);
    QCOMPARE(m_company->storedText(editor.document()->ref(), s("draft sum_total")),
             s("draft=true sum_total=36"));
    QVERIFY(newEditor().windowShouldClose() == DocumentController::CloseAnswer::Close); // not saved
    const auto question = [](const char* what) {
        return s("Save this %1? | This %1 has not been saved and contains unsaved changes. Would you like to "
                 "save now? | Save, Don't Save, Cancel")
            .arg(s(what));
    };
    const QString document = question("document"), client = question("client");
    QCOMPARE(m_company->asked(),
             (QStringList{document, document, client, client, question("item"), document}));
    QCOMPARE(
        (QList<int>{m_company->count("Documents"), m_company->count("Clients"), m_company->count("Items")}),
        (QList<int>{1, 1, 2}));
}

void tst_DocumentEditor::failedSaveLosesNothing()
{
    DocumentController& editor = newEditor();
    QVERIFY(editor.save(Sender::Control)); // a draft of 3 bolts
    const RecordRef ref = editor.document()->ref();
    const QString draft = m_company->storedText(ref, s("number_formatted draft"));
    editor.setQuantity(editor.addItem(m_bolt), 5);
    {
        // The rows and the document are written, then the stock fails.
        ForcedFailure failure(m_company->path(), s("Items"), s("UPDATE"));
        QVERIFY(!editor.print());
    }
    QVERIFY(m_output.calls.isEmpty());
    // The store holds the draft as it was; the editor, the user's work without a number.
    QCOMPARE(m_company->storedText(ref, s("number_formatted draft rows.@count sum_total")),
             draft + s(" rows.@count=1 sum_total=36"));
    QCOMPARE(TestCompany::text(editor.document(), s("number_formatted draft")), draft);
    QVERIFY(editor.rows().size() == 2 && editor.isEdited());

    // Once the store accepts writes again, the same command goes through.
    m_company->prompter().clear();
    QVERIFY(editor.print());
    QCOMPARE(m_output.calls, QStringList{s("print INVOICE/2024-0001 x2")});
    QCOMPARE(m_company->stock(m_bolt), 92.0); // both rows sold
}

void tst_DocumentEditor::typedQuotationAndFinalPrint()
{
    m_company->addItem(s("Nut"), 0.5, m_company->addTax(s("Reduced"), 27));
    // A quotation of 20 bolts and 200 nuts, client and item typed in by name.
    DocumentController& quote = newEditor(3, false);
    QVERIFY(quote.clientEntered(s("Acme Ltd")));
    quote.setQuantity(quote.rows().first(), 20);
    Record* nuts = quote.addRow();
    quote.itemNameEntered(nuts, s("Nut"));
    quote.setQuantity(nuts, 200);
    QVERIFY(quote.save(Sender::Control));
    QCOMPARE(m_company->storedText(quote.document()->ref(), s("number_formatted sum_total rows.item.name")),
             s("number_formatted=QUOTATION/2024-0001 sum_total=367 rows.item.name=Bolt|Nut"));

    // A final invoice is printed as it is, asking nothing.
    const RecordRef invoice = m_company->addDocument(0, m_client, m_bolt, 2);
    m_company->saveMain();
    m_company->prompter().clear();
    QVERIFY(newEditor().openDocument(invoice) && m_editor->print());
    QCOMPARE(m_output.calls, QStringList{s("print INVOICE/2024-0001 x2")});
    QVERIFY(m_company->prompter().questions().isEmpty());
}

void tst_DocumentEditor::clientSave_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("names");
    QTest::addColumn<QString>("tags");
    QTest::newRow("company") << 0 << s("company_name=No Name first_name= last_name=")
                             << s("tags.name=Company|VIP");
    QTest::newRow("supplier is filed as a company too")
        << 1 << s("company_name= first_name=No Name last_name=") << s("tags.name=Company|Supplier|VIP");
    QTest::newRow("individual") << 2 << s("company_name=No Name first_name= last_name=")
                                << s("tags.name=Individual|VIP");
}

void tst_DocumentEditor::clientSave()
{
    QFETCH(int, type);
    const auto vip = m_company->add("Categories", {{s("name"), s("VIP")}, {s("type"), 1}});
    auto editor = m_company->make<ClientController>();
    QSignalSpy closing(&editor, &ClientController::closeRequested);
    Record* client = editor.newClient(type == 0 ? 2 : 0);
    // The kind tag of the kind it had before goes; the user's tag stays. A kind chosen by the user
    // clears the names, loading the window's state does not.
    client->setValue(
        s("tags"), QVariantList{QVariant::fromValue(vip),
                                QVariant::fromValue(m_company->named("Categories", s("Individual"))->ref())});
    client->setValue(s("last_name"), s("Lee"));
    editor.typeChanged(type, ClientController::Sender::None);
    QCOMPARE(client->value(s("last_name")), QVariant(s("Lee")));
    editor.typeChanged(type, ClientController::Sender::Control);
    QCOMPARE(editor.nameFields().firstKey, type == 2 ? s("first_name") : s("company_name"));
    QVERIFY(editor.save(ClientController::Sender::Control));
    QTEST(m_company->storedText(client->ref(), s("company_name first_name last_name")), "names");
    QTEST(m_company->storedText(client->ref(), s("tags.name")), "tags");
    QVERIFY(!m_company->stored(client->ref(), "identifier").toString().isEmpty());
    QVERIFY(closing.count() == 1 && !editor.isEdited());
}

void tst_DocumentEditor::savedRecordsReachTheOpenDocument()
{
    auto document = m_company->make<DocumentController>();
    document.newDocument(0);
    document.defaultPriceChanged(2);
    QSignalSpy handedOver(&document, &DocumentController::handOverReceived);
    auto clients = m_company->make<ClientController>();
    Record* client = clients.newClient(2);
    client->setValue(s("first_name"), s("Ann"));
    client->setValue(s("last_name"), s("Smith"));
    client->setValue(s("emails"), s("ann@smith.test"));
    // The first address is the default until another is chosen; without that one, the first again.
    clients.addAddress()->setValue(s("city"), s("Szeged"));
    Record* office = clients.addAddress();
    clients.defaultAddressChanged(office);
    QCOMPARE(client->related(s("default_address")), office);
    clients.removeAddress(office);
    QVERIFY(clients.save(ClientController::Sender::Control, &document));
    QCOMPARE(TestCompany::text(document.document(), s("client_full_name client_city client_email")),
             s("client_full_name=Ann Smith client_city=Szeged client_email=ann@smith.test"));
    QCOMPARE(handedOver.count(), 1);
    // A saved item is filed under its kind, keeps the user's tags, and becomes a row at the active
    // price level. Only the first rate of its tax is taken out of its prices.
    auto items = m_company->make<ItemController>();
    Record* item = items.newItem(0);
    // A new item starts in the company's default unit and tax.
    for (const char* key : {"unit", "tax"}) {
        Record* fallback = model::CompanyRecord::defaultRecord(items.context(), s("default_") + s(key));
        QVERIFY(fallback);
        QCOMPARE(item->related(s(key)), fallback);
    }
    item->setValue(s("name"), s("Consulting"));
    item->setValue(s("tags"),
                   QVariantList{QVariant::fromValue(m_company->add(
                                    "Categories", {{s("name"), s("Seasonal")}, {s("type"), 2}})),
                                QVariant::fromValue(m_company->named("Categories", s("Product"))->ref())});
    item->setValue(s("tax"), QVariant::fromValue(m_company->addTax(s("T"), 20, 5)));
    QVERIFY(items.setPrice(1, 96) && items.setPrice(2, 120));
    items.pricesToNet();
    QCOMPARE(TestCompany::text(item, s("custom_price01 custom_price02 custom_price03")),
             s("custom_price01=80 custom_price02=100 custom_price03="));
    QVERIFY(items.save(ItemController::Sender::Control, &document));
    QCOMPARE(m_company->storedText(item->ref(), s("tags.name")), s("tags.name=Service|Seasonal"));
    QCOMPARE(document.rows().size(), 1);
    QCOMPARE(TestCompany::text(document.rows().first(), s("name unit_price total item.name")),
             s("name=Consulting unit_price=100 total=125 item.name=Consulting"));
    QCOMPARE(handedOver.count(), 2);
    QVERIFY(document.isEdited() && document.canSave());
}

void tst_DocumentEditor::deliveriesAndMovements()
{
    const auto supplier = m_company->add("Clients", {{s("type"), 1}, {s("company_name"), s("Parts Inc")}});
    m_company->addClient(s("Parts Buyer"));
    auto editor = m_company->make<ItemController>();
    editor.openItem(m_bolt);
    QCOMPARE(editor.supplierSuggestions(s("parts")).size(), 1); // suppliers only
    Record* first = editor.addIncoming(editor.context().record(supplier), 10, at(2024, 3, 1));
    editor.removeIncoming(editor.addIncoming(nullptr, 7, at(2024, 3, 3)));
    QVERIFY(!editor.addIncoming(nullptr, 1e308, m_company->now()));
    QVERIFY(editor.save(ItemController::Sender::None));
    QCOMPARE(m_company->stock(m_bolt), 110.0);
    QCOMPARE(editor.movementsIn().size(), 2);
    QCOMPARE(first->valueForKeyPath(s("client.full_name")).toString(), s("Parts Inc"));
    // A draft invoice is no movement; a quotation is one, though it moves no stock.
    QVERIFY(newEditor().save(Sender::Control) && newEditor(3).save(Sender::Control));
    QCOMPARE(m_company->stock(m_bolt), 110.0);
    const QList<ItemController::MovementOut> out = editor.movementsOut();
    QCOMPARE(out.size(), 1);
    QCOMPARE(s("%1 %2 %3")
                 .arg(out.first().quantity)
                 .arg(out.first().documentNumber, out.first().client->value(s("full_name")).toString()),
             s("3 QUOTATION/2024-0001 Acme Ltd"));
    QCOMPARE(out.first().date, m_company->now());
}

QTEST_GUILESS_MAIN(tst_DocumentEditor)
#include "tst_documenteditor.moc"
