#include "uuid.h"

#include <QUuid>

namespace corvanta::support {

QString UUID()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

} // namespace corvanta::support
