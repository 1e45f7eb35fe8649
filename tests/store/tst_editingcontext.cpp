#include "orderbook.h"

#include <QSignalSpy>

using namespace corvanta::store;
using namespace corvanta::store::testing;
using corvanta::predicate::Predicate;
using corvanta::predicate::RecordRef;
using Op = Predicate::Operator;

class tst_EditingContext : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void insertRecordSetsKnownKeysOnly();
    void toOneKeepsToManyInverse_data();
    void toOneKeepsToManyInverse();
    void toOnePairs();
    void manyToManyBothSides();
    void cascadeAndNullify();
    void denyRefusesDeleteInUse();
    void failedSaveStoresNothing();
    void rollbackForgetsChanges();
    void mainMergesOtherContextsSaves();
    void mergeRemovesDeletedAndRefreshesLists();
    void fetchJudgesUnsavedRecordsInMemory();
    void keyPaths_data();
    void keyPaths();
    void sumFollowsStoredOrder();
    void storedPaymentSumFollowsEdits_data();
    void storedPaymentSumFollowsEdits();
    void recordClassDerivesValues();
};

void tst_EditingContext::insertRecordSetsKnownKeysOnly()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* bolt = c.insertRecord(s("Products"), {{s("name"), s("Bolt")}});
    Record* line = c.insertRecord(s("Lines"), {{s("name"), s("Bolt")},
                                               {s("price"), 2.5},
                                               {s("product"), QVariant::fromValue(bolt)},
                                               {s("no_such_key"), 42},
                                               {s("quantity"), s("12.5")}});
    QCOMPARE(line->value(s("name")).toString(), s("Bolt"));
    QCOMPARE(line->value(s("price")).toDouble(), 2.5);
    QCOMPARE(line->value(s("quantity")).toDouble(), 12.5); // converted to the attribute's type
    for (double bad : {qQNaN(), qInf(), -qInf()}) {
        line->setValue(s("price"), bad);
        QCOMPARE(line->value(s("price")).toDouble(), 2.5); // never stored
    }
    QCOMPARE(line->related(s("product")), bolt);
    QCOMPARE(bolt->relatedList(s("lines")), QList<Record*>{line});
    saveOrFail(c);

    st.reopen();
    Record* again = st.main().fetchFirst(FetchRequest(s("Lines")));
    QCOMPARE(again->valueForKeyPath(s("product.name")).toString(), s("Bolt"));
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
    Record* a = c->insertRecord(s("Orders"), {{s("number"), s("A")}});
    Record* b = c->insertRecord(s("Orders"), {{s("number"), s("B")}});
    Record* row = c->insertRecord(s("Lines"), {{s("name"), s("row")}});
    row->setRelated(s("order"), a);
    qint64 aPk = a->pk(), bPk = b->pk(), rowPk = row->pk();
    if (savedBefore) {
        saveOrFail(*c);
        st.reopen();
        c = &st.main();
        a = c->record({s("Orders"), aPk});
        b = c->record({s("Orders"), bPk});
        row = c->record({s("Lines"), rowPk});
    }
    if (listsLoadedBefore) {
        QCOMPARE(a->relatedList(s("lines")).size(), 1);
        QCOMPARE(b->relatedList(s("lines")).size(), 0);
    }
    row->setRelated(s("order"), b);
    QCOMPARE(a->relatedList(s("lines")), QList<Record*>());
    QCOMPARE(b->relatedList(s("lines")), QList<Record*>{row});

    // From the to-many side: adding moves the row back and sets its document.
    a->addRelated(s("lines"), row);
    QCOMPARE(row->related(s("order")), a);
    QCOMPARE(b->relatedList(s("lines")), QList<Record*>());
    saveOrFail(*c);

    st.reopen();
    Record* reread = st.main().record({s("Orders"), aPk});
    QCOMPARE(valuesOf(reread->relatedList(s("lines"))), QStringList{s("row")});
    QCOMPARE(st.main().record({s("Orders"), bPk})->relatedList(s("lines")).size(), 0);
}

// A one-to-one moves between holders from either side; a to-one that is its own inverse points
// both ways, and deleting one side clears the other.
void tst_EditingContext::toOnePairs()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* customer = c.insertRecord(s("Customers"), {{s("name"), s("Me")}});
    Record* home = c.insertRecord(s("Addresses"), {{s("city"), s("Home")}});
    Record* office = c.insertRecord(s("Addresses"), {{s("city"), s("Office")}});
    customer->setRelated(s("default_address"), home);
    QCOMPARE(home->related(s("default_of")), customer);
    office->setRelated(s("default_of"), customer); // from the column-less side
    QCOMPARE(customer->related(s("default_address")), office);
    QCOMPARE(home->related(s("default_of")), nullptr);
    Record* invoice = c.insertRecord(s("Orders"), {{s("number"), s("INV-1")}});
    Record* twin = c.insertRecord(s("Orders"), {{s("number"), s("INV-2")}});
    twin->setRelated(s("cancel_reference"), invoice);
    QCOMPARE(invoice->related(s("cancel_reference")), twin);
    saveOrFail(c);
    c.deleteRecord(twin);
    QCOMPARE(invoice->related(s("cancel_reference")), nullptr);
    saveOrFail(c);
    const RecordRef officeRef = office->ref(), invoiceRef = invoice->ref();
    st.reopen();
    Record* stored = st.main().fetchFirst(FetchRequest(s("Customers")));
    QCOMPARE(stored->valueForKeyPath(s("default_address.city")).toString(), s("Office"));
    QCOMPARE(st.main().record(officeRef)->related(s("default_of")), stored);
    QCOMPARE(st.main().record(invoiceRef)->value(s("cancel_reference")), QVariant());
}

void tst_EditingContext::manyToManyBothSides()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* vip = c.insertRecord(s("Tags"), {{s("name"), s("VIP")}, {s("type"), 1}});
    Record* ann = c.insertRecord(s("Customers"), {{s("name"), s("Ann")}});
    Record* bob = c.insertRecord(s("Customers"), {{s("name"), s("Bob")}});
    ann->addRelated(s("tags"), vip);
    vip->addRelated(s("customers"), bob);
    vip->addRelated(s("customers"), bob); // twice is once
    QCOMPARE(vip->relatedList(s("customers")).size(), 2);
    QCOMPARE(bob->relatedList(s("tags")), QList<Record*>{vip});
    saveOrFail(c);

    const qint64 vipPk = vip->pk(), annPk = ann->pk();
    st.reopen();
    EditingContext& c2 = st.main();
    Record* tag = c2.record({s("Tags"), vipPk});
    QCOMPARE(valuesOf(tag->relatedList(s("customers")), "name"), (QStringList{s("Ann"), s("Bob")}));
    c2.record({s("Customers"), annPk})->removeRelated(s("tags"), tag);
    QCOMPARE(valuesOf(tag->relatedList(s("customers")), "name"), QStringList{s("Bob")});
    saveOrFail(c2);
    st.reopen();
    QCOMPARE(st.main().record({s("Tags"), vipPk})->relatedList(s("customers")).size(), 1);
}

// Deleting a customer takes its addresses along and leaves its orders without a customer;
// deleting an order takes its lines and payments along and leaves its tags.
void tst_EditingContext::cascadeAndNullify()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* customer = c.insertRecord(s("Customers"), {{s("name"), s("Gone Ltd")}});
    Record* address = c.insertRecord(s("Addresses"), {{s("street"), s("Main St 1")}});
    customer->addRelated(s("addresses"), address);
    customer->setRelated(s("default_address"), address);
    Record* kept = c.insertRecord(
        s("Orders"), {{s("note"), s("Gone Ltd")}, {s("customer"), QVariant::fromValue(customer)}});
    Record* order = c.insertRecord(s("Orders"));
    for (int i = 0; i < 3; ++i)
        c.insertRecord(s("Lines"), {{s("order"), QVariant::fromValue(order)}});
    c.insertRecord(s("Payments"), {{s("order"), QVariant::fromValue(order)}, {s("amount"), 5.0}});
    order->addRelated(s("tags"), c.insertRecord(s("Tags"), {{s("name"), s("Urgent")}}));
    saveOrFail(c);
    const RecordRef keptRef = kept->ref(), customerRef = customer->ref(), orderRef = order->ref();
    st.reopen();

    EditingContext& c2 = st.main();
    c2.deleteRecord(c2.record(customerRef));
    c2.deleteRecord(c2.record(orderRef));
    saveOrFail(c2);
    QCOMPARE(c2.record(keptRef)->value(s("customer")), QVariant());
    QCOMPARE(c2.record(keptRef)->value(s("note")).toString(), s("Gone Ltd")); // its own values stay
    for (const char* entity : {"Customers", "Addresses", "Lines", "Payments"})
        QCOMPARE(c2.count(FetchRequest(s(entity))), 0);
    QCOMPARE(c2.count(FetchRequest(s("Orders"))), 1);
    QCOMPARE(c2.fetchFirst(FetchRequest(s("Tags")))->relatedList(s("orders")).size(), 0);
}

void tst_EditingContext::denyRefusesDeleteInUse()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* bolt = c.insertRecord(s("Products"), {{s("name"), s("Bolt")}});
    Record* line = c.insertRecord(s("Lines"), {{s("product"), QVariant::fromValue(bolt)}});
    saveOrFail(c);

    c.deleteRecord(bolt);
    StoreError error;
    QVERIFY(!c.save(&error));
    QCOMPARE(error.code, int(StoreError::DeleteDenied));
    QVERIFY2(error.reason.contains(QLatin1String("Lines")), qPrintable(error.reason));
    QCOMPARE(st.store().newContext()->count(FetchRequest(s("Products"))), 1);

    // Once no line uses it, the same delete goes through.
    line->setRelated(s("product"), nullptr);
    saveOrFail(c);
    QCOMPARE(c.count(FetchRequest(s("Products"))), 0);
}

void tst_EditingContext::failedSaveStoresNothing()
{
    ScratchStore st;
    EditingContext& c = st.main();
    c.insertRecord(s("Settings"), {{s("key"), s("version")}, {s("value"), s("1.0")}});
    saveOrFail(c);

    auto editor = st.store().newContext();
    Record* client = editor->insertRecord(s("Customers"), {{s("name"), s("Half Way")}});
    editor->insertRecord(s("Tags"), {{s("name"), s("Box")}});
    Record* duplicate = editor->insertRecord(s("Settings"), {{s("key"), s("version")}, {s("value"), s("9")}});
    editor->insertRecord(s("Products"), {{s("name"), s("After")}});
    QSignalSpy saved(&st.store(), &Store::didSave);

    StoreError error;
    QVERIFY(!editor->save(&error));
    QCOMPARE(error.code, int(StoreError::SaveFailed));
    QVERIFY2(error.reason.contains(QLatin1String("UNIQUE")), qPrintable(error.reason));
    QCOMPARE(saved.count(), 0);
    for (const char* entity : {"Customers", "Tags", "Products"})
        QCOMPARE(c.count(FetchRequest(s(entity))), 0);
    QCOMPARE(c.count(FetchRequest(s("Settings"))), 1);

    // The editor keeps its work; mended, it saves whole.
    QVERIFY(editor->hasChanges());
    duplicate->setValue(s("key"), s("theme"));
    saveOrFail(*editor);
    QCOMPARE(saved.count(), 1);
    QCOMPARE(c.count(FetchRequest(s("Customers"))), 1);
    QCOMPARE(c.count(FetchRequest(s("Settings"))), 2);
    QCOMPARE(c.record(client->ref())->value(s("name")).toString(), s("Half Way"));
}

void tst_EditingContext::rollbackForgetsChanges()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* doc = c.insertRecord(s("Orders"), {{s("number"), s("X-1")}});
    Record* row = c.insertRecord(s("Lines"), {{s("order"), QVariant::fromValue(doc)}});
    saveOrFail(c);

    doc->setValue(s("number"), s("X-2"));
    c.insertRecord(s("Lines"), {{s("order"), QVariant::fromValue(doc)}});
    c.deleteRecord(row);
    QVERIFY(c.hasChanges());
    c.rollback();
    QVERIFY(!c.hasChanges());
    QCOMPARE(doc->value(s("number")).toString(), s("X-1"));
    QCOMPARE(doc->relatedList(s("lines")), QList<Record*>{row});
    QVERIFY(!row->isDeleted());
}

// The main context takes in another context's save, property by property: what it changed
// itself and has not saved yet keeps its own value.
void tst_EditingContext::mainMergesOtherContextsSaves()
{
    ScratchStore st;
    EditingContext& main = st.main();
    Record* customer =
        main.insertRecord(s("Customers"), {{s("name"), s("Old Name")}, {s("tax_number"), s("1")}});
    Record* other = main.insertRecord(s("Customers"), {{s("name"), s("Other")}});
    saveOrFail(main);
    other->setValue(s("name"), s("Other (typed here)"));

    QSignalSpy changed(&main, &EditingContext::objectsDidChange);
    auto editor = st.store().newContext();
    editor->record(customer->ref())->setValue(s("name"), s("New Name"));
    editor->record(other->ref())->setValue(s("name"), s("Other (from editor)"));
    editor->record(other->ref())->setValue(s("tax_number"), s("2"));
    editor->insertRecord(s("Tags"), {{s("name"), s("Box")}});
    saveOrFail(*editor);

    QCOMPARE(customer->value(s("name")).toString(), s("New Name"));
    QCOMPARE(customer->value(s("full_name")).toString(), s("New Name")); // derived again
    QCOMPARE(other->value(s("name")).toString(), s("Other (typed here)"));
    QCOMPARE(other->value(s("tax_number")).toString(), s("2"));
    QCOMPARE(changed.count(), 1);
    const ChangeSet changes = changed.first().first().value<ChangeSet>();
    QCOMPARE(changes.entities(), (QSet<QString>{s("Customers"), s("Tags")}));
    QCOMPARE(changes.updated.size(), 2);
    QVERIFY(changes.updated.first().keys.contains(s("name")));
    QCOMPARE(changes.inserted.size(), 1);

    saveOrFail(main);
    const RecordRef otherRef = other->ref();
    st.reopen();
    const Record* stored = st.main().record(otherRef);
    QCOMPARE(stored->value(s("name")).toString(), s("Other (typed here)"));
    QCOMPARE(stored->value(s("tax_number")).toString(), s("2"));
}

void tst_EditingContext::mergeRemovesDeletedAndRefreshesLists()
{
    ScratchStore st;
    EditingContext& main = st.main();
    Record* doc = main.insertRecord(s("Orders"));
    Record* first =
        main.insertRecord(s("Lines"), {{s("name"), s("first")}, {s("order"), QVariant::fromValue(doc)}});
    Record* tag = main.insertRecord(s("Tags"), {{s("name"), s("Urgent")}});
    saveOrFail(main);
    QCOMPARE(doc->relatedList(s("lines")).size(), 1);
    QCOMPARE(doc->relatedList(s("tags")).size(), 0);

    auto editor = st.store().newContext();
    Record* theirDoc = editor->record(doc->ref());
    editor->insertRecord(s("Lines"), {{s("name"), s("second")}, {s("order"), QVariant::fromValue(theirDoc)}});
    editor->deleteRecord(editor->record(first->ref()));
    theirDoc->addRelated(s("tags"), editor->record(tag->ref()));
    saveOrFail(*editor);

    QVERIFY(first->isDeleted());
    QCOMPARE(valuesOf(doc->relatedList(s("lines"))), QStringList{s("second")});
    QCOMPARE(doc->relatedList(s("tags")), QList<Record*>{tag});
    QCOMPARE(tag->relatedList(s("orders")), QList<Record*>{doc});
}

void tst_EditingContext::fetchJudgesUnsavedRecordsInMemory()
{
    ScratchStore st;
    EditingContext& c = st.main();
    QList<Record*> docs;
    for (int i = 1; i <= 5; ++i)
        docs << c.insertRecord(s("Orders"),
                               {{s("number"), QStringLiteral("D%1").arg(i)}, {s("total"), 10.0 * i}});
    saveOrFail(c);

    // Unsaved: D6 is new and matches, D2 no longer matches, D4 is deleted, D1 now matches.
    c.insertRecord(s("Orders"), {{s("number"), s("D6")}, {s("total"), 60.0}});
    docs[1]->setValue(s("total"), 1.0);
    c.deleteRecord(docs[3]);
    docs[0]->setValue(s("total"), 99.0);
    const Predicate over15 = where(s("total"), Op::Greater, 15.0);
    FetchRequest request(s("Orders"), over15, {SortDescriptor{s("total"), false}});
    QCOMPARE(valuesOf(c.fetch(request), "number"), (QStringList{s("D1"), s("D6"), s("D5"), s("D3")}));
    QCOMPARE(c.count(request), 4);
    request.offset = 1;
    request.limit = 2;
    QCOMPARE(valuesOf(c.fetch(request), "number"), (QStringList{s("D6"), s("D5")}));

    // Asked for what is stored only, the unsaved changes do not count (the records keep
    // their unsaved values).
    request = FetchRequest(s("Orders"), over15, {SortDescriptor{s("total"), false}});
    request.includesPendingChanges = false;
    QCOMPARE(valuesOf(c.fetch(request), "number"), (QStringList{s("D5"), s("D4"), s("D3"), s("D2")}));
    QCOMPARE(c.count(request), 4);

    // A tag added but not saved.
    Record* tag = c.insertRecord(s("Tags"), {{s("name"), s("Urgent")}});
    docs[2]->addRelated(s("tags"), tag);
    const FetchRequest tagged(s("Orders"),
                              Predicate::compare(s("tags"), Op::Equal, QVariant::fromValue(tag->ref()), {},
                                                 Predicate::Modifier::Any));
    QCOMPARE(valuesOf(c.fetch(tagged), "number"), QStringList{s("D3")});
    QCOMPARE(c.count(tagged), 1);
}

void tst_EditingContext::keyPaths_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<QString>("keyPath");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("to-one chain") << s("Orders") << s("customer.default_address.street")
                                  << QVariant(s("Main St 1"));
    QTest::newRow("to-one chain through nothing")
        << s("Orders") << s("cancel_reference.number") << QVariant();
    QTest::newRow("to-many values") << s("Orders") << s("lines.name")
                                    << QVariant(QVariantList{s("a"), s("b"), s("c")});
    QTest::newRow("sum") << s("Orders") << s("payments.@sum.amount") << QVariant(70.0);
    QTest::newRow("max") << s("Orders") << s("lines.@max.quantity") << QVariant(3.0);
    QTest::newRow("sum of empty is zero") << s("Products") << s("deliveries.@sum.quantity") << QVariant(0.0);
    QTest::newRow("through a to-many then to-one")
        << s("Customers") << s("orders.number") << QVariant(QVariantList{s("INV-7")});
    QTest::newRow("unknown key") << s("Orders") << s("customer.no_such_key") << QVariant();
}

void tst_EditingContext::keyPaths()
{
    QFETCH(QString, entity);
    QFETCH(QString, keyPath);
    QFETCH(QVariant, expected);
    ScratchStore st;
    EditingContext& c = st.main();
    Record* client = c.insertRecord(s("Customers"), {{s("name"), s("Acme")}});
    Record* address = c.insertRecord(
        s("Addresses"), {{s("street"), s("Main St 1")}, {s("customer"), QVariant::fromValue(client)}});
    client->setRelated(s("default_address"), address);
    Record* doc = c.insertRecord(s("Orders"),
                                 {{s("number"), s("INV-7")}, {s("customer"), QVariant::fromValue(client)}});
    int quantity = 0;
    for (const char* name : {"a", "b", "c"})
        c.insertRecord(s("Lines"), {{s("name"), s(name)},
                                    {s("quantity"), double(++quantity)},
                                    {s("order"), QVariant::fromValue(doc)}});
    for (double amount : {30.0, 40.0})
        c.insertRecord(s("Payments"), {{s("amount"), amount}, {s("order"), QVariant::fromValue(doc)}});
    c.insertRecord(s("Products"), {{s("name"), s("Bolt")}});
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
    Record* doc = c.insertRecord(s("Orders"));
    const QList<double> amounts{1e16, 1.0, -1e16, 1.0};
    for (double amount : amounts)
        c.insertRecord(s("Payments"), {{s("amount"), amount}, {s("order"), QVariant::fromValue(doc)}});
    double expected = 0.0;
    for (double amount : amounts)
        expected += amount;
    doc->setValue(s("total"), expected);
    saveOrFail(c);
    QCOMPARE(doc->valueForKeyPath(s("payments.@sum.amount")).toDouble(), expected);
    QCOMPARE(c.count(FetchRequest(s("Orders"), totalAgainstPayments(Op::Equal))), 1);
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
    Record* a = c.insertRecord(s("Orders"), {{s("number"), s("A")}, {s("total"), 50.0}});
    Record* b = c.insertRecord(s("Orders"), {{s("number"), s("B")}, {s("total"), 1.0}});
    // A payment written before its document within one save still counts.
    Record* early = c.insertRecord(s("Payments"), {{s("amount"), 20.0}});
    Record* c2 = c.insertRecord(s("Orders"), {{s("number"), s("C")}, {s("total"), 99.0}});
    early->setRelated(s("order"), c2);
    Record* payment =
        c.insertRecord(s("Payments"), {{s("amount"), 30.0}, {s("order"), QVariant::fromValue(a)}});
    c.insertRecord(s("Payments"), {{s("amount"), 20.0}, {s("order"), QVariant::fromValue(a)}});
    saveOrFail(c);

    if (edit == QLatin1String("amount")) {
        payment->setValue(s("amount"), 10.0);
        b->setValue(s("total"), 0.0);
    } else if (edit == QLatin1String("move")) {
        payment->setRelated(s("order"), b);
        b->setValue(s("total"), 30.0);
    } else if (edit == QLatin1String("delete")) {
        c.deleteRecord(payment);
    } else if (edit == QLatin1String("delete document")) {
        c.deleteRecord(a);
        c.deleteRecord(b);
    } else if (edit == QLatin1String("add elsewhere")) {
        auto editor = st.store().newContext();
        editor->record(b->ref())->setValue(s("total"), 5.0);
        editor->insertRecord(s("Payments"),
                             {{s("amount"), 5.0}, {s("order"), QVariant::fromValue(b->ref())}});
        saveOrFail(*editor);
    }
    saveOrFail(c);
    auto fresh = st.store().newContext();
    FetchRequest request(s("Orders"), totalAgainstPayments(Op::Equal), {SortDescriptor{s("number")}});
    QCOMPARE(valuesOf(fresh->fetch(request), "number"), paid);
    // The stored sum of every document is the sum of its payments.
    for (Record* d : fresh->fetch(FetchRequest(s("Orders")))) {
        const Predicate same = Predicate::andOf(
            {where(s("self"), Op::Equal, QVariant::fromValue(d->ref())),
             where(s("payments.@sum.amount"), Op::Equal, d->valueForKeyPath(s("payments.@sum.amount")))});
        QCOMPARE(fresh->count(FetchRequest(s("Orders"), same)), 1);
    }
}

// The record class derives its value whenever the record is loaded, inserted or one of the
// keys it depends on is set, and the derived value is stored for fetches to select by.
void tst_EditingContext::recordClassDerivesValues()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* ann = c.insertRecord(s("Customers"),
                                 {{s("kind"), 2}, {s("first_name"), s("Ann")}, {s("last_name"), s("Lee")}});
    QVERIFY(dynamic_cast<CustomersRecord*>(ann));
    QCOMPARE(ann->value(s("full_name")).toString(), s("Ann Lee"));
    ann->setValue(s("last_name"), s("Smith"));
    QCOMPARE(ann->value(s("full_name")).toString(), s("Ann Smith"));
    saveOrFail(c);
    QCOMPARE(c.count(FetchRequest(s("Customers"), where(s("full_name"), Op::Equal, s("Ann Smith")))), 1);
    QVERIFY(!dynamic_cast<CustomersRecord*>(c.insertRecord(s("Tags")))); // other entities stay plain
}

QTEST_GUILESS_MAIN(tst_EditingContext)
#include "tst_editingcontext.moc"
