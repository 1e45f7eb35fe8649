#include "backupfolder.h"

#include "companieslog.h"
#include "datafolderarchive.h"
#include "support/zipreader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>

namespace corvanta::companies {

using support::ZipReader;

namespace {

const QRegularExpression& backupPattern()
{
    static const QRegularExpression pattern(QStringLiteral("\\ACorvantaBackup([0-9]{8})\\.zip\\z"));
    return pattern;
}

} // namespace

BackupFolder::BackupFolder(const QString& documentsFolder)
    : m_path(QDir(documentsFolder).filePath(QString::fromLatin1(kFolderName)))
{}

QString BackupFolder::archivePath(const QDate& day) const
{
    return QDir(m_path).filePath(
        QStringLiteral("CorvantaBackup%1.zip").arg(day.toString(QStringLiteral("yyyyMMdd"))));
}

bool BackupFolder::isBackupName(const QString& fileName)
{
    const QRegularExpressionMatch match = backupPattern().match(fileName);
    return match.hasMatch() && QDate::fromString(match.captured(1), QStringLiteral("yyyyMMdd")).isValid();
}

QDate BackupFolder::pruneBoundary(const QDate& today)
{
    int year = today.year();
    int month = today.month() - 1;
    if (month == 0) {
        month = 12;
        --year;
    }
    return QDate(year, month, 1).addDays(today.day() - 1);
}

bool BackupFolder::isOwnArchive(const QString& file) const
{
    const QFileInfo info(file);
    if (!info.isFile() || info.isSymLink() || !isBackupName(info.fileName()) ||
        QDir(info.absolutePath()).canonicalPath() != QDir(m_path).canonicalPath())
        return false;
    ZipReader archive;
    return archive.open(file, nullptr) && archive.comment() == QLatin1String(kComment);
}

QStringList BackupFolder::prune(const QDate& today) const
{
    // Never taken for backups (their names are not a backup's), but they take space.
    DataFolderArchive::removeLeftovers(m_path);
    const QDateTime boundary = pruneBoundary(today).startOfDay();
    QStringList removed;
    const QFileInfoList files =
        QDir(m_path).entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot);
    for (const QFileInfo& info : files) {
        if (!isBackupName(info.fileName()) || info.lastModified() >= boundary)
            continue;
        if (!isOwnArchive(info.absoluteFilePath()))
            continue;
        if (QFile::remove(info.absoluteFilePath()))
            removed << info.absoluteFilePath();
        else
            qCWarning(lcCompanies, "The old backup %s cannot be removed.",
                      qPrintable(info.absoluteFilePath()));
    }
    return removed;
}

QString BackupFolder::latestArchive() const
{
    QStringList names = QDir(m_path).entryList({QStringLiteral("CorvantaBackup*.zip")}, QDir::Files);
    names.erase(std::remove_if(names.begin(), names.end(), [](const QString& n) { return !isBackupName(n); }),
                names.end());
    if (names.isEmpty())
        return {};
    // The day is written year first, so the largest name is the newest day.
    return QDir(m_path).filePath(*std::max_element(names.cbegin(), names.cend()));
}

} // namespace corvanta::companies
