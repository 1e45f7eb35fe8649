#include "savefailure.h"

#include "model/prompter.h"
#include "model/storeerror.h"

namespace corvanta::documents {

void SaveFailure::show(model::Prompter& prompter, const model::StoreError& error)
{
    const QString title =
        error.description.isEmpty() ? tr("The changes could not be saved.") : error.description;
    prompter.alert(title, error.reason, {tr("OK")});
}

} // namespace corvanta::documents
