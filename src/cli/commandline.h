#pragma once

#include <QCoreApplication>
#include <QStringList>
#include <QTextStream>

namespace corvanta::cli {

// Parses the command line of corvanta-cli and runs the chosen command. Exit status: 0 on
// success, 1 when the data refuses (the system's message on standard error), 2 for a usage error.
class CommandLine
{
    Q_DECLARE_TR_FUNCTIONS(CommandLine)

public:
    CommandLine(QTextStream& out, QTextStream& err);
    int run(const QStringList& arguments);

private:
    int info(const QString& databasePath);
    QString usage() const;

    QTextStream& m_out;
    QTextStream& m_err;
};

} // namespace corvanta::cli
