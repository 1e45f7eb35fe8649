#pragma once

#include <QtGlobal>
#include <functional>

namespace corvanta::exchange {

// Told by an import after each row of the file, with the rows gone through and all rows; an
// answer of false cancels the import, which then stores nothing.
using ImportProgress = std::function<bool(qsizetype done, qsizetype total)>;

} // namespace corvanta::exchange
