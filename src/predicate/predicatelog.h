#pragma once

#include <QLoggingCategory>

namespace corvanta::predicate {

// Diagnostics of the predicate language, in the category "corvanta.predicate".
Q_DECLARE_LOGGING_CATEGORY(lcPredicate)

} // namespace corvanta::predicate
