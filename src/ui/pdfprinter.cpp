#include "pdfprinter.h"

#include <QImage>
#include <QPainter>
#include <QPdfDocument>
#include <QPrinter>
#include <algorithm>

namespace corvanta::ui {

void PdfPrinter::setUp(QPrinter& printer, int copies)
{
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageOrientation(QPageLayout::Portrait);
    printer.setFullPage(true);
    printer.setCopyCount(std::max(1, copies));
}

bool PdfPrinter::print(const QString& pdfPath, QPrinter& printer, QString* error)
{
    QPdfDocument pdf;
    if (pdf.load(pdfPath) != QPdfDocument::Error::None || pdf.pageCount() < 1) {
        *error = tr("The PDF \"%1\" could not be read for printing.").arg(pdfPath);
        return false;
    }
    const int pageCount = pdf.pageCount();
    int first = 0;
    int last = pageCount - 1;
    if (printer.printRange() == QPrinter::PageRange && printer.fromPage() > 0) {
        first = std::clamp(printer.fromPage() - 1, 0, pageCount - 1);
        last = std::clamp(printer.toPage() > 0 ? printer.toPage() - 1 : last, first, pageCount - 1);
    }

    // A printing system that makes the copies itself gets the document once.
    const int copies = printer.supportsMultipleCopies() ? 1 : std::max(1, printer.copyCount());
    QList<int> sequence;
    if (printer.collateCopies()) {
        for (int copy = 0; copy < copies; ++copy) {
            for (int page = first; page <= last; ++page)
                sequence.append(page);
        }
    } else {
        for (int page = first; page <= last; ++page) {
            for (int copy = 0; copy < copies; ++copy)
                sequence.append(page);
        }
    }

    QPainter painter;
    if (!painter.begin(&printer)) {
        *error = tr("The printer could not be started.");
        return false;
    }
    const QRectF sheet = printer.paperRect(QPrinter::DevicePixel);
    const int dotsPerInch = std::min(printer.resolution(), kMaximumDotsPerInch);
    bool firstSheet = true;
    for (const int page : std::as_const(sequence)) {
        if (!firstSheet && !printer.newPage()) {
            painter.end();
            *error = tr("The printer stopped taking pages.");
            return false;
        }
        firstSheet = false;
        const QSizeF points = pdf.pagePointSize(page);
        const QSize pixels((points * dotsPerInch / 72.0).toSize());
        const QImage image = pdf.render(page, pixels);
        // The page fills the sheet, keeping its proportions.
        QSizeF target = points.scaled(sheet.size(), Qt::KeepAspectRatio);
        const QRectF area(sheet.topLeft() + QPointF((sheet.width() - target.width()) / 2, 0), target);
        painter.drawImage(area, image);
    }
    if (!painter.end()) {
        *error = tr("The printer could not finish the document.");
        return false;
    }
    return true;
}

} // namespace corvanta::ui
