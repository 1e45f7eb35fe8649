#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "documents/documenttypes.h"
#include "model/companyrecord.h"
#include "output.h"
#include "predicate/literal.h"
#include "recordlookup.h"
#include "session.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "templates/documentfiller.h"
#include "templates/pdffilenames.h"
#include "templates/printedoutput.h"
#include "templates/reportinput.h"
#include "templates/templatetypes.h"
#include "valuetext.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace corvanta::cli {

using store::FetchRequest;
using store::Record;
using templates::TemplateTypes;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

int documentPdf(Invocation& invocation)
{
    QString error;
    Record* document =
        RecordLookup(invocation.session.context()).document(invocation.arguments.words().first(), &error);
    if (!document)
        return invocation.refuse(error);

    Record* templateRecord = nullptr;
    if (invocation.arguments.has(s("template"))) {
        templateRecord = namedTemplate(invocation, invocation.arguments.value(s("template")));
        if (!templateRecord)
            return Refused;
        if (TemplateTypes::isReportTemplate(templateRecord->value(s("type")).toLongLong()))
            return invocation.refuse(CommandLine::tr("\"%1\" is a report template; a document prints with a "
                                                     "document template.")
                                         .arg(templateRecord->value(s("name")).toString()));
    } else {
        templateRecord = templates::PrintedOutput::templateOf(document);
        if (!templateRecord)
            return invocation.refuse(
                CommandLine::tr("%1 has no design template, and the company has no default template for "
                                "its type.")
                    .arg(document->value(s("number_formatted")).toString()));
    }

    const QString path = invocation.arguments.has(s("o"))
                             ? QFileInfo(invocation.arguments.value(s("o"))).absoluteFilePath()
                             : QDir(invocation.session.tempFilesDirectory())
                                   .filePath(templates::PdfFileNames::documentFileName(*document));
    templates::PrintedOutput output(invocation.session.templateFilesDirectory());
    int pages = 0;
    if (!output.writeDocument(document, templateRecord, path, &pages, &error))
        return invocation.refuse(error);
    printPdfWritten(invocation, path, pages);
    return Success;
}

// The documents of the period as the report lists them: by creation date, then number.
// The condition that selects the documents of the period (and of one type), written for records
// that reach the document through `path` ("" for the documents themselves, "document." for their
// rows and summaries).
predicate::Predicate periodCondition(const QString& path, const QDate& from, const QDate& to,
                                     qint64 documentType)
{
    QStringList conditions;
    QVariantList arguments;
    if (from.isValid()) {
        conditions << path + s("date_creation >= %@");
        arguments << QDateTime(from, QTime(0, 0));
    }
    if (to.isValid()) {
        conditions << path + s("date_creation < %@");
        arguments << QDateTime(to.addDays(1), QTime(0, 0));
    }
    if (documentType >= 0) {
        conditions << path + s("type == %@");
        arguments << documentType;
    }
    return predicate::literal(conditions.isEmpty() ? s("TRUEPREDICATE") : conditions.join(s(" && ")),
                              arguments);
}

// The documents of the period as the report lists them: by creation date, then number. For a
// report with document rows, their rows are read along in one query, instead of one query per
// document when the report reaches them.
QList<Record*> reportDocuments(Invocation& invocation, const QDate& from, const QDate& to,
                               qint64 documentType, bool withRows)
{
    store::EditingContext& context = invocation.session.context();
    const QList<Record*> documents =
        context.fetch(FetchRequest(s("Documents"), periodCondition({}, from, to, documentType),
                                   {{s("date_creation"), true}, {s("number"), true}}));
    if (withRows)
        context.fetch(
            FetchRequest(s("DocumentRows"), periodCondition(s("document."), from, to, documentType)));
    return documents;
}

// The four sums a client or an item report shows, over `documents`: per client from the
// documents' sums, per item from their rows; in one pass over the documents.
QHash<Record*, QVariantMap> documentSums(const QList<Record*>& documents, bool byItem)
{
    struct Sums
    {
        double net = 0, tax1 = 0, tax2 = 0, total = 0;
        void add(const Record* record, const char* net_, const char* tax1_, const char* tax2_,
                 const char* total_)
        {
            net += record->value(s(net_)).toDouble();
            tax1 += record->value(s(tax1_)).toDouble();
            tax2 += record->value(s(tax2_)).toDouble();
            total += record->value(s(total_)).toDouble();
        }
    };
    QHash<Record*, Sums> sums;
    for (Record* document : documents) {
        if (!byItem) {
            if (Record* client = document->related(s("client")))
                sums[client].add(document, "sum_net", "sum_tax1", "sum_tax2", "sum_total");
            continue;
        }
        for (Record* row : document->relatedList(s("rows"))) {
            if (Record* item = row->related(s("item")))
                sums[item].add(row, "net", "tax1_value", "tax2_value", "total");
        }
    }
    QHash<Record*, QVariantMap> result;
    for (auto it = sums.cbegin(); it != sums.cend(); ++it)
        result.insert(it.key(), {{s("documents_sum_net"), it->net},
                                 {s("documents_sum_tax1"), it->tax1},
                                 {s("documents_sum_tax2"), it->tax2},
                                 {s("documents_sum_total"), it->total}});
    return result;
}

// A client or item without documents in the period shows zero sums.
QVariantMap sumsOf(const QHash<Record*, QVariantMap>& sums, Record* record)
{
    return sums.value(record, {{s("documents_sum_net"), 0.0},
                               {s("documents_sum_tax1"), 0.0},
                               {s("documents_sum_tax2"), 0.0},
                               {s("documents_sum_total"), 0.0}});
}

templates::ReportInput reportInput(Invocation& invocation, qint64 type, const QList<Record*>& documents)
{
    templates::ReportInput input;
    store::EditingContext& context = invocation.session.context();
    input.currency = model::CompanyRecord::defaultRecord(context, s("default_currency"));
    switch (type) {
    case TemplateTypes::DocumentReport:
        for (Record* document : documents)
            input.rows.append({document, {}, {}});
        break;
    case TemplateTypes::DocumentsGroupedReport:
        for (Record* document : documents) {
            input.rows.append({document, s("group_header"), {}});
            for (Record* row : templates::DocumentFiller::rowsInOrder(document))
                input.rows.append({row, s("group_detail"), {}});
            input.rows.append({document, s("group_footer"), {}});
        }
        break;
    case TemplateTypes::ClientReport: {
        const QHash<Record*, QVariantMap> sums = documentSums(documents, false);
        for (Record* client : context.fetch(
                 FetchRequest(s("Clients"), {}, {store::SortDescriptor::localized(s("full_name"))})))
            input.rows.append({client, {}, sumsOf(sums, client)});
        break;
    }
    case TemplateTypes::ItemReport: {
        const QHash<Record*, QVariantMap> sums = documentSums(documents, true);
        for (Record* item :
             context.fetch(FetchRequest(s("Items"), {}, {store::SortDescriptor::localized(s("name"))})))
            input.rows.append({item, {}, sumsOf(sums, item)});
        break;
    }
    default:
        break;
    }
    return input;
}

int reportPdf(Invocation& invocation)
{
    QDate from;
    QDate to;
    if (const int status = invocation.date(s("from"), &from); status != Success)
        return status;
    if (const int status = invocation.date(s("to"), &to); status != Success)
        return status;
    qint64 documentType = -1;
    if (invocation.arguments.has(s("type"))) {
        documentType = TemplateTypes::typeFromText(invocation.arguments.value(s("type")));
        if (!documents::DocumentTypes::isValid(documentType))
            return invocation.usageError(
                CommandLine::tr("\"%1\" is not a document type.").arg(invocation.arguments.value(s("type"))));
    }

    Record* templateRecord = nullptr;
    if (invocation.arguments.has(s("template"))) {
        templateRecord = namedTemplate(invocation, invocation.arguments.value(s("template")));
        if (!templateRecord)
            return Refused;
        if (!TemplateTypes::isReportTemplate(templateRecord->value(s("type")).toLongLong()))
            return invocation.refuse(CommandLine::tr("\"%1\" is not a report template.")
                                         .arg(templateRecord->value(s("name")).toString()));
    } else {
        templateRecord = model::CompanyRecord::defaultRecord(
            invocation.session.context(), TemplateTypes::defaultTemplateKey(TemplateTypes::DocumentReport));
        if (!templateRecord)
            return invocation.refuse(CommandLine::tr("The company has no default document report template."));
    }

    const qint64 type = templateRecord->value(s("type")).toLongLong();
    const store::Store::ReadSnapshot snapshot(invocation.session.store());
    const QList<Record*> documents =
        reportDocuments(invocation, from, to, documentType, type != TemplateTypes::DocumentReport);
    templates::ReportInput input = reportInput(invocation, type, documents);
    input.dateStart = from.isValid()
                          ? from
                          : (documents.isEmpty() ? QDate::currentDate()
                                                 : documents.first()->value(s("date_creation")).toDate());
    input.dateEnd = to.isValid()
                        ? to
                        : (documents.isEmpty() ? QDate::currentDate()
                                               : documents.last()->value(s("date_creation")).toDate());

    const QString path =
        invocation.arguments.has(s("o"))
            ? QFileInfo(invocation.arguments.value(s("o"))).absoluteFilePath()
            : QDir(invocation.session.tempFilesDirectory())
                  .filePath(templates::PdfFileNames::reportFileName(QDateTime::currentDateTime()));
    templates::PrintedOutput output(invocation.session.templateFilesDirectory());
    int pages = 0;
    QString error;
    if (!output.writeReport(templateRecord, input, path, &pages, &error))
        return invocation.refuse(error);
    printPdfWritten(invocation, path, pages);
    return Success;
}

} // namespace

QList<Command> printCommands()
{
    Command documentPdfCommand;
    documentPdfCommand.words = QStringList{s("documents"), s("pdf")};
    documentPdfCommand.synopsis = s("documents pdf NUMBER|IDENTIFIER [-o FILE] [--template NAME|IDENTIFIER]");
    documentPdfCommand.summary = CommandLine::tr("print a document to a PDF file");
    documentPdfCommand.help = CommandLine::tr(
        "Renders the document on A4 pages with its own design template (or the template named)\n"
        "and writes the PDF to FILE, or without -o into the company's folder of temporary\n"
        "files under the document's number. Prints the file's path and its page count.\n"
        "\n"
        "Options:\n"
        "  -o FILE                the PDF file to write\n"
        "  --template TEMPLATE    a document template's name or identifier\n"
        "\n"
        "Example:\n"
        "  corvanta-cli documents pdf INVOICE/2024-0007 -o invoice.pdf");
    documentPdfCommand.options = {{s("o"), true, false}, {s("template"), true, false}};
    documentPdfCommand.minWords = 1;
    documentPdfCommand.maxWords = 1;
    documentPdfCommand.run = documentPdf;

    Command reportPdfCommand;
    reportPdfCommand.words = QStringList{s("reports"), s("pdf")};
    reportPdfCommand.synopsis = s("reports pdf [-o FILE] [--template NAME|IDENTIFIER] [--from YYYY-MM-DD] "
                                  "[--to YYYY-MM-DD] [--type TYPE]");
    reportPdfCommand.summary = CommandLine::tr("print a report of the documents to a PDF file");
    reportPdfCommand.help = CommandLine::tr(
        "Renders a report through a report template: the documents created in the period (all\n"
        "without --from and --to, of one document type with --type) one per row for a document\n"
        "report, with their rows for a grouped report, or the clients or items with their sums\n"
        "over those documents for a client or item report. Amounts are in the default currency.\n"
        "Without --template the company's default document report template is used. Writes the\n"
        "PDF to FILE, or into the company's folder of temporary files. Prints the file's path and\n"
        "its page count.\n"
        "\n"
        "Example:\n"
        "  corvanta-cli reports pdf --from 2024-01-01 --to 2024-03-31 -o q1.pdf");
    reportPdfCommand.options = {{s("o"), true, false},
                                {s("template"), true, false},
                                {s("from"), true, false},
                                {s("to"), true, false},
                                {s("type"), true, false}};
    reportPdfCommand.run = reportPdf;

    return {documentPdfCommand, reportPdfCommand};
}

} // namespace corvanta::cli
