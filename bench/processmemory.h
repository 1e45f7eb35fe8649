#pragma once

#include <QtGlobal>

namespace corvanta::bench {

// Memory figures of this process as Linux reports them in /proc/self/status.
class ProcessMemory
{
public:
    // The peak resident set size so far (VmHWM), in bytes; -1 when it cannot be read.
    static qint64 peakResident();
    // The current resident set size (VmRSS), in bytes; -1 when it cannot be read.
    static qint64 resident();

private:
    static qint64 statusField(const char* name);
};

} // namespace corvanta::bench
