#pragma once

#include "dialogprompter.h"

#include <QObject>
#include <functional>
#include <memory>

namespace corvanta::app {
class ApplicationCore;
}

namespace corvanta::ui {

class MainWindow;

// The desktop program around the application core: starts it in its order, shows the main
// window, and on quitting runs the core's quitting (sidebar state, backup, last save) before
// the program ends, then starts the program again when the user connected to another database.
class DesktopApplication : public QObject
{
    Q_OBJECT

public:
    explicit DesktopApplication(QObject* parent = nullptr);
    ~DesktopApplication() override;

    // Opens the selected company database and shows the main window. False when no database
    // could be opened (the reason was shown); exitStatus() is then what the program returns.
    bool start();
    int exitStatus() const { return m_exitStatus; }

    // What ending the program and starting it again do; a test sees them without ending itself.
    void setEndingActions(std::function<void()> restart, std::function<void()> quit);

    app::ApplicationCore* core() const { return m_core.get(); }
    MainWindow* mainWindow() const { return m_mainWindow.get(); }

private:
    void restartIfRequested();

    DialogPrompter m_prompter;
    std::unique_ptr<app::ApplicationCore> m_core;
    std::unique_ptr<MainWindow> m_mainWindow;
    std::function<void()> m_restart;
    std::function<void()> m_quit;
    int m_exitStatus = 0;
};

} // namespace corvanta::ui
