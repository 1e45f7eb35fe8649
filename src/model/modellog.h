#pragma once

#include <QLoggingCategory>

namespace corvanta::model {

// Diagnostics of the data model and its records, in the category "corvanta.model".
Q_DECLARE_LOGGING_CATEGORY(lcModel)

} // namespace corvanta::model
