#include "zipwriter.h"

#include "safefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>
#include <zip.h>

namespace corvanta::support {

// The archive's file as libzip writes it: a partial file beside the destination, created when
// libzip starts writing, flushed to the disk and renamed over the destination when it commits,
// removed when it rolls back or gives up. libzip talks to it through a source callback.
class ZipWriter::Output
{
public:
    explicit Output(const QString& destination)
        : m_destination(destination)
    {
        zip_error_init(&m_error);
    }
    ~Output()
    {
        rollback();
        zip_error_fini(&m_error);
    }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    static zip_int64_t callback(void* state, void* data, zip_uint64_t length, zip_source_cmd_t command)
    {
        return static_cast<Output*>(state)->handle(data, length, command);
    }

private:
    zip_int64_t handle(void* data, zip_uint64_t length, zip_source_cmd_t command)
    {
        switch (command) {
        case ZIP_SOURCE_SUPPORTS:
            return ZIP_SOURCE_SUPPORTS_WRITABLE;
        case ZIP_SOURCE_STAT:
            // The archive is always written anew: there is nothing to read.
            return fail(ZIP_ER_READ, ENOENT);
        case ZIP_SOURCE_ERROR:
            return zip_error_to_data(&m_error, data, length);
        case ZIP_SOURCE_BEGIN_WRITE:
            return begin() ? 0 : -1;
        case ZIP_SOURCE_WRITE:
            return write(static_cast<const char*>(data), length);
        case ZIP_SOURCE_SEEK_WRITE: {
            const zip_int64_t offset = zip_source_seek_compute_offset(
                zip_uint64_t(m_offset), zip_uint64_t(m_size), data, length, &m_error);
            if (offset < 0)
                return -1;
            m_offset = offset;
            return 0;
        }
        case ZIP_SOURCE_TELL_WRITE:
            return m_offset;
        case ZIP_SOURCE_COMMIT_WRITE:
            return commit() ? 0 : -1;
        case ZIP_SOURCE_ROLLBACK_WRITE:
            rollback();
            return 0;
        case ZIP_SOURCE_REMOVE:
            // An archive without entries: libzip removes the destination rather than write it.
            if (::unlink(QFile::encodeName(m_destination).constData()) != 0)
                return fail(ZIP_ER_REMOVE, errno);
            return 0;
        case ZIP_SOURCE_FREE:
            return 0;
        default:
            return fail(ZIP_ER_OPNOTSUPP, 0);
        }
    }

    zip_int64_t fail(int zipError, int systemError)
    {
        zip_error_set(&m_error, zipError, systemError);
        return -1;
    }

    bool begin()
    {
        rollback();
        const QFileInfo destination(m_destination);
        static const char kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
        for (int attempt = 0; attempt < 100; ++attempt) {
            QString random;
            for (int i = 0; i < 6; ++i)
                random +=
                    QLatin1Char(kLetters[QRandomGenerator::global()->bounded(int(sizeof kLetters) - 1)]);
            m_partial = destination.absoluteDir().filePath(
                QStringLiteral(".%1.%2.part").arg(destination.fileName(), random));
            m_fd = ::open(QFile::encodeName(m_partial).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                          0666);
            if (m_fd >= 0) {
                m_offset = m_size = 0;
                return true;
            }
            if (errno != EEXIST)
                break;
        }
        m_partial.clear();
        fail(ZIP_ER_TMPOPEN, errno);
        return false;
    }

    zip_int64_t write(const char* data, zip_uint64_t length)
    {
        zip_uint64_t done = 0;
        while (done < length) {
            const ssize_t written =
                ::pwrite(m_fd, data + done, size_t(length - done), off_t(m_offset) + off_t(done));
            if (written < 0 && errno == EINTR)
                continue;
            if (written <= 0)
                return fail(ZIP_ER_WRITE, written < 0 ? errno : ENOSPC);
            done += zip_uint64_t(written);
        }
        m_offset += zip_int64_t(length);
        m_size = std::max(m_size, m_offset);
        return zip_int64_t(length);
    }

    // The data reaches the disk before the name does: a power cut leaves the old archive or the
    // new one, never an empty or partial file under the destination's name.
    bool commit()
    {
        if (::fsync(m_fd) != 0 || ::close(std::exchange(m_fd, -1)) != 0) {
            fail(ZIP_ER_WRITE, errno);
            rollback();
            return false;
        }
        if (::rename(QFile::encodeName(m_partial).constData(),
                     QFile::encodeName(m_destination).constData()) != 0) {
            fail(ZIP_ER_RENAME, errno);
            rollback();
            return false;
        }
        m_partial.clear();
        syncFolderOf(m_destination);
        return true;
    }

    void rollback()
    {
        if (m_fd >= 0)
            ::close(std::exchange(m_fd, -1));
        if (!m_partial.isEmpty())
            ::unlink(QFile::encodeName(m_partial).constData());
        m_partial.clear();
    }

    QString m_destination;
    QString m_partial;
    int m_fd = -1;
    zip_int64_t m_offset = 0;
    zip_int64_t m_size = 0;
    zip_error_t m_error;
};

ZipWriter::ZipWriter() = default;

ZipWriter::~ZipWriter()
{
    discard();
}

bool ZipWriter::isPartialArchive(const QString& fileName)
{
    static const QRegularExpression pattern(QStringLiteral("\\A\\..+\\.[A-Za-z0-9]{6}\\.part\\z"));
    return pattern.match(fileName).hasMatch();
}

QString ZipWriter::lastError() const
{
    return m_archive ? QString::fromUtf8(zip_strerror(m_archive)) : QString();
}

bool ZipWriter::open(const QString& path, QString* error)
{
    discard();
    if (QFileInfo(path).isDir()) {
        if (error)
            *error = tr("\"%1\" is a folder.").arg(path);
        return false;
    }
    m_output = std::make_unique<Output>(path);
    zip_error_t zipError;
    zip_error_init(&zipError);
    zip_source_t* source = zip_source_function_create(&Output::callback, m_output.get(), &zipError);
    if (source) {
        m_archive = zip_open_from_source(source, ZIP_CREATE | ZIP_TRUNCATE, &zipError);
        if (!m_archive)
            zip_source_free(source);
    }
    if (!m_archive) {
        if (error)
            *error = tr("The archive \"%1\" cannot be created: %2")
                         .arg(path, QString::fromUtf8(zip_error_strerror(&zipError)));
        zip_error_fini(&zipError);
        m_output.reset();
        return false;
    }
    zip_error_fini(&zipError);
    m_path = path;
    return true;
}

bool ZipWriter::add(const QString& entryName, zip_source_t* source, QString* error)
{
    if (!source) {
        if (error)
            *error = lastError();
        return false;
    }
    const QByteArray name = entryName.toUtf8();
    if (zip_file_add(m_archive, name.constData(), source, ZIP_FL_ENC_UTF_8 | ZIP_FL_OVERWRITE) < 0) {
        zip_source_free(source);
        if (error)
            *error = tr("\"%1\" cannot be added to the archive: %2").arg(entryName, lastError());
        return false;
    }
    return true;
}

bool ZipWriter::addFile(const QString& entryName, const QString& sourceFile, QString* error)
{
    if (!m_archive)
        return false;
    return add(entryName, zip_source_file(m_archive, QFile::encodeName(sourceFile).constData(), 0, -1),
               error);
}

bool ZipWriter::addData(const QString& entryName, const QByteArray& data, QString* error)
{
    if (!m_archive)
        return false;
    m_buffers.push_back(data);
    const QByteArray& kept = m_buffers.back();
    return add(entryName, zip_source_buffer(m_archive, kept.constData(), zip_uint64_t(kept.size()), 0),
               error);
}

bool ZipWriter::setComment(const QString& comment, QString* error)
{
    if (!m_archive)
        return false;
    const QByteArray text = comment.toUtf8();
    if (zip_set_archive_comment(m_archive, text.constData(), zip_uint16_t(text.size())) < 0) {
        if (error)
            *error = lastError();
        return false;
    }
    return true;
}

bool ZipWriter::close(QString* error)
{
    if (!m_archive)
        return false;
    if (zip_close(m_archive) < 0) {
        if (error) {
            const zip_error_t* why = zip_get_error(m_archive);
            const int systemError = zip_error_system_type(why) == ZIP_ET_SYS ? zip_error_code_system(why) : 0;
            *error = systemError == ENOSPC || systemError == EDQUOT
                         ? tr("The disk is full: the archive \"%1\" could not be written.").arg(m_path)
                         : tr("The archive \"%1\" cannot be written: %2").arg(m_path, lastError());
        }
        discard();
        return false;
    }
    m_archive = nullptr;
    m_output.reset();
    m_buffers.clear();
    return true;
}

void ZipWriter::discard()
{
    if (m_archive)
        zip_discard(m_archive);
    m_archive = nullptr;
    m_output.reset();
    m_buffers.clear();
}

} // namespace corvanta::support
