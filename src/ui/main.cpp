#include "desktopapplication.h"

#include <QApplication>
#include <QLoggingCategory>

int main(int argc, char** argv)
{
    // The web view of the detail pages shares its GL contexts with the windows.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    // The web engine describes its graphics set-up at every start; it is not the user's business.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.webenginecontext.info=false"));
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("corvanta"));
    QCoreApplication::setApplicationVersion(QStringLiteral(CORVANTA_VERSION));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Corvanta"));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.corvanta.Corvanta"));

    corvanta::ui::DesktopApplication desktop;
    if (!desktop.start())
        return desktop.exitStatus();
    return QApplication::exec();
}
