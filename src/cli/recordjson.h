#pragma once

#include <QJsonObject>
#include <QJsonValue>

namespace corvanta::store {
class Record;
}

namespace corvanta::cli {

// Records as JSON objects whose keys are the data model's attribute and relationship names.
// Numbers keep full double precision; dates are ISO 8601 with their offset from UTC; a missing
// value is null. A to-one relationship shows the name of the record it points at (a client's
// `full_name`, a currency's `code`, a document's `number_formatted` ...).
class RecordJson
{
public:
    // Every attribute of the record.
    static QJsonObject attributes(const store::Record* record);
    // A document with its links, `rows` in display order, `summaries`, `payments`, and `status`.
    static QJsonObject document(const store::Record* document);
    // A client with its `addresses`, `contacts` and payment defaults.
    static QJsonObject client(const store::Record* client);
    // An item with its unit, tax and `warehouse` deliveries.
    static QJsonObject item(const store::Record* item);
};

} // namespace corvanta::cli
