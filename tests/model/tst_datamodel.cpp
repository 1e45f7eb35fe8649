#include "model/corvantamodel.h"

#include <QTest>

using namespace corvanta::model;

class tst_DataModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyRelationshipHasItsInverse();
    void attributes_data();
    void attributes();
    void relationships_data();
    void relationships();
    void companyDefaultsAreNamedForTheirKind();
    void transientAttributesAreNotColumns();
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

void tst_DataModel::attributes_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<int>("type");
    const auto row = [](const char* entity, const char* attribute, AttributeType type) {
        QTest::addRow("%s.%s", entity, attribute)
            << QString::fromLatin1(entity) << QString::fromLatin1(attribute) << int(type);
    };
    using T = AttributeType;
    row("Settings", "key", T::String);
    row("Settings", "value", T::Variant);
    row("Settings", "id", T::Integer);
    row("MyCompany", "custom10", T::String);
    row("Clients", "full_name", T::String);
    row("Clients", "identifier", T::String);
    row("Clients", "custom10", T::String);
    row("Clients", "created", T::Date);
    row("Items", "use_warehouse", T::Boolean);
    row("Items", "custom_price05", T::Decimal);
    row("Items", "stock_critical", T::Decimal);
    row("Warehouse", "quantity", T::Decimal);
    row("Currencies", "show_fixed_digits", T::Boolean);
    row("Currencies", "sample", T::String);
    row("DueDays", "type", T::Integer);
    row("Compose", "hidden", T::Boolean);
    row("Documents", "identifier", T::String);
    row("Documents", "draft", T::Boolean);
    row("Documents", "date_due", T::Date);
    row("Documents", "client_type", T::Integer);
    row("Documents", "client_custom10", T::String);
    row("Documents", "my_custom10", T::String);
    row("Documents", "sum_total", T::Decimal);
    row("DocumentRows", "note", T::String);
    row("DocumentRows", "type", T::Integer);
    row("DocumentRows", "tax_value", T::String);
    row("DocumentRows", "default_currency_tax2_value", T::Decimal);
    row("DocumentSummaries", "tax_cumulative", T::Boolean);
    row("DocumentRowNotes", "note", T::String);
    row("Payments", "date", T::Date);
    row("Templates", "unit", T::Integer);
    row("Templates", "margin_bottom", T::Decimal);
    row("Templates", "show_grid", T::Boolean);
    row("Templates", "grid_spacing", T::Decimal);
    row("Templates", "zoom", T::Integer);
    row("TemplateElements", "page_side", T::Integer);
    row("TemplateElements", "font_family", T::String);
    row("TemplateElements", "font_member", T::String);
    row("TemplateElements", "font_color", T::Colour);
    row("TemplateElements", "scale_proportionally", T::Boolean);
    row("ReportColumns", "hidden", T::Boolean);
    row("Categories", "predicate", T::String);
    row("Categories", "background_color", T::Colour);
    row("ToDos", "desc", T::String);
    row("ToDos", "repeat_weekdays", T::IntegerSet);
    row("ToDos", "repeat_end_date", T::Date);
}

void tst_DataModel::attributes()
{
    QFETCH(QString, entity);
    QFETCH(QString, attribute);
    QFETCH(int, type);
    const EntityDescription* e = corvantaDataModel().entity(entity);
    QVERIFY(e);
    const AttributeDescription* a = e->attribute(attribute);
    QVERIFY2(a, qPrintable(attribute));
    QCOMPARE(int(a->type), type);
    QVERIFY(e->columns().contains(attribute));
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

void tst_DataModel::transientAttributesAreNotColumns()
{
    const EntityDescription* clients = corvantaDataModel().entity(QStringLiteral("Clients"));
    QVERIFY(clients->attribute(QStringLiteral("documents_sum_total"))->transient);
    QVERIFY(!clients->columns().contains(QStringLiteral("documents_sum_total")));
    QVERIFY(clients->columns().contains(QStringLiteral("default_address")));
    QVERIFY(!clients->columns().contains(QStringLiteral("addresses")));
}

QTEST_GUILESS_MAIN(tst_DataModel)
#include "tst_datamodel.moc"
