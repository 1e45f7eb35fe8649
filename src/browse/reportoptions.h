#pragma once

#include "store/fetchrequest.h"

#include <QCoreApplication>
#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>
#include <optional>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::browse {

// What the report screen lists: documents, document rows, or clients or items with the sums of
// their documents.
enum class ReportView { Documents = 0, DocumentRows = 1, ClientSums = 2, ItemSums = 3 };

// The fixed facts of each view: what it lists and in which order, where the table keeps its
// column layout, which report templates and which tags it offers, and the company's default
// template for it.
class ReportViews
{
public:
    static const QList<ReportView>& all();
    // The view of a number 0 to 3; nothing for any other.
    static std::optional<ReportView> of(qint64 number);
    // `Documents`, `DocumentRows`, `Clients` or `Items`.
    static QString entity(ReportView view);
    static QList<store::SortDescriptor> sort(ReportView view);
    // "reportDocumentsTable" ... "reportItemSumTable".
    static QString columnsName(ReportView view);
    // The `Templates` the view can render with, and the tags (`Categories`) it filters by.
    static QString templatePredicate(ReportView view);
    static QString tagsPredicate(ReportView view);
    // The company's relationship that holds the view's default report template.
    static QString defaultTemplateKey(ReportView view);
    // The document's date the view's period applies to, reached from one listed record: "" for
    // documents, "document." for rows (clients and items count documents and rows the same way).
    static QString documentPath(ReportView view);
    // "documents", "rows", "clients", "items": the view's name on the command line.
    static QString name(ReportView view);
    static std::optional<ReportView> named(const QString& name);
};

// The period presets of the report screen. A preset sets `fromDate` and `toDate`; choosing
// dates by hand makes the period Custom.
enum class ReportPeriod {
    Custom = 0,
    Today,
    Yesterday,
    ThisWeek,        // the calendar week so far
    LastWeek,        // the seven days back to today
    LastTwoWeeks,    // the fourteen days back to today
    ThisMonth,       // the calendar month so far
    LastMonth,       // the whole calendar month before this one
    LastThreeMonths, // three months back to today
    LastSixMonths,   // six months back to today
    ThisYear,        // the calendar year so far
    LastYear,        // the whole calendar year before this one
};

// The options of a report, as the report screen's options record keeps them. Records point into
// the editing context the options were made for.
struct ReportOptions
{
    Q_DECLARE_TR_FUNCTIONS(ReportOptions)

public:
    ReportView view = ReportView::Documents;
    int dateType = 0; // 0 date_creation, 1 date_completion, 2 date_due
    ReportPeriod definedDate = ReportPeriod::ThisMonth;
    QDate fromDate;
    QDate toDate;
    store::Record* currency = nullptr;
    store::Record* paymentType = nullptr;
    bool allPaymentTypes = false;
    QList<store::Record*> tags;
    int tagsJoin = 0; // 0 all of the tags, 1 any of them
    store::Record* templateRecord = nullptr;

    // The options a new report screen starts with: documents of this month by creation date, in
    // the company's default currency, of its default payment type (all when it has none), with
    // the default documents report template.
    static ReportOptions defaults(store::EditingContext& context, const QDateTime& now);

    // Switches the view: the template becomes the company's default for it, and the tags chosen
    // for another kind of record are dropped.
    void setView(ReportView newView, store::EditingContext& context);
    // Applies a preset to `fromDate` and `toDate`, reckoned from `now`.
    void setDefinedDate(ReportPeriod period, const QDateTime& now);
    // Chooses the dates by hand.
    void setDates(const QDate& from, const QDate& to);

    // What the screen's choosers offer: the selectable currencies and the company's own, the
    // view's report templates by name, and the tags of the kind of record the view filters by.
    static QList<store::Record*> offeredCurrencies(store::EditingContext& context);
    static QList<store::Record*> offeredTemplates(store::EditingContext& context, ReportView view);
    static QList<store::Record*> offeredTags(store::EditingContext& context, ReportView view);

    // `date_creation`, `date_completion` or `date_due`.
    QString dateKey() const;
    static QString dateKeyOf(int dateType);
    // The first and the last instant of the period, in local time.
    QDateTime fromInstant() const;
    QDateTime toInstant() const;
};

} // namespace corvanta::browse
