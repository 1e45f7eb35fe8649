#pragma once

#include "workingelements.h"

namespace corvanta::store {
class Record;
}

namespace corvanta::templates {

// Fills a document template with one document's values, ready for pagination:
// - `page`: every element; those outside the table (not in a details section nor in the table
//   footer) carry the document's values, or no text at all when they mention the exchange rate
//   of a document in the default currency (exchange rate exactly 1);
// - `rows`: per document row in ascending `order`, the `details` elements with the row's values;
// - `tableFooter`: every element; those of the table footer carry the tax summaries, one line per
//   summary, their sums, the grand total and the grand total in words.
// Page numbers are left for the page drawing.
class DocumentFiller
{
public:
    static FilledTemplate fill(store::Record* templateRecord, store::Record* document);
    // The same with the template's elements already fetched (in drawing order).
    static FilledTemplate fill(const QList<store::Record*>& elements, store::Record* document);
    // The document's rows as they print, fetched in one query.
    static QList<store::Record*> rowsInOrder(store::Record* document);
};

} // namespace corvanta::templates
