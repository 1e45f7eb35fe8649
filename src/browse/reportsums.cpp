#include "browse/reportsums.h"

#include "browse/reportchart.h"
#include "browse/reportfilter.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/valueconversion.h"

namespace corvanta::browse {

using predicate::Predicate;
using store::FetchRequest;
using store::GroupSums;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

const QStringList& documentKeys()
{
    static const QStringList keys{s("sum_net"), s("sum_tax1"), s("sum_tax2"), s("sum_total")};
    return keys;
}

const QStringList& rowKeys()
{
    static const QStringList keys{s("net"), s("tax1_value"), s("tax2_value"), s("total"), s("quantity")};
    return keys;
}

// One group's totals, in the order of documentKeys() or, for rows, rowKeys(); a group of
// documents counts them as its quantity.
DocumentSums sumsOf(const GroupSums& group, bool rows)
{
    DocumentSums sums;
    sums.net = group.sums.value(0);
    sums.tax1 = group.sums.value(1);
    sums.tax2 = group.sums.value(2);
    sums.total = group.sums.value(3);
    sums.quantity = rows ? group.sums.value(4) : double(group.count);
    return sums;
}

} // namespace

DocumentSums& DocumentSums::operator+=(const DocumentSums& other)
{
    net += other.net;
    tax1 += other.tax1;
    tax2 += other.tax2;
    total += other.total;
    quantity += other.quantity;
    return *this;
}

std::optional<QHash<qint64, DocumentSums>> ReportSums::byRecord(const ReportOptions& options,
                                                                store::StoreError* error)
{
    const bool items = options.view == ReportView::ItemSums;
    const std::optional<QList<GroupSums>> groups =
        items ? m_context.storedGroupedSums(
                    FetchRequest(s("DocumentRows"), ReportFilter::documents(options, s("document."))),
                    s("item"), rowKeys(), error)
              : m_context.storedGroupedSums(FetchRequest(s("Documents"), ReportFilter::documents(options)),
                                            s("client"), documentKeys(), error);
    if (!groups)
        return std::nullopt;
    QHash<qint64, DocumentSums> sums;
    sums.reserve(groups->size());
    for (const GroupSums& group : *groups) {
        if (group.group.isNull())
            continue;
        const DocumentSums own = sumsOf(group, items);
        sums.insert(group.group.value<predicate::RecordRef>().pk, own);
    }
    return sums;
}

std::optional<QList<DatedSums>> ReportSums::dated(const ReportOptions& options, const FetchRequest& request,
                                                  QList<qint64>* keys, store::StoreError* error)
{
    const bool documents = request.entity == QLatin1String("Documents");
    const QStringList keyPaths = documents ? QStringList{options.dateKey()} + documentKeys()
                                           : QStringList{s("document.") + options.dateKey()} + rowKeys();
    const std::optional<QList<store::StoredRow>> rows = m_context.storedValues(request, keyPaths, error);
    if (!rows)
        return std::nullopt;
    QList<DatedSums> dated;
    dated.reserve(rows->size());
    if (keys)
        keys->reserve(rows->size());
    for (const store::StoredRow& row : *rows) {
        DatedSums entry;
        entry.moment = row.values.at(0).toDouble();
        entry.sums.net = row.values.at(1).toDouble();
        entry.sums.tax1 = row.values.at(2).toDouble();
        entry.sums.tax2 = row.values.at(3).toDouble();
        entry.sums.total = row.values.at(4).toDouble();
        entry.sums.quantity = documents ? 1.0 : row.values.at(5).toDouble();
        dated << entry;
        if (keys)
            *keys << row.key;
    }
    return dated;
}

std::optional<QList<DatedSums>> ReportSums::perPeriod(const ReportOptions& options, ZoomStep step,
                                                      store::StoreError* error)
{
    const ChartSeries periods = ReportChart::periods(options.fromDate, options.toDate, step);
    const bool documents = chartRequest(options).entity == QLatin1String("Documents");
    // The filter asks for one currency, so grouping by it gives the period's sums as one group.
    const QString oneGroup = documents ? s("currency") : s("document.currency");
    QList<DatedSums> dated;
    for (qsizetype i = 0; i < periods.starts.size(); ++i) {
        // The same filter over the period's own days alone, so that each search reads only them.
        ReportOptions period = options;
        const QDate first = store::valueconversion::fromReferenceSeconds(periods.starts.at(i)).date();
        const QDate last =
            i + 1 < periods.starts.size()
                ? store::valueconversion::fromReferenceSeconds(periods.starts.at(i + 1)).date().addDays(-1)
                : options.toDate;
        period.setDates(first, last);
        const std::optional<QList<GroupSums>> groups = m_context.storedGroupedSums(
            chartRequest(period), oneGroup, documents ? documentKeys() : rowKeys(), error);
        if (!groups)
            return std::nullopt;
        for (const GroupSums& group : *groups) {
            dated << DatedSums{periods.starts.at(i), sumsOf(group, !documents)};
        }
    }
    return dated;
}

FetchRequest ReportSums::chartRequest(const ReportOptions& options)
{
    switch (options.view) {
    case ReportView::Documents:
    case ReportView::DocumentRows:
        return FetchRequest(ReportViews::entity(options.view), ReportFilter::list(options));
    case ReportView::ClientSums:
        return FetchRequest(
            s("Documents"),
            Predicate::andOf({ReportFilter::documents(options), predicate::literal("client != nil"),
                              ReportFilter::tagged(options, s("client.tags"))}));
    case ReportView::ItemSums:
        return FetchRequest(s("DocumentRows"),
                            Predicate::andOf({ReportFilter::documents(options, s("document.")),
                                              predicate::literal("item != nil"),
                                              ReportFilter::tagged(options, s("item.tags"))}));
    }
    return {};
}

} // namespace corvanta::browse
