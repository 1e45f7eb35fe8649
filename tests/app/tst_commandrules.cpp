#include "app/commandrules.h"

#include <QTest>

using namespace corvanta::app;

Q_DECLARE_METATYPE(corvanta::app::Command)
Q_DECLARE_METATYPE(corvanta::app::CommandState)
Q_DECLARE_METATYPE(corvanta::app::CommandTarget)

namespace {

CommandState mainWindow(MainView view, int browserSelection = 1)
{
    CommandState state;
    state.keyWindow = WindowKind::Main;
    state.currentView = view;
    state.browserSelectionCount = browserSelection;
    return state;
}

CommandState keyWindow(WindowKind window, int selectedRows, bool typing = false, bool canAdd = true)
{
    CommandState state = mainWindow(MainView::Browser);
    state.keyWindow = window;
    state.selectedRowCount = selectedRows;
    state.textViewIsFirstResponder = typing;
    state.canAdd = canAdd;
    return state;
}

} // namespace

class TestCommandRules : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void routing_data();
    void routing();
    void enabling_data();
    void enabling();
    void windowTags();
};

void TestCommandRules::routing_data()
{
    QTest::addColumn<Command>("command");
    QTest::addColumn<CommandState>("state");
    QTest::addColumn<CommandTarget>("target");

    CommandState sheet = mainWindow(MainView::Browser);
    sheet.keyWindow = WindowKind::Other;
    CommandState calendarBehindEditor = mainWindow(MainView::Calendar);
    calendarBehindEditor.keyWindow = WindowKind::ClientEditor;

    QTest::newRow("delete in the document editor acts on its rows")
        << Command::Delete << keyWindow(WindowKind::DocumentEditor, 1) << CommandTarget::KeyWindowRows;
    QTest::newRow("new in the taxes list adds a row")
        << Command::New << keyWindow(WindowKind::TaxesList, 0) << CommandTarget::KeyWindowRows;
    QTest::newRow("edit in the browser")
        << Command::Edit << mainWindow(MainView::Browser) << CommandTarget::Browser;
    QTest::newRow("duplicate in the calendar")
        << Command::Duplicate << mainWindow(MainView::Calendar) << CommandTarget::Calendar;
    QTest::newRow("delete in the design editor")
        << Command::Delete << mainWindow(MainView::DesignEditor) << CommandTarget::DesignEditor;
    QTest::newRow("new in the reports view goes nowhere")
        << Command::New << mainWindow(MainView::Reports) << CommandTarget::None;
    QTest::newRow("the client editor has no row commands, the view behind it gets none")
        << Command::Delete << calendarBehindEditor << CommandTarget::None;
    QTest::newRow("a sheet in front takes no row command") << Command::Delete << sheet << CommandTarget::None;
    QTest::newRow("save in the to-do editor")
        << Command::Save << keyWindow(WindowKind::ToDoEditor, 0) << CommandTarget::KeyEditor;
    QTest::newRow("save in a list window goes nowhere")
        << Command::Save << keyWindow(WindowKind::UnitsList, 1) << CommandTarget::None;
    QTest::newRow("print is the main window's")
        << Command::Print << keyWindow(WindowKind::DocumentEditor, 1) << CommandTarget::MainWindow;
}

void TestCommandRules::routing()
{
    QFETCH(Command, command);
    QFETCH(CommandState, state);
    QFETCH(CommandTarget, target);
    QCOMPARE(CommandRules::route(command, state), target);
}

void TestCommandRules::enabling_data()
{
    QTest::addColumn<Command>("command");
    QTest::addColumn<CommandState>("state");
    QTest::addColumn<bool>("enabled");

    CommandState documents = mainWindow(MainView::Browser);
    documents.browserShownKind = 3;
    CommandState twoDocuments = documents;
    twoDocuments.browserSelectionCount = 2;
    CommandState clients = mainWindow(MainView::Browser);
    clients.browserShownKind = 1;
    CommandState calendarWithout = mainWindow(MainView::Calendar);
    CommandState calendarWith = calendarWithout;
    calendarWith.calendarHasEditedObject = true;
    CommandState elementSelected = mainWindow(MainView::DesignEditor);
    elementSelected.designElementSelected = true;
    CommandState elementFocused = elementSelected;
    elementFocused.elementViewIsFirstResponder = true;

    QTest::newRow("list window: delete one row")
        << Command::Delete << keyWindow(WindowKind::BanksList, 1) << true;
    QTest::newRow("list window: delete two rows")
        << Command::Delete << keyWindow(WindowKind::BanksList, 2) << false;
    QTest::newRow("list window: delete while typing")
        << Command::Delete << keyWindow(WindowKind::BanksList, 1, true) << false;
    QTest::newRow("document editor: edit a row while typing")
        << Command::Edit << keyWindow(WindowKind::DocumentEditor, 1, true) << false;
    QTest::newRow("list window: new while typing still adds")
        << Command::New << keyWindow(WindowKind::DueDaysList, 0, true) << true;
    QTest::newRow("list window: new when it cannot add")
        << Command::New << keyWindow(WindowKind::DueDaysList, 0, false, false) << false;
    QTest::newRow("browser: new with one record") << Command::New << mainWindow(MainView::Browser) << true;
    QTest::newRow("browser: new with nothing selected")
        << Command::New << mainWindow(MainView::Browser, 0) << false;
    QTest::newRow("browser: duplicate two records") << Command::Duplicate << twoDocuments << false;
    QTest::newRow("calendar without an edited object") << Command::Edit << calendarWithout << false;
    QTest::newRow("calendar with an edited object") << Command::Delete << calendarWith << true;
    QTest::newRow("design editor: new with an element selected") << Command::New << elementSelected << true;
    QTest::newRow("design editor: delete outside the element view")
        << Command::Delete << elementSelected << false;
    QTest::newRow("design editor: delete in the element view") << Command::Delete << elementFocused << true;
    QTest::newRow("save in the main window") << Command::Save << mainWindow(MainView::Browser) << false;
    QTest::newRow("save in the item editor") << Command::Save << keyWindow(WindowKind::ItemEditor, 0) << true;
    QTest::newRow("preview: browser showing one document") << Command::Preview << documents << true;
    QTest::newRow("preview: browser showing two documents") << Command::Preview << twoDocuments << false;
    QTest::newRow("preview: browser showing clients") << Command::Preview << clients << false;
    QTest::newRow("preview: reports view") << Command::Preview << mainWindow(MainView::Reports, 0) << true;
    QTest::newRow("preview: document editor")
        << Command::Preview << keyWindow(WindowKind::DocumentEditor, 0) << true;
    QTest::newRow("print is always enabled") << Command::Print << mainWindow(MainView::Browser, 0) << true;
}

void TestCommandRules::enabling()
{
    QFETCH(Command, command);
    QFETCH(CommandState, state);
    QFETCH(bool, enabled);
    QCOMPARE(CommandRules::isEnabled(command, state), enabled);
}

void TestCommandRules::windowTags()
{
    QCOMPARE(WindowTags::of(3), WindowTag::Document);
    QCOMPARE(WindowTags::of(109), WindowTag::DueDays);
    QVERIFY(!WindowTags::of(0));
    QVERIFY(!WindowTags::of(5));
    QVERIFY(!WindowTags::of(110));
}

QTEST_GUILESS_MAIN(TestCommandRules)
#include "tst_commandrules.moc"
