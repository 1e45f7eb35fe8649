#include "browse/reportoptions.h"

#include "format/relativedates.h"
#include "model/companyrecord.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "templates/templatetypes.h"

namespace corvanta::browse {

using store::SortDescriptor;
using templates::TemplateTypes;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

const QList<ReportView>& ReportViews::all()
{
    static const QList<ReportView> views{ReportView::Documents, ReportView::DocumentRows,
                                         ReportView::ClientSums, ReportView::ItemSums};
    return views;
}

std::optional<ReportView> ReportViews::of(qint64 number)
{
    if (number < 0 || number > 3)
        return std::nullopt;
    return ReportView(number);
}

QString ReportViews::entity(ReportView view)
{
    switch (view) {
    case ReportView::Documents:
        return s("Documents");
    case ReportView::DocumentRows:
        return s("DocumentRows");
    case ReportView::ClientSums:
        return s("Clients");
    case ReportView::ItemSums:
        return s("Items");
    }
    return {};
}

QList<SortDescriptor> ReportViews::sort(ReportView view)
{
    switch (view) {
    case ReportView::Documents:
        return {{s("number_formatted"), true}};
    case ReportView::DocumentRows:
        return {{s("document.number_formatted"), false}, {s("order"), true}};
    case ReportView::ClientSums:
        return {{s("full_name"), true}};
    case ReportView::ItemSums:
        return {{s("name"), true}};
    }
    return {};
}

QString ReportViews::columnsName(ReportView view)
{
    static const char* const names[] = {"reportDocumentsTable", "reportDocumentRowsTable",
                                        "reportClientSumTable", "reportItemSumTable"};
    return s(names[int(view)]);
}

QString ReportViews::templatePredicate(ReportView view)
{
    static const char* const predicates[] = {"type == 100 || type == 110", "type == 110", "type == 120",
                                             "type == 130"};
    return s(predicates[int(view)]);
}

QString ReportViews::tagsPredicate(ReportView view)
{
    static const char* const predicates[] = {"type == 3", "type == 3", "type == 1", "type == 2"};
    return s(predicates[int(view)]);
}

QString ReportViews::defaultTemplateKey(ReportView view)
{
    static const TemplateTypes::Report types[] = {TemplateTypes::DocumentReport,
                                                  TemplateTypes::DocumentsGroupedReport,
                                                  TemplateTypes::ClientReport, TemplateTypes::ItemReport};
    return TemplateTypes::defaultTemplateKey(types[int(view)]);
}

QString ReportViews::documentPath(ReportView view)
{
    return view == ReportView::Documents ? QString() : s("document.");
}

QString ReportViews::name(ReportView view)
{
    static const char* const names[] = {"documents", "rows", "clients", "items"};
    return s(names[int(view)]);
}

std::optional<ReportView> ReportViews::named(const QString& name)
{
    for (ReportView view : all()) {
        if (ReportViews::name(view) == name)
            return view;
    }
    return std::nullopt;
}

ReportOptions ReportOptions::defaults(store::EditingContext& context, const QDateTime& now)
{
    ReportOptions options;
    options.currency = model::CompanyRecord::defaultRecord(context, s("default_currency"));
    options.paymentType = model::CompanyRecord::defaultRecord(context, s("default_payment_type"));
    options.allPaymentTypes = options.paymentType == nullptr;
    options.templateRecord =
        model::CompanyRecord::defaultRecord(context, ReportViews::defaultTemplateKey(options.view));
    options.setDefinedDate(ReportPeriod::ThisMonth, now);
    return options;
}

void ReportOptions::setView(ReportView newView, store::EditingContext& context)
{
    if (ReportViews::tagsPredicate(newView) != ReportViews::tagsPredicate(view))
        tags.clear();
    view = newView;
    templateRecord = model::CompanyRecord::defaultRecord(context, ReportViews::defaultTemplateKey(view));
}

void ReportOptions::setDefinedDate(ReportPeriod period, const QDateTime& now)
{
    namespace dates = format::dates;
    definedDate = period;
    const QDate today = now.date();
    const auto since = [&](const QDateTime& first) {
        fromDate = first.date();
        toDate = today;
    };
    switch (period) {
    case ReportPeriod::Custom:
        break;
    case ReportPeriod::Today:
        since(dates::today(now));
        break;
    case ReportPeriod::Yesterday:
        fromDate = toDate = dates::yesterday(now).date();
        break;
    case ReportPeriod::ThisWeek:
        since(dates::thisWeek(now));
        break;
    case ReportPeriod::LastWeek:
        since(dates::lastWeek(now));
        break;
    case ReportPeriod::LastTwoWeeks:
        since(dates::lastTwoWeeks(now));
        break;
    case ReportPeriod::ThisMonth:
        since(dates::thisMonth(now));
        break;
    case ReportPeriod::LastMonth:
        fromDate = dates::thisMonth(now).date().addMonths(-1);
        toDate = dates::thisMonth(now).date().addDays(-1);
        break;
    case ReportPeriod::LastThreeMonths:
        since(dates::lastThreeMonths(now));
        break;
    case ReportPeriod::LastSixMonths:
        since(dates::lastSixMonths(now));
        break;
    case ReportPeriod::ThisYear:
        since(dates::thisYear(now));
        break;
    case ReportPeriod::LastYear:
        fromDate = QDate(today.year() - 1, 1, 1);
        toDate = QDate(today.year() - 1, 12, 31);
        break;
    }
}

void ReportOptions::setDates(const QDate& from, const QDate& to)
{
    definedDate = ReportPeriod::Custom;
    fromDate = from;
    toDate = to;
}

QList<store::Record*> ReportOptions::offeredCurrencies(store::EditingContext& context)
{
    return context.fetch(store::FetchRequest(
        s("Currencies"),
        predicate::literal("selectable == YES || my_company_default_currency.default_currency == self"),
        {{s("code"), true}}));
}

QList<store::Record*> ReportOptions::offeredTemplates(store::EditingContext& context, ReportView view)
{
    return context.fetch(store::FetchRequest(s("Templates"),
                                             predicate::literal(ReportViews::templatePredicate(view)),
                                             {SortDescriptor::localized(s("name"))}));
}

QList<store::Record*> ReportOptions::offeredTags(store::EditingContext& context, ReportView view)
{
    return context.fetch(store::FetchRequest(
        s("Categories"), predicate::literal(ReportViews::tagsPredicate(view)), {{s("indexpath"), true}}));
}

QString ReportOptions::dateKeyOf(int dateType)
{
    switch (dateType) {
    case 1:
        return s("date_completion");
    case 2:
        return s("date_due");
    default:
        return s("date_creation");
    }
}

QString ReportOptions::dateKey() const
{
    return dateKeyOf(dateType);
}

QDateTime ReportOptions::fromInstant() const
{
    return format::dates::fromMidnight(QDateTime(fromDate, QTime(12, 0)));
}

QDateTime ReportOptions::toInstant() const
{
    return format::dates::toMidnight(QDateTime(toDate, QTime(12, 0)));
}

} // namespace corvanta::browse
