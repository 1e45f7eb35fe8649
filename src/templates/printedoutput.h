#pragma once

#include <QCoreApplication>
#include <QString>

namespace corvanta::store {
class Record;
}

namespace corvanta::templates {

struct ReportInput;

// Prints to PDF: a document with a document template, a report with a report template, or a
// template with the demo values its preview shows. Pictures of image elements come from the
// template files folder.
class PrintedOutput
{
    Q_DECLARE_TR_FUNCTIONS(PrintedOutput)

public:
    explicit PrintedOutput(const QString& templateFilesDirectory);

    // The template a document prints with: its own, or else the company's default of its type.
    static store::Record* templateOf(store::Record* document);

    // Each writes the PDF to `path` whole or not at all, and tells how many pages it has. False
    // with `error` set when it cannot be written.
    bool writeDocument(store::Record* document, store::Record* templateRecord, const QString& path,
                       int* pages, QString* error) const;
    bool writeReport(store::Record* templateRecord, const ReportInput& input, const QString& path, int* pages,
                     QString* error) const;
    // The demo document, or the demo report records of a report template's type.
    bool writePreview(store::Record* templateRecord, const QString& path, int* pages, QString* error) const;

private:
    QString m_templateFilesDirectory;
};

} // namespace corvanta::templates
