#include "safefile.h"

#include <QSaveFile>

namespace corvanta::support {

bool writeFileSafely(const QString& path, const QByteArray& data, QString* error)
{
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(data) != data.size() || !out.commit()) {
        if (error)
            *error = out.errorString();
        return false;
    }
    return true;
}

} // namespace corvanta::support
