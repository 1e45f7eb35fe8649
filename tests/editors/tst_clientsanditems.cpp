#include "documenttestsupport.h"
#include "editors/clientcontroller.h"
#include "editors/documentcontroller.h"
#include "editors/itemcontroller.h"
#include "store/editingcontext.h"

#include <QSignalSpy>

using namespace corvanta;
using namespace corvanta::documents;
using namespace corvanta::editors;
using namespace corvanta::documents::testing;
using predicate::RecordRef;
using store::Record;

namespace {

QStringList tagNames(TestCompany& company, const RecordRef& ref)
{
    QStringList names;
    for (const QVariant& name : company.stored(ref, "tags.name").toList())
        names << name.toString();
    names.sort();
    return names;
}

} // namespace

// The client and item editors: name fields, what a save fills in and files, addresses and
// contacts, prices, deliveries and stock, and the hand-over of a saved client or item to the
// document being edited.
class tst_ClientsAndItems : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void kindChangeClearsNames();
    void clientSave_data();
    void clientSave();
    void defaultAddressAndContact();
    void savedClientReachesOpenDocument();
    void closeQuestions_data();
    void closeQuestions();
    void grossToNet_data();
    void grossToNet();
    void itemSave();
    void savedItemBecomesARow();
    void deliveriesAndMovements();
    void itemNumbersAreChecked();

private:
    std::unique_ptr<TestCompany> m_company;
};

void tst_ClientsAndItems::init()
{
    m_company = std::make_unique<TestCompany>(at(2024, 4, 2));
}

void tst_ClientsAndItems::cleanup()
{
    m_company.reset();
}

void tst_ClientsAndItems::kindChangeClearsNames()
{
    ClientController editor(m_company->store(), m_company->prompter(), m_company->clock());
    Record* client = editor.newClient(0);
    client->setValue(s("company_name"), s("Acme"));
    client->setValue(s("tax_number"), s("T-1"));
    QCOMPARE(editor.nameFields().firstLabel, s("Company Name"));
    QCOMPARE(editor.nameFields().secondKey, s("tax_number"));

    editor.typeChanged(2, ClientController::Sender::Control);
    for (const char* key : {"company_name", "tax_number", "first_name", "last_name"})
        QCOMPARE(client->value(s(key)).toString(), QString());
    QCOMPARE(editor.nameFields().firstLabel, s("First Name"));
    QCOMPARE(editor.nameFields().firstKey, s("first_name"));
    QCOMPARE(editor.nameFields().secondLabel, s("Last Name"));

    // Loading the window's state does not clear anything.
    client->setValue(s("first_name"), s("Ann"));
    editor.typeChanged(2, ClientController::Sender::None);
    QCOMPARE(client->value(s("first_name")).toString(), s("Ann"));
}

void tst_ClientsAndItems::clientSave_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("companyName");
    QTest::addColumn<QString>("firstName");
    QTest::addColumn<QStringList>("tags");

    QTest::newRow("company") << 0 << s("No Name") << QString() << QStringList{s("Company"), s("VIP")};
    QTest::newRow("supplier is filed as a company too")
        << 1 << QString() << s("No Name") << QStringList{s("Company"), s("Supplier"), s("VIP")};
    QTest::newRow("individual") << 2 << s("No Name") << QString() << QStringList{s("Individual"), s("VIP")};
}

void tst_ClientsAndItems::clientSave()
{
    QFETCH(int, type);
    const auto vip = m_company->add("Categories", {{s("name"), s("VIP")}, {s("type"), 1}});
    ClientController editor(m_company->store(), m_company->prompter(), m_company->clock());
    QSignalSpy closing(&editor, &ClientController::closeRequested);
    Record* client = editor.newClient(type == 0 ? 2 : 0);
    // The kind tag of the kind it had before goes; the user's tag stays.
    client->setValue(
        s("tags"), QVariantList{QVariant::fromValue(vip),
                                QVariant::fromValue(m_company->named("Categories", s("Individual"))->ref())});
    editor.typeChanged(type, ClientController::Sender::Control);
    QVERIFY(editor.save(ClientController::Sender::Control));

    QTEST(m_company->stored(client->ref(), "company_name").toString(), "companyName");
    QTEST(m_company->stored(client->ref(), "first_name").toString(), "firstName");
    QTEST(tagNames(*m_company, client->ref()), "tags");
    QVERIFY(!m_company->stored(client->ref(), "identifier").toString().isEmpty());
    QCOMPARE(closing.count(), 1);
    QVERIFY(!editor.isEdited());
}

void tst_ClientsAndItems::defaultAddressAndContact()
{
    ClientController editor(m_company->store(), m_company->prompter(), m_company->clock());
    Record* client = editor.newClient(0);
    Record* home = editor.addAddress();
    Record* office = editor.addAddress();
    QCOMPARE(client->related(s("default_address")), home);
    editor.defaultAddressChanged(office);
    QCOMPARE(client->related(s("default_address")), office);
    editor.removeAddress(office);
    QCOMPARE(client->related(s("default_address")), home);
    editor.removeAddress(home);
    QVERIFY(!client->related(s("default_address")));

    Record* ann = editor.addContact();
    ann->setValue(s("name"), s("Ann"));
    Record* bob = editor.addContact();
    editor.removeContact(bob);
    QCOMPARE(client->related(s("default_contact")), ann);
    QVERIFY(editor.save(ClientController::Sender::None));
    QCOMPARE(m_company->stored(client->ref(), "default_contact.name").toString(), s("Ann"));
    QCOMPARE(m_company->stored(client->ref(), "addresses.@count").toInt(), 0);
    QCOMPARE(m_company->stored(client->ref(), "contacts.@count").toInt(), 1);
}

void tst_ClientsAndItems::savedClientReachesOpenDocument()
{
    DocumentController document(m_company->store(), m_company->prompter(), m_company->clock());
    document.newDocument(0);
    ClientController editor(m_company->store(), m_company->prompter(), m_company->clock());
    Record* client = editor.newClient(2);
    client->setValue(s("first_name"), s("Ann"));
    client->setValue(s("last_name"), s("Smith"));
    client->setValue(s("emails"), s("ann@smith.test"));
    Record* address = editor.addAddress();
    address->setValue(s("city"), s("Szeged"));
    QVERIFY(editor.save(ClientController::Sender::Control, &document));

    QCOMPARE(document.document()->valueForKeyPath(s("client.full_name")).toString(), s("Ann Smith"));
    QCOMPARE(document.document()->value(s("client_full_name")).toString(), s("Ann Smith"));
    QCOMPARE(document.document()->value(s("client_city")).toString(), s("Szeged"));
    QCOMPARE(document.document()->value(s("client_email")).toString(), s("ann@smith.test"));
    QVERIFY(document.canSave());
}

void tst_ClientsAndItems::closeQuestions_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<int>("stored");
    QTest::newRow("save") << s("Save") << true << 1;
    QTest::newRow("don't save") << s("Don't Save") << true << 0;
    QTest::newRow("cancel") << s("Cancel") << false << 0;
}

void tst_ClientsAndItems::closeQuestions()
{
    QFETCH(QString, answer);
    ClientController clients(m_company->store(), m_company->prompter(), m_company->clock());
    QVERIFY(clients.windowShouldClose() == ClientController::CloseAnswer::Close);
    clients.newClient(0);
    clients.addAddress();
    ItemController items(m_company->store(), m_company->prompter(), m_company->clock());
    items.newItem(1);
    QVERIFY(items.setPrice(1, 5));

    m_company->prompter().addAnswer(answer);
    m_company->prompter().addAnswer(answer);
    QTEST(clients.windowShouldClose() == ClientController::CloseAnswer::Close, "closes");
    QTEST(items.windowShouldClose() == ItemController::CloseAnswer::Close, "closes");
    QTEST(m_company->main().count(store::FetchRequest(s("Clients"))), "stored");
    QTEST(m_company->main().count(store::FetchRequest(s("Items"))), "stored");

    const auto& questions = m_company->prompter().questions();
    QCOMPARE(questions.size(), 2);
    QCOMPARE(questions[0].title, s("Save this client?"));
    QCOMPARE(questions[0].text,
             s("This client has not been saved and contains unsaved changes. Would you like to save now?"));
    QCOMPARE(questions[1].title, s("Save this item?"));
    QCOMPARE(questions[1].text,
             s("This item has not been saved and contains unsaved changes. Would you like to save now?"));
    QCOMPARE(questions[1].buttons, (QStringList{s("Save"), s("Don't Save"), s("Cancel")}));
}

void tst_ClientsAndItems::grossToNet_data()
{
    QTest::addColumn<double>("rate1");
    QTest::addColumn<double>("rate2");
    QTest::addColumn<bool>("withTax");
    QTest::addColumn<int>("times");
    QTest::addColumn<QList<double>>("prices");

    QTest::newRow("second rate ignored") << 20.0 << 5.0 << true << 1 << QList<double>{100, 50};
    QTest::newRow("twice divides twice")
        << 20.0 << 0.0 << true << 2 << QList<double>{120 / 1.2 / 1.2, 60 / 1.2 / 1.2};
    QTest::newRow("no tax") << 0.0 << 0.0 << false << 1 << QList<double>{120, 60};
}

void tst_ClientsAndItems::grossToNet()
{
    QFETCH(double, rate1);
    QFETCH(double, rate2);
    QFETCH(bool, withTax);
    QFETCH(int, times);
    QFETCH(QList<double>, prices);

    ItemController editor(m_company->store(), m_company->prompter(), m_company->clock());
    Record* item = editor.newItem(1);
    if (withTax)
        item->setValue(s("tax"), QVariant::fromValue(m_company->addTax(s("T"), rate1, rate2)));
    QVERIFY(editor.setPrice(1, 120));
    QVERIFY(editor.setPrice(2, 60));
    for (int i = 0; i < times; ++i)
        editor.pricesToNet();
    QCOMPARE(item->value(s("custom_price01")).toDouble(), prices.at(0));
    QCOMPARE(item->value(s("custom_price02")).toDouble(), prices.at(1));
    QVERIFY(item->value(s("custom_price03")).isNull());
}

void tst_ClientsAndItems::itemSave()
{
    const auto seasonal = m_company->add("Categories", {{s("name"), s("Seasonal")}, {s("type"), 2}});
    ItemController editor(m_company->store(), m_company->prompter(), m_company->clock());
    Record* item = editor.newItem(1);
    item->setValue(s("tags"),
                   QVariantList{QVariant::fromValue(seasonal),
                                QVariant::fromValue(m_company->named("Categories", s("Service"))->ref())});
    QVERIFY(editor.save(ItemController::Sender::None));
    QCOMPARE(m_company->stored(item->ref(), "name").toString(), s("No Name"));
    QCOMPARE(tagNames(*m_company, item->ref()), (QStringList{s("Product"), s("Seasonal")}));
    item->setValue(s("type"), 0);
    QVERIFY(editor.save(ItemController::Sender::None));
    QCOMPARE(tagNames(*m_company, item->ref()), (QStringList{s("Seasonal"), s("Service")}));
}

void tst_ClientsAndItems::savedItemBecomesARow()
{
    DocumentController document(m_company->store(), m_company->prompter(), m_company->clock());
    document.newDocument(0);
    document.defaultPriceChanged(2);
    ItemController editor(m_company->store(), m_company->prompter(), m_company->clock());
    QSignalSpy closing(&editor, &ItemController::closeRequested);
    Record* item = editor.newItem(0);
    item->setValue(s("name"), s("Consulting"));
    item->setValue(s("unit"), QVariant::fromValue(m_company->named("Units", s("Hours"))->ref()));
    QVERIFY(editor.setPrice(1, 80));
    QVERIFY(editor.setPrice(2, 95));
    QVERIFY(editor.save(ItemController::Sender::Control, &document));
    QCOMPARE(closing.count(), 1);

    QCOMPARE(document.rows().size(), 1);
    const Record* row = document.rows().first();
    QCOMPARE(row->value(s("name")).toString(), s("Consulting"));
    QCOMPARE(row->value(s("unit_price")).toDouble(), 95.0);
    QCOMPARE(row->value(s("unit_name")).toString(), s("Hours"));
    QCOMPARE(row->value(s("total")).toDouble(), 95.0);
    QCOMPARE(row->related(s("item"))->ref(), item->ref());
    QVERIFY(document.isEdited());
}

void tst_ClientsAndItems::deliveriesAndMovements()
{
    const auto supplier = m_company->add("Clients", {{s("type"), 1}, {s("company_name"), s("Parts Inc")}});
    m_company->addClient(s("Parts Buyer"));
    const auto buyer = m_company->addClient(s("Buyer"));
    const auto bolt = m_company->addItem(s("Bolt"), 2);

    ItemController editor(m_company->store(), m_company->prompter(), m_company->clock());
    editor.openItem(bolt);
    QCOMPARE(editor.supplierSuggestions(s("parts")).size(), 1);
    Record* first = editor.addIncoming(editor.context().record(supplier), 10, at(2024, 3, 1));
    editor.addIncoming(editor.context().record(supplier), 5, at(2024, 3, 2));
    Record* mistake = editor.addIncoming(nullptr, 7, at(2024, 3, 3));
    editor.removeIncoming(mistake);
    QVERIFY(editor.save(ItemController::Sender::None));
    QCOMPARE(m_company->stored(bolt, "stock_current").toDouble(), 15.0);
    QCOMPARE(editor.movementsIn().size(), 2);
    QCOMPARE(first->valueForKeyPath(s("client.full_name")).toString(), s("Parts Inc"));

    for (int type : {0, 0, 3}) {
        DocumentController document(m_company->store(), m_company->prompter(), m_company->clock());
        document.newDocument(type);
        document.addClient(buyer);
        document.setQuantity(document.addItem(bolt), type == 3 ? 2 : 4);
        QVERIFY(document.save(type == 3 ? DocumentController::Sender::None
                                        : DocumentController::Sender::Control));
    }
    // Two draft invoices move nothing; the quotation shows among the movements but not in the stock.
    QCOMPARE(m_company->stored(bolt, "stock_current").toDouble(), 15.0);
    const QList<ItemController::MovementOut> out = editor.movementsOut();
    QCOMPARE(out.size(), 1);
    QCOMPARE(out.first().quantity, 2.0);
    QCOMPARE(out.first().documentNumber, s("QUOTATION/2024-0001"));
    QCOMPARE(out.first().client->value(s("full_name")).toString(), s("Buyer"));
    QCOMPARE(out.first().date, m_company->now());
}

void tst_ClientsAndItems::itemNumbersAreChecked()
{
    ItemController editor(m_company->store(), m_company->prompter(), m_company->clock());
    Record* item = editor.newItem(1);
    QVERIFY(!editor.setPrice(3, std::numeric_limits<double>::quiet_NaN()));
    QVERIFY(!editor.addIncoming(nullptr, 1e308, m_company->now()));
    QCOMPARE(m_company->prompter().titles(), (QStringList{s("Invalid number"), s("Invalid number")}));
    QCOMPARE(m_company->prompter().questions().last().text,
             s("The quantity must be a number from -1,000,000,000 to 1,000,000,000."));
    QVERIFY(item->value(s("custom_price03")).isNull());
    QVERIFY(editor.movementsIn().isEmpty());
}

QTEST_GUILESS_MAIN(tst_ClientsAndItems)
#include "tst_clientsanditems.moc"
