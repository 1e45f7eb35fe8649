#pragma once

#include <QString>
#include <array>
#include <vector>

namespace corvanta::bench {

class RowSample;

// Inserts one row sample through the store and with plain prepared statements, each into a
// fresh database prepared the same way, over several rounds (the order rotating), and checks
// that every database ends up holding the same rows.
class InsertComparison
{
public:
    enum Method { ThroughStore, PlainFilledColumns, PlainEveryColumn, MethodCount };

    struct Timing
    {
        qint64 wallNanoseconds = 0;
        qint64 cpuNanoseconds = 0; // this process, on every core
    };

    InsertComparison(const QString& folder, const RowSample& sample, int rounds);

    // False on a failure or when the databases' rows differ; error() says which.
    bool run();

    const QString& error() const { return m_error; }
    const std::vector<Timing>& timings(Method method) const { return m_timings[std::size_t(method)]; }
    // The median over the rounds.
    Timing median(Method method) const;
    static QString name(Method method);

private:
    bool prepare(const QString& path);
    bool insert(Method method, const QString& path, Timing* timing);
    // Rows that one database has and the other lacks, both ways; -1 on error.
    qint64 differingRows(const QString& pathA, const QString& pathB);

    QString m_folder;
    const RowSample& m_sample;
    int m_rounds;
    std::array<std::vector<Timing>, MethodCount> m_timings;
    QString m_error;
};

} // namespace corvanta::bench
