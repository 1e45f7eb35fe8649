#pragma once

#include <QLoggingCategory>

namespace corvanta::support {

// Diagnostics of the infrastructure (archives, property lists, files), in the category "corvanta.support".
Q_DECLARE_LOGGING_CATEGORY(lcSupport)

} // namespace corvanta::support
