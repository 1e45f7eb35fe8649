#pragma once

#include "command.h"
#include "companies/databasefolders.h"

#include <QCoreApplication>
#include <QStringList>
#include <QTextStream>

namespace corvanta::cli {

// Reads the command line of corvanta-cli, opens the company database the command works on and
// runs it. Exit status: 0 on success, 1 when the data refuses (the system's message on standard
// error), 2 for a usage error (with a short usage text).
class CommandLine
{
    Q_DECLARE_TR_FUNCTIONS(CommandLine)

public:
    // `folders` and `shippedTemplates` are the user's and the program's unless a caller gives
    // its own.
    CommandLine(QTextStream& out, QTextStream& err, const companies::DatabaseFolders& folders,
                const QString& shippedTemplates);
    int run(const QStringList& arguments);

    // Every command, in the order the help lists them.
    static const QList<Command>& commands();
    // The command named by the first words of `words`; `used` tells how many words named it.
    static const Command* find(const QStringList& words, qsizetype* used);
    // The options every command takes besides its own.
    static const QList<OptionSpec>& globalOptions();
    // Runs a command whose arguments were read, on an open session (or none for a command that
    // needs no database).
    static int execute(const Command& command, const Arguments& arguments, Session& session, Output& output,
                       CliPrompter& prompter);

    static QString usage();
    static QString help(const Command& command);

private:
    int usageError(const QString& message, const Command* command);
    void flushMessages(CliPrompter& prompter);

    QTextStream& m_out;
    QTextStream& m_err;
    companies::DatabaseFolders m_folders;
    QString m_shippedTemplates;
};

} // namespace corvanta::cli
