#include "zipreader.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <sys/stat.h>
#include <zip.h>

namespace corvanta::support {

namespace {

QString zipErrorText(int code)
{
    zip_error_t zipError;
    zip_error_init_with_code(&zipError, code);
    const QString why = QString::fromUtf8(zip_error_strerror(&zipError));
    zip_error_fini(&zipError);
    return why;
}

} // namespace

ZipReader::ZipReader(const Limits& limits)
    : m_limits(limits)
{}

ZipReader::ZipReader()
    : ZipReader(Limits{})
{}

ZipReader::~ZipReader()
{
    close();
}

void ZipReader::close()
{
    if (m_archive)
        zip_discard(m_archive);
    m_archive = nullptr;
    m_entries.clear();
    m_data.clear();
}

bool ZipReader::isSafeName(const QString& name)
{
    if (name.isEmpty() || name.startsWith(QLatin1Char('/')) || name.contains(QLatin1Char('\\')) ||
        name.contains(QChar(0)))
        return false;
    QStringList parts = name.split(QLatin1Char('/'));
    if (parts.last().isEmpty()) // a folder entry
        parts.removeLast();
    if (parts.isEmpty())
        return false;
    for (const QString& part : parts) {
        if (part.isEmpty() || part == QLatin1String(".") || part == QLatin1String(".."))
            return false;
    }
    return !parts.first().contains(QLatin1Char(':'));
}

bool ZipReader::fail(const QString& why, QString* error)
{
    if (error)
        *error = why;
    close();
    return false;
}

bool ZipReader::open(const QString& path, QString* error)
{
    close();
    if (!QFileInfo(path).isFile())
        return fail(tr("\"%1\" is not a file.").arg(path), error);
    int code = 0;
    m_archive = zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY | ZIP_CHECKCONS, &code);
    if (!m_archive)
        return fail(tr("\"%1\" is not a readable ZIP archive: %2").arg(path, zipErrorText(code)), error);
    return readDirectory(path, error);
}

bool ZipReader::openData(const QByteArray& data, const QString& name, QString* error)
{
    close();
    m_data = data;
    zip_error_t zipError;
    zip_error_init(&zipError);
    zip_source_t* source =
        zip_source_buffer_create(m_data.constData(), zip_uint64_t(m_data.size()), 0, &zipError);
    if (source) {
        m_archive = zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, &zipError);
        if (!m_archive)
            zip_source_free(source);
    }
    const QString why = QString::fromUtf8(zip_error_strerror(&zipError));
    zip_error_fini(&zipError);
    if (!m_archive)
        return fail(tr("\"%1\" is not a readable ZIP archive: %2").arg(name, why), error);
    return readDirectory(name, error);
}

bool ZipReader::readDirectory(const QString& path, QString* error)
{
    m_path = path;
    const zip_int64_t count = zip_get_num_entries(m_archive, 0);
    if (count < 0 || count > m_limits.maxEntries)
        return fail(tr("The archive \"%1\" holds too many entries.").arg(path), error);
    qint64 total = 0;
    QSet<QString> seen;
    for (zip_int64_t i = 0; i < count; ++i) {
        zip_stat_t stat;
        zip_stat_init(&stat);
        if (zip_stat_index(m_archive, zip_uint64_t(i), 0, &stat) < 0 || !(stat.valid & ZIP_STAT_NAME))
            return fail(tr("The archive \"%1\" is damaged.").arg(path), error);
        const QString name = QString::fromUtf8(stat.name);
        if (!isSafeName(name))
            return fail(tr("The archive \"%1\" holds an entry with an unsafe name (\"%2\").").arg(path, name),
                        error);
        QString key = name;
        if (key.endsWith(QLatin1Char('/')))
            key.chop(1);
        if (seen.contains(key))
            return fail(tr("The archive \"%1\" holds the entry \"%2\" twice.").arg(path, name), error);
        seen.insert(key);
        if ((stat.valid & ZIP_STAT_ENCRYPTION_METHOD) && stat.encryption_method != ZIP_EM_NONE)
            return fail(tr("The archive \"%1\" is encrypted.").arg(path), error);
        zip_uint8_t system = 0;
        zip_uint32_t attributes = 0;
        if (zip_file_get_external_attributes(m_archive, zip_uint64_t(i), 0, &system, &attributes) == 0 &&
            system == ZIP_OPSYS_UNIX && ((attributes >> 16) & S_IFMT) == S_IFLNK)
            return fail(tr("The archive \"%1\" holds a symbolic link (\"%2\").").arg(path, name), error);
        const qint64 size = (stat.valid & ZIP_STAT_SIZE) ? qint64(stat.size) : 0;
        if (size < 0 || size > m_limits.maxEntrySize)
            return fail(tr("The entry \"%1\" of the archive \"%2\" is too large.").arg(name, path), error);
        total += size;
        if (total > m_limits.maxTotalSize)
            return fail(tr("The archive \"%1\" is too large when unpacked.").arg(path), error);
        const qint64 compressed = (stat.valid & ZIP_STAT_COMP_SIZE) ? qint64(stat.comp_size) : 0;
        m_entries.append({name, size, name.endsWith(QLatin1Char('/')), compressed});
    }
    return true;
}

QString ZipReader::comment() const
{
    if (!m_archive)
        return {};
    int length = 0;
    const char* text = zip_get_archive_comment(m_archive, &length, ZIP_FL_ENC_GUESS);
    return text ? QString::fromUtf8(text, length) : QString();
}

int ZipReader::indexOf(const QString& name) const
{
    for (int i = 0; i < m_entries.size(); ++i) {
        if (m_entries.at(i).name == name)
            return i;
    }
    return -1;
}

bool ZipReader::copyEntry(int index, QIODevice& out, qint64 limit, QString* error)
{
    const Entry& entry = m_entries.at(index);
    zip_file_t* file = zip_fopen_index(m_archive, zip_uint64_t(index), 0);
    if (!file) {
        if (error)
            *error = tr("The entry \"%1\" cannot be read: %2")
                         .arg(entry.name, QString::fromUtf8(zip_strerror(m_archive)));
        return false;
    }
    char buffer[64 * 1024];
    qint64 written = 0;
    bool ok = true;
    for (;;) {
        const zip_int64_t n = zip_fread(file, buffer, sizeof buffer);
        if (n < 0) {
            if (error)
                *error = tr("The entry \"%1\" is damaged: %2")
                             .arg(entry.name, QString::fromUtf8(zip_file_strerror(file)));
            ok = false;
            break;
        }
        if (n == 0)
            break;
        written += n;
        // The sizes in the archive's directory may lie; what is unpacked is counted here.
        if (written > entry.size || written > limit) {
            if (error)
                *error = tr("The entry \"%1\" is larger than the archive says.").arg(entry.name);
            ok = false;
            break;
        }
        if (out.write(buffer, n) != n) {
            if (error)
                *error = out.errorString();
            ok = false;
            break;
        }
    }
    zip_fclose(file);
    return ok;
}

std::optional<QByteArray> ZipReader::read(const QString& name, QString* error)
{
    const int index = m_archive ? indexOf(name) : -1;
    if (index < 0) {
        if (error)
            *error = tr("The archive has no entry \"%1\".").arg(name);
        return std::nullopt;
    }
    QByteArray content;
    {
        QBuffer buffer(&content);
        buffer.open(QIODevice::WriteOnly);
        if (!copyEntry(index, buffer, m_limits.maxEntrySize, error))
            return std::nullopt;
    }
    return content;
}

bool ZipReader::extract(const QString& name, const QString& destinationFile, QString* error)
{
    const int index = m_archive ? indexOf(name) : -1;
    if (index < 0 || m_entries.at(index).isFolder) {
        if (error)
            *error = tr("The archive has no file \"%1\".").arg(name);
        return false;
    }
    QFile out(destinationFile);
    if (!out.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        if (error)
            *error = tr("\"%1\" cannot be written: %2").arg(destinationFile, out.errorString());
        return false;
    }
    if (!copyEntry(index, out, m_limits.maxEntrySize, error) || !out.flush()) {
        out.close();
        out.remove();
        return false;
    }
    return true;
}

bool ZipReader::extractAll(const QString& folder, QString* error)
{
    if (!m_archive)
        return false;
    const QDir root(folder);
    if (!root.exists() && !QDir().mkpath(folder)) {
        if (error)
            *error = tr("The folder \"%1\" cannot be created.").arg(folder);
        return false;
    }
    QStringList createdFiles;
    QStringList createdFolders;
    const auto makeFolder = [&](const QString& path) {
        QStringList missing;
        for (QString p = path; !QFileInfo::exists(p); p = QFileInfo(p).absolutePath())
            missing.prepend(p);
        for (const QString& p : missing) {
            if (!QDir().mkdir(p))
                return false;
            createdFolders.prepend(p);
        }
        return QFileInfo(path).isDir();
    };
    const auto undo = [&]() {
        for (const QString& file : createdFiles)
            QFile::remove(file);
        for (const QString& dir : createdFolders)
            QDir().rmdir(dir);
    };
    for (int i = 0; i < m_entries.size(); ++i) {
        const Entry& entry = m_entries.at(i);
        const QString target = QDir::cleanPath(root.absoluteFilePath(entry.name));
        if (!target.startsWith(QDir::cleanPath(root.absolutePath()) + QLatin1Char('/'))) {
            if (error)
                *error = tr("The entry \"%1\" lies outside the folder.").arg(entry.name);
            undo();
            return false;
        }
        if (entry.isFolder) {
            if (!makeFolder(target)) {
                if (error)
                    *error = tr("The folder \"%1\" cannot be created.").arg(target);
                undo();
                return false;
            }
            continue;
        }
        if (!makeFolder(QFileInfo(target).absolutePath())) {
            if (error)
                *error = tr("The folder \"%1\" cannot be created.").arg(QFileInfo(target).absolutePath());
            undo();
            return false;
        }
        if (!extract(entry.name, target, error)) {
            undo();
            return false;
        }
        createdFiles.append(target);
    }
    return true;
}

} // namespace corvanta::support
