#include "datafolderarchive.h"

#include "companieslog.h"
#include "store/store.h"
#include "store/storefile.h"
#include "support/zipwriter.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QTemporaryDir>

namespace corvanta::companies {

using store::Store;
using store::StoreError;
using support::ZipWriter;

namespace {

const QString kDatabaseSuffix = QStringLiteral(".cvdb");

bool isDatabaseFile(const QString& fileName)
{
    return fileName.endsWith(kDatabaseSuffix) && fileName.size() > kDatabaseSuffix.size();
}

bool sameFile(const QString& a, const QString& b)
{
    const QString ca = QFileInfo(a).canonicalFilePath();
    return !ca.isEmpty() && ca == QFileInfo(b).canonicalFilePath();
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
    // Snapshots are made beside the archive, on the same disk, and removed with the folder.
    QTemporaryDir scratch(target.absoluteDir().filePath(QStringLiteral(".corvanta-snapshot-XXXXXX")));
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
