#include "clientstatusvaluetransformer.h"

namespace corvanta::editors {

QVariant ClientStatusValueTransformer::transformedValue(const QVariant& value) const
{
    bool ok = false;
    const qint64 status = value.toLongLong(&ok);
    if (!ok || value.isNull())
        return {};
    switch (status) {
    case 0:
        return QStringLiteral("ClientLost.png");
    case 1:
        return QStringLiteral("ClientPossible.png");
    case 2:
        return QStringLiteral("ClientAvailable.png");
    default:
        return {};
    }
}

} // namespace corvanta::editors
