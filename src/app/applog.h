#pragma once

#include <QLoggingCategory>

namespace corvanta::app {

// Diagnostics of the application's start-up, quitting and update check, in the category "corvanta.app".
Q_DECLARE_LOGGING_CATEGORY(lcApp)

} // namespace corvanta::app
