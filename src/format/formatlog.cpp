#include "formatlog.h"

namespace corvanta::format {

Q_LOGGING_CATEGORY(lcFormat, "corvanta.format")

} // namespace corvanta::format
