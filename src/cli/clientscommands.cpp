#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "editors/clientcontroller.h"
#include "model/companycache.h"
#include "output.h"
#include "predicate/literal.h"
#include "recordjson.h"
#include "recordlookup.h"
#include "session.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "texttable.h"

#include <QJsonArray>

namespace corvanta::cli {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

const QStringList kKinds = {s("company"), s("supplier"), s("individual")};

QString kindName(qint64 type)
{
    switch (type) {
    case 0:
        return CommandLine::tr("Company");
    case 1:
        return CommandLine::tr("Supplier");
    case 2:
        return CommandLine::tr("Individual");
    }
    return QString();
}

QString addressLine(const Record* address)
{
    if (!address)
        return {};
    const auto v = [&](const char* key) { return address->value(s(key)).toString().trimmed(); };
    QStringList parts;
    for (const QString& part :
         {v("street"), (v("zip_code") + QLatin1Char(' ') + v("city")).trimmed(), v("state"), v("country")}) {
        if (!part.isEmpty())
            parts << part;
    }
    return parts.join(QStringLiteral(", "));
}

int addClient(Invocation& invocation)
{
    const Arguments& arguments = invocation.arguments;
    qint64 type =
        model::CompanyCache::of(invocation.session.store()).value(s("default_client_type")).toLongLong();
    if (arguments.has(s("kind"))) {
        type = kKinds.indexOf(arguments.value(s("kind")));
        if (type < 0)
            return invocation.usageError(
                CommandLine::tr("--kind must be company, supplier or individual, not \"%1\".")
                    .arg(arguments.value(s("kind"))));
    }
    const bool person = type == 2;
    if (person && arguments.has(s("name")))
        return invocation.usageError(
            CommandLine::tr("An individual is named with --first and --last, not with --name."));
    if (!person && (arguments.has(s("first")) || arguments.has(s("last"))))
        return invocation.usageError(CommandLine::tr(
            "A company or supplier is named with --name; --first and --last are for individuals."));
    if (person && !arguments.has(s("first")) && !arguments.has(s("last")))
        return invocation.usageError(CommandLine::tr("An individual needs --first or --last (or both)."));
    if (!person) {
        if (const int status = invocation.require(s("name")); status != Success)
            return status;
    }

    editors::ClientController editor(invocation.session.store(), invocation.prompter);
    Record* client = editor.newClient(type);
    if (person) {
        client->setValue(s("first_name"), arguments.value(s("first")));
        client->setValue(s("last_name"), arguments.value(s("last")));
    } else {
        client->setValue(s("company_name"), arguments.value(s("name")));
    }
    if (arguments.has(s("tax-number")))
        client->setValue(s("tax_number"), arguments.value(s("tax-number")));
    if (arguments.has(s("email")))
        client->setValue(s("emails"), arguments.values(s("email")));
    if (arguments.has(s("phone")))
        client->setValue(s("phones"), arguments.values(s("phone")));
    const QList<QPair<const char*, const char*>> addressKeys = {{"street", "street"},
                                                                {"city", "city"},
                                                                {"zip", "zip_code"},
                                                                {"state", "state"},
                                                                {"country", "country"}};
    Record* address = nullptr;
    for (const auto& [option, key] : addressKeys) {
        if (!arguments.has(s(option)))
            continue;
        if (!address)
            address = editor.addAddress();
        address->setValue(s(key), arguments.value(s(option)));
    }
    editor.markEdited();
    const QString name = client->value(s("full_name")).toString();
    const bool taken = invocation.session.context().count(store::FetchRequest(
                           s("Clients"), predicate::literal(s("full_name == %@"), {name}))) > 0;
    if (!editor.save(editors::ClientController::Sender::None))
        return Refused;
    if (taken)
        invocation.prompter.report(
            CommandLine::tr(
                "Note: another client is named \"%1\" too; commands that name a client by its name "
                "cannot tell them apart.")
                .arg(name));
    if (invocation.output.isJson())
        invocation.output.json(RecordJson::client(client));
    else
        invocation.output.text() << client->value(s("full_name")).toString() << '\n';
    return Success;
}

int listClients(Invocation& invocation)
{
    predicate::Predicate condition;
    if (const int status = invocation.where(&condition); status != Success)
        return status;
    store::StoreError error;
    const QList<Record*> clients = invocation.session.context().fetch(
        store::FetchRequest(s("Clients"), condition, {store::SortDescriptor::localized(s("full_name"))}),
        &error);
    if (error.isError())
        return invocation.refuse(error.message());
    if (invocation.output.isJson()) {
        QJsonArray array;
        for (const Record* client : clients)
            array << RecordJson::client(client);
        invocation.output.json(array);
        return Success;
    }
    TextTable table({{CommandLine::tr("Name")},
                     {CommandLine::tr("Kind")},
                     {CommandLine::tr("Tax number")},
                     {CommandLine::tr("E-mail")},
                     {CommandLine::tr("Phone")},
                     {CommandLine::tr("Address")}});
    for (const Record* client : clients) {
        table.addRow({client->value(s("full_name")).toString(),
                      kindName(client->value(s("type")).toLongLong()),
                      client->value(s("tax_number")).toString(),
                      client->value(s("emails")).toString().section(QLatin1Char(','), 0, 0),
                      client->value(s("phones")).toString().section(QLatin1Char(','), 0, 0),
                      addressLine(client->related(s("default_address")))});
    }
    table.write(invocation.output.text());
    return Success;
}

int showClient(Invocation& invocation)
{
    QString error;
    Record* client = RecordLookup(invocation.session.context())
                         .find(RecordLookup::Kind::Client, invocation.arguments.words().first(), &error);
    if (!client)
        return invocation.refuse(error);
    if (invocation.output.isJson()) {
        invocation.output.json(RecordJson::client(client));
        return Success;
    }
    const int documents = invocation.session.context().count(store::FetchRequest(
        s("Documents"), predicate::literal(s("client == %@"), {QVariant::fromValue(client->ref())})));
    QTextStream& out = invocation.output.text();
    FieldList fields;
    const auto field = [&](const QString& label, const QString& value) { fields.add(label, value); };
    out << client->value(s("full_name")).toString() << '\n';
    field(CommandLine::tr("Kind"), kindName(client->value(s("type")).toLongLong()));
    field(CommandLine::tr("Tax number"), client->value(s("tax_number")).toString());
    field(CommandLine::tr("E-mail"),
          client->value(s("emails")).toString().replace(QLatin1Char(','), s(", ")));
    field(CommandLine::tr("Phone"), client->value(s("phones")).toString().replace(QLatin1Char(','), s(", ")));
    for (const Record* address : client->relatedList(s("addresses")))
        field(CommandLine::tr("Address"), addressLine(address));
    field(CommandLine::tr("Payment"), client->valueForKeyPath(s("default_payment_type.name")).toString());
    field(CommandLine::tr("Due days"), client->valueForKeyPath(s("default_due_day.name")).toString());
    field(CommandLine::tr("Documents"), QString::number(documents));
    field(CommandLine::tr("Identifier"), client->value(s("identifier")).toString());
    fields.write(out);
    return Success;
}

} // namespace

QList<Command> clientsCommands()
{
    Command add;
    add.words = QStringList{s("clients"), s("add")};
    add.synopsis =
        s("clients add --kind company|supplier|individual (--name NAME | --first F --last L) [options]");
    add.summary = CommandLine::tr("add a client, supplier or individual");
    add.help = CommandLine::tr(
        "Adds a client as the client editor saves one: a company or supplier is named with\n"
        "--name, an individual with --first and --last. The client is filed under its kind\n"
        "(a supplier under Company and Supplier both). Prints the client's full name, which is\n"
        "how other commands name it (documents new --client, clients show).\n"
        "\n"
        "Options:\n"
        "  --kind KIND        company, supplier or individual (default: the company database's\n"
        "                     default client kind, a company in a new database)\n"
        "  --name NAME        the company name of a company or supplier\n"
        "  --first F          the first name of an individual\n"
        "  --last L           the last name of an individual\n"
        "  --tax-number T     the tax number\n"
        "  --email E          an e-mail address; repeat for several (the first one is printed on\n"
        "                     documents)\n"
        "  --phone P          a phone number; repeat for several\n"
        "  --street S, --city C, --zip Z, --state S, --country C\n"
        "                     the client's address\n"
        "\n"
        "Examples:\n"
        "  corvanta-cli clients add --kind company --name \"Acme Ltd\" --tax-number 12345678 \\\n"
        "      --email billing@acme.example --street \"1 Main Street\" --city Springfield --zip 12345\n"
        "  corvanta-cli clients add --kind individual --first Jane --last Doe");
    add.options = {{s("kind"), true, false}, {s("name"), true, false},       {s("first"), true, false},
                   {s("last"), true, false}, {s("tax-number"), true, false}, {s("email"), true, true},
                   {s("phone"), true, true}, {s("street"), true, false},     {s("city"), true, false},
                   {s("zip"), true, false},  {s("state"), true, false},      {s("country"), true, false}};
    add.run = addClient;

    Command list;
    list.words = QStringList{s("clients"), s("list")};
    list.synopsis = s("clients list [--where PREDICATE]");
    list.summary = CommandLine::tr("list clients, optionally those a condition selects");
    list.help = CommandLine::tr(
        "Lists the clients by name with their kind, tax number, first e-mail address, first phone\n"
        "number and default address.\n"
        "\n"
        "Options:\n"
        "  --where PREDICATE  only the clients the condition selects, written in the language of\n"
        "                     the smart folders: attribute names, comparisons (== != < <= > >=,\n"
        "                     CONTAINS, BEGINSWITH, with [c] to ignore case), && || and NOT.\n"
        "                     Kinds are type 0 company, 1 supplier, 2 individual.\n"
        "\n"
        "Examples:\n"
        "  corvanta-cli clients list\n"
        "  corvanta-cli clients list --where 'type == 1'\n"
        "  corvanta-cli --json clients list --where 'full_name CONTAINS[c] \"acme\"'");
    list.options = {{s("where"), true, false}};
    list.run = listClients;

    Command show;
    show.words = QStringList{s("clients"), s("show")};
    show.synopsis = s("clients show NAME");
    show.summary = CommandLine::tr("show one client");
    show.help = CommandLine::tr(
        "Shows the client whose full name is NAME (a company's name, or an individual's first and\n"
        "last name): its kind, tax number, e-mail addresses, phone numbers, addresses, payment\n"
        "terms and how many documents name it.\n"
        "\n"
        "Example:\n"
        "  corvanta-cli clients show \"Acme Ltd\"");
    show.minWords = 1;
    show.maxWords = 1;
    show.run = showClient;
    return {add, list, show};
}

} // namespace corvanta::cli
