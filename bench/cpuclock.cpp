#include "cpuclock.h"

#include <ctime>

namespace corvanta::bench {

qint64 CpuClock::processNanoseconds()
{
    timespec now{};
    if (clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now) != 0)
        return 0;
    return qint64(now.tv_sec) * 1000000000 + now.tv_nsec;
}

} // namespace corvanta::bench
