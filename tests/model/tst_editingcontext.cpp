#include "model/clientsrecord.h"
#include "storetestsupport.h"

#include <QSignalSpy>

using namespace corvanta::model;
using namespace corvanta::model::testing;
using corvanta::predicate::Predicate;
using corvanta::predicate::RecordRef;
using Op = Predicate::Operator;

namespace {

QStringList names(const QList<Record*>& records, const char* key = "name")
{
    QStringList result;
    for (const Record* r : records)
        result << r->value(s(key)).toString();
    return result;
}

} // namespace

class tst_EditingContext : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void insertRecordSetsKnownKeysOnly();
    void toOneKeepsToManyInverse_data();
    void toOneKeepsToManyInverse();
    void oneToOneMovesBetweenHolders();
    void symmetricReferencePointsBothWays();
    void manyToManyBothSides();
    void cascadeDeletesMembers();
    void nullifyClearsOtherEnd();
    void denyRefusesDeleteInUse();
    void failedSaveStoresNothing();
    void rollbackForgetsChanges();
    void mainMergesOtherContextsSaves();
    void localChangeWinsPropertyByProperty();
    void mergeRemovesDeletedAndRefreshesLists();
    void fetchJudgesUnsavedRecordsInMemory();
    void keyPaths_data();
    void keyPaths();
    void sumFollowsStoredOrder();
    void storedPaymentSumFollowsEdits_data();
    void storedPaymentSumFollowsEdits();
    void fullName_data();
    void fullName();
    void contactListsJoin();
};

void tst_EditingContext::insertRecordSetsKnownKeysOnly()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* unit = c.insertRecord(s("Units"), {{s("name"), s("Each")}});
    Record* item = c.insertRecord(s("Items"), {{s("name"), s("Bolt")},
                                               {s("unit_price"), 2.5},
                                               {s("unit"), QVariant::fromValue(unit)},
                                               {s("no_such_key"), 42},
                                               {s("stock_current"), s("12.5")}});
    QCOMPARE(item->value(s("name")).toString(), s("Bolt"));
    QCOMPARE(item->value(s("unit_price")).toDouble(), 2.5);
    QCOMPARE(item->value(s("stock_current")).toDouble(), 12.5); // converted to the attribute's type
    for (double bad : {qQNaN(), qInf(), -qInf()}) {
        item->setValue(s("unit_price"), bad);
        QCOMPARE(item->value(s("unit_price")).toDouble(), 2.5); // never stored
    }
    QCOMPARE(item->related(s("unit")), unit);
    QCOMPARE(unit->relatedList(s("items")), QList<Record*>{item});
    saveOrFail(c);

    st.reopen();
    Record* again = st.main().fetchFirst(FetchRequest(s("Items")));
    QCOMPARE(again->valueForKeyPath(s("unit.name")).toString(), s("Each"));
}

void tst_EditingContext::toOneKeepsToManyInverse_data()
{
    QTest::addColumn<bool>("listsLoadedBefore");
    QTest::addColumn<bool>("savedBefore");
    QTest::newRow("lists loaded, new records") << true << false;
    QTest::newRow("lists not loaded, new records") << false << false;
    QTest::newRow("lists loaded, stored records") << true << true;
    QTest::newRow("lists not loaded, stored records") << false << true;
}

void tst_EditingContext::toOneKeepsToManyInverse()
{
    QFETCH(bool, listsLoadedBefore);
    QFETCH(bool, savedBefore);
    ScratchStore st;
    EditingContext* c = &st.main();
    Record* a = c->insertRecord(s("Documents"), {{s("number_formatted"), s("A")}});
    Record* b = c->insertRecord(s("Documents"), {{s("number_formatted"), s("B")}});
    Record* row = c->insertRecord(s("DocumentRows"), {{s("name"), s("row")}});
    row->setRelated(s("document"), a);
    qint64 aPk = a->pk(), bPk = b->pk(), rowPk = row->pk();
    if (savedBefore) {
        saveOrFail(*c);
        st.reopen();
        c = &st.main();
        a = c->record({s("Documents"), aPk});
        b = c->record({s("Documents"), bPk});
        row = c->record({s("DocumentRows"), rowPk});
    }
    if (listsLoadedBefore) {
        QCOMPARE(a->relatedList(s("rows")).size(), 1);
        QCOMPARE(b->relatedList(s("rows")).size(), 0);
    }
    row->setRelated(s("document"), b);
    QCOMPARE(a->relatedList(s("rows")), QList<Record*>());
    QCOMPARE(b->relatedList(s("rows")), QList<Record*>{row});

    // From the to-many side: adding moves the row back and sets its document.
    a->addRelated(s("rows"), row);
    QCOMPARE(row->related(s("document")), a);
    QCOMPARE(b->relatedList(s("rows")), QList<Record*>());
    saveOrFail(*c);

    st.reopen();
    Record* reread = st.main().record({s("Documents"), aPk});
    QCOMPARE(names(reread->relatedList(s("rows"))), QStringList{s("row")});
    QCOMPARE(st.main().record({s("Documents"), bPk})->relatedList(s("rows")).size(), 0);
}

void tst_EditingContext::oneToOneMovesBetweenHolders()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* company = c.insertRecord(s("MyCompany"), {{s("name"), s("Me")}});
    Record* usd = c.insertRecord(s("Currencies"), {{s("code"), s("USD")}});
    Record* eur = c.insertRecord(s("Currencies"), {{s("code"), s("EUR")}});
    company->setRelated(s("default_currency"), usd);
    QCOMPARE(usd->related(s("my_company_default_currency")), company);
    // Set from the column-less side: the company now points at EUR and USD is no default.
    eur->setRelated(s("my_company_default_currency"), company);
    QCOMPARE(company->related(s("default_currency")), eur);
    QCOMPARE(usd->related(s("my_company_default_currency")), nullptr);
    saveOrFail(c);
    const qint64 eurPk = eur->pk();
    st.reopen();
    Record* stored = st.main().fetchFirst(FetchRequest(s("MyCompany")));
    QCOMPARE(stored->valueForKeyPath(s("default_currency.code")).toString(), s("EUR"));
    QCOMPARE(st.main().record({s("Currencies"), eurPk})->related(s("my_company_default_currency")), stored);
}

void tst_EditingContext::symmetricReferencePointsBothWays()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* invoice = c.insertRecord(s("Documents"), {{s("number_formatted"), s("INV-1")}});
    Record* twin = c.insertRecord(s("Documents"), {{s("number_formatted"), s("INV-2")}});
    twin->setRelated(s("cancel_reference"), invoice);
    QCOMPARE(invoice->related(s("cancel_reference")), twin);
    saveOrFail(c);

    // Deleting one side clears the other's reference.
    c.deleteRecord(twin);
    QCOMPARE(invoice->related(s("cancel_reference")), nullptr);
    saveOrFail(c);
    const qint64 pk = invoice->pk();
    st.reopen();
    QCOMPARE(st.main().record({s("Documents"), pk})->value(s("cancel_reference")), QVariant());
}

void tst_EditingContext::manyToManyBothSides()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* vip = c.insertRecord(s("Categories"), {{s("name"), s("VIP")}, {s("type"), 1}});
    Record* ann = c.insertRecord(s("Clients"), {{s("company_name"), s("Ann")}});
    Record* bob = c.insertRecord(s("Clients"), {{s("company_name"), s("Bob")}});
    ann->addRelated(s("tags"), vip);
    vip->addRelated(s("clients"), bob);
    vip->addRelated(s("clients"), bob); // twice is once
    QCOMPARE(vip->relatedList(s("clients")).size(), 2);
    QCOMPARE(bob->relatedList(s("tags")), QList<Record*>{vip});
    saveOrFail(c);

    const qint64 vipPk = vip->pk(), annPk = ann->pk();
    st.reopen();
    EditingContext& c2 = st.main();
    Record* tag = c2.record({s("Categories"), vipPk});
    QCOMPARE(names(tag->relatedList(s("clients")), "company_name"), (QStringList{s("Ann"), s("Bob")}));
    c2.record({s("Clients"), annPk})->removeRelated(s("tags"), tag);
    QCOMPARE(names(tag->relatedList(s("clients")), "company_name"), QStringList{s("Bob")});
    saveOrFail(c2);
    st.reopen();
    QCOMPARE(st.main().record({s("Categories"), vipPk})->relatedList(s("clients")).size(), 1);
}

void tst_EditingContext::cascadeDeletesMembers()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* doc = c.insertRecord(s("Documents"));
    for (int i = 0; i < 3; ++i)
        c.insertRecord(s("DocumentRows"), {{s("document"), QVariant::fromValue(doc)}});
    c.insertRecord(s("Payments"), {{s("document"), QVariant::fromValue(doc)}, {s("amount"), 5.0}});
    c.insertRecord(s("DocumentSummaries"), {{s("document"), QVariant::fromValue(doc)}});
    Record* tag = c.insertRecord(s("Categories"), {{s("name"), s("Invoice")}});
    doc->addRelated(s("tags"), tag);
    saveOrFail(c);
    st.reopen();

    EditingContext& c2 = st.main();
    c2.deleteRecord(c2.fetchFirst(FetchRequest(s("Documents"))));
    saveOrFail(c2);
    for (const char* entity : {"Documents", "DocumentRows", "Payments", "DocumentSummaries"})
        QCOMPARE(c2.count(FetchRequest(s(entity))), 0);
    Record* keptTag = c2.fetchFirst(FetchRequest(s("Categories")));
    QVERIFY(keptTag);
    QCOMPARE(keptTag->relatedList(s("documents")).size(), 0);
}

void tst_EditingContext::nullifyClearsOtherEnd()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* client = c.insertRecord(s("Clients"), {{s("company_name"), s("Gone Ltd")}});
    Record* address = c.insertRecord(s("Addresses"), {{s("street"), s("Main St 1")}});
    client->addRelated(s("addresses"), address);
    client->setRelated(s("default_address"), address);
    Record* doc = c.insertRecord(s("Documents"), {{s("client_full_name"), s("Gone Ltd")}});
    doc->setRelated(s("client"), client);
    saveOrFail(c);
    const qint64 docPk = doc->pk();
    st.reopen();

    EditingContext& c2 = st.main();
    c2.deleteRecord(c2.fetchFirst(FetchRequest(s("Clients"))));
    saveOrFail(c2);
    Record* kept = c2.record({s("Documents"), docPk});
    QCOMPARE(kept->value(s("client")), QVariant());
    QCOMPARE(kept->value(s("client_full_name")).toString(), s("Gone Ltd")); // the snapshot stays
    QCOMPARE(c2.count(FetchRequest(s("Addresses"))), 0);                    // addresses go with it
}

void tst_EditingContext::denyRefusesDeleteInUse()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* tax = c.insertRecord(s("Taxes"), {{s("name"), s("10%")}, {s("rate1"), 10.0}});
    Record* row = c.insertRecord(s("DocumentRows"), {{s("tax"), QVariant::fromValue(tax)}});
    saveOrFail(c);

    c.deleteRecord(tax);
    StoreError error;
    QVERIFY(!c.save(&error));
    QCOMPARE(error.code, int(StoreError::DeleteDenied));
    QVERIFY2(error.reason.contains(QLatin1String("DocumentRows")), qPrintable(error.reason));
    QCOMPARE(st.store().newContext()->count(FetchRequest(s("Taxes"))), 1);

    // Once no row uses it, the same delete goes through.
    row->setRelated(s("tax"), nullptr);
    saveOrFail(c);
    QCOMPARE(c.count(FetchRequest(s("Taxes"))), 0);
}

void tst_EditingContext::failedSaveStoresNothing()
{
    ScratchStore st;
    EditingContext& c = st.main();
    c.insertRecord(s("Settings"), {{s("key"), s("version")}, {s("value"), s("1.0")}});
    saveOrFail(c);

    auto editor = st.store().newContext();
    Record* client = editor->insertRecord(s("Clients"), {{s("company_name"), s("Half Way")}});
    editor->insertRecord(s("Units"), {{s("name"), s("Box")}});
    Record* duplicate = editor->insertRecord(s("Settings"), {{s("key"), s("version")}, {s("value"), s("9")}});
    editor->insertRecord(s("Taxes"), {{s("name"), s("After")}});
    QSignalSpy saved(&st.store(), &Store::didSave);

    StoreError error;
    QVERIFY(!editor->save(&error));
    QCOMPARE(error.code, int(StoreError::SaveFailed));
    QVERIFY2(error.reason.contains(QLatin1String("UNIQUE")), qPrintable(error.reason));
    QCOMPARE(saved.count(), 0);
    for (const char* entity : {"Clients", "Units", "Taxes"})
        QCOMPARE(c.count(FetchRequest(s(entity))), 0);
    QCOMPARE(c.count(FetchRequest(s("Settings"))), 1);

    // The editor keeps its work; mended, it saves whole.
    QVERIFY(editor->hasChanges());
    duplicate->setValue(s("key"), s("first_name_position"));
    saveOrFail(*editor);
    QCOMPARE(saved.count(), 1);
    QCOMPARE(c.count(FetchRequest(s("Clients"))), 1);
    QCOMPARE(c.count(FetchRequest(s("Settings"))), 2);
    QCOMPARE(c.record(client->ref())->value(s("company_name")).toString(), s("Half Way"));
}

void tst_EditingContext::rollbackForgetsChanges()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* doc = c.insertRecord(s("Documents"), {{s("number_formatted"), s("X-1")}});
    Record* row = c.insertRecord(s("DocumentRows"), {{s("document"), QVariant::fromValue(doc)}});
    saveOrFail(c);

    doc->setValue(s("number_formatted"), s("X-2"));
    c.insertRecord(s("DocumentRows"), {{s("document"), QVariant::fromValue(doc)}});
    c.deleteRecord(row);
    QVERIFY(c.hasChanges());
    c.rollback();
    QVERIFY(!c.hasChanges());
    QCOMPARE(doc->value(s("number_formatted")).toString(), s("X-1"));
    QCOMPARE(doc->relatedList(s("rows")), QList<Record*>{row});
    QVERIFY(!row->isDeleted());
}

void tst_EditingContext::mainMergesOtherContextsSaves()
{
    ScratchStore st;
    EditingContext& main = st.main();
    Record* client = main.insertRecord(s("Clients"), {{s("company_name"), s("Old Name")}});
    saveOrFail(main);

    QSignalSpy changed(&main, &EditingContext::objectsDidChange);
    auto editor = st.store().newContext();
    Record* copy = editor->record(client->ref());
    copy->setValue(s("company_name"), s("New Name"));
    editor->insertRecord(s("Units"), {{s("name"), s("Box")}});
    saveOrFail(*editor);

    QCOMPARE(client->value(s("company_name")).toString(), s("New Name"));
    QCOMPARE(client->value(s("full_name")).toString(), s("New Name"));
    QVERIFY(!main.hasChanges());
    QCOMPARE(changed.count(), 1);
    const ChangeSet changes = changed.first().first().value<ChangeSet>();
    QCOMPARE(changes.entities(), (QSet<QString>{s("Clients"), s("Units")}));
    QCOMPARE(changes.updated.size(), 1);
    QVERIFY(changes.updated.first().keys.contains(s("company_name")));
    QCOMPARE(changes.inserted.size(), 1);
}

void tst_EditingContext::localChangeWinsPropertyByProperty()
{
    ScratchStore st;
    EditingContext& main = st.main();
    Record* client =
        main.insertRecord(s("Clients"), {{s("company_name"), s("Acme")}, {s("tax_number"), s("1")}});
    saveOrFail(main);

    client->setValue(s("company_name"), s("Acme (typed here)"));
    auto editor = st.store().newContext();
    Record* copy = editor->record(client->ref());
    copy->setValue(s("company_name"), s("Acme (from editor)"));
    copy->setValue(s("tax_number"), s("2"));
    saveOrFail(*editor);

    QCOMPARE(client->value(s("company_name")).toString(), s("Acme (typed here)"));
    QCOMPARE(client->value(s("tax_number")).toString(), s("2"));
    saveOrFail(main);
    st.reopen();
    Record* stored = st.main().fetchFirst(FetchRequest(s("Clients")));
    QCOMPARE(stored->value(s("company_name")).toString(), s("Acme (typed here)"));
    QCOMPARE(stored->value(s("tax_number")).toString(), s("2"));
}

void tst_EditingContext::mergeRemovesDeletedAndRefreshesLists()
{
    ScratchStore st;
    EditingContext& main = st.main();
    Record* doc = main.insertRecord(s("Documents"));
    Record* first = main.insertRecord(s("DocumentRows"),
                                      {{s("name"), s("first")}, {s("document"), QVariant::fromValue(doc)}});
    Record* tag = main.insertRecord(s("Categories"), {{s("name"), s("Urgent")}});
    saveOrFail(main);
    QCOMPARE(doc->relatedList(s("rows")).size(), 1);
    QCOMPARE(doc->relatedList(s("tags")).size(), 0);

    auto editor = st.store().newContext();
    Record* theirDoc = editor->record(doc->ref());
    editor->insertRecord(s("DocumentRows"),
                         {{s("name"), s("second")}, {s("document"), QVariant::fromValue(theirDoc)}});
    editor->deleteRecord(editor->record(first->ref()));
    theirDoc->addRelated(s("tags"), editor->record(tag->ref()));
    saveOrFail(*editor);

    QVERIFY(first->isDeleted());
    QCOMPARE(names(doc->relatedList(s("rows"))), QStringList{s("second")});
    QCOMPARE(doc->relatedList(s("tags")), QList<Record*>{tag});
    QCOMPARE(tag->relatedList(s("documents")), QList<Record*>{doc});
}

void tst_EditingContext::fetchJudgesUnsavedRecordsInMemory()
{
    ScratchStore st;
    EditingContext& c = st.main();
    QList<Record*> docs;
    for (int i = 1; i <= 5; ++i)
        docs << c.insertRecord(s("Documents"), {{s("number_formatted"), QStringLiteral("D%1").arg(i)},
                                                {s("sum_total"), 10.0 * i}});
    saveOrFail(c);

    // Unsaved: D6 is new and matches, D2 no longer matches, D4 is deleted, D1 now matches.
    c.insertRecord(s("Documents"), {{s("number_formatted"), s("D6")}, {s("sum_total"), 60.0}});
    docs[1]->setValue(s("sum_total"), 1.0);
    c.deleteRecord(docs[3]);
    docs[0]->setValue(s("sum_total"), 99.0);
    const Predicate over15 = where(s("sum_total"), Op::Greater, 15.0);
    FetchRequest request(s("Documents"), over15, {SortDescriptor{s("sum_total"), false}});
    QCOMPARE(names(c.fetch(request), "number_formatted"), (QStringList{s("D1"), s("D6"), s("D5"), s("D3")}));
    QCOMPARE(c.count(request), 4);
    request.offset = 1;
    request.limit = 2;
    QCOMPARE(names(c.fetch(request), "number_formatted"), (QStringList{s("D6"), s("D5")}));

    // Asked for what is stored only, the unsaved changes do not count (the records keep
    // their unsaved values).
    request = FetchRequest(s("Documents"), over15, {SortDescriptor{s("sum_total"), false}});
    request.includesPendingChanges = false;
    QCOMPARE(names(c.fetch(request), "number_formatted"), (QStringList{s("D5"), s("D4"), s("D3"), s("D2")}));
    QCOMPARE(c.count(request), 4);

    // A tag added but not saved.
    Record* tag = c.insertRecord(s("Categories"), {{s("name"), s("Urgent")}});
    docs[2]->addRelated(s("tags"), tag);
    const FetchRequest tagged(s("Documents"),
                              Predicate::compare(s("tags"), Op::Equal, QVariant::fromValue(tag->ref()), {},
                                                 Predicate::Modifier::Any));
    QCOMPARE(names(c.fetch(tagged), "number_formatted"), QStringList{s("D3")});
    QCOMPARE(c.count(tagged), 1);
}

void tst_EditingContext::keyPaths_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<QString>("keyPath");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("attribute") << s("Documents") << s("number_formatted") << QVariant(s("INV-7"));
    QTest::newRow("to-one chain") << s("Documents") << s("client.default_address.street")
                                  << QVariant(s("Main St 1"));
    QTest::newRow("to-one chain through nothing") << s("Documents") << s("bank.line1") << QVariant();
    QTest::newRow("to-many values") << s("Documents") << s("rows.name")
                                    << QVariant(QVariantList{s("a"), s("b"), s("c")});
    QTest::newRow("sum") << s("Documents") << s("payments.@sum.amount") << QVariant(70.0);
    QTest::newRow("count") << s("Documents") << s("rows.@count") << QVariant(qint64(3));
    QTest::newRow("max") << s("Documents") << s("rows.@max.quantity") << QVariant(3.0);
    QTest::newRow("sum of empty is zero") << s("Items") << s("warehouse.@sum.quantity") << QVariant(0.0);
    QTest::newRow("through a to-many then to-one")
        << s("Clients") << s("documents.number_formatted") << QVariant(QVariantList{s("INV-7")});
    QTest::newRow("unknown key") << s("Documents") << s("client.no_such_key") << QVariant();
}

void tst_EditingContext::keyPaths()
{
    QFETCH(QString, entity);
    QFETCH(QString, keyPath);
    QFETCH(QVariant, expected);
    ScratchStore st;
    EditingContext& c = st.main();
    Record* client = c.insertRecord(s("Clients"), {{s("company_name"), s("Acme")}});
    Record* address = c.insertRecord(
        s("Addresses"), {{s("street"), s("Main St 1")}, {s("client"), QVariant::fromValue(client)}});
    client->setRelated(s("default_address"), address);
    Record* doc = c.insertRecord(
        s("Documents"), {{s("number_formatted"), s("INV-7")}, {s("client"), QVariant::fromValue(client)}});
    int quantity = 0;
    for (const char* name : {"a", "b", "c"})
        c.insertRecord(s("DocumentRows"), {{s("name"), s(name)},
                                           {s("quantity"), double(++quantity)},
                                           {s("document"), QVariant::fromValue(doc)}});
    for (double amount : {30.0, 40.0})
        c.insertRecord(s("Payments"), {{s("amount"), amount}, {s("document"), QVariant::fromValue(doc)}});
    c.insertRecord(s("Items"), {{s("name"), s("Bolt")}});
    saveOrFail(c);
    st.reopen();

    Record* r = st.main().fetchFirst(FetchRequest(entity));
    QVERIFY(r);
    const QVariant actual = r->valueForKeyPath(keyPath);
    if (expected.isNull())
        QVERIFY2(actual.isNull(), qPrintable(actual.toString()));
    else
        QCOMPARE(actual, expected);
    QCOMPARE(r->valueForKeyPath(s("self")).value<RecordRef>(), r->ref());
}

void tst_EditingContext::sumFollowsStoredOrder()
{
    // Floating-point addition is not associative: the sum must add the payments in the
    // order they were stored, in memory and in SQL alike.
    ScratchStore st;
    EditingContext& c = st.main();
    Record* doc = c.insertRecord(s("Documents"));
    const QList<double> amounts{1e16, 1.0, -1e16, 1.0};
    for (double amount : amounts)
        c.insertRecord(s("Payments"), {{s("amount"), amount}, {s("document"), QVariant::fromValue(doc)}});
    double expected = 0.0;
    for (double amount : amounts)
        expected += amount;
    doc->setValue(s("sum_total"), expected);
    saveOrFail(c);
    QCOMPARE(doc->valueForKeyPath(s("payments.@sum.amount")).toDouble(), expected);
    QCOMPARE(c.count(FetchRequest(
                 s("Documents"),
                 Predicate::comparison(corvanta::predicate::Expression::keyPath(s("sum_total")), Op::Equal,
                                       corvanta::predicate::Expression::keyPath(s("payments.@sum.amount"))))),
             1);
}

void tst_EditingContext::storedPaymentSumFollowsEdits_data()
{
    QTest::addColumn<QString>("edit");
    QTest::addColumn<QStringList>("paid"); // documents whose total equals their payments afterwards
    QTest::newRow("nothing changed") << s("none") << QStringList{s("A")};
    QTest::newRow("amount changed") << s("amount") << QStringList{s("B")};
    QTest::newRow("payment moved to another document") << s("move") << QStringList{s("B")};
    QTest::newRow("payment deleted") << s("delete") << QStringList{};
    QTest::newRow("document deleted with its payments") << s("delete document") << QStringList{};
    QTest::newRow("payment added in another context") << s("add elsewhere") << QStringList{s("A"), s("B")};
}

void tst_EditingContext::storedPaymentSumFollowsEdits()
{
    QFETCH(QString, edit);
    QFETCH(QStringList, paid);
    ScratchStore st;
    EditingContext& c = st.main();
    Record* a = c.insertRecord(s("Documents"), {{s("number_formatted"), s("A")}, {s("sum_total"), 50.0}});
    Record* b = c.insertRecord(s("Documents"), {{s("number_formatted"), s("B")}, {s("sum_total"), 1.0}});
    // A payment written before its document within one save still counts.
    Record* early = c.insertRecord(s("Payments"), {{s("amount"), 20.0}});
    Record* c2 = c.insertRecord(s("Documents"), {{s("number_formatted"), s("C")}, {s("sum_total"), 99.0}});
    early->setRelated(s("document"), c2);
    Record* payment =
        c.insertRecord(s("Payments"), {{s("amount"), 30.0}, {s("document"), QVariant::fromValue(a)}});
    c.insertRecord(s("Payments"), {{s("amount"), 20.0}, {s("document"), QVariant::fromValue(a)}});
    saveOrFail(c);

    if (edit == QLatin1String("amount")) {
        payment->setValue(s("amount"), 10.0);
        b->setValue(s("sum_total"), 0.0);
    } else if (edit == QLatin1String("move")) {
        payment->setRelated(s("document"), b);
        b->setValue(s("sum_total"), 30.0);
    } else if (edit == QLatin1String("delete")) {
        c.deleteRecord(payment);
    } else if (edit == QLatin1String("delete document")) {
        c.deleteRecord(a);
        c.deleteRecord(b);
    } else if (edit == QLatin1String("add elsewhere")) {
        auto editor = st.store().newContext();
        editor->record(b->ref())->setValue(s("sum_total"), 5.0);
        editor->insertRecord(s("Payments"),
                             {{s("amount"), 5.0}, {s("document"), QVariant::fromValue(b->ref())}});
        saveOrFail(*editor);
    }
    saveOrFail(c);
    const Predicate rule =
        Predicate::comparison(corvanta::predicate::Expression::keyPath(s("sum_total")), Op::Equal,
                              corvanta::predicate::Expression::keyPath(s("payments.@sum.amount")));
    auto fresh = st.store().newContext();
    FetchRequest request(s("Documents"), rule, {SortDescriptor{s("number_formatted")}});
    QCOMPARE(names(fresh->fetch(request), "number_formatted"), paid);
    // The stored sum of every document is the sum of its payments.
    for (Record* d : fresh->fetch(FetchRequest(s("Documents")))) {
        const Predicate same = Predicate::andOf(
            {where(s("self"), Op::Equal, QVariant::fromValue(d->ref())),
             where(s("payments.@sum.amount"), Op::Equal, d->valueForKeyPath(s("payments.@sum.amount")))});
        QCOMPARE(fresh->count(FetchRequest(s("Documents"), same)), 1);
    }
}

void tst_EditingContext::fullName_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("company");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("last");
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("expected");
    QTest::newRow("company") << 0 << s("Acme Kft.") << s("Ann") << s("Lee") << 0 << s("Acme Kft.");
    QTest::newRow("supplier") << 1 << s(" Parts Inc ") << s("") << s("") << 1 << s("Parts Inc");
    QTest::newRow("individual, first name first") << 2 << s("") << s("Ann") << s("Lee") << 0 << s("Ann Lee");
    QTest::newRow("individual, last name first") << 2 << s("") << s("Ann") << s("Lee") << 1 << s("Lee Ann");
    QTest::newRow("individual without first name") << 2 << s("") << s("") << s("Lee") << 0 << s("Lee");
    QTest::newRow("individual with new lines") << 2 << s("") << s("\nAnn") << s("Lee\n") << 0 << s("Ann Lee");
    QTest::newRow("individual without names") << 2 << s("Ignored") << s("") << s("") << 0 << s("");
}

void tst_EditingContext::fullName()
{
    QFETCH(int, type);
    QFETCH(QString, company);
    QFETCH(QString, first);
    QFETCH(QString, last);
    QFETCH(int, position);
    QFETCH(QString, expected);
    ScratchStore st;
    EditingContext& c = st.main();
    c.insertRecord(s("Settings"), {{s("key"), s("first_name_position")}, {s("value"), position}});
    saveOrFail(c);
    Record* client = c.insertRecord(
        s("Clients"),
        {{s("type"), type}, {s("company_name"), company}, {s("first_name"), first}, {s("last_name"), last}});
    QCOMPARE(client->value(s("full_name")).toString(), expected);
    saveOrFail(c);
    // Stored, so that fetches can select and sort by it.
    QCOMPARE(c.count(FetchRequest(s("Clients"), where(s("full_name"), Op::Equal, expected))), 1);
}

void tst_EditingContext::contactListsJoin()
{
    ScratchStore st;
    Record* client = st.main().insertRecord(s("Clients"));
    client->setValue(s("emails"), QStringList{s("a@x.hu"), s("b@x.hu"), s("c@x.hu")});
    client->setValue(s("phones"), QVariantList{s("+36 1"), s("+36 2")});
    QCOMPARE(client->value(s("emails")).toString(), s("a@x.hu,b@x.hu,c@x.hu"));
    QCOMPARE(client->value(s("phones")).toString(), s("+36 1,+36 2"));
    client->setValue(s("emails"), s("only@x.hu"));
    QCOMPARE(client->value(s("emails")).toString(), s("only@x.hu"));
}

QTEST_GUILESS_MAIN(tst_EditingContext)
#include "tst_editingcontext.moc"
