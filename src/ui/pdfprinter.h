#pragma once

#include <QCoreApplication>
#include <QString>

class QPrinter;

namespace corvanta::ui {

// Prints a PDF file on a printer: every page (or the printer's page range) rendered at the
// printer's resolution, at most 300 dots per inch, over the whole sheet. Copies are left to the
// printing system when it makes them itself, otherwise printed one after another, collated as
// the printer asks.
class PdfPrinter
{
    Q_DECLARE_TR_FUNCTIONS(PdfPrinter)

public:
    static constexpr int kMaximumDotsPerInch = 300;

    // A4 portrait over the whole sheet with `copies` copies.
    static void setUp(QPrinter& printer, int copies);
    // False with `error` set when the PDF cannot be read or the printer cannot be started.
    static bool print(const QString& pdfPath, QPrinter& printer, QString* error);
};

} // namespace corvanta::ui
