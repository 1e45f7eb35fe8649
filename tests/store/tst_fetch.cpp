#include "orderbook.h"

#include <QDateTime>

using namespace corvanta::store;
using namespace corvanta::store::testing;
using corvanta::predicate::Expression;
using corvanta::predicate::Predicate;
using corvanta::predicate::RecordRef;
using Op = Predicate::Operator;
using Mod = Predicate::Modifier;

Q_DECLARE_METATYPE(corvanta::predicate::Predicate)

namespace {

Predicate cmp(const char* keyPath, Op op, const QVariant& value, Predicate::Options options = {},
              Mod modifier = Mod::Direct)
{
    return Predicate::compare(s(keyPath), op, value, options, modifier);
}

Predicate keys(const char* left, Op op, const char* right)
{
    return Predicate::comparison(Expression::keyPath(s(left)), op, Expression::keyPath(s(right)));
}

const Predicate::Options CD = Predicate::CaseInsensitive | Predicate::DiacriticInsensitive;

QDateTime day(int year, int month, int d)
{
    return QDateTime(QDate(year, month, d), QTime(12, 0), Qt::UTC);
}

QStringList words(const char* labels)
{
    return s(labels).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace

// Fetches and counts compiled to SQL, against a small order book whose answers are known. Every
// expected list names records by their labels, sorted.
class tst_Fetch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { m_store.reset(); }
    void selects_data();
    void selects();
    void valuesNeverBecomeSql_data();
    void valuesNeverBecomeSql();
    void errorsNameTheProblem_data();
    void errorsNameTheProblem();
    void sortsAndPages_data();
    void sortsAndPages();
    void aggregates_data();
    void aggregates();
    void sumsSeeUnsavedChanges();
    void groupedSums_data();
    void groupedSums();
    void valuesInTheFetchOrder();

private:
    Record* add(const char* label, const char* entity, const QVariantMap& values);
    QVariant ref(const char* label) const { return QVariant::fromValue(m_refs.value(s(label))); }
    QStringList labelsOf(const QList<Record*>& records) const;

    std::unique_ptr<ScratchStore> m_store;
    QHash<QString, RecordRef> m_refs;
    QHash<RecordRef, QString> m_labels;
};

Record* tst_Fetch::add(const char* label, const char* entity, const QVariantMap& values)
{
    Record* r = m_store->main().insertRecord(s(entity), values);
    m_refs.insert(s(label), r->ref());
    m_labels.insert(r->ref(), s(label));
    return r;
}

QStringList tst_Fetch::labelsOf(const QList<Record*>& records) const
{
    QStringList labels;
    for (const Record* r : records)
        labels << m_labels.value(r->ref());
    return labels;
}

void tst_Fetch::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    m_store = std::make_unique<ScratchStore>();
    EditingContext& c = m_store->main();
    Record* almos = add("almos", "Customers", {{s("kind"), 0}, {s("name"), s("Álmos Kft.")}});
    Record* bela = add("bela", "Customers",
                       {{s("kind"), 2}, {s("first_name"), s("Béla")}, {s("last_name"), s("Szabó")}});
    add("acme", "Customers", {{s("kind"), 1}, {s("name"), s("acme")}});
    add("zeta", "Customers", {{s("name"), s("Zeta'; DROP TABLE \"Customers\"; --")}});
    add("obrien", "Customers", {{s("name"), s("O'Brien \"Quotes\" /* x */")}});
    for (Record* customer : {almos, almos, bela}) {
        Record* a = c.insertRecord(
            s("Addresses"), {{s("city"), s("Budapest")}, {s("customer"), QVariant::fromValue(customer)}});
        if (customer == almos)
            almos->setRelated(s("default_address"), a);
    }
    c.insertRecord(s("Addresses"), {{s("city"), s("Pécs")}, {s("customer"), QVariant::fromValue(bela)}});
    Record* vip = add("vip", "Tags", {{s("name"), s("VIP")}});
    almos->addRelated(s("tags"), vip);
    bela->addRelated(s("tags"), vip);
    Record* invoiceTag = add("invoices", "Tags", {{s("name"), s("Invoice")}});
    Record* bolt = add("bolt", "Products", {{s("name"), s("Bolt")}});

    // number, kind, draft, total, payments, customer, created
    const struct
    {
        const char* number;
        int kind;
        QVariant draft;
        double total;
        QList<double> payments;
        Record* customer;
        QDateTime created;
    } orders[] = {
        {"D1", 0, false, 100.0, {60.0, 40.0}, almos, day(2024, 1, 15)},
        {"D2", 0, false, 100.0, {60.0, 50.0}, almos, day(2024, 2, 1)},
        {"D3", 0, true, 50.0, {}, bela, day(2024, 2, 29)},
        {"D4", 0, false, 0.0, {}, nullptr, day(2023, 12, 31)},
        {"D5", 3, false, 20.0, {}, nullptr, day(2025, 3, 1)},
        {"D6", 0, QVariant(), 10.0, {}, nullptr, day(2025, 3, 2)},
        {"D7", 0, false, 30.0, {10.0}, nullptr, day(2025, 3, 3)},
        {"D8", 0, false, 40.0, {}, nullptr, day(2025, 3, 4)},
        {"D9", 0, false, -40.0, {}, nullptr, day(2025, 3, 5)},
    };
    for (const auto& o : orders) {
        Record* order = add(o.number, "Orders",
                            {{s("number"), s(o.number)},
                             {s("kind"), o.kind},
                             {s("draft"), o.draft},
                             {s("total"), o.total},
                             {s("created"), o.created},
                             {s("customer"), QVariant::fromValue(o.customer)}});
        for (double amount : o.payments)
            c.insertRecord(s("Payments"), {{s("amount"), amount}, {s("order"), QVariant::fromValue(order)}});
        if (o.kind == 0)
            order->addRelated(s("tags"), invoiceTag);
    }
    c.record(m_refs.value(s("D9")))->setRelated(s("cancel_reference"), c.record(m_refs.value(s("D8"))));
    const QVariant d1 = ref("D1");
    c.insertRecord(s("Lines"), {{s("name"), s("Bolt")},
                                {s("quantity"), 2.0},
                                {s("product"), QVariant::fromValue(bolt)},
                                {s("order"), d1}});
    c.insertRecord(s("Lines"), {{s("name"), s("Nut")}, {s("quantity"), 5.0}, {s("order"), d1}});
    saveOrFail(c);
    m_store->reopen();
}

// Operators over missing values, options and modifiers are compared with the in-memory evaluator
// on random order books (tst_differential); these rows hold what no random predicate draws.
void tst_Fetch::selects_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<Predicate>("predicate");
    QTest::addColumn<QStringList>("expected");
    const auto orders = [](const char* row, const Predicate& p, const char* expected) {
        QTest::newRow(row) << s("Orders") << p << words(expected);
    };
    const auto customers = [](const char* row, const Predicate& p, const char* expected) {
        QTest::newRow(row) << s("Customers") << p << words(expected);
    };
    orders("paid invoices",
           Predicate::andOf(
               {totalAgainstPayments(Op::Equal), cmp("kind", Op::Equal, 0), cmp("draft", Op::Equal, false)}),
           "D1 D4");
    orders("a record as the value", cmp("cancel_reference", Op::Equal, ref("D8")), "D9");
    customers("to-many CONTAINS record", cmp("tags", Op::Contains, ref("vip")), "almos bela");
    orders("a record of another entity never matches",
           cmp("customer", Op::Equal,
               QVariant::fromValue(RecordRef{s("Products"), m_refs.value(s("almos")).pk})),
           "");
    orders("to-one chain", cmp("customer.default_address.city", Op::Equal, s("Budapest")), "D1 D2");
    customers("to-many, then to-one", cmp("orders.lines.product.name", Op::Equal, s("Bolt")), "almos");
    orders("TRUEPREDICATE", Predicate::truePredicate(), "D1 D2 D3 D4 D5 D6 D7 D8 D9");
    orders("FALSEPREDICATE", Predicate::falsePredicate(), "");
    customers("[cd] folds case and accents", cmp("name", Op::Contains, s("ALMOS"), CD), "almos");
    customers("LIKE treats [ as a letter", cmp("full_name", Op::Like, s("[a]*")), "");
    customers("IN nothing", cmp("kind", Op::In, QVariantList{}), "");
    customers("self IN records", cmp("self", Op::In, QVariantList{ref("bela"), ref("acme")}), "acme bela");
    customers("ALL to-many, empty sets included",
              cmp("addresses.city", Op::Equal, s("Budapest"), {}, Mod::All), "acme almos obrien zeta");
}

void tst_Fetch::selects()
{
    QFETCH(QString, entity);
    QFETCH(Predicate, predicate);
    QFETCH(QStringList, expected);
    EditingContext& c = m_store->main();
    StoreError error;
    QStringList actual = labelsOf(c.fetch(FetchRequest(entity, predicate), &error));
    QVERIFY2(!error.isError(), qPrintable(error.message()));
    actual.sort();
    QCOMPARE(actual, expected);
    QCOMPARE(c.count(FetchRequest(entity, predicate)), int(expected.size()));
}

void tst_Fetch::valuesNeverBecomeSql_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("quote and statement") << s("Zeta'; DROP TABLE \"Customers\"; --");
    QTest::newRow("double quotes and comment") << s("O'Brien \"Quotes\" /* x */");
    QTest::newRow("placeholder and keywords") << s("? OR 1=1");
}

void tst_Fetch::valuesNeverBecomeSql()
{
    QFETCH(QString, value);
    EditingContext& c = m_store->main();
    for (Op op : {Op::Equal, Op::Contains, Op::BeginsWith, Op::EndsWith, Op::Like}) {
        StoreError error;
        const QList<Record*> found =
            c.fetch(FetchRequest(s("Customers"), Predicate::compare(s("name"), op, value, CD)), &error);
        QVERIFY2(!error.isError(), qPrintable(error.message()));
        QCOMPARE(valuesOf(found), value.contains(QLatin1Char('\'')) ? QStringList{value} : QStringList());
    }
    QCOMPARE(c.count(FetchRequest(s("Customers"))), 5);
}

void tst_Fetch::errorsNameTheProblem_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<Predicate>("predicate");
    QTest::addColumn<QString>("sortKey");
    QTest::addColumn<QString>("mentions");
    QTest::newRow("unknown key") << s("Orders") << cmp("customer.no_such_key", Op::Equal, 1) << QString()
                                 << s("Customers has no key named \"no_such_key\"");
    QTest::newRow("attribute used as a relationship")
        << s("Customers") << cmp("name.length", Op::Equal, 1) << QString() << s("name");
    QTest::newRow("key with a quote")
        << s("Customers") << cmp("name\" = 1; --", Op::Equal, 1) << QString() << s("name\" = 1; --");
    QTest::newRow("memory-only key") << s("Customers") << cmp("spent", Op::Greater, 1) << QString()
                                     << s("spent");
    QTest::newRow("unknown aggregate")
        << s("Orders") << cmp("payments.@median.amount", Op::Equal, 0) << QString() << s("@median");
    QTest::newRow("pattern from a key")
        << s("Customers") << keys("name", Op::Like, "desc") << QString() << s("LIKE");
    QTest::newRow("unknown entity") << s("Invoices") << Predicate() << QString() << s("Invoices");
    QTest::newRow("sort through a to-many")
        << s("Customers") << Predicate() << s("orders.total") << s("orders.total");
}

void tst_Fetch::errorsNameTheProblem()
{
    QFETCH(QString, entity);
    QFETCH(Predicate, predicate);
    QFETCH(QString, sortKey);
    QFETCH(QString, mentions);
    FetchRequest request(entity, predicate);
    if (!sortKey.isEmpty())
        request.sortDescriptors << SortDescriptor{sortKey};
    StoreError error;
    QVERIFY(m_store->main().fetch(request, &error).isEmpty());
    QCOMPARE(error.code, int(StoreError::InvalidFetch));
    QVERIFY2(error.message().contains(mentions), qPrintable(error.message()));
    QCOMPARE(m_store->main().count(request), sortKey.isEmpty() ? -1 : 5); // counting needs no order
}

void tst_Fetch::sortsAndPages_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<QList<SortDescriptor>>("sort");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("limit");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("localized, case-insensitive")
        << s("Customers") << QList<SortDescriptor>{SortDescriptor::localized(s("full_name"))} << 0 << 0
        << words("acme almos bela obrien zeta");
    QTest::newRow("newest first, second page")
        << s("Orders") << QList<SortDescriptor>{SortDescriptor{s("created"), false}} << 3 << 3
        << words("D6 D5 D3");
    QTest::newRow("by a to-one key, then number")
        << s("Orders")
        << QList<SortDescriptor>{SortDescriptor{s("customer.name"), false}, SortDescriptor{s("number")}} << 0
        << 4 << words("D1 D2 D3 D4");
}

void tst_Fetch::sortsAndPages()
{
    QFETCH(QString, entity);
    QFETCH(QList<SortDescriptor>, sort);
    QFETCH(int, offset);
    QFETCH(int, limit);
    FetchRequest request(entity, {}, sort);
    request.offset = offset;
    request.limit = limit;
    QTEST(labelsOf(m_store->main().fetch(request)), "expected");
}

// Searches over a whole history must be answered from an index alone ("plan": 1 or 0, as a to-one
// join that reads only columns of its destination's lookup index is told to use it or not; -1 for
// no check of the plan).
void tst_Fetch::aggregates_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<Predicate>("predicate");
    QTest::addColumn<int>("function");
    QTest::addColumn<QString>("keyPath");
    QTest::addColumn<QVariant>("expected");
    QTest::addColumn<int>("plan");
    const int sum = int(Aggregate::Sum), max = int(Aggregate::Max);
    QTest::newRow("sold quantity of a product, through to-one key paths")
        << s("Lines")
        << Predicate::andOf({cmp("product", Op::Equal, ref("bolt")), cmp("order.kind", Op::Equal, 0),
                             cmp("order.draft", Op::Equal, false),
                             Predicate::notOf(cmp("order", Op::In, QVariantList{ref("D2")}))})
        << sum << s("quantity") << QVariant(2.0) << 1;
    QTest::newRow("a join reading beyond the lookup index")
        << s("Lines")
        << Predicate::andOf({cmp("product", Op::Equal, ref("bolt")), cmp("order.total", Op::Greater, 0)})
        << sum << s("quantity") << QVariant(2.0) << 0;
    QTest::newRow("deliveries of a product, none")
        << s("Deliveries") << cmp("product", Op::Equal, ref("bolt")) << sum << s("quantity") << QVariant(0.0)
        << 0;
    QTest::newRow("highest number of a year")
        << s("Orders")
        << Predicate::andOf({cmp("kind", Op::Equal, 0), cmp("created", Op::GreaterOrEqual, day(2024, 1, 1)),
                             cmp("created", Op::LessOrEqual, day(2024, 12, 31)),
                             cmp("draft", Op::NotEqual, 1)})
        << max << s("number") << QVariant(s("D2")) << 0;
    // `draft != 1` keeps D6, whose draft flag is missing.
    QTest::newRow("highest of non-drafts")
        << s("Orders") << cmp("draft", Op::NotEqual, 1) << max << s("total") << QVariant(100.0) << -1;
    QTest::newRow("lowest") << s("Orders") << cmp("kind", Op::Equal, 0) << int(Aggregate::Min) << s("total")
                            << QVariant(-40.0) << -1;
    QTest::newRow("highest of nothing is missing")
        << s("Orders") << cmp("kind", Op::Equal, 7) << max << s("total") << QVariant() << -1;
}

void tst_Fetch::aggregates()
{
    QFETCH(QString, entity);
    QFETCH(Predicate, predicate);
    QFETCH(int, function);
    QFETCH(QString, keyPath);
    QFETCH(QVariant, expected);
    QFETCH(int, plan);
    EditingContext& c = m_store->main();
    const FetchRequest request(entity, predicate);
    StoreError error;
    const std::optional<QVariant> value = c.storedAggregate(request, Aggregate(function), keyPath, &error);
    QVERIFY2(value, qPrintable(error.message()));
    QCOMPARE(value->isNull(), expected.isNull());
    QCOMPARE(value->toString(), expected.toString());
    if (Aggregate(function) == Aggregate::Sum)
        QCOMPARE(c.sum(request, keyPath), expected.toDouble());
    QVERIFY(!c.storedAggregate(request, Aggregate(function), s("no_such_key"), &error));
    QVERIFY2(error.message().contains(s("no_such_key")), qPrintable(error.message()));
    if (plan < 0)
        return;
    const QueryPlan query = m_store->store().explain(request, Aggregate(function), keyPath);
    const QString steps = query.steps.join(QLatin1Char('\n'));
    QVERIFY2(!steps.isEmpty() && !steps.contains(s("SCAN")) && steps.contains(s("COVERING INDEX")),
             qPrintable(steps));
    QCOMPARE(query.statement.contains(s("INDEXED BY")), plan == 1);
    QCOMPARE(steps.contains(s("COVERING INDEX Orders_pk_kind_draft")), plan == 1);
}

// Unsaved records of the context count as they are in memory; the store answers for the rest.
void tst_Fetch::sumsSeeUnsavedChanges()
{
    std::unique_ptr<EditingContext> c = m_store->store().newContext();
    const FetchRequest almosPayments(s("Payments"), cmp("order.customer", Op::Equal, ref("almos")));
    QCOMPARE(c->sum(almosPayments, s("amount")), 210.0);

    c->insertRecord(s("Payments"), {{s("amount"), 5.0}, {s("order"), ref("D1")}});
    QList<Record*> payments = c->record(m_refs.value(s("D2")))->relatedList(s("payments"));
    std::sort(payments.begin(), payments.end(), [](const Record* a, const Record* b) {
        return a->value(s("amount")).toDouble() < b->value(s("amount")).toDouble();
    });
    payments.at(0)->setValue(s("amount"), 1.0); // 50 becomes 1
    c->deleteRecord(payments.at(1));            // 60 goes
    QCOMPARE(c->sum(almosPayments, s("amount")), 210.0 + 5.0 - 49.0 - 60.0);
    FetchRequest storedOnly = almosPayments;
    storedOnly.includesPendingChanges = false;
    QCOMPARE(c->sum(storedOnly, s("amount")), 210.0);
    // Moved to another customer's order, it leaves the sum, though the stored row would count.
    payments.at(0)->setRelated(s("order"), c->record(m_refs.value(s("D3"))));
    QCOMPARE(c->sum(almosPayments, s("amount")), 210.0 + 5.0 - 50.0 - 60.0);
}

void tst_Fetch::groupedSums_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<Predicate>("predicate");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QStringList>("sums");
    // "group count sum..." per group, in their order; "refused" and what the error names
    QTest::addColumn<QStringList>("expected");
    // D3 is a draft; D6 has no draft flag and counts. D4 to D9 have no customer.
    QTest::newRow("orders per customer, drafts left out")
        << s("Orders") << cmp("draft", Op::NotEqual, 1) << s("customer")
        << QStringList{s("total"), s("payments.@sum.amount")}
        << QStringList{s("none 6 60 10"), s("almos 2 200 210")};
    QTest::newRow("lines per customer of their order")
        << s("Lines") << Predicate() << s("order.customer") << QStringList{s("quantity")}
        << QStringList{s("almos 2 7")};
    QTest::newRow("orders per kind, an attribute")
        << s("Orders") << Predicate() << s("kind") << QStringList{s("total")}
        << QStringList{s("0 8 290"), s("3 1 20")};
    QTest::newRow("orders of a period per day")
        << s("Orders") << cmp("created", Op::GreaterOrEqual, day(2025, 3, 4)) << s("created")
        << QStringList{s("total")}
        << QStringList{s("2025-03-04T12:00:00Z 1 40"), s("2025-03-05T12:00:00Z 1 -40")};
    QTest::newRow("nothing selected") << s("Orders") << cmp("kind", Op::Equal, 7) << s("customer")
                                      << QStringList{s("total")} << QStringList{};
    QTest::newRow("grouped by a to-many") << s("Orders") << Predicate() << s("lines")
                                          << QStringList{s("total")} << QStringList{s("refused"), s("lines")};
    QTest::newRow("unknown sum key") << s("Orders") << Predicate() << s("customer")
                                     << QStringList{s("no_such_key")}
                                     << QStringList{s("refused"), s("no_such_key")};
}

void tst_Fetch::groupedSums()
{
    QFETCH(QString, entity);
    QFETCH(Predicate, predicate);
    QFETCH(QString, group);
    QFETCH(QStringList, sums);
    StoreError error;
    const std::optional<QList<GroupSums>> groups =
        m_store->main().storedGroupedSums(FetchRequest(entity, predicate), group, sums, &error);
    QFETCH(QStringList, expected);
    if (!groups) {
        QVERIFY2(expected.value(0) == s("refused"), qPrintable(error.message()));
        QVERIFY2(error.message().contains(expected.value(1)), qPrintable(error.message()));
        return;
    }
    QStringList actual;
    for (const GroupSums& g : *groups) {
        QString name = s("none");
        if (g.group.typeId() == qMetaTypeId<RecordRef>())
            name = m_labels.value(g.group.value<RecordRef>());
        else if (g.group.typeId() == QMetaType::QDateTime)
            name = g.group.toDateTime().toUTC().toString(Qt::ISODate);
        else if (!g.group.isNull())
            name = g.group.toString();
        QStringList parts{name, QString::number(g.count)};
        for (double sum : g.sums)
            parts << QString::number(sum);
        actual << parts.join(QLatin1Char(' '));
    }
    QCOMPARE(actual, expected);
}

// A projection keeps the order and window of the request and gives values as they are stored.
void tst_Fetch::valuesInTheFetchOrder()
{
    FetchRequest request(s("Orders"), cmp("total", Op::GreaterOrEqual, 100), {{s("number"), false}});
    request.limit = 2;
    StoreError error;
    const std::optional<QList<StoredRow>> rows = m_store->main().storedValues(
        request, {s("number"), s("customer.name"), s("created"), s("payments.@sum.amount"), s("draft")},
        &error);
    QVERIFY2(rows, qPrintable(error.message()));
    QStringList actual;
    for (const StoredRow& row : *rows) {
        QStringList parts{m_labels.value(RecordRef{s("Orders"), row.key})};
        for (const QVariant& value : row.values)
            parts << value.toString();
        actual << parts.join(QLatin1Char(' '));
    }
    const auto seconds = [](const QDateTime& moment) {
        return QString::number(qint64(QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC).secsTo(moment)));
    };
    QCOMPARE(actual, (QStringList{s("D2 D2 Álmos Kft. ") + seconds(day(2024, 2, 1)) + s(" 110 0"),
                                  s("D1 D1 Álmos Kft. ") + seconds(day(2024, 1, 15)) + s(" 100 0")}));
}

QTEST_GUILESS_MAIN(tst_Fetch)
#include "tst_fetch.moc"
