#include "databasenamewindow.h"

#include "companies/databasemanager.h"
#include "support/prompter.h"

namespace corvanta::app {

DatabaseNameWindow::DatabaseNameWindow(companies::DatabaseManager& manager, support::Prompter& prompter)
    : m_manager(manager)
    , m_prompter(prompter)
{}

void DatabaseNameWindow::newLocalDatabase()
{
    showNameWindow(NewLocalDatabaseAction, {});
}

void DatabaseNameWindow::newRemoteDatabase()
{
    showNameWindow(NewRemoteDatabaseAction, {});
}

void DatabaseNameWindow::addExistingDatabase()
{
    showNameWindow(AddExistingDatabaseAction, {});
}

void DatabaseNameWindow::myCompaniesMenuRename(const QString& path)
{
    const std::optional<companies::DatabaseEntry> entry = m_manager.listedEntry(path);
    if (!entry)
        return;
    m_databaseURLToRenameMenu = path;
    showNameWindow(RenameDatabaseAction, entry->name);
}

void DatabaseNameWindow::showNameWindow(DatabaseAction action, const QString& initial)
{
    m_action = action;
    QString title;
    switch (action) {
    case NewLocalDatabaseAction:
        title = tr("New Local Database");
        break;
    case NewRemoteDatabaseAction:
        title = tr("New Remote Database");
        break;
    case AddExistingDatabaseAction:
        title = tr("Add Existing Database");
        break;
    case RenameDatabaseAction:
        title = tr("Rename Database");
        break;
    }
    // The window stays open until a name is confirmed or it is cancelled.
    for (;;) {
        const std::optional<QString> name = m_prompter.askText(title, tr("Company name:"), initial);
        if (!name)
            return;
        if (!name->trimmed().isEmpty()) {
            databaseNameChanged(*name);
            return;
        }
        refuseEmptyName();
    }
}

bool DatabaseNameWindow::databaseNameChanged(const QString& name)
{
    if (name.trimmed().isEmpty()) {
        refuseEmptyName();
        return false;
    }
    switch (m_action) {
    case NewLocalDatabaseAction:
        return m_manager.addLocalDatabase(name);
    case NewRemoteDatabaseAction:
        return m_manager.addRemoteDatabase(name);
    case AddExistingDatabaseAction:
        return m_manager.addExistingDatabase(name);
    case RenameDatabaseAction:
        return m_manager.renameDatabase(m_databaseURLToRenameMenu, name);
    default:
        return false;
    }
}

void DatabaseNameWindow::refuseEmptyName()
{
    m_prompter.alert(tr("No Company Name"), tr("Enter the name of the company."), {tr("OK")});
}

} // namespace corvanta::app
