#include "databaselock.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvanta::store {

namespace {

QString systemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

} // namespace

DatabaseLock::DatabaseLock(const QString& lockFile)
    : m_path(lockFile)
{}

DatabaseLock::~DatabaseLock()
{
    release();
}

DatabaseLock::Result DatabaseLock::acquire(QString* why)
{
    release();
    const QByteArray path = QFile::encodeName(m_path);
    // The holder removes the file before it lets go, so a lock taken on a file that has just
    // been removed (or replaced) is worth nothing: it is taken again on the file now there.
    for (int attempt = 0; attempt < 100; ++attempt) {
        int fd = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644);
        if (fd < 0 && errno == EACCES)
            fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
        if (fd < 0) {
            if (why)
                *why = systemError();
            return Result::Failed;
        }
        int locked;
        do {
            locked = ::flock(fd, LOCK_EX | LOCK_NB);
        } while (locked < 0 && errno == EINTR);
        if (locked < 0) {
            const bool held = errno == EWOULDBLOCK;
            if (why)
                *why = systemError();
            ::close(fd);
            return held ? Result::HeldElsewhere : Result::Failed;
        }
        struct stat opened = {};
        struct stat named = {};
        if (::fstat(fd, &opened) == 0 && ::stat(path.constData(), &named) == 0 &&
            opened.st_dev == named.st_dev && opened.st_ino == named.st_ino) {
            m_fd = fd;
            // For people looking at the folder: who holds it. Nothing reads this back.
            const QByteArray pid = QByteArray::number(qint64(::getpid())) + '\n';
            if (::ftruncate(fd, 0) == 0) {
                const ssize_t written = ::pwrite(fd, pid.constData(), size_t(pid.size()), 0);
                Q_UNUSED(written) // a read-only lock file is locked all the same
            }
            return Result::Acquired;
        }
        ::close(fd);
    }
    if (why)
        *why = tr("The lock file keeps being replaced.");
    return Result::Failed;
}

void DatabaseLock::release()
{
    if (m_fd < 0)
        return;
    ::unlink(QFile::encodeName(m_path).constData());
    ::close(m_fd);
    m_fd = -1;
}

} // namespace corvanta::store
