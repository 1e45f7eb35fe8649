#pragma once

namespace corvanta::store {
class Record;
}

namespace corvanta::tasks {

// Marking a to-do done or pending again: `done` flips, and the to-do carries the to-dos' system
// tag of its new state ("Pending", subtype 0, or "Done", subtype 1) and no longer the other one.
class ToDoDone
{
public:
    // Changes the to-do in its context, which the caller saves; returns the new state.
    static bool toggle(store::Record* todo);
};

} // namespace corvanta::tasks
