#pragma once

#include "pdfbenchrunner.h"
#include "pdfengines.h"

#include <QList>
#include <QTextStream>

namespace corvanta::bench {

// The PDF benchmark's figures side by side: a table of every engine on every input, the
// peers' times as multiples of Corvanta's, and each goal marked met or not met.
class PdfBenchReport
{
public:
    // Corvanta's peak memory must stay under this on every input.
    static constexpr qint64 kPeakGoalBytes = 150'000'000;
    // How many times slower than Corvanta each peer must be.
    static constexpr double kWkhtmltopdfFactor = 1.5;
    static constexpr double kWeasyPrintFactor = 30.0;

    explicit PdfBenchReport(const QList<PdfEngine>& engines);

    void add(const PdfBenchInput& input, const QList<PdfRunFigures>& byEngine);

    void printTable(QTextStream& out) const;
    void printRatios(QTextStream& out) const;
    // Returns how many goals were not met (a missing peer's ratio counts as not met).
    int printGoals(QTextStream& out) const;

private:
    struct Row
    {
        PdfBenchInput input;
        QList<PdfRunFigures> byEngine; // in the order of m_engines
    };

    const PdfRunFigures* figures(const Row& row, PdfEngine::Kind kind) const;
    // The peer's median over Corvanta's; negative when either did not run.
    double ratio(const Row& row, PdfEngine::Kind peer) const;

    QList<PdfEngine> m_engines;
    QList<Row> m_rows;
};

} // namespace corvanta::bench
