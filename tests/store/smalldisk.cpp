#include "smalldisk.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvanta::testing {

namespace {

// Set in a child that runs one test function: "tmpfs" under `unshare -rm`, "fsize" under the
// file-size limit. Setting it to "fsize" by hand runs the fallback in the process itself.
constexpr const char* kChildRole = "CORVANTA_SMALL_DISK";
const QString kFiller = QStringLiteral(".filler");

// Mounts made from here on are seen by this process alone and go with it.
bool enterPrivateMountNamespace()
{
    static const bool entered =
        ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    return entered;
}

// Whether a child under `unshare -rm` may mount a tmpfs.
bool namespacesAllowMounting()
{
    QTemporaryDir probeFolder;
    QProcess probe;
    probe.start(QStringLiteral("unshare"),
                {QStringLiteral("-rm"), QStringLiteral("mount"), QStringLiteral("-t"),
                 QStringLiteral("tmpfs"), QStringLiteral("-o"), QStringLiteral("size=64k"),
                 QStringLiteral("tmpfs"), probeFolder.path()});
    return probe.waitForFinished(10000) && probe.exitStatus() == QProcess::NormalExit &&
           probe.exitCode() == 0;
}

} // namespace

SmallDisk::SmallDisk(qint64 bytes, Kind wanted)
{
    const QByteArray role = qgetenv(kChildRole);
    if (role == "fsize") {
        m_kind = Kind::FileSizeLimit;
        ::signal(SIGXFSZ, SIG_IGN);
        m_ready = m_folder.isValid();
        qInfo("Small disk: a file-size limit (RLIMIT_FSIZE) on %s", qPrintable(path()));
        return;
    }
    if (wanted == Kind::Tmpfs && ::geteuid() == 0) {
        if (mountTmpfs(bytes)) {
            m_ready = true;
            qInfo("Small disk: a tmpfs of %lld bytes mounted on %s", bytes, qPrintable(path()));
            return;
        }
        if (role == "tmpfs") {
            m_childFailure = QStringLiteral("No tmpfs could be mounted under unshare -rm.");
            return;
        }
    }
    runChild(wanted == Kind::Tmpfs && namespacesAllowMounting() ? Kind::Tmpfs : Kind::FileSizeLimit);
}

SmallDisk::~SmallDisk()
{
    release();
    if (m_mounted && ::umount2(QFile::encodeName(path()).constData(), 0) != 0)
        ::umount2(QFile::encodeName(path()).constData(), MNT_DETACH); // a file on it is still open
}

bool SmallDisk::mountTmpfs(qint64 bytes)
{
    if (!m_folder.isValid() || !enterPrivateMountNamespace())
        return false;
    const QByteArray options = "size=" + QByteArray::number(bytes) + ",mode=0700";
    m_mounted = ::mount("tmpfs", QFile::encodeName(path()).constData(), "tmpfs", MS_NOSUID | MS_NODEV,
                        options.constData()) == 0;
    m_kind = Kind::Tmpfs;
    return m_mounted;
}

void SmallDisk::runChild(Kind kind)
{
    QString function = QString::fromLatin1(QTest::currentTestFunction());
    if (const char* tag = QTest::currentDataTag())
        function += QLatin1Char(':') + QString::fromUtf8(tag);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(kChildRole),
                       kind == Kind::Tmpfs ? QStringLiteral("tmpfs") : QStringLiteral("fsize"));
    QProcess child;
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::MergedChannels);
    const QString self = QCoreApplication::applicationFilePath();
    qInfo("Small disk: %s runs again in a child process, %s", qPrintable(function),
          kind == Kind::Tmpfs ? "under unshare -rm" : "under a file-size limit");
    if (kind == Kind::Tmpfs)
        child.start(QStringLiteral("unshare"), {QStringLiteral("-rm"), QStringLiteral("--"), self, function});
    else
        child.start(self, {function});
    const bool finished = child.waitForFinished(300000);
    const QByteArray output = child.readAll();
    std::fputs(output.constData(), stdout);
    if (!finished || child.exitStatus() != QProcess::NormalExit || child.exitCode() != 0)
        m_childFailure =
            QStringLiteral("%1 failed in the child process (see its output above)").arg(function);
}

bool SmallDisk::fill(qint64 spare)
{
    if (m_kind == Kind::FileSizeLimit) {
        rlimit limit{};
        ::getrlimit(RLIMIT_FSIZE, &limit);
        limit.rlim_cur = rlim_t(spare);
        return ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }
    const int fd = ::open(QFile::encodeName(filePath(kFiller)).constData(),
                          O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (fd < 0)
        return false;
    // Large pieces first, then ever smaller ones for what is left of the last pages.
    const QByteArray chunk(1 << 20, 'f');
    qsizetype size = chunk.size();
    int lastError = 0;
    while (size > 0) {
        const ssize_t written = ::write(fd, chunk.constData(), size_t(size));
        if (written >= 0)
            continue;
        lastError = errno;
        if (lastError != ENOSPC)
            break;
        size /= 16;
    }
    bool filled = lastError == ENOSPC;
    if (filled && spare > 0) {
        struct stat status
        {};
        filled = ::fstat(fd, &status) == 0 && status.st_size >= spare &&
                 ::ftruncate(fd, status.st_size - spare) == 0;
    }
    ::close(fd);
    return filled;
}

void SmallDisk::release()
{
    if (m_kind == Kind::FileSizeLimit) {
        rlimit limit{};
        if (::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != limit.rlim_max) {
            limit.rlim_cur = limit.rlim_max;
            ::setrlimit(RLIMIT_FSIZE, &limit);
        }
        return;
    }
    QFile::remove(filePath(kFiller));
}

} // namespace corvanta::testing
