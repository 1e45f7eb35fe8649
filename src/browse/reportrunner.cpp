#include "browse/reportrunner.h"

#include "browse/reportfilter.h"
#include "store/editingcontext.h"
#include "store/record.h"

namespace corvanta::browse {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

store::Record* ReportResult::recordAt(qsizetype row) const
{
    if (row < 0 || row >= keys.size())
        return nullptr;
    if (!records.isEmpty())
        return records.at(row);
    return context ? context->record({entity, keys.at(row)}) : nullptr;
}

DocumentSums ReportResult::sumsOf(const store::Record* record) const
{
    return record ? recordSums.value(record->pk()) : DocumentSums{};
}

std::optional<ReportResult> ReportRunner::run(const ReportOptions& options, ZoomStep zoom, Records records,
                                              store::StoreError* error)
{
    ReportResult result;
    result.options = options;
    result.entity = ReportViews::entity(options.view);
    result.context = &m_context;
    store::FetchRequest list(result.entity, ReportFilter::list(options), ReportViews::sort(options.view));
    list.includesPendingChanges = false;
    const bool perRecord = options.view == ReportView::ClientSums || options.view == ReportView::ItemSums;

    result.zoomSteps = ReportZoom::enabledSteps(options.fromDate, options.toDate);
    result.zoom = ReportZoom::inForce(zoom, options.fromDate, options.toDate);
    ReportSums sums(m_context);
    // The documents and rows views read their list's keys with the amounts in one statement; the
    // client and item views' chart is added up period by period.
    const std::optional<QList<DatedSums>> amounts = perRecord
                                                        ? sums.perPeriod(options, result.zoom, error)
                                                        : sums.dated(options, list, &result.keys, error);
    if (!amounts)
        return std::nullopt;

    if (!readList(result, list, records, perRecord, error))
        return std::nullopt;
    if (perRecord) {
        if (!addRecordSums(result, sums, records, error))
            return std::nullopt;
    } else {
        for (const DatedSums& amount : *amounts)
            result.totals += amount.sums;
    }

    result.chart = ReportChart::of(*amounts, options.fromDate, options.toDate, result.zoom);
    return result;
}

bool ReportRunner::readList(ReportResult& result, const store::FetchRequest& list, Records records,
                            bool perRecord, store::StoreError* error)
{
    QList<qint64>& keys = result.keys;
    if (records == Records::Whole) {
        store::StoreError fetchError;
        result.records = m_context.fetch(list, &fetchError);
        if (fetchError.isError()) {
            store::report(error, fetchError);
            return false;
        }
        keys.clear();
        keys.reserve(result.records.size());
        for (const store::Record* record : std::as_const(result.records))
            keys << record->pk();
    } else if (perRecord) {
        const std::optional<QList<store::StoredRow>> listed = m_context.storedValues(list, {}, error);
        if (!listed)
            return false;
        keys.reserve(listed->size());
        for (const store::StoredRow& row : *listed)
            keys << row.key;
    }
    return true;
}

bool ReportRunner::addRecordSums(ReportResult& result, ReportSums& sums, Records records,
                                 store::StoreError* error)
{
    const std::optional<QHash<qint64, DocumentSums>> byRecord = sums.byRecord(result.options, error);
    if (!byRecord)
        return false;
    for (qint64 key : std::as_const(result.keys)) {
        const auto it = byRecord->constFind(key);
        if (it == byRecord->cend())
            continue;
        result.totals += *it;
        result.recordSums.insert(key, *it);
    }
    // Whole records carry their sums, each written anew (zero without counted documents), so that
    // none keeps the sums of an earlier report.
    if (records == Records::Whole) {
        for (store::Record* record : std::as_const(result.records)) {
            const DocumentSums own = result.sumsOf(record);
            record->setValue(s("documents_sum_net"), own.net);
            record->setValue(s("documents_sum_tax1"), own.tax1);
            record->setValue(s("documents_sum_tax2"), own.tax2);
            record->setValue(s("documents_sum_total"), own.total);
        }
    }
    return true;
}

std::optional<ReportResult> ReportRunner::documentsReport(const QDate& from, const QDate& to,
                                                          store::StoreError* error)
{
    return runView(ReportView::Documents, from, to, error);
}

std::optional<ReportResult> ReportRunner::clientSumsReport(const QDate& from, const QDate& to,
                                                           store::StoreError* error)
{
    return runView(ReportView::ClientSums, from, to, error);
}

std::optional<ReportResult> ReportRunner::runView(ReportView view, const QDate& from, const QDate& to,
                                                  store::StoreError* error)
{
    ReportOptions options = ReportOptions::defaults(m_context, QDateTime::currentDateTime());
    options.setView(view, m_context);
    options.setDates(from, to);
    return run(options, ZoomStep::Day, Records::Keys, error);
}

} // namespace corvanta::browse
