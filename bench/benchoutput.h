#pragma once

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

} // namespace corvanta::bench
