#pragma once

#include <QDateTime>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

namespace corvanta::bench {

// The files beside the database: the database list must stay a readable property list that
// selects the soaked database, and every archive in the archive folders must be a whole ZIP
// whose databases pass SQLite's integrity check.
class FileCheck
{
public:
    explicit FileCheck(QString scratchFolder);

    QStringList checkList(const QString& listFile, const QString& database) const;
    // Archives already checked and unchanged since (same size and time) are not read again.
    QStringList checkArchives(const QStringList& folders, const QSet<QString>& acknowledged);
    int archivesChecked() const { return m_archivesChecked; }

private:
    QStringList checkArchive(const QString& path) const;

    QString m_scratch;
    QHash<QString, QPair<qint64, QDateTime>> m_checked;
    int m_archivesChecked = 0;
};

} // namespace corvanta::bench
