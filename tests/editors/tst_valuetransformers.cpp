#include "../model/modeltestsupport.h"
#include "documents/customfields.h"
#include "editors/clientstatusvaluetransformer.h"
#include "editors/currencyvaluetransformer.h"
#include "editors/defaultvaluetransformer.h"
#include "editors/documentsumtotalcurrencyvaluetransformer.h"
#include "editors/exhangeratehiddenvaluetransformer.h"
#include "editors/paymenttypevaluetransformer.h"
#include "editors/totalvaluetransformer.h"

using namespace corvanta;
using namespace corvanta::editors;
using model::testing::s;
using store::Record;

// What the lists and fields show for a stored value: each transformer's branches, in one company.
class tst_ValueTransformers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void shows_data();
    void shows();
    void customFieldNames_data();
    void customFieldNames();

private:
    model::testing::ScratchCompany m_company;
    QHash<QString, Record*> m_records;
};

void tst_ValueTransformers::initTestCase()
{
    store::EditingContext& c = m_company.main();
    const auto add = [&](const char* label, const char* entity, const QVariantMap& values) {
        return m_records[s(label)] = c.insertRecord(s(entity), values);
    };
    Record* euro = add("euro", "Currencies",
                       {{s("code"), s("EUR")},
                        {s("symbol"), s("€")},
                        {s("symbol_format"), s("sr")},
                        {s("grouping_separator"), s(",")},
                        {s("decimal_separator"), s(".")},
                        {s("digits"), 2},
                        {s("show_fixed_digits"), true}});
    add("dollar", "Currencies", {{s("code"), s("USD")}, {s("symbol"), s("$")}, {s("symbol_format"), s("l")}});
    Record* company = add("company", "MyCompany", {});
    company->setRelated(s("default_currency"), euro);
    company->setRelated(s("default_unit"), add("each", "Units", {{s("name"), s("Each")}}));
    add("hours", "Units", {{s("name"), s("Hours")}});
    Record* document = add("document", "Documents", {{s("sum_total"), 1234.565}});
    document->setRelated(s("currency"), euro);
    c.insertRecord(s("DocumentRows"), {{s("document"), QVariant::fromValue(document)}});
    add("empty", "Documents", {{s("sum_total"), 5.0}});
    add("no total", "Documents", {});
    model::testing::saveOrFail(c);
}

void tst_ValueTransformers::shows_data()
{
    QTest::addColumn<QString>("transformer");
    QTest::addColumn<QVariant>("value"); // "#label" stands for a record
    QTest::addColumn<QVariant>("shown");
    const auto row = [](const char* name, const char* transformer, const QVariant& value,
                        const QVariant& shown) { QTest::newRow(name) << s(transformer) << value << shown; };
    row("client lost", "status", 0, s("ClientLost.png"));
    row("client possible", "status", 1, s("ClientPossible.png"));
    row("client available", "status", 2, s("ClientAvailable.png"));
    row("client status unknown", "status", 3, QVariant());
    row("no payment type", "payment", QVariant(), s("No Payment"));
    row("payment type", "payment", s("Cash"), s("Cash"));
    row("total of a document with rows", "total", s("#document"), s("Total: 1,234.57 €"));
    row("total of a document without rows", "total", s("#empty"), s(""));
    row("the company's default", "default", s("#each"), true);
    row("not the default", "default", s("#hours"), false);
    row("default of a record without one", "default", s("#document"), false);
    row("default of no record", "default", 1, QVariant());
    row("amount in the company's currency", "currency", -1234.5, s("-1,234.50 €"));
    row("not a number", "currency", s("1"), QVariant());
    row("document total in its currency", "sum total", s("#document"), s("1,234.57 €"));
    row("document without a total", "sum total", s("#no total"), QVariant());
    row("rate hidden for the company's currency", "rate hidden", s("#euro"), true);
    row("rate shown for another currency", "rate hidden", s("#dollar"), false);
}

void tst_ValueTransformers::shows()
{
    QFETCH(QString, transformer);
    QFETCH(QVariant, value);
    QFETCH(QVariant, shown);
    if (value.typeId() == QMetaType::QString && value.toString().startsWith(QLatin1Char('#')))
        value = QVariant::fromValue(m_records.value(value.toString().mid(1)));
    const std::unique_ptr<ValueTransformer> t =
        transformer == s("status")    ? std::unique_ptr<ValueTransformer>(new ClientStatusValueTransformer)
        : transformer == s("payment") ? std::unique_ptr<ValueTransformer>(new PaymentTypeValueTransformer)
        : transformer == s("total")   ? std::unique_ptr<ValueTransformer>(new TotalValueTransformer)
        : transformer == s("default") ? std::unique_ptr<ValueTransformer>(new DefaultValueTransformer)
        : transformer == s("currency")
            ? std::unique_ptr<ValueTransformer>(new CurrencyValueTransformer(m_records.value(s("euro"))))
        : transformer == s("sum total")
            ? std::unique_ptr<ValueTransformer>(new DocumentSumTotalCurrencyValueTransformer)
            : std::unique_ptr<ValueTransformer>(new ExhangeRateHiddenValueTransformer);
    QCOMPARE(t->transformedValue(value), shown);
}

void tst_ValueTransformers::customFieldNames_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("name");
    QTest::newRow("item price") << s("item_custom_price02") << s("Custom Price 2");
    QTest::newRow("own company field") << s("my_custom10") << s("Custom 10");
}

// A custom field without a label is shown by a name made from its key.
void tst_ValueTransformers::customFieldNames()
{
    QFETCH(QString, key);
    QTEST(documents::CustomFields::readableName(key), "name");
}

QTEST_GUILESS_MAIN(tst_ValueTransformers)
#include "tst_valuetransformers.moc"
