#include "app/applicationcore.h"
#include "commandline.h"

#include <QGuiApplication>

namespace {

QtMessageHandler qtHandler = nullptr;

// Starting the platform without a screen looks for a runtime folder that a command line started
// outside a desktop session (cron, ssh, CI) does not have; the warning would only clutter
// standard error, where the commands' own messages go.
void withoutRuntimeFolderWarning(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (message.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR not set")))
        return;
    qtHandler(type, context, message);
}

} // namespace

int main(int argc, char** argv)
{
    // Printing lays text out with the fonts of the system, which needs a GUI application; the
    // command line never opens a window, so it runs on the platform without a screen wherever
    // it is started.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qtHandler = qInstallMessageHandler(withoutRuntimeFolderWarning);
    QGuiApplication app(argc, argv);
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
