#include "uuid.h"

#include <QUuid>

namespace corvanta::model {

QString UUID()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

} // namespace corvanta::model
