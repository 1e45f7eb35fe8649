#include "documents/customfields.h"
#include "documents/duedate.h"
#include "documents/numberlimits.h"
#include "documents/pricelevels.h"
#include "documenttestsupport.h"

#include <QRegularExpression>
#include <cmath>
#include <limits>

using namespace corvanta;
using namespace corvanta::documents;
using namespace corvanta::documents::testing;
using Kind = NumberLimits::Kind;

// What a document holds and derives: the tax summary and sums, rows filled from items and their
// price levels, the copies of client and company, the due date, the limits of typed numbers,
// and the names of custom fields.
class tst_DocumentContent : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_company = std::make_unique<TestCompany>(at(2024, 3, 15, 10, 30)); } // a Friday
    void cleanup() { m_company.reset(); }

    void taxSummaryAndSums_data();
    void taxSummaryAndSums();
    void rowFromItem();
    void priceLevelsKeepTypedPrices();
    void snapshotOfClientAndCompany();
    void dueDate_data();
    void dueDate();
    void numberLimits_data();
    void numberLimits();
    void customFields();

private:
    Record* insert(const char* entity, const QVariantMap& values = {})
    {
        return m_company->main().insertRecord(s(entity), values);
    }

    std::unique_ptr<TestCompany> m_company;
};

void tst_DocumentContent::taxSummaryAndSums_data()
{
    // Each row is "quantity*price@tax": A (VAT 20), B (VAT 10), C (GST 5+7), D (QST 5, then 9.975
    // on net and first tax) or - for none. A summary line is "name net tax1 tax2 total", then both
    // tax values in the default currency.
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<double>("exchangeRate");
    QTest::addColumn<QStringList>("summaries");
    QTest::addColumn<QList<double>>("sums"); // net, tax1, tax2, total

    QTest::newRow("no rows") << QStringList{} << 1.0 << QStringList{} << QList<double>{0, 0, 0, 0};
    QTest::newRow("rows without tax have sums but no summary")
        << QStringList{s("1*10@-"), s("2*5@-")} << 1.0 << QStringList{} << QList<double>{20, 0, 0, 20};
    QTest::newRow("two taxes of one name give one line")
        << QStringList{s("1*100@A"), s("1*100@B"), s("1*50@-")} << 1.0
        << QStringList{s("VAT 200 30 0 230 30 0")} << QList<double>{250, 30, 0, 280};
    QTest::newRow("one line per tax name, in the order of the rows")
        << QStringList{s("1*100@A"), s("2*100@C"), s("1*10@A")} << 1.0
        << QStringList{s("VAT 110 22 0 132 22 0"), s("GST 200 10 14 224 10 14")}
        << QList<double>{310, 32, 14, 356};
    QTest::newRow("eighths add up exactly") << QStringList{s("1*0.125@-"), s("1*0.125@-")} << 1.0
                                            << QStringList{} << QList<double>{0.25, 0, 0, 0.25};
    QTest::newRow("foreign currency takes the tax values at the rate")
        << QStringList{s("4*10@C"), s("200*0.5@D"), s("2*30@C")} << 1.25
        << QStringList{s("GST 100 5 7 112 6.25 8.75"), s("QST 100 5 10.4737 115.474 6.25 13.0922")}
        << QList<double>{200, 10, 2.8 + 10.47375 + 4.2, 227.47375};
}

void tst_DocumentContent::taxSummaryAndSums()
{
    QFETCH(QStringList, rows);
    QFETCH(double, exchangeRate);
    QFETCH(QStringList, summaries);
    QFETCH(QList<double>, sums);

    const QHash<QString, RecordRef> taxes{{s("A"), m_company->addTax(s("VAT"), 20)},
                                          {s("B"), m_company->addTax(s("VAT"), 10)},
                                          {s("C"), m_company->addTax(s("GST"), 5, 7)},
                                          {s("D"), m_company->addTax(s("QST"), 5, 9.975, true)}};
    Record* document = insert("Documents", {{s("exchange_rate"), exchangeRate}});
    QList<Record*> made;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const QStringList parts = rows[i].split(QRegularExpression(s("[*@]")));
        Record* row = made.emplace_back(insert("DocumentRows", {{s("order"), 3 * i + 5}}));
        row->setRelated(s("document"), document);
        RowFiller::setTax(row, m_company->record(taxes.value(parts[2])));
        row->setValue(s("quantity"), parts[0].toDouble());
        row->setValue(s("unit_price"), parts[1].toDouble());
    }
    // Run twice: the second run replaces the summary of the first.
    DocumentTotals::updateTaxSummary(document);
    DocumentTotals::updateTaxSummary(document);

    QList<Record*> lines = document->relatedList(s("summaries"));
    std::sort(lines.begin(), lines.end(), [](Record* a, Record* b) {
        return a->value(s("order")).toInt() < b->value(s("order")).toInt();
    });
    QStringList actual;
    for (const Record* line : lines) {
        QStringList values{line->value(s("tax_name")).toString()};
        for (const char* key : {"net", "tax1_value", "tax2_value", "total", "default_currency_tax1_value",
                                "default_currency_tax2_value"})
            values << QString::number(line->value(s(key)).toDouble());
        actual << values.join(QLatin1Char(' '));
    }
    QCOMPARE(actual, summaries);
    const char* const keys[] = {"sum_net", "sum_tax1", "sum_tax2", "sum_total"};
    for (int i = 0; i < 4; ++i)
        QCOMPARE(document->value(s(keys[i])).toDouble(), sums.at(i));
    // The rows are numbered from 1 without gaps, in their order.
    for (qsizetype i = 0; i < made.size(); ++i)
        QCOMPARE(made[i]->value(s("order")).toInt(), i + 1);
}

void tst_DocumentContent::rowFromItem()
{
    Record* item = m_company->record(m_company->addItem(s("Bolt"), 4, m_company->addTax(s("VAT"), 25)));
    item->setValue(s("custom03"), s("steel"));
    item->setRelated(s("unit"), m_company->named("Units", s("Hours")));
    Record* row = insert("DocumentRows", {{s("quantity"), 2.0}});
    RowFiller::fillFromItem(row, item, 4);
    // The price of the level, and the item's tax to compute the row with.
    QCOMPARE(TestCompany::text(row, s("unit_price net total item.name")),
             s("unit_price=16 net=32 total=40 item.name=Bolt"));
    QCOMPARE(TestCompany::text(row, s("name code type custom03 custom_price05 unit_name tax_name tax1_rate")),
             s("name=Bolt code=BOL type=1 custom03=steel custom_price05=20 unit_name=Hours tax_name=VAT "
               "tax1_rate=25"));
}

void tst_DocumentContent::priceLevelsKeepTypedPrices()
{
    Record* row = insert("DocumentRows", {{s("quantity"), 1.0}});
    for (int level = 1; level <= 5; ++level)
        row->setValue(PriceLevels::slotKey(level), 10.0 * level);
    PriceLevels levels;
    row->setValue(levels.fieldKey(1), 12.5); // typed while the first level is active
    QCOMPARE(levels.fieldKey(1), s("unit_price"));

    levels.defaultPriceChanged({row}, 3);
    QCOMPARE(TestCompany::text(row, s("unit_price net custom_price01")),
             s("unit_price=30 net=30 custom_price01=12.5"));
    QCOMPARE(levels.fieldKey(1) + levels.fieldKey(3), s("custom_price01unit_price"));
    QVERIFY(levels.isHighlighted(3) && !levels.isHighlighted(1));

    row->setValue(levels.fieldKey(2), 21.0);
    row->setValue(levels.fieldKey(3), 33.0);
    for (int invalid : {0, 6})
        levels.defaultPriceChanged({row}, invalid);
    QCOMPARE(levels.active(), 3);
    levels.defaultPriceChanged({row}); // as every save does: the active level keeps its typed price
    levels.defaultPriceChanged({row}, 1);
    QCOMPARE(TestCompany::text(row, s("unit_price custom_price02 custom_price03")),
             s("unit_price=12.5 custom_price02=21 custom_price03=33"));
    QCOMPARE(PriceLevels::labels(m_company->main()),
             (QStringList{s("Unit Price"), s("Custom Price 2"), s("Custom Price 3"), s("Custom Price 4"),
                          s("Custom Price 5")}));
}

void tst_DocumentContent::snapshotOfClientAndCompany()
{
    Record* acme =
        m_company->record(m_company->addClient(s("Acme Ltd"), {{s("tax_number"), s("HU-1")},
                                                               {s("emails"), s("a@acme.test,b@acme.test")},
                                                               {s("phones"), s(" 555,666")},
                                                               {s("custom03"), s("gold")}}));
    acme->setRelated(s("default_address"),
                     insert("Addresses", {{s("street"), s("1 Main St")}, {s("city"), s("Rome")}}));
    Record* company = model::CompanyRecord::of(m_company->main());
    company->setValue(s("tax_number"), s("MY-9"));
    company->setValue(s("custom10"), s("ten"));
    Record* document = insert("Documents");
    document->setRelated(s("client"), acme);
    document->setRelated(s("payment_type"), m_company->named("PaymentTypes", s("Cash")));
    document->setValue(s("bank"), company->value(s("default_bank")));
    DocumentSnapshot::update(document);
    QCOMPARE(
        TestCompany::text(document, s("client_full_name client_tax_number client_custom03 client_street "
                                      "client_city client_email client_phone")),
        s("client_full_name=Acme Ltd client_tax_number=HU-1 client_custom03=gold client_street=1 Main St "
          "client_city=Rome client_email=a@acme.test client_phone= 555"));
    QCOMPARE(
        TestCompany::text(document, s("payment_type_name bank_line1 my_name my_tax_number my_custom10")),
        s("payment_type_name=Cash bank_line1=My Bank my_name=My Company my_tax_number=MY-9 my_custom10=ten"));

    // An empty list of the client keeps what the document had; emptied terms are emptied.
    document->setRelated(s("client"), m_company->record(m_company->addClient(s("Quiet Ltd"))));
    document->setValue(s("client_email"), s("kept@old.test"));
    document->setRelated(s("bank"), nullptr);
    document->setRelated(s("payment_type"), nullptr);
    DocumentSnapshot::update(document);
    QCOMPARE(TestCompany::text(document, s("client_full_name client_email bank_line1 payment_type_name")),
             s("client_full_name=Quiet Ltd client_email=kept@old.test bank_line1= payment_type_name="));
}

void tst_DocumentContent::dueDate_data()
{
    QTest::addColumn<QVariant>("days");
    QTest::addColumn<int>("type");
    QTest::addColumn<QDateTime>("due");
    QTest::newRow("30 calendar days") << QVariant(30) << 0 << at(2024, 4, 14, 12, 0);
    QTest::newRow("0 calendar days") << QVariant(0) << 0 << at(2024, 3, 15, 12, 0);
    QTest::newRow("8 business days") << QVariant(8) << 1 << at(2024, 3, 27, 0, 0);
    QTest::newRow("10 business days over two weekends") << QVariant(10) << 1 << at(2024, 3, 29, 0, 0);
    QTest::newRow("no term") << QVariant() << 0 << QDateTime();
}

void tst_DocumentContent::dueDate()
{
    QFETCH(QVariant, days);
    QFETCH(int, type);
    const Record* term = days.isNull() ? nullptr : insert("DueDays", {{s("days"), days}, {s("type"), type}});
    QTEST(DueDate::from(term, m_company->now()).value_or(QDateTime()), "due");
}

void tst_DocumentContent::numberLimits_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("problem");
    const QString notFinite = s("Only finite numbers can be entered: NaN and infinity are not amounts.");
    const QString rate = s("The exchange rate must be a number above 0 and at most 1,000,000.");
    QTest::newRow("quantity at the limit") << Kind::Quantity << -1e9 << QString();
    QTest::newRow("quantity above")
        << Kind::Quantity << 1e9 + 1
        << s("The quantity must be a number from -1,000,000,000 to 1,000,000,000.");
    QTest::newRow("quantity NaN") << Kind::Quantity << std::nan("") << notFinite;
    QTest::newRow("price at the limit") << Kind::Price << 1e12 << QString();
    QTest::newRow("price below")
        << Kind::Price << -1e13
        << s("The price must be a number from -1,000,000,000,000 to 1,000,000,000,000.");
    QTest::newRow("amount above")
        << Kind::Amount << 1e300
        << s("The amount must be a number from -1,000,000,000,000 to 1,000,000,000,000.");
    QTest::newRow("amount infinite") << Kind::Amount << std::numeric_limits<double>::infinity() << notFinite;
    QTest::newRow("rate at the limit") << Kind::ExchangeRate << 1e6 << QString();
    QTest::newRow("rate above") << Kind::ExchangeRate << 1e6 + 0.01 << rate;
    QTest::newRow("rate zero") << Kind::ExchangeRate << 0.0 << rate;
}

void tst_DocumentContent::numberLimits()
{
    QFETCH(Kind, kind);
    QFETCH(double, value);
    QFETCH(QString, problem);
    QCOMPARE(NumberLimits::problem(kind, value).value_or(QString()), problem);
    QCOMPARE(NumberLimits::accept(kind, value, m_company->prompter()), problem.isEmpty());
    const auto& questions = m_company->prompter().questions();
    QCOMPARE(questions.size(), problem.isEmpty() ? 0 : 1);
    for (const auto& question : questions)
        QCOMPARE(question.title + question.text + question.buttons.join(QString()),
                 s("Invalid number") + problem + s("OK"));
}

void tst_DocumentContent::customFields()
{
    const QStringList keys{s("client_custom03"), s("client_custom10"), s("my_custom07"),
                           s("item_custom_price02"), s("item_unit_price_level_01")};
    QStringList names;
    for (const QString& key : keys)
        names << CustomFields::readableName(key);
    QCOMPARE(names, (QStringList{s("Custom 3"), s("Custom 10"), s("Custom 7"), s("Custom Price 2"),
                                 s("Unit Price Level 1")}));

    model::testing::ScratchCompany scratch; // without the default definitions
    store::EditingContext& c = scratch.main();
    const QList<std::pair<const char*, QVariant>> fields{
        {"client_custom02", s("Birthday")}, {"client_custom01", s("Phone")}, {"client_custom03", QVariant()},
        {"client_custom04", s("")},         {"item_custom01", s("Colour")},  {"my_custom01", s("Bank")}};
    for (const auto& [name, label] : fields)
        c.insertRecord(s("Compose"), {{s("name"), s(name)}, {s("label"), label}});
    model::testing::saveOrFail(c);
    QStringList shown;
    for (const Record* r : CustomFields::group(c, s("CLIENT_")))
        shown << r->value(s("name")).toString() + s(": ") + CustomFields::displayName(r);
    QCOMPARE(shown, (QStringList{s("client_custom01: Phone"), s("client_custom02: Birthday"),
                                 s("client_custom03: Custom 3")}));
    QCOMPARE(CustomFields::group(c, s("item_")).size(), 1);
    QCOMPARE(CustomFields::displayName(nullptr), QString());
}

QTEST_GUILESS_MAIN(tst_DocumentContent)
#include "tst_documentcontent.moc"
