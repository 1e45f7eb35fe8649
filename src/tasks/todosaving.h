#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <functional>

namespace corvanta::store {
class Record;
struct StoreError;
} // namespace corvanta::store

namespace corvanta::tasks {

// What saving a to-do does to it: a title ("No Name" when it has none), the date it was created,
// a frequency of 1 when none was chosen, an identifier, and for a to-do that is not done its
// user tags plus the "Pending" tag (a done one keeps its tags). Then its context is saved.
class ToDoSaving
{
    Q_DECLARE_TR_FUNCTIONS(ToDoSaving)

public:
    using Clock = std::function<QDateTime()>;

    // `clock` gives the moment a new to-do is created; the current time when none is given.
    explicit ToDoSaving(Clock clock = {});

    // The rules above, without saving.
    void apply(store::Record* todo) const;
    // Applies the rules and saves the to-do's context. When the database refuses, the context
    // forgets its changes and `error` tells why; false then.
    bool save(store::Record* todo, store::StoreError* error) const;

private:
    Clock m_clock;
};

} // namespace corvanta::tasks
