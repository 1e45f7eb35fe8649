#include "pdfengines.h"

#include "measuredprocess.h"

#include <QDir>

namespace corvanta::bench {

QStringList PdfEngine::arguments(const PdfBenchInput& input, const QString& database,
                                 const QString& pdf) const
{
    switch (kind) {
    case Kind::Corvanta:
        return QStringList{QStringLiteral("--database"), database} + input.corvantaCommand +
               QStringList{QStringLiteral("-o"), pdf};
    case Kind::Wkhtmltopdf:
        // The page and margins of the HTML's @page rule, which wkhtmltopdf does not read. It has
        // no CSS page counters, and Debian's build (on unpatched Qt) ignores its footer switches,
        // so its pages stay unnumbered.
        return {QStringLiteral("--quiet"),
                QStringLiteral("--page-size"),
                QStringLiteral("A4"),
                QStringLiteral("--margin-top"),
                QStringLiteral("20mm"),
                QStringLiteral("--margin-right"),
                QStringLiteral("18mm"),
                QStringLiteral("--margin-bottom"),
                QStringLiteral("22mm"),
                QStringLiteral("--margin-left"),
                QStringLiteral("22mm"),
                input.html,
                pdf};
    case Kind::WeasyPrint:
        return {QStringLiteral("--quiet"), input.html, pdf};
    }
    return {};
}

PdfEngine PdfEngine::corvanta(const QString& cli, const QString& home)
{
    // Its own folders for whatever the program keeps per user, and no display needed.
    return {Kind::Corvanta,
            QStringLiteral("Corvanta"),
            cli,
            {QStringLiteral("QT_QPA_PLATFORM=offscreen"),
             QStringLiteral("XDG_DATA_HOME=") + QDir(home).filePath(QStringLiteral("data")),
             QStringLiteral("XDG_CONFIG_HOME=") + QDir(home).filePath(QStringLiteral("config"))}};
}

PdfEngine PdfEngine::wkhtmltopdf()
{
    return {Kind::Wkhtmltopdf,
            QStringLiteral("wkhtmltopdf"),
            MeasuredProcess::findProgram(QStringLiteral("wkhtmltopdf")),
            {QStringLiteral("QT_QPA_PLATFORM=offscreen")}};
}

PdfEngine PdfEngine::weasyPrint()
{
    return {Kind::WeasyPrint,
            QStringLiteral("WeasyPrint"),
            MeasuredProcess::findProgram(QStringLiteral("weasyprint")),
            {}};
}

} // namespace corvanta::bench
