#pragma once

#include <QCoreApplication>
#include <QString>

namespace corvanta::companies {
class DatabaseManager;
}
namespace corvanta::support {
class Prompter;
}

namespace corvanta::app {

// The company-name window of the company-databases menu: it asks for the name of a new local
// or remote database, of an existing one being added, or the new name of an entry, and on
// confirmation carries out the pending action through the DatabaseManager.
class DatabaseNameWindow
{
    Q_DECLARE_TR_FUNCTIONS(DatabaseNameWindow)

public:
    // What the confirmation of the window does.
    enum DatabaseAction {
        NewLocalDatabaseAction = 0,
        NewRemoteDatabaseAction = 1,
        AddExistingDatabaseAction = 2,
        RenameDatabaseAction = 10,
    };

    DatabaseNameWindow(companies::DatabaseManager& manager, support::Prompter& prompter);

    // Shows the window for a new local, new remote or existing database.
    void newLocalDatabase();
    void newRemoteDatabase();
    void addExistingDatabase();
    // Shows the window for the entry of `path`, filled with its current name.
    void myCompaniesMenuRename(const QString& path);

    // Carries out the pending action with the entered name; false when nothing changed. An
    // empty name is refused with "No Company Name".
    bool databaseNameChanged(const QString& name);
    int myCompanyDatabaseAction() const { return m_action; }

private:
    void showNameWindow(DatabaseAction action, const QString& initial);
    void refuseEmptyName();

    companies::DatabaseManager& m_manager;
    support::Prompter& m_prompter;
    int m_action = NewLocalDatabaseAction;
    QString m_databaseURLToRenameMenu;
};

} // namespace corvanta::app
