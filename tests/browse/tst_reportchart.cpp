#include "browse/reportchart.h"
#include "browse/reportoptions.h"
#include "browse/reportzoom.h"
#include "store/valueconversion.h"

#include <QTest>

using namespace corvanta::browse;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QStringList names(const QList<ZoomStep>& steps)
{
    QStringList result;
    for (ZoomStep step : steps)
        result << ReportZoom::name(step);
    return result;
}

} // namespace

// The periods of the presets, the zoom steps a period allows and the chart's periods, keys and
// labels.
class tst_ReportChart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void periodPresets_data();
    void periodPresets();
    void zoomByRangeLength_data();
    void zoomByRangeLength();
    void periodsCoverTheRange_data();
    void periodsCoverTheRange();
    void amountsFallInTheirPeriod();
    void pageCall();
};

void tst_ReportChart::periodPresets_data()
{
    QTest::addColumn<int>("preset");
    QTest::addColumn<QDate>("from");
    QTest::addColumn<QDate>("to");
    // On Wednesday 13 March 2024; weeks begin on Sunday.
    QTest::newRow("yesterday") << int(ReportPeriod::Yesterday) << QDate(2024, 3, 12) << QDate(2024, 3, 12);
    QTest::newRow("this week so far")
        << int(ReportPeriod::ThisWeek) << QDate(2024, 3, 10) << QDate(2024, 3, 13);
    QTest::newRow("seven days back") << int(ReportPeriod::LastWeek) << QDate(2024, 3, 6)
                                     << QDate(2024, 3, 13);
    QTest::newRow("last month whole, a leap February")
        << int(ReportPeriod::LastMonth) << QDate(2024, 2, 1) << QDate(2024, 2, 29);
    QTest::newRow("three months back")
        << int(ReportPeriod::LastThreeMonths) << QDate(2023, 12, 13) << QDate(2024, 3, 13);
    QTest::newRow("last year whole") << int(ReportPeriod::LastYear) << QDate(2023, 1, 1)
                                     << QDate(2023, 12, 31);
}

void tst_ReportChart::periodPresets()
{
    QFETCH(int, preset);
    ReportOptions options;
    options.setDefinedDate(ReportPeriod(preset), QDateTime(QDate(2024, 3, 13), QTime(10, 30)));
    QTEST(options.fromDate, "from");
    QTEST(options.toDate, "to");
}

void tst_ReportChart::zoomByRangeLength_data()
{
    QTest::addColumn<int>("days");
    QTest::addColumn<QString>("requested");
    QTest::addColumn<QStringList>("enabled");
    QTest::addColumn<QString>("inForce");
    const QStringList all{s("day"), s("week"), s("month"), s("year")};
    QTest::newRow("50 days keep the day") << 50 << s("day") << all << s("day");
    QTest::newRow("51 days move the day to the week")
        << 51 << s("day") << QStringList{s("week"), s("month"), s("year")} << s("week");
    QTest::newRow("356 days keep the week")
        << 356 << s("week") << QStringList{s("week"), s("month"), s("year")} << s("week");
    QTest::newRow("357 days move the week to the month")
        << 357 << s("week") << QStringList{s("month"), s("year")} << s("month");
    QTest::newRow("a day over 357 days moves two steps")
        << 400 << s("day") << QStringList{s("month"), s("year")} << s("month");
    QTest::newRow("1529 days keep the month")
        << 1529 << s("month") << QStringList{s("month"), s("year")} << s("month");
    QTest::newRow("1530 days move the month to the year")
        << 1530 << s("month") << QStringList{s("year")} << s("year");
    QTest::newRow("a coarser step stays") << 10 << s("year") << all << s("year");
}

void tst_ReportChart::zoomByRangeLength()
{
    QFETCH(int, days);
    QFETCH(QString, requested);
    const QDate from(2024, 1, 1);
    const QDate to = from.addDays(days);
    QTEST(names(ReportZoom::enabledSteps(from, to)), "enabled");
    QTEST(ReportZoom::name(ReportZoom::inForce(*ReportZoom::named(requested), from, to)), "inForce");
}

void tst_ReportChart::periodsCoverTheRange_data()
{
    QTest::addColumn<QDate>("from");
    QTest::addColumn<QDate>("to");
    QTest::addColumn<QString>("step");
    QTest::addColumn<QString>("periods"); // "key label" each
    QTest::newRow("days, both ends included") << QDate(2024, 2, 28) << QDate(2024, 3, 1) << s("day")
                                              << s("20240228 28 Feb, 20240229 29 Feb, 20240301 1 Mar");
    QTest::newRow("a week the range only touches")
        << QDate(2024, 3, 6) << QDate(2024, 3, 11) << s("week") << s("202410 10, 202411 11");
    QTest::newRow("December days in the next year's first week")
        << QDate(2024, 12, 30) << QDate(2024, 12, 31) << s("week") << s("202501 1");
    QTest::newRow("January days in the last year's last week")
        << QDate(2027, 1, 1) << QDate(2027, 1, 2) << s("week") << s("202653 53");
    QTest::newRow("months of a one-month range") << QDate(2024, 1, 31) << QDate(2024, 3, 1) << s("month")
                                                 << s("202401 January, 202402 February, 202403 March");
    QTest::newRow("years") << QDate(2023, 12, 31) << QDate(2025, 1, 1) << s("year")
                           << s("2023 2023, 2024 2024, 2025 2025");
    QTest::newRow("an empty range") << QDate(2024, 3, 2) << QDate(2024, 3, 1) << s("day") << QString();
}

void tst_ReportChart::periodsCoverTheRange()
{
    QFETCH(QDate, from);
    QFETCH(QDate, to);
    QFETCH(QString, step);
    const ChartSeries series = ReportChart::periods(from, to, *ReportZoom::named(step));
    QStringList periods;
    for (qsizetype i = 0; i < series.keys.size(); ++i)
        periods << series.keys.at(i) + QLatin1Char(' ') + series.labels.value(i);
    QCOMPARE(series.labels.size(), series.keys.size());
    QTEST(periods.join(s(", ")), "periods");
    QCOMPARE(series.value, QList<double>(series.keys.size(), 0.0));
}

void tst_ReportChart::amountsFallInTheirPeriod()
{
    const auto at = [](int month, int day, int hour, double net, double total, double quantity) {
        DatedSums amount;
        amount.moment = corvanta::store::valueconversion::toReferenceSeconds(
            QDateTime(QDate(2024, month, day), QTime(hour, 0)));
        amount.sums.net = net;
        amount.sums.total = total;
        amount.sums.quantity = quantity;
        return amount;
    };
    const ChartSeries series =
        ReportChart::of({at(1, 9, 23, 999, 999, 9), // before the range
                         at(1, 10, 0, 100, 120, 1), at(1, 31, 23, 10, 11, 2), at(3, 1, 0, 50, 50, 1),
                         at(4, 1, 0, 999, 999, 9)}, // after the range
                        QDate(2024, 1, 10), QDate(2024, 3, 31), ZoomStep::Month);
    QCOMPARE(series.keys, (QStringList{s("202401"), s("202402"), s("202403")}));
    QCOMPARE(series.value, (QList<double>{110, 0, 50}));
    QCOMPARE(series.value2, (QList<double>{21, 0, 0}));
    QCOMPARE(series.value3, (QList<double>{3, 0, 1}));
}

void tst_ReportChart::pageCall()
{
    ChartSeries series = ReportChart::periods(QDate(2024, 1, 1), QDate(2024, 2, 29), ZoomStep::Month);
    series.labels[0] = s("<b>%1</b>");
    series.value = {1234.4, 0};
    series.value2 = {100.6, 0};
    series.value3 = {3, 0};
    const QString call = ReportChart::pageCall(series);
    QVERIFY2(
        call.startsWith(s("addChartValues([\"<b>%1</b>\",\"February\"], [1234.4,0], [100.6,0], [3,0], [")),
        qPrintable(call));
    QVERIFY2(call.endsWith(s("], 2, 2, 1)")), qPrintable(call));
    // Tips escape the label and round the amounts.
    QVERIFY2(call.contains(s("&lt;b&gt;%1&lt;/b&gt;")), qPrintable(call));
    QVERIFY2(call.contains(s("<td>Net</td><td>1234</td>")), qPrintable(call));
    QVERIFY2(call.contains(s("<td>Tax</td><td>101</td>")), qPrintable(call));
}

QTEST_GUILESS_MAIN(tst_ReportChart)
#include "tst_reportchart.moc"
