#include "app/companiesmenu.h"
#include "browse/sidebarmodel.h"
#include "editors/documentcontroller.h"
#include "ui/browsercommands.h"
#include "ui/browserview.h"
#include "ui/documenteditorwindow.h"
#include "ui/editorwindows.h"
#include "ui/listwindows.h"
#include "ui/mainwindow.h"
#include "ui/recordlistview.h"
#include "ui/sidebarview.h"
#include "uitestsupport.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QTableView>
#include <QTemporaryDir>
#include <QTreeView>
#include <QVBoxLayout>

using namespace corvanta;
using namespace corvanta::ui;
using namespace corvanta::ui::testing;
using app::Command;
using app::WindowKind;

namespace {

// A window with rows, as the list windows and the document editor tell the rules about
// themselves; it counts the row commands it receives.
class RowsWindow : public QWidget
{
    Q_OBJECT

public:
    RowsWindow(WindowKind kind, int selectedRows)
    {
        setProperty(MainWindow::windowKindProperty(), int(kind));
        setProperty("canAdd", true);
        setProperty("selectedRowCount", selectedRows);
        auto* layout = new QVBoxLayout(this);
        field = new QLineEdit;
        layout->addWidget(field);
    }

    QLineEdit* field = nullptr;
    int deleted = 0;

public Q_SLOTS:
    void addRow() {}
    void deleteRow() { ++deleted; }
};

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void browserCommands_data();
    void browserCommands();
    void keyWindowRows_data();
    void keyWindowRows();
    void windowTags_data();
    void windowTags();
    void importsAndPreferences();
    void companiesMenu();
    void quittingWritesTheBackup();
    void quittingAsksEditorsFirst();
    void addToDocument();

private:
    void selectNode(const QString& name);
    void activate(QWidget* window);
    bool enabled(Command command) { return m_window->commandAction(command)->isEnabled(); }

    std::unique_ptr<UiCompany> m_company;
    std::unique_ptr<MainWindow> m_window;
};

void TestMainWindow::init()
{
    m_company = std::make_unique<UiCompany>();
    m_company->addClient(s("Acme Ltd"));
    m_company->addInvoice(s("INV-0001"), 120);
    m_window = std::make_unique<MainWindow>(m_company->core(), m_company->prompter());
    activate(m_window.get());
}

void TestMainWindow::cleanup()
{
    m_window.reset();
    m_company.reset();
}

void TestMainWindow::activate(QWidget* window)
{
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
    m_window->updateCommandStates();
}

void TestMainWindow::selectNode(const QString& name)
{
    SidebarView* sidebar = m_window->browserView()->sidebar();
    const QModelIndex index = sidebar->model()->indexOf(m_company->category(name));
    QVERIFY2(index.isValid(), qPrintable(name));
    sidebar->tree()->setCurrentIndex(index);
}

void TestMainWindow::browserCommands_data()
{
    QTest::addColumn<QString>("node");
    QTest::addColumn<bool>("selectRow");
    QTest::addColumn<QList<bool>>("expected"); // Duplicate, Delete, Preview, New, Edit, Save

    QTest::newRow("a client selected")
        << s("All Clients") << true << QList<bool>{true, true, false, true, true, false};
    QTest::newRow("an invoice selected")
        << s("All Documents") << true << QList<bool>{true, true, true, true, true, false};
    QTest::newRow("nothing selected")
        << s("All Clients") << false << QList<bool>{false, false, false, false, false, false};
}

void TestMainWindow::browserCommands()
{
    QFETCH(QString, node);
    QFETCH(bool, selectRow);
    QFETCH(QList<bool>, expected);

    selectNode(node);
    QTableView* table = m_window->browserView()->recordList()->table();
    table->clearSelection();
    if (selectRow)
        table->selectRow(0);
    table->setFocus();
    m_window->updateCommandStates();
    // Save belongs to the editors, never to the browser.
    const QList<Command> commands{Command::Duplicate, Command::Delete, Command::Preview,
                                  Command::New,       Command::Edit,   Command::Save};
    for (int i = 0; i < commands.size(); ++i)
        QVERIFY2(enabled(commands.at(i)) == expected.at(i),
                 qPrintable(m_window->commandAction(commands.at(i))->text()));
}

void TestMainWindow::keyWindowRows_data()
{
    QTest::addColumn<WindowKind>("kind");
    QTest::addColumn<int>("selectedRows");
    QTest::addColumn<bool>("typing");
    QTest::addColumn<bool>("enabled");

    QTest::newRow("list window, one row") << WindowKind::TaxesList << 1 << false << true;
    QTest::newRow("list window, two rows") << WindowKind::TaxesList << 2 << false << false;
    QTest::newRow("list window, typing in a field") << WindowKind::TaxesList << 1 << true << false;
    QTest::newRow("a window without rows") << WindowKind::Other << 1 << false << false;
}

void TestMainWindow::keyWindowRows()
{
    QFETCH(WindowKind, kind);
    QFETCH(int, selectedRows);
    QFETCH(bool, typing);
    QFETCH(bool, enabled);

    selectNode(s("All Clients"));
    m_window->browserView()->recordList()->table()->selectRow(0);
    RowsWindow rows(kind, selectedRows);
    activate(&rows);
    if (typing) {
        rows.field->setFocus();
        QTRY_VERIFY(rows.field->hasFocus());
    } else {
        rows.setFocus();
    }
    m_window->updateCommandStates();
    QCOMPARE(this->enabled(Command::Delete), enabled);

    // The command goes to the window in front, never to the browser's client behind it.
    m_window->commandAction(Command::Delete)->trigger();
    QCOMPARE(rows.deleted, enabled ? 1 : 0);
    QVERIFY(m_company->prompter().questions().isEmpty());
    QVERIFY(m_company->client(s("Acme Ltd")));
}

void TestMainWindow::windowTags_data()
{
    QTest::addColumn<int>("tag");
    QTest::addColumn<QString>("className");
    QTest::addColumn<WindowKind>("kind");
    // An editor is new every time; every other window exists once and comes to the front.
    QTest::addColumn<bool>("single");

    QTest::newRow("1 client") << 1 << s("corvanta::ui::ClientEditorWindow") << WindowKind::ClientEditor
                              << false;
    QTest::newRow("3 document") << 3 << s("corvanta::ui::DocumentEditorWindow") << WindowKind::DocumentEditor
                                << false;
    QTest::newRow("100 custom fields")
        << 100 << s("corvanta::ui::CustomFieldsWindow") << WindowKind::Other << true;
    QTest::newRow("101 my company") << 101 << s("corvanta::ui::MyCompanyWindow") << WindowKind::Other << true;
    QTest::newRow("102 currencies") << 102 << s("corvanta::ui::ReferenceListWindow") << WindowKind::Other
                                    << true;
    QTest::newRow("103 banks") << 103 << s("corvanta::ui::ReferenceListWindow") << WindowKind::BanksList
                               << true;
    QTest::newRow("104 payment types")
        << 104 << s("corvanta::ui::ReferenceListWindow") << WindowKind::PaymentTypesList << true;
    QTest::newRow("105 taxes") << 105 << s("corvanta::ui::ReferenceListWindow") << WindowKind::TaxesList
                               << true;
    QTest::newRow("106 units") << 106 << s("corvanta::ui::ReferenceListWindow") << WindowKind::UnitsList
                               << true;
    QTest::newRow("107 template library")
        << 107 << s("corvanta::ui::TemplateLibraryWindow") << WindowKind::TemplateLibrary << true;
    QTest::newRow("108 e-mail templates")
        << 108 << s("corvanta::ui::EmailTemplatesWindow") << WindowKind::EmailTemplatesList << true;
    QTest::newRow("109 due days") << 109 << s("corvanta::ui::ReferenceListWindow") << WindowKind::DueDaysList
                                  << true;
}

void TestMainWindow::windowTags()
{
    QFETCH(int, tag);
    QFETCH(QString, className);
    QFETCH(WindowKind, kind);
    QFETCH(bool, single);

    QCOMPARE(m_window->findChildren<QAction*>(QRegularExpression(s("^actionWindow"))).size(), 14);
    m_window->updateCommandStates();
    auto* action = m_window->findChild<QAction*>(s("actionWindow%1").arg(tag));
    QVERIFY(action && action->isEnabled());

    const auto openedBy = [tag, this] {
        const QWidgetList before = QApplication::topLevelWidgets();
        if (!m_window->openWindow(tag))
            return QWidgetList();
        QWidgetList opened = QApplication::topLevelWidgets();
        opened.removeIf(
            [&before](QWidget* widget) { return before.contains(widget) || !widget->isVisible(); });
        return opened;
    };
    QWidgetList opened = openedBy();
    QCOMPARE(opened.size(), 1);
    QPointer<QWidget> window = opened.first();
    QCOMPARE(QString::fromLatin1(window->metaObject()->className()), className);
    QCOMPARE(WindowKind(window->property(MainWindow::windowKindProperty()).toInt()), kind);
    // A list window or the document editor in front takes Edit ▸ New as a new row of its own.
    const bool rows = kind == WindowKind::DocumentEditor ||
                      (kind >= WindowKind::TaxesList && kind <= WindowKind::DueDaysList);
    activate(window);
    QCOMPARE(enabled(Command::New), rows);
    if (rows && kind != WindowKind::DocumentEditor) {
        m_window->commandAction(Command::New)->trigger();
        QCOMPARE(window->property("selectedRowCount").toInt(), 1);
    }

    window->showMinimized();
    opened = openedBy();
    QCOMPARE(opened.size(), single ? 0 : 1);
    if (single)
        QVERIFY(!window->isMinimized());
    else
        QVERIFY(opened.first()->close());
    // Nothing was typed: every window closes without a question.
    QVERIFY(window->close());
    QVERIFY(m_company->prompter().questions().isEmpty());
    QVERIFY(!m_window->openWindow(5));
    QVERIFY(!m_window->openWindow(110));
}

void TestMainWindow::importsAndPreferences()
{
    QTemporaryDir folder;
    const QString file = folder.filePath(s("clients.csv"));
    QFile csv(file);
    QVERIFY(csv.open(QIODevice::WriteOnly));
    csv.write("Nordwind GmbH;Berlin\nSolis Ltd;Leeds\n");
    csv.close();

    QPointer<QWidget> clients = m_window->listWindows()->importClients(file);
    QVERIFY(clients);
    QCOMPARE(clients->objectName(), s("ImportClientsWindow"));
    // While it is open, a second file only brings the window forward.
    QCOMPARE(m_window->listWindows()->importClients(folder.filePath(s("other.csv"))), clients.data());
    QVERIFY(!m_window->listWindows()->importItems(folder.filePath(s("missing.csv"))));
    QCOMPARE(m_company->prompter().titles(), QStringList{s("Warning")});

    QWidget* addressBook = m_window->listWindows()->importAddressBook();
    QVERIFY(addressBook);
    QCOMPARE(addressBook->objectName(), s("ImportAddressBookWindow"));

    auto* preferences = m_window->findChild<QAction*>(s("actionPreferences"));
    QVERIFY(preferences && preferences->isEnabled());
    preferences->trigger();
    QVERIFY(m_window->listWindows()->windows().size() == 3);
    const QList<QWidget*> open = m_window->listWindows()->windows();
    QVERIFY(std::any_of(open.begin(), open.end(), [](QWidget* window) {
        return QString::fromLatin1(window->metaObject()->className()) == s("corvanta::ui::PreferencesWindow");
    }));
}

void TestMainWindow::companiesMenu()
{
    auto* menu = m_window->findChild<QMenu*>(s("companyDatabasesMenu"));
    QVERIFY(menu);
    QStringList titles;
    for (QAction* action : menu->actions())
        titles << (action->isSeparator() ? s("-") : action->text());
    QCOMPARE(titles,
             (QStringList{s("New Local Database"), s("New Remote Database"), s("Add Existing Database"),
                          s("Save Local Database to Desktop"), s("-"), s("My Company")}));
    QAction* open = menu->actions().last();
    QVERIFY(open->isChecked());
    QStringList items;
    for (QAction* action : open->menu()->actions())
        items << action->text();
    QCOMPARE(items, (QStringList{s("Database Path"), s("Rename")}));
}

void TestMainWindow::quittingWritesTheBackup()
{
    selectNode(s("All Documents"));
    QVERIFY(m_window->close());

    const QDir backups(QDir(m_company->folders().folders().documents).filePath(s("Corvanta Backup")));
    QCOMPARE(backups.entryList({s("CorvantaBackup*.zip")}, QDir::Files),
             QStringList{s("CorvantaBackup%1.zip").arg(QDate::currentDate().toString(s("yyyyMMdd")))});
    // The sidebar's selection was kept with the company.
    store::Record* company = m_company->main().fetchFirst(store::FetchRequest(s("MyCompany")));
    const QList<store::Record*> selected = company->relatedList(s("category_selected"));
    QCOMPARE(selected.size(), 1);
    QCOMPARE(selected.first()->value(s("name")).toString(), s("All Documents"));
}

void TestMainWindow::quittingAsksEditorsFirst()
{
    QVERIFY(m_window->openWindow(1));
    QWidget* client = m_window->editorWindows()->windows().value(0);
    QVERIFY(client);
    auto* name = client->findChild<QLineEdit*>(s("firstNameField"));
    name->setFocus();
    QTest::keyClicks(name, s("Beta Works"));

    // Cancel in the editor's question keeps the program running with the editor open.
    m_company->prompter().addAnswer(s("Cancel"));
    QVERIFY(!m_window->close());
    QCOMPARE(m_company->prompter().titles(), QStringList{s("Save this client?")});
    QVERIFY(client->isVisible());
    QVERIFY(m_window->isVisible());

    // Saving from the question stores the client, then the program quits.
    m_company->prompter().addAnswer(s("Save"));
    QVERIFY(m_window->close());
    QVERIFY(m_company->client(s("Beta Works")));
}

void TestMainWindow::addToDocument()
{
    store::Record* item = m_company->main().insertRecord(
        s("Items"),
        {{s("name"), s("Widget")}, {s("custom_price01"), 12.5}, {s("identifier"), support::UUID()}});
    m_company->save();
    BrowserCommands* commands = m_window->browserView()->commands();
    RecordListView* list = m_window->browserView()->recordList();

    // Without an open document a new invoice takes the client.
    selectNode(s("All Clients"));
    QVERIFY(list->selectRecord(m_company->client(s("Acme Ltd"))->ref()));
    QVERIFY(commands->isEnabled(browse::RecordCommand::AddToDocument));
    commands->addToDocument();
    const QList<QWidget*> windows = m_window->editorWindows()->windows();
    QCOMPARE(windows.size(), 1);
    auto* editor = qobject_cast<DocumentEditorWindow*>(windows.first());
    QVERIFY(editor && editor->isVisible());
    QCOMPARE(editor->controller().document()->value(s("client_full_name")).toString(), s("Acme Ltd"));

    // The item goes into that invoice as a row; no second editor opens.
    selectNode(s("All Items"));
    QVERIFY(list->selectRecord(item->ref()));
    commands->addToDocument();
    QCOMPARE(m_window->editorWindows()->windows().size(), 1);
    QCOMPARE(editor->controller().rows().size(), 1);
    QCOMPARE(editor->controller().rows().first()->value(s("unit_price")).toDouble(), 12.5);
    // A document is not added to a document.
    selectNode(s("All Documents"));
    list->table()->selectRow(0);
    QVERIFY(!commands->isEnabled(browse::RecordCommand::AddToDocument));

    m_company->prompter().addAnswer(s("Don't Save"));
    QVERIFY(editor->close());
}

CORVANTA_UI_TEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
