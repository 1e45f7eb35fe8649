#include "pdfbenchreport.h"

namespace corvanta::bench {

namespace {

QString milliseconds(double seconds)
{
    return QString::number(seconds * 1000.0, 'f', 1) + QStringLiteral(" ms");
}

// Megabytes of 1,000,000 bytes, as the goal is written.
QString megabytes(qint64 bytes)
{
    return bytes < 0 ? QStringLiteral("?") : QString::number(double(bytes) / 1e6, 'f', 1);
}

QString verdict(bool met)
{
    return met ? QStringLiteral("met") : QStringLiteral("NOT met");
}

} // namespace

PdfBenchReport::PdfBenchReport(const QList<PdfEngine>& engines)
    : m_engines(engines)
{}

void PdfBenchReport::add(const PdfBenchInput& input, const QList<PdfRunFigures>& byEngine)
{
    m_rows.append({input, byEngine});
}

const PdfRunFigures* PdfBenchReport::figures(const Row& row, PdfEngine::Kind kind) const
{
    for (qsizetype i = 0; i < m_engines.size() && i < row.byEngine.size(); ++i) {
        if (m_engines.at(i).kind == kind)
            return row.byEngine.at(i).ran ? &row.byEngine.at(i) : nullptr;
    }
    return nullptr;
}

double PdfBenchReport::ratio(const Row& row, PdfEngine::Kind peer) const
{
    const PdfRunFigures* corvanta = figures(row, PdfEngine::Kind::Corvanta);
    const PdfRunFigures* other = figures(row, peer);
    if (!corvanta || !other || corvanta->medianSeconds <= 0.0)
        return -1.0;
    return other->medianSeconds / corvanta->medianSeconds;
}

void PdfBenchReport::printTable(QTextStream& out) const
{
    out << QStringLiteral("%1 %2 %3 %4 %5 %6 %7 %8")
               .arg(QStringLiteral("input"), -22)
               .arg(QStringLiteral("engine"), -12)
               .arg(QStringLiteral("median"), 11)
               .arg(QStringLiteral("min"), 11)
               .arg(QStringLiteral("max"), 11)
               .arg(QStringLiteral("peak MB"), 9)
               .arg(QStringLiteral("pages"), 6)
               .arg(QStringLiteral("runs"), 5)
        << Qt::endl;
    for (const Row& row : m_rows) {
        for (qsizetype i = 0; i < m_engines.size(); ++i) {
            const PdfEngine& engine = m_engines.at(i);
            const PdfRunFigures& f = row.byEngine.at(i);
            const QString input = i == 0 ? row.input.name : QString();
            if (!engine.isAvailable()) {
                out << QStringLiteral("%1 %2 missing (not installed; see bench/pdf_engines.sh)")
                           .arg(input, -22)
                           .arg(engine.name, -12)
                    << Qt::endl;
            } else if (!f.ran) {
                out << QStringLiteral("%1 %2 FAILED: %3").arg(input, -22).arg(engine.name, -12).arg(f.failure)
                    << Qt::endl;
            } else {
                out << QStringLiteral("%1 %2 %3 %4 %5 %6 %7 %8")
                           .arg(input, -22)
                           .arg(engine.name, -12)
                           .arg(milliseconds(f.medianSeconds), 11)
                           .arg(milliseconds(f.minSeconds), 11)
                           .arg(milliseconds(f.maxSeconds), 11)
                           .arg(megabytes(f.peakBytes), 9)
                           .arg(f.pages, 6)
                           .arg(f.runs, 5)
                    << Qt::endl;
            }
        }
    }
}

void PdfBenchReport::printRatios(QTextStream& out) const
{
    out << QStringLiteral("%1 %2 %3")
               .arg(QStringLiteral("median time over Corvanta's"), -28)
               .arg(QStringLiteral("wkhtmltopdf"), 12)
               .arg(QStringLiteral("WeasyPrint"), 12)
        << Qt::endl;
    const auto cell = [](double value) {
        return value < 0 ? QStringLiteral("-") : QString::number(value, 'f', 2) + QLatin1Char('x');
    };
    for (const Row& row : m_rows)
        out << QStringLiteral("%1 %2 %3")
                   .arg(row.input.name, -28)
                   .arg(cell(ratio(row, PdfEngine::Kind::Wkhtmltopdf)), 12)
                   .arg(cell(ratio(row, PdfEngine::Kind::WeasyPrint)), 12)
            << Qt::endl;
}

int PdfBenchReport::printGoals(QTextStream& out) const
{
    int missed = 0;
    const auto line = [&](const QString& goal, const QString& seen, bool met) {
        missed += met ? 0 : 1;
        out << QStringLiteral("  %1 %2 %3").arg(goal, -52).arg(seen, -22).arg(verdict(met)) << Qt::endl;
    };
    const auto peerLine = [&](const Row& row, PdfEngine::Kind peer, const QString& name, double factor) {
        const QString goal =
            QStringLiteral("%1: %2x faster than %3").arg(row.input.name).arg(factor).arg(name);
        const double r = ratio(row, peer);
        if (r < 0) {
            missed += 1;
            out << QStringLiteral("  %1 %2 %3")
                       .arg(goal, -52)
                       .arg(QStringLiteral("-"), -22)
                       .arg(QStringLiteral("not judged: %1 did not run")
                                .arg(figures(row, PdfEngine::Kind::Corvanta) ? name
                                                                             : QStringLiteral("Corvanta")))
                << Qt::endl;
            return;
        }
        line(goal, QString::number(r, 'f', 2) + QLatin1Char('x'), r >= factor);
    };
    for (const Row& row : m_rows) {
        const PdfRunFigures* corvanta = figures(row, PdfEngine::Kind::Corvanta);
        const QString timeGoal =
            QStringLiteral("%1 under %2").arg(row.input.name, milliseconds(row.input.goalSeconds));
        const QString peakGoal =
            QStringLiteral("%1 peak under %2 MB").arg(row.input.name).arg(kPeakGoalBytes / 1'000'000);
        if (!corvanta) {
            line(timeGoal, QStringLiteral("failed"), false);
            line(peakGoal, QStringLiteral("failed"), false);
        } else {
            line(timeGoal, milliseconds(corvanta->medianSeconds),
                 corvanta->medianSeconds < row.input.goalSeconds);
            line(peakGoal, megabytes(corvanta->peakBytes) + QStringLiteral(" MB"),
                 corvanta->peakBytes >= 0 && corvanta->peakBytes < kPeakGoalBytes);
        }
        peerLine(row, PdfEngine::Kind::Wkhtmltopdf, QStringLiteral("wkhtmltopdf"), kWkhtmltopdfFactor);
        peerLine(row, PdfEngine::Kind::WeasyPrint, QStringLiteral("WeasyPrint"), kWeasyPrintFactor);
    }
    return missed;
}

} // namespace corvanta::bench
