#include "modeltestsupport.h"
#include "predicate/evaluator.h"
#include "predicate/parser.h"

#include <QDateTime>

using namespace corvanta::model::testing;
using namespace corvanta::predicate;
using namespace corvanta::store;

namespace {

QDateTime at(const QString& isoUtc)
{
    return QDateTime::fromString(isoUtc + QLatin1Char('Z'), Qt::ISODate);
}

} // namespace

// The predicates the program stores or fetches with, one for each form of the language it uses,
// run through the SQL the store compiles and the in-memory evaluator, against a
// small company with known answers. The searches that run over a company's whole history, as
// stock and numbering make them, must be answered by the model's covering indexes alone.
class tst_Predicates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyPath_data();
    void everyPath();

private:
    QVariant r(const char* label) const { return QVariant::fromValue(m_refs.value(s(label))); }
    void add(const char* label, const char* entity, const QVariantMap& values)
    {
        const RecordRef ref = m_store.main().insertRecord(s(entity), values)->ref();
        m_refs.insert(s(label), ref);
        m_labels.insert(ref, s(label));
    }
    // "#label" is a record, "{#label}" a list of one, "i:3" an integer, "t:2024-01-01T00:00:00" a
    // date, anything else text.
    QVariant argument(const QString& token) const
    {
        if (token.startsWith(QLatin1Char('{')))
            return QVariantList{argument(token.mid(1).chopped(1))};
        if (token.startsWith(QLatin1Char('#')))
            return QVariant::fromValue(m_refs.value(token.mid(1)));
        if (token.startsWith(QLatin1String("i:")))
            return token.mid(2).toLongLong();
        return token.startsWith(QLatin1String("t:")) ? QVariant(at(token.mid(2))) : QVariant(token);
    }

    ScratchCompany m_store;
    QHash<QString, RecordRef> m_refs;
    QHash<RecordRef, QString> m_labels;
};

void tst_Predicates::initTestCase()
{
    const struct
    {
        const char* label;
        int type;
        QVariant subtype;
        const char* parent;
    } categories[] = {
        {"hClients", -1, {}, nullptr},     {"tCompany", 1, 0, "hClients"},  {"tSupplier", 1, 1, "hClients"},
        {"tIndividual", 1, 2, "hClients"}, {"tFriends", 1, {}, "hClients"}, {"hDocs", -3, {}, nullptr},
        {"tInvoice", 3, 0, "hDocs"},       {"tQuotation", 3, 3, "hDocs"},   {"tUrgent", 3, {}, "hDocs"}};
    for (const auto& c : categories)
        add(c.label, "Categories",
            {{s("name"), s(c.label)},
             {s("type"), c.type},
             {s("subtype"), c.subtype},
             {s("parent"), c.parent ? r(c.parent) : QVariant()}});

    add("tplInv", "Templates", {{s("type"), 0}});
    add("tplRep", "Templates", {{s("type"), 100}});
    add("tplGrp", "Templates", {{s("type"), 110}});
    add("cc01", "Compose", {{s("name"), s("client_custom01")}, {s("label"), s("Custom Field 1")}});
    add("cc06", "Compose", {{s("name"), s("client_custom06")}, {s("label"), s("")}});
    add("ic01", "Compose", {{s("name"), s("item_custom01")}, {s("label"), s("Colour")}});
    add("icp01", "Compose", {{s("name"), s("item_custom_price01")}, {s("label"), s("Unit Price")}});

    add("usd", "Currencies", {{s("code"), s("USD")}, {s("selectable"), false}});
    add("eur", "Currencies", {{s("code"), s("EUR")}, {s("selectable"), true}});
    add("huf", "Currencies", {{s("code"), s("HUF")}, {s("selectable"), false}});
    add("me", "MyCompany", {{s("name"), s("My Company")}, {s("default_currency"), r("usd")}});

    const auto client = [&](const char* label, int type, const char* company, const char* last,
                            const QVariantList& tags) {
        add(label, "Clients",
            {{s("type"), type},
             {s("company_name"), s(company)},
             {s("first_name"), s("John")},
             {s("last_name"), s(last)},
             {s("tags"), tags}});
    };
    client("acme", 0, "Acme Ltd", "", {r("tCompany"), r("tFriends")});
    client("smith", 2, "", "Smith", {r("tIndividual")});
    client("parts", 1, "Parts Smithy", "", {r("tCompany"), r("tSupplier")});
    add("bolt", "Items", {{s("type"), 1}, {s("stock_current"), 3.0}, {s("stock_critical"), 5.0}});
    add("nut", "Items", {{s("type"), 1}, {s("stock_current"), 10.0}, {s("stock_critical"), 5.0}});
    add("consult", "Items", {{s("type"), 0}});
    add("w1", "Warehouse", {{s("item"), r("bolt")}, {s("quantity"), 5.0}});
    add("w2", "Warehouse", {{s("item"), r("nut")}, {s("quantity"), 5.0}});

    const auto document = [&](const char* label, int type, bool draft, double total,
                              const QList<double>& payments, const char* date, const QVariantList& tags) {
        add(label, "Documents",
            {{s("type"), type},
             {s("draft"), draft},
             {s("sum_total"), total},
             {s("date_creation"), at(s(date))},
             {s("tags"), tags}});
        for (double amount : payments)
            m_store.main().insertRecord(s("Payments"), {{s("amount"), amount}, {s("document"), r(label)}});
    };
    document("inv1", 0, false, 100, {60, 40}, "2024-03-10T12:00:00", {r("tUrgent")});
    document("inv2", 0, false, 50, {20}, "2024-06-01T12:00:00", {});
    document("inv3", 0, true, 30, {}, "2024-07-01T12:00:00", {});
    document("inv4", 0, false, 40, {}, "2023-12-30T12:00:00", {});
    document("inv5", 0, false, -40, {}, "2024-01-02T12:00:00", {});
    document("inv6", 0, false, 80, {}, "2024-08-01T12:00:00", {});
    document("quo1", 3, false, 70, {}, "2024-03-15T12:00:00", {});
    m_store.main().record(m_refs.value(s("inv4")))->setValue(s("cancel_reference"), r("inv5"));
    const char* const rows[][3] = {{"r1", "inv1", "bolt"}, {"r2", "inv1", "nut"},  {"r3", "inv2", "bolt"},
                                   {"r4", "inv3", "bolt"}, {"r5", "quo1", "bolt"}, {"r6", "inv4", "nut"},
                                   {"r7", "inv5", "nut"}}; // label, document, item
    for (const auto& row : rows)
        add(row[0], "DocumentRows",
            {{s("document"), r(row[1])}, {s("item"), r(row[2])}, {s("quantity"), 1.0}});
    saveOrFail(m_store.main());
    m_store.reopen();
}

void tst_Predicates::everyPath_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("plan"); // "<sum|max> <key path> <covering index>", for history searches
    const auto row = [](const char* entity, const char* text, const QStringList& arguments,
                        const char* expected, const char* plan = "") {
        QTest::addRow("%s: %s", entity, text) << s(entity) << s(text) << arguments << s(expected) << s(plan);
    };
    row("Categories", "type == 3 && subtype == %@", {s("i:3")}, "tQuotation");
    row("Categories", "type == %d && subtype == NULL", {s("i:1")}, "tFriends");
    row("Categories", "type == 1 && subtype <= 1", {}, "tCompany tSupplier");
    row("Categories", "parent == NULL", {}, "hClients hDocs");
    row("Templates", "type == %ld || type == %ld", {s("i:100"), s("i:110")}, "tplGrp tplRep");
    row("Compose", "name beginswith[c] %@ && label != ''", {s("CLIENT_")}, "cc01");
    row("Compose", "name beginswith %@ && not (name contains 'price')", {s("item_")}, "ic01");
    row("Currencies",
        "selectable == YES || my_company_default_currency.default_currency == self || self == %@",
        {s("#huf")}, "eur huf usd");
    row("Clients", "ANY %@ in tags", {s("#tCompany")}, "acme parts");
    row("Clients", "ANY tags == %@", {s("#tFriends")}, "acme");
    row("Clients", "full_name == %@", {s("John Smith")}, "smith");
    row("Clients", "company_name CONTAINS[c] %@ || first_name CONTAINS[c] %@ || last_name CONTAINS[c] %@",
        {s("smith"), s("smith"), s("smith")}, "parts smith");
    row("Clients", "company_name CONTAINS[cd] \"SMITH\"", {}, "parts");
    row("Items", "stock_current <= stock_critical && type == 1", {}, "bolt");
    row("Warehouse", "item == %@", {s("#bolt")}, "w1", "sum quantity Warehouse_item_quantity");
    row("DocumentRows", "item == %@ && document.type == 0 && document.draft == NO && NOT (document IN %@)",
        {s("#bolt"), s("{#inv2}")}, "r1", "sum quantity DocumentRows_item_document_quantity");
    row("DocumentRows", "document.%K >= %@ && document.%K <= %@ && document.draft != YES",
        {s("date_creation"), s("t:2024-01-01T00:00:00"), s("date_creation"), s("t:2024-03-31T23:59:59")},
        "r1 r2 r5 r7");
    row("DocumentRows", "ANY %@ in document.tags", {s("#tUrgent")}, "r1 r2");
    row("Documents", "sum_total == payments.@sum.amount && type == 0 && draft == NO", {}, "inv1");
    row("Documents",
        "sum_total != payments.@sum.amount && type == 0 && draft == NO && cancel_reference == NULL", {},
        "inv2 inv6");
    row("Documents", "draft == YES", {}, "inv3");
    row("Documents", "draft == NO && ANY rows.item == %@", {s("#bolt")}, "inv1 inv2 quo1");
    row("Documents", "type == %ld && date_creation >= %@ && date_creation <= %@ && draft != 1",
        {s("i:0"), s("t:2024-01-01T00:00:00"), s("t:2024-12-31T23:59:59")}, "inv1 inv2 inv5 inv6",
        "max number Documents_type_date_creation_draft_number");
    row("Documents", "cancel_reference != nil", {}, "inv4 inv5");
}

void tst_Predicates::everyPath()
{
    QFETCH(QString, text);
    QFETCH(QStringList, arguments);
    QVariantList values;
    for (const QString& token : arguments)
        values << argument(token);
    ParseError parseError;
    const std::optional<Predicate> predicate = Parser::parse(text, values, &parseError);
    QVERIFY2(predicate, qPrintable(parseError.message()));

    QFETCH(QString, entity);
    EditingContext& c = m_store.main();
    StoreError error;
    QStringList bySql;
    for (const Record* r : c.fetch(FetchRequest(entity, *predicate), &error))
        bySql << m_labels.value(r->ref());
    QVERIFY2(!error.isError(), qPrintable(error.message()));
    bySql.sort();
    QTEST(bySql.join(QLatin1Char(' ')), "expected");
    QCOMPARE(c.count(FetchRequest(entity, *predicate)), int(bySql.size()));

    QStringList inMemory;
    for (const Record* r : c.fetch(FetchRequest(entity))) {
        if (Evaluator::evaluate(*predicate, *r))
            inMemory << m_labels.value(r->ref());
    }
    inMemory.sort();
    QCOMPARE(inMemory, bySql);

    QFETCH(QString, plan);
    if (plan.isEmpty())
        return;
    const QStringList p = plan.split(QLatin1Char(' '));
    const QueryPlan q = m_store.store().explain(FetchRequest(entity, *predicate),
                                                p[0] == s("max") ? Aggregate::Max : Aggregate::Sum, p[1]);
    const QString steps = q.steps.join(QLatin1Char('\n'));
    QVERIFY2(!steps.contains(s("SCAN")) && steps.contains(s("COVERING INDEX ") + p[2]),
             qPrintable(q.statement + s("\n") + steps));
}

QTEST_GUILESS_MAIN(tst_Predicates)
#include "tst_predicates.moc"
