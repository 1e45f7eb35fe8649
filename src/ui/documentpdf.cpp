#include "documentpdf.h"

#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "templates/pdffilenames.h"
#include "templates/printedoutput.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>

namespace corvanta::ui {

namespace {

// Shows the wait cursor while a document is rendered.
class WaitCursor
{
public:
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

} // namespace

QString DocumentPdf::databaseFolder(const store::Store& store, const QString& name)
{
    // A company database keeps its side folders beside its file.
    const QString folder = QDir(QFileInfo(store.path()).absolutePath()).filePath(name);
    QDir().mkpath(folder);
    return folder;
}

QString DocumentPdf::tempFilesDirectory(const store::Store& store)
{
    return databaseFolder(store, QStringLiteral("temp"));
}

QString DocumentPdf::templateFilesDirectory(const store::Store& store)
{
    return databaseFolder(store, QStringLiteral("templates"));
}

QString DocumentPdf::tempPath(const store::Store& store, const store::Record& document)
{
    return QDir(tempFilesDirectory(store)).filePath(templates::PdfFileNames::documentFileName(document));
}

bool DocumentPdf::write(store::Record* document, const QString& path, QString* error, int* pages)
{
    store::Record* designTemplate = templates::PrintedOutput::templateOf(document);
    if (!designTemplate) {
        *error = tr("\"%1\" has no design template, and the company has no default template for its type.")
                     .arg(document->value(QStringLiteral("number_formatted")).toString());
        return false;
    }
    const WaitCursor wait;
    int written = 0;
    const bool done = templates::PrintedOutput(templateFilesDirectory(document->context()->store()))
                          .writeDocument(document, designTemplate, path, &written, error);
    if (pages)
        *pages = written;
    return done;
}

} // namespace corvanta::ui
