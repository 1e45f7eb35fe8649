#include "model/companysettings.h"
#include "model/defaultrecords.h"
#include "modeltestsupport.h"

#include <QColor>

using namespace corvanta::model;
using namespace corvanta::store;

using namespace corvanta::model::testing;
using Op = corvanta::predicate::Predicate::Operator;

namespace {

Record* first(EditingContext& c, const char* entity, const char* key, const QVariant& value)
{
    return c.fetchFirst(FetchRequest(s(entity), where(s(key), Op::Equal, value)));
}

// In the order of insertion.
QList<Record*> all(EditingContext& c, const char* entity)
{
    return c.fetch(FetchRequest(s(entity)));
}

const QStringList kEntities = {s("Settings"),     s("MyCompany"),      s("Units"),      s("Taxes"),
                               s("PaymentTypes"), s("Banks"),          s("DueDays"),    s("Categories"),
                               s("Compose"),      s("EmailTemplates"), s("Currencies"), s("ReportColumns")};

QHash<QString, int> counts(EditingContext& c)
{
    QHash<QString, int> result;
    for (const QString& entity : kEntities)
        result.insert(entity, c.count(FetchRequest(entity)));
    return result;
}

QString rgb(const QVariant& colour)
{
    if (colour.isNull())
        return s("-");
    const QColor c = colour.value<QColor>();
    return s("%1,%2,%3").arg(c.redF(), 0, 'f', 3).arg(c.greenF(), 0, 'f', 3).arg(c.blueF(), 0, 'f', 3);
}

} // namespace

class tst_DefaultRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void settings_data();
    void settings();
    void companyDefaults();
    void currencies();
    void sidebarTree_data();
    void sidebarTree();
    void customFieldDefinitions();
    void reportColumns();
    void templatesComeBetweenCustomFieldsAndEmailTemplates();
    void failedTemplatesStoreNothing();
    void secondStartInsertsNothing();

private:
    ScratchCompany m_store;
};

void tst_DefaultRecords::initTestCase()
{
    DefaultRecords defaults(m_store.main());
    StoreError error;
    QVERIFY2(defaults.initDatabaseRecords(&error), qPrintable(error.message()));
    QVERIFY(defaults.insertedDefaults());
    QVERIFY(!m_store.main().hasChanges());
    m_store.reopen();
}

void tst_DefaultRecords::settings_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("id");
    QTest::newRow("version") << s("version") << QVariant(s("1.0")) << QVariant();
    QTest::newRow("invoice format") << s("number_format_invoice") << QVariant(s("INVOICE/,YYYY,-,NNNN"))
                                    << QVariant(0);
    QTest::newRow("delivery note format")
        << s("number_format_delivery_note") << QVariant(s("DELIVERY NOTE/,YYYY,-,NNNN")) << QVariant(4);
    QTest::newRow("invoice copies") << s("print_copy_invoice") << QVariant(2) << QVariant(0);
    QTest::newRow("quotation copies") << s("print_copy_quotation") << QVariant(1) << QVariant(3);
    QTest::newRow("warehouse") << s("use_warehouse") << QVariant(1) << QVariant();
    QTest::newRow("note header") << s("default_note_header") << QVariant(s("")) << QVariant();
    QTest::newRow("item tags hidden") << s("system_tags_item_hidden") << QVariant(0) << QVariant();
}

void tst_DefaultRecords::settings()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(QVariant, id);
    CompanySettings settings(m_store.main());
    const QVariant stored = settings.setting(key);
    QVERIFY(!stored.isNull());
    QCOMPARE(stored.toString(), value.toString());
    QCOMPARE(settings.settingsDictionary().size(), 1 + 8 + 8 + 12);
    const QVariant storedId = first(m_store.main(), "Settings", "key", key)->value(s("id"));
    QCOMPARE(storedId.isNull(), id.isNull());
    QCOMPARE(storedId.toInt(), id.toInt());
}

void tst_DefaultRecords::companyDefaults()
{
    EditingContext& c = m_store.main();
    QCOMPARE(c.count(FetchRequest(s("MyCompany"))), 1);
    const Record* company = c.fetchFirst(FetchRequest(s("MyCompany")));
    const std::pair<const char*, QVariant> expected[] = {
        {"name", s("My Company")},
        {"default_unit.name", s("Each")},
        {"default_tax.name", s("10%")},
        {"default_tax.rate1", 10.0},
        {"default_payment_type.name", s("Bank Transfer")},
        {"default_bank.line1", s("My Bank")},
        {"default_due_day.name", s("8 Business Days")},
        {"default_due_day.days", 8},
        {"default_due_day.type", 1},
        {"default_email_template.name", s("Empty Template")},
        {"default_currency.code", s("USD")},
    };
    for (const auto& [keyPath, value] : expected)
        QCOMPARE(company->valueForKeyPath(s(keyPath)).toString(), value.toString());
    QStringList others;
    for (const char* entity : {"Units", "Taxes", "PaymentTypes"}) {
        for (const Record* record : all(c, entity))
            others << record->value(s("name")).toString();
    }
    QCOMPARE(others,
             (QStringList{s("Each"), s("Hours"), s("10%"), s("GST / PST"), s("Bank Transfer"), s("Cash")}));
    const Record* gst = first(c, "Taxes", "name", s("GST / PST"));
    QCOMPARE(gst->value(s("rate1")).toDouble(), 5.0);
    QCOMPARE(gst->value(s("rate2")).toDouble(), 7.0);
}

void tst_DefaultRecords::currencies()
{
    EditingContext& c = m_store.main();
    const QList<Record*> currencies = all(c, "Currencies");
    QVERIFY2(currencies.size() > 100, qPrintable(QString::number(currencies.size())));
    QSet<QString> codes;
    for (const Record* currency : currencies) {
        codes.insert(currency->value(s("code")).toString());
        QCOMPARE(currency->value(s("digits")).toInt(), 2);
        QCOMPARE(currency->value(s("show_fixed_digits")).toBool(), false);
        QCOMPARE(currency->value(s("symbol_format")).toString(), s("l"));
        QVERIFY(!currency->value(s("symbol")).toString().isEmpty());
    }
    QCOMPARE(codes.size(), currencies.size());
    // Symbol and separators of the locale the code belongs to.
    const char* const known[][4] = {{"USD", "$", ",", "."},
                                    {"EUR", "€", ",", "."},
                                    {"BRL", "R$", ".", ","},
                                    {"CHF", "CHF", "’", "."},
                                    {"JPY", "￥", ",", "."}};
    for (const auto& k : known) {
        const Record* currency = first(c, "Currencies", "code", s(k[0]));
        QVERIFY2(currency, k[0]);
        QCOMPARE(currency->value(s("symbol")).toString() +
                     currency->value(s("grouping_separator")).toString() +
                     currency->value(s("decimal_separator")).toString(),
                 s(k[1]) + s(k[2]) + s(k[3]));
    }
}

void tst_DefaultRecords::sidebarTree_data()
{
    QTest::addColumn<QString>("indexpath");
    QTest::addColumn<QString>("expected"); // name type/subtype text-on-background [predicate] < parent

    QTest::newRow("header") << s("000") << s("Clients -1/- - on - [] < ");
    QTest::newRow("company") << s("000001")
                             << s("Company 1/0 1.000,1.000,1.000 on 0.000,0.333,0.647 [] < Clients");
    QTest::newRow("critical stock")
        << s("001001")
        << s("Critical Stock -2/-2 - on - [stock_current <= stock_critical && type == 1] < Items");
    QTest::newRow("unpaid invoices")
        << s("002002")
        << s("Unpaid Invoices -3/-3 - on - [sum_total != payments.@sum.amount && type == 0 && draft == NO && "
             "cancel_reference == NULL] < Documents");
    QTest::newRow("invoice") << s("002004")
                             << s("Invoice 3/0 0.000,0.000,0.000 on 1.000,0.824,0.000 [] < Documents");
    QTest::newRow("cancellation")
        << s("002012") << s("Cancellation 3/100 1.000,1.000,1.000 on 0.937,0.250,0.208 [] < Documents");
    QTest::newRow("pending") << s("003001") << s("Pending 4/0 1.000,1.000,1.000 on - [] < ToDos");
    QTest::newRow("my folder") << s("004000") << s("My Folder -/- - on - [] < My Group");
}

void tst_DefaultRecords::sidebarTree()
{
    QFETCH(QString, indexpath);
    QFETCH(QString, expected);
    EditingContext& c = m_store.main();
    const Record* category = first(c, "Categories", "indexpath", indexpath);
    QVERIFY(category);
    const auto number = [&](const char* key) {
        const QVariant v = category->value(s(key));
        return v.isNull() ? s("-") : v.toString();
    };
    QCOMPARE(s("%1 %2/%3 %4 on %5 [%6] < %7")
                 .arg(category->value(s("name")).toString(), number("type"), number("subtype"),
                      rgb(category->value(s("foreground_color"))),
                      rgb(category->value(s("background_color"))), category->value(s("predicate")).toString(),
                      category->valueForKeyPath(s("parent.name")).toString()),
             expected);

    // The tree in its order, every section expanded.
    const QList<Record*> categories = all(c, "Categories");
    QCOMPARE(categories.size(), 30);
    for (qsizetype i = 1; i < categories.size(); ++i)
        QVERIFY(categories.at(i - 1)->value(s("indexpath")).toString() <
                categories.at(i)->value(s("indexpath")).toString());
    QStringList expanded;
    for (Record* header : c.fetchFirst(FetchRequest(s("MyCompany")))->relatedList(s("category_expanded")))
        expanded << header->value(s("indexpath")).toString();
    expanded.sort();
    QCOMPARE(expanded, (QStringList{s("000"), s("001"), s("002"), s("003"), s("004")}));
}

void tst_DefaultRecords::customFieldDefinitions()
{
    EditingContext& c = m_store.main();
    QCOMPARE(c.count(FetchRequest(s("Compose"))), 30);
    QCOMPARE(c.count(FetchRequest(s("Compose"), where(s("hidden"), Op::Equal, true))), 10);
    QStringList found;
    for (const char* name :
         {"item_custom05", "item_custom_price01", "item_custom_price02", "client_custom06", "my_custom10"}) {
        const Record* definition = first(c, "Compose", "name", s(name));
        found << definition->value(s("label")).toString() +
                     (definition->value(s("hidden")).toBool() ? s(" (hidden)") : QString());
    }
    QCOMPARE(found, (QStringList{s("Custom Field 5"), s("Unit Price"), s("Custom Price 2"),
                                 s("Custom Field 6 (hidden)"), s("Custom Field 10 (hidden)")}));
}

void tst_DefaultRecords::reportColumns()
{
    EditingContext& c = m_store.main();
    const auto columns = [&](int view) {
        QStringList result;
        for (const Record* column : c.fetch(FetchRequest(
                 s("ReportColumns"), where(s("view"), Op::Equal, view), {SortDescriptor{s("order")}})))
            result << column->value(s("column")).toString() + s("=") + column->value(s("title")).toString();
        return result;
    };
    const QStringList documents = columns(0);
    QCOMPARE(documents.size(), 29);
    QCOMPARE(documents.mid(0, 2), (QStringList{s("number_formatted=Number"), s("date_creation=Creation")}));
    QCOMPARE(documents.last(), s("client_custom10=Custom 10"));
    const QStringList rows = columns(1);
    QCOMPARE(rows.size(), 29 + 12 + 5);
    QCOMPARE(rows.first(), s("document.number_formatted=Number"));
    QCOMPARE(rows.mid(29, 1) + rows.mid(40),
             (QStringList{s("name=Item Name"), s("total=Line Total"), s("custom01=Custom 01"),
                          s("custom02=Custom 02"), s("custom03=Custom 03"), s("custom04=Custom 04"),
                          s("custom05=Custom 05")}));
    const QStringList clients = columns(2);
    QCOMPARE(clients.size(), 10 + 4);
    QCOMPARE(clients.mid(9), (QStringList{s("phones=Phones"), s("documents_sum_total=Sum Total"),
                                          s("documents_sum_net=Sum Net"), s("documents_sum_tax1=Sum Tax 1"),
                                          s("documents_sum_tax2=Sum Tax 2")}));
    const QStringList items = columns(3);
    QCOMPARE(items.size(), 9 + 4);
    QCOMPARE(items.mid(3, 1), QStringList{s("custom_price01=Custom Price 01")});
    QCOMPARE(columns(4).size(), 4);
    QCOMPARE(first(c, "ReportColumns", "column", s("stock"))->value(s("type")).toInt(), 2);
    QCOMPARE(first(c, "ReportColumns", "column", s("full_name"))->value(s("type")).toInt(), 1);
}

void tst_DefaultRecords::templatesComeBetweenCustomFieldsAndEmailTemplates()
{
    ScratchCompany st;
    int composeSeen = -1;
    int emailTemplatesSeen = -1;
    Record* companySeen = nullptr;
    DefaultRecords defaults(st.main(), [&](EditingContext& context, Record* company, QString*) {
        composeSeen = context.count(FetchRequest(s("Compose")));
        emailTemplatesSeen = context.count(FetchRequest(s("EmailTemplates")));
        companySeen = company;
        Record* invoice = context.insertRecord(s("Templates"), {{s("name"), s("Loaded")}, {s("type"), 0}});
        company->setRelated(s("default_template_invoice"), invoice);
        return true;
    });
    QVERIFY(defaults.initDatabaseRecords());
    QCOMPARE(composeSeen, 30);
    QCOMPARE(emailTemplatesSeen, 0);
    QCOMPARE(companySeen, st.main().fetchFirst(FetchRequest(s("MyCompany"))));
    st.reopen();
    QCOMPARE(st.main()
                 .fetchFirst(FetchRequest(s("MyCompany")))
                 ->valueForKeyPath(s("default_template_invoice.name")),
             QVariant(s("Loaded")));
}

void tst_DefaultRecords::failedTemplatesStoreNothing()
{
    ScratchCompany st;
    DefaultRecords defaults(st.main(), [](EditingContext&, Record*, QString* error) {
        *error = s("The file format is wrong.");
        return false;
    });
    StoreError error;
    QVERIFY(!defaults.initDatabaseRecords(&error));
    QCOMPARE(error.description, s("The templates of the new company database could not be loaded."));
    QCOMPARE(error.reason, s("The file format is wrong."));
    QVERIFY(!st.main().hasChanges());
    st.reopen();
    for (const QString& entity : kEntities)
        QCOMPARE(st.main().count(FetchRequest(entity)), 0);
}

void tst_DefaultRecords::secondStartInsertsNothing()
{
    const QHash<QString, int> before = counts(m_store.main());
    DefaultRecords again(m_store.main());
    QVERIFY(again.initDatabaseRecords());
    QVERIFY(!again.insertedDefaults());
    QCOMPARE(again.foundVersion(), s("1.0"));
    m_store.reopen();
    QCOMPARE(counts(m_store.main()), before);
}

QTEST_GUILESS_MAIN(tst_DefaultRecords)
#include "tst_defaultrecords.moc"
