#pragma once

#include "predicate/recordref.h"

namespace corvanta::editors {
class DocumentController;
}

namespace corvanta::browse {

// The browser's "add to document": hands a client or an item of a list to the document editor,
// which opens a new invoice first when it has no document.
class AddToDocument
{
public:
    // An item becomes a new row at the editor's price level, linked to the item; a client
    // becomes the document's client with its payment type, bank and due date. False for any
    // other record or one that is not stored.
    static bool add(const predicate::RecordRef& record, editors::DocumentController& editor);
};

} // namespace corvanta::browse
