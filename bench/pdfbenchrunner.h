#pragma once

#include "pdfengines.h"

#include <QString>

namespace corvanta::bench {

// What one engine did with one input over all timed runs.
struct PdfRunFigures
{
    bool ran = false;
    QString failure; // the first failing run's reason and standard error
    int runs = 0;
    double medianSeconds = 0.0;
    double minSeconds = 0.0;
    double maxSeconds = 0.0;
    qint64 peakBytes = -1; // the largest of all runs
    int pages = -1;        // of the PDF written, -1 when it cannot be read
};

// Renders an input with an engine as whole processes: one untimed warm-up run (page cache,
// font caches), then the timed runs, each writing the PDF anew. An engine whose warm-up shows
// that `runs` runs would take longer than the time budget gets fewer, but never under three.
class PdfBenchRunner
{
public:
    static constexpr int kFewestRuns = 3;

    PdfBenchRunner(QString database, QString outputFolder, int runs, bool warmUp, double budgetSeconds);

    PdfRunFigures measure(const PdfEngine& engine, const PdfBenchInput& input) const;

    static int pageCount(const QString& pdf);

private:
    QString m_database;
    QString m_outputFolder;
    int m_runs;
    bool m_warmUp;
    double m_budgetSeconds;
};

} // namespace corvanta::bench
