#include "editors/currencyvaluetransformer.h"
#include "editors/documentsumtotalcurrencyvaluetransformer.h"
#include "format/formattedcurrency.h"
#include "model/currenciesrecord.h"
#include "modeltestsupport.h"

#include <QTest>
#include <limits>

using namespace corvanta::format;
using namespace corvanta::model;
using namespace corvanta::editors;
using namespace corvanta::store;
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
    void init() { m_store = std::make_unique<ScratchCompany>(); }
    void cleanup() { m_store.reset(); }

    void currencyValueTransformer();
    void documentSumTotalCurrencyValueTransformer();

private:
    std::unique_ptr<ScratchCompany> m_store;
};

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
