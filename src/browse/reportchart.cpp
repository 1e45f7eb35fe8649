#include "browse/reportchart.h"

#include "format/relativedates.h"
#include "store/valueconversion.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>
#include <algorithm>

namespace corvanta::browse {

namespace {

QString twoDigits(int n)
{
    return QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0'));
}

QString json(const QJsonArray& array)
{
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

QJsonArray numbers(const QList<double>& values)
{
    QJsonArray array;
    for (double v : values)
        array.append(v);
    return array;
}

} // namespace

QString ReportChart::bucketKey(const QDate& date, ZoomStep step)
{
    switch (step) {
    case ZoomStep::Day:
        return date.toString(QStringLiteral("yyyyMMdd"));
    case ZoomStep::Week: {
        int year = 0;
        const int week = date.weekNumber(&year);
        return QString::number(year) + twoDigits(week);
    }
    case ZoomStep::Month:
        return date.toString(QStringLiteral("yyyyMM"));
    case ZoomStep::Year:
        return date.toString(QStringLiteral("yyyy"));
    }
    return {};
}

QString ReportChart::label(const QDate& date, ZoomStep step)
{
    const QLocale locale;
    switch (step) {
    case ZoomStep::Day:
        return locale.toString(date, QStringLiteral("d MMM"));
    case ZoomStep::Week:
        return QString::number(date.weekNumber());
    case ZoomStep::Month:
        return locale.toString(date, QStringLiteral("MMMM"));
    case ZoomStep::Year:
        return date.toString(QStringLiteral("yyyy"));
    }
    return {};
}

ChartSeries ReportChart::periods(const QDate& from, const QDate& to, ZoomStep step)
{
    ChartSeries series;
    series.step = step;
    // Day by day, so that a week or month that the range only touches still gets its period.
    for (QDate day = from; day.isValid() && day <= to; day = day.addDays(1)) {
        const QString key = bucketKey(day, step);
        if (!series.keys.isEmpty() && series.keys.last() == key)
            continue;
        series.keys << key;
        series.labels << label(day, step);
        series.starts << store::valueconversion::toReferenceSeconds(
            format::dates::fromMidnight(QDateTime(day, QTime(12, 0))));
    }
    if (!series.keys.isEmpty())
        series.end = store::valueconversion::toReferenceSeconds(
            format::dates::toMidnight(QDateTime(to, QTime(12, 0))));
    series.value.fill(0.0, series.keys.size());
    series.value2.fill(0.0, series.keys.size());
    series.value3.fill(0.0, series.keys.size());
    return series;
}

ChartSeries ReportChart::of(const QList<DatedSums>& amounts, const QDate& from, const QDate& to,
                            ZoomStep step)
{
    ChartSeries series = periods(from, to, step);
    if (series.keys.isEmpty())
        return series;
    // The period of a moment is the last one that starts at or before it, found by halving: a
    // report over years has tens of thousands of moments and no time to make a date of each.
    for (const DatedSums& amount : amounts) {
        if (amount.moment < series.starts.first() || amount.moment > series.end)
            continue;
        const qsizetype index =
            std::upper_bound(series.starts.cbegin(), series.starts.cend(), amount.moment) -
            series.starts.cbegin() - 1;
        series.value[index] += amount.sums.net;
        series.value2[index] += amount.sums.total - amount.sums.net;
        series.value3[index] += amount.sums.quantity;
    }
    return series;
}

QStringList ReportChart::legendLabels()
{
    return {tr("Quantity"), tr("Net"), tr("Tax"), tr("Total")};
}

QString ReportChart::pageCall(const ChartSeries& series)
{
    const QStringList legend = legendLabels();
    const auto tip = [&](qsizetype i, const QList<std::pair<QString, double>>& lines) {
        QString html = QStringLiteral("<table><tr><th colspan=\"2\">%1</th></tr>")
                           .arg(series.labels.at(i).toHtmlEscaped());
        for (const auto& [name, amount] : lines)
            html += QStringLiteral("<tr><td>%1</td><td>%2</td></tr>")
                        .arg(name.toHtmlEscaped(), QString::asprintf("%.0f", amount));
        return html + QStringLiteral("</table>");
    };
    QJsonArray labels;
    QJsonArray netTips;
    QJsonArray taxTips;
    QJsonArray quantityTips;
    bool anyTax = false;
    for (qsizetype i = 0; i < series.keys.size(); ++i) {
        const double net = series.value.at(i);
        const double tax = series.value2.at(i);
        anyTax = anyTax || tax != 0.0;
        labels.append(series.labels.at(i));
        netTips.append(tip(i, {{legend.at(1), net}, {legend.at(3), net + tax}}));
        taxTips.append(tip(i, {{legend.at(2), tax}, {legend.at(3), net + tax}}));
        quantityTips.append(tip(i, {{legend.at(0), series.value3.at(i)}}));
    }
    // Joined, not formatted with arg(): a label may itself hold a "%1".
    const QStringList arguments{json(labels),
                                json(numbers(series.value)),
                                json(numbers(series.value2)),
                                json(numbers(series.value3)),
                                json(netTips),
                                json(taxTips),
                                json(quantityTips),
                                QString::number(series.keys.size()),
                                QString::number(int(series.step)),
                                QString::number(anyTax ? 1 : 0)};
    return QStringLiteral("addChartValues(") + arguments.join(QStringLiteral(", ")) + QLatin1Char(')');
}

} // namespace corvanta::browse
