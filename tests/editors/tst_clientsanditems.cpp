#include "../documents/documenttestsupport.h"
#include "editors/clientcontroller.h"
#include "editors/documentcontroller.h"
#include "editors/itemcontroller.h"

#include <QSignalSpy>
#include <limits>

using namespace corvanta;
using namespace corvanta::documents::testing;
using namespace corvanta::editors;

// The client and item editors: name fields, what a save fills in and files, addresses and
// contacts, prices, deliveries and stock, the close questions, and the hand-over of a saved
// client or item to the document being edited.
class tst_ClientsAndItems : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_company = std::make_unique<TestCompany>(at(2024, 4, 2)); }
    void cleanup() { m_company.reset(); }

    void kindChangeClearsNames();
    void clientSave_data();
    void clientSave();
    void defaultAddressAndContact();
    void closeQuestions_data();
    void closeQuestions();
    void grossToNet_data();
    void grossToNet();
    void itemSave();
    void savedRecordsReachTheOpenDocument();
    void deliveriesAndMovements();

private:
    QStringList tagNames(const RecordRef& ref)
    {
        QStringList names;
        for (const QVariant& name : m_company->stored(ref, "tags.name").toList())
            names << name.toString();
        names.sort();
        return names;
    }

    std::unique_ptr<TestCompany> m_company;
};

void tst_ClientsAndItems::kindChangeClearsNames()
{
    auto editor = m_company->make<ClientController>();
    Record* client = editor.newClient(0);
    client->setValue(s("company_name"), s("Acme"));
    client->setValue(s("tax_number"), s("T-1"));
    QCOMPARE(editor.nameFields().firstLabel, s("Company Name"));
    QCOMPARE(editor.nameFields().secondKey, s("tax_number"));

    editor.typeChanged(2, ClientController::Sender::Control);
    QCOMPARE(TestCompany::text(client, s("company_name tax_number first_name last_name")),
             s("company_name= tax_number= first_name= last_name="));
    const ClientController::NameFields fields = editor.nameFields();
    QCOMPARE((QStringList{fields.firstLabel, fields.firstKey, fields.secondLabel, fields.secondKey}),
             (QStringList{s("First Name"), s("first_name"), s("Last Name"), s("last_name")}));

    // Loading the window's state does not clear anything.
    client->setValue(s("first_name"), s("Ann"));
    editor.typeChanged(2, ClientController::Sender::None);
    QCOMPARE(client->value(s("first_name")).toString(), s("Ann"));
}

void tst_ClientsAndItems::clientSave_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("names");
    QTest::addColumn<QStringList>("tags");

    QTest::newRow("company") << 0 << s("company_name=No Name first_name=")
                             << QStringList{s("Company"), s("VIP")};
    QTest::newRow("supplier is filed as a company too")
        << 1 << s("company_name= first_name=No Name") << QStringList{s("Company"), s("Supplier"), s("VIP")};
    QTest::newRow("individual") << 2 << s("company_name=No Name first_name=")
                                << QStringList{s("Individual"), s("VIP")};
}

void tst_ClientsAndItems::clientSave()
{
    QFETCH(int, type);
    const auto vip = m_company->add("Categories", {{s("name"), s("VIP")}, {s("type"), 1}});
    auto editor = m_company->make<ClientController>();
    QSignalSpy closing(&editor, &ClientController::closeRequested);
    Record* client = editor.newClient(type == 0 ? 2 : 0);
    // The kind tag of the kind it had before goes; the user's tag stays.
    client->setValue(
        s("tags"), QVariantList{QVariant::fromValue(vip),
                                QVariant::fromValue(m_company->named("Categories", s("Individual"))->ref())});
    editor.typeChanged(type, ClientController::Sender::Control);
    QVERIFY(editor.save(ClientController::Sender::Control));

    QTEST(m_company->storedText(client->ref(), s("company_name first_name")), "names");
    QTEST(tagNames(client->ref()), "tags");
    QVERIFY(!m_company->stored(client->ref(), "identifier").toString().isEmpty());
    QCOMPARE(closing.count(), 1);
    QVERIFY(!editor.isEdited());
}

void tst_ClientsAndItems::defaultAddressAndContact()
{
    auto editor = m_company->make<ClientController>();
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
    editor.removeContact(editor.addContact());
    QCOMPARE(client->related(s("default_contact")), ann);
    QVERIFY(editor.save(ClientController::Sender::None));
    QCOMPARE(m_company->storedText(client->ref(), s("default_contact.name addresses.@count contacts.@count")),
             s("default_contact.name=Ann addresses.@count=0 contacts.@count=1"));
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
    auto clients = m_company->make<ClientController>();
    QVERIFY(clients.windowShouldClose() == ClientController::CloseAnswer::Close);
    clients.newClient(0);
    clients.addAddress();
    auto items = m_company->make<ItemController>();
    items.newItem(1);
    QVERIFY(items.setPrice(1, 5));

    m_company->prompter().addAnswer(answer);
    m_company->prompter().addAnswer(answer);
    QTEST(clients.windowShouldClose() == ClientController::CloseAnswer::Close, "closes");
    QTEST(items.windowShouldClose() == ItemController::CloseAnswer::Close, "closes");
    QTEST(m_company->count("Clients"), "stored");
    QTEST(m_company->count("Items"), "stored");

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
    QTest::addColumn<int>("times");
    QTest::addColumn<QList<double>>("prices");

    QTest::newRow("second rate ignored") << 20.0 << 5.0 << 1 << QList<double>{100, 50};
    QTest::newRow("twice divides twice")
        << 20.0 << 0.0 << 2 << QList<double>{120 / 1.2 / 1.2, 60 / 1.2 / 1.2};
    QTest::newRow("no tax") << -1.0 << 0.0 << 1 << QList<double>{120, 60};
}

void tst_ClientsAndItems::grossToNet()
{
    QFETCH(double, rate1);
    QFETCH(double, rate2);
    QFETCH(int, times);
    QFETCH(QList<double>, prices);

    auto editor = m_company->make<ItemController>();
    Record* item = editor.newItem(1);
    if (rate1 >= 0)
        item->setValue(s("tax"), QVariant::fromValue(m_company->addTax(s("T"), rate1, rate2)));
    QVERIFY(editor.setPrice(1, 120));
    QVERIFY(editor.setPrice(2, 60));
    QVERIFY(!editor.setPrice(3, std::numeric_limits<double>::quiet_NaN()));
    for (int i = 0; i < times; ++i)
        editor.pricesToNet();
    QCOMPARE(item->value(s("custom_price01")).toDouble(), prices.at(0));
    QCOMPARE(item->value(s("custom_price02")).toDouble(), prices.at(1));
    QVERIFY(item->value(s("custom_price03")).isNull());
    QCOMPARE(m_company->prompter().titles(), QStringList{s("Invalid number")});
}

void tst_ClientsAndItems::itemSave()
{
    const auto seasonal = m_company->add("Categories", {{s("name"), s("Seasonal")}, {s("type"), 2}});
    auto editor = m_company->make<ItemController>();
    Record* item = editor.newItem(1);
    item->setValue(s("tags"),
                   QVariantList{QVariant::fromValue(seasonal),
                                QVariant::fromValue(m_company->named("Categories", s("Service"))->ref())});
    QVERIFY(editor.save(ItemController::Sender::None));
    QCOMPARE(m_company->stored(item->ref(), "name").toString(), s("No Name"));
    QCOMPARE(tagNames(item->ref()), (QStringList{s("Product"), s("Seasonal")}));
    item->setValue(s("type"), 0);
    QVERIFY(editor.save(ItemController::Sender::None));
    QCOMPARE(tagNames(item->ref()), (QStringList{s("Seasonal"), s("Service")}));
}

void tst_ClientsAndItems::savedRecordsReachTheOpenDocument()
{
    auto document = m_company->make<DocumentController>();
    document.newDocument(0);
    document.defaultPriceChanged(2);
    auto clients = m_company->make<ClientController>();
    Record* client = clients.newClient(2);
    client->setValue(s("first_name"), s("Ann"));
    client->setValue(s("last_name"), s("Smith"));
    client->setValue(s("emails"), s("ann@smith.test"));
    clients.addAddress()->setValue(s("city"), s("Szeged"));
    QVERIFY(clients.save(ClientController::Sender::Control, &document));
    QCOMPARE(TestCompany::text(document.document(),
                               s("client.full_name client_full_name client_city client_email")),
             s("client.full_name=Ann Smith client_full_name=Ann Smith client_city=Szeged "
               "client_email=ann@smith.test"));

    // A saved item becomes a row at the active price level.
    auto items = m_company->make<ItemController>();
    QSignalSpy closing(&items, &ItemController::closeRequested);
    Record* item = items.newItem(0);
    item->setValue(s("name"), s("Consulting"));
    item->setValue(s("unit"), QVariant::fromValue(m_company->named("Units", s("Hours"))->ref()));
    QVERIFY(items.setPrice(1, 80));
    QVERIFY(items.setPrice(2, 95));
    QVERIFY(items.save(ItemController::Sender::Control, &document));
    QCOMPARE(closing.count(), 1);
    QCOMPARE(document.rows().size(), 1);
    QCOMPARE(TestCompany::text(document.rows().first(), s("name unit_price unit_name total item.name")),
             s("name=Consulting unit_price=95 unit_name=Hours total=95 item.name=Consulting"));
    QVERIFY(document.isEdited() && document.canSave());
}

void tst_ClientsAndItems::deliveriesAndMovements()
{
    const auto supplier = m_company->add("Clients", {{s("type"), 1}, {s("company_name"), s("Parts Inc")}});
    m_company->addClient(s("Parts Buyer"));
    const auto buyer = m_company->addClient(s("Buyer"));
    const auto bolt = m_company->addItem(s("Bolt"), 2);

    auto editor = m_company->make<ItemController>();
    editor.openItem(bolt);
    QCOMPARE(editor.supplierSuggestions(s("parts")).size(), 1);
    Record* first = editor.addIncoming(editor.context().record(supplier), 10, at(2024, 3, 1));
    editor.addIncoming(editor.context().record(supplier), 5, at(2024, 3, 2));
    editor.removeIncoming(editor.addIncoming(nullptr, 7, at(2024, 3, 3)));
    QVERIFY(!editor.addIncoming(nullptr, 1e308, m_company->now()));
    QCOMPARE(m_company->prompter().questions().last().text,
             s("The quantity must be a number from -1,000,000,000 to 1,000,000,000."));
    QVERIFY(editor.save(ItemController::Sender::None));
    QCOMPARE(m_company->stock(bolt), 15.0);
    QCOMPARE(editor.movementsIn().size(), 2);
    QCOMPARE(first->valueForKeyPath(s("client.full_name")).toString(), s("Parts Inc"));

    for (int type : {0, 0, 3}) {
        auto document = m_company->make<DocumentController>();
        document.newDocument(type);
        document.addClient(buyer);
        document.setQuantity(document.addItem(bolt), type == 3 ? 2 : 4);
        QVERIFY(document.save(type == 3 ? DocumentController::Sender::None
                                        : DocumentController::Sender::Control));
    }
    // Two draft invoices move nothing; the quotation shows among the movements but not in the stock.
    QCOMPARE(m_company->stock(bolt), 15.0);
    const QList<ItemController::MovementOut> out = editor.movementsOut();
    QCOMPARE(out.size(), 1);
    QCOMPARE(out.first().quantity, 2.0);
    QCOMPARE(out.first().documentNumber, s("QUOTATION/2024-0001"));
    QCOMPARE(out.first().client->value(s("full_name")).toString(), s("Buyer"));
    QCOMPARE(out.first().date, m_company->now());
}

QTEST_GUILESS_MAIN(tst_ClientsAndItems)
#include "tst_clientsanditems.moc"
