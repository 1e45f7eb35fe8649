#pragma once

#include "browse/reportoptions.h"
#include "predicate/predicate.h"

namespace corvanta::browse {

// The conditions of a report, as predicates the store compiles. Drafts never count in any view.
class ReportFilter
{
public:
    // The documents that count: the date key within the period, not a draft, in the chosen
    // currency, of the chosen payment type (any with all payment types) and carrying all or any
    // of the chosen tags. `path` leads from the records judged to their document: "" for
    // documents, "document." for rows and tax summaries.
    static predicate::Predicate documents(const ReportOptions& options, const QString& path = {});

    // What the view lists: the counted documents (view 0), the rows of the counted documents
    // (view 1), or for the sums the clients or items carrying the chosen tags (all of them
    // without tags).
    static predicate::Predicate list(const ReportOptions& options);

    // "ALL %@ in tags" (every chosen tag) or "ANY %@ in tags" (one of them) on `tagsKey`, such as
    // "tags" or "document.client.tags"; true without tags.
    static predicate::Predicate tagged(const ReportOptions& options, const QString& tagsKey);
};

} // namespace corvanta::browse
