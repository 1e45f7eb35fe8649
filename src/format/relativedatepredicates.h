#pragma once

#include "predicate/predicate.h"

#include <QDateTime>
#include <QLocale>
#include <optional>

namespace corvanta::format {

// Rewrites the relative-date tokens of a stored predicate ("@this_month" and the others,
// written as quoted text) into the instants they stand for at `now`: each comparison with a
// token then compares with CAST(seconds, "NSDate"). The dates are computed once; the tokens
// are replaced one after the other in the predicate's text, which is read again after each.
// No predicate in, none out; a predicate without tokens comes back with the same meaning.
std::optional<predicate::Predicate>
replaceRelativeDates(const std::optional<predicate::Predicate>& predicate,
                     const QDateTime& now = QDateTime::currentDateTime(),
                     Qt::DayOfWeek firstDayOfWeek = QLocale().firstDayOfWeek());

} // namespace corvanta::format
