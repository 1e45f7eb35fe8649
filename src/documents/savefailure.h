#pragma once

#include <QCoreApplication>

namespace corvanta::model {
class Prompter;
struct StoreError;
} // namespace corvanta::model

namespace corvanta::documents {

// Tells the user that a save failed and why; the records keep what they held before.
class SaveFailure
{
    Q_DECLARE_TR_FUNCTIONS(SaveFailure)

public:
    static void show(model::Prompter& prompter, const model::StoreError& error);
};

} // namespace corvanta::documents
