#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <memory>
#include <vector>

struct zip;
struct zip_source;

namespace corvanta::support {

// Writes a ZIP archive with libzip. Nothing appears at the destination until close(): the
// archive is written to a partial file beside it (see isPartialArchive), flushed to the disk
// and then renamed over the destination in one step. An older archive of the same name stays
// whole until the new one is complete, and neither a failure nor a power cut leaves a
// truncated archive under the destination's name.
class ZipWriter
{
    Q_DECLARE_TR_FUNCTIONS(ZipWriter)

public:
    ZipWriter();
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

    // Whether `fileName` (without folder) is the name of a partial archive: hidden, the
    // destination's name, a random part and ".part" (".copy.zip.Ab12Cd.part"). One that stays
    // behind was left by a process that ended while writing it.
    static bool isPartialArchive(const QString& fileName);

private:
    class Output;

    bool add(const QString& entryName, zip_source* source, QString* error);
    QString lastError() const;

    zip* m_archive = nullptr;
    QString m_path;
    std::unique_ptr<Output> m_output;  // the partial file libzip writes into
    std::vector<QByteArray> m_buffers; // data added with addData, alive until close
};

} // namespace corvanta::support
