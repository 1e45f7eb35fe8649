#include "processmemory.h"

#include <QFile>

namespace corvanta::bench {

qint64 ProcessMemory::peakResident()
{
    return statusField("VmHWM:");
}

qint64 ProcessMemory::resident()
{
    return statusField("VmRSS:");
}

qint64 ProcessMemory::statusField(const char* name)
{
    // /proc files report a size of 0: atEnd() would be true at once, so the whole text is read.
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly | QIODevice::Text))
        return -1;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (!line.startsWith(name))
            continue;
        // "VmHWM:\t  123456 kB"
        const QList<QByteArray> parts = line.mid(qstrlen(name)).simplified().split(' ');
        bool ok = false;
        const qint64 kib = parts.value(0).toLongLong(&ok);
        if (!ok || parts.value(1) != "kB")
            return -1;
        return kib * 1024;
    }
    return -1;
}

} // namespace corvanta::bench
