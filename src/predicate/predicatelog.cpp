#include "predicatelog.h"

namespace corvanta::predicate {

Q_LOGGING_CATEGORY(lcPredicate, "corvanta.predicate")

} // namespace corvanta::predicate
