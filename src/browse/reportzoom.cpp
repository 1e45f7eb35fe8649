#include "browse/reportzoom.h"

namespace corvanta::browse {

QList<ZoomStep> ReportZoom::enabledSteps(const QDate& from, const QDate& to)
{
    const qint64 days = from.daysTo(to);
    QList<ZoomStep> steps;
    if (days <= kLongestDays)
        steps << ZoomStep::Day;
    if (days < kWeeksUntil)
        steps << ZoomStep::Week;
    if (days < kMonthsUntil)
        steps << ZoomStep::Month;
    steps << ZoomStep::Year;
    return steps;
}

ZoomStep ReportZoom::inForce(ZoomStep requested, const QDate& from, const QDate& to)
{
    const QList<ZoomStep> enabled = enabledSteps(from, to);
    for (ZoomStep step : enabled) {
        if (int(step) >= int(requested))
            return step;
    }
    return ZoomStep::Year;
}

QString ReportZoom::name(ZoomStep step)
{
    static const char* const names[] = {"day", "week", "month", "year"};
    return QString::fromLatin1(names[int(step)]);
}

std::optional<ZoomStep> ReportZoom::named(const QString& name)
{
    for (ZoomStep step : {ZoomStep::Day, ZoomStep::Week, ZoomStep::Month, ZoomStep::Year}) {
        if (ReportZoom::name(step) == name)
            return step;
    }
    return std::nullopt;
}

} // namespace corvanta::browse
