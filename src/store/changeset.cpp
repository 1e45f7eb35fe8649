#include "changeset.h"

namespace corvanta::store {

QSet<QString> ChangeSet::entities() const
{
    QSet<QString> names;
    for (const auto& ref : inserted)
        names.insert(ref.entity);
    for (const auto& update : updated)
        names.insert(update.ref.entity);
    for (const auto& ref : deleted)
        names.insert(ref.entity);
    return names;
}

} // namespace corvanta::store
