#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QTextStream>
#include <algorithm>

namespace corvanta::bench {

// Where the benchmarks print their figures.
inline QTextStream& out()
{
    static QTextStream stream(stdout);
    return stream;
}

// The middle of the timed runs, so that one slow run does not move a figure.
inline double medianOf(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

// The time since `timer` started, in milliseconds with the fraction kept.
inline double msSince(const QElapsedTimer& timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

} // namespace corvanta::bench
