#pragma once

#include <QLoggingCategory>

namespace corvanta::tasks {

// Diagnostics of to-dos and their recurrence, in the category "corvanta.tasks".
Q_DECLARE_LOGGING_CATEGORY(lcTasks)

} // namespace corvanta::tasks
