#pragma once

#include <QDateTime>
#include <QString>

namespace corvanta::store {
class Record;
}

namespace corvanta::templates {

// The names under which rendered PDFs are written.
class PdfFileNames
{
public:
    // `name` made safe as a file name, with ".pdf" appended: "/" becomes "-", control characters
    // go, leading dots and outer blanks go, an empty result becomes "Untitled", and the name is
    // kept short enough for any file system.
    static QString clearedPDFFileName(const QString& name);
    // A document's PDF: its `number_formatted`.
    static QString documentFileName(const store::Record& document);
    // A report's PDF: "Corvanta " and the time as "yyyy-MM-dd HHss" (the hour followed directly by
    // the seconds, without minutes, as reports have always been named).
    static QString reportFileName(const QDateTime& now);
};

} // namespace corvanta::templates
