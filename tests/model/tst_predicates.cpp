#include "modeltestsupport.h"
#include "predicate/evaluator.h"
#include "predicate/formatter.h"
#include "predicate/parser.h"

#include <QDateTime>

using namespace corvanta::model;
using namespace corvanta::store;

using namespace corvanta::model::testing;
using namespace corvanta::predicate;

namespace {

QDateTime at(const char* isoUtc)
{
    QDateTime d = QDateTime::fromString(s(isoUtc), Qt::ISODate);
    d.setTimeSpec(Qt::UTC);
    return d;
}

} // namespace

// Every predicate the program stores or fetches with, run through parse, format, the SQL the
// store compiles and the in-memory evaluator, against a small company with known answers.
class tst_Predicates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void everyPath_data();
    void everyPath();

private:
    Record* add(const char* label, const char* entity, const QVariantMap& values);
    QVariant argument(const QString& token) const;
    QString labelOf(const Record* r) const { return m_labels.value(r->ref()); }

    std::unique_ptr<ScratchCompany> m_store;
    QHash<QString, RecordRef> m_refs;
    QHash<RecordRef, QString> m_labels;
};

Record* tst_Predicates::add(const char* label, const char* entity, const QVariantMap& values)
{
    Record* r = m_store->main().insertRecord(s(entity), values);
    m_refs.insert(s(label), r->ref());
    m_labels.insert(r->ref(), s(label));
    return r;
}

// "#label" is a record, "i:3" an integer, "t:2024-01-01T00:00:00" a date, anything else text.
QVariant tst_Predicates::argument(const QString& token) const
{
    if (token.startsWith(QLatin1Char('#')))
        return QVariant::fromValue(m_refs.value(token.mid(1)));
    if (token.startsWith(QLatin1String("i:")))
        return token.mid(2).toLongLong();
    if (token.startsWith(QLatin1String("t:")))
        return at(qPrintable(token.mid(2)));
    return token;
}

void tst_Predicates::initTestCase()
{
    m_store = std::make_unique<ScratchCompany>();
    const auto r = [this](const char* label) { return QVariant::fromValue(m_refs.value(s(label))); };

    add("version", "Settings", {{s("key"), s("version")}, {s("value"), s("1.0")}});
    add("use_warehouse", "Settings", {{s("key"), s("use_warehouse")}, {s("value"), 1}});

    const struct
    {
        const char* label;
        int type;
        QVariant subtype;
        const char* parent;
    } categories[] = {
        {"hClients", -1, {}, nullptr},   {"allClients", -1, -1, "hClients"}, {"tCompany", 1, 0, "hClients"},
        {"tSupplier", 1, 1, "hClients"}, {"tIndividual", 1, 2, "hClients"},  {"tFriends", 1, {}, "hClients"},
        {"hItems", -2, {}, nullptr},     {"tService", 2, 0, "hItems"},       {"tProduct", 2, 1, "hItems"},
        {"hDocs", -3, {}, nullptr},      {"tInvoice", 3, 0, "hDocs"},        {"tQuotation", 3, 3, "hDocs"},
        {"tCancel", 3, 100, "hDocs"},    {"tUrgent", 3, {}, "hDocs"},        {"hTodos", -4, {}, nullptr},
        {"tPending", 4, 0, "hTodos"},    {"tDone", 4, 1, "hTodos"},
    };
    for (const auto& c : categories)
        add(c.label, "Categories",
            {{s("name"), s(c.label)},
             {s("type"), c.type},
             {s("subtype"), c.subtype},
             {s("parent"), c.parent ? r(c.parent) : QVariant()}});

    add("cc01", "Compose", {{s("name"), s("client_custom01")}, {s("label"), s("Custom Field 1")}});
    add("cc06", "Compose", {{s("name"), s("client_custom06")}, {s("label"), s("")}, {s("hidden"), true}});
    add("ic01", "Compose", {{s("name"), s("item_custom01")}, {s("label"), s("Colour")}});
    add("icp01", "Compose", {{s("name"), s("item_custom_price01")}, {s("label"), s("Unit Price")}});
    add("mc01", "Compose", {{s("name"), s("my_custom01")}, {s("label"), s("VAT ID")}});

    add("usd", "Currencies", {{s("code"), s("USD")}, {s("selectable"), false}});
    add("eur", "Currencies", {{s("code"), s("EUR")}, {s("selectable"), true}});
    add("huf", "Currencies", {{s("code"), s("HUF")}, {s("selectable"), false}});
    add("transfer", "PaymentTypes", {{s("name"), s("Bank Transfer")}});
    add("cash", "PaymentTypes", {{s("name"), s("Cash")}});
    add("bank1", "Banks", {{s("line1"), s("My Bank")}});
    add("bank2", "Banks", {{s("line1"), s("Other Bank")}});
    add("each", "Units", {{s("name"), s("Each")}});
    add("hours", "Units", {{s("name"), s("Hours")}});
    add("tax10", "Taxes", {{s("name"), s("10%")}, {s("rate1"), 10.0}});
    add("gst", "Taxes", {{s("name"), s("GST / PST")}, {s("rate1"), 5.0}, {s("rate2"), 7.0}});
    add("me", "MyCompany",
        {{s("name"), s("My Company")},
         {s("default_currency"), r("usd")},
         {s("default_payment_type"), r("transfer")}});

    add("acme", "Clients",
        {{s("type"), 0},
         {s("company_name"), s("Acme Ltd")},
         {s("identifier"), s("C-1")},
         {s("tags"), QVariantList{r("tCompany"), r("tFriends")}}});
    add("smith", "Clients",
        {{s("type"), 2},
         {s("first_name"), s("John")},
         {s("last_name"), s("Smith")},
         {s("tags"), QVariantList{r("tIndividual")}}});
    add("parts", "Clients",
        {{s("type"), 1},
         {s("company_name"), s("Parts Smithy")},
         {s("tags"), QVariantList{r("tCompany"), r("tSupplier")}}});

    add("bolt", "Items",
        {{s("type"), 1},
         {s("name"), s("Bolt")},
         {s("code"), s("B-1")},
         {s("desc"), s("steel")},
         {s("stock_current"), 3.0},
         {s("stock_critical"), 5.0},
         {s("unit"), r("each")},
         {s("tax"), r("tax10")},
         {s("tags"), QVariantList{r("tProduct")}}});
    add("nut", "Items",
        {{s("type"), 1},
         {s("name"), s("Nut")},
         {s("code"), s("N-1")},
         {s("desc"), s("brass")},
         {s("stock_current"), 10.0},
         {s("stock_critical"), 5.0}});
    add("consult", "Items",
        {{s("type"), 0},
         {s("name"), s("Consulting")},
         {s("code"), s("S-1")},
         {s("desc"), s("hourly bolt advice")},
         {s("tags"), QVariantList{r("tService")}}});
    add("w1", "Warehouse", {{s("item"), r("bolt")}, {s("quantity"), 10.0}, {s("client"), r("parts")}});
    add("w2", "Warehouse", {{s("item"), r("nut")}, {s("quantity"), 5.0}});

    add("tplInv", "Templates", {{s("type"), 0}, {s("identifier"), s("T-INV")}});
    add("tplQuo", "Templates", {{s("type"), 3}});
    add("tplRep", "Templates", {{s("type"), 100}});
    add("tplGrp", "Templates", {{s("type"), 110}});
    add("e1", "TemplateElements",
        {{s("template"), r("tplInv")}, {s("section"), s("details")}, {s("page_side"), 0}});
    add("e2", "TemplateElements",
        {{s("template"), r("tplInv")}, {s("section"), s("details")}, {s("page_side"), 1}});
    add("e3", "TemplateElements",
        {{s("template"), r("tplInv")}, {s("section"), s("document_header")}, {s("page_side"), 0}});
    add("e4", "TemplateElements",
        {{s("template"), r("tplQuo")}, {s("section"), s("details")}, {s("page_side"), 0}});
    add("rc1", "ReportColumns", {{s("view"), 0}});
    add("rc2", "ReportColumns", {{s("view"), 0}});
    add("rc3", "ReportColumns", {{s("view"), 1}});

    const auto document = [&](const char* label, int type, bool draft, const char* client, int clientType,
                              double total, const QList<double>& payments, const char* paymentType,
                              const char* bank, const char* currency, const char* date,
                              const QStringList& tagLabels) {
        QVariantList tags;
        for (const QString& t : tagLabels)
            tags << QVariant::fromValue(m_refs.value(t));
        Record* doc = add(label, "Documents",
                          {{s("type"), type},
                           {s("draft"), draft},
                           {s("client"), r(client)},
                           {s("client_type"), clientType},
                           {s("sum_total"), total},
                           {s("payment_type"), r(paymentType)},
                           {s("bank"), r(bank)},
                           {s("currency"), r(currency)},
                           {s("date_creation"), at(date)},
                           {s("tags"), tags}});
        for (double amount : payments)
            m_store->main().insertRecord(s("Payments"), {{s("amount"), amount},
                                                         {s("document"), QVariant::fromValue(doc)},
                                                         {s("payment"), r("cash")}});
    };
    // label, type, draft, client, client type, total, payments, payment type, bank, currency, date, tags
    document("inv1", 0, false, "acme", 0, 100.0, {100.0}, "transfer", "bank1", "usd", "2024-03-10T12:00:00",
             {s("tInvoice"), s("tUrgent")});
    document("inv2", 0, false, "acme", 0, 50.0, {20.0}, "transfer", "bank2", "eur", "2024-06-01T12:00:00",
             {s("tInvoice")});
    document("inv3", 0, true, "smith", 2, 30.0, {}, "cash", "bank1", "usd", "2024-07-01T12:00:00",
             {s("tInvoice")});
    document("inv4", 0, false, "parts", 1, 40.0, {}, "transfer", "bank1", "usd", "2023-12-30T12:00:00",
             {s("tInvoice")});
    document("inv5", 0, false, "parts", 1, -40.0, {}, "transfer", "bank1", "usd", "2024-01-02T12:00:00",
             {s("tInvoice"), s("tCancel")});
    document("quo1", 3, false, "smith", 2, 70.0, {}, "cash", "bank2", "huf", "2024-03-15T12:00:00",
             {s("tQuotation")});
    m_store->main().record(m_refs.value(s("inv4")))->setValue(s("cancel_reference"), r("inv5"));

    const struct
    {
        const char* label;
        const char* document;
        const char* item;
        const char* unit;
        const char* tax;
        double quantity;
    } rows[] = {{"r1", "inv1", "bolt", "each", "tax10", 2},   {"r2", "inv1", "nut", "each", "tax10", 1},
                {"r3", "inv2", "consult", "hours", "gst", 5}, {"r4", "inv3", "bolt", "each", "tax10", 4},
                {"r5", "quo1", "bolt", "each", "gst", 1},     {"r6", "inv4", "nut", "each", "tax10", 3},
                {"r7", "inv5", "nut", "each", "tax10", -3}};
    for (const auto& row : rows)
        add(row.label, "DocumentRows",
            {{s("document"), r(row.document)},
             {s("item"), r(row.item)},
             {s("unit"), r(row.unit)},
             {s("tax"), r(row.tax)},
             {s("quantity"), row.quantity}});
    saveOrFail(m_store->main());
    m_store->reopen();
}

void tst_Predicates::cleanupTestCase()
{
    m_store.reset();
}

void tst_Predicates::everyPath_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char* entity, const char* text, const QStringList& arguments,
                        const QStringList& expected) {
        QTest::addRow("%s: %s", entity, text) << s(entity) << s(text) << arguments << expected;
    };
    // Settings
    row("Settings", "key == 'version'", {}, {s("version")});
    row("Settings", "key == 'use_warehouse'", {}, {s("use_warehouse")});
    // Sidebar entries and tags
    row("Categories", "type == 4 && subtype == 0", {}, {s("tPending")});
    row("Categories", "type == 4 && subtype == %ld", {s("i:1")}, {s("tDone")});
    row("Categories", "type == 3", {}, {s("tCancel"), s("tInvoice"), s("tQuotation"), s("tUrgent")});
    row("Categories", "type == 3 && subtype == 100", {}, {s("tCancel")});
    row("Categories", "type == 3 && subtype == %@", {s("i:3")}, {s("tQuotation")});
    row("Categories", "type == 2 && subtype == %@", {s("i:1")}, {s("tProduct")});
    row("Categories", "type == 2 && subtype == %ld", {s("i:0")}, {s("tService")});
    row("Categories", "type == 1 && subtype == 0", {}, {s("tCompany")});
    row("Categories", "type == 1 && subtype == 1", {}, {s("tSupplier")});
    row("Categories", "type == 1 && subtype == 2", {}, {s("tIndividual")});
    row("Categories", "type == 1 && subtype == %ld", {s("i:2")}, {s("tIndividual")});
    row("Categories", "type == 1 && subtype <= 1", {}, {s("tCompany"), s("tSupplier")});
    row("Categories", "parent == NULL", {}, {s("hClients"), s("hDocs"), s("hItems"), s("hTodos")});
    row("Categories", "type == 1", {}, {s("tCompany"), s("tFriends"), s("tIndividual"), s("tSupplier")});
    row("Categories", "type == 2", {}, {s("tProduct"), s("tService")});
    row("Categories", "type == %ld && subtype == NULL", {s("i:1")}, {s("tFriends")});
    row("Categories", "type == %d && subtype == NULL", {s("i:3")}, {s("tUrgent")});
    // Templates
    row("Templates", "type == %@", {s("i:0")}, {s("tplInv")});
    row("Templates", "type == 100 || type == 110", {}, {s("tplGrp"), s("tplRep")});
    row("Templates", "type == %ld || type == %ld", {s("i:100"), s("i:110")}, {s("tplGrp"), s("tplRep")});
    row("Templates", "type == 110", {}, {s("tplGrp")});
    row("Templates", "type == 120", {}, {});
    row("Templates", "type == 130", {}, {});
    row("Templates", "identifier == %@", {s("T-INV")}, {s("tplInv")});
    row("TemplateElements", "template == %@", {s("#tplInv")}, {s("e1"), s("e2"), s("e3")});
    row("TemplateElements", "template == %@ && section == %@", {s("#tplInv"), s("details")},
        {s("e1"), s("e2")});
    row("TemplateElements", "template == %@ && section == %@ && page_side == 1", {s("#tplInv"), s("details")},
        {s("e2")});
    row("ReportColumns", "view == %ld", {s("i:0")}, {s("rc1"), s("rc2")});
    // Custom fields
    row("Compose", "name beginswith[c] %@", {s("CLIENT_")}, {s("cc01"), s("cc06")});
    row("Compose", "name beginswith[c] %@ && label != ''", {s("client_")}, {s("cc01")});
    row("Compose", "name beginswith %@ && not (name contains 'price')", {s("item_")}, {s("ic01")});
    row("Compose", "name beginswith %@ && name contains 'price'", {s("item_")}, {s("icp01")});
    // Currencies offered
    row("Currencies", "selectable == YES || my_company_default_currency.default_currency == self", {},
        {s("eur"), s("usd")});
    row("Currencies",
        "selectable == YES || my_company_default_currency.default_currency == self || self == %@",
        {s("#huf")}, {s("eur"), s("huf"), s("usd")});
    // Clients
    row("Clients", "self == %@", {s("#smith")}, {s("smith")});
    row("Clients", "ANY %@ in tags", {s("#tCompany")}, {s("acme"), s("parts")});
    row("Clients", "ANY tags == %@", {s("#tFriends")}, {s("acme")});
    row("Clients", "full_name == %@", {s("John Smith")}, {s("smith")});
    row("Clients", "company_name CONTAINS[c] %@ || first_name CONTAINS[c] %@ || last_name CONTAINS[c] %@",
        {s("smith"), s("smith"), s("smith")}, {s("parts"), s("smith")});
    row("Clients", "company_name CONTAINS[c] %@ && type == 1", {s("SMITH")}, {s("parts")});
    row("Clients", "type == 1", {}, {s("parts")});
    row("Clients", "company_name CONTAINS[cd] \"smith\"", {}, {s("parts")});
    // Items and stock
    row("Items", "stock_current <= stock_critical && type == 1", {}, {s("bolt")});
    row("Items", "name CONTAINS[c] %@ || code CONTAINS[c] %@ || desc CONTAINS[c] %@",
        {s("BOLT"), s("BOLT"), s("BOLT")}, {s("bolt"), s("consult")});
    row("Items", "name == %@", {s("Nut")}, {s("nut")});
    row("Items", "ANY tags == %@", {s("#tProduct")}, {s("bolt")});
    row("Warehouse", "item == %@", {s("#bolt")}, {s("w1")});
    // Document rows
    row("DocumentRows", "item == %@", {s("#bolt")}, {s("r1"), s("r4"), s("r5")});
    row("DocumentRows", "unit == %@", {s("#hours")}, {s("r3")});
    row("DocumentRows", "tax == %@", {s("#gst")}, {s("r3"), s("r5")});
    row("DocumentRows", "item == %@ && document.type == 0 && document.draft == NO", {s("#nut")},
        {s("r2"), s("r6"), s("r7")});
    row("DocumentRows", "item == %@ && document.draft != YES", {s("#bolt")}, {s("r1"), s("r5")});
    row("DocumentRows", "document.payment_type == %@", {s("#cash")}, {s("r4"), s("r5")});
    row("DocumentRows", "document.currency == %@", {s("#eur")}, {s("r3")});
    row("DocumentRows", "document.%K >= %@ && document.%K <= %@ && document.draft != YES",
        {s("date_creation"), s("t:2024-01-01T00:00:00"), s("date_creation"), s("t:2024-03-31T23:59:59")},
        {s("r1"), s("r2"), s("r5"), s("r7")});
    row("DocumentRows", "ANY %@ in document.tags", {s("#tUrgent")}, {s("r1"), s("r2")});
    // Documents
    row("Documents", "sum_total == payments.@sum.amount && type == 0 && draft == NO", {}, {s("inv1")});
    row("Documents",
        "sum_total != payments.@sum.amount && type == 0 && draft == NO && cancel_reference == NULL", {},
        {s("inv2")});
    row("Documents", "draft == YES", {}, {s("inv3")});
    row("Documents", "client == %@", {s("#acme")}, {s("inv1"), s("inv2")});
    row("Documents", "draft == NO && client == %@", {s("#smith")}, {s("quo1")});
    row("Documents", "draft == NO && ANY rows.item == %@", {s("#bolt")}, {s("inv1"), s("quo1")});
    row("Documents", "payment_type == %@", {s("#transfer")}, {s("inv1"), s("inv2"), s("inv4"), s("inv5")});
    row("Documents", "bank == %@", {s("#bank2")}, {s("inv2"), s("quo1")});
    row("Documents", "currency == %@", {s("#usd")}, {s("inv1"), s("inv3"), s("inv4"), s("inv5")});
    row("Documents", "ANY tags == %@", {s("#tInvoice")},
        {s("inv1"), s("inv2"), s("inv3"), s("inv4"), s("inv5")});
    row("Documents", "type == %ld && date_creation >= %@ && date_creation <= %@ && draft != 1",
        {s("i:0"), s("t:2024-01-01T00:00:00"), s("t:2024-12-31T23:59:59")},
        {s("inv1"), s("inv2"), s("inv5")});
    row("Documents", "%K >= %@ && %K <= %@ && draft != YES",
        {s("date_creation"), s("t:2024-03-01T00:00:00"), s("date_creation"), s("t:2024-06-30T23:59:59")},
        {s("inv1"), s("inv2"), s("quo1")});
    row("Documents", "client_type == 1", {}, {s("inv4"), s("inv5")});
    row("Documents", "cancel_reference != nil", {}, {s("inv4"), s("inv5")});
}

void tst_Predicates::everyPath()
{
    QFETCH(QString, entity);
    QFETCH(QString, text);
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, expected);

    QVariantList values;
    QVariantList records;
    for (const QString& token : arguments) {
        values << argument(token);
        if (token.startsWith(QLatin1Char('#')))
            records << argument(token);
    }
    ParseError parseError;
    const std::optional<Predicate> predicate = Parser::parse(text, values, &parseError);
    QVERIFY2(predicate, qPrintable(parseError.message()));

    // The stored form reads back as the same tree (records are bound again).
    const QString stored = Formatter::format(*predicate);
    const std::optional<Predicate> reread = Parser::parse(stored, records, &parseError);
    QVERIFY2(reread, qPrintable(stored + QLatin1String(": ") + parseError.message()));
    QVERIFY2(*reread == *predicate, qPrintable(stored));

    EditingContext& c = m_store->main();
    StoreError error;
    QStringList bySql;
    for (const Record* r : c.fetch(FetchRequest(entity, *predicate), &error))
        bySql << labelOf(r);
    QVERIFY2(!error.isError(), qPrintable(error.message()));
    bySql.sort();
    QCOMPARE(bySql, expected);
    QCOMPARE(c.count(FetchRequest(entity, *predicate)), int(expected.size()));

    QStringList inMemory;
    for (const Record* r : c.fetch(FetchRequest(entity))) {
        if (Evaluator::evaluate(*predicate, *r))
            inMemory << labelOf(r);
    }
    inMemory.sort();
    QCOMPARE(inMemory, expected);
}

QTEST_GUILESS_MAIN(tst_Predicates)
#include "tst_predicates.moc"
