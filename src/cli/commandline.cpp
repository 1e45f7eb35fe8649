#include "commandline.h"

#include "cliprompter.h"
#include "commands.h"
#include "output.h"
#include "session.h"

namespace corvanta::cli {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// The commands whose first word is `group`.
QList<const Command*> commandsOf(const QString& group)
{
    QList<const Command*> found;
    for (const Command& command : CommandLine::commands()) {
        if (command.words.first() == group)
            found << &command;
    }
    return found;
}

QString groupHelp(const QString& group)
{
    QString text = CommandLine::tr("The %1 commands:").arg(group) + QLatin1Char('\n');
    qsizetype width = 0;
    for (const Command* command : commandsOf(group))
        width = std::max(width, command->name().size());
    for (const Command* command : commandsOf(group))
        text += QStringLiteral("  %1  %2\n").arg(command->name().leftJustified(width), command->summary);
    text += QLatin1Char('\n') +
            CommandLine::tr("Run \"corvanta-cli %1 COMMAND --help\" for what each one does.").arg(group) +
            QLatin1Char('\n');
    return text;
}

} // namespace

CommandLine::CommandLine(QTextStream& out, QTextStream& err, const companies::DatabaseFolders& folders,
                         const QString& shippedTemplates)
    : m_out(out)
    , m_err(err)
    , m_folders(folders)
    , m_shippedTemplates(shippedTemplates)
{}

const QList<Command>& CommandLine::commands()
{
    static const QList<Command> all = generalCommands() + databasesCommands() + clientsCommands() +
                                      itemsCommands() + documentsCommands() + documentActionsCommands() +
                                      printCommands() + reportsCommands() + templatesCommands() +
                                      foldersCommands() + tagsCommands() + emailCommands() +
                                      importCommands() + todosCommands() + demoCommands();
    return all;
}

const QList<OptionSpec>& CommandLine::globalOptions()
{
    static const QList<OptionSpec> options = {
        {s("database"), true, false}, {s("json"), false, false}, {s("help"), false, false}};
    return options;
}

const Command* CommandLine::find(const QStringList& words, qsizetype* used)
{
    const Command* best = nullptr;
    for (const Command& command : commands()) {
        if (command.words.size() <= words.size() && words.mid(0, command.words.size()) == command.words &&
            (!best || command.words.size() > best->words.size()))
            best = &command;
    }
    *used = best ? best->words.size() : 0;
    return best;
}

QString CommandLine::usage()
{
    QString text = tr("Usage: corvanta-cli [--database FILE] [--json] COMMAND [ARGUMENTS...]\n"
                      "\n"
                      "Corvanta keeps the invoices, quotations and other business documents of a small\n"
                      "company, with its clients, items, stock and payments, in one company database.\n"
                      "corvanta-cli does from a shell or a script what the desktop program does in its\n"
                      "windows, with the same rules and messages.\n"
                      "\n"
                      "Options (before or after the command):\n"
                      "  --database FILE  work on this company database file; a new one is made, with\n"
                      "                   the default records of a new company, when it does not exist.\n"
                      "                   Without it, the database selected in the database list is\n"
                      "                   used, as the desktop program does.\n"
                      "  --json           print the result as one JSON value whose keys are the names\n"
                      "                   of the data model (sum_total, number_formatted, rows ...)\n"
                      "  --help           show this text, or a command's help after the command\n"
                      "  --version        show the program's version\n"
                      "\n"
                      "Commands:\n");
    qsizetype width = 0;
    for (const Command& command : commands())
        width = std::max(width, command.name().size());
    for (const Command& command : commands())
        text += QStringLiteral("  %1  %2\n").arg(command.name().leftJustified(width), command.summary);
    text += tr("\n"
               "Run \"corvanta-cli COMMAND --help\" for a command's options and an example.\n"
               "Exit status: 0 done, 1 refused by the data (the reason is on standard error),\n"
               "2 wrong command line. See also corvanta-cli(1).\n");
    return text;
}

QString CommandLine::help(const Command& command)
{
    return tr("Usage: corvanta-cli [--database FILE] [--json] %1").arg(command.synopsis) +
           QStringLiteral("\n\n") + command.help.trimmed() + QStringLiteral("\n\n") +
           tr("--database FILE, --json and --help work with every command; see \"corvanta-cli --help\".") +
           QLatin1Char('\n');
}

int CommandLine::usageError(const QString& message, const Command* command)
{
    m_err << QStringLiteral("corvanta-cli: ") << message << '\n';
    if (command) {
        m_err << tr("Usage: corvanta-cli %1").arg(command->synopsis) << '\n'
              << tr("Try \"corvanta-cli %1 --help\" for more.").arg(command->name()) << '\n';
    } else {
        m_err << tr("Usage: corvanta-cli [--database FILE] [--json] COMMAND [ARGUMENTS...]") << '\n'
              << tr("Try \"corvanta-cli --help\" for the list of commands.") << '\n';
    }
    return UsageError;
}

void CommandLine::flushMessages(CliPrompter& prompter)
{
    for (const QString& message : prompter.takeMessages())
        m_err << message << '\n';
    m_err.flush();
}

int CommandLine::execute(const Command& command, const Arguments& arguments, Session& session, Output& output,
                         CliPrompter& prompter)
{
    prompter.beginCommand(command.textAnswer ? command.textAnswer(arguments) : std::nullopt);
    Invocation invocation{command, arguments, session, output, prompter};
    const int status = command.run(invocation);
    output.text().flush();
    // A command that did not get done says why, even where the core said nothing.
    if (status == Refused && !prompter.hasMessages())
        prompter.report(tr("Nothing was changed."));
    return status;
}

int CommandLine::run(const QStringList& arguments)
{
    QString database;
    bool json = false;
    qsizetype next = 1;
    for (; next < arguments.size() && arguments.at(next).startsWith(QLatin1Char('-')); ++next) {
        const QString& argument = arguments.at(next);
        if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
            m_out << usage();
            return Success;
        }
        if (argument == QLatin1String("--version")) {
            m_out << QStringLiteral("corvanta-cli %1\n").arg(QLatin1String(CORVANTA_VERSION));
            return Success;
        }
        if (argument == QLatin1String("--json")) {
            json = true;
        } else if (argument == QLatin1String("--database")) {
            if (next + 1 >= arguments.size())
                return usageError(tr("--database needs a file name."), nullptr);
            database = arguments.at(++next);
        } else if (argument.startsWith(QLatin1String("--database="))) {
            database = argument.mid(11);
        } else {
            return usageError(tr("Unknown option \"%1\".").arg(argument), nullptr);
        }
    }
    const QStringList words = arguments.mid(next);
    if (words.isEmpty()) {
        m_out << usage();
        return Success;
    }

    qsizetype used = 0;
    const Command* command = find(words, &used);
    if (!command) {
        const QString group = words.first();
        if (commandsOf(group).isEmpty())
            return usageError(tr("Unknown command \"%1\".").arg(group), nullptr);
        if (words.contains(QLatin1String("--help")) || words.contains(QLatin1String("-h"))) {
            m_out << groupHelp(group);
            return Success;
        }
        m_err << QStringLiteral("corvanta-cli: ")
              << (words.size() > 1 ? tr("Unknown command \"%1 %2\".").arg(group, words.at(1))
                                   : tr("\"%1\" needs a command.").arg(group))
              << '\n'
              << groupHelp(group);
        return UsageError;
    }

    QString error;
    const std::optional<Arguments> parsed =
        Arguments::parse(words.mid(used), command->options + globalOptions(), &error);
    if (!parsed)
        return usageError(error, command);
    if (parsed->has(s("help"))) {
        m_out << help(*command);
        return Success;
    }
    json = json || parsed->has(s("json"));
    if (parsed->has(s("database")))
        database = parsed->value(s("database"));
    if (database.isEmpty() && (parsed->has(s("database")) || arguments.contains(s("--database="))))
        return usageError(tr("--database needs a file name."), command);
    const qsizetype count = parsed->words().size();
    if (count < command->minWords)
        return usageError(tr("\"%1\" needs more arguments.").arg(command->name()), command);
    if (count > command->maxWords)
        return usageError(tr("Unexpected argument \"%1\".").arg(parsed->words().at(command->maxWords)),
                          command);
    if (command->database == Command::Database::List && !database.isEmpty())
        return usageError(
            tr("\"%1\" works on the database list; --database does not apply to it.").arg(command->name()),
            command);

    CliPrompter prompter;
    Session session(prompter, m_folders, m_shippedTemplates);
    session.setRequestedFile(database);
    if (command->database != Command::Database::None && !session.open(database)) {
        flushMessages(prompter);
        return Refused;
    }
    Output output(m_out, m_err, json);
    const int status = execute(*command, *parsed, session, output, prompter);
    flushMessages(prompter);
    return status;
}

} // namespace corvanta::cli
