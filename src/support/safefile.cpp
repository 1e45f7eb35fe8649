#include "safefile.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace corvanta::support {

bool writeFileSafely(const QString& path, const QByteArray& data, QString* error)
{
    QSaveFile out(path);
    const auto failed = [&](const QString& why) {
        out.cancelWriting();
        if (error)
            *error = why;
        return false;
    };
    if (!out.open(QIODevice::WriteOnly) || out.write(data) != data.size() || !out.flush())
        return failed(out.errorString());
    // QSaveFile syncs before it renames but does not report a failure to; the data must be on
    // the disk before the new file takes the name.
    if (::fsync(out.handle()) != 0)
        return failed(QString::fromLocal8Bit(std::strerror(errno)));
    if (!out.commit()) {
        if (error)
            *error = out.errorString();
        return false;
    }
    syncFolderOf(path);
    return true;
}

void syncFolderOf(const QString& path)
{
    const int folder = ::open(QFile::encodeName(QFileInfo(path).absolutePath()).constData(),
                              O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return;
    ::fsync(folder); // some file systems cannot sync a folder; the rename stands all the same
    ::close(folder);
}

} // namespace corvanta::support
