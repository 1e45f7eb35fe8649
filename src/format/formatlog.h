#pragma once

#include <QLoggingCategory>

namespace corvanta::format {

// Diagnostics of dates and amounts, in the category "corvanta.format".
Q_DECLARE_LOGGING_CATEGORY(lcFormat)

} // namespace corvanta::format
