#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "output.h"
#include "recordlookup.h"
#include "session.h"
#include "store/record.h"
#include "templates/pdffilenames.h"
#include "templates/printedoutput.h"
#include "templates/templatetypes.h"

#include <QDir>
#include <QFileInfo>

namespace corvanta::cli {

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

    return {documentPdfCommand};
}

} // namespace corvanta::cli
