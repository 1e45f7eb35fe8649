#include "zipwriter.h"

#include <QFile>
#include <QFileInfo>
#include <zip.h>

namespace corvanta::support {

ZipWriter::~ZipWriter()
{
    discard();
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
    int code = 0;
    m_archive = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (!m_archive) {
        zip_error_t zipError;
        zip_error_init_with_code(&zipError, code);
        if (error)
            *error = tr("The archive \"%1\" cannot be created: %2")
                         .arg(path, QString::fromUtf8(zip_error_strerror(&zipError)));
        zip_error_fini(&zipError);
        return false;
    }
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
        if (error)
            *error = tr("The archive \"%1\" cannot be written: %2").arg(m_path, lastError());
        discard();
        return false;
    }
    m_archive = nullptr;
    m_buffers.clear();
    return true;
}

void ZipWriter::discard()
{
    if (m_archive)
        zip_discard(m_archive);
    m_archive = nullptr;
    m_buffers.clear();
}

} // namespace corvanta::support
