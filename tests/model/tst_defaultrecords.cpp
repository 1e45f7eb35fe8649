#include "model/defaultrecords.h"
#include "modeltestsupport.h"

using namespace corvanta::model;
using namespace corvanta::model::testing;
using namespace corvanta::store;
using Op = corvanta::predicate::Predicate::Operator;

namespace {

Record* first(EditingContext& c, const char* entity, const char* key, const QVariant& value)
{
    return c.fetchFirst(FetchRequest(s(entity), where(s(key), Op::Equal, value)));
}

QHash<QString, int> counts(EditingContext& c)
{
    QHash<QString, int> result;
    for (const char* entity : {"Settings", "MyCompany", "Units", "Taxes", "PaymentTypes", "Banks", "DueDays",
                               "Categories", "Compose", "EmailTemplates", "Currencies", "ReportColumns"})
        result.insert(s(entity), c.count(FetchRequest(s(entity))));
    return result;
}

} // namespace

// The records a new company database starts with, checked by representative values.
class tst_DefaultRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void settingsAndCompanyDefaults();
    void currencies();
    void sidebarTree();
    void customFieldsAndReportColumns();
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

void tst_DefaultRecords::settingsAndCompanyDefaults()
{
    EditingContext& c = m_store.main();
    QCOMPARE(c.count(FetchRequest(s("Settings"))), 1 + 8 + 8 + 12);
    QStringList settings; // key | value | the document type a per-type setting belongs to
    for (const char* key :
         {"version", "number_format_invoice", "print_copy_quotation", "default_note_header"})
        settings << valuesOf(first(c, "Settings", "key", s(key)), {"key", "value", "id"});
    QCOMPARE(settings,
             (QStringList{s("version | 1.0 | -"), s("number_format_invoice | INVOICE/,YYYY,-,NNNN | 0"),
                          s("print_copy_quotation | 1 | 3"), s("default_note_header |  | -")}));

    QCOMPARE(c.count(FetchRequest(s("MyCompany"))), 1);
    QCOMPARE(valuesOf(c.fetchFirst(FetchRequest(s("MyCompany"))),
                      {"name", "default_unit.name", "default_tax.rate1", "default_payment_type.name",
                       "default_bank.line1", "default_due_day.days", "default_due_day.type",
                       "default_email_template.name", "default_currency.code"}),
             s("My Company | Each | 10 | Bank Transfer | My Bank | 8 | 1 | Empty Template | USD"));
}

void tst_DefaultRecords::currencies()
{
    const QList<Record*> currencies = m_store.main().fetch(FetchRequest(s("Currencies")));
    QVERIFY2(currencies.size() > 100, qPrintable(QString::number(currencies.size())));
    QSet<QString> codes;
    for (const Record* currency : currencies) {
        codes.insert(currency->value(s("code")).toString());
        QCOMPARE(valuesOf(currency, {"digits", "show_fixed_digits", "symbol_format"}), s("2 | false | l"));
        QVERIFY(!currency->value(s("symbol")).toString().isEmpty());
    }
    QCOMPARE(codes.size(), currencies.size());
    // Symbol and separators of the locale the code belongs to.
    QStringList known;
    for (const char* code : {"USD", "EUR", "BRL", "CHF"})
        known << valuesOf(first(m_store.main(), "Currencies", "code", s(code)),
                          {"code", "symbol", "grouping_separator", "decimal_separator"});
    QCOMPARE(known, (QStringList{s("USD | $ | , | ."), s("EUR | € | , | ."), s("BRL | R$ | . | ,"),
                                 s("CHF | CHF | ’ | .")}));
}

void tst_DefaultRecords::sidebarTree()
{
    EditingContext& c = m_store.main();
    const QList<Record*> categories = c.fetch(FetchRequest(s("Categories")));
    QCOMPARE(categories.size(), 30);
    QStringList shown; // a section, a tag with colours, a search, a tag with text colour only, a folder
    for (const Record* category : categories) {
        const QString indexpath = category->value(s("indexpath")).toString();
        if (QStringList{s("000"), s("000001"), s("002002"), s("003001"), s("004000")}.contains(indexpath))
            shown << indexpath + s(" ") +
                         valuesOf(category, {"name", "type", "subtype", "foreground_color",
                                             "background_color", "predicate", "parent.name"});
    }
    QCOMPARE(
        shown,
        (QStringList{
            s("000 Clients | -1 | - | - | - | - | -"),
            s("000001 Company | 1 | 0 | #ffffff | #0055a5 | - | Clients"),
            s("002002 Unpaid Invoices | -3 | -3 | - | - | sum_total != payments.@sum.amount && type == 0 "
              "&& draft == NO && cancel_reference == NULL | Documents"),
            s("003001 Pending | 4 | 0 | #ffffff | - | - | ToDos"),
            s("004000 My Folder | - | - | - | - | - | My Group"),
        }));
    // Every section starts expanded.
    QStringList expanded;
    for (Record* header : c.fetchFirst(FetchRequest(s("MyCompany")))->relatedList(s("category_expanded")))
        expanded << header->value(s("indexpath")).toString();
    expanded.sort();
    QCOMPARE(expanded, (QStringList{s("000"), s("001"), s("002"), s("003"), s("004")}));
}

void tst_DefaultRecords::customFieldsAndReportColumns()
{
    EditingContext& c = m_store.main();
    QCOMPARE(c.count(FetchRequest(s("Compose"))), 30);
    QCOMPARE(c.count(FetchRequest(s("Compose"), where(s("hidden"), Op::Equal, true))), 10);
    QStringList fields;
    for (const char* name : {"item_custom05", "item_custom_price01", "item_custom_price02", "my_custom10"})
        fields << valuesOf(first(c, "Compose", "name", s(name)), {"label", "hidden"});
    QCOMPARE(fields, (QStringList{s("Custom Field 5 | false"), s("Unit Price | false"),
                                  s("Custom Price 2 | false"), s("Custom Field 10 | true")}));

    // Per view, in order: its size, its first and last column, and the list kind it shows.
    QStringList views;
    for (int view = 0; view <= 4; ++view) {
        const QList<Record*> columns = c.fetch(FetchRequest(
            s("ReportColumns"), where(s("view"), Op::Equal, view), {SortDescriptor{s("order")}}));
        QVERIFY(!columns.isEmpty());
        views << QString::number(columns.size()) + s(" ") +
                     valuesOf(columns.first(), {"column", "title", "type"}) + s(" .. ") +
                     valuesOf(columns.last(), {"column", "title", "type"});
    }
    QCOMPARE(views, (QStringList{
                        s("29 number_formatted | Number | 3 .. client_custom10 | Custom 10 | 3"),
                        s("46 document.number_formatted | Number | 3 .. custom05 | Custom 05 | 3"),
                        s("14 full_name | Name | 1 .. documents_sum_tax2 | Sum Tax 2 | 1"),
                        s("13 stock | Stock | 2 .. documents_sum_tax2 | Sum Tax 2 | 2"),
                        s("4 date_start | Start | 4 .. repeat_weekdays | Weekdays | 4"),
                    }));
}

void tst_DefaultRecords::templatesComeBetweenCustomFieldsAndEmailTemplates()
{
    ScratchCompany st;
    QString seen;
    DefaultRecords defaults(st.main(), [&](EditingContext& context, Record* company, QString*) {
        seen = s("%1 custom fields, %2 e-mail templates, company %3")
                   .arg(context.count(FetchRequest(s("Compose"))))
                   .arg(context.count(FetchRequest(s("EmailTemplates"))))
                   .arg(company->value(s("name")).toString());
        company->setRelated(s("default_template_invoice"),
                            context.insertRecord(s("Templates"), {{s("name"), s("Loaded")}, {s("type"), 0}}));
        return true;
    });
    QVERIFY(defaults.initDatabaseRecords());
    QCOMPARE(seen, s("30 custom fields, 0 e-mail templates, company My Company"));
    st.reopen();
    QCOMPARE(valuesOf(st.main().fetchFirst(FetchRequest(s("MyCompany"))), {"default_template_invoice.name"}),
             s("Loaded"));
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
    for (const int n : counts(st.main()))
        QCOMPARE(n, 0);
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
