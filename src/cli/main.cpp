#include "app/applicationcore.h"
#include "commandline.h"

#include <QCoreApplication>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    // The same name as the desktop program: its data folder (~/.local/share/corvanta) is this one's.
    QCoreApplication::setApplicationName(QStringLiteral("corvanta"));
    QCoreApplication::setApplicationVersion(QStringLiteral(CORVANTA_VERSION));
    QTextStream out(stdout);
    QTextStream err(stderr);
    corvanta::cli::CommandLine commandLine(out, err, corvanta::companies::DatabaseFolders::standard(),
                                           corvanta::app::ApplicationCore::defaultShippedTemplatesFolder());
    const int status = commandLine.run(QCoreApplication::arguments());
    out.flush();
    err.flush();
    return status;
}
