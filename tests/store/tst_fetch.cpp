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

} // namespace

// Fetches and counts compiled to SQL, against a small order book whose answers are known.
class tst_Fetch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
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
    void historySearchesReadIndexesOnly_data();
    void historySearchesReadIndexesOnly();

private:
    QVariant ref(const char* name) const { return QVariant::fromValue(m_refs.value(s(name))); }
    std::unique_ptr<ScratchStore> m_store;
    QHash<QString, RecordRef> m_refs;
};

void tst_Fetch::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    m_store = std::make_unique<ScratchStore>();
    EditingContext& c = m_store->main();
    const auto keep = [this](const QString& name, Record* r) {
        m_refs.insert(name, r->ref());
        return r;
    };
    const auto var = [](Record* r) { return QVariant::fromValue(r); };

    Record* almos = keep(s("almos"), c.insertRecord(s("Customers"), {{s("kind"), 0},
                                                                     {s("name"), s("Álmos Kft.")},
                                                                     {s("tax_number"), s("HU1")},
                                                                     {s("rating"), 5}}));
    Record* bela = keep(s("bela"), c.insertRecord(s("Customers"), {{s("kind"), 2},
                                                                   {s("first_name"), s("Béla")},
                                                                   {s("last_name"), s("Szabó")},
                                                                   {s("rating"), 2}}));
    keep(s("acme"), c.insertRecord(s("Customers"), {{s("kind"), 1}, {s("name"), s("acme")}}));
    keep(s("zeta"), c.insertRecord(s("Customers"), {{s("name"), s("Zeta'; DROP TABLE \"Customers\"; --")}}));
    keep(s("obrien"), c.insertRecord(s("Customers"), {{s("name"), s("O'Brien \"Quotes\" /* x */")}}));
    for (const char* city : {"Budapest", "Budapest"}) {
        Record* a = c.insertRecord(s("Addresses"), {{s("city"), s(city)}, {s("customer"), var(almos)}});
        almos->setRelated(s("default_address"), a);
    }
    for (const char* city : {"Pécs", "Budapest"})
        c.insertRecord(s("Addresses"), {{s("city"), s(city)}, {s("customer"), var(bela)}});

    Record* vip = keep(s("vip"), c.insertRecord(s("Tags"), {{s("name"), s("VIP")}, {s("kind"), 1}}));
    almos->addRelated(s("tags"), vip);
    bela->addRelated(s("tags"), vip);
    Record* invoiceTag =
        keep(s("invoiceTag"), c.insertRecord(s("Tags"), {{s("name"), s("Invoice")}, {s("kind"), 3}}));

    Record* bolt = keep(s("bolt"), c.insertRecord(s("Products"), {{s("name"), s("Bolt")}}));
    struct Doc
    {
        const char* number;
        int type;
        QVariant draft;
        double total;
        QList<double> payments;
        Record* client;
        QDateTime created;
    };
    const QList<Doc> docs{
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
    for (const Doc& d : docs) {
        Record* doc = keep(s(d.number), c.insertRecord(s("Orders"), {{s("number"), s(d.number)},
                                                                     {s("kind"), d.type},
                                                                     {s("draft"), d.draft},
                                                                     {s("total"), d.total},
                                                                     {s("created"), d.created},
                                                                     {s("customer"), var(d.client)}}));
        for (double amount : d.payments)
            c.insertRecord(s("Payments"), {{s("amount"), amount}, {s("order"), var(doc)}});
        if (d.type == 0)
            doc->addRelated(s("tags"), invoiceTag);
    }
    c.record(m_refs.value(s("D9")))->setRelated(s("cancel_reference"), c.record(m_refs.value(s("D8"))));
    Record* d1 = c.record(m_refs.value(s("D1")));
    c.insertRecord(
        s("Lines"),
        {{s("name"), s("Bolt")}, {s("quantity"), 2.0}, {s("product"), var(bolt)}, {s("order"), var(d1)}});
    c.insertRecord(s("Lines"), {{s("name"), s("Nut")}, {s("quantity"), 5.0}, {s("order"), var(d1)}});
    saveOrFail(c);
    m_store->reopen();
}

void tst_Fetch::cleanupTestCase()
{
    m_store.reset();
}

void tst_Fetch::selects_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<Predicate>("predicate");
    QTest::addColumn<QStringList>("expected");

    const QString docs = s("Orders");
    const QString clients = s("Customers");
    const QStringList allDocs{s("D1"), s("D2"), s("D3"), s("D4"), s("D5"),
                              s("D6"), s("D7"), s("D8"), s("D9")};

    QTest::newRow("paid invoices") << docs
                                   << Predicate::andOf({keys("total", Op::Equal, "payments.@sum.amount"),
                                                        cmp("kind", Op::Equal, 0),
                                                        cmp("draft", Op::Equal, false)})
                                   << QStringList{s("D1"), s("D4")};
    QTest::newRow("unpaid invoices") << docs
                                     << Predicate::andOf({keys("total", Op::NotEqual, "payments.@sum.amount"),
                                                          cmp("kind", Op::Equal, 0),
                                                          cmp("draft", Op::Equal, false),
                                                          cmp("cancel_reference", Op::Equal, QVariant())})
                                     << QStringList{s("D2"), s("D7")};
    QTest::newRow("draft == YES") << docs << cmp("draft", Op::Equal, true) << QStringList{s("D3")};
    QTest::newRow("draft != YES includes a draft never set")
        << docs << cmp("draft", Op::NotEqual, true)
        << QStringList{s("D1"), s("D2"), s("D4"), s("D5"), s("D6"), s("D7"), s("D8"), s("D9")};
    QTest::newRow("draft == NO excludes a draft never set")
        << docs << cmp("draft", Op::Equal, false)
        << QStringList{s("D1"), s("D2"), s("D4"), s("D5"), s("D7"), s("D8"), s("D9")};
    QTest::newRow("sum over no payments is 0")
        << docs << cmp("payments.@sum.amount", Op::Equal, 0.0)
        << QStringList{s("D3"), s("D4"), s("D5"), s("D6"), s("D8"), s("D9")};
    QTest::newRow("cancelled pair") << docs << cmp("cancel_reference", Op::NotEqual, QVariant())
                                    << QStringList{s("D8"), s("D9")};
    QTest::newRow("reference to a record")
        << docs << cmp("cancel_reference", Op::Equal, ref("D8")) << QStringList{s("D9")};
    QTest::newRow("ANY tags == tag") << docs << cmp("tags", Op::Equal, ref("invoiceTag"), {}, Mod::Any)
                                     << QStringList{s("D1"), s("D2"), s("D3"), s("D4"),
                                                    s("D6"), s("D7"), s("D8"), s("D9")};
    QTest::newRow("tags CONTAINS tag")
        << clients << cmp("tags", Op::Contains, ref("vip")) << QStringList{s("Álmos Kft."), s("Béla Szabó")};
    QTest::newRow("record of another entity never matches")
        << docs
        << cmp("customer", Op::Equal,
               QVariant::fromValue(RecordRef{s("Products"), m_refs.value(s("almos")).pk}))
        << QStringList{};
    QTest::newRow("to-one chain") << docs << cmp("customer.default_address.city", Op::Equal, s("Budapest"))
                                  << QStringList{s("D1"), s("D2")};
    QTest::newRow("to-one chain, case and accents")
        << docs << cmp("customer.name", Op::BeginsWith, s("ALM"), CD) << QStringList{s("D1"), s("D2")};
    QTest::newRow("nested to-many") << clients << cmp("orders.lines.name", Op::Equal, s("Bolt"), {}, Mod::Any)
                                    << QStringList{s("Álmos Kft.")};
    QTest::newRow("to-many through to-one")
        << clients << cmp("orders.lines.product.name", Op::Equal, s("Bolt")) << QStringList{s("Álmos Kft.")};
    QTest::newRow("date on or after") << docs << cmp("created", Op::GreaterOrEqual, day(2025, 3, 3))
                                      << QStringList{s("D7"), s("D8"), s("D9")};
    QTest::newRow("leap day") << docs << cmp("created", Op::Equal, day(2024, 2, 29)) << QStringList{s("D3")};
    QTest::newRow("TRUEPREDICATE") << docs << Predicate::truePredicate() << allDocs;
    QTest::newRow("FALSEPREDICATE") << docs << Predicate::falsePredicate() << QStringList{};
    QTest::newRow("OR and NOT") << docs
                                << Predicate::orOf({cmp("kind", Op::Equal, 3),
                                                    Predicate::notOf(cmp("total", Op::Greater, -1.0))})
                                << QStringList{s("D5"), s("D9")};

    QTest::newRow("contains, case and diacritics")
        << clients << cmp("name", Op::Contains, s("ALMOS"), CD) << QStringList{s("Álmos Kft.")};
    QTest::newRow("contains is case-sensitive")
        << clients << cmp("name", Op::Contains, s("almos")) << QStringList{};
    QTest::newRow("[c] folds case, not accents")
        << clients << cmp("name", Op::Contains, s("ÁLMOS"), Predicate::CaseInsensitive)
        << QStringList{s("Álmos Kft.")};
    QTest::newRow("[c] alone keeps accents")
        << clients << cmp("name", Op::Contains, s("almos"), Predicate::CaseInsensitive) << QStringList{};
    QTest::newRow("==[cd] on derived name")
        << clients << cmp("full_name", Op::Equal, s("bela szabo"), CD) << QStringList{s("Béla Szabó")};
    QTest::newRow("ends with") << clients << cmp("last_name", Op::EndsWith, s("abó"))
                               << QStringList{s("Béla Szabó")};
    QTest::newRow("LIKE with ? and *")
        << clients << cmp("full_name", Op::Like, s("b?la*"), Predicate::CaseInsensitive)
        << QStringList{s("Béla Szabó")};
    QTest::newRow("LIKE treats [ as a letter")
        << clients << cmp("full_name", Op::Like, s("[a]*")) << QStringList{};
    QTest::newRow("contains on a missing text is false")
        << clients << cmp("desc", Op::Contains, s("x")) << QStringList{};
    QTest::newRow("NOT contains on a missing text is true")
        << clients << Predicate::notOf(cmp("desc", Op::Contains, s("x")))
        << QStringList{s("acme"), s("Álmos Kft."), s("Béla Szabó"), s("O'Brien \"Quotes\" /* x */"),
                       s("Zeta'; DROP TABLE \"Customers\"; --")};
    QTest::newRow("!= includes missing values")
        << clients << cmp("tax_number", Op::NotEqual, s("HU1"))
        << QStringList{s("acme"), s("Béla Szabó"), s("O'Brien \"Quotes\" /* x */"),
                       s("Zeta'; DROP TABLE \"Customers\"; --")};
    QTest::newRow("ordering against a missing value is false")
        << clients << cmp("tax_number", Op::Less, s("HU2")) << QStringList{s("Álmos Kft.")};
    QTest::newRow("NOT ordering against a missing value")
        << clients << Predicate::notOf(cmp("rating", Op::Greater, 3))
        << QStringList{s("acme"), s("Béla Szabó"), s("O'Brien \"Quotes\" /* x */"),
                       s("Zeta'; DROP TABLE \"Customers\"; --")};
    QTest::newRow("IN a list") << clients << cmp("kind", Op::In, QVariantList{1, 2})
                               << QStringList{s("acme"), s("Béla Szabó")};
    QTest::newRow("IN nothing") << clients << cmp("kind", Op::In, QVariantList{}) << QStringList{};
    QTest::newRow("self IN records") << clients << cmp("self", Op::In, QVariantList{ref("bela"), ref("acme")})
                                     << QStringList{s("acme"), s("Béla Szabó")};
    QTest::newRow("ANY to-many") << clients << cmp("addresses.city", Op::Equal, s("Budapest"), {}, Mod::Any)
                                 << QStringList{s("Álmos Kft."), s("Béla Szabó")};
    QTest::newRow("ALL to-many, empty sets included")
        << clients << cmp("addresses.city", Op::Equal, s("Budapest"), {}, Mod::All)
        << QStringList{s("acme"), s("Álmos Kft."), s("O'Brien \"Quotes\" /* x */"),
                       s("Zeta'; DROP TABLE \"Customers\"; --")};
    QTest::newRow("count of a to-many")
        << clients << cmp("orders.@count", Op::GreaterOrEqual, 2) << QStringList{s("Álmos Kft.")};
    QTest::newRow("missing default") << clients << cmp("default_address", Op::Equal, QVariant())
                                     << QStringList{s("acme"), s("Béla Szabó"),
                                                    s("O'Brien \"Quotes\" /* x */"),
                                                    s("Zeta'; DROP TABLE \"Customers\"; --")};
}

void tst_Fetch::selects()
{
    QFETCH(QString, entity);
    QFETCH(Predicate, predicate);
    QFETCH(QStringList, expected);
    EditingContext& c = m_store->main();
    const QString nameKey = entity == QLatin1String("Customers") ? s("full_name") : s("number");
    FetchRequest request(entity, predicate, {SortDescriptor::localized(nameKey)});
    StoreError error;
    const QList<Record*> records = c.fetch(request, &error);
    QVERIFY2(!error.isError(), qPrintable(error.message()));
    QStringList actual;
    for (const Record* r : records)
        actual << r->value(nameKey).toString();
    QCOMPARE(actual, expected);
    QCOMPARE(c.count(request), int(expected.size()));
}

void tst_Fetch::valuesNeverBecomeSql_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("quote and statement") << s("Zeta'; DROP TABLE \"Customers\"; --");
    QTest::newRow("double quotes and comment") << s("O'Brien \"Quotes\" /* x */");
    QTest::newRow("SQL keywords") << s("1 OR 1=1");
    QTest::newRow("placeholder") << s("?");
}

void tst_Fetch::valuesNeverBecomeSql()
{
    QFETCH(QString, value);
    EditingContext& c = m_store->main();
    const bool exists = value.contains(QLatin1Char('\''));
    for (Op op : {Op::Equal, Op::Contains, Op::BeginsWith, Op::EndsWith, Op::Like}) {
        StoreError error;
        const QList<Record*> found =
            c.fetch(FetchRequest(s("Customers"), Predicate::compare(s("name"), op, value, CD)), &error);
        QVERIFY2(!error.isError(), qPrintable(error.message()));
        QCOMPARE(found.size(), exists ? 1 : 0);
        if (exists)
            QCOMPARE(found.first()->value(s("name")).toString(), value);
    }
    QCOMPARE(c.count(FetchRequest(s("Customers"))), 5);
}

void tst_Fetch::errorsNameTheProblem_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<Predicate>("predicate");
    QTest::addColumn<QString>("sortKey");
    QTest::addColumn<QStringList>("mentions");
    QTest::newRow("unknown key") << s("Orders") << cmp("customer.no_such_key", Op::Equal, 1) << QString()
                                 << QStringList{s("customer.no_such_key"), s("Customers"), s("no_such_key")};
    QTest::newRow("attribute used as a relationship")
        << s("Customers") << cmp("name.length", Op::Equal, 1) << QString() << QStringList{s("name")};
    QTest::newRow("key with a quote") << s("Customers") << cmp("name\" = 1; --", Op::Equal, 1) << QString()
                                      << QStringList{s("name\" = 1; --")};
    QTest::newRow("memory-only key") << s("Customers") << cmp("spent", Op::Greater, 1) << QString()
                                     << QStringList{s("spent")};
    QTest::newRow("aggregate without key")
        << s("Orders") << cmp("payments.@sum", Op::Equal, 0) << QString() << QStringList{s("payments.@sum")};
    QTest::newRow("unknown aggregate") << s("Orders") << cmp("payments.@median.amount", Op::Equal, 0)
                                       << QString() << QStringList{s("@median")};
    QTest::newRow("pattern from a key")
        << s("Customers") << keys("name", Op::Like, "desc") << QString() << QStringList{s("LIKE")};
    QTest::newRow("unknown entity") << s("Invoices") << Predicate() << QString()
                                    << QStringList{s("Invoices")};
    QTest::newRow("unknown sort key")
        << s("Customers") << Predicate() << s("nickname") << QStringList{s("nickname")};
    QTest::newRow("sort through a to-many")
        << s("Customers") << Predicate() << s("orders.total") << QStringList{s("orders.total")};
}

void tst_Fetch::errorsNameTheProblem()
{
    QFETCH(QString, entity);
    QFETCH(Predicate, predicate);
    QFETCH(QString, sortKey);
    QFETCH(QStringList, mentions);
    FetchRequest request(entity, predicate);
    if (!sortKey.isEmpty())
        request.sortDescriptors << SortDescriptor{sortKey};
    StoreError error;
    QVERIFY(m_store->main().fetch(request, &error).isEmpty());
    QCOMPARE(error.code, int(StoreError::InvalidFetch));
    for (const QString& part : mentions)
        QVERIFY2(error.message().contains(part), qPrintable(error.message()));
    StoreError countError;
    QCOMPARE(m_store->main().count(request, &countError), sortKey.isEmpty() ? -1 : 5);
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
        << QStringList{s("acme"), s("Álmos Kft."), s("Béla Szabó"), s("O'Brien \"Quotes\" /* x */"),
                       s("Zeta'; DROP TABLE \"Customers\"; --")};
    QTest::newRow("newest first, one page")
        << s("Orders") << QList<SortDescriptor>{SortDescriptor{s("created"), false}} << 0 << 3
        << QStringList{s("D9"), s("D8"), s("D7")};
    QTest::newRow("second page") << s("Orders") << QList<SortDescriptor>{SortDescriptor{s("created"), false}}
                                 << 3 << 3 << QStringList{s("D6"), s("D5"), s("D3")};
    QTest::newRow("by a to-one key, then number")
        << s("Orders")
        << QList<SortDescriptor>{SortDescriptor{s("customer.name"), false}, SortDescriptor{s("number")}} << 0
        << 4 << QStringList{s("D1"), s("D2"), s("D3"), s("D4")};
}

void tst_Fetch::sortsAndPages()
{
    QFETCH(QString, entity);
    QFETCH(QList<SortDescriptor>, sort);
    QFETCH(int, offset);
    QFETCH(int, limit);
    QFETCH(QStringList, expected);
    FetchRequest request(entity, {}, sort);
    request.offset = offset;
    request.limit = limit;
    const QString nameKey = entity == QLatin1String("Customers") ? s("full_name") : s("number");
    QStringList actual;
    for (const Record* r : m_store->main().fetch(request))
        actual << r->value(nameKey).toString();
    QCOMPARE(actual, expected);
}

void tst_Fetch::aggregates_data()
{
    using A = Aggregate;
    QTest::addColumn<QString>("entity");
    QTest::addColumn<Predicate>("predicate");
    QTest::addColumn<int>("function");
    QTest::addColumn<QString>("keyPath");
    QTest::addColumn<QVariant>("expected");
    const Predicate finalBoltRows =
        Predicate::andOf({cmp("product", Op::Equal, ref("bolt")), cmp("order.kind", Op::Equal, 0),
                          cmp("order.draft", Op::Equal, false)});
    QTest::newRow("sold quantity of an item")
        << s("Lines") << finalBoltRows << int(A::Sum) << s("quantity") << QVariant(2.0);
    QTest::newRow("sum of nothing is 0")
        << s("Payments") << cmp("amount", Op::Greater, 1000) << int(A::Sum) << s("amount") << QVariant(0.0);
    QTest::newRow("sum through a to-one key path")
        << s("Payments") << cmp("order.customer", Op::Equal, ref("almos")) << int(A::Sum) << s("amount")
        << QVariant(210.0);
    // `draft != 1` keeps D6, whose draft flag is missing.
    QTest::newRow("highest total of non-drafts")
        << s("Orders") << cmp("draft", Op::NotEqual, 1) << int(A::Max) << s("total") << QVariant(100.0);
    QTest::newRow("lowest total of invoices")
        << s("Orders") << cmp("kind", Op::Equal, 0) << int(A::Min) << s("total") << QVariant(-40.0);
    QTest::newRow("highest of nothing is missing")
        << s("Orders") << cmp("kind", Op::Equal, 7) << int(A::Max) << s("total") << QVariant();
}

void tst_Fetch::aggregates()
{
    QFETCH(QString, entity);
    QFETCH(Predicate, predicate);
    QFETCH(int, function);
    QFETCH(QString, keyPath);
    QFETCH(QVariant, expected);
    StoreError error;
    const std::optional<QVariant> value = m_store->main().storedAggregate(
        FetchRequest(entity, predicate), Aggregate(function), keyPath, &error);
    QVERIFY2(value, qPrintable(error.message()));
    QCOMPARE(value->isNull(), expected.isNull());
    if (!expected.isNull())
        QCOMPARE(value->toDouble(), expected.toDouble());
    if (Aggregate(function) == Aggregate::Sum)
        QCOMPARE(m_store->main().sum(FetchRequest(entity, predicate), keyPath), expected.toDouble());

    QVERIFY(!m_store->main().storedAggregate(FetchRequest(entity, predicate), Aggregate(function),
                                             s("no_such_key"), &error));
    QVERIFY2(error.message().contains(s("no_such_key")), qPrintable(error.message()));
}

// Unsaved records of the context count as they are in memory; the store answers for the rest.
void tst_Fetch::sumsSeeUnsavedChanges()
{
    std::unique_ptr<EditingContext> c = m_store->store().newContext();
    Record* d1 = c->record(m_refs.value(s("D1")));
    Record* d2 = c->record(m_refs.value(s("D2")));
    const FetchRequest almosPayments(s("Payments"), cmp("order.customer", Op::Equal, ref("almos")));
    QCOMPARE(c->sum(almosPayments, s("amount")), 210.0);

    c->insertRecord(s("Payments"), {{s("amount"), 5.0}, {s("order"), QVariant::fromValue(d1)}});
    QList<Record*> payments = d2->relatedList(s("payments"));
    std::sort(payments.begin(), payments.end(), [](const Record* a, const Record* b) {
        return a->value(s("amount")).toDouble() < b->value(s("amount")).toDouble();
    });
    payments.at(0)->setValue(s("amount"), 1.0); // 50 becomes 1
    c->deleteRecord(payments.at(1));            // 60 goes
    QCOMPARE(c->sum(almosPayments, s("amount")), 210.0 + 5.0 - 49.0 - 60.0);

    FetchRequest storedOnly = almosPayments;
    storedOnly.includesPendingChanges = false;
    QCOMPARE(c->sum(storedOnly, s("amount")), 210.0);
    // A payment moved to another customer's order leaves the sum although the SQL would still
    // count its stored state.
    Record* d3 = c->record(m_refs.value(s("D3")));
    payments.at(0)->setRelated(s("order"), d3);
    QCOMPARE(c->sum(almosPayments, s("amount")), 210.0 + 5.0 - 50.0 - 60.0);
}

// Searches over a whole history must be answered from an index alone. A to-one join that reads
// only columns of its destination's lookup index is told to use it; one that reads more is not.
void tst_Fetch::historySearchesReadIndexesOnly_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<Predicate>("predicate");
    QTest::addColumn<int>("function");
    QTest::addColumn<QString>("keyPath");
    QTest::addColumn<bool>("lookupIndex");
    QTest::addColumn<bool>("covering");
    const Predicate finalLines =
        Predicate::andOf({cmp("product", Op::Equal, ref("bolt")), cmp("order.kind", Op::Equal, 0),
                          cmp("order.draft", Op::Equal, false),
                          Predicate::notOf(cmp("order", Op::In, QVariantList{ref("D2")}))});
    QTest::newRow("sold quantity of a product")
        << s("Lines") << finalLines << int(Aggregate::Sum) << s("quantity") << true << true;
    QTest::newRow("deliveries of a product") << s("Deliveries") << cmp("product", Op::Equal, ref("bolt"))
                                             << int(Aggregate::Sum) << s("quantity") << false << true;
    QTest::newRow("highest number of a year")
        << s("Orders")
        << Predicate::andOf({cmp("kind", Op::Equal, 0), cmp("created", Op::GreaterOrEqual, day(2024, 1, 1)),
                             cmp("created", Op::LessOrEqual, day(2024, 12, 31)),
                             cmp("draft", Op::NotEqual, 1)})
        << int(Aggregate::Max) << s("number") << false << true;
    QTest::newRow("a join reading beyond the lookup index")
        << s("Lines")
        << Predicate::andOf({cmp("product", Op::Equal, ref("bolt")), cmp("order.total", Op::Greater, 0)})
        << int(Aggregate::Sum) << s("quantity") << false << true;
}

void tst_Fetch::historySearchesReadIndexesOnly()
{
    QFETCH(QString, entity);
    QFETCH(Predicate, predicate);
    QFETCH(int, function);
    QFETCH(QString, keyPath);
    QFETCH(bool, lookupIndex);
    QFETCH(bool, covering);
    const QueryPlan plan =
        m_store->store().explain(FetchRequest(entity, predicate), Aggregate(function), keyPath);
    QVERIFY(!plan.steps.isEmpty());
    QCOMPARE(plan.statement.contains(s("INDEXED BY")), lookupIndex);
    const QString steps = plan.steps.join(QLatin1Char('\n'));
    QVERIFY2(!steps.contains(s("SCAN")), qPrintable(steps));
    QCOMPARE(steps.contains(s("COVERING INDEX")), covering);
    QVERIFY2(steps.contains(s("COVERING INDEX Orders_pk_kind_draft")) == lookupIndex, qPrintable(steps));
}

QTEST_GUILESS_MAIN(tst_Fetch)
#include "tst_fetch.moc"
