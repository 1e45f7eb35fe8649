#include "../documents/documenttestsupport.h"
#include "documents/numberformat.h"
#include "editors/clientstatusvaluetransformer.h"
#include "editors/currencychoices.h"
#include "editors/currencyvaluetransformer.h"
#include "editors/defaultvaluetransformer.h"
#include "editors/documentsumtotalcurrencyvaluetransformer.h"
#include "editors/exhangeratehiddenvaluetransformer.h"
#include "editors/numberformatpreferences.h"
#include "editors/paymenttypevaluetransformer.h"
#include "editors/rownotelibrary.h"
#include "editors/totalvaluetransformer.h"

#include <limits>

using namespace corvanta;
using namespace corvanta::documents;
using namespace corvanta::documents::testing;
using namespace corvanta::editors;
using model::testing::ScratchCompany;

// What the editors' fields and columns show of stored values, the currencies a document offers,
// the number-format preferences and the row-note menu titles.
class tst_EditorParts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store = std::make_unique<ScratchCompany>(); }
    void cleanup() { m_store.reset(); }

    void plainValues_data();
    void plainValues();
    void amountsInTheirCurrency();
    void companyDefaults();
    void selectableCurrencies();
    void numberFormatPreferences();
    void rowNoteTitles_data();
    void rowNoteTitles();

private:
    Record* insert(const char* entity, const QVariantMap& values = {})
    {
        return m_store->main().insertRecord(s(entity), values);
    }
    Record* currency(const char* code, const QVariantMap& more = {})
    {
        QVariantMap values{{s("code"), s(code)},
                           {s("symbol"), s("€")},
                           {s("symbol_format"), s("sr")},
                           {s("grouping_separator"), s(",")},
                           {s("decimal_separator"), s(".")},
                           {s("digits"), 2},
                           {s("show_fixed_digits"), true}};
        values.insert(more);
        return insert("Currencies", values);
    }

    std::unique_ptr<ScratchCompany> m_store;
};

void tst_EditorParts::plainValues_data()
{
    QTest::addColumn<QString>("transformer");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("shown");

    QTest::newRow("status lost") << s("status") << QVariant(0) << QVariant(s("ClientLost.png"));
    QTest::newRow("status available")
        << s("status") << QVariant(s("2")) << QVariant(s("ClientAvailable.png"));
    QTest::newRow("status unknown") << s("status") << QVariant(3) << QVariant();
    QTest::newRow("status missing") << s("status") << QVariant() << QVariant();
    QTest::newRow("no payment type") << s("payment") << QVariant() << QVariant(s("No Payment"));
    QTest::newRow("empty payment type") << s("payment") << QVariant(QString()) << QVariant(s("No Payment"));
    QTest::newRow("no payment record")
        << s("payment") << QVariant::fromValue<Record*>(nullptr) << QVariant(s("No Payment"));
    QTest::newRow("payment type") << s("payment") << QVariant(s("Cash")) << QVariant(s("Cash"));
}

void tst_EditorParts::plainValues()
{
    QFETCH(QString, transformer);
    QFETCH(QVariant, value);
    if (transformer == QLatin1String("status"))
        QTEST(ClientStatusValueTransformer().transformedValue(value), "shown");
    else
        QTEST(PaymentTypeValueTransformer().transformedValue(value), "shown");
}

void tst_EditorParts::amountsInTheirCurrency()
{
    Record* euro = currency("EUR");
    const CurrencyValueTransformer inEuro(euro);
    QCOMPARE(inEuro.transformedValue(1234.5), QVariant(s("1,234.50 €")));
    for (const QVariant& nothing :
         {QVariant(), QVariant(s("1")), QVariant(std::numeric_limits<double>::quiet_NaN())})
        QCOMPARE(inEuro.transformedValue(nothing), QVariant());
    // The currency is read at every use.
    euro->setValue(s("symbol_format"), s("l"));
    QCOMPARE(inEuro.transformedValue(1.0), QVariant(s("€1.00")));

    // A document's total in its own currency; the list's total line only once it has rows.
    Record* document = insert("Documents", {{s("sum_total"), 1234.565}});
    const DocumentSumTotalCurrencyValueTransformer sumTotal;
    const TotalValueTransformer total;
    const QVariant d = QVariant::fromValue(document);
    document->setRelated(s("currency"), euro);
    QCOMPARE(sumTotal.transformedValue(d), QVariant(s("€1,234.57")));
    QCOMPARE(total.transformedValue(d), QVariant(QString()));
    insert("DocumentRows")->setRelated(s("document"), document);
    QCOMPARE(total.transformedValue(d), QVariant(s("Total: €1,234.57")));
    document->setRelated(s("currency"), nullptr);
    QCOMPARE(sumTotal.transformedValue(d), QVariant(s("1234.57")));
    QCOMPARE(total.transformedValue(d), QVariant(QString()));
    document->setValue(s("sum_total"), QVariant());
    for (const QVariant& nothing : {d, QVariant(1234.5), QVariant::fromValue<Record*>(nullptr)})
        QCOMPARE(sumTotal.transformedValue(nothing), QVariant());
}

void tst_EditorParts::companyDefaults()
{
    Record* euro = currency("EUR");
    Record* dollar = currency("USD");
    Record* client = insert("Clients");
    const DefaultValueTransformer isDefault;
    const ExhangeRateHiddenValueTransformer rateHidden;

    // Without a company nothing is the default, and every exchange rate is shown.
    QCOMPARE(isDefault.transformedValue(QVariant::fromValue(euro)), QVariant(false));
    QCOMPARE(rateHidden.transformedValue(QVariant::fromValue(euro)), QVariant(false));
    Record* company = insert("MyCompany");
    company->setRelated(s("default_currency"), euro);
    QCOMPARE(isDefault.transformedValue(QVariant::fromValue(euro)), QVariant(true));
    QCOMPARE(isDefault.transformedValue(QVariant::fromValue(dollar)), QVariant(false));
    QCOMPARE(isDefault.transformedValue(QVariant::fromValue(client)), QVariant(false));
    QCOMPARE(isDefault.transformedValue(QVariant::fromValue<Record*>(nullptr)), QVariant());
    QCOMPARE(isDefault.transformedValue(s("EUR")), QVariant());
    // The rate is hidden for the company's currency, also for another record of its code.
    QCOMPARE(rateHidden.transformedValue(QVariant::fromValue(euro)), QVariant(true));
    QCOMPARE(rateHidden.transformedValue(QVariant::fromValue(currency("EUR"))), QVariant(true));
    QCOMPARE(rateHidden.transformedValue(QVariant::fromValue(dollar)), QVariant(false));
    QCOMPARE(rateHidden.transformedValue(s("EUR")), QVariant());

    // A template is the default of the first company key its relationships name.
    Record* invoice = insert("Templates");
    company->setRelated(s("default_template_invoice"), invoice);
    QCOMPARE(isDefault.transformedValue(QVariant::fromValue(invoice)), QVariant(true));
}

void tst_EditorParts::selectableCurrencies()
{
    Record* huf = currency("HUF", {{s("selectable"), false}});
    currency("EUR", {{s("selectable"), true}});
    currency("USD", {{s("selectable"), false}});
    Record* chf = currency("CHF", {{s("selectable"), false}});
    currency("AUD", {{s("selectable"), true}});
    insert("MyCompany")->setRelated(s("default_currency"), huf);

    const auto codes = [&](const Record* current) {
        QStringList list;
        for (const Record* r : editors::selectableCurrencies(m_store->main(), current))
            list << r->value(s("code")).toString();
        return list;
    };
    QCOMPARE(codes(nullptr), (QStringList{s("AUD"), s("EUR"), s("HUF")}));
    QCOMPARE(codes(chf), (QStringList{s("AUD"), s("CHF"), s("EUR"), s("HUF")}));
    // The same through the store.
    model::testing::saveOrFail(m_store->main());
    QCOMPARE(codes(chf), (QStringList{s("AUD"), s("CHF"), s("EUR"), s("HUF")}));
}

void tst_EditorParts::numberFormatPreferences()
{
    TestCompany company(at(2024, 12, 30));
    NumberFormatPreferences preferences(company.main(), company.clock());
    QStringList labels;
    for (int type : NumberFormatPreferences::listedTypes())
        labels << NumberFormatPreferences::label(type) + s(": ") + preferences.tokens(type).first();
    QCOMPARE(labels, (QStringList{s("Invoice: INVOICE/"), s("Pro Forma: PROFORMA/"), s("Estimate: ESTIMATE/"),
                                  s("Quotation: QUOTATION/"), s("Delivery Note: DELIVERY NOTE/"),
                                  s("Credit Note: CREDIT NOTE/"), s("Purchase Order: PURCHASE ORDER/"),
                                  s("Credit Memo: CREDIT MEMO/")}));

    QCOMPARE(preferences.tokens(0), (QStringList{s("INVOICE/"), s("YYYY"), s("-"), s("NNNN")}));
    QCOMPARE(NumberFormat::menuEntries(s("YYYY")), (QStringList{s("YY"), s("YYYY")}));
    QCOMPARE(NumberFormat::menuEntries(s("NNNNN")), (QStringList{s("NNNN"), s("NNNNN"), s("NNNNNN")}));
    QCOMPARE(NumberFormat::menuEntries(s("INVOICE/")), QStringList());
    QVERIFY(preferences.chooseToken(0, 3, s("NNNNNN")));
    QVERIFY(preferences.chooseToken(0, 1, s("YY")));
    QVERIFY(!preferences.chooseToken(0, 0, s("YY")));
    QVERIFY(!preferences.chooseToken(0, 4, s("YY")));
    QCOMPARE(preferences.format(0), s("INVOICE/,YY,-,NNNNNN"));
    // The sample shows the week's year; a real number keeps the calendar year.
    QCOMPARE(preferences.sample(preferences.format(0)), s("INVOICE/25-000123"));
    DocumentNumbering numbering(company.main(), company.prompter());
    QCOMPARE(numbering.nextNumberByType(0, company.now(), false).formattedNumber, s("INVOICE/24-000001"));

    QVERIFY(preferences.setFormat(4, s("DN-,NNNN")));
    QCOMPARE(numbering.nextNumberByType(4, company.now(), false).formattedNumber, s("DN-0001"));
    QVERIFY(preferences.reset(4));
    QCOMPARE(preferences.format(4), s("DELIVERY NOTE/,YYYY,-,NNNN"));
    QVERIFY(!preferences.setFormat(8, s("X")));
}

void tst_EditorParts::rowNoteTitles_data()
{
    QTest::addColumn<QString>("note");
    QTest::addColumn<QString>("title");
    const QString fifty(50, QLatin1Char('x'));
    QTest::newRow("short") << s("Apples") << s("Apples");
    QTest::newRow("50 characters") << fifty << fifty;
    QTest::newRow("51 characters") << fifty + s("y") << fifty + s("...");
    QTest::newRow("line breaks") << s("a\nb\r\nc\rd") << s("a b c d");
}

void tst_EditorParts::rowNoteTitles()
{
    QFETCH(QString, note);
    QTEST(RowNoteLibrary::menuTitle(note), "title");
}

QTEST_GUILESS_MAIN(tst_EditorParts)
#include "tst_editorparts.moc"
