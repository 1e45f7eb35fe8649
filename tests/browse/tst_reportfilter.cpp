#include "browse/reportcolumns.h"
#include "browse/reportfilter.h"
#include "browse/reportgeneration.h"
#include "browse/reportrunner.h"
#include "browsetestsupport.h"
#include "templates/templatetypes.h"

using namespace corvanta;
using namespace corvanta::browse::testing;
using browse::DocumentSums;
using browse::ReportOptions;
using browse::ReportView;

Q_DECLARE_METATYPE(browse::ReportView)

// A company with a handful of documents around March 2024, and the reports over them.
class tst_ReportFilter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void lists_data();
    void lists();
    void sumsPerClientAndItem_data();
    void sumsPerClientAndItem();
    void totalsAndChart();
    void groupedReportInput_data();
    void groupedReportInput();
    void customFieldColumnsTakeTheirLabels_data();
    void customFieldColumnsTakeTheirLabels();

private:
    ReportOptions march(ReportView view = ReportView::Documents)
    {
        ReportOptions options = ReportOptions::defaults(m_company->main(), m_company->now());
        options.setView(view, m_company->main());
        options.setDates(QDate(2024, 3, 1), QDate(2024, 3, 31));
        return options;
    }
    // The labels of the records' documents (a row's document for a row).
    QStringList labelsOf(const QList<store::Record*>& records) const
    {
        QStringList labels;
        for (const store::Record* record : records) {
            const store::Record* document =
                record->entityName() == s("DocumentRows") ? record->related(s("document")) : record;
            labels << m_labels.value(document->ref());
        }
        return labels;
    }
    static QString sumsText(const DocumentSums& sums)
    {
        return s("%1 %2 %3 %4 %5")
            .arg(sums.net)
            .arg(sums.tax1)
            .arg(sums.tax2)
            .arg(sums.total)
            .arg(sums.quantity);
    }

    std::unique_ptr<BrowseCompany> m_company;
    QHash<RecordRef, QString> m_labels;
};

void tst_ReportFilter::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    m_company = std::make_unique<BrowseCompany>(at(2024, 3, 15));
    BrowseCompany& c = *m_company;
    const RecordRef vat20 = c.addTax(s("VAT 20"), 20);
    const RecordRef vat10 = c.addTax(s("VAT 10"), 10);
    const RecordRef bolt = c.addItem(s("Bolt"), 100, vat20);
    const RecordRef nut = c.addItem(s("Nut"), 50, vat10);
    const RecordRef alpha = c.addClient(s("Alpha"));
    const RecordRef beta = c.addClient(s("Beta"));
    c.addClient(s("Gamma"));
    const QVariant usd = QVariant::fromValue(c.currency("USD"));
    const QVariant eur = QVariant::fromValue(c.currency("EUR"));
    const QVariant transfer = QVariant::fromValue(c.named("PaymentTypes", s("Bank Transfer")));
    const QVariant cash = QVariant::fromValue(c.named("PaymentTypes", s("Cash")));
    const auto day = [](int month, int d) { return QDateTime(QDate(2024, month, d), QTime(12, 0)); };

    const struct
    {
        const char* label;
        int type;
        RecordRef client;
        RecordRef item;
        double quantity;
        bool final;
        QDateTime date;
        QVariant currency;
        QVariant paymentType;
    } documents[] = {
        {"d1", 0, alpha, bolt, 1, true, day(3, 1), usd, transfer}, // net 100, tax 20
        {"d2", 0, alpha, nut, 2, true, day(3, 10), usd, transfer}, // net 100, tax 10
        {"draft", 0, beta, bolt, 3, false, day(3, 12), usd, transfer},
        {"d4", 2, beta, nut, 1, true, day(3, 5), usd, transfer},     // an estimate: net 50, tax 5
        {"feb", 0, beta, bolt, 1, true, day(2, 10), usd, transfer},  // before the period
        {"cash", 0, alpha, bolt, 1, true, day(3, 11), usd, cash},    // another payment type
        {"euro", 0, beta, bolt, 1, true, day(3, 13), eur, transfer}, // another currency
        {"april", 0, alpha, nut, 1, true, day(4, 1), usd, transfer}, // after the period
        {"due", 0, beta, nut, 1, true, day(1, 2), usd, transfer},    // due in the period
    };
    for (const auto& d : documents) {
        QVariantMap values{
            {s("date_creation"), d.date}, {s("currency"), d.currency}, {s("payment_type"), d.paymentType}};
        if (QByteArray(d.label) == "due")
            values.insert(s("date_due"), day(3, 20));
        m_labels.insert(c.addDocument(d.type, d.client, d.item, d.quantity, d.final, values), s(d.label));
    }
}

void tst_ReportFilter::lists_data()
{
    using enum ReportView;
    QTest::addColumn<ReportView>("view");
    QTest::addColumn<std::function<void(ReportOptions&, BrowseCompany&)>>("change");
    QTest::addColumn<QStringList>("expected"); // sorted labels of the listed documents or rows' documents

    using Change = std::function<void(ReportOptions&, BrowseCompany&)>;
    const Change none = [](ReportOptions&, BrowseCompany&) {};
    const auto tags = [](int join, const QStringList& names) {
        return Change([=](ReportOptions& o, BrowseCompany& c) {
            o.tagsJoin = join;
            for (const QString& name : names)
                o.tags << c.named("Categories", name);
        });
    };
    QTest::newRow("period, default currency and payment type, no drafts")
        << Documents << none << QStringList{s("d1"), s("d2"), s("d4")};
    QTest::newRow("all payment types")
        << Documents << Change([](ReportOptions& o, BrowseCompany&) { o.allPaymentTypes = true; })
        << QStringList{s("cash"), s("d1"), s("d2"), s("d4")};
    QTest::newRow("another currency")
        << Documents << Change([](ReportOptions& o, BrowseCompany& c) { o.currency = c.currency("EUR"); })
        << QStringList{s("euro")};
    QTest::newRow("the last day counts whole") << Documents << Change([](ReportOptions& o, BrowseCompany&) {
        o.setDates(QDate(2024, 3, 2), QDate(2024, 3, 10));
    }) << QStringList{s("d2"), s("d4")};
    QTest::newRow("by due date") << Documents
                                 << Change([](ReportOptions& o, BrowseCompany&) { o.dateType = 2; })
                                 << QStringList{s("due")};
    QTest::newRow("all of one tag") << Documents << tags(0, {s("Invoice")}) << QStringList{s("d1"), s("d2")};
    QTest::newRow("all of two tags") << Documents << tags(0, {s("Invoice"), s("Estimate")}) << QStringList{};
    QTest::newRow("any of two tags") << Documents << tags(1, {s("Invoice"), s("Estimate")})
                                     << QStringList{s("d1"), s("d2"), s("d4")};
    QTest::newRow("rows of the counted documents")
        << DocumentRows << none << QStringList{s("d1"), s("d2"), s("d4")};
    QTest::newRow("rows by their document's tags")
        << DocumentRows << tags(0, {s("Estimate")}) << QStringList{s("d4")};
}

void tst_ReportFilter::lists()
{
    QFETCH(ReportView, view);
    QFETCH(std::function<void(ReportOptions&, BrowseCompany&)>, change);
    ReportOptions options = march(view);
    change(options, *m_company);
    const std::optional<browse::ReportResult> result = browse::ReportRunner(m_company->main()).run(options);
    QVERIFY(result);
    QList<store::Record*> records;
    for (qsizetype row = 0; row < result->size(); ++row)
        records << result->recordAt(row);
    QStringList labels = labelsOf(records);
    labels.sort();
    QTEST(labels, "expected");
}

void tst_ReportFilter::sumsPerClientAndItem_data()
{
    using enum ReportView;
    QTest::addColumn<ReportView>("view");
    QTest::addColumn<int>("month"); // reported after March was
    // "name: net tax1 tax2 total quantity" in list order; a client's quantity is its documents.
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("clients, one without documents")
        << ClientSums << 3
        << QStringList{s("Alpha: 200 30 0 230 2"), s("Beta: 50 5 0 55 1"), s("Gamma: 0 0 0 0 0")};
    QTest::newRow("items with their rows' quantity")
        << ItemSums << 3 << QStringList{s("Bolt: 100 20 0 120 1"), s("Nut: 150 15 0 165 3")};
    QTest::newRow("clients of February: March's sums do not stay")
        << ClientSums << 2
        << QStringList{s("Alpha: 0 0 0 0 0"), s("Beta: 100 20 0 120 1"), s("Gamma: 0 0 0 0 0")};
}

void tst_ReportFilter::sumsPerClientAndItem()
{
    QFETCH(ReportView, view);
    QFETCH(int, month);
    browse::ReportRunner runner(m_company->main());
    const auto whole = browse::ReportRunner::Records::Whole;
    QVERIFY(runner.run(march(view), browse::ZoomStep::Day, whole));
    ReportOptions options = march(view);
    options.setDates(QDate(2024, month, 1), QDate(2024, month, 1).addMonths(1).addDays(-1));
    const std::optional<browse::ReportResult> result = runner.run(options, browse::ZoomStep::Day, whole);
    QVERIFY(result);
    QStringList actual;
    for (const store::Record* record : result->records) {
        const QString name =
            record->value(s(view == ReportView::ClientSums ? "full_name" : "name")).toString();
        actual << name + s(": ") + sumsText(result->sumsOf(record));
        // The record carries the same sums, for the list's columns and the templates.
        QCOMPARE(record->value(s("documents_sum_total")).toDouble(), result->sumsOf(record).total);
    }
    QTEST(actual, "expected");
}

void tst_ReportFilter::totalsAndChart()
{
    const std::optional<browse::ReportResult> result =
        browse::ReportRunner(m_company->main()).run(march(), browse::ZoomStep::Week);
    QVERIFY(result);
    QCOMPARE(sumsText(result->totals), s("250 35 0 285 3"));
    QCOMPARE(result->zoom, browse::ZoomStep::Week);
    // ISO weeks 9 (26 Feb - 3 March) to 13 (25 - 31 March); Sunday 10 March ends week 10.
    QCOMPARE(result->chart.keys,
             (QStringList{s("202409"), s("202410"), s("202411"), s("202412"), s("202413")}));
    QCOMPARE(result->chart.value, (QList<double>{100, 150, 0, 0, 0}));
    QCOMPARE(result->chart.value2, (QList<double>{20, 15, 0, 0, 0}));
    QCOMPARE(result->chart.value3, (QList<double>{1, 2, 0, 0, 0}));
    // The client view charts the same documents, which the database adds up week by week.
    const std::optional<browse::ReportResult> clients =
        browse::ReportRunner(m_company->main()).run(march(ReportView::ClientSums), browse::ZoomStep::Week);
    QVERIFY(clients);
    QCOMPARE(clients->chart.value, result->chart.value);
    QCOMPARE(clients->chart.value2, result->chart.value2);
    QCOMPARE(clients->chart.value3, result->chart.value3);
}

void tst_ReportFilter::groupedReportInput_data()
{
    QTest::addColumn<ReportView>("view");
    QTest::addColumn<QStringList>("expected");
    // The documents in number order with all their rows; the rows view's rows, newest document
    // first, grouped under their document.
    QTest::newRow("documents with their rows")
        << ReportView::Documents
        << QStringList{s("group_header:d1"), s("group_detail:d1"), s("group_footer:d1"),
                       s("group_header:d2"), s("group_detail:d2"), s("group_footer:d2")};
    QTest::newRow("listed rows under their documents")
        << ReportView::DocumentRows
        << QStringList{s("group_header:d2"), s("group_detail:d2"), s("group_footer:d2"),
                       s("group_header:d1"), s("group_detail:d1"), s("group_footer:d1")};
}

void tst_ReportFilter::groupedReportInput()
{
    QFETCH(ReportView, view);
    ReportOptions options = march(view);
    options.setDates(QDate(2024, 3, 1), QDate(2024, 3, 10));
    options.tags << m_company->named("Categories", s("Invoice"));
    const std::optional<browse::ReportResult> result = browse::ReportRunner(m_company->main()).run(options);
    QVERIFY(result);
    const templates::ReportInput input =
        browse::ReportGeneration::input(*result, templates::TemplateTypes::DocumentsGroupedReport);
    QStringList entries;
    for (const templates::ReportInput::Row& row : input.rows)
        entries << row.groupType + QLatin1Char(':') + labelsOf({row.record}).value(0);
    QTEST(entries, "expected");
}

void tst_ReportFilter::customFieldColumnsTakeTheirLabels_data()
{
    using enum ReportView;
    QTest::addColumn<ReportView>("view");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("title");
    QTest::newRow("client field of documents") << Documents << s("client_custom01") << s("Region");
    QTest::newRow("client field through the rows' document")
        << DocumentRows << s("document.client_custom01") << s("Region");
    QTest::newRow("item field of rows") << DocumentRows << s("custom02") << s("Colour");
    QTest::newRow("item price level") << ItemSums << s("custom_price01") << s("Unit Price");
    QTest::newRow("plain column keeps its title") << Documents << s("sum_net") << s("Net");
}

void tst_ReportFilter::customFieldColumnsTakeTheirLabels()
{
    QFETCH(ReportView, view);
    QFETCH(QString, key);
    m_company->named("Compose", s("client_custom01"))->setValue(s("label"), s("Region"));
    m_company->named("Compose", s("item_custom02"))->setValue(s("label"), s("Colour"));
    m_company->saveMain();
    const QList<browse::ReportColumn> columns = browse::ReportColumns::of(m_company->main(), view);
    const auto column = std::find_if(columns.cbegin(), columns.cend(),
                                     [&](const browse::ReportColumn& c) { return c.key == key; });
    QVERIFY(column != columns.cend());
    QTEST(column->title, "title");
}

QTEST_GUILESS_MAIN(tst_ReportFilter)
#include "tst_reportfilter.moc"
