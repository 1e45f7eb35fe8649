#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

namespace corvanta::companies {

// The "Corvanta Backup" folder in the documents folder: one archive per day, named
// "CorvantaBackup<yyyyMMdd>.zip", and the pruning of archives older than a month. Pruning
// removes only archives this program wrote: the exact name, a real date in it, and the archive
// comment that every backup carries. Any other file in the folder stays.
class BackupFolder
{
public:
    static constexpr const char* kFolderName = "Corvanta Backup";
    static constexpr const char* kComment = "Corvanta daily backup";

    explicit BackupFolder(const QString& documentsFolder);

    const QString& path() const { return m_path; }
    QString archivePath(const QDate& day) const;

    // Whether `fileName` is exactly the name of a backup of a real day.
    static bool isBackupName(const QString& fileName);
    // The start of the day one month before `today`, the same day number; a day the month does
    // not have rolls over into the next month (31 March gives 3 March in a common year).
    static QDate pruneBoundary(const QDate& today);
    // Whether the file is an archive this program wrote here.
    bool isOwnArchive(const QString& file) const;
    // Removes the own archives last modified before the boundary; returns their paths. What
    // archives that were never finished left behind goes as well (see
    // DataFolderArchive::removeLeftovers).
    QStringList prune(const QDate& today) const;
    // The newest archive of the folder by the day in its name; empty when there is none.
    QString latestArchive() const;

private:
    QString m_path;
};

} // namespace corvanta::companies
