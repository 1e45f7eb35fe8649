#pragma once

#include <QLoggingCategory>

namespace corvanta::exchange {

// Diagnostics of e-mail hand-over and imports, in the category "corvanta.exchange".
Q_DECLARE_LOGGING_CATEGORY(lcExchange)

} // namespace corvanta::exchange
