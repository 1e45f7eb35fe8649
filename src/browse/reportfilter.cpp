#include "browse/reportfilter.h"

#include "predicate/literal.h"
#include "store/record.h"

namespace corvanta::browse {

using predicate::Predicate;

namespace {

// "%K == %@" for a relationship, "%K == nil" without a record. The documents' covering index
// for reports begins with the currency, then the creation date.
Predicate oneOf(const QString& key, store::Record* record)
{
    if (!record)
        return predicate::literal("%K == nil", {key});
    return predicate::literal("%K == %@", {key, QVariant::fromValue(record)});
}

} // namespace

Predicate ReportFilter::documents(const ReportOptions& options, const QString& path)
{
    const QString dateKey = path + options.dateKey();
    std::vector<Predicate> conditions;
    conditions.push_back(predicate::literal(
        "%K >= %@ && %K <= %@ && %K != YES",
        {dateKey, options.fromInstant(), dateKey, options.toInstant(), path + QStringLiteral("draft")}));
    conditions.push_back(oneOf(path + QStringLiteral("currency"), options.currency));
    if (!options.allPaymentTypes)
        conditions.push_back(oneOf(path + QStringLiteral("payment_type"), options.paymentType));
    if (!options.tags.isEmpty())
        conditions.push_back(tagged(options, path + QStringLiteral("tags")));
    return Predicate::andOf(std::move(conditions));
}

Predicate ReportFilter::list(const ReportOptions& options)
{
    switch (options.view) {
    case ReportView::Documents:
    case ReportView::DocumentRows:
        return documents(options, ReportViews::documentPath(options.view));
    case ReportView::ClientSums:
    case ReportView::ItemSums:
        return tagged(options, QStringLiteral("tags"));
    }
    return Predicate::falsePredicate();
}

Predicate ReportFilter::tagged(const ReportOptions& options, const QString& tagsKey)
{
    if (options.tags.isEmpty())
        return Predicate::truePredicate();
    // Each tag is asked for on its own, which the store answers from the tag's join rows.
    std::vector<Predicate> each;
    for (store::Record* tag : options.tags)
        each.push_back(predicate::literal("ANY %K == %@", {tagsKey, QVariant::fromValue(tag)}));
    return options.tagsJoin == 0 ? Predicate::andOf(std::move(each)) : Predicate::orOf(std::move(each));
}

} // namespace corvanta::browse
