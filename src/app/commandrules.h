#pragma once

#include <optional>

namespace corvanta::app {

// The global commands of the menus and the tool bar that go to the window or view in front.
enum class Command { New, Edit, Duplicate, Delete, Save, Preview, Print, Other };

// What the window in front (the key window) is.
enum class WindowKind {
    None,
    Main,
    DocumentEditor,
    ClientEditor,
    ItemEditor,
    ToDoEditor,
    TaxesList,
    UnitsList,
    TemplateLibrary,
    BanksList,
    PaymentTypesList,
    EmailTemplatesList,
    DueDaysList,
    Other, // a sheet, a preview, an import window …
};

// The main window's four views.
enum class MainView { Browser, Calendar, Reports, DesignEditor };

// Where a command goes.
enum class CommandTarget {
    None,
    KeyWindowRows, // the document editor's rows or a list window's rows
    KeyEditor,     // the editor in front saves
    Browser,
    Calendar,
    DesignEditor,
    MainWindow, // preview and print, handed on unchanged
};

// What the rules look at, read off the windows when a menu opens or the selection changes.
struct CommandState
{
    WindowKind keyWindow = WindowKind::None;
    MainView currentView = MainView::Browser;

    // The key window when it is the document editor or a list window.
    bool canAdd = false;
    int selectedRowCount = 0;
    // The keyboard focus is in a text field of the key window: the row commands stay with the text.
    bool textViewIsFirstResponder = false;

    // The browser.
    int browserSelectionCount = 0;
    // The list kind of the record its detail page shows (3 for documents); 0 for none.
    int browserShownKind = 0;

    // The calendar and the design editor.
    bool calendarHasEditedObject = false;
    bool designElementSelected = false;
    bool elementViewIsFirstResponder = false;
};

// The routing and enabling rules of the global commands. New, Edit, Duplicate and Delete go to
// the first of: the rows of the document editor or list window in front; the browser, the
// calendar or the design editor when it is the main window's view and the main window is in
// front. Save goes to the editor in front. Each command is enabled by the state of the place
// it would go to.
class CommandRules
{
public:
    static CommandTarget route(Command command, const CommandState& state);
    static bool isEnabled(Command command, const CommandState& state);

    // The windows whose rows New, Edit, Duplicate and Delete act on.
    static bool hasRowCommands(WindowKind window);
    // The editors that save with Save.
    static bool isEditor(WindowKind window);
};

// The windows the menus open by their numeric tag.
enum class WindowTag {
    Client = 1,
    Item = 2,
    Document = 3,
    ToDo = 4,
    CustomFields = 100,
    MyCompany = 101,
    Currencies = 102,
    Banks = 103,
    PaymentTypes = 104,
    Taxes = 105,
    Units = 106,
    DesignTemplates = 107,
    EmailTemplates = 108,
    DueDays = 109,
};

class WindowTags
{
public:
    // The window a tag opens; nothing for any other tag.
    static std::optional<WindowTag> of(int tag);
};

} // namespace corvanta::app
