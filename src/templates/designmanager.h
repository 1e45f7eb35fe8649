#pragma once

#include "documentpdfpage.h"
#include "sectionfiller.h"
#include "workingelements.h"

#include <QCoreApplication>
#include <QMarginsF>
#include <QString>
#include <memory>

class QIODevice;
class QPdfWriter;

namespace corvanta::store {
class Record;
}

namespace corvanta::templates {

// Renders a filled template into a PDF: measures its sections, distributes the table entries
// over pages and draws every page. Text is measured on a PDF device of the same resolution as
// the one that draws it, one point to a device unit. Measuring and drawing text need a
// QGuiApplication (the offscreen platform serves a program without a display).
class DesignManager
{
    Q_DECLARE_TR_FUNCTIONS(DesignManager)

public:
    DesignManager(store::Record* templateRecord, const QString& templateFilesDirectory);
    ~DesignManager();
    DesignManager(const DesignManager&) = delete;
    DesignManager& operator=(const DesignManager&) = delete;

    store::Record* templateRecord() const { return m_template; }
    bool isReportTemplate() const;
    bool isDocumentsGroupedReportTemplate() const;

    // Reads the template's unit and margins again (`calculated_margins`, in points).
    void initMargins();
    QMarginsF calculatedMargins() const { return m_margins; }

    // The section's height for the page side, in whole points, with page number and count 0.
    int heightOfSection(const QString& section, const WorkingElements& elements, int pageSide);
    // The section filled for one page: its elements placed under `lineY` (page coordinates,
    // origin bottom-left) and its height after growth.
    FilledSection fillElements(const QString& section, const WorkingElements& elements, int pageSide,
                               int pageNumber, int pageCount, double lineY);

    // The pages of a filled template, each with its table entries.
    QList<DocumentPDFPage> createPages(const FilledTemplate& filled);

    // Writes the PDF to `path` through a temporary file renamed when complete, so that a failed
    // write leaves the old file (or none) in place.
    bool writePdf(const FilledTemplate& filled, const QString& path, int* pageCount = nullptr,
                  QString* error = nullptr);
    // Writes the PDF to an open device.
    bool writePdf(const FilledTemplate& filled, QIODevice* device, int* pageCount = nullptr,
                  QString* error = nullptr);

private:
    QString tableEntrySection(const TableEntry& entry) const;

    store::Record* m_template;
    QString m_templateFilesDirectory;
    qint64 m_type = 0;
    QMarginsF m_margins;
    std::unique_ptr<QIODevice> m_measuringBuffer;
    std::unique_ptr<QPdfWriter> m_measuringDevice;
    std::unique_ptr<ElementCatalogue> m_catalogue;
    std::unique_ptr<SectionFiller> m_filler;
};

} // namespace corvanta::templates
