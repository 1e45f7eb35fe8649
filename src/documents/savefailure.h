#pragma once

#include <QCoreApplication>

namespace corvanta::store {
struct StoreError;
}
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
};

} // namespace corvanta::documents
