#include "model/corvantamodel.h"
#include "modeltestsupport.h"
#include "predicate/literal.h"

using namespace corvanta::model;
using namespace corvanta::model::testing;
using namespace corvanta::store;

Q_DECLARE_METATYPE(corvanta::predicate::Predicate)

class tst_DataModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyRelationshipHasItsInverse();
    void relationships_data();
    void relationships();
    void companyDefaultsAreNamedForTheirKind();
    void historySearchesReadIndexesOnly_data();
    void historySearchesReadIndexesOnly();
};

void tst_DataModel::everyRelationshipHasItsInverse()
{
    const DataModel& model = corvantaDataModel();
    for (const EntityDescription& entity : model.entities()) {
        for (const RelationshipDescription& r : entity.relationships()) {
            const RelationshipDescription& inverse = model.inverseOf(r);
            QCOMPARE(inverse.destination, entity.name());
            QCOMPARE(inverse.inverse, r.name);
            // Exactly one side of a to-one pair keeps the column, unless the relationship is
            // its own inverse.
            if (!r.toMany && !inverse.toMany && &inverse != &r)
                QVERIFY2((r.storage == RelationshipStorage::ForeignKey) !=
                             (inverse.storage == RelationshipStorage::ForeignKey),
                         qPrintable(entity.name() + QLatin1Char('.') + r.name));
        }
    }
}

void tst_DataModel::relationships_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<QString>("relationship");
    QTest::addColumn<QString>("destination");
    QTest::addColumn<bool>("toMany");
    QTest::addColumn<int>("deleteRule");
    const auto row = [](const char* entity, const char* name, const char* destination, bool toMany,
                        DeleteRule rule) {
        QTest::addRow("%s.%s", entity, name) << QString::fromLatin1(entity) << QString::fromLatin1(name)
                                             << QString::fromLatin1(destination) << toMany << int(rule);
    };
    using R = DeleteRule;
    row("Documents", "rows", "DocumentRows", true, R::Cascade);
    row("Documents", "summaries", "DocumentSummaries", true, R::Cascade);
    row("Documents", "payments", "Payments", true, R::Cascade);
    row("Documents", "client", "Clients", false, R::Nullify);
    row("Documents", "cancel_reference", "Documents", false, R::Nullify);
    row("Documents", "default_currency", "Currencies", false, R::Nullify);
    row("Documents", "tags", "Categories", true, R::Nullify);
    row("Clients", "documents", "Documents", true, R::Nullify);
    row("Clients", "addresses", "Addresses", true, R::Cascade);
    row("Clients", "default_address", "Addresses", false, R::Nullify);
    row("Clients", "contacts", "Contacts", true, R::Cascade);
    row("Items", "warehouse", "Warehouse", true, R::Cascade);
    row("Items", "document_rows", "DocumentRows", true, R::Nullify);
    row("Warehouse", "client", "Clients", false, R::Nullify);
    row("Payments", "payment", "PaymentTypes", false, R::Nullify);
    row("Taxes", "document_rows", "DocumentRows", true, R::Deny);
    row("Units", "document_rows", "DocumentRows", true, R::Deny);
    row("PaymentTypes", "documents", "Documents", true, R::Deny);
    row("Banks", "documents", "Documents", true, R::Deny);
    row("Templates", "documents", "Documents", true, R::Deny);
    row("Templates", "template_elements", "TemplateElements", true, R::Cascade);
    row("Categories", "children", "Categories", true, R::Cascade);
    row("MyCompany", "category_expanded", "Categories", true, R::Nullify);
    row("ToDos", "client", "Clients", false, R::Nullify);
}

void tst_DataModel::relationships()
{
    QFETCH(QString, entity);
    QFETCH(QString, relationship);
    QFETCH(QString, destination);
    QFETCH(bool, toMany);
    QFETCH(int, deleteRule);
    const RelationshipDescription* r = corvantaDataModel().entity(entity)->relationship(relationship);
    QVERIFY(r);
    QCOMPARE(r->destination, destination);
    QCOMPARE(r->toMany, toMany);
    QCOMPARE(int(r->deleteRule), deleteRule);
}

void tst_DataModel::companyDefaultsAreNamedForTheirKind()
{
    // A record tells whether it is the company's default through its first relationship
    // whose name begins with "my_company_"; the rest of that name is the company's key.
    const DataModel& model = corvantaDataModel();
    const EntityDescription* company = model.entity(QStringLiteral("MyCompany"));
    const QStringList keys{QStringLiteral("default_currency"),      QStringLiteral("default_unit"),
                           QStringLiteral("default_tax"),           QStringLiteral("default_payment_type"),
                           QStringLiteral("default_bank"),          QStringLiteral("default_due_day"),
                           QStringLiteral("default_email_template")};
    for (const QString& key : keys) {
        const RelationshipDescription* r = company->relationship(key);
        QVERIFY2(r, qPrintable(key));
        const EntityDescription* destination = model.entity(r->destination);
        const auto first = std::find_if(
            destination->relationships().cbegin(), destination->relationships().cend(),
            [](const RelationshipDescription& d) { return d.name.startsWith(QLatin1String("my_company_")); });
        QVERIFY(first != destination->relationships().cend());
        QCOMPARE(first->name.mid(11), key);
    }
    for (const char* type : {"invoice", "proforma", "estimate", "quotation", "delivery_note", "credit_note",
                             "credit_memo", "purchase_order", "report_documents", "report_documents_grouped",
                             "report_summary_client", "report_summary_item"})
        QVERIFY(company->relationship(QStringLiteral("default_template_") + QLatin1String(type)));
}

// The searches that run over a company's whole history, as stock and numbering make them, must be
// answered by the model's covering indexes alone.
void tst_DataModel::historySearchesReadIndexesOnly_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<corvanta::predicate::Predicate>("predicate");
    QTest::addColumn<int>("function");
    QTest::addColumn<QString>("keyPath");
    QTest::addColumn<QString>("index");
    const QVariant item = QVariant::fromValue(corvanta::predicate::RecordRef{s("Items"), 1});
    const QVariant document = QVariant::fromValue(corvanta::predicate::RecordRef{s("Documents"), 2});
    QTest::newRow("sold quantity of an item")
        << s("DocumentRows")
        << corvanta::predicate::literal(
               "item == %@ && document.type == 0 && document.draft == NO && NOT (document IN %@)",
               {item, QVariantList{document}})
        << int(Aggregate::Sum) << s("quantity") << s("DocumentRows_item_document_quantity");
    QTest::newRow("deliveries of an item")
        << s("Warehouse") << corvanta::predicate::literal("item == %@", {item}) << int(Aggregate::Sum)
        << s("quantity") << s("Warehouse_item_quantity");
    QTest::newRow("highest number of a year")
        << s("Documents")
        << corvanta::predicate::literal(
               "type == %ld && date_creation >= %@ && date_creation <= %@ && draft != 1",
               {0, QDateTime(QDate(2024, 1, 1), QTime(0, 0)), QDateTime(QDate(2024, 12, 31), QTime(23, 59))})
        << int(Aggregate::Max) << s("number") << s("Documents_type_date_creation_draft_number");
}

void tst_DataModel::historySearchesReadIndexesOnly()
{
    QFETCH(QString, entity);
    QFETCH(corvanta::predicate::Predicate, predicate);
    QFETCH(int, function);
    QFETCH(QString, keyPath);
    QFETCH(QString, index);
    ScratchCompany company;
    const QueryPlan plan =
        company.store().explain(FetchRequest(entity, predicate), Aggregate(function), keyPath);
    const QString steps = plan.steps.join(QLatin1Char('\n'));
    QVERIFY2(!steps.isEmpty() && !steps.contains(s("SCAN")), qPrintable(plan.statement + s("\n") + steps));
    QVERIFY2(steps.contains(s("COVERING INDEX ") + index), qPrintable(steps));
}

QTEST_GUILESS_MAIN(tst_DataModel)
#include "tst_datamodel.moc"
