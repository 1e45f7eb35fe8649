#include "format/currenciesrecord.h"
#include "format/currencyvaluetransformer.h"
#include "format/documentsumtotalcurrencyvaluetransformer.h"
#include "format/formattedcurrency.h"
#include "storetestsupport.h"

#include <QTest>
#include <limits>

using namespace corvanta::format;
using namespace corvanta::model;
using namespace corvanta::model::testing;

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

class tst_CurrenciesRecord : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_store = std::make_unique<ScratchStore>();
        CurrenciesRecord::registerOn(m_store->store());
    }
    void cleanup() { m_store.reset(); }

    void sampleFollowsEveryFormatAttribute_data();
    void sampleFollowsEveryFormatAttribute();
    void sampleIsStoredAndRepairedOnLoad();
    void currencyValueTransformer();
    void documentSumTotalCurrencyValueTransformer();

private:
    std::unique_ptr<ScratchStore> m_store;
};

void tst_CurrenciesRecord::sampleFollowsEveryFormatAttribute_data()
{
    QTest::addColumn<bool>("fixed");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("sample");

    const auto row = [](const char* name, bool fixed, const char* key, const QVariant& value,
                        const char* sample) { QTest::newRow(name) << fixed << s(key) << value << s(sample); };
    row("fixed digits pad", true, "", QVariant(), "12,345.60 €");
    row("free digits cut", false, "", QVariant(), "12,345.68 €");
    row("show_fixed_digits on", false, "show_fixed_digits", true, "12,345.60 €");
    row("show_fixed_digits off", true, "show_fixed_digits", false, "12,345.68 €");
    row("digits", false, "digits", 3, "12,345.679 €");
    row("digits 0", true, "digits", 0, "12,346 €");
    row("grouping_separator", true, "grouping_separator", s("'"), "12'345.60 €");
    row("grouping none", true, "grouping_separator", s("none"), "12345.60 €");
    row("decimal_separator", true, "decimal_separator", s(","), "12,345,60 €");
    row("symbol", true, "symbol", s("EUR"), "12,345.60 EUR");
    row("symbol_format l", true, "symbol_format", s("l"), "€12,345.60");
    row("symbol_format ls", true, "symbol_format", s("ls"), "€ 12,345.60");
    row("symbol_format r", true, "symbol_format", s("r"), "12,345.60€");
    row("symbol_format code", true, "symbol_format", s("code"), "12,345.60 EUR");
    row("symbol_format no", true, "symbol_format", s("no"), "12,345.60");
    row("code under the symbol placement", true, "code", s("XEU"), "12,345.60 €");
    row("empty decimal separator", true, "decimal_separator", s(""), "12,345.60 €");
    row("negative digits", true, "digits", -1, "12,346 €");
}

void tst_CurrenciesRecord::sampleFollowsEveryFormatAttribute()
{
    QFETCH(bool, fixed);
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(QString, sample);

    Record* currency = m_store->main().insertRecord(s("Currencies"), euro(fixed));
    QVERIFY(dynamic_cast<CurrenciesRecord*>(currency));
    if (!key.isEmpty())
        currency->setValue(key, value);
    QCOMPARE(currency->value(s("sample")).toString(), sample);
}

void tst_CurrenciesRecord::sampleIsStoredAndRepairedOnLoad()
{
    Record* currency = m_store->main().insertRecord(s("Currencies"), euro(true));
    currency->setValue(s("symbol_format"), s("code"));
    currency->setValue(s("code"), s("HUF"));
    QCOMPARE(currency->value(s("sample")).toString(), s("12,345.60 HUF"));
    // A sample written by someone who did not know the format is made right when read.
    currency->setValue(s("sample"), s("stale"));
    saveOrFail(m_store->main());
    const qint64 pk = currency->pk();

    m_store->reopen();
    CurrenciesRecord::registerOn(m_store->store());
    Record* loaded = m_store->main().record({s("Currencies"), pk});
    QCOMPARE(loaded->value(s("sample")).toString(), s("12,345.60 HUF"));
    QVERIFY(loaded->changedKeys().contains(s("sample")));
}

void tst_CurrenciesRecord::currencyValueTransformer()
{
    Record* currency = m_store->main().insertRecord(s("Currencies"), euro(true));
    const CurrencyValueTransformer transformer(currency);
    QCOMPARE(transformer.transformedValue(1234.5), QVariant(s("1,234.50 €")));
    QCOMPARE(transformer.transformedValue(qint64(-3)), QVariant(s("-3.00 €")));
    QCOMPARE(formattedCurrency(-1234.5, currency), s("-1,234.50 €"));
    // The currency is read at every use.
    currency->setValue(s("symbol_format"), s("l"));
    QCOMPARE(transformer.transformedValue(1.0), QVariant(s("€1.00")));
    QCOMPARE(transformer.transformedValue(QVariant()), QVariant());
    QCOMPARE(transformer.transformedValue(s("1")), QVariant());
    QCOMPARE(transformer.transformedValue(std::numeric_limits<double>::quiet_NaN()), QVariant());
}

void tst_CurrenciesRecord::documentSumTotalCurrencyValueTransformer()
{
    EditingContext& c = m_store->main();
    Record* currency = c.insertRecord(s("Currencies"), euro(true));
    Record* document = c.insertRecord(s("Documents"), {{s("sum_total"), 1234.565}});
    document->setRelated(s("currency"), currency);
    const DocumentSumTotalCurrencyValueTransformer transformer;
    QCOMPARE(transformer.transformedValue(QVariant::fromValue(document)), QVariant(s("1,234.57 €")));

    document->setRelated(s("currency"), nullptr);
    QCOMPARE(transformer.transformedValue(QVariant::fromValue(document)), QVariant(s("1234.57")));
    document->setValue(s("sum_total"), QVariant());
    QCOMPARE(transformer.transformedValue(QVariant::fromValue(document)), QVariant());
    QCOMPARE(transformer.transformedValue(1234.5), QVariant());
    QCOMPARE(transformer.transformedValue(QVariant::fromValue<Record*>(nullptr)), QVariant());
}

QTEST_GUILESS_MAIN(tst_CurrenciesRecord)
#include "tst_currenciesrecord.moc"
