#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace corvanta::bench {

// One input of the PDF benchmark, as each side renders it: Corvanta from the company database
// through a corvanta-cli command, the HTML engines from the HTML written of the same contents.
struct PdfBenchInput
{
    QString name;
    QStringList corvantaCommand; // after --database FILE, before -o OUT
    QString html;
    double goalSeconds = 0.0; // Corvanta's median must stay under it
};

// How one PDF engine is started for an input; a missing program leaves `program` empty.
struct PdfEngine
{
    enum class Kind { Corvanta, Wkhtmltopdf, WeasyPrint };

    Kind kind = Kind::Corvanta;
    QString name;
    QString program;
    QStringList environment;

    bool isAvailable() const { return !program.isEmpty(); }
    QStringList arguments(const PdfBenchInput& input, const QString& database, const QString& pdf) const;

    static PdfEngine corvanta(const QString& cli, const QString& home);
    static PdfEngine wkhtmltopdf();
    static PdfEngine weasyPrint();
};

} // namespace corvanta::bench
