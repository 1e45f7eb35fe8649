#pragma once

#include "reportinput.h"

#include <QDateTime>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::templates {

// Made-up records that fill a template in the editor's preview, so that every field shows
// something. They are inserted into `scratch`, a context that the caller never saves; the
// company's defaults (tax, unit, currency) are read from it.
class DemoRecords
{
public:
    // The demo document: 15 rows, a client, the own company and one tax summary per tax of the
    // rows (with the rows' amounts), dated around `now`, in the company's default currency at
    // the rate 1.
    static store::Record* testDocument(store::EditingContext& scratch,
                                       const QDateTime& now = QDateTime::currentDateTime());

    // Demo rows for a report template of `templateType` over the month of `now`, in the
    // company's default currency: documents (100), documents with their rows (110), clients
    // (120) or items (130), each client and item with its document sums.
    static ReportInput demoReport(store::EditingContext& scratch, int templateType,
                                  const QDateTime& now = QDateTime::currentDateTime());

    static constexpr int kDocumentRows = 15;
    static constexpr int kReportRows = 12;
    static constexpr int kGroupedDocuments = 4;
};

} // namespace corvanta::templates
