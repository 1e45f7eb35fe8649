#include "browse/addtodocument.h"

#include "documents/documenttypes.h"
#include "editors/documentcontroller.h"

namespace corvanta::browse {

bool AddToDocument::add(const predicate::RecordRef& record, editors::DocumentController& editor)
{
    const bool item = record.entity == QLatin1String("Items");
    if (!item && record.entity != QLatin1String("Clients"))
        return false;
    if (!editor.document() && !editor.newDocument(documents::DocumentTypes::Invoice))
        return false;
    return item ? editor.addItem(record) != nullptr : editor.addClient(record);
}

} // namespace corvanta::browse
