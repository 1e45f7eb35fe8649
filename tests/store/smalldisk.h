#pragma once

#include <QString>
#include <QTemporaryDir>
#include <QTest>
#include <optional>

namespace corvanta::testing {

// A folder on a disk that really fills up, for tests of full disks and failing writes.
//
// Where the process may mount (as root, or as root of a user namespace), a tmpfs of the given
// size is mounted on a fresh folder, in a mount namespace of the process's own: the mount is
// removed when the object goes and cannot outlive the process even when a test crashes. A user
// who may not mount has the test function run again in a child under `unshare -rm`. Where
// neither works, the child runs under a file-size limit instead (RLIMIT_FSIZE with SIGXFSZ
// ignored): a file that grows past the limit fails to be written with EFBIG, as a failing disk
// does. Kind::FileSizeLimit asks for that child in any case. Which one ran is told with qInfo.
//
// Use SMALL_DISK_OR_RETURN at the start of a test function.
class SmallDisk
{
public:
    enum class Kind { Tmpfs, FileSizeLimit };

    explicit SmallDisk(qint64 bytes, Kind wanted = Kind::Tmpfs);
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    // Whether this process runs the test on the disk. When it is false, a child has run the
    // test function (or nothing could be set up) and childFailure() tells what went wrong.
    bool isReady() const { return m_ready; }
    const QString& childFailure() const { return m_childFailure; }

    Kind kind() const { return m_kind; }
    QString path() const { return m_folder.path(); }
    QString filePath(const QString& name) const { return m_folder.filePath(name); }

    // Takes the space that is left but `spare` bytes: a filler file takes the free space of the
    // tmpfs; under the file-size limit no file may grow past `spare` bytes.
    bool fill(qint64 spare = 0);
    // Gives the space back: the filler is deleted, the limit lifted.
    void release();

private:
    bool mountTmpfs(qint64 bytes);
    void runChild(Kind kind);

    QTemporaryDir m_folder;
    Kind m_kind = Kind::Tmpfs;
    bool m_ready = false;
    bool m_mounted = false;
    QString m_childFailure;
};

} // namespace corvanta::testing

// Runs the rest of the test function on `disk` in this process, or returns after checking the
// outcome of the child that ran it.
#define SMALL_DISK_OR_RETURN(disk)                                                                           \
    do {                                                                                                     \
        if (!(disk).isReady()) {                                                                             \
            QVERIFY2((disk).childFailure().isEmpty(), qPrintable((disk).childFailure()));                    \
            return;                                                                                          \
        }                                                                                                    \
    } while (false)
