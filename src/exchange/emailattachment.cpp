#include "emailattachment.h"

#include "exchangelog.h"
#include "format/relativedates.h"
#include "store/record.h"
#include "templates/pdffilenames.h"
#include "templates/printedoutput.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace corvanta::exchange {

EmailAttachment::EmailAttachment(const QString& tempFilesDirectory, const QString& templateFilesDirectory)
    : m_tempFilesDirectory(tempFilesDirectory)
    , m_templateFilesDirectory(templateFilesDirectory)
{}

int EmailAttachment::removeOldFiles(const QDateTime& now) const
{
    const QDateTime limit = format::dates::yesterday(now);
    int removed = 0;
    const QFileInfoList files =
        QDir(m_tempFilesDirectory).entryInfoList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QFileInfo& file : files) {
        if (file.lastModified() >= limit)
            continue;
        QFile old(file.absoluteFilePath());
        if (old.remove())
            ++removed;
        else
            qCWarning(lcExchange).noquote()
                << tr("%1 could not be removed: %2").arg(file.absoluteFilePath(), old.errorString());
    }
    return removed;
}

QString EmailAttachment::write(store::Record* document, store::Record* templateRecord, const QDateTime& now,
                               QString* error) const
{
    if (!templateRecord)
        templateRecord = templates::PrintedOutput::templateOf(document);
    const QString number = document->value(QStringLiteral("number_formatted")).toString();
    if (!templateRecord) {
        *error = tr("%1 has no design template, and the company has no default template for its type.")
                     .arg(number);
        return {};
    }
    if (!QDir().mkpath(m_tempFilesDirectory)) {
        *error = tr("The folder of temporary files \"%1\" cannot be made.").arg(m_tempFilesDirectory);
        return {};
    }
    removeOldFiles(now);
    const QString path =
        QDir(m_tempFilesDirectory).filePath(templates::PdfFileNames::documentFileName(*document));
    int pages = 0;
    if (!templates::PrintedOutput(m_templateFilesDirectory)
             .writeDocument(document, templateRecord, path, &pages, error))
        return {};
    return path;
}

} // namespace corvanta::exchange
