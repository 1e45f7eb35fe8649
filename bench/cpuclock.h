#pragma once

#include <QtGlobal>

namespace corvanta::bench {

// The processor time this process has used, on every core; unlike wall-clock time it does not
// grow when other programs compete for the machine or the disk is slow.
class CpuClock
{
public:
    static qint64 processNanoseconds();
};

} // namespace corvanta::bench
