#pragma once

#include "browse/reportsums.h"
#include "browse/reportzoom.h"

#include <QCoreApplication>
#include <QDate>
#include <QDateTime>
#include <QList>
#include <QStringList>

namespace corvanta::browse {

// The chart of a report: one entry per period from the first to the last day of the range,
// empty periods at zero. `value` is the net amount, `value2` the tax (total less net), `value3`
// the quantity: how many documents for the documents and client views (the client view charts
// the listed clients' counted documents by their own amounts), the rows' quantity for the rows
// and item views.
struct ChartSeries
{
    ZoomStep step = ZoomStep::Day;
    QStringList keys; // "yyyyMMdd", "yyyyww", "yyyyMM" or "yyyy", oldest first
    QStringList labels;
    // The first instant of each period within the range, in the store's seconds since 2001.
    QList<double> starts;
    double end = 0.0; // the last instant of the range, the same way
    QList<double> value;
    QList<double> value2;
    QList<double> value3;
};

// Builds the chart series and the call that hands them to the report's chart page.
class ReportChart
{
    Q_DECLARE_TR_FUNCTIONS(ReportChart)

public:
    // The period a day falls in: "yyyyMMdd" for a day, the ISO week's year and number "yyyyww"
    // for a week (so that the last days of December can belong to the next year's first week),
    // "yyyyMM" for a month, "yyyy" for a year.
    static QString bucketKey(const QDate& date, ZoomStep step);
    // A period's label: the day and month ("d MMM"), the week's number, the month's name
    // ("MMMM") or the year.
    static QString label(const QDate& date, ZoomStep step);

    // The periods from `from` to `to`, every one at zero.
    static ChartSeries periods(const QDate& from, const QDate& to, ZoomStep step);
    // The series of a report's amounts, each in the period of its moment (periods are local
    // days, weeks ...); a moment outside the range adds nothing.
    static ChartSeries of(const QList<DatedSums>& amounts, const QDate& from, const QDate& to, ZoomStep step);

    // "Quantity", "Net", "Tax", "Total".
    static QStringList legendLabels();
    // The script the chart page runs to draw the series:
    // addChartValues([labels], [value], [value2], [value3], [net tips], [tax tips],
    // [quantity tips], periods, zoom step, whether any period has tax). A tip is a small HTML
    // table of the period with each label and its amount, amounts rounded to whole units.
    static QString pageCall(const ChartSeries& series);
};

} // namespace corvanta::browse
