#include "taskslog.h"

namespace corvanta::tasks {

Q_LOGGING_CATEGORY(lcTasks, "corvanta.tasks")

} // namespace corvanta::tasks
