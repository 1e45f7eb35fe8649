#pragma once

#include "reportinput.h"
#include "workingelements.h"

namespace corvanta::store {
class Record;
}

namespace corvanta::templates {

// Fills a report template (document, grouped document, client or item report) with a report's
// rows, ready for pagination:
// - `page`: every element; those outside the table carry the report's period;
// - `rows`: one entry per report row; for the grouped report each entry is the section of its
//   kind (details header for a document, details for one of its rows, details footer for its
//   tax summaries) holding that section's elements, for the other reports the `details` elements;
// - `tableFooter`: every element; those of the table footer carry the grand totals, the plain
//   sums over the rows.
// Amounts are written in the report's currency. Page numbers are left for the page drawing.
class ReportFiller
{
public:
    static FilledTemplate fill(store::Record* templateRecord, const ReportInput& input);
    // The same with the template's elements already fetched (in drawing order).
    static FilledTemplate fill(const QList<store::Record*>& elements, qint64 templateType,
                               const ReportInput& input);
};

} // namespace corvanta::templates
