#include "storelog.h"

namespace corvanta::store {

Q_LOGGING_CATEGORY(lcStore, "corvanta.store")

} // namespace corvanta::store
