#include "browse/reportgeneration.h"
#include "browse/reportrunner.h"
#include "commandline.h"
#include "commands.h"
#include "model/companyrecord.h"
#include "output.h"
#include "recordjson.h"
#include "recordlookup.h"
#include "session.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "store/valueconversion.h"
#include "templates/pdffilenames.h"
#include "templates/printedoutput.h"
#include "templates/templatetypes.h"
#include "texttable.h"
#include "valuetext.h"

#include <QDir>
#include <QFileInfo>

namespace corvanta::cli {

using browse::DocumentSums;
using browse::ReportOptions;
using browse::ReportResult;
using browse::ReportView;
using browse::ReportViews;
using browse::ReportZoom;
using store::Record;
using templates::TemplateTypes;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// The view a report template prints: the documents for a documents or grouped report, the
// clients or the items for theirs.
std::optional<ReportView> viewOfTemplate(qint64 type)
{
    switch (type) {
    case TemplateTypes::DocumentReport:
    case TemplateTypes::DocumentsGroupedReport:
        return ReportView::Documents;
    case TemplateTypes::ClientReport:
        return ReportView::ClientSums;
    case TemplateTypes::ItemReport:
        return ReportView::ItemSums;
    default:
        return std::nullopt;
    }
}

// The tags named on the command line: every --tags value and the words after the options, each
// a tag's name, or else names joined by ",".
QStringList tagNames(const Arguments& arguments, const QList<QString>& known)
{
    QStringList names;
    for (const QString& value : arguments.values(s("tags")) + arguments.words()) {
        if (known.contains(value) || !value.contains(QLatin1Char(',')))
            names << value;
        else
            names << value.split(QLatin1Char(','), Qt::SkipEmptyParts);
    }
    return names;
}

// The first and the last day of the documents' date key over the whole company, for a report
// given no period; today when there are no such dates.
std::pair<QDate, QDate> wholePeriod(store::EditingContext& context, const QString& dateKey)
{
    const store::FetchRequest all(s("Documents"));
    const auto day = [&](store::Aggregate function) {
        const std::optional<QVariant> value = context.storedAggregate(all, function, dateKey);
        return value && !value->isNull()
                   ? store::valueconversion::fromReferenceSeconds(value->toDouble()).toLocalTime().date()
                   : QDate::currentDate();
    };
    return {day(store::Aggregate::Min), day(store::Aggregate::Max)};
}

// Reads the report's options from the command line; a status other than Success when it cannot.
int readOptions(Invocation& invocation, ReportOptions* options, browse::ZoomStep* zoom,
                Record** templateRecord)
{
    const Arguments& arguments = invocation.arguments;
    store::EditingContext& context = invocation.session.context();
    *options = ReportOptions::defaults(context, QDateTime::currentDateTime());

    if (arguments.has(s("template"))) {
        *templateRecord = namedTemplate(invocation, arguments.value(s("template")));
        if (!*templateRecord)
            return Refused;
    }
    std::optional<ReportView> view = ReportView::Documents;
    if (arguments.has(s("view"))) {
        view = ReportViews::named(arguments.value(s("view")));
        if (!view)
            return invocation.usageError(
                CommandLine::tr("\"%1\" is not a report view: documents, rows, clients or items.")
                    .arg(arguments.value(s("view"))));
    } else if (*templateRecord) {
        view =
            viewOfTemplate((*templateRecord)->value(s("type")).toLongLong()).value_or(ReportView::Documents);
    }
    options->setView(*view, context);

    static const QStringList dateKeys{s("creation"), s("completion"), s("due")};
    if (arguments.has(s("date-key"))) {
        options->dateType = int(dateKeys.indexOf(arguments.value(s("date-key"))));
        if (options->dateType < 0)
            return invocation.usageError(
                CommandLine::tr("\"%1\" is not a date key: creation, completion or due.")
                    .arg(arguments.value(s("date-key"))));
    }

    QDate from;
    QDate to;
    if (const int status = invocation.date(s("from"), &from); status != Success)
        return status;
    if (const int status = invocation.date(s("to"), &to); status != Success)
        return status;
    if (!from.isValid() || !to.isValid()) {
        const auto [first, last] = wholePeriod(context, options->dateKey());
        if (!from.isValid())
            from = first;
        if (!to.isValid())
            to = qMax(last, from);
    }
    if (to < from)
        return invocation.refuse(CommandLine::tr("The period ends (%1) before it begins (%2).")
                                     .arg(to.toString(Qt::ISODate), from.toString(Qt::ISODate)));
    options->setDates(from, to);

    QString error;
    RecordLookup lookup(context);
    if (arguments.has(s("currency"))) {
        options->currency = lookup.find(RecordLookup::Kind::Currency, arguments.value(s("currency")), &error);
        if (!options->currency)
            return invocation.refuse(error);
    }
    if (arguments.has(s("payment-type")) && arguments.has(s("all-payment-types")))
        return invocation.usageError(
            CommandLine::tr("Give either --payment-type or --all-payment-types, not both."));
    if (arguments.has(s("payment-type"))) {
        options->paymentType =
            lookup.find(RecordLookup::Kind::PaymentType, arguments.value(s("payment-type")), &error);
        if (!options->paymentType)
            return invocation.refuse(error);
        options->allPaymentTypes = false;
    } else if (arguments.has(s("all-payment-types"))) {
        options->allPaymentTypes = true;
    }

    if (arguments.has(s("all")) && arguments.has(s("any")))
        return invocation.usageError(CommandLine::tr("Give either --all or --any, not both."));
    if (!arguments.words().isEmpty() && !arguments.has(s("tags")))
        return invocation.usageError(
            CommandLine::tr("\"%1\" is not an option; tags follow --tags.").arg(arguments.words().first()));
    options->tagsJoin = arguments.has(s("any")) ? 1 : 0;
    const QList<Record*> offered = ReportOptions::offeredTags(context, options->view);
    QStringList offeredNames;
    for (const Record* tag : offered)
        offeredNames << tag->value(s("name")).toString();
    for (const QString& name : tagNames(arguments, offeredNames)) {
        const qsizetype index = offeredNames.indexOf(name);
        if (index < 0)
            return invocation.refuse(
                CommandLine::tr("The %1 report offers no tag named \"%2\"; it offers: %3.")
                    .arg(ReportViews::name(options->view), name, offeredNames.join(QStringLiteral(", "))));
        if (!options->tags.contains(offered.at(index)))
            options->tags << offered.at(index);
    }

    *zoom = browse::ZoomStep::Day;
    if (arguments.has(s("zoom"))) {
        const std::optional<browse::ZoomStep> step = ReportZoom::named(arguments.value(s("zoom")));
        if (!step)
            return invocation.usageError(
                CommandLine::tr("\"%1\" is not a zoom step: day, week, month or year.")
                    .arg(arguments.value(s("zoom"))));
        *zoom = *step;
    }
    return Success;
}

std::optional<ReportResult> runReport(Invocation& invocation, const ReportOptions& options,
                                      browse::ZoomStep zoom)
{
    store::StoreError error;
    std::optional<ReportResult> result =
        browse::ReportRunner(invocation.session.context())
            .run(options, zoom, browse::ReportRunner::Records::Whole, &error);
    if (!result)
        invocation.refuse(error.message());
    return result;
}

// A linked record's name, or null.
QJsonValue linkName(const Record* record, const char* link, const char* nameKey)
{
    const Record* target = record->related(s(link));
    return target ? QJsonValue(target->value(s(nameKey)).toString()) : QJsonValue(QJsonValue::Null);
}

QJsonObject rowJson(const Record* record, ReportView view)
{
    QJsonObject row = RecordJson::attributes(record);
    switch (view) {
    case ReportView::Documents:
        row.insert(s("client"), linkName(record, "client", "full_name"));
        row.insert(s("currency"), linkName(record, "currency", "code"));
        row.insert(s("payment_type"), linkName(record, "payment_type", "name"));
        break;
    case ReportView::DocumentRows:
        row.insert(s("document"), linkName(record, "document", "number_formatted"));
        row.insert(s("item"), linkName(record, "item", "name"));
        break;
    case ReportView::ClientSums:
        break;
    case ReportView::ItemSums:
        row.insert(s("unit"), linkName(record, "unit", "name"));
        row.insert(s("tax"), linkName(record, "tax", "name"));
        // The report's "stock" column: the item's current stock.
        row.insert(s("stock"), row.value(s("stock_current")));
        break;
    }
    return row;
}

// The totals under plain names, and again under the names of the amounts the view lists.
QJsonObject sumsJson(const ReportResult& result)
{
    const DocumentSums& totals = result.totals;
    QJsonObject sums{{s("net"), totals.net},           {s("tax1"), totals.tax1},
                     {s("tax2"), totals.tax2},         {s("total"), totals.total},
                     {s("quantity"), totals.quantity}, {s("count"), result.size()}};
    const auto named = [&](const char* net, const char* tax1, const char* tax2, const char* total) {
        sums.insert(s(net), totals.net);
        sums.insert(s(tax1), totals.tax1);
        sums.insert(s(tax2), totals.tax2);
        sums.insert(s(total), totals.total);
    };
    switch (result.options.view) {
    case ReportView::Documents:
        named("sum_net", "sum_tax1", "sum_tax2", "sum_total");
        break;
    case ReportView::DocumentRows:
        named("net", "tax1_value", "tax2_value", "total");
        break;
    case ReportView::ClientSums:
    case ReportView::ItemSums:
        named("documents_sum_net", "documents_sum_tax1", "documents_sum_tax2", "documents_sum_total");
        break;
    }
    return sums;
}

QJsonArray numbers(const QList<double>& values)
{
    QJsonArray array;
    for (double value : values)
        array << value;
    return array;
}

QJsonObject reportJson(const ReportResult& result)
{
    QJsonArray rows;
    for (const Record* record : result.records)
        rows << rowJson(record, result.options.view);
    QJsonArray steps;
    for (browse::ZoomStep step : result.zoomSteps)
        steps << ReportZoom::name(step);
    const Record* currency = result.options.currency;
    const Record* paymentType = result.options.allPaymentTypes ? nullptr : result.options.paymentType;
    return {{s("view"), ReportViews::name(result.options.view)},
            {s("from"), result.options.fromDate.toString(Qt::ISODate)},
            {s("to"), result.options.toDate.toString(Qt::ISODate)},
            {s("date_key"), result.options.dateKey()},
            {s("currency"), currency ? QJsonValue(currency->value(s("code")).toString()) : QJsonValue()},
            {s("payment_type"),
             paymentType ? QJsonValue(paymentType->value(s("name")).toString()) : QJsonValue()},
            {s("rows"), rows},
            {s("sums"), sumsJson(result)},
            {s("zoom_steps"), steps},
            {s("zoom"), ReportZoom::name(result.zoom)},
            {s("chart"), QJsonObject{{s("keys"), QJsonArray::fromStringList(result.chart.keys)},
                                     {s("labels"), QJsonArray::fromStringList(result.chart.labels)},
                                     {s("value"), numbers(result.chart.value)},
                                     {s("value2"), numbers(result.chart.value2)},
                                     {s("value3"), numbers(result.chart.value3)}}}};
}

void printReport(QTextStream& out, const ReportResult& result)
{
    const auto amount = [](double value) { return QString::number(value, 'f', 2); };
    using Align = TextTable::Align;
    const ReportView view = result.options.view;
    QList<TextTable::Column> columns;
    switch (view) {
    case ReportView::Documents:
        columns = {{CommandLine::tr("Number")}, {CommandLine::tr("Date")}, {CommandLine::tr("Client")}};
        break;
    case ReportView::DocumentRows:
        columns = {{CommandLine::tr("Document")},
                   {CommandLine::tr("Item")},
                   {CommandLine::tr("Quantity"), Align::Right}};
        break;
    case ReportView::ClientSums:
        columns = {{CommandLine::tr("Client")}};
        break;
    case ReportView::ItemSums:
        columns = {{CommandLine::tr("Item")},
                   {CommandLine::tr("Stock"), Align::Right},
                   {CommandLine::tr("Quantity"), Align::Right}};
        break;
    }
    columns << TextTable::Column{CommandLine::tr("Net"), Align::Right}
            << TextTable::Column{CommandLine::tr("Tax"), Align::Right}
            << TextTable::Column{CommandLine::tr("Total"), Align::Right};
    TextTable table(columns);
    for (const Record* record : result.records) {
        QStringList cells;
        double net = 0;
        double total = 0;
        switch (view) {
        case ReportView::Documents:
            cells << record->value(s("number_formatted")).toString()
                  << ValueText::day(record->value(result.options.dateKey()))
                  << record->value(s("client_full_name")).toString();
            net = record->value(s("sum_net")).toDouble();
            total = record->value(s("sum_total")).toDouble();
            break;
        case ReportView::DocumentRows:
            cells << record->valueForKeyPath(s("document.number_formatted")).toString()
                  << record->value(s("name")).toString()
                  << ValueText::plain(record->value(s("quantity")).toDouble());
            net = record->value(s("net")).toDouble();
            total = record->value(s("total")).toDouble();
            break;
        case ReportView::ClientSums:
        case ReportView::ItemSums: {
            const DocumentSums own = result.sumsOf(record);
            if (view == ReportView::ClientSums)
                cells << record->value(s("full_name")).toString();
            else
                cells << record->value(s("name")).toString()
                      << ValueText::plain(record->value(s("stock_current")).toDouble())
                      << ValueText::plain(own.quantity);
            net = own.net;
            total = own.total;
            break;
        }
        }
        table.addRow(cells << amount(net) << amount(total - net) << amount(total));
    }
    QStringList totals(columns.size() - 3);
    totals[0] = CommandLine::tr("Total (%1)").arg(result.size());
    if (view == ReportView::DocumentRows || view == ReportView::ItemSums)
        totals.last() = ValueText::plain(result.totals.quantity);
    table.addRow(totals << amount(result.totals.net) << amount(result.totals.total - result.totals.net)
                        << amount(result.totals.total));
    table.write(out);

    QStringList steps;
    for (browse::ZoomStep step : result.zoomSteps)
        steps << ReportZoom::name(step);
    out << '\n'
        << CommandLine::tr("Chart by %1 (zoom steps: %2)")
               .arg(ReportZoom::name(result.zoom), steps.join(QStringLiteral(", ")))
        << '\n';
    TextTable chart({{CommandLine::tr("Period")},
                     {CommandLine::tr("Net"), Align::Right},
                     {CommandLine::tr("Tax"), Align::Right},
                     {CommandLine::tr("Quantity"), Align::Right}});
    for (qsizetype i = 0; i < result.chart.keys.size(); ++i)
        chart.addRow({result.chart.labels.at(i), amount(result.chart.value.at(i)),
                      amount(result.chart.value2.at(i)), ValueText::plain(result.chart.value3.at(i))});
    chart.write(out, 2);
}

int reportShow(Invocation& invocation)
{
    ReportOptions options;
    browse::ZoomStep zoom = browse::ZoomStep::Day;
    Record* templateRecord = nullptr;
    if (const int status = readOptions(invocation, &options, &zoom, &templateRecord); status != Success)
        return status;
    const store::Store::ReadSnapshot snapshot(invocation.session.store());
    const std::optional<ReportResult> result = runReport(invocation, options, zoom);
    if (!result)
        return Refused;
    if (invocation.output.isJson())
        invocation.output.json(reportJson(*result));
    else
        printReport(invocation.output.text(), *result);
    return Success;
}

int reportPdf(Invocation& invocation)
{
    ReportOptions options;
    browse::ZoomStep zoom = browse::ZoomStep::Day;
    Record* templateRecord = nullptr;
    if (const int status = readOptions(invocation, &options, &zoom, &templateRecord); status != Success)
        return status;
    if (templateRecord) {
        const qint64 type = templateRecord->value(s("type")).toLongLong();
        if (!TemplateTypes::isReportTemplate(type))
            return invocation.refuse(CommandLine::tr("\"%1\" is not a report template.")
                                         .arg(templateRecord->value(s("name")).toString()));
        if (!browse::ReportGeneration::offers(options.view, type))
            return invocation.refuse(CommandLine::tr("The %1 report does not print with \"%2\" (%3).")
                                         .arg(ReportViews::name(options.view),
                                              templateRecord->value(s("name")).toString(),
                                              TemplateTypes::displayName(type)));
        options.templateRecord = templateRecord;
    }
    if (!options.templateRecord)
        return invocation.refuse(CommandLine::tr("The company has no default template for the %1 report.")
                                     .arg(ReportViews::name(options.view)));

    const store::Store::ReadSnapshot snapshot(invocation.session.store());
    const std::optional<ReportResult> result = runReport(invocation, options, zoom);
    if (!result)
        return Refused;
    const qint64 type = options.templateRecord->value(s("type")).toLongLong();
    const templates::ReportInput input = browse::ReportGeneration::input(*result, type);

    const QString path =
        invocation.arguments.has(s("o"))
            ? QFileInfo(invocation.arguments.value(s("o"))).absoluteFilePath()
            : QDir(invocation.session.tempFilesDirectory())
                  .filePath(templates::PdfFileNames::reportFileName(QDateTime::currentDateTime()));
    templates::PrintedOutput output(invocation.session.templateFilesDirectory());
    int pages = 0;
    QString error;
    if (!output.writeReport(options.templateRecord, input, path, &pages, &error))
        return invocation.refuse(error);
    printPdfWritten(invocation, path, pages);
    return Success;
}

QString optionsHelp()
{
    return CommandLine::tr(
        "  --view VIEW            documents (default), rows (the documents' rows), clients or\n"
        "                         items (each with the sums of its documents)\n"
        "  --from YYYY-MM-DD      the period's first day (default: the earliest document's)\n"
        "  --to YYYY-MM-DD        the period's last day, counted whole (default: the latest\n"
        "                         document's)\n"
        "  --date-key KEY         the documents' date the period applies to: creation (default),\n"
        "                         completion or due\n"
        "  --currency CODE        the documents' currency (default: the company's)\n"
        "  --payment-type NAME    the documents' payment type (default: the company's)\n"
        "  --all-payment-types    documents of every payment type\n"
        "  --tags TAG...          documents (for clients and items: clients or items) carrying\n"
        "                         the tags; several tags follow --tags, repeat --tags, or are\n"
        "                         joined by \",\"\n"
        "  --all, --any           all of the tags (default) or any of them\n"
        "  --zoom STEP            the chart's periods: day (default), week, month or year; a step\n"
        "                         the period is too long for moves to the next that fits (more\n"
        "                         than 50 days: no days, 357 days or more: no weeks, 1530 days or\n"
        "                         more: no months)\n");
}

QList<OptionSpec> reportOptions()
{
    return {{s("view"), true, false},
            {s("from"), true, false},
            {s("to"), true, false},
            {s("date-key"), true, false},
            {s("currency"), true, false},
            {s("payment-type"), true, false},
            {s("all-payment-types"), false, false},
            {s("tags"), true, true},
            {s("all"), false, false},
            {s("any"), false, false},
            {s("zoom"), true, false}};
}

} // namespace

QList<Command> reportsCommands()
{
    const QString filter = s("[--view documents|rows|clients|items] [--from YYYY-MM-DD] [--to YYYY-MM-DD] "
                             "[--date-key creation|completion|due] [--currency CODE] "
                             "[--payment-type NAME|--all-payment-types] [--tags TAG... [--all|--any]] "
                             "[--zoom day|week|month|year]");

    Command show;
    show.words = QStringList{s("reports"), s("show")};
    show.synopsis = s("reports show ") + filter;
    show.summary =
        CommandLine::tr("list documents, rows, clients or items over a period with sums and chart");
    show.help =
        CommandLine::tr(
            "Lists what the report screen lists for the period: the documents, the rows of the\n"
            "documents, or every client or item with the sums of its documents. Drafts never\n"
            "count. Below the list: the totals, the zoom steps the period allows and the chart,\n"
            "one entry per period (net, tax and quantity: how many documents, or the rows'\n"
            "quantity). With --json: an object with \"rows\" (each under the names of the\n"
            "view's records, clients and items with documents_sum_net, documents_sum_tax1,\n"
            "documents_sum_tax2 and documents_sum_total), \"sums\", \"zoom_steps\", \"zoom\" and\n"
            "\"chart\" (\"labels\", \"value\", \"value2\", \"value3\").\n"
            "\n"
            "Options:\n") +
        optionsHelp() +
        CommandLine::tr("\n"
                        "Example:\n"
                        "  corvanta-cli reports show --view clients --from 2024-01-01 --to 2024-12-31 "
                        "--zoom month");
    show.options = reportOptions();
    show.maxWords = 100;
    show.run = reportShow;

    Command pdf;
    pdf.words = QStringList{s("reports"), s("pdf")};
    pdf.synopsis = s("reports pdf ") + filter + s(" [--template NAME|IDENTIFIER] [-o FILE]");
    pdf.summary = CommandLine::tr("print a report to a PDF file");
    pdf.help =
        CommandLine::tr("Renders the report that \"reports show\" lists through a report template: the\n"
                        "documents one per row (a documents report) or each with its rows (a grouped\n"
                        "report), the rows grouped by their document, or the clients or items with their\n"
                        "sums. Without --template the company's default template for the view is used;\n"
                        "given a template without --view, the view is the one the template prints.\n"
                        "Writes the PDF to FILE, or into the company's folder of temporary files. Prints\n"
                        "the file's path and its page count.\n"
                        "\n"
                        "Options:\n") +
        optionsHelp() +
        CommandLine::tr("  --template TEMPLATE    a report template's name or identifier\n"
                        "  -o FILE                the PDF file to write\n"
                        "\n"
                        "Example:\n"
                        "  corvanta-cli reports pdf --from 2024-01-01 --to 2024-03-31 -o q1.pdf");
    pdf.options = reportOptions() + QList<OptionSpec>{{s("o"), true, false}, {s("template"), true, false}};
    pdf.maxWords = 100;
    pdf.run = reportPdf;

    return {show, pdf};
}

} // namespace corvanta::cli
