#include "modellog.h"

namespace corvanta::model {

Q_LOGGING_CATEGORY(lcModel, "corvanta.model")

} // namespace corvanta::model
