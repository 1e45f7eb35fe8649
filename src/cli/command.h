#pragma once

#include "arguments.h"
#include "predicate/predicate.h"

#include <QDate>
#include <QList>
#include <QStringList>
#include <functional>

namespace corvanta::cli {

class CliPrompter;
class Output;
class Session;
struct Command;

// Exit statuses of every command.
enum ExitStatus {
    Success = 0,
    Refused = 1,    // the data refused: the system's message is on standard error
    UsageError = 2, // the command line was wrong: a short usage text is on standard error
};

// What a command runs with: its arguments, the open database, where results and messages go.
struct Invocation
{
    const Command& command;
    const Arguments& arguments;
    Session& session;
    Output& output;
    CliPrompter& prompter;

    // The command could not be done: `message` goes to standard error, the status is 1.
    int refuse(const QString& message) const;
    // The command line was wrong in a way the option parser cannot see (a malformed number, two
    // options that exclude each other): the message and the command's usage, status 2.
    int usageError(const QString& message) const;

    // An option read as a number or as a date (YYYY-MM-DD). On a malformed value the usage error
    // is written and its status returned; Success otherwise, also when the option is absent
    // (then `value` is left as it was).
    int number(const QString& option, double* value) const;
    int date(const QString& option, QDate* value) const;
    // A usage error unless the option was given.
    int require(const QString& option) const;
    // The --where option read as a predicate of the selection language (everything without
    // one); a malformed one is refused with the parser's message.
    int where(predicate::Predicate* condition) const;
};

// One command of corvanta-cli: its words ("documents", "new"), usage, help and options.
struct Command
{
    enum class Database {
        None, // works without a company database
        Open, // the --database file, or the one the database list selects
        List, // works on the database list, which --database does not name
    };

    QStringList words;
    QString synopsis; // the usage line after "corvanta-cli"
    QString summary;  // one line for the list of commands
    QString help;     // what it does, its options and an example, after the usage line
    QList<OptionSpec> options;
    int minWords = 0; // words after the command's own
    int maxWords = 0;
    Database database = Database::Open;
    // The text an entry window (the start number, a company name) is answered with, if any.
    std::function<std::optional<QString>(const Arguments&)> textAnswer;
    std::function<int(Invocation&)> run;

    QString name() const { return words.join(QLatin1Char(' ')); }
};

} // namespace corvanta::cli
