#include "pdffilenames.h"

#include "store/record.h"

namespace corvanta::templates {

namespace {

// Bytes of a file name, ".pdf" included, that every common file system takes.
constexpr qsizetype kMaximumBytes = 255;

} // namespace

QString PdfFileNames::clearedPDFFileName(const QString& name)
{
    QString cleared;
    cleared.reserve(name.size());
    for (const QChar c : name) {
        if (c == QLatin1Char('/'))
            cleared += QLatin1Char('-');
        else if (c.category() != QChar::Other_Control && c != QChar::LineSeparator &&
                 c != QChar::ParagraphSeparator)
            cleared += c;
    }
    // A leading dot hides a file; blanks before it would only hide the dot.
    qsizetype start = 0;
    while (start < cleared.size() && (cleared.at(start) == QLatin1Char('.') || cleared.at(start).isSpace()))
        ++start;
    cleared = cleared.mid(start).trimmed();
    if (cleared.isEmpty())
        cleared = QStringLiteral("Untitled");

    const QString suffix = QStringLiteral(".pdf");
    while (cleared.toUtf8().size() + suffix.size() > kMaximumBytes) {
        cleared.chop(1);
        if (!cleared.isEmpty() && cleared.back().isHighSurrogate())
            cleared.chop(1);
    }
    return cleared + suffix;
}

QString PdfFileNames::documentFileName(const store::Record& document)
{
    return clearedPDFFileName(document.value(QStringLiteral("number_formatted")).toString());
}

QString PdfFileNames::reportFileName(const QDateTime& now)
{
    return clearedPDFFileName(
        QStringLiteral("Corvanta %1").arg(now.toString(QStringLiteral("yyyy-MM-dd HHss"))));
}

} // namespace corvanta::templates
