#pragma once

#include "app/commandrules.h"

#include <QHash>
#include <QMainWindow>

class QActionGroup;
class QLabel;
class QStackedWidget;

namespace corvanta::app {
class ApplicationCore;
}
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

class BrowserView;
class CompaniesMenuView;
class EditorWindows;
class ListWindows;

// The main window: the browser with its sidebar, list and detail page, the menus and the tool
// bar. The global commands (New, Edit, Duplicate, Delete, Save, Preview, Print) go where the
// routing rules send them and are enabled by the same rules, read off the windows as they are.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow(app::ApplicationCore& core, support::Prompter& prompter, QWidget* parent = nullptr);
    ~MainWindow() override;

    BrowserView* browserView() const { return m_browser; }
    EditorWindows* editorWindows() const { return m_editors; }
    ListWindows* listWindows() const { return m_lists; }
    app::MainView currentView() const { return m_currentView; }
    QAction* commandAction(app::Command command) const { return m_commands.value(command); }

    // What the rules look at now: the window in front, the focus, the browser's selection.
    app::CommandState commandState() const;
    // Enables every command by the rules; runs whenever the focus, the window in front or a
    // selection changes, and before a menu opens.
    void updateCommandStates();
    // Runs a command where the rules send it.
    void runCommand(app::Command command);
    // Opens the window of a command tag; false when the tag names none or it could not open.
    bool openWindow(int tag);
    // Whether a command tag names a window.
    static bool hasWindow(int tag);

    // What a window in front tells the rules it is: windows set this property to a WindowKind.
    static const char* windowKindProperty();

Q_SIGNALS:
    // Quitting went through to the end: the program may end now.
    void quitAccepted();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void createActions();
    void createMenus();
    void createToolBar();
    QAction* addCommand(app::Command command, const QString& text, const QString& icon,
                        const QKeySequence& keys, const QString& name);
    bool isHandled(app::Command command, app::CommandTarget target) const;
    void updateSelectedLabel();
    void emailToSupport();
    void checkForUpdates();
    void showAbout();
    void restoreLayout();
    void saveLayout() const;
    // Closes the editor and list windows as the user would, each asking about its unsaved
    // changes; false when one of them stays open.
    bool closeEditors();
    // The imports: a file of clients or items is asked for first.
    void importFile(bool clients);
    // The page's requests for a document's payments and an item's stock.
    void connectDetailPage();

    app::ApplicationCore& m_core;
    support::Prompter& m_prompter;
    QStackedWidget* m_views = nullptr;
    EditorWindows* m_editors = nullptr;
    ListWindows* m_lists = nullptr;
    BrowserView* m_browser = nullptr;
    CompaniesMenuView* m_companiesMenu = nullptr;
    QLabel* m_selectedLabel = nullptr;
    QActionGroup* m_viewActions = nullptr;
    app::MainView m_currentView = app::MainView::Browser;
    QHash<app::Command, QAction*> m_commands;
    QList<QAction*> m_windowTagActions;
    bool m_quitting = false;
};

} // namespace corvanta::ui
