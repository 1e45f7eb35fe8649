#include "finalizequestion.h"

#include "support/prompter.h"

namespace corvanta::documents {

bool FinalizeQuestion::ask(support::Prompter& prompter)
{
    const QString finalize = tr("Finalize");
    return prompter.alert(tr("Finalize Invoice"),
                          tr("Are you sure you want to finalize this invoice? This action cannot be undone."),
                          {finalize, tr("Cancel")}) == finalize;
}

} // namespace corvanta::documents
