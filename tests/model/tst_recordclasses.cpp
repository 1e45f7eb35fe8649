#include "model/clientsrecord.h"
#include "model/currenciesrecord.h"
#include "model/documentrowsrecord.h"
#include "modeltestsupport.h"

using namespace corvanta::model;
using namespace corvanta::model::testing;
using corvanta::store::EditingContext;
using corvanta::store::FetchRequest;
using corvanta::store::Record;
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

// The record classes that a company database opened the program's way gives its records, and
// the values they derive.
class tst_RecordClasses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theOneOpenGivesEveryClass();
    void fullName_data();
    void fullName();
    void contactListsJoin();
    void currencySampleFollowsItsFormat_data();
    void currencySampleFollowsItsFormat();
    void currencySampleIsRepairedOnLoad();
    void rowAmounts_data();
    void rowAmounts();
    void onlyQuantityPriceAndTaxRecomputeARow();
};

void tst_RecordClasses::theOneOpenGivesEveryClass()
{
    ScratchCompany company;
    EditingContext& c = company.main();
    QVERIFY(dynamic_cast<ClientsRecord*>(c.insertRecord(s("Clients"))));
    QVERIFY(dynamic_cast<CurrenciesRecord*>(c.insertRecord(s("Currencies"))));
    QVERIFY(dynamic_cast<DocumentRowsRecord*>(c.insertRecord(s("DocumentRows"))));
    saveOrFail(c);
    // Records read from the file, and those of secondary contexts, get them too.
    company.reopen();
    QVERIFY(dynamic_cast<ClientsRecord*>(company.main().fetchFirst(FetchRequest(s("Clients")))));
    QVERIFY(dynamic_cast<DocumentRowsRecord*>(
        company.store().newContext()->fetchFirst(FetchRequest(s("DocumentRows")))));
}

void tst_RecordClasses::fullName_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("company");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("last");
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("expected");
    QTest::newRow("company") << 0 << s("Acme Kft.") << s("Ann") << s("Lee") << 0 << s("Acme Kft.");
    QTest::newRow("supplier") << 1 << s(" Parts Inc ") << s("") << s("") << 1 << s("Parts Inc");
    QTest::newRow("individual, first name first") << 2 << s("") << s("Ann") << s("Lee") << 0 << s("Ann Lee");
    QTest::newRow("individual, last name first") << 2 << s("") << s("Ann") << s("Lee") << 1 << s("Lee Ann");
    QTest::newRow("individual without first name") << 2 << s("") << s("") << s("Lee") << 0 << s("Lee");
    QTest::newRow("individual with new lines") << 2 << s("") << s("\nAnn") << s("Lee\n") << 0 << s("Ann Lee");
    QTest::newRow("individual without names") << 2 << s("Ignored") << s("") << s("") << 0 << s("");
}

void tst_RecordClasses::fullName()
{
    QFETCH(int, type);
    QFETCH(QString, company);
    QFETCH(QString, first);
    QFETCH(QString, last);
    QFETCH(int, position);
    QFETCH(QString, expected);
    ScratchCompany st;
    EditingContext& c = st.main();
    c.insertRecord(s("Settings"), {{s("key"), s("first_name_position")}, {s("value"), position}});
    saveOrFail(c);
    Record* client = c.insertRecord(
        s("Clients"),
        {{s("type"), type}, {s("company_name"), company}, {s("first_name"), first}, {s("last_name"), last}});
    QCOMPARE(client->value(s("full_name")).toString(), expected);
    saveOrFail(c);
    // Stored, so that fetches can select and sort by it.
    QCOMPARE(c.count(FetchRequest(s("Clients"), where(s("full_name"), Op::Equal, expected))), 1);
}

void tst_RecordClasses::contactListsJoin()
{
    ScratchCompany st;
    Record* client = st.main().insertRecord(s("Clients"));
    client->setValue(s("emails"), QStringList{s("a@x.hu"), s("b@x.hu"), s("c@x.hu")});
    client->setValue(s("phones"), QVariantList{s("+36 1"), s("+36 2")});
    QCOMPARE(client->value(s("emails")).toString(), s("a@x.hu,b@x.hu,c@x.hu"));
    QCOMPARE(client->value(s("phones")).toString(), s("+36 1,+36 2"));
    client->setValue(s("emails"), s("only@x.hu"));
    QCOMPARE(client->value(s("emails")).toString(), s("only@x.hu"));
}

// The sample is rebuilt whenever one of the attributes that decide the format is set.
void tst_RecordClasses::currencySampleFollowsItsFormat_data()
{
    QTest::addColumn<bool>("fixed");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("sample");
    const auto row = [](const char* name, bool fixed, const char* key, const QVariant& value,
                        const char* sample) { QTest::newRow(name) << fixed << s(key) << value << s(sample); };
    row("fixed digits pad", true, "", QVariant(), "12,345.60 €");
    row("free digits cut", false, "", QVariant(), "12,345.68 €");
    row("show_fixed_digits", false, "show_fixed_digits", true, "12,345.60 €");
    row("digits", false, "digits", 3, "12,345.679 €");
    row("grouping_separator", true, "grouping_separator", s("'"), "12'345.60 €");
    row("decimal_separator", true, "decimal_separator", s(","), "12,345,60 €");
    row("symbol", true, "symbol", s("EUR"), "12,345.60 EUR");
    row("symbol_format", true, "symbol_format", s("l"), "€12,345.60");
}

void tst_RecordClasses::currencySampleFollowsItsFormat()
{
    QFETCH(bool, fixed);
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(QString, sample);
    ScratchCompany st;
    Record* currency = st.main().insertRecord(s("Currencies"), euro(fixed));
    if (!key.isEmpty())
        currency->setValue(key, value);
    QCOMPARE(currency->value(s("sample")).toString(), sample);
}

void tst_RecordClasses::currencySampleIsRepairedOnLoad()
{
    ScratchCompany st;
    Record* currency = st.main().insertRecord(s("Currencies"), euro(true));
    currency->setValue(s("symbol_format"), s("code"));
    currency->setValue(s("code"), s("HUF")); // shown by the "code" placement
    QCOMPARE(currency->value(s("sample")).toString(), s("12,345.60 HUF"));
    // A sample written by someone who did not know the format is made right when read.
    currency->setValue(s("sample"), s("stale"));
    saveOrFail(st.main());
    const qint64 pk = currency->pk();
    st.reopen();
    Record* loaded = st.main().record({s("Currencies"), pk});
    QCOMPARE(loaded->value(s("sample")).toString(), s("12,345.60 HUF"));
    QVERIFY(loaded->changedKeys().contains(s("sample")));
}

void tst_RecordClasses::rowAmounts_data()
{
    QTest::addColumn<double>("quantity");
    QTest::addColumn<double>("price");
    QTest::addColumn<double>("rate1");
    QTest::addColumn<double>("rate2");
    QTest::addColumn<bool>("cumulative");
    QTest::addColumn<double>("net");
    QTest::addColumn<double>("tax1");
    QTest::addColumn<double>("tax2");
    QTest::addColumn<double>("total");
    QTest::addColumn<QString>("taxValue");
    QTest::newRow("two rates") << 2.0 << 50.0 << 20.0 << 10.0 << false << 100.0 << 20.0 << 10.0 << 130.0
                               << s("20+10");
    QTest::newRow("second rate on net plus first")
        << 2.0 << 50.0 << 20.0 << 10.0 << true << 100.0 << 20.0 << 12.0 << 132.0 << s("20+12");
    QTest::newRow("no second rate") << 2.0 << 50.0 << 20.0 << 0.0 << false << 100.0 << 20.0 << 0.0 << 120.0
                                    << s("20");
    QTest::newRow("negative quantity shows first tax only")
        << -1.0 << 50.0 << 20.0 << 10.0 << false << -50.0 << -10.0 << -5.0 << -65.0 << s("-10");
    QTest::newRow("fractions keep full precision")
        << 3.0 << 0.125 << 10.0 << 0.0 << false << 0.375 << 0.0375 << 0.0 << 0.4125 << s("0.04");
    QTest::newRow("thousands are grouped in the company's currency")
        << 1000.0 << 12.5 << 10.0 << 0.0 << false << 12500.0 << 1250.0 << 0.0 << 13750.0 << s("1,250");
}

void tst_RecordClasses::rowAmounts()
{
    QFETCH(double, quantity);
    QFETCH(double, price);
    QFETCH(double, rate1);
    QFETCH(double, rate2);
    QFETCH(bool, cumulative);
    ScratchCompany st;
    EditingContext& c = st.main();
    Record* company = c.insertRecord(s("MyCompany"));
    company->setRelated(s("default_currency"), c.insertRecord(s("Currencies"), euro(false)));
    Record* tax = c.insertRecord(
        s("Taxes"),
        {{s("name"), s("T")}, {s("rate1"), rate1}, {s("rate2"), rate2}, {s("cumulative"), cumulative}});
    Record* document = c.insertRecord(s("Documents"), {{s("exchange_rate"), 0.5}});
    Record* row = c.insertRecord(s("DocumentRows"), {{s("document"), QVariant::fromValue(document)}});
    row->setValue(s("quantity"), quantity);
    row->setValue(s("unit_price"), price);
    row->setRelated(s("tax"), tax);
    QTEST(row->value(s("net")).toDouble(), "net");
    QTEST(row->value(s("tax1_value")).toDouble(), "tax1");
    QTEST(row->value(s("tax2_value")).toDouble(), "tax2");
    QTEST(row->value(s("total")).toDouble(), "total");
    QTEST(row->value(s("tax_value")).toString(), "taxValue");
    // The taxes in the company's currency, at the document's rate.
    QCOMPARE(row->value(s("default_currency_tax1_value")).toDouble(),
             row->value(s("tax1_value")).toDouble() * 0.5);
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
