#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <vector>

struct zip;
struct zip_source;

namespace corvanta::support {

// Writes a ZIP archive with libzip. Nothing appears at the destination until close(): the
// archive is written beside it and moved into place in one step, so an older archive of the
// same name stays whole until the new one is complete.
class ZipWriter
{
    Q_DECLARE_TR_FUNCTIONS(ZipWriter)

public:
    ZipWriter() = default;
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    // Starts an archive that will replace whatever is at `path`.
    bool open(const QString& path, QString* error);
    // Adds the file's content under `entryName` (a relative path with "/" separators). The file
    // is read when the archive is closed and must still exist then.
    bool addFile(const QString& entryName, const QString& sourceFile, QString* error);
    bool addData(const QString& entryName, const QByteArray& data, QString* error);
    bool setComment(const QString& comment, QString* error);
    // Writes the archive. On failure nothing is left at the destination that was not there.
    bool close(QString* error);
    // Gives up the archive unwritten.
    void discard();

private:
    bool add(const QString& entryName, zip_source* source, QString* error);
    QString lastError() const;

    zip* m_archive = nullptr;
    QString m_path;
    std::vector<QByteArray> m_buffers; // data added with addData, alive until close
};

} // namespace corvanta::support
