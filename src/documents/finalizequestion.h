#pragma once

#include <QCoreApplication>

namespace corvanta::support {
class Prompter;
}

namespace corvanta::documents {

// The question asked before a draft or new invoice receives its final number.
class FinalizeQuestion
{
    Q_DECLARE_TR_FUNCTIONS(FinalizeQuestion)

public:
    // True when the user chose "Finalize".
    static bool ask(support::Prompter& prompter);
};

} // namespace corvanta::documents
