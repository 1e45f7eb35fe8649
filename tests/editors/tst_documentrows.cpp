#include "documenttestsupport.h"
#include "editors/clientstatusvaluetransformer.h"
#include "editors/documentcontroller.h"
#include "editors/paymenttypevaluetransformer.h"
#include "editors/totalvaluetransformer.h"
#include "model/documentrowsrecord.h"
#include "store/editingcontext.h"

using namespace corvanta;
using namespace corvanta::documents;
using namespace corvanta::editors;
using namespace corvanta::documents::testing;
using store::Record;

// Rows of a document in the editor: their arithmetic, the tax summary and sums, the copies a
// document keeps of its client and company, price levels and rows made from items.
class tst_DocumentRows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void rowArithmetic_data();
    void rowArithmetic();
    void onlyQuantityPriceAndTaxRecompute();
    void taxSummaryAndSums_data();
    void taxSummaryAndSums();
    void duplicateAndDeleteRows();
    void newRowTakesCompanyDefaults();
    void snapshotCopiesClientAddressAndCompany();
    void snapshotKeepsFieldsOfAnEmptyList();
    void priceLevelKeepsTypedPrice();
    void itemByName_data();
    void itemByName();
    void displayValues_data();
    void displayValues();

private:
    Record* rowWith(double quantity, double price, const predicate::RecordRef& tax);

    std::unique_ptr<TestCompany> m_company;
    std::unique_ptr<DocumentController> m_editor;
};

void tst_DocumentRows::init()
{
    m_company = std::make_unique<TestCompany>();
    m_editor =
        std::make_unique<DocumentController>(m_company->store(), m_company->prompter(), m_company->clock());
    m_editor->newDocument(0);
}

void tst_DocumentRows::cleanup()
{
    m_editor.reset();
    m_company.reset();
}

Record* tst_DocumentRows::rowWith(double quantity, double price, const predicate::RecordRef& tax)
{
    Record* row = m_editor->addRow();
    m_editor->setRowTax(row, tax.isNull() ? nullptr : m_editor->context().record(tax));
    m_editor->setQuantity(row, quantity);
    m_editor->setUnitPrice(row, price);
    return row;
}

void tst_DocumentRows::rowArithmetic_data()
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
    QTest::newRow("thousands are grouped")
        << 1000.0 << 12.5 << 10.0 << 0.0 << false << 12500.0 << 1250.0 << 0.0 << 13750.0 << s("1,250");
}

void tst_DocumentRows::rowArithmetic()
{
    QFETCH(double, quantity);
    QFETCH(double, price);
    QFETCH(double, rate1);
    QFETCH(double, rate2);
    QFETCH(bool, cumulative);

    const auto tax = m_company->addTax(s("T"), rate1, rate2, cumulative);
    const Record* row = rowWith(quantity, price, tax);

    QTEST(row->value(s("net")).toDouble(), "net");
    QTEST(row->value(s("tax1_value")).toDouble(), "tax1");
    QTEST(row->value(s("tax2_value")).toDouble(), "tax2");
    QTEST(row->value(s("total")).toDouble(), "total");
    QTEST(row->value(s("tax_value")).toString(), "taxValue");
}

void tst_DocumentRows::onlyQuantityPriceAndTaxRecompute()
{
    const auto tax = m_company->addTax(s("VAT"), 20);
    Record* row = rowWith(2, 10, tax);
    QCOMPARE(row->value(s("total")).toDouble(), 24.0);

    row->setValue(s("custom_price02"), 99.0);
    row->setValue(s("name"), s("renamed"));
    QCOMPARE(row->value(s("net")).toDouble(), 20.0);

    m_editor->setRowTax(row, nullptr);
    QCOMPARE(row->value(s("total")).toDouble(), 20.0);
    QCOMPARE(row->value(s("tax_value")).toString(), s("0"));
    QVERIFY(row->value(s("tax_name")).isNull());

    // The tax set on the record itself, not through the editor, recomputes too.
    row->setValue(s("tax"), QVariant::fromValue(tax));
    QCOMPARE(row->value(s("total")).toDouble(), 24.0);
    row->setRelated(s("tax"), nullptr);
    QCOMPARE(row->value(s("total")).toDouble(), 20.0);
}

void tst_DocumentRows::taxSummaryAndSums_data()
{
    // Each row is "quantity*price@tax" where tax is A (VAT 20), B (VAT 10), C (GST 5+7) or -.
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QStringList>("summaries"); // "name net tax1 tax2 total" in order
    QTest::addColumn<QList<double>>("sums");    // net, tax1, tax2, total

    QTest::newRow("no rows") << QStringList{} << QStringList{} << QList<double>{0, 0, 0, 0};
    QTest::newRow("rows without tax have sums but no summary")
        << QStringList{s("1*10@-"), s("2*5@-")} << QStringList{} << QList<double>{20, 0, 0, 20};
    QTest::newRow("two taxes of one name give one line")
        << QStringList{s("1*100@A"), s("1*100@B"), s("1*50@-")} << QStringList{s("VAT 200 30 0 230")}
        << QList<double>{250, 30, 0, 280};
    QTest::newRow("one line per tax name")
        << QStringList{s("1*100@A"), s("2*100@C"), s("1*10@A")}
        << QStringList{s("VAT 110 22 0 132"), s("GST 200 10 14 224")} << QList<double>{310, 32, 14, 356};
    QTest::newRow("eighths add up exactly")
        << QStringList{s("1*0.125@-"), s("1*0.125@-")} << QStringList{} << QList<double>{0.25, 0, 0, 0.25};
}

void tst_DocumentRows::taxSummaryAndSums()
{
    QFETCH(QStringList, rows);
    QFETCH(QStringList, summaries);
    QFETCH(QList<double>, sums);

    const QHash<QString, predicate::RecordRef> taxes{{s("A"), m_company->addTax(s("VAT"), 20)},
                                                     {s("B"), m_company->addTax(s("VAT"), 10)},
                                                     {s("C"), m_company->addTax(s("GST"), 5, 7)}};
    for (const QString& spec : rows) {
        const QStringList parts = spec.split(QRegularExpression(s("[*@]")));
        rowWith(parts[0].toDouble(), parts[1].toDouble(), taxes.value(parts[2]));
    }
    m_editor->updateTaxSummary();

    Record* document = m_editor->document();
    QList<Record*> lines = document->relatedList(s("summaries"));
    std::sort(lines.begin(), lines.end(), [](Record* a, Record* b) {
        return a->value(s("order")).toInt() < b->value(s("order")).toInt();
    });
    QStringList actual;
    for (const Record* line : lines)
        actual << s("%1 %2 %3 %4 %5")
                      .arg(line->value(s("tax_name")).toString())
                      .arg(line->value(s("net")).toDouble())
                      .arg(line->value(s("tax1_value")).toDouble())
                      .arg(line->value(s("tax2_value")).toDouble())
                      .arg(line->value(s("total")).toDouble());
    QCOMPARE(actual, summaries);
    const char* const keys[] = {"sum_net", "sum_tax1", "sum_tax2", "sum_total"};
    for (int i = 0; i < 4; ++i)
        QCOMPARE(document->value(s(keys[i])).toDouble(), sums.at(i));
}

void tst_DocumentRows::duplicateAndDeleteRows()
{
    const auto tax = m_company->addTax(s("VAT"), 20);
    Record* first = rowWith(1, 10, tax);
    Record* second = rowWith(2, 20, tax);
    QVERIFY(!m_editor->duplicateRow());

    m_editor->setSelectedRows({first});
    Record* copy = m_editor->duplicateRow();
    QVERIFY(copy);
    QCOMPARE(copy->value(s("order")).toInt(), 1);
    QCOMPARE(copy->value(s("total")).toDouble(), 12.0);
    QCOMPARE(copy->related(s("tax")), first->related(s("tax")));

    m_editor->updateTaxSummary();
    QCOMPARE(m_editor->rows(), (QList<Record*>{first, copy, second}));
    QCOMPARE(second->value(s("order")).toInt(), 3);
    QCOMPARE(copy->value(s("order")).toInt(), 2);
    QCOMPARE(m_editor->document()->value(s("sum_total")).toDouble(), 72.0);

    m_editor->setSelectedRows({first, copy});
    m_editor->deleteRow();
    m_editor->updateTaxSummary();
    QCOMPARE(m_editor->rows(), QList<Record*>{second});
    QCOMPARE(second->value(s("order")).toInt(), 1);
    QCOMPARE(m_editor->document()->value(s("sum_total")).toDouble(), 48.0);
}

void tst_DocumentRows::newRowTakesCompanyDefaults()
{
    Record* row = m_editor->addRow();
    QCOMPARE(row->value(s("order")).toInt(), 1);
    QCOMPARE(row->value(s("quantity")).toDouble(), 1.0);
    QCOMPARE(row->value(s("name")).toString(), QString());
    QCOMPARE(row->valueForKeyPath(s("tax.name")).toString(), s("10%"));
    QCOMPARE(row->value(s("tax_name")).toString(), s("10%"));
    QCOMPARE(row->value(s("unit_name")).toString(), s("Each"));
    QCOMPARE(row->value(s("total")).toDouble(), 0.0);
    QCOMPARE(m_editor->addRow()->value(s("order")).toInt(), 2);
    QVERIFY(m_editor->isEdited());
}

void tst_DocumentRows::snapshotCopiesClientAddressAndCompany()
{
    const auto client = m_company->addClient(s("Acme Ltd"), {{s("tax_number"), s("HU-1")},
                                                             {s("emails"), s("a@acme.test,b@acme.test")},
                                                             {s("phones"), s(" 555,666")},
                                                             {s("custom03"), s("gold")}});
    Record* c = m_company->record(client);
    Record* address =
        m_company->main().insertRecord(s("Addresses"), {{s("street"), s("1 Main St")},
                                                        {s("city"), s("Springfield")},
                                                        {s("client"), QVariant::fromValue(client)}});
    c->setRelated(s("default_address"), address);
    Record* company = m_company->find(s("MyCompany"), s("TRUEPREDICATE"));
    company->setValue(s("tax_number"), s("MY-9"));
    company->setValue(s("custom10"), s("ten"));
    m_company->saveMain();

    QVERIFY(m_editor->setClient(client));
    const Record* d = m_editor->document();
    QCOMPARE(d->value(s("client_full_name")).toString(), s("Acme Ltd"));
    QCOMPARE(d->value(s("client_tax_number")).toString(), s("HU-1"));
    QCOMPARE(d->value(s("client_custom03")).toString(), s("gold"));
    QCOMPARE(d->value(s("client_street")).toString(), s("1 Main St"));
    QCOMPARE(d->value(s("client_city")).toString(), s("Springfield"));
    QCOMPARE(d->value(s("client_email")).toString(), s("a@acme.test"));
    QCOMPARE(d->value(s("client_phone")).toString(), s(" 555"));
    QCOMPARE(d->value(s("payment_type_name")).toString(), s("Bank Transfer"));
    QCOMPARE(d->value(s("bank_line1")).toString(), s("My Bank"));
    QCOMPARE(d->value(s("my_name")).toString(), s("My Company"));
    QCOMPARE(d->value(s("my_tax_number")).toString(), s("MY-9"));
    QCOMPARE(d->value(s("my_custom10")).toString(), s("ten"));
}

void tst_DocumentRows::snapshotKeepsFieldsOfAnEmptyList()
{
    const auto client = m_company->addClient(s("Quiet Ltd"));
    Record* d = m_editor->document();
    d->setValue(s("client_email"), s("kept@old.test"));
    d->setRelated(s("bank"), nullptr);
    QVERIFY(m_editor->setClient(client));
    QCOMPARE(d->value(s("client_email")).toString(), s("kept@old.test"));
    QVERIFY(d->value(s("bank_line1")).isNull());
}

void tst_DocumentRows::priceLevelKeepsTypedPrice()
{
    Record* row = m_editor->addRow();
    for (int level = 1; level <= 5; ++level)
        row->setValue(QStringLiteral("custom_price0%1").arg(level), 10.0 * level);
    QVERIFY(m_editor->setUnitPrice(row, 12.5));
    QCOMPARE(m_editor->priceLevels().fieldKey(1), s("unit_price"));

    m_editor->defaultPriceChanged(3);
    QCOMPARE(row->value(s("unit_price")).toDouble(), 30.0);
    QCOMPARE(row->value(s("net")).toDouble(), 30.0);
    QCOMPARE(row->value(s("custom_price01")).toDouble(), 12.5);
    QCOMPARE(m_editor->priceLevels().fieldKey(1), s("custom_price01"));
    QCOMPARE(m_editor->priceLevels().fieldKey(3), s("unit_price"));
    QVERIFY(m_editor->priceLevels().isHighlighted(3));

    QVERIFY(m_editor->setPrice(row, 2, 21.0));
    m_editor->defaultPriceChanged(1);
    QCOMPARE(row->value(s("unit_price")).toDouble(), 12.5);
    QCOMPARE(row->value(s("custom_price02")).toDouble(), 21.0);
    QCOMPARE(row->value(s("custom_price03")).toDouble(), 30.0);
    QCOMPARE(PriceLevels::labels(m_editor->context()),
             (QStringList{s("Unit Price"), s("Custom Price 2"), s("Custom Price 3"), s("Custom Price 4"),
                          s("Custom Price 5")}));
}

void tst_DocumentRows::itemByName_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("linked");
    QTest::addColumn<QString>("name");
    QTest::addColumn<double>("unitPrice");
    QTest::addColumn<QString>("taxName");

    QTest::newRow("one match, first level") << s("Bolt") << 1 << true << s("Bolt") << 4.0 << s("VAT");
    QTest::newRow("one match, fourth level") << s("Bolt") << 4 << true << s("Bolt") << 16.0 << s("VAT");
    QTest::newRow("two matches keep the text") << s("Nut") << 1 << false << s("Nut") << 7.0 << s("10%");
    QTest::newRow("no match keeps the text") << s("Washer") << 1 << false << s("Washer") << 7.0 << s("10%");
}

void tst_DocumentRows::itemByName()
{
    QFETCH(QString, typed);
    QFETCH(int, level);

    const auto vat = m_company->addTax(s("VAT"), 20);
    const auto bolt = m_company->addItem(s("Bolt"), 4, vat);
    m_company->record(bolt)->setValue(s("custom03"), s("steel"));
    m_company->saveMain();
    m_company->addItem(s("Nut"), 1, vat);
    m_company->addItem(s("Nut"), 2, vat);

    m_editor->defaultPriceChanged(level);
    Record* row = m_editor->addRow();
    m_editor->setUnitPrice(row, 7);
    m_editor->itemNameEntered(row, typed);

    QTEST(!row->value(s("item")).isNull(), "linked");
    QTEST(row->value(s("name")).toString(), "name");
    QTEST(row->value(s("unit_price")).toDouble(), "unitPrice");
    QTEST(row->value(s("tax_name")).toString(), "taxName");
    QFETCH(bool, linked);
    if (linked) {
        QCOMPARE(row->value(s("code")).toString(), s("BOL"));
        QCOMPARE(row->value(s("custom03")).toString(), s("steel"));
        QCOMPARE(row->value(s("custom_price05")).toDouble(), 20.0);
        QCOMPARE(row->value(s("type")).toInt(), 1);
        QCOMPARE(row->value(s("net")).toDouble(), row->value(s("unit_price")).toDouble());
    }
}

void tst_DocumentRows::displayValues_data()
{
    QTest::addColumn<QString>("transformer");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("shown");

    QTest::newRow("status lost") << s("status") << QVariant(0) << QVariant(s("ClientLost.png"));
    QTest::newRow("status possible") << s("status") << QVariant(1) << QVariant(s("ClientPossible.png"));
    QTest::newRow("status available") << s("status") << QVariant(2) << QVariant(s("ClientAvailable.png"));
    QTest::newRow("status unknown") << s("status") << QVariant(3) << QVariant();
    QTest::newRow("status missing") << s("status") << QVariant() << QVariant();
    QTest::newRow("no payment type") << s("payment") << QVariant() << QVariant(s("No Payment"));
    QTest::newRow("empty payment type") << s("payment") << QVariant(QString()) << QVariant(s("No Payment"));
    QTest::newRow("payment type") << s("payment") << QVariant(s("Cash")) << QVariant(s("Cash"));
    QTest::newRow("total without rows") << s("total") << QVariant(0) << QVariant(QString());
    QTest::newRow("total with rows") << s("total") << QVariant(2) << QVariant(s("Total: $1,234.5"));
}

void tst_DocumentRows::displayValues()
{
    QFETCH(QString, transformer);
    QFETCH(QVariant, value);
    if (transformer == QLatin1String("status")) {
        QTEST(ClientStatusValueTransformer().transformedValue(value), "shown");
    } else if (transformer == QLatin1String("payment")) {
        QTEST(PaymentTypeValueTransformer().transformedValue(value), "shown");
    } else {
        for (int i = 0; i < value.toInt(); ++i)
            rowWith(1, 617.25, {});
        m_editor->updateTaxSummary();
        QTEST(TotalValueTransformer().transformedValue(QVariant::fromValue(m_editor->document())), "shown");
    }
}

QTEST_GUILESS_MAIN(tst_DocumentRows)
#include "tst_documentrows.moc"
