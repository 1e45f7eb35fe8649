#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "exchange/emailhandover.h"
#include "exchange/emailpreparation.h"
#include "exchange/emailtemplatelist.h"
#include "output.h"
#include "recordlookup.h"
#include "session.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "texttable.h"

#include <QJsonArray>
#include <QJsonObject>
#include <functional>

namespace corvanta::cli {

using exchange::EmailTemplateList;
using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

EmailTemplateList templateList(Invocation& invocation)
{
    return EmailTemplateList(invocation.session.context(), invocation.prompter);
}

// The one e-mail template named `name`; null after reporting why there is none.
Record* namedEmailTemplate(Invocation& invocation, const QString& name)
{
    const QList<Record*> found = templateList(invocation).named(name);
    if (found.size() == 1)
        return found.first();
    invocation.refuse(found.isEmpty()
                          ? CommandLine::tr("No e-mail template is named \"%1\".").arg(name)
                          : CommandLine::tr("%1 e-mail templates are named \"%2\"; rename one of them first.")
                                .arg(QString::number(found.size()), name));
    return nullptr;
}

// Prepares the e-mail about `selected` with the template the options name (the company's default
// otherwise) and hands it over; prints what was handed over.
int sendEmail(Invocation& invocation, Record* selected)
{
    exchange::EmailPreparation preparation(selected);
    if (invocation.arguments.has(s("template"))) {
        Record* chosen = namedEmailTemplate(invocation, invocation.arguments.value(s("template")));
        if (!chosen)
            return Refused;
        preparation.emailTemplatesChanged(chosen);
    }
    preparation.setAttaches(!invocation.arguments.has(s("no-attachment")));
    QString error;
    if (!preparation.continueSending(exchange::EmailHandOver(), invocation.session.tempFilesDirectory(),
                                     invocation.session.templateFilesDirectory(), &error))
        return invocation.refuse(error);

    const QString attachment = preparation.attachmentPath();
    if (invocation.output.isJson()) {
        invocation.output.json(
            QJsonObject{{s("to"), preparation.toEmail()},
                        {s("subject"), preparation.subject()},
                        {s("body"), preparation.body()},
                        {s("attachment"), attachment.isEmpty() ? QJsonValue() : QJsonValue(attachment)}});
        return Success;
    }
    QTextStream& out = invocation.output.text();
    out << "to: " << preparation.toEmail() << '\n'
        << "subject: " << preparation.subject() << '\n'
        << "body: " << preparation.body() << '\n'
        << "attachment: " << attachment << '\n';
    return Success;
}

int emailDocument(Invocation& invocation)
{
    QString error;
    Record* document =
        RecordLookup(invocation.session.context()).document(invocation.arguments.words().first(), &error);
    return document ? sendEmail(invocation, document) : invocation.refuse(error);
}

int emailClient(Invocation& invocation)
{
    QString error;
    Record* client = RecordLookup(invocation.session.context())
                         .find(RecordLookup::Kind::Client, invocation.arguments.words().first(), &error);
    return client ? sendEmail(invocation, client) : invocation.refuse(error);
}

QJsonObject templateJson(const EmailTemplateList& list, const Record* emailTemplate)
{
    return QJsonObject{{s("name"), emailTemplate->value(s("name")).toString()},
                       {s("default"), list.isDefault(emailTemplate)},
                       {s("subject"), emailTemplate->value(s("subject")).toString()},
                       {s("body"), emailTemplate->value(s("body")).toString()}};
}

void printTemplate(Invocation& invocation, const EmailTemplateList& list, const Record* emailTemplate)
{
    if (invocation.output.isJson())
        invocation.output.json(templateJson(list, emailTemplate));
    else
        invocation.output.text() << emailTemplate->value(s("name")).toString() << '\n';
}

int listTemplates(Invocation& invocation)
{
    const EmailTemplateList list = templateList(invocation);
    const QList<Record*> all = list.templates();
    if (invocation.output.isJson()) {
        QJsonArray array;
        for (const Record* emailTemplate : all)
            array.append(templateJson(list, emailTemplate));
        invocation.output.json(array);
        return Success;
    }
    TextTable table({{CommandLine::tr("Name")}, {CommandLine::tr("Default")}, {CommandLine::tr("Subject")}});
    for (const Record* emailTemplate : all)
        table.addRow({emailTemplate->value(s("name")).toString(),
                      list.isDefault(emailTemplate) ? CommandLine::tr("yes") : QString(),
                      emailTemplate->value(s("subject")).toString()});
    table.write(invocation.output.text());
    return Success;
}

int newTemplate(Invocation& invocation)
{
    EmailTemplateList list = templateList(invocation);
    Record* made = list.addRow();
    if (!made)
        return Refused;
    if (invocation.arguments.has(s("name")) && !list.rename(made, invocation.arguments.value(s("name"))))
        return Refused;
    printTemplate(invocation, list, made);
    return Success;
}

// Runs `change` on the template the first word names and prints the template it gives back (the
// same one, or a copy); null from `change` is a refusal it has reported.
int withNamedTemplate(Invocation& invocation,
                      const std::function<Record*(EmailTemplateList&, Record*)>& change)
{
    Record* emailTemplate = namedEmailTemplate(invocation, invocation.arguments.words().at(0));
    if (!emailTemplate)
        return Refused;
    EmailTemplateList list = templateList(invocation);
    Record* result = change(list, emailTemplate);
    if (!result)
        return Refused;
    printTemplate(invocation, list, result);
    return Success;
}

int renameTemplate(Invocation& invocation)
{
    const QString name = invocation.arguments.words().at(1);
    if (name.trimmed().isEmpty())
        return invocation.usageError(CommandLine::tr("The new name is empty."));
    return withNamedTemplate(invocation, [&](EmailTemplateList& list, Record* emailTemplate) {
        return list.rename(emailTemplate, name) ? emailTemplate : nullptr;
    });
}

int editTemplate(Invocation& invocation)
{
    const bool subject = invocation.arguments.has(s("subject"));
    const bool body = invocation.arguments.has(s("body"));
    if (!subject && !body)
        return invocation.usageError(CommandLine::tr("Give --subject, --body or both."));
    return withNamedTemplate(invocation, [&](EmailTemplateList& list, Record* emailTemplate) -> Record* {
        if (subject && !list.setSubject(emailTemplate, invocation.arguments.value(s("subject"))))
            return nullptr;
        if (body && !list.setBody(emailTemplate, invocation.arguments.value(s("body"))))
            return nullptr;
        return emailTemplate;
    });
}

int duplicateTemplate(Invocation& invocation)
{
    return withNamedTemplate(invocation, [](EmailTemplateList& list, Record* emailTemplate) {
        return list.duplicateRow(emailTemplate);
    });
}

int defaultTemplate(Invocation& invocation)
{
    return withNamedTemplate(invocation, [](EmailTemplateList& list, Record* emailTemplate) {
        return list.defaultChanged(emailTemplate) ? emailTemplate : nullptr;
    });
}

int deleteTemplate(Invocation& invocation)
{
    Record* emailTemplate = namedEmailTemplate(invocation, invocation.arguments.words().at(0));
    if (!emailTemplate)
        return Refused;
    const QString name = emailTemplate->value(s("name")).toString();
    if (!templateList(invocation).deleteRow(emailTemplate))
        return Refused;
    if (invocation.output.isJson())
        invocation.output.json(QJsonObject{{s("deleted"), name}});
    else
        invocation.output.text() << CommandLine::tr("Deleted \"%1\".").arg(name) << '\n';
    return Success;
}

Command command(const QStringList& words, const QString& synopsis, const QString& summary,
                const QString& help, int wordCount, int (*run)(Invocation&))
{
    Command made;
    made.words = words;
    made.synopsis = synopsis;
    made.summary = summary;
    made.help = help;
    made.minWords = wordCount;
    made.maxWords = wordCount;
    made.run = run;
    return made;
}

Command templatesCommand(const char* word, const QString& synopsis, const QString& summary,
                         const QString& help, int wordCount, int (*run)(Invocation&))
{
    return command({s("email-templates"), s(word)}, synopsis, summary, help, wordCount, run);
}

} // namespace

QList<Command> emailCommands()
{
    const QString handOver = CommandLine::tr(
        "The e-mail is handed to the desktop's mail program through xdg-email, which opens a new\n"
        "message to check and send there. The subject is the template's as it stands; in the\n"
        "body @ClientName, @MyCompanyName, @TodayDateAndTime and @TodayDate are replaced. A\n"
        "recipient that begins with \"-\" or \"mailto:\", or holds \"?\", \"&\" or a line break, is\n"
        "refused. xdg-email takes no sender: the mail program sends from its own account, not\n"
        "from the company's address. Prints to, subject, body and attachment; a hand-over that\n"
        "fails is refused with its reason.\n"
        "\n"
        "Options:\n"
        "  --template NAME        the e-mail template to use (else the company's default)\n");

    Command document = command(
        {s("email"), s("document")},
        s("email document NUMBER|IDENTIFIER [--template NAME] [--no-attachment]"),
        CommandLine::tr("e-mail a document with its PDF"),
        CommandLine::tr("Prepares an e-mail to the document's client address (\"No Email\" when it has\n"
                        "none) with the document's PDF, rendered with its own design template into\n"
                        "the company's folder of temporary files, where PDFs from before yesterday\n"
                        "are removed first.\n\n") +
            handOver +
            CommandLine::tr("  --no-attachment        send without the PDF\n"
                            "\n"
                            "Example:\n"
                            "  corvanta-cli email document INVOICE/2024-0007 --template Reminder"),
        1, emailDocument);
    document.options = {{s("template"), true, false}, {s("no-attachment"), false, false}};

    Command client =
        command({s("email"), s("client")}, s("email client NAME [--template NAME]"),
                CommandLine::tr("e-mail a client"),
                CommandLine::tr("Prepares an e-mail to the first of the client's addresses (\"No Email\"\n"
                                "when it has none).\n\n") +
                    handOver +
                    CommandLine::tr("\nExample:\n"
                                    "  corvanta-cli email client \"Acme Ltd\""),
                1, emailClient);
    client.options = {{s("template"), true, false}};

    const QString nameHelp = CommandLine::tr("TEMPLATE is an e-mail template's name as it stands.");

    Command list = templatesCommand(
        "list", s("email-templates list"), CommandLine::tr("list the e-mail templates"),
        CommandLine::tr("Lists the e-mail templates by name: the name, whether it is the company's\n"
                        "default, and the subject. With --json also the body.\n"
                        "\n"
                        "Example:\n"
                        "  corvanta-cli email-templates list"),
        0, listTemplates);

    Command add = templatesCommand(
        "new", s("email-templates new [--name NAME]"), CommandLine::tr("make an empty e-mail template"),
        CommandLine::tr("Makes an empty e-mail template named \" New \" (or NAME).\n"
                        "\n"
                        "Example:\n"
                        "  corvanta-cli email-templates new --name Reminder"),
        0, newTemplate);
    add.options = {{s("name"), true, false}};

    Command rename = templatesCommand(
        "rename", s("email-templates rename TEMPLATE NAME"),
        CommandLine::tr("give an e-mail template another name"),
        CommandLine::tr("Renames an e-mail template.\n\n") + nameHelp +
            CommandLine::tr("\n\nExample:\n"
                            "  corvanta-cli email-templates rename Reminder \"First reminder\""),
        2, renameTemplate);

    Command edit = templatesCommand(
        "edit", s("email-templates edit TEMPLATE [--subject TEXT] [--body TEXT]"),
        CommandLine::tr("change an e-mail template's subject or body"),
        CommandLine::tr("Sets the subject, the body or both. The body may hold @MyCompanyName,\n"
                        "@ClientName, @TodayDateAndTime and @TodayDate, replaced when an e-mail is\n"
                        "prepared; the subject is used as it stands.\n\n") +
            nameHelp +
            CommandLine::tr("\n\nExample:\n"
                            "  corvanta-cli email-templates edit Reminder --subject \"Open invoice\" \\\n"
                            "      --body \"Dear @ClientName, ...\""),
        1, editTemplate);
    edit.options = {{s("subject"), true, false}, {s("body"), true, false}};

    Command duplicate = templatesCommand(
        "duplicate", s("email-templates duplicate TEMPLATE"), CommandLine::tr("copy an e-mail template"),
        CommandLine::tr("Copies the subject and body of an e-mail template as \"TEMPLATE Copy\".\n\n") +
            nameHelp + CommandLine::tr("\n\nExample:\n  corvanta-cli email-templates duplicate Reminder"),
        1, duplicateTemplate);

    Command makeDefault = templatesCommand(
        "default", s("email-templates default TEMPLATE"),
        CommandLine::tr("make an e-mail template the default"),
        CommandLine::tr("Makes the template the one an e-mail is prepared with when none is named.\n\n") +
            nameHelp + CommandLine::tr("\n\nExample:\n  corvanta-cli email-templates default Reminder"),
        1, defaultTemplate);

    Command remove = templatesCommand(
        "delete", s("email-templates delete TEMPLATE"), CommandLine::tr("delete an e-mail template"),
        CommandLine::tr("Deletes an e-mail template; the company's default cannot be deleted.\n\n") +
            nameHelp +
            CommandLine::tr("\n\nExample:\n  corvanta-cli email-templates delete \"Reminder Copy\""),
        1, deleteTemplate);

    return {document, client, list, add, rename, edit, duplicate, makeDefault, remove};
}

} // namespace corvanta::cli
