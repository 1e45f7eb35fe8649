#pragma once

#include <QDateTime>
#include <optional>

namespace corvanta::store {
class Record;
}

namespace corvanta::documents {

// The due date a payment term gives: today plus its `days`, counted in calendar days when its
// `type` is 0 and in business days otherwise.
class DueDate
{
public:
    static std::optional<QDateTime> from(const store::Record* dueDay, const QDateTime& now);
};

} // namespace corvanta::documents
