#include "orderbook.h"

#include <QSignalSpy>

using namespace corvanta::store;
using namespace corvanta::store::testing;
using corvanta::predicate::Predicate;
using corvanta::predicate::RecordRef;
using Op = Predicate::Operator;

namespace {

QVariant to(Record* record)
{
    return QVariant::fromValue(record);
}

} // namespace

class tst_EditingContext : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void insertRecordSetsKnownKeysOnly();
    void toOneKeepsToManyInverse_data();
    void toOneKeepsToManyInverse();
    void pairsFollowEitherSide();
    void deleteRules();
    void failedSaveStoresNothing();
    void rollbackForgetsChanges();
    void mainMergesOtherContextsSaves();
    void fetchJudgesUnsavedRecordsInMemory();
    void keyPaths_data();
    void keyPaths();
    void sumFollowsStoredOrder();
    void storedPaymentSumFollowsEdits_data();
    void storedPaymentSumFollowsEdits();
};

void tst_EditingContext::insertRecordSetsKnownKeysOnly()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* bolt = c.insertRecord(s("Products"), {{s("name"), s("Bolt")}});
    Record* line = c.insertRecord(
        s("Lines"),
        {{s("price"), 2.5}, {s("product"), to(bolt)}, {s("no_such_key"), 42}, {s("quantity"), s("12.5")}});
    QCOMPARE(line->value(s("quantity")).toDouble(), 12.5); // converted to the attribute's type
    for (double bad : {qQNaN(), qInf(), -qInf()}) {
        line->setValue(s("price"), bad);
        QCOMPARE(line->value(s("price")).toDouble(), 2.5); // never stored
    }
    QCOMPARE(bolt->relatedList(s("lines")), QList<Record*>{line});
    // The record class derives its value on insert and whenever a key it depends on is set; the
    // derived value is stored for fetches to select by.
    Record* ann = c.insertRecord(s("Customers"),
                                 {{s("kind"), 2}, {s("first_name"), s("Ann")}, {s("last_name"), s("Lee")}});
    ann->setValue(s("last_name"), s("Smith"));
    QCOMPARE(ann->value(s("full_name")).toString(), s("Ann Smith"));
    saveOrFail(c);

    st.reopen();
    QCOMPARE(st.main().count(FetchRequest(s("Customers"), where(s("full_name"), Op::Equal, s("Ann Smith")))),
             1);
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
    Record* a = st.main().insertRecord(s("Orders"));
    Record* b = st.main().insertRecord(s("Orders"));
    Record* row = st.main().insertRecord(s("Lines"), {{s("name"), s("row")}, {s("order"), to(a)}});
    const RecordRef aRef = a->ref(), bRef = b->ref(), rowRef = row->ref();
    if (savedBefore) {
        saveOrFail(st.main());
        st.reopen();
        a = st.main().record(aRef);
        b = st.main().record(bRef);
        row = st.main().record(rowRef);
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
    saveOrFail(st.main());

    st.reopen();
    QCOMPARE(valuesOf(st.main().record(aRef)->relatedList(s("lines"))), QStringList{s("row")});
    QCOMPARE(st.main().record(bRef)->relatedList(s("lines")).size(), 0);
}

// A one-to-one moves between holders from either side; a to-one that is its own inverse points
// both ways, and deleting one side clears the other; a many-to-many is one set seen from both
// sides, where adding twice is adding once.
void tst_EditingContext::pairsFollowEitherSide()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* customer = c.insertRecord(s("Customers"), {{s("name"), s("Ann")}});
    Record* home = c.insertRecord(s("Addresses"), {{s("city"), s("Home")}});
    Record* office = c.insertRecord(s("Addresses"), {{s("city"), s("Office")}});
    customer->setRelated(s("default_address"), home);
    QCOMPARE(home->related(s("default_of")), customer);
    office->setRelated(s("default_of"), customer); // from the column-less side
    QCOMPARE(customer->related(s("default_address")), office);
    QCOMPARE(home->related(s("default_of")), nullptr);

    Record* invoice = c.insertRecord(s("Orders"));
    Record* twin = c.insertRecord(s("Orders"));
    twin->setRelated(s("cancel_reference"), invoice);
    QCOMPARE(invoice->related(s("cancel_reference")), twin);
    saveOrFail(c);
    c.deleteRecord(twin);
    QCOMPARE(invoice->related(s("cancel_reference")), nullptr);

    Record* vip = c.insertRecord(s("Tags"), {{s("name"), s("VIP")}});
    Record* bob = c.insertRecord(s("Customers"), {{s("name"), s("Bob")}});
    customer->addRelated(s("tags"), vip);
    vip->addRelated(s("customers"), bob);
    vip->addRelated(s("customers"), bob);
    QCOMPARE(vip->relatedList(s("customers")).size(), 2);
    QCOMPARE(bob->relatedList(s("tags")), QList<Record*>{vip});
    saveOrFail(c);

    const RecordRef customerRef = customer->ref(), officeRef = office->ref(), invoiceRef = invoice->ref();
    const RecordRef vipRef = vip->ref();
    st.reopen();
    Record* stored = st.main().record(customerRef);
    QCOMPARE(stored->valueForKeyPath(s("default_address.city")).toString(), s("Office"));
    QCOMPARE(st.main().record(officeRef)->related(s("default_of")), stored);
    QCOMPARE(st.main().record(invoiceRef)->value(s("cancel_reference")), QVariant());
    Record* tag = st.main().record(vipRef);
    QCOMPARE(valuesOf(tag->relatedList(s("customers"))), (QStringList{s("Ann"), s("Bob")}));
    stored->removeRelated(s("tags"), tag);
    QCOMPARE(valuesOf(tag->relatedList(s("customers"))), QStringList{s("Bob")});
    saveOrFail(st.main());
    st.reopen();
    QCOMPARE(st.main().record(vipRef)->relatedList(s("customers")).size(), 1);
}

// Deleting a customer takes its addresses along and leaves its orders without a customer;
// deleting an order takes its lines and payments along and leaves its tags. A product that a
// line uses cannot be deleted until no line uses it.
void tst_EditingContext::deleteRules()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* customer = c.insertRecord(s("Customers"), {{s("name"), s("Gone Ltd")}});
    Record* address = c.insertRecord(s("Addresses"), {{s("customer"), to(customer)}});
    customer->setRelated(s("default_address"), address);
    Record* kept = c.insertRecord(s("Orders"), {{s("note"), s("Gone Ltd")}, {s("customer"), to(customer)}});
    Record* order = c.insertRecord(s("Orders"));
    for (int i = 0; i < 3; ++i)
        c.insertRecord(s("Lines"), {{s("order"), to(order)}});
    c.insertRecord(s("Payments"), {{s("order"), to(order)}, {s("amount"), 5.0}});
    order->addRelated(s("tags"), c.insertRecord(s("Tags"), {{s("name"), s("Urgent")}}));
    Record* bolt = c.insertRecord(s("Products"), {{s("name"), s("Bolt")}});
    Record* line = c.insertRecord(s("Lines"), {{s("product"), to(bolt)}});
    saveOrFail(c);
    const RecordRef keptRef = kept->ref(), customerRef = customer->ref(), orderRef = order->ref();
    const RecordRef boltRef = bolt->ref(), lineRef = line->ref();

    st.reopen();
    EditingContext& c2 = st.main();
    c2.deleteRecord(c2.record(boltRef));
    StoreError error;
    QVERIFY(!c2.save(&error));
    QCOMPARE(error.code, int(StoreError::DeleteDenied));
    QVERIFY2(error.reason.contains(QLatin1String("Lines")), qPrintable(error.reason));
    QCOMPARE(st.store().newContext()->count(FetchRequest(s("Products"))), 1);
    c2.record(lineRef)->setRelated(s("product"), nullptr);
    c2.deleteRecord(c2.record(lineRef));

    c2.deleteRecord(c2.record(customerRef));
    c2.deleteRecord(c2.record(orderRef));
    saveOrFail(c2);
    QCOMPARE(c2.record(keptRef)->value(s("customer")), QVariant());
    QCOMPARE(c2.record(keptRef)->value(s("note")).toString(), s("Gone Ltd")); // its own values stay
    for (const char* entity : {"Customers", "Addresses", "Lines", "Payments", "Products"})
        QCOMPARE(c2.count(FetchRequest(s(entity))), 0);
    QCOMPARE(c2.count(FetchRequest(s("Orders"))), 1);
    QCOMPARE(c2.fetchFirst(FetchRequest(s("Tags")))->relatedList(s("orders")).size(), 0);
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
    Record* row = c.insertRecord(s("Lines"), {{s("order"), to(doc)}});
    saveOrFail(c);

    doc->setValue(s("number"), s("X-2"));
    c.insertRecord(s("Lines"), {{s("order"), to(doc)}});
    c.deleteRecord(row);
    QVERIFY(c.hasChanges());
    c.rollback();
    QVERIFY(!c.hasChanges());
    QCOMPARE(doc->value(s("number")).toString(), s("X-1"));
    QCOMPARE(doc->relatedList(s("lines")), QList<Record*>{row});
    QVERIFY(!row->isDeleted());
}

// The main context takes in another context's save, property by property: what it changed itself
// and has not saved yet keeps its own value. Deleted records go, lists are read again.
void tst_EditingContext::mainMergesOtherContextsSaves()
{
    ScratchStore st;
    EditingContext& main = st.main();
    Record* customer = main.insertRecord(s("Customers"), {{s("name"), s("Old Name")}});
    Record* other = main.insertRecord(s("Customers"), {{s("name"), s("Other")}});
    Record* doc = main.insertRecord(s("Orders"));
    Record* first = main.insertRecord(s("Lines"), {{s("name"), s("first")}, {s("order"), to(doc)}});
    Record* tag = main.insertRecord(s("Tags"), {{s("name"), s("Urgent")}});
    saveOrFail(main);
    other->setValue(s("name"), s("Other (typed here)"));
    QCOMPARE(doc->relatedList(s("lines")).size(), 1);
    QCOMPARE(doc->relatedList(s("tags")).size(), 0);

    QSignalSpy changed(&main, &EditingContext::objectsDidChange);
    auto editor = st.store().newContext();
    editor->record(customer->ref())->setValue(s("name"), s("New Name"));
    editor->record(other->ref())->setValue(s("name"), s("Other (from editor)"));
    editor->record(other->ref())->setValue(s("tax_number"), s("2"));
    Record* theirDoc = editor->record(doc->ref());
    editor->insertRecord(s("Lines"), {{s("name"), s("second")}, {s("order"), to(theirDoc)}});
    editor->deleteRecord(editor->record(first->ref()));
    theirDoc->addRelated(s("tags"), editor->record(tag->ref()));
    saveOrFail(*editor);

    QCOMPARE(customer->value(s("name")).toString(), s("New Name"));
    QCOMPARE(customer->value(s("full_name")).toString(), s("New Name")); // derived again
    QCOMPARE(other->value(s("name")).toString(), s("Other (typed here)"));
    QCOMPARE(other->value(s("tax_number")).toString(), s("2"));
    QVERIFY(first->isDeleted());
    QCOMPARE(valuesOf(doc->relatedList(s("lines"))), QStringList{s("second")});
    QCOMPARE(doc->relatedList(s("tags")), QList<Record*>{tag});
    QCOMPARE(tag->relatedList(s("orders")), QList<Record*>{doc});
    QCOMPARE(changed.count(), 1);
    const ChangeSet changes = changed.first().first().value<ChangeSet>();
    QCOMPARE(changes.entities(), (QSet<QString>{s("Customers"), s("Lines")}));
    QCOMPARE(changes.updated.size(), 2);
    QVERIFY(changes.updated.first().keys.contains(s("name")));
    QCOMPARE(changes.touchedJoinTables, QStringList{s("Orders_tags")});
    QCOMPARE(changes.inserted.size(), 1);
    QCOMPARE(changes.deleted.size(), 1);

    saveOrFail(main);
    const RecordRef otherRef = other->ref();
    st.reopen();
    QCOMPARE(st.main().record(otherRef)->value(s("name")).toString(), s("Other (typed here)"));
    QCOMPARE(st.main().record(otherRef)->value(s("tax_number")).toString(), s("2"));
}

void tst_EditingContext::fetchJudgesUnsavedRecordsInMemory()
{
    ScratchStore st;
    EditingContext& c = st.main();
    QList<Record*> docs;
    for (int i = 1; i <= 5; ++i)
        docs << c.insertRecord(s("Orders"), {{s("number"), s("D%1").arg(i)}, {s("total"), 10.0 * i}});
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

    // Asked for what is stored only, the unsaved changes do not count (the records keep their
    // unsaved values).
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
    const auto row = [](const char* name, const char* entity, const char* keyPath, const QVariant& expected) {
        QTest::newRow(name) << s(entity) << s(keyPath) << expected;
    };
    row("to-one chain", "Orders", "customer.default_address.street", s("Main St 1"));
    row("to-one chain through nothing", "Orders", "cancel_reference.number", QVariant());
    row("to-many values", "Orders", "lines.name", QVariantList{s("a"), s("b"), s("c")});
    row("sum", "Orders", "payments.@sum.amount", 70.0);
    row("max", "Orders", "lines.@max.quantity", 3.0);
    row("sum of empty is zero", "Products", "deliveries.@sum.quantity", 0.0);
    row("through a to-many then to-one", "Customers", "orders.number", QVariantList{s("INV-7")});
    row("unknown key", "Orders", "customer.no_such_key", QVariant());
}

void tst_EditingContext::keyPaths()
{
    QFETCH(QString, entity);
    QFETCH(QString, keyPath);
    QFETCH(QVariant, expected);
    ScratchStore st;
    EditingContext& c = st.main();
    Record* client = c.insertRecord(s("Customers"), {{s("name"), s("Acme")}});
    client->setRelated(s("default_address"), c.insertRecord(s("Addresses"), {{s("street"), s("Main St 1")},
                                                                             {s("customer"), to(client)}}));
    Record* doc = c.insertRecord(s("Orders"), {{s("number"), s("INV-7")}, {s("customer"), to(client)}});
    double quantity = 0;
    for (const char* name : {"a", "b", "c"})
        c.insertRecord(s("Lines"),
                       {{s("name"), s(name)}, {s("quantity"), ++quantity}, {s("order"), to(doc)}});
    for (double amount : {30.0, 40.0})
        c.insertRecord(s("Payments"), {{s("amount"), amount}, {s("order"), to(doc)}});
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

// Floating-point addition is not associative: the sum must add the payments in the order they
// were stored, in memory and in SQL alike.
void tst_EditingContext::sumFollowsStoredOrder()
{
    ScratchStore st;
    EditingContext& c = st.main();
    Record* doc = c.insertRecord(s("Orders"));
    double expected = 0.0;
    for (double amount : {1e16, 1.0, -1e16, 1.0}) {
        c.insertRecord(s("Payments"), {{s("amount"), amount}, {s("order"), to(doc)}});
        expected += amount;
    }
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
    early->setRelated(s("order"), c.insertRecord(s("Orders"), {{s("number"), s("C")}, {s("total"), 99.0}}));
    Record* payment = c.insertRecord(s("Payments"), {{s("amount"), 30.0}, {s("order"), to(a)}});
    c.insertRecord(s("Payments"), {{s("amount"), 20.0}, {s("order"), to(a)}});
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

QTEST_GUILESS_MAIN(tst_EditingContext)
#include "tst_editingcontext.moc"
