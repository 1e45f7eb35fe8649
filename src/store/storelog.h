#pragma once

#include <QLoggingCategory>

namespace corvanta::store {

// Diagnostics of the record store, in the category "corvanta.store".
Q_DECLARE_LOGGING_CATEGORY(lcStore)

} // namespace corvanta::store
