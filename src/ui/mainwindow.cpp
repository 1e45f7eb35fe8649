#include "mainwindow.h"

#include "app/applicationcore.h"
#include "app/companiesmenu.h"
#include "app/makerlinks.h"
#include "app/updatechecker.h"
#include "browse/commandavailability.h"
#include "browse/listkind.h"
#include "browse/pagebridge.h"
#include "browsercommands.h"
#include "browserview.h"
#include "companies/databasemanager.h"
#include "companiesmenuview.h"
#include "detailpane.h"
#include "editorwindows.h"
#include "exchange/emailhandover.h"
#include "listwindows.h"
#include "predicate/literal.h"
#include "recordlistview.h"
#include "sidebarview.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"
#include "store/store.h"
#include "support/prompter.h"

#include <QAbstractSpinBox>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QSettings>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTableView>
#include <QTextEdit>
#include <QTimer>
#include <QToolBar>

namespace corvanta::ui {

using app::Command;
using app::CommandRules;
using app::CommandState;
using app::CommandTarget;
using app::WindowKind;

namespace {

QSettings layoutSettings()
{
    return QSettings(QStringLiteral("corvanta"), QStringLiteral("desktop"));
}

// A field the user types in: row commands and Delete stay with its text.
bool isTextField(const QWidget* widget)
{
    if (!widget)
        return false;
    if (qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QTextEdit*>(widget) ||
        qobject_cast<const QPlainTextEdit*>(widget) || qobject_cast<const QAbstractSpinBox*>(widget))
        return true;
    if (const auto* combo = qobject_cast<const QComboBox*>(widget))
        return combo->isEditable();
    return false;
}

browse::RecordCommand recordCommandOf(Command command)
{
    switch (command) {
    case Command::New:
        return browse::RecordCommand::New;
    case Command::Edit:
        return browse::RecordCommand::Edit;
    case Command::Duplicate:
        return browse::RecordCommand::Duplicate;
    case Command::Delete:
        return browse::RecordCommand::Delete;
    case Command::Preview:
        return browse::RecordCommand::Preview;
    default:
        return browse::RecordCommand::Print;
    }
}

// The slot a window with rows or an editor offers for a command.
const char* windowSlotOf(Command command, CommandTarget target)
{
    if (target == CommandTarget::KeyEditor)
        return "save";
    switch (command) {
    case Command::New:
        return "addRow";
    case Command::Edit:
        return "editRow";
    case Command::Duplicate:
        return "duplicateRow";
    case Command::Delete:
        return "deleteRow";
    case Command::Preview:
        return "preview";
    case Command::Print:
        return "print";
    default:
        return nullptr;
    }
}

bool offersSlot(const QObject* window, const char* slot)
{
    if (!window || !slot)
        return false;
    return window->metaObject()->indexOfMethod(QByteArray(slot).append("()").constData()) >= 0;
}

} // namespace

const char* MainWindow::windowKindProperty()
{
    return "corvantaWindowKind";
}

MainWindow::MainWindow(app::ApplicationCore& core, support::Prompter& prompter, QWidget* parent)
    : QMainWindow(parent)
    , m_core(core)
    , m_prompter(prompter)
{
    setObjectName(QStringLiteral("MainWindow"));
    setWindowTitle(tr("Corvanta"));
    setProperty(windowKindProperty(), int(WindowKind::Main));
    setUnifiedTitleAndToolBarOnMac(true);

    m_editors = new EditorWindows(*core.store(), prompter, this);
    m_lists = new ListWindows(*core.store(), prompter, this);
    m_browser = new BrowserView(*core.store(), prompter, m_editors);
    m_views = new QStackedWidget;
    m_views->setObjectName(QStringLiteral("viewStack"));
    m_views->addWidget(m_browser);
    setCentralWidget(m_views);

    createActions();
    createMenus();
    createToolBar();
    statusBar()->hide();

    connect(m_browser, &BrowserView::stateChanged, this, [this] {
        updateCommandStates();
        updateSelectedLabel();
    });
    connect(qApp, &QApplication::focusChanged, this, &MainWindow::updateCommandStates);
    connectDetailPage();
    if (companies::DatabaseManager* manager = core.databaseManager()) {
        // Connecting to another database quits as the user would, then the program starts again.
        connect(manager, &companies::DatabaseManager::restartRequested, this,
                [this] { QTimer::singleShot(0, this, &QWidget::close); });
    }
    restoreLayout();
    updateCommandStates();
    updateSelectedLabel();
}

MainWindow::~MainWindow()
{
    // Closing the window moves the focus: the rules must not be asked of a window half gone.
    disconnect(qApp, nullptr, this, nullptr);
    m_browser->disconnect(this);
}

QAction* MainWindow::addCommand(Command command, const QString& text, const QString& icon,
                                const QKeySequence& keys, const QString& name)
{
    auto* action = new QAction(QIcon::fromTheme(icon), text, this);
    action->setObjectName(name);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, [this, command] { runCommand(command); });
    m_commands.insert(command, action);
    return action;
}

void MainWindow::createActions()
{
    addCommand(Command::New, tr("&New"), QStringLiteral("document-new"), QKeySequence::New,
               QStringLiteral("actionNew"));
    addCommand(Command::Edit, tr("&Edit…"), QStringLiteral("document-edit"), QKeySequence(tr("Ctrl+E")),
               QStringLiteral("actionEdit"));
    addCommand(Command::Duplicate, tr("D&uplicate"), QStringLiteral("edit-copy"), QKeySequence(tr("Ctrl+D")),
               QStringLiteral("actionDuplicate"));
    addCommand(Command::Delete, tr("&Delete…"), QStringLiteral("edit-delete"), QKeySequence::Delete,
               QStringLiteral("actionDelete"));
    addCommand(Command::Save, tr("&Save"), QStringLiteral("document-save"), QKeySequence::Save,
               QStringLiteral("actionSave"));
    addCommand(Command::Preview, tr("Pre&view"), QStringLiteral("document-preview"),
               QKeySequence(tr("Ctrl+Shift+P")), QStringLiteral("actionPreview"));
    addCommand(Command::Print, tr("&Print…"), QStringLiteral("document-print"), QKeySequence::Print,
               QStringLiteral("actionPrint"));
}

void MainWindow::createMenus()
{
    auto windowTagAction = [this](QMenu* menu, int tag, const QString& text, const QString& icon = {}) {
        QAction* action = menu->addAction(QIcon::fromTheme(icon), text);
        action->setObjectName(QStringLiteral("actionWindow%1").arg(tag));
        action->setData(tag);
        connect(action, &QAction::triggered, this, [this, tag] { openWindow(tag); });
        m_windowTagActions.append(action);
        return action;
    };

    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->setObjectName(QStringLiteral("fileMenu"));
    windowTagAction(file, 3, tr("New &Document"), QStringLiteral("document-new"));
    windowTagAction(file, 1, tr("New &Client"), QStringLiteral("contact-new"));
    windowTagAction(file, 2, tr("New &Item"), QStringLiteral("list-add"));
    windowTagAction(file, 4, tr("New &To-Do"), QStringLiteral("view-task-add"));
    file->addSeparator();
    m_companiesMenu = new CompaniesMenuView(*m_core.companiesMenu(), this);
    file->addMenu(m_companiesMenu);
    file->addSeparator();
    QAction* importClients =
        file->addAction(QIcon::fromTheme(QStringLiteral("document-import")), tr("Import &Clients…"));
    importClients->setObjectName(QStringLiteral("actionImportClients"));
    connect(importClients, &QAction::triggered, this, [this] { importFile(true); });
    QAction* importItems =
        file->addAction(QIcon::fromTheme(QStringLiteral("document-import")), tr("Import I&tems…"));
    importItems->setObjectName(QStringLiteral("actionImportItems"));
    connect(importItems, &QAction::triggered, this, [this] { importFile(false); });
    QAction* importAddressBook = file->addAction(QIcon::fromTheme(QStringLiteral("x-office-address-book")),
                                                 tr("Import from &Address Book…"));
    importAddressBook->setObjectName(QStringLiteral("actionImportAddressBook"));
    connect(importAddressBook, &QAction::triggered, m_lists, &ListWindows::importAddressBook);
    file->addSeparator();
    file->addAction(m_commands.value(Command::Save));
    file->addAction(m_commands.value(Command::Preview));
    file->addAction(m_commands.value(Command::Print));
    file->addSeparator();
    QAction* quit = file->addAction(QIcon::fromTheme(QStringLiteral("application-exit")), tr("&Quit"));
    quit->setObjectName(QStringLiteral("actionQuit"));
    quit->setShortcut(QKeySequence::Quit);
    quit->setMenuRole(QAction::QuitRole);
    connect(quit, &QAction::triggered, this, &QWidget::close);

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    edit->setObjectName(QStringLiteral("editMenu"));
    for (Command command : {Command::New, Command::Edit, Command::Duplicate, Command::Delete})
        edit->addAction(m_commands.value(command));

    QMenu* view = menuBar()->addMenu(tr("&View"));
    view->setObjectName(QStringLiteral("viewMenu"));
    m_viewActions = new QActionGroup(this);
    // The calendar, the reports and the design editor join the switcher as they become part of
    // the program.
    QAction* browser = view->addAction(QIcon::fromTheme(QStringLiteral("view-list-details")), tr("&Browser"));
    browser->setObjectName(QStringLiteral("actionShowBrowserView"));
    browser->setShortcut(QKeySequence(tr("Ctrl+1")));
    browser->setCheckable(true);
    browser->setChecked(true);
    m_viewActions->addAction(browser);
    connect(browser, &QAction::triggered, this, [this] {
        m_currentView = app::MainView::Browser;
        m_views->setCurrentWidget(m_browser);
        updateCommandStates();
    });

    QMenu* company = menuBar()->addMenu(tr("&Company"));
    company->setObjectName(QStringLiteral("companyMenu"));
    windowTagAction(company, 101, tr("&My Company…"), QStringLiteral("go-home"));
    windowTagAction(company, 100, tr("C&ustom Fields…"));
    company->addSeparator();
    windowTagAction(company, 105, tr("&Taxes…"));
    windowTagAction(company, 106, tr("U&nits…"));
    windowTagAction(company, 102, tr("C&urrencies…"));
    windowTagAction(company, 103, tr("&Banks…"));
    windowTagAction(company, 104, tr("&Payment Types…"));
    windowTagAction(company, 109, tr("&Due Days…"));
    company->addSeparator();
    windowTagAction(company, 107, tr("Template &Library…"));
    windowTagAction(company, 108, tr("&Email Templates…"));
    company->addSeparator();
    QAction* preferences =
        company->addAction(QIcon::fromTheme(QStringLiteral("configure")), tr("Pr&eferences…"));
    preferences->setShortcut(QKeySequence::Preferences);
    preferences->setMenuRole(QAction::PreferencesRole);
    preferences->setObjectName(QStringLiteral("actionPreferences"));
    connect(preferences, &QAction::triggered, m_lists, &ListWindows::showPreferences);

    QMenu* help = menuBar()->addMenu(tr("&Help"));
    help->setObjectName(QStringLiteral("helpMenu"));
    QAction* helpPage =
        help->addAction(QIcon::fromTheme(QStringLiteral("help-contents")), tr("Corvanta &Help"));
    helpPage->setShortcut(QKeySequence::HelpContents);
    connect(helpPage, &QAction::triggered, this,
            [] { QDesktopServices::openUrl(app::MakerLinks::helpPage()); });
    QAction* web =
        help->addAction(QIcon::fromTheme(QStringLiteral("internet-web-browser")), tr("Corvanta &Website"));
    connect(web, &QAction::triggered, this, [] { QDesktopServices::openUrl(app::MakerLinks::homePage()); });
    QAction* support = help->addAction(QIcon::fromTheme(QStringLiteral("mail-send")), tr("Email &Support…"));
    support->setObjectName(QStringLiteral("actionEmailToSupport"));
    connect(support, &QAction::triggered, this, &MainWindow::emailToSupport);
    QAction* update = help->addAction(QIcon::fromTheme(QStringLiteral("system-software-update")),
                                      tr("Check for &Updates…"));
    update->setObjectName(QStringLiteral("actionUpdate"));
    connect(update, &QAction::triggered, this, &MainWindow::checkForUpdates);
    help->addSeparator();
    QAction* about = help->addAction(QIcon::fromTheme(QStringLiteral("help-about")), tr("&About Corvanta"));
    about->setMenuRole(QAction::AboutRole);
    connect(about, &QAction::triggered, this, &MainWindow::showAbout);

    for (QMenu* menu : {file, edit, view, company, help})
        connect(menu, &QMenu::aboutToShow, this, &MainWindow::updateCommandStates);
}

void MainWindow::createToolBar()
{
    QToolBar* bar = addToolBar(tr("Main Tool Bar"));
    bar->setObjectName(QStringLiteral("mainToolBar"));
    bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    bar->setMovable(false);
    bar->addActions(m_viewActions->actions());
    bar->addSeparator();
    for (Command command : {Command::New, Command::Edit, Command::Duplicate, Command::Delete})
        bar->addAction(m_commands.value(command));
    bar->addSeparator();
    bar->addAction(m_commands.value(Command::Preview));
    bar->addAction(m_commands.value(Command::Print));

    auto* spacer = new QWidget;
    spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    bar->addWidget(spacer);
    m_selectedLabel = new QLabel;
    m_selectedLabel->setObjectName(QStringLiteral("selectedItemLabel"));
    m_selectedLabel->setContentsMargins(0, 0, fontMetrics().averageCharWidth() * 2, 0);
    QFont bold = m_selectedLabel->font();
    bold.setBold(true);
    m_selectedLabel->setFont(bold);
    bar->addWidget(m_selectedLabel);
}

CommandState MainWindow::commandState() const
{
    CommandState state;
    state.currentView = m_currentView;
    QWidget* key = QApplication::activeWindow();
    if (key == this) {
        state.keyWindow = WindowKind::Main;
    } else if (key) {
        const QVariant kind = key->property(windowKindProperty());
        state.keyWindow = kind.isValid() ? WindowKind(kind.toInt()) : WindowKind::Other;
        state.canAdd = key->property("canAdd").toBool();
        state.selectedRowCount = key->property("selectedRowCount").toInt();
    }
    state.textViewIsFirstResponder = isTextField(key ? key->focusWidget() : QApplication::focusWidget());
    state.browserSelectionCount = m_browser->selectionCount();
    state.browserShownKind = m_browser->shownKind();
    return state;
}

bool MainWindow::isHandled(Command command, CommandTarget target) const
{
    switch (target) {
    case CommandTarget::KeyWindowRows:
    case CommandTarget::KeyEditor:
        return offersSlot(QApplication::activeWindow(), windowSlotOf(command, target));
    case CommandTarget::Browser:
        return m_browser->commands()->isEnabled(recordCommandOf(command));
    case CommandTarget::MainWindow:
        if (offersSlot(QApplication::activeWindow(), windowSlotOf(command, target)))
            return true;
        return m_currentView == app::MainView::Browser &&
               m_browser->commands()->isEnabled(recordCommandOf(command));
    default:
        // The calendar and the design editor are not part of the program yet.
        return false;
    }
}

void MainWindow::updateCommandStates()
{
    const CommandState state = commandState();
    for (auto it = m_commands.cbegin(); it != m_commands.cend(); ++it) {
        const Command command = it.key();
        it.value()->setEnabled(CommandRules::isEnabled(command, state) &&
                               isHandled(command, CommandRules::route(command, state)));
    }
    for (QAction* action : std::as_const(m_windowTagActions))
        action->setEnabled(hasWindow(action->data().toInt()));
}

void MainWindow::runCommand(Command command)
{
    updateCommandStates();
    const CommandState state = commandState();
    if (!CommandRules::isEnabled(command, state))
        return;
    const CommandTarget target = CommandRules::route(command, state);
    if (!isHandled(command, target))
        return;
    if (target == CommandTarget::KeyWindowRows || target == CommandTarget::KeyEditor ||
        (target == CommandTarget::MainWindow &&
         offersSlot(QApplication::activeWindow(), windowSlotOf(command, target)))) {
        QMetaObject::invokeMethod(QApplication::activeWindow(), windowSlotOf(command, target));
        return;
    }
    BrowserCommands* commands = m_browser->commands();
    switch (command) {
    case Command::Duplicate:
        commands->duplicateRecord();
        break;
    case Command::Delete:
        commands->deleteRecord();
        break;
    case Command::Preview:
        commands->preview();
        break;
    case Command::Print:
        commands->print();
        break;
    case Command::New:
        commands->newRecord();
        break;
    case Command::Edit:
        commands->editRecord();
        break;
    default:
        break;
    }
    updateCommandStates();
}

bool MainWindow::hasWindow(int tag)
{
    return (tag >= 1 && tag <= 4) || ListWindows::hasWindow(tag);
}

bool MainWindow::openWindow(int tag)
{
    switch (tag) {
    case 1:
        return m_editors->newEditor(browse::ListKind::Clients) != nullptr;
    case 2:
        return m_editors->newEditor(browse::ListKind::Items) != nullptr;
    case 3:
        return m_editors->newEditor(browse::ListKind::Documents) != nullptr;
    case 4:
        return m_editors->newEditor(browse::ListKind::ToDos) != nullptr;
    default:
        return m_lists->openWindow(tag) != nullptr;
    }
}

void MainWindow::connectDetailPage()
{
    store::Store& store = *m_core.store();
    const auto stored = [&store](const char* entity, const QString& identifier) {
        store::Record* record = store.mainContext().fetchFirst(store::FetchRequest(
            QString::fromLatin1(entity), predicate::literal("identifier == %@", {identifier})));
        return record ? record->ref() : predicate::RecordRef();
    };
    browse::PageBridge& bridge = m_browser->detailPane()->bridge();
    connect(&bridge, &browse::PageBridge::documentPaymentsRequested, this,
            [this, stored](const QString& identifier) {
                const predicate::RecordRef document = stored("Documents", identifier);
                if (!document.isNull())
                    m_editors->showDocumentPayments(document, this);
            });
    connect(&bridge, &browse::PageBridge::warehouseRequested, this,
            [this, stored](const QString& identifier) {
                const predicate::RecordRef item = stored("Items", identifier);
                if (!item.isNull())
                    m_editors->showWarehouse(item);
            });
    // A double click on a row opens its record, as Edit does.
    connect(m_browser->recordList()->table(), &QAbstractItemView::doubleClicked, this,
            [this] { m_browser->commands()->editRecord(); });
}

bool MainWindow::closeEditors()
{
    for (QWidget* window : m_editors->windows() + m_lists->windows()) {
        QPointer<QWidget> editor = window;
        if (!editor->close() && editor && editor->isVisible())
            return false;
    }
    return true;
}

void MainWindow::importFile(bool clients)
{
    const QString path =
        QFileDialog::getOpenFileName(this, clients ? tr("Import Clients") : tr("Import Items"),
                                     QDir::homePath(), tr("Text files (*.csv *.txt *.tsv);;All files (*)"));
    if (path.isEmpty())
        return;
    if (clients)
        m_lists->importClients(path);
    else
        m_lists->importItems(path);
}

void MainWindow::updateSelectedLabel()
{
    const QString title = m_browser->selectedNodeTitle();
    m_selectedLabel->setText(title);
    setWindowTitle(title.isEmpty() ? tr("Corvanta") : tr("%1 — Corvanta").arg(title));
}

void MainWindow::emailToSupport()
{
    QString error;
    // The mail program sends from the account the user set up in it; the company's own address
    // cannot be handed over as the sender.
    if (!exchange::EmailHandOver().sendEmailTo(app::MakerLinks::supportAddress(), tr("Corvanta Support"), {},
                                               {}, &error))
        m_prompter.alert(tr("Email Support"), error, {tr("OK")});
}

void MainWindow::checkForUpdates()
{
    app::UpdateChecker checker(m_prompter);
    if (const std::optional<QUrl> download = checker.update())
        QDesktopServices::openUrl(*download);
}

void MainWindow::showAbout()
{
    QMessageBox::about(this, tr("About Corvanta"),
                       tr("<h3>Corvanta %1</h3><p>Invoices, quotations and the clients, items, payments and "
                          "to-dos around them, for a small business.</p>")
                           .arg(QCoreApplication::applicationVersion()));
}

void MainWindow::restoreLayout()
{
    const QSettings settings = layoutSettings();
    if (!restoreGeometry(settings.value(QStringLiteral("mainWindow/geometry")).toByteArray()))
        resize(fontMetrics().averageCharWidth() * 190, fontMetrics().height() * 48);
    m_browser->restoreLayout(settings);
}

void MainWindow::saveLayout() const
{
    QSettings settings = layoutSettings();
    settings.setValue(QStringLiteral("mainWindow/geometry"), saveGeometry());
    m_browser->saveLayout(settings);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (m_quitting) {
        event->accept();
        return;
    }
    saveLayout();
    // Unsaved editors ask first; the one the user keeps open keeps the program running.
    if (!closeEditors()) {
        event->ignore();
        return;
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const app::ApplicationCore::TerminateReply reply =
        m_core.applicationShouldTerminate([this] { m_browser->sidebar()->saveSidebarSettingsToDatabase(); });
    QApplication::restoreOverrideCursor();
    if (reply == app::ApplicationCore::TerminateReply::Cancel) {
        event->ignore();
        return;
    }
    m_quitting = true;
    event->accept();
    Q_EMIT quitAccepted();
}

} // namespace corvanta::ui
