#pragma once

#include <QDateTime>
#include <functional>

namespace corvanta::documents {

// Where the document logic takes "now" from: the system clock in the program, a fixed moment
// in tests.
using Clock = std::function<QDateTime()>;

inline Clock systemClock()
{
    return [] { return QDateTime::currentDateTime(); };
}

} // namespace corvanta::documents
