#pragma once

#include "browse/reportoptions.h"
#include "browse/reportzoom.h"

#include <QHash>
#include <optional>

namespace corvanta::store {
class EditingContext;
struct StoreError;
} // namespace corvanta::store

namespace corvanta::browse {

// The amounts of counted documents or rows: net, the two taxes, total, and a quantity (of rows;
// for documents, how many there are).
struct DocumentSums
{
    double net = 0.0;
    double tax1 = 0.0;
    double tax2 = 0.0;
    double total = 0.0;
    double quantity = 0.0;

    DocumentSums& operator+=(const DocumentSums& other);
    bool operator==(const DocumentSums& other) const = default;
};

// The amounts of one document or row at the moment of its document's date key, as the store
// keeps dates: seconds since 2001-01-01 00:00:00 UTC.
struct DatedSums
{
    double moment = 0.0;
    DocumentSums sums;
};

// What the reports add up, read by the database without loading the records.
class ReportSums
{
public:
    explicit ReportSums(store::EditingContext& context)
        : m_context(context)
    {}

    // The client and item views' sums, in one statement grouped by client or item: per client
    // over its counted documents' own sums (`sum_net` ... `sum_total`, which add up the tax
    // summaries and also the rows without a tax; `quantity` is how many documents), per item
    // over its counted rows (`net`, `tax1_value`, `tax2_value`, `total`, `quantity`). By the key
    // of the client or item; one without counted documents has no entry. Nothing on a store
    // error.
    std::optional<QHash<qint64, DocumentSums>> byRecord(const ReportOptions& options,
                                                        store::StoreError* error = nullptr);

    // The documents (`sum_net` ... `sum_total`, quantity 1 each) or rows (`net` ... `total`,
    // `quantity`) that `request` selects, in its order, each at its document's date key; their
    // keys go to `keys` when asked for.
    std::optional<QList<DatedSums>> dated(const ReportOptions& options, const store::FetchRequest& request,
                                          QList<qint64>* keys = nullptr, store::StoreError* error = nullptr);

    // The chart's amounts of the client and item views: what chartRequest() selects, summed by
    // the database period by period of `step` over the range, one entry at the start of each
    // period. Each period is a search of the documents' date index, so a report over years adds
    // up its tens of thousands of documents without reading them one by one.
    std::optional<QList<DatedSums>> perPeriod(const ReportOptions& options, ZoomStep step,
                                              store::StoreError* error = nullptr);

    // What a view's chart adds up: the listed documents or rows, the counted documents of the
    // listed clients, or the counted rows of the listed items.
    static store::FetchRequest chartRequest(const ReportOptions& options);

private:
    store::EditingContext& m_context;
};

} // namespace corvanta::browse
