#include "savefailure.h"

#include "store/editingcontext.h"
#include "store/storeerror.h"
#include "support/prompter.h"

namespace corvanta::documents {

void SaveFailure::show(support::Prompter& prompter, const store::StoreError& error)
{
    const QString title =
        error.description.isEmpty() ? tr("The changes could not be saved.") : error.description;
    prompter.alert(title, error.reason, {tr("OK")});
}

bool SaveFailure::save(store::EditingContext& context, support::Prompter& prompter)
{
    store::StoreError error;
    if (context.save(&error))
        return true;
    context.rollback();
    show(prompter, error);
    return false;
}

} // namespace corvanta::documents
