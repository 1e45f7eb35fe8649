#pragma once

namespace corvanta::store {
class Record;
}

namespace corvanta::documents {

// Copies into a document what it prints of its client, its payment type and bank and the own
// company, so that later edits of those records leave an issued document as it was.
class DocumentSnapshot
{
public:
    static void update(store::Record* document);
};

} // namespace corvanta::documents
