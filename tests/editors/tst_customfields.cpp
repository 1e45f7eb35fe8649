#include "documents/customfields.h"
#include "editors/currencychoices.h"
#include "editors/defaultvaluetransformer.h"
#include "modeltestsupport.h"

#include <QTest>

using namespace corvanta::documents;
using namespace corvanta::editors;
using namespace corvanta::model;
using namespace corvanta::store;
using namespace corvanta::model::testing;

namespace {

QStringList names(const QList<Record*>& records, const char* key)
{
    QStringList list;
    for (const Record* r : records)
        list << r->value(s(key)).toString();
    return list;
}

} // namespace

// Custom-field names, the default tick of list rows and the currencies offered to a document.
class tst_CustomFields : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store = std::make_unique<ScratchCompany>(); }
    void cleanup() { m_store.reset(); }

    void readableName_data();
    void readableName();
    void groupListsTheFieldsNotLabelledEmpty();
    void defaultValueTransformer();
    void selectableCurrencies();

private:
    std::unique_ptr<ScratchCompany> m_store;
};

void tst_CustomFields::readableName_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("name");
    QTest::newRow("client_custom03") << s("client_custom03") << s("Custom 3");
    QTest::newRow("client_custom10") << s("client_custom10") << s("Custom 10");
    QTest::newRow("my_custom07") << s("my_custom07") << s("Custom 7");
    QTest::newRow("item_custom05") << s("item_custom05") << s("Custom 5");
    QTest::newRow("item_custom_price02") << s("item_custom_price02") << s("Custom Price 2");
    QTest::newRow("several words") << s("item_unit_price_level_01") << s("Unit Price Level 1");
}

void tst_CustomFields::readableName()
{
    QFETCH(QString, key);
    QFETCH(QString, name);
    QCOMPARE(CustomFields::readableName(key), name);
}

void tst_CustomFields::groupListsTheFieldsNotLabelledEmpty()
{
    EditingContext& c = m_store->main();
    const auto field = [&](const char* name, const QVariant& label) {
        c.insertRecord(s("Compose"), {{s("name"), s(name)}, {s("label"), label}});
    };
    field("client_custom02", s("Birthday"));
    field("client_custom01", s("Phone"));
    field("client_custom03", QVariant());
    field("client_custom04", s(""));
    field("item_custom01", s("Colour"));
    field("my_custom01", s("Bank"));
    saveOrFail(c);

    const QList<Record*> clientFields = CustomFields::group(c, s("CLIENT_"));
    QCOMPARE(names(clientFields, "name"),
             (QStringList{s("client_custom01"), s("client_custom02"), s("client_custom03")}));
    QStringList shown;
    for (const Record* r : clientFields)
        shown << CustomFields::displayName(r);
    QCOMPARE(shown, (QStringList{s("Phone"), s("Birthday"), s("Custom 3")}));
    QCOMPARE(names(CustomFields::group(c, s("item_")), "label"), QStringList{s("Colour")});
}

void tst_CustomFields::defaultValueTransformer()
{
    EditingContext& c = m_store->main();
    Record* euro = c.insertRecord(s("Currencies"), {{s("code"), s("EUR")}});
    Record* dollar = c.insertRecord(s("Currencies"), {{s("code"), s("USD")}});
    Record* client = c.insertRecord(s("Clients"));
    const DefaultValueTransformer isDefault;

    // Without a company nothing is the default.
    QCOMPARE(isDefault.transformedValue(QVariant::fromValue(euro)), QVariant(false));
    Record* company = c.insertRecord(s("MyCompany"));
    company->setRelated(s("default_currency"), euro);
    QCOMPARE(isDefault.transformedValue(QVariant::fromValue(euro)), QVariant(true));
    QCOMPARE(isDefault.transformedValue(QVariant::fromValue(dollar)), QVariant(false));
    QCOMPARE(isDefault.transformedValue(QVariant::fromValue(client)), QVariant(false));
    QCOMPARE(isDefault.transformedValue(QVariant::fromValue<Record*>(nullptr)), QVariant());
    QCOMPARE(isDefault.transformedValue(s("EUR")), QVariant());

    // A template is the default of the first company key its relationships name.
    Record* invoice = c.insertRecord(s("Templates"));
    company->setRelated(s("default_template_invoice"), invoice);
    QCOMPARE(isDefault.transformedValue(QVariant::fromValue(invoice)), QVariant(true));
}

void tst_CustomFields::selectableCurrencies()
{
    EditingContext& c = m_store->main();
    const auto currency = [&](const char* code, bool selectable) {
        return c.insertRecord(s("Currencies"), {{s("code"), s(code)}, {s("selectable"), selectable}});
    };
    Record* huf = currency("HUF", false);
    currency("EUR", true);
    currency("USD", false);
    Record* chf = currency("CHF", false);
    currency("AUD", true);
    c.insertRecord(s("MyCompany"))->setRelated(s("default_currency"), huf);

    QCOMPARE(names(corvanta::editors::selectableCurrencies(c, nullptr), "code"),
             (QStringList{s("AUD"), s("EUR"), s("HUF")}));
    QCOMPARE(names(corvanta::editors::selectableCurrencies(c, chf), "code"),
             (QStringList{s("AUD"), s("CHF"), s("EUR"), s("HUF")}));
    // The same through the store.
    saveOrFail(c);
    QCOMPARE(names(corvanta::editors::selectableCurrencies(c, chf), "code"),
             (QStringList{s("AUD"), s("CHF"), s("EUR"), s("HUF")}));
}

QTEST_GUILESS_MAIN(tst_CustomFields)
#include "tst_customfields.moc"
