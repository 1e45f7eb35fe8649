#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QList>
#include <QString>
#include <optional>

struct zip;

namespace corvanta::support {

// Reads a ZIP archive with libzip, defensively: an archive is refused whole when an entry's name
// is absolute, walks up with "..", uses backslashes or a drive, repeats another entry, is a
// symbolic link or encrypted, or when the entries exceed the limits in number or size.
class ZipReader
{
    Q_DECLARE_TR_FUNCTIONS(ZipReader)

public:
    struct Limits
    {
        qint64 maxEntries = 100000;
        qint64 maxEntrySize = qint64(64) * 1024 * 1024 * 1024;
        qint64 maxTotalSize = qint64(256) * 1024 * 1024 * 1024;
    };

    struct Entry
    {
        QString name; // relative, "/"-separated; folders end with "/"
        qint64 size = 0;
        bool isFolder = false;
        qint64 compressedSize = 0; // as stored in the archive, for judging the compression ratio
    };

    explicit ZipReader(const Limits& limits);
    ZipReader();
    ~ZipReader();
    ZipReader(const ZipReader&) = delete;
    ZipReader& operator=(const ZipReader&) = delete;

    bool open(const QString& path, QString* error);
    // Reads an archive held in memory; `name` stands for it in messages.
    bool openData(const QByteArray& data, const QString& name, QString* error);
    void close();

    const QList<Entry>& entries() const { return m_entries; }
    QString comment() const;
    // The content of one entry; nothing when it is absent, too large or damaged.
    std::optional<QByteArray> read(const QString& name, QString* error);
    // Writes one entry to a new file (an existing file is never replaced).
    bool extract(const QString& name, const QString& destinationFile, QString* error);
    // Writes every entry under `folder`. On failure everything written so far is removed again.
    bool extractAll(const QString& folder, QString* error);

    // Whether `name` is a safe relative entry name.
    static bool isSafeName(const QString& name);

private:
    bool readDirectory(const QString& path, QString* error);
    bool fail(const QString& why, QString* error);
    int indexOf(const QString& name) const;
    bool copyEntry(int index, QIODevice& out, qint64 limit, QString* error);

    Limits m_limits;
    zip* m_archive = nullptr;
    QString m_path;
    QByteArray m_data; // the bytes of an archive opened from memory, which libzip reads in place
    QList<Entry> m_entries;
};

} // namespace corvanta::support
