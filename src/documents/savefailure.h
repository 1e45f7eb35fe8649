#pragma once

#include <QCoreApplication>

namespace corvanta::store {
class EditingContext;
struct StoreError;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::documents {

// Tells the user that a save failed and why; the records keep what they held before.
class SaveFailure
{
    Q_DECLARE_TR_FUNCTIONS(SaveFailure)

public:
    static void show(support::Prompter& prompter, const store::StoreError& error);
    // Saves the context. When the database does not take the changes, the context forgets them
    // (its records go back to what is stored) and the user is told why; false then.
    static bool save(store::EditingContext& context, support::Prompter& prompter);
};

} // namespace corvanta::documents
