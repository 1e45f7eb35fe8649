#include "commandrules.h"

namespace corvanta::app {

namespace {

bool isRowCommand(Command command)
{
    return command == Command::New || command == Command::Edit || command == Command::Duplicate ||
           command == Command::Delete;
}

bool mainWindowShows(const CommandState& state, MainView view)
{
    return state.keyWindow == WindowKind::Main && state.currentView == view;
}

} // namespace

bool CommandRules::hasRowCommands(WindowKind window)
{
    switch (window) {
    case WindowKind::DocumentEditor:
    case WindowKind::TaxesList:
    case WindowKind::UnitsList:
    case WindowKind::TemplateLibrary:
    case WindowKind::BanksList:
    case WindowKind::PaymentTypesList:
    case WindowKind::EmailTemplatesList:
    case WindowKind::DueDaysList:
        return true;
    default:
        return false;
    }
}

bool CommandRules::isEditor(WindowKind window)
{
    return window == WindowKind::DocumentEditor || window == WindowKind::ClientEditor ||
           window == WindowKind::ItemEditor || window == WindowKind::ToDoEditor;
}

CommandTarget CommandRules::route(Command command, const CommandState& state)
{
    if (isRowCommand(command)) {
        if (hasRowCommands(state.keyWindow))
            return CommandTarget::KeyWindowRows;
        if (mainWindowShows(state, MainView::Browser))
            return CommandTarget::Browser;
        if (mainWindowShows(state, MainView::Calendar))
            return CommandTarget::Calendar;
        if (mainWindowShows(state, MainView::DesignEditor))
            return CommandTarget::DesignEditor;
        return CommandTarget::None;
    }
    switch (command) {
    case Command::Save:
        return isEditor(state.keyWindow) ? CommandTarget::KeyEditor : CommandTarget::None;
    case Command::Preview:
    case Command::Print:
        return CommandTarget::MainWindow;
    default:
        return CommandTarget::None;
    }
}

bool CommandRules::isEnabled(Command command, const CommandState& state)
{
    switch (command) {
    case Command::Save:
        return isEditor(state.keyWindow);
    case Command::Preview:
        return state.keyWindow == WindowKind::DocumentEditor || state.currentView == MainView::DesignEditor ||
               state.currentView == MainView::Reports ||
               (state.currentView == MainView::Browser && state.browserShownKind == 3 &&
                state.browserSelectionCount == 1);
    case Command::Print:
    case Command::Other:
        return true;
    default:
        break;
    }

    // New, Edit, Duplicate and Delete follow the place they would go to.
    const bool isNew = command == Command::New;
    switch (route(command, state)) {
    case CommandTarget::KeyWindowRows:
        if (isNew)
            return state.canAdd;
        return state.selectedRowCount == 1 && !state.textViewIsFirstResponder;
    case CommandTarget::Browser:
        return state.browserSelectionCount == 1;
    case CommandTarget::Calendar:
        return state.calendarHasEditedObject;
    case CommandTarget::DesignEditor:
        return state.designElementSelected && (isNew || state.elementViewIsFirstResponder);
    default:
        return false;
    }
}

std::optional<WindowTag> WindowTags::of(int tag)
{
    if ((tag >= 1 && tag <= 4) || (tag >= 100 && tag <= 109))
        return static_cast<WindowTag>(tag);
    return std::nullopt;
}

} // namespace corvanta::app
