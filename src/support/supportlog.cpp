#include "supportlog.h"

namespace corvanta::support {

Q_LOGGING_CATEGORY(lcSupport, "corvanta.support")

} // namespace corvanta::support
