#include "browse/commandavailability.h"

#include "documents/documentcanceller.h"
#include "store/record.h"

namespace corvanta::browse {

bool CommandAvailability::isEnabled(RecordCommand command, const QList<store::Record*>& selection)
{
    if (command == RecordCommand::Sort)
        return true;
    if (selection.size() != 1 || !selection.first())
        return false;
    if (command == RecordCommand::Cancel) {
        const store::Record* document = selection.first();
        return document->entityName() == QLatin1String("Documents") &&
               documents::DocumentCanceller::canCancel(document);
    }
    return true;
}

} // namespace corvanta::browse
