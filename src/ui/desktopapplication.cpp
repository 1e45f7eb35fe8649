#include "desktopapplication.h"

#include "app/applicationcore.h"
#include "app/applog.h"
#include "companies/databasefolders.h"
#include "mainwindow.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QIcon>
#include <QProcess>
#include <QStandardPaths>

namespace corvanta::ui {

DesktopApplication::DesktopApplication(QObject* parent)
    : QObject(parent)
    , m_restart(
          [] {
              // The program starts again on the newly selected database once this one has ended.
              if (!QProcess::startDetached(QCoreApplication::applicationFilePath(), {}))
                  qCWarning(app::lcApp)
                      << "The program could not be started again after connecting to another database.";
          })
    , m_quit([] { QCoreApplication::quit(); })
{}

void DesktopApplication::setEndingActions(std::function<void()> restart, std::function<void()> quit)
{
    m_restart = std::move(restart);
    m_quit = std::move(quit);
}

DesktopApplication::~DesktopApplication() = default;

bool DesktopApplication::start()
{
    // Icons come by their freedesktop names from the desktop's theme; a desktop without one (or
    // with only the bare "hicolor") gets them from the breeze theme that set-up installs.
    QIcon::setFallbackThemeName(QStringLiteral("breeze"));
    QStringList searchPaths = QIcon::themeSearchPaths();
    for (const QString& folder : QStandardPaths::locateAll(
             QStandardPaths::GenericDataLocation, QStringLiteral("icons"), QStandardPaths::LocateDirectory)) {
        if (!searchPaths.contains(folder))
            searchPaths.append(folder);
    }
    QIcon::setThemeSearchPaths(searchPaths);
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == QLatin1String("hicolor"))
        QIcon::setThemeName(QStringLiteral("breeze"));
    QGuiApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("org.corvanta.Corvanta"),
                                                    QIcon(QStringLiteral(":/icons/corvanta.svg"))));

    m_core = std::make_unique<app::ApplicationCore>(m_prompter, companies::DatabaseFolders::standard());
    if (!m_core->start()) {
        restartIfRequested();
        m_exitStatus = 1;
        return false;
    }
    m_mainWindow = std::make_unique<MainWindow>(*m_core, m_prompter);
    m_prompter.setWindow(m_mainWindow.get());
    connect(m_mainWindow.get(), &MainWindow::quitAccepted, this, [this] {
        restartIfRequested();
        m_quit();
    });
    m_mainWindow->show();
    return true;
}

void DesktopApplication::restartIfRequested()
{
    if (m_core && m_core->isRestartRequested())
        m_restart();
}

} // namespace corvanta::ui
