#pragma once

#include "browse/reportchart.h"
#include "browse/reportoptions.h"
#include "browse/reportsums.h"
#include "browse/reportzoom.h"

#include <QHash>
#include <QList>
#include <optional>

namespace corvanta::store {
class EditingContext;
class Record;
struct StoreError;
} // namespace corvanta::store

namespace corvanta::browse {

// A report as the report screen shows it: the listed records in list order, the sums of the
// clients or items, the totals below the list, the zoom steps and the chart.
struct ReportResult
{
    ReportOptions options;
    QString entity;
    // The listed records' keys in list order; with whole records also the records themselves.
    // Otherwise a record is made only when asked for (recordAt()), and read when first shown.
    QList<qint64> keys;
    QList<store::Record*> records;
    store::EditingContext* context = nullptr;
    // Client and item views: the sums of each listed record's counted documents, by its key.
    // With whole records, each record's `documents_sum_net` ... `documents_sum_total` hold them
    // too.
    QHash<qint64, DocumentSums> recordSums;
    // Over everything listed: the documents' or rows' amounts and quantity (documents: how many),
    // or for clients and items the totals of their sums.
    DocumentSums totals;
    QList<ZoomStep> zoomSteps;
    ZoomStep zoom = ZoomStep::Day;
    ChartSeries chart;

    qsizetype size() const { return keys.size(); }
    // The listed record at `row`.
    store::Record* recordAt(qsizetype row) const;
    // A listed client's or item's sums; zero for one without counted documents.
    DocumentSums sumsOf(const store::Record* record) const;
};

// Runs reports on an editing context. Every figure is read by the database without making
// records: the list's keys with the amounts and dates of documents and rows in one statement,
// the client and item sums in one statement grouped by client or item, their chart in one more.
class ReportRunner
{
public:
    // Keys suit a screen that shows a part of the list at a time; printing and the command line,
    // which read every record, take the records whole in one fetch.
    enum class Records { Keys, Whole };

    explicit ReportRunner(store::EditingContext& context)
        : m_context(context)
    {}

    // The report for `options`, its chart at `zoom` or the step that replaces it for the
    // period; nothing on a store error.
    std::optional<ReportResult> run(const ReportOptions& options, ZoomStep zoom = ZoomStep::Day,
                                    Records records = Records::Keys, store::StoreError* error = nullptr);

    // The documents report and the client-sums report over a period, as the report screen
    // first shows them: by creation date, in the company's currency and payment type, no tags,
    // the finest zoom the period allows, the list as keys.
    std::optional<ReportResult> documentsReport(const QDate& from, const QDate& to,
                                                store::StoreError* error = nullptr);
    std::optional<ReportResult> clientSumsReport(const QDate& from, const QDate& to,
                                                 store::StoreError* error = nullptr);

private:
    // The list's keys (unless the amounts' statement read them), or its records whole.
    bool readList(ReportResult& result, const store::FetchRequest& list, Records records, bool perRecord,
                  store::StoreError* error);
    // The client or item sums of the listed records, and their totals.
    bool addRecordSums(ReportResult& result, ReportSums& sums, Records records, store::StoreError* error);
    std::optional<ReportResult> runView(ReportView view, const QDate& from, const QDate& to,
                                        store::StoreError* error);

    store::EditingContext& m_context;
};

} // namespace corvanta::browse
