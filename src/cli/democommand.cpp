#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "output.h"
#include "session.h"
#include "store/editingcontext.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>

namespace corvanta::cli {

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

// Runs the demo's commands on its own database, as a user would type them.
class DemoScript
{
public:
    DemoScript(Invocation& invocation)
        : m_invocation(invocation)
    {}

    // Runs one command; its text (or JSON) output, or nothing after reporting the failure.
    std::optional<QString> run(const QStringList& words, bool json = false)
    {
        qsizetype used = 0;
        const Command* command = CommandLine::find(words, &used);
        QString error;
        const std::optional<Arguments> arguments =
            command
                ? Arguments::parse(words.mid(used), command->options + CommandLine::globalOptions(), &error)
                : std::nullopt;
        if (!arguments) {
            m_invocation.refuse(
                CommandLine::tr("The demo cannot run \"%1\": %2").arg(words.join(QLatin1Char(' ')), error));
            return std::nullopt;
        }
        QString text;
        QString errors;
        QTextStream out(&text);
        QTextStream err(&errors);
        Output output(out, err, json);
        if (CommandLine::execute(*command, *arguments, m_invocation.session, output, m_invocation.prompter) !=
            Success) {
            err.flush();
            if (!errors.trimmed().isEmpty())
                m_invocation.prompter.report(errors.trimmed());
            m_invocation.prompter.report(CommandLine::tr("The demo stopped at \"corvanta-cli %1\".")
                                             .arg(words.join(QLatin1Char(' '))));
            return std::nullopt;
        }
        out.flush();
        return text;
    }

    // Writes a document and returns its number (the first line printed).
    std::optional<QString> document(const QStringList& options)
    {
        const std::optional<QString> printed = run(QStringList{s("documents"), s("new")} + options);
        if (!printed)
            return std::nullopt;
        return printed->section(QLatin1Char('\n'), 0, 0);
    }

private:
    Invocation& m_invocation;
};

bool makeRecords(DemoScript& script)
{
    const QList<QStringList> setUp = {
        {s("clients"),     s("add"),          s("--kind"),     s("company"),       s("--name"),
         s("Acme Ltd"),    s("--tax-number"), s("US-1234567"), s("--email"),       s("billing@acme.example"),
         s("--phone"),     s("+1 555 0100"),  s("--street"),   s("1 Main Street"), s("--city"),
         s("Springfield"), s("--zip"),        s("12345"),      s("--country"),     s("USA")},
        {s("clients"), s("add"), s("--kind"), s("supplier"), s("--name"), s("Northwind Supplies"),
         s("--email"), s("orders@northwind.example"), s("--city"), s("Portland"), s("--country"), s("USA")},
        {s("clients"), s("add"), s("--kind"), s("individual"), s("--first"), s("Jane"), s("--last"), s("Doe"),
         s("--email"), s("jane.doe@example.org"), s("--street"), s("7 Elm Road"), s("--city"),
         s("Springfield")},
        {s("items"), s("add"), s("--name"), s("Bolt"), s("--code"), s("B-10"), s("--kind"), s("product"),
         s("--price"), s("10"), s("--price"), s("9"), s("--tax"), s("10%"), s("--unit"), s("Each")},
        {s("items"), s("add"), s("--name"), s("Nut"), s("--code"), s("N-10"), s("--kind"), s("product"),
         s("--price"), s("0.5"), s("--price"), s("0.45"), s("--tax"), s("10%"), s("--unit"), s("Each")},
        {s("items"), s("add"), s("--name"), s("Consulting"), s("--kind"), s("service"), s("--price"), s("80"),
         s("--tax"), s("GST / PST"), s("--unit"), s("Hours")},
        {s("items"), s("receive"), s("Bolt"), s("--quantity"), s("500"), s("--supplier"),
         s("Northwind Supplies")},
        {s("items"), s("receive"), s("Nut"), s("--quantity"), s("2000"), s("--supplier"),
         s("Northwind Supplies")},
    };
    for (const QStringList& words : setUp) {
        if (!script.run(words))
            return false;
    }

    const QStringList acme = {s("--client"), s("Acme Ltd")};
    const QStringList jane = {s("--client"), s("Jane Doe")};
    const QStringList order = {s("--row"),   s("Bolt;100"), s("--row"),
                               s("Nut;400"), s("--row"),    s("Consulting;4")};
    if (!script.document(QStringList{s("--type"), s("quotation")} + acme + order))
        return false;
    // The quotation accepted: an invoice, paid in part, and its delivery note.
    const std::optional<QString> invoice =
        script.document(QStringList{s("--type"), s("invoice")} + acme + order);
    if (!invoice || !script.run({s("documents"), s("pay"), *invoice, s("--amount"), s("500")}))
        return false;
    if (!script.document(QStringList{s("--type"), s("delivery_note")} + acme +
                         QStringList{s("--row"), s("Bolt;100"), s("--row"), s("Nut;400")}))
        return false;
    // Jane's consulting, paid in full.
    const std::optional<QString> paid = script.document(QStringList{s("--type"), s("invoice")} + jane +
                                                        QStringList{s("--row"), s("Consulting;2")});
    if (!paid || !script.run({s("documents"), s("settle"), *paid}))
        return false;
    // An invoice written by mistake, cancelled: the cancellation gives its bolts back.
    const std::optional<QString> mistake = script.document(QStringList{s("--type"), s("invoice")} + jane +
                                                           QStringList{s("--row"), s("Bolt;10")});
    if (!mistake || !script.run({s("documents"), s("cancel"), *mistake}))
        return false;
    // A draft, an order to the supplier and a quotation in euros at the second price level.
    return script.document(QStringList{s("--type"), s("invoice"), s("--draft")} + acme +
                           QStringList{s("--row"), s("Bolt;5"), s("--row"), s("Delivery;1;15")}) &&
           script.document({s("--type"), s("purchase_order"), s("--client"), s("Northwind Supplies"),
                            s("--row"), s("Bolt;1000;6")}) &&
           script.document(QStringList{s("--type"), s("quotation"), s("--currency"), s("EUR"), s("--rate"),
                                       s("1.08"), s("--level"), s("2")} +
                           jane + QStringList{s("--row"), s("Bolt;50"), s("--row"), s("Nut;200")});
}

int demo(Invocation& invocation)
{
    QString file = invocation.session.requestedFile();
    if (file.isEmpty()) {
        QTemporaryDir folder(QDir(QDir::tempPath()).filePath(s("corvanta-demo-XXXXXX")));
        if (!folder.isValid())
            return invocation.refuse(CommandLine::tr("No folder for the demo can be made in \"%1\": %2")
                                         .arg(QDir::tempPath(), folder.errorString()));
        folder.setAutoRemove(false);
        file = QDir(folder.path()).filePath(s("demo.cvdb"));
    } else if (QFileInfo::exists(file)) {
        return invocation.refuse(CommandLine::tr("\"%1\" exists already; the demo makes a new company "
                                                 "database. Name a file that does not exist.")
                                     .arg(file));
    }
    file = QFileInfo(file).absoluteFilePath();
    if (!invocation.session.open(file))
        return Refused;

    DemoScript script(invocation);
    if (!makeRecords(script))
        return Refused;

    if (invocation.output.isJson()) {
        QJsonObject result{{s("database"), file}};
        for (const char* list : {"clients", "items", "documents"}) {
            const std::optional<QString> json = script.run({s(list), s("list")}, true);
            if (!json)
                return Refused;
            result.insert(s(list), QJsonDocument::fromJson(json->toUtf8()).array());
        }
        invocation.output.json(result);
        return Success;
    }
    QTextStream& out = invocation.output.text();
    out << CommandLine::tr("A demo company database was made at:") << '\n' << "  " << file << "\n\n";
    const QList<QPair<QString, const char*>> sections = {{CommandLine::tr("Clients:"), "clients"},
                                                         {CommandLine::tr("Items and their stock:"), "items"},
                                                         {CommandLine::tr("Documents:"), "documents"}};
    for (const auto& [title, list] : sections) {
        const std::optional<QString> text = script.run({s(list), s("list")});
        if (!text)
            return Refused;
        out << title << '\n';
        for (const QString& line : text->split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            out << "  " << line << '\n';
        out << '\n';
    }
    out << CommandLine::tr("Look around with, for example:") << '\n'
        << QStringLiteral("  corvanta-cli --database '%1' documents list --type invoice\n").arg(file)
        << QStringLiteral("  corvanta-cli --database '%1' items show Bolt\n").arg(file)
        << QStringLiteral("  corvanta-cli --database '%1' --json documents list --where 'draft == YES'\n")
               .arg(file);
    return Success;
}

} // namespace

QList<Command> demoCommands()
{
    Command command;
    command.words = QStringList{s("demo")};
    command.synopsis = s("demo");
    command.summary = CommandLine::tr("make a demo company database to try things on");
    command.help = CommandLine::tr(
        "Makes a new company database with demo records, through the same commands a user runs:\n"
        "three clients (a company, a supplier and an individual), three items with deliveries\n"
        "into stock, a quotation, invoices (one paid in part, one paid in full, one cancelled, one\n"
        "draft), a delivery note, a purchase order and a quotation in euros. It is made in a new\n"
        "folder under the system's temporary folder, or in the file --database names (which must\n"
        "not exist yet); the database list and the selected database are left alone. Prints where\n"
        "the database is and what it holds.\n"
        "\n"
        "Example:\n"
        "  corvanta-cli demo\n"
        "  corvanta-cli --database /tmp/try.cvdb demo");
    command.database = Command::Database::None;
    command.run = demo;
    return {command};
}

} // namespace corvanta::cli
