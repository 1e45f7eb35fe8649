#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <QString>

namespace corvanta::store {
class Record;
}

namespace corvanta::exchange {

// The PDF of a document made for an e-mail, in the database's folder of temporary files. Files
// there from before yesterday are removed first, so that the folder does not grow.
class EmailAttachment
{
    Q_DECLARE_TR_FUNCTIONS(EmailAttachment)

public:
    EmailAttachment(const QString& tempFilesDirectory, const QString& templateFilesDirectory);

    // Removes every file of the folder last modified before the start of yesterday; the number
    // removed. A file that cannot be removed is logged and stays.
    int removeOldFiles(const QDateTime& now) const;

    // Renders `document` with `templateRecord` (its own template when null) into the folder under
    // its number, after the clean-up. The file's path, or empty with `error` set.
    QString write(store::Record* document, store::Record* templateRecord, const QDateTime& now,
                  QString* error) const;

private:
    QString m_tempFilesDirectory;
    QString m_templateFilesDirectory;
};

} // namespace corvanta::exchange
