#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "model/companycache.h"
#include "output.h"
#include "session.h"
#include "store/editingcontext.h"
#include "store/store.h"

#include <QJsonObject>

namespace corvanta::cli {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

int info(Invocation& invocation)
{
    store::Store& store = invocation.session.store();
    // As the file holds it now: a database made by this run has just been given its version.
    const QString version = model::CompanyCache::of(store).value(s("version")).toString();
    if (invocation.output.isJson()) {
        QJsonObject counts;
        for (const store::EntityDescription& entity : store.model().entities())
            counts.insert(entity.name(), store.mainContext().count(store::FetchRequest(entity.name())));
        invocation.output.json(
            QJsonObject{{s("path"), store.path()}, {s("version"), version}, {s("records"), counts}});
        return Success;
    }
    QTextStream& out = invocation.output.text();
    out << CommandLine::tr("Database: %1").arg(store.path()) << '\n';
    out << CommandLine::tr("Data model: %1").arg(version.isEmpty() ? CommandLine::tr("unknown") : version)
        << '\n';
    for (const store::EntityDescription& entity : store.model().entities()) {
        const int count = store.mainContext().count(store::FetchRequest(entity.name()));
        out << QStringLiteral("  %1 %2\n").arg(entity.name(), -20).arg(count);
    }
    return Success;
}

int help(Invocation& invocation)
{
    QTextStream& out = invocation.output.text();
    const QStringList& words = invocation.arguments.words();
    if (words.isEmpty()) {
        out << CommandLine::usage();
        return Success;
    }
    qsizetype used = 0;
    if (const Command* command = CommandLine::find(words, &used); command && used == words.size()) {
        out << CommandLine::help(*command);
        return Success;
    }
    // A group's name alone: the help of each of its commands.
    bool found = false;
    for (const Command& command : CommandLine::commands()) {
        if (words.size() == 1 && command.words.first() == words.first()) {
            out << CommandLine::help(command) << '\n';
            found = true;
        }
    }
    if (found)
        return Success;
    return invocation.usageError(
        CommandLine::tr("Unknown command \"%1\".").arg(words.join(QLatin1Char(' '))));
}

} // namespace

QList<Command> generalCommands()
{
    Command infoCommand;
    infoCommand.words = QStringList{s("info")};
    infoCommand.synopsis = s("info");
    infoCommand.summary = CommandLine::tr("show which database is used and how many records it holds");
    infoCommand.help =
        CommandLine::tr("Opens the company database, brings its file up to date with this version of the\n"
                        "program, and shows its path, its data-model version and how many records of each\n"
                        "kind it holds. A database that does not exist yet is made first.\n"
                        "\n"
                        "Example:\n"
                        "  corvanta-cli --database shop.cvdb info");
    infoCommand.run = info;

    Command helpCommand;
    helpCommand.words = QStringList{s("help")};
    helpCommand.synopsis = s("help [COMMAND]");
    helpCommand.summary = CommandLine::tr("show the help of a command, or the list of commands");
    helpCommand.help =
        CommandLine::tr("Shows what a command does, its options and an example; \"help documents\" shows\n"
                        "every documents command.\n"
                        "\n"
                        "Example:\n"
                        "  corvanta-cli help documents new");
    helpCommand.maxWords = 3;
    helpCommand.database = Command::Database::None;
    helpCommand.run = help;
    return {infoCommand, helpCommand};
}

} // namespace corvanta::cli
