// ZIP archives come from outside: templates to import and backups to restore. Any bytes must be
// refused or read without a fault, and reading every entry must respect the limits.
#include "support/zipreader.h"

#include <cstdint>

using corvanta::support::ZipReader;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Small limits, so that an archive that claims or unpacks to much is caught quickly.
    const ZipReader::Limits limits{64, 1024 * 1024, 4 * 1024 * 1024};
    ZipReader zip(limits);
    QString error;
    if (!zip.openData(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)),
                      QStringLiteral("fuzz.zip"), &error))
        return 0;
    (void)zip.comment();
    const QList<ZipReader::Entry> entries = zip.entries();
    for (const ZipReader::Entry& entry : entries) {
        if (!ZipReader::isSafeName(entry.name))
            qFatal("an entry with an unsafe name was accepted: %s", qUtf8Printable(entry.name));
        if (entry.isFolder)
            continue;
        const std::optional<QByteArray> content = zip.read(entry.name, &error);
        if (content && (content->size() > entry.size || content->size() > limits.maxEntrySize))
            qFatal("the entry %s unpacked to %lld bytes, more than its %lld", qUtf8Printable(entry.name),
                   qint64(content->size()), qint64(entry.size));
    }
    return 0;
}
