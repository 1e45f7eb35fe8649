#pragma once

#include <QtGlobal>

namespace corvanta::store {
class Record;
}

namespace corvanta::documents {

// The folders and tags a document carries after a save: the user's own tags, the category of
// its type, and the program's other categories only for a cancellation or a cancelled document.
class DocumentTags
{
public:
    static void update(store::Record* document);
    // The category of a document type (subtype 0 to 7) or of cancellations (100), or null.
    static store::Record* typeCategory(store::Record* document, qint64 subtype);
};

} // namespace corvanta::documents
