#pragma once

#include <QByteArray>
#include <QString>

namespace corvanta::support {

// Writes `data` to `path` in one step: it goes to a temporary file beside `path` first, which
// replaces the old file only once everything is written and flushed. Either the new content is
// there or the old file stays untouched; never half of one. False with `error` set on failure.
bool writeFileSafely(const QString& path, const QByteArray& data, QString* error);

} // namespace corvanta::support
