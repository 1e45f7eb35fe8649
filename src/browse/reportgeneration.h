#pragma once

#include "browse/reportrunner.h"
#include "templates/reportinput.h"

#include <QCoreApplication>
#include <QString>
#include <QVariantMap>

namespace corvanta::store {
class Record;
}

namespace corvanta::browse {

// What the report renderer is handed for a report: the options and the listed records as the
// template's rows.
class ReportGeneration
{
    Q_DECLARE_TR_FUNCTIONS(ReportGeneration)

public:
    // Whether the view offers report templates of `templateType` (see ReportViews).
    static bool offers(ReportView view, qint64 templateType);

    // The report's options as the renderer reads them: "date_start", "date_end", "currency"
    // (the `Currencies` record), "type" (the template's type) and "view".
    static QVariantMap options(const ReportResult& result, qint64 templateType);

    // The rows for a template of `templateType`, in list order (best from a report run with whole
    // records). A grouped documents template
    // makes a group of each document: "group_header" (the document), "group_detail" (its rows in
    // their order; in the rows view the listed ones) and "group_footer" (the document, whose tax
    // summaries close the group). A client or item template gets each record with its sums.
    static templates::ReportInput input(const ReportResult& result, qint64 templateType);

    // The name proposed for a saved report: "Corvanta Report" and the day, "yyyy-MM-dd".
    static QString fileName(const QDate& today);
};

} // namespace corvanta::browse
