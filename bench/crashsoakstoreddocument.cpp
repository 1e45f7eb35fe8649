#include "crashsoakstoreddocument.h"

namespace corvanta::bench {

QString StoredDocument::label() const
{
    if (!numberFormatted.isEmpty() && !draft)
        return QStringLiteral("%1 (%2)").arg(numberFormatted, identifier);
    return QStringLiteral("draft pk %1 (%2)").arg(pk).arg(identifier);
}

} // namespace corvanta::bench
