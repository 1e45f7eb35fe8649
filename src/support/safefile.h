#pragma once

#include <QByteArray>
#include <QString>

namespace corvanta::support {

// Writes `data` to `path` in one step: it goes to a temporary file beside `path` first, which
// replaces the old file only once everything is written and on the disk. Either the new content
// is there or the old file stays untouched; never half of one, and no temporary file is left
// behind. False with `error` set on failure.
bool writeFileSafely(const QString& path, const QByteArray& data, QString* error);

// Makes a rename or a new file in the folder holding `path` durable: a power cut after it does
// not bring back the old name.
void syncFolderOf(const QString& path);

} // namespace corvanta::support
