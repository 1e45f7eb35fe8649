#include "commandline.h"

#include <QCoreApplication>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("corvanta"));
    QCoreApplication::setApplicationVersion(QStringLiteral(CORVANTA_VERSION));
    QTextStream out(stdout);
    QTextStream err(stderr);
    corvanta::cli::CommandLine commandLine(out, err);
    return commandLine.run(QCoreApplication::arguments());
}
