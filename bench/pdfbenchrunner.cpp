#include "pdfbenchrunner.h"

#include "measuredprocess.h"

#include <QDir>
#include <QFile>
#include <QPdfDocument>
#include <QRegularExpression>
#include <algorithm>
#include <vector>

namespace corvanta::bench {

namespace {

QString fileName(const QString& text)
{
    QString name = text.toLower();
    name.replace(QRegularExpression(QStringLiteral("[^a-z0-9]+")), QStringLiteral("-"));
    return name;
}

} // namespace

PdfBenchRunner::PdfBenchRunner(QString database, QString outputFolder, int runs, bool warmUp,
                               double budgetSeconds)
    : m_database(std::move(database))
    , m_outputFolder(std::move(outputFolder))
    , m_runs(std::max(1, runs))
    , m_warmUp(warmUp)
    , m_budgetSeconds(budgetSeconds)
{}

PdfRunFigures PdfBenchRunner::measure(const PdfEngine& engine, const PdfBenchInput& input) const
{
    const QDir folder(m_outputFolder);
    const QString base = fileName(input.name) + QLatin1Char('.') + fileName(engine.name);
    const QString pdf = folder.filePath(base + QStringLiteral(".pdf"));
    const QString messages = folder.filePath(base + QStringLiteral(".err"));
    MeasuredProcess process(engine.program, engine.arguments(input, m_database, pdf), engine.environment);
    process.setOutputFiles(folder.filePath(base + QStringLiteral(".out")), messages);

    PdfRunFigures figures;
    std::vector<double> seconds;
    int runs = m_runs;
    for (int run = m_warmUp ? -1 : 0; run < runs; ++run) {
        QFile::remove(pdf);
        const MeasuredProcess::Result result = process.run();
        if (!result.succeeded() || !QFile::exists(pdf)) {
            QFile complaint(messages);
            complaint.open(QIODevice::ReadOnly);
            const QString firstLine = QString::fromLocal8Bit(complaint.readLine(400)).trimmed();
            figures.failure = (result.succeeded() ? QStringLiteral("no PDF written") : result.error) +
                              (firstLine.isEmpty() ? QString() : QStringLiteral(": ") + firstLine);
            return figures;
        }
        if (run < 0) {
            if (result.seconds * m_runs > m_budgetSeconds)
                runs = std::min(m_runs, std::max(kFewestRuns, int(m_budgetSeconds / result.seconds)));
            continue;
        }
        seconds.push_back(result.seconds);
        figures.peakBytes = std::max(figures.peakBytes, result.peakBytes);
    }
    std::sort(seconds.begin(), seconds.end());
    figures.ran = true;
    figures.runs = int(seconds.size());
    figures.medianSeconds = seconds.size() % 2
                                ? seconds[seconds.size() / 2]
                                : (seconds[seconds.size() / 2 - 1] + seconds[seconds.size() / 2]) / 2;
    figures.minSeconds = seconds.front();
    figures.maxSeconds = seconds.back();
    figures.pages = pageCount(pdf);
    return figures;
}

int PdfBenchRunner::pageCount(const QString& pdf)
{
    QPdfDocument document;
    if (document.load(pdf) != QPdfDocument::Error::None)
        return -1;
    return document.pageCount();
}

} // namespace corvanta::bench
