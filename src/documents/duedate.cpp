#include "duedate.h"

#include "format/relativedates.h"
#include "store/record.h"

namespace corvanta::documents {

std::optional<QDateTime> DueDate::from(const store::Record* dueDay, const QDateTime& now)
{
    if (!dueDay)
        return std::nullopt;
    const QDateTime today = format::dates::today(now);
    const int days = dueDay->value(QStringLiteral("days")).toInt();
    if (dueDay->value(QStringLiteral("type")).toLongLong() == 0)
        return format::dates::addDays(today, days);
    return format::dates::addBusinessDays(today, days);
}

} // namespace corvanta::documents
