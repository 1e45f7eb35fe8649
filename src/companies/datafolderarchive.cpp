#include "datafolderarchive.h"

#include "companieslog.h"
#include "store/store.h"
#include "store/storefile.h"
#include "support/zipwriter.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <algorithm>

namespace corvanta::companies {

using store::Store;
using store::StoreError;
using support::ZipWriter;

namespace {

const QString kDatabaseSuffix = QStringLiteral(".cvdb");
const QString kScratchPrefix = QStringLiteral(".corvanta-snapshot-");

// A file or folder is left over once nothing in it has changed for this long.
constexpr qint64 kLeftoverAgeSeconds = 60 * 60;

bool isDatabaseFile(const QString& fileName)
{
    return fileName.endsWith(kDatabaseSuffix) && fileName.size() > kDatabaseSuffix.size();
}

bool sameFile(const QString& a, const QString& b)
{
    const QString ca = QFileInfo(a).canonicalFilePath();
    return !ca.isEmpty() && ca == QFileInfo(b).canonicalFilePath();
}

bool isScratchFolderName(const QString& fileName)
{
    static const QRegularExpression pattern(QRegularExpression::anchoredPattern(
        QRegularExpression::escape(kScratchPrefix) + QStringLiteral("[A-Za-z0-9]{6}")));
    return pattern.match(fileName).hasMatch();
}

// The latest modification of the file, or of a folder and anything in it.
QDateTime lastTouched(const QFileInfo& info)
{
    QDateTime latest = info.lastModified();
    if (!info.isDir())
        return latest;
    QDirIterator it(info.absoluteFilePath(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        latest = std::max(latest, it.fileInfo().lastModified());
    }
    return latest;
}

} // namespace

DataFolderArchive::DataFolderArchive(const QString& folder, Store* openStore)
    : m_folder(QDir(folder).absolutePath())
    , m_openStore(openStore)
{}

bool DataFolderArchive::isDatabaseCompanion(const QString& fileName)
{
    for (const char* suffix : {".cvdb-wal", ".cvdb-shm", ".cvdb-journal", ".cvdb.lock"}) {
        if (fileName.endsWith(QLatin1String(suffix)))
            return true;
    }
    return false;
}

QStringList DataFolderArchive::removeLeftovers(const QString& folder)
{
    const QDateTime staleBefore = QDateTime::currentDateTime().addSecs(-kLeftoverAgeSeconds);
    QStringList removed;
    const QFileInfoList entries = QDir(folder).entryInfoList(QDir::Dirs | QDir::Files | QDir::Hidden |
                                                             QDir::NoDotAndDotDot | QDir::NoSymLinks);
    for (const QFileInfo& info : entries) {
        const bool scratch = info.isDir() && isScratchFolderName(info.fileName());
        // A partial ".<name>.zip.Ab12Cd.part": the random part and ".part" are 12 characters.
        const bool partial = info.isFile() && ZipWriter::isPartialArchive(info.fileName()) &&
                             info.fileName().chopped(12).endsWith(QLatin1String(".zip"));
        if ((!scratch && !partial) || lastTouched(info) >= staleBefore)
            continue;
        const bool gone = scratch ? QDir(info.absoluteFilePath()).removeRecursively()
                                  : QFile::remove(info.absoluteFilePath());
        if (gone) {
            qCInfo(lcCompanies, "Removed %s, left by an archive that was never finished.",
                   qPrintable(info.absoluteFilePath()));
            removed << info.absoluteFilePath();
        } else {
            qCWarning(lcCompanies, "%s, left by an archive that was never finished, cannot be removed.",
                      qPrintable(info.absoluteFilePath()));
        }
    }
    return removed;
}

bool DataFolderArchive::write(const QString& destination, const QString& comment, QString* error) const
{
    const QFileInfo target(destination);
    if (!QDir().mkpath(target.absolutePath())) {
        if (error)
            *error = tr("The folder \"%1\" cannot be created.").arg(target.absolutePath());
        return false;
    }
    if (!QFileInfo(m_folder).isDir()) {
        if (error)
            *error = tr("The folder \"%1\" does not exist.").arg(m_folder);
        return false;
    }
    removeLeftovers(target.absolutePath());
    // Snapshots are made beside the archive, on the same disk, and removed with the folder
    // whether or not the archive is written.
    QTemporaryDir scratch(target.absoluteDir().filePath(kScratchPrefix + QStringLiteral("XXXXXX")));
    if (!scratch.isValid()) {
        if (error)
            *error =
                tr("No scratch folder can be made beside \"%1\": %2").arg(destination, scratch.errorString());
        return false;
    }

    ZipWriter zip;
    if (!zip.open(destination, error) || !zip.setComment(comment, error))
        return false;

    const QDir root(m_folder);
    const QString scratchPath = QDir(scratch.path()).canonicalPath();
    QDirIterator it(m_folder, QDir::Files | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    int snapshotCount = 0;
    while (it.hasNext()) {
        const QString file = it.next();
        const QString entry = root.relativeFilePath(file);
        const QFileInfo info(file);
        if (entry.startsWith(QLatin1String("temp/")) || isDatabaseCompanion(info.fileName()) ||
            info.canonicalFilePath().startsWith(scratchPath + QLatin1Char('/')) ||
            sameFile(file, destination))
            continue;
        if (!isDatabaseFile(info.fileName())) {
            if (!zip.addFile(entry, file, error))
                return false;
            continue;
        }
        const QString copy = QDir(scratch.path()).filePath(QStringLiteral("%1.cvdb").arg(++snapshotCount));
        QString why;
        bool copied = false;
        if (m_openStore && sameFile(file, m_openStore->path())) {
            StoreError storeError;
            copied = m_openStore->writeSnapshot(copy, &storeError);
            why = storeError.message();
        } else {
            copied = store::StoreFile(file).writeCopy(copy, &why);
        }
        if (copied) {
            if (!zip.addFile(entry, copy, error))
                return false;
            continue;
        }
        if (m_openStore && sameFile(file, m_openStore->path())) {
            if (error)
                *error = tr("The open database \"%1\" could not be copied: %2").arg(file, why);
            return false;
        }
        // Not a database SQLite can read (or not readable in this way): the file as it is, with
        // its log, so that nothing of it is missing from the archive.
        qCWarning(lcCompanies, "%s is archived as it is: %s", qPrintable(file), qPrintable(why));
        if (!zip.addFile(entry, file, error))
            return false;
        const QString log = file + QStringLiteral("-wal");
        if (QFileInfo(log).isFile() && !zip.addFile(entry + QStringLiteral("-wal"), log, error))
            return false;
    }
    return zip.close(error);
}

} // namespace corvanta::companies
