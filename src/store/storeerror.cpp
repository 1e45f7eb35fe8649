#include "storeerror.h"

namespace corvanta::store {

QString StoreError::message() const
{
    if (reason.isEmpty())
        return description;
    return description + QLatin1Char(' ') + reason;
}

StoreError StoreError::make(int code, const QString& description, const QString& reason)
{
    StoreError e;
    e.code = code;
    e.description = description;
    e.reason = reason;
    return e;
}

} // namespace corvanta::store
