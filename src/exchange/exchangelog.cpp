#include "exchangelog.h"

namespace corvanta::exchange {

Q_LOGGING_CATEGORY(lcExchange, "corvanta.exchange")

} // namespace corvanta::exchange
