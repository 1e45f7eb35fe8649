#include "desktopapplication.h"

#include <QApplication>

int main(int argc, char** argv)
{
    // The web view of the detail pages shares its GL contexts with the windows.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
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
