#include "model/clientsrecord.h"
#include "model/companysettings.h"
#include "model/corvantamodel.h"
#include "model/currenciesrecord.h"
#include "model/documentrowsrecord.h"
#include "modeltestsupport.h"

using namespace corvanta::model;
using namespace corvanta::model::testing;
using namespace corvanta::store;
using Op = corvanta::predicate::Predicate::Operator;

namespace {

QVariantMap euro(bool fixed)
{
    return {{s("code"), s("EUR")},
            {s("symbol"), s("€")},
            {s("symbol_format"), s("sr")},
            {s("grouping_separator"), s(",")},
            {s("decimal_separator"), s(".")},
            {s("digits"), 2},
            {s("show_fixed_digits"), fixed}};
}

} // namespace

// The data model, the record classes that a company database opened the program's way gives its
// records, the values they derive, and the company settings some of them follow.
class tst_RecordClasses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void companyDefaultsAreNamedForTheirKind();
    void theOneOpenGivesEveryClass();
    void settingsReadAfreshAndSaveAtOnce();
    void storedClientNamesFollowTheSetting();
    void currencySample();
    void rowAmounts_data();
    void rowAmounts();
    void onlyQuantityPriceAndTaxRecomputeARow();
};

// A record tells whether it is the company's default through its first relationship whose name
// begins with "my_company_"; the rest of that name is the company's key.
void tst_RecordClasses::companyDefaultsAreNamedForTheirKind()
{
    const DataModel& model = corvantaDataModel();
    const EntityDescription* company = model.entity(s("MyCompany"));
    for (const char* key : {"default_currency", "default_unit", "default_tax", "default_payment_type",
                            "default_bank", "default_due_day", "default_email_template"}) {
        const RelationshipDescription* r = company->relationship(s(key));
        QVERIFY2(r, key);
        QString first;
        for (const RelationshipDescription& d : model.entity(r->destination)->relationships()) {
            if (first.isEmpty() && d.name.startsWith(QLatin1String("my_company_")))
                first = d.name.mid(11);
        }
        QCOMPARE(first, s(key));
    }
}

// Records inserted, read from the file, and those of secondary contexts get their classes; a
// client's contact lists are kept joined.
void tst_RecordClasses::theOneOpenGivesEveryClass()
{
    ScratchCompany company;
    EditingContext& c = company.main();
    QVERIFY(dynamic_cast<CurrenciesRecord*>(c.insertRecord(s("Currencies"))));
    QVERIFY(dynamic_cast<DocumentRowsRecord*>(c.insertRecord(s("DocumentRows"))));
    Record* client = c.insertRecord(s("Clients"));
    client->setValue(s("emails"), QStringList{s("a@x.hu"), s("b@x.hu")});
    client->setValue(s("phones"), QVariantList{s("+36 1"), s("+36 2")});
    saveOrFail(c);
    company.reopen();
    client = company.main().fetchFirst(FetchRequest(s("Clients")));
    QVERIFY(dynamic_cast<ClientsRecord*>(client));
    QCOMPARE(valuesOf(client, {"emails", "phones"}), s("a@x.hu,b@x.hu | +36 1,+36 2"));
    client->setValue(s("emails"), s("only@x.hu"));
    QCOMPARE(client->value(s("emails")).toString(), s("only@x.hu"));
    QVERIFY(dynamic_cast<DocumentRowsRecord*>(
        company.store().newContext()->fetchFirst(FetchRequest(s("DocumentRows")))));
}

void tst_RecordClasses::settingsReadAfreshAndSaveAtOnce()
{
    ScratchCompany st;
    EditingContext& c = st.main();
    c.insertRecord(s("Settings"), {{s("key"), s("print_copy_invoice")}, {s("value"), 2}});
    c.insertRecord(s("Settings"), {{s("key"), s("use_warehouse")}, {s("value"), 1}});
    saveOrFail(c);
    CompanySettings settings(c);
    QCOMPARE(settings.setting(s("print_copy_invoice")), QVariant(qlonglong(2)));
    QVERIFY(settings.setting(s("absent")).isNull());

    // Another context changes a value: the next read sees it.
    auto other = st.store().newContext();
    other->fetchFirst(FetchRequest(s("Settings"), where(s("key"), Op::Equal, s("print_copy_invoice"))))
        ->setValue(s("value"), 3);
    saveOrFail(*other);
    QCOMPARE(settings.setting(s("print_copy_invoice")).toInt(), 3);

    // Setting saves the whole context; a key without a row stores nothing.
    c.insertRecord(s("Units"), {{s("name"), s("Pending")}});
    QVERIFY(settings.setSetting(s("use_warehouse"), 0));
    QVERIFY(settings.setSetting(s("no_such_key"), s("x")));
    QVERIFY(!c.hasChanges());
    st.reopen();
    CompanySettings reread(st.main());
    QCOMPARE(reread.setting(s("use_warehouse")).toInt(), 0);
    QCOMPARE(reread.settingsDictionary().size(), 2);
    QCOMPARE(st.main().count(FetchRequest(s("Units"))), 1);
}

// Lists select and sort by the stored client name: a company's own name, or a person's names in
// the order the setting gives, kept in step when the setting changes.
void tst_RecordClasses::storedClientNamesFollowTheSetting()
{
    ScratchCompany st;
    EditingContext& c = st.main();
    c.insertRecord(s("Settings"), {{s("key"), s("first_name_position")}, {s("value"), 0}});
    saveOrFail(c);
    // type, company, first and last name: a supplier, and persons with both, one and no names
    const char* const clients[][4] = {{"1", " Parts Inc ", "Ann", ""},
                                      {"2", "", "Ann", "Lee"},
                                      {"2", "", "", "Lee\n"},
                                      {"2", "Ignored", "", ""}};
    const auto stored = [&]() {
        QStringList counts;
        for (const char* name : {"Parts Inc", "Ann Lee", "Lee Ann", "Lee", ""})
            counts << QString::number(
                c.count(FetchRequest(s("Clients"), where(s("full_name"), Op::Equal, s(name)))));
        return counts.join(QLatin1Char(' '));
    };
    for (const auto& k : clients)
        c.insertRecord(s("Clients"), {{s("type"), s(k[0]).toInt()},
                                      {s("company_name"), s(k[1])},
                                      {s("first_name"), s(k[2])},
                                      {s("last_name"), s(k[3])}});
    saveOrFail(c);
    QCOMPARE(stored(), s("1 1 0 1 1"));
    QVERIFY(CompanySettings(c).setSetting(s("first_name_position"), 1));
    QCOMPARE(stored(), s("1 0 1 1 1"));
}

// The sample is made on insert, again whenever an attribute that decides the format is set, and
// when a stored one is read.
void tst_RecordClasses::currencySample()
{
    ScratchCompany st;
    Record* currency = st.main().insertRecord(s("Currencies"), euro(true));
    QCOMPARE(currency->value(s("sample")).toString(), s("12,345.60 €"));
    const std::pair<const char*, QVariant> changes[] = {{"show_fixed_digits", false},
                                                        {"digits", 3},
                                                        {"symbol_format", s("l")},
                                                        {"symbol_format", s("code")},
                                                        {"code", s("HUF")}};
    QStringList samples;
    for (const auto& [key, value] : changes) {
        currency->setValue(s(key), value);
        samples << currency->value(s("sample")).toString();
    }
    QCOMPARE(samples, (QStringList{s("12,345.68 €"), s("12,345.679 €"), s("€12,345.679"), s("12,345.679 EUR"),
                                   s("12,345.679 HUF")}));
    currency->setValue(s("sample"), s("stale")); // written by someone who did not know the format
    saveOrFail(st.main());
    const qint64 pk = currency->pk();
    st.reopen();
    Record* loaded = st.main().record({s("Currencies"), pk});
    QCOMPARE(loaded->value(s("sample")).toString(), s("12,345.679 HUF"));
    QVERIFY(loaded->changedKeys().contains(s("sample")));
}

// A tax of 20% and a second rate, on a document at an exchange rate of 0.5.
void tst_RecordClasses::rowAmounts_data()
{
    QTest::addColumn<double>("quantity");
    QTest::addColumn<double>("price");
    QTest::addColumn<double>("rate2");
    QTest::addColumn<bool>("cumulative");
    // net | tax1 | tax2 | total | shown tax | tax1 in the company's currency
    QTest::addColumn<QString>("amounts");
    QTest::newRow("two rates") << 2.0 << 50.0 << 10.0 << false << s("100 | 20 | 10 | 130 | 20+10 | 10");
    QTest::newRow("second rate on net plus first")
        << 2.0 << 50.0 << 10.0 << true << s("100 | 20 | 12 | 132 | 20+12 | 10");
    QTest::newRow("negative quantity shows first tax only")
        << -1.0 << 50.0 << 10.0 << false << s("-50 | -10 | -5 | -65 | -10 | -5");
    QTest::newRow("thousands grouped in the company's currency")
        << 1000.0 << 12.5 << 0.0 << false << s("12500 | 2500 | 0 | 15000 | 2,500 | 1250");
}

void tst_RecordClasses::rowAmounts()
{
    QFETCH(double, quantity);
    QFETCH(double, price);
    QFETCH(double, rate2);
    QFETCH(bool, cumulative);
    ScratchCompany st;
    EditingContext& c = st.main();
    c.insertRecord(s("MyCompany"))
        ->setRelated(s("default_currency"), c.insertRecord(s("Currencies"), euro(false)));
    Record* tax =
        c.insertRecord(s("Taxes"), {{s("rate1"), 20.0}, {s("rate2"), rate2}, {s("cumulative"), cumulative}});
    Record* document = c.insertRecord(s("Documents"), {{s("exchange_rate"), 0.5}});
    Record* row = c.insertRecord(s("DocumentRows"), {{s("document"), QVariant::fromValue(document)}});
    row->setValue(s("quantity"), quantity);
    row->setValue(s("unit_price"), price);
    row->setRelated(s("tax"), tax);
    QTEST(valuesOf(row,
                   {"net", "tax1_value", "tax2_value", "total", "tax_value", "default_currency_tax1_value"}),
          "amounts");
}

void tst_RecordClasses::onlyQuantityPriceAndTaxRecomputeARow()
{
    ScratchCompany st;
    EditingContext& c = st.main();
    Record* tax = c.insertRecord(s("Taxes"), {{s("name"), s("VAT")}, {s("rate1"), 20.0}});
    Record* row = c.insertRecord(s("DocumentRows"));
    row->setValue(s("quantity"), 2.0);
    row->setValue(s("unit_price"), 10.0);
    row->setValue(s("tax"), QVariant::fromValue(tax->ref()));
    QCOMPARE(row->value(s("total")).toDouble(), 24.0);

    row->setValue(s("custom_price02"), 99.0);
    row->setValue(s("name"), s("renamed"));
    row->setValue(s("net"), 1.0); // a derived value set by hand stays until the next recomputation
    QCOMPARE(row->value(s("total")).toDouble(), 24.0);
    row->setRelated(s("tax"), nullptr);
    QCOMPARE(row->value(s("net")).toDouble(), 20.0);
    QCOMPARE(row->value(s("total")).toDouble(), 20.0);
}

QTEST_GUILESS_MAIN(tst_RecordClasses)
#include "tst_recordclasses.moc"
