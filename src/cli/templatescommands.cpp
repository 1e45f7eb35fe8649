#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "output.h"
#include "predicate/literal.h"
#include "recordlookup.h"
#include "session.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "templates/printedoutput.h"
#include "templates/templatelibrary.h"
#include "templates/templatetypes.h"
#include "texttable.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <functional>

namespace corvanta::cli {

using store::Record;
using templates::TemplateTypes;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

templates::TemplateLibrary library(Invocation& invocation)
{
    return templates::TemplateLibrary(invocation.session.context(), invocation.prompter,
                                      invocation.session.templateFilesDirectory());
}

int countElements(Record* templateRecord)
{
    return templateRecord->context()->count(store::FetchRequest(
        s("TemplateElements"),
        predicate::literal("template == %@", {QVariant::fromValue(templateRecord->ref())})));
}

// The template type an option names; -1 after a usage error.
qint64 typeOption(Invocation& invocation, const QString& text)
{
    const qint64 type = TemplateTypes::typeFromText(text);
    if (type < 0)
        invocation.usageError(
            CommandLine::tr("\"%1\" is not a template type: use invoice, proforma, estimate, quotation, "
                            "delivery_note, credit_note, credit_memo, purchase_order, report_documents, "
                            "report_documents_grouped, report_summary_client, report_summary_item or "
                            "their numbers.")
                .arg(text));
    return type;
}

QJsonObject templateJson(templates::TemplateLibrary& templateLibrary, Record* templateRecord)
{
    const qint64 type = templateRecord->value(s("type")).toLongLong();
    return QJsonObject{
        {s("name"), templateRecord->value(s("name")).toString()},
        {s("type"), TemplateTypes::typeKey(type)},
        {s("identifier"), templateRecord->value(s("identifier")).toString()},
        {s("default"), templateLibrary.isDefault(templateRecord)},
        {s("elements"), countElements(templateRecord)},
    };
}

// What a command that made or changed a template prints: its name and identifier.
void printTemplate(Invocation& invocation, templates::TemplateLibrary& templateLibrary,
                   Record* templateRecord)
{
    if (invocation.output.isJson()) {
        invocation.output.json(templateJson(templateLibrary, templateRecord));
        return;
    }
    invocation.output.text() << templateRecord->value(s("name")).toString() << '\t'
                             << templateRecord->value(s("identifier")).toString() << '\n';
}

int listTemplates(Invocation& invocation)
{
    templates::TemplateLibrary templateLibrary = library(invocation);
    const QList<Record*> all = templateLibrary.templates();
    if (invocation.output.isJson()) {
        QJsonArray list;
        for (Record* templateRecord : all)
            list.append(templateJson(templateLibrary, templateRecord));
        invocation.output.json(list);
        return Success;
    }
    TextTable table({{CommandLine::tr("Type")},
                     {CommandLine::tr("Name")},
                     {CommandLine::tr("Default")},
                     {CommandLine::tr("Elements"), TextTable::Align::Right},
                     {CommandLine::tr("Identifier")}});
    for (Record* templateRecord : all) {
        table.addRow({TemplateTypes::displayName(templateRecord->value(s("type")).toLongLong()),
                      templateRecord->value(s("name")).toString(),
                      templateLibrary.isDefault(templateRecord) ? CommandLine::tr("yes") : QString(),
                      QString::number(countElements(templateRecord)),
                      templateRecord->value(s("identifier")).toString()});
    }
    table.write(invocation.output.text());
    return Success;
}

int newTemplate(Invocation& invocation)
{
    if (const int status = invocation.require(s("type")); status != Success)
        return status;
    const qint64 type = typeOption(invocation, invocation.arguments.value(s("type")));
    if (type < 0)
        return UsageError;
    templates::TemplateLibrary templateLibrary = library(invocation);
    Record* made = templateLibrary.addRow(int(type));
    if (!made)
        return Refused;
    if (invocation.arguments.has(s("name")) &&
        !templateLibrary.rename(made, invocation.arguments.value(s("name"))))
        return Refused;
    printTemplate(invocation, templateLibrary, made);
    return Success;
}

// Runs `change` on the template the first word names and prints the template it gives back
// (the same one, or a copy); null from `change` is a refusal it has reported.
int withNamedTemplate(Invocation& invocation,
                      const std::function<Record*(templates::TemplateLibrary&, Record*)>& change)
{
    Record* templateRecord = namedTemplate(invocation, invocation.arguments.words().at(0));
    if (!templateRecord)
        return Refused;
    templates::TemplateLibrary templateLibrary = library(invocation);
    Record* result = change(templateLibrary, templateRecord);
    if (!result)
        return Refused;
    printTemplate(invocation, templateLibrary, result);
    return Success;
}

int renameTemplate(Invocation& invocation)
{
    const QString name = invocation.arguments.words().at(1);
    return withNamedTemplate(
        invocation, [&](templates::TemplateLibrary& templateLibrary, Record* templateRecord) {
            return templateLibrary.rename(templateRecord, name) ? templateRecord : nullptr;
        });
}

int duplicateTemplate(Invocation& invocation)
{
    qint64 tag = -1;
    if (invocation.arguments.has(s("as-type"))) {
        tag = typeOption(invocation, invocation.arguments.value(s("as-type")));
        if (tag < 0)
            return UsageError;
    }
    return withNamedTemplate(invocation,
                             [&](templates::TemplateLibrary& templateLibrary, Record* templateRecord) {
                                 return templateLibrary.duplicateRow(templateRecord, int(tag));
                             });
}

int defaultTemplate(Invocation& invocation)
{
    return withNamedTemplate(
        invocation, [](templates::TemplateLibrary& templateLibrary, Record* templateRecord) {
            return templateLibrary.defaultChanged(templateRecord) ? templateRecord : nullptr;
        });
}

int deleteTemplate(Invocation& invocation)
{
    Record* templateRecord = namedTemplate(invocation, invocation.arguments.words().at(0));
    if (!templateRecord)
        return Refused;
    const QString name = templateRecord->value(s("name")).toString();
    templates::TemplateLibrary templateLibrary = library(invocation);
    if (!templateLibrary.deleteRow(templateRecord))
        return Refused;
    if (invocation.output.isJson())
        invocation.output.json(QJsonObject{{s("deleted"), name}});
    else
        invocation.output.text() << CommandLine::tr("Deleted \"%1\".").arg(name) << '\n';
    return Success;
}

int exportTemplate(Invocation& invocation)
{
    if (const int status = invocation.require(s("to")); status != Success)
        return status;
    Record* templateRecord = namedTemplate(invocation, invocation.arguments.words().at(0));
    if (!templateRecord)
        return Refused;
    const QString folder = invocation.arguments.value(s("to"));
    if (!QFileInfo(folder).isDir())
        return invocation.refuse(CommandLine::tr("The folder \"%1\" does not exist.").arg(folder));
    templates::TemplateLibrary templateLibrary = library(invocation);
    const QString written =
        templateLibrary.exportTemplate(templateRecord, QFileInfo(folder).absoluteFilePath());
    if (written.isEmpty())
        return Refused;
    invocation.prompter.takeMessages(); // the success report; the path is the result
    if (invocation.output.isJson())
        invocation.output.json(QJsonObject{{s("path"), written}});
    else
        invocation.output.text() << written << '\n';
    return Success;
}

int importTemplates(Invocation& invocation)
{
    QStringList files;
    for (const QString& file : invocation.arguments.words())
        files << QFileInfo(file).absoluteFilePath();
    templates::TemplateLibrary templateLibrary = library(invocation);
    const QList<Record*> imported = templateLibrary.importFiles(files);
    const bool complete = imported.size() == files.size();
    if (complete)
        invocation.prompter.takeMessages(); // the success report; the templates are the result
    if (invocation.output.isJson()) {
        QJsonArray list;
        for (Record* templateRecord : imported)
            list.append(templateJson(templateLibrary, templateRecord));
        invocation.output.json(list);
    } else {
        for (Record* templateRecord : imported)
            invocation.output.text() << templateRecord->value(s("name")).toString() << '\t'
                                     << templateRecord->value(s("identifier")).toString() << '\n';
    }
    return complete ? Success : Refused;
}

int previewTemplate(Invocation& invocation)
{
    if (const int status = invocation.require(s("o")); status != Success)
        return status;
    Record* templateRecord = namedTemplate(invocation, invocation.arguments.words().at(0));
    if (!templateRecord)
        return Refused;
    const QString path = QFileInfo(invocation.arguments.value(s("o"))).absoluteFilePath();
    templates::PrintedOutput output(invocation.session.templateFilesDirectory());
    int pages = 0;
    QString error;
    if (!output.writePreview(templateRecord, path, &pages, &error))
        return invocation.refuse(error);
    printPdfWritten(invocation, path, pages);
    return Success;
}

Command command(const char* word, const QString& synopsis, const QString& summary, const QString& help,
                int words, int (*run)(Invocation&))
{
    Command made;
    made.words = QStringList{s("templates"), s(word)};
    made.synopsis = synopsis;
    made.summary = summary;
    made.help = help;
    made.minWords = words;
    made.maxWords = words;
    made.run = run;
    return made;
}

} // namespace

Record* namedTemplate(Invocation& invocation, const QString& key)
{
    QString error;
    Record* found = RecordLookup(invocation.session.context()).designTemplate(key, &error);
    if (!found)
        invocation.refuse(error);
    return found;
}

void printPdfWritten(Invocation& invocation, const QString& path, int pages)
{
    if (invocation.output.isJson())
        invocation.output.json(QJsonObject{{s("path"), path}, {s("pages"), pages}});
    else
        invocation.output.text() << path << '\t' << CommandLine::tr("%n page(s)", nullptr, pages) << '\n';
}

QList<Command> templatesCommands()
{
    const QString typeHelp = CommandLine::tr(
        "TYPE is a type key (invoice, proforma, estimate, quotation, delivery_note,\n"
        "credit_note, credit_memo, purchase_order, report_documents, report_documents_grouped,\n"
        "report_summary_client, report_summary_item) or its number (0 to 7, 100, 110, 120, 130).");
    const QString templateHelp =
        CommandLine::tr("TEMPLATE is a template's identifier or its name (templates list shows both).");

    Command list = command("list", s("templates list"),
                           CommandLine::tr("list the design templates with their types and defaults"),
                           CommandLine::tr("Lists the design templates of the company by type and name: the\n"
                                           "type, the name, whether it is the default of its type, how many\n"
                                           "elements it has, and its identifier.\n"
                                           "\n"
                                           "Example:\n"
                                           "  corvanta-cli --json templates list"),
                           0, listTemplates);

    Command add =
        command("new", s("templates new --type TYPE [--name NAME]"),
                CommandLine::tr("make an empty design template of a type"),
                CommandLine::tr("Makes a new, empty design template of TYPE, named \" New \" (or NAME),\n"
                                "with the section heights of its type. Prints its name and\n"
                                "identifier.\n"
                                "\n") +
                    typeHelp +
                    CommandLine::tr("\n\nExample:\n"
                                    "  corvanta-cli templates new --type quotation --name \"Quote\""),
                0, newTemplate);
    add.options = {{s("type"), true, false}, {s("name"), true, false}};

    Command rename = command(
        "rename", s("templates rename TEMPLATE NAME"), CommandLine::tr("give a design template another name"),
        CommandLine::tr("Renames a design template.\n\n") + templateHelp +
            CommandLine::tr("\n\nExample:\n"
                            "  corvanta-cli templates rename \"Import Invoice\" \"Invoice blue\""),
        2, renameTemplate);

    Command duplicate =
        command("duplicate", s("templates duplicate TEMPLATE [--as-type TYPE]"),
                CommandLine::tr("copy a design template, also into another document type"),
                CommandLine::tr("Copies a design template with its elements and pictures as \"NAME Copy\".\n"
                                "With --as-type the copy serves another document type; report\n"
                                "templates cannot be copied into document types.\n\n") +
                    templateHelp + QStringLiteral("\n") + typeHelp +
                    CommandLine::tr("\n\nExample:\n"
                                    "  corvanta-cli templates duplicate invoice2 --as-type quotation"),
                1, duplicateTemplate);
    duplicate.options = {{s("as-type"), true, false}};

    Command remove = command(
        "delete", s("templates delete TEMPLATE"), CommandLine::tr("delete a design template"),
        CommandLine::tr("Deletes a design template with its pictures. A template that documents\n"
                        "use, the last template of its type and a default template cannot be\n"
                        "deleted.\n\n") +
            templateHelp + CommandLine::tr("\n\nExample:\n  corvanta-cli templates delete \"Invoice Copy\""),
        1, deleteTemplate);

    Command makeDefault = command(
        "default", s("templates default TEMPLATE"),
        CommandLine::tr("make a design template the default of its type"),
        CommandLine::tr("Makes the template the one new documents (or reports) of its type use.\n\n") +
            templateHelp + CommandLine::tr("\n\nExample:\n  corvanta-cli templates default invoice1"),
        1, defaultTemplate);

    Command exportCommand =
        command("export", s("templates export TEMPLATE --to DIR"),
                CommandLine::tr("write a design template to a template file"),
                CommandLine::tr("Writes the template with its pictures to DIR/NAME.corvanta, a file that\n"
                                "templates import (here or in another company) reads back. Prints the\n"
                                "file's path.\n\n") +
                    templateHelp +
                    CommandLine::tr("\n\nExample:\n"
                                    "  corvanta-cli templates export invoice2 --to ~/Desktop"),
                1, exportTemplate);
    exportCommand.options = {{s("to"), true, false}};

    Command importCommand =
        command("import", s("templates import FILE..."), CommandLine::tr("read design templates from files"),
                CommandLine::tr("Reads template files (.corvanta) as new templates named \"Import NAME\".\n"
                                "A file that is not a sound template file stops the import; the\n"
                                "templates read before it stay. Prints each new template's name and\n"
                                "identifier.\n"
                                "\n"
                                "Example:\n"
                                "  corvanta-cli templates import \"Invoice blue.corvanta\""),
                1, importTemplates);
    importCommand.maxWords = 1000;

    Command preview =
        command("preview", s("templates preview TEMPLATE -o FILE"),
                CommandLine::tr("render a design template with demo values to PDF"),
                CommandLine::tr("Renders the template to FILE with the demo document (fifteen rows, a\n"
                                "demo client and company) or, for a report template, demo report\n"
                                "records. Prints the file's path and its page count.\n\n") +
                    templateHelp +
                    CommandLine::tr("\n\nExample:\n"
                                    "  corvanta-cli templates preview invoice2 -o preview.pdf"),
                1, previewTemplate);
    preview.options = {{s("o"), true, false}};

    return {list, add, rename, duplicate, remove, makeDefault, exportCommand, importCommand, preview};
}

} // namespace corvanta::cli
