#pragma once

#include <QDate>
#include <QList>
#include <QString>
#include <optional>

namespace corvanta::browse {

// The steps the report chart groups its periods by.
enum class ZoomStep { Day = 0, Week = 1, Month = 2, Year = 3 };

// Which zoom steps a period allows. A range longer than 50 calendar days has too many days to
// show them one by one, 357 days or more too many weeks, 1530 days or more too many months.
// The limits are kept as they are, not rounded to whole months or years.
class ReportZoom
{
public:
    static constexpr int kLongestDays = 50;   // more disables the day step
    static constexpr int kWeeksUntil = 357;   // this many days or more disable the week step
    static constexpr int kMonthsUntil = 1530; // this many days or more disable the month step

    // The enabled steps for the period from `from` to `to`, finest first; the year step always.
    static QList<ZoomStep> enabledSteps(const QDate& from, const QDate& to);
    // The step in force when `requested` is chosen: itself when enabled, else the next coarser
    // enabled step (a day moves to the week, a week to the month, a month to the year).
    static ZoomStep inForce(ZoomStep requested, const QDate& from, const QDate& to);

    // "day", "week", "month", "year".
    static QString name(ZoomStep step);
    static std::optional<ZoomStep> named(const QString& name);
};

} // namespace corvanta::browse
