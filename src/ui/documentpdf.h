#pragma once

#include <QCoreApplication>
#include <QString>

namespace corvanta::store {
class Record;
class Store;
} // namespace corvanta::store

namespace corvanta::ui {

// A document rendered to PDF with its design template, and the database's side folders the
// PDFs and template pictures live in. The browser's commands and the document outputs share it.
class DocumentPdf
{
    Q_DECLARE_TR_FUNCTIONS(DocumentPdf)

public:
    // The folder `name` ("temp", "templates") beside the company database's file, made when
    // missing.
    static QString databaseFolder(const store::Store& store, const QString& name);
    static QString tempFilesDirectory(const store::Store& store);
    static QString templateFilesDirectory(const store::Store& store);

    // Where a document's PDF goes in the temporary folder: its cleared number.
    static QString tempPath(const store::Store& store, const store::Record& document);

    // Renders the document (saved or not) with its own template, or the company's default of its
    // type, to `path`. False with `error` set when it has no template or the file cannot be
    // written; `pages` gets the page count.
    static bool write(store::Record* document, const QString& path, QString* error, int* pages = nullptr);
};

} // namespace corvanta::ui
