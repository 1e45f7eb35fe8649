#include "applog.h"

namespace corvanta::app {

Q_LOGGING_CATEGORY(lcApp, "corvanta.app")

} // namespace corvanta::app
