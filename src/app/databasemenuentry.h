#pragma once

#include <QList>
#include <QString>

namespace corvanta::app {

// One entry of the company-databases menu as data: the desktop shows it, and hands a chosen
// action with the entry's path back to CompaniesMenu::trigger.
struct DatabaseMenuEntry
{
    enum class Kind {
        Command,   // one of the four commands at the top
        Separator, // between the commands and the databases
        Database,  // one known database, with its own actions
    };

    enum class Action {
        None,
        NewLocalDatabase,
        NewRemoteDatabase,
        AddExistingDatabase,
        SaveLocalDatabaseToDesktop,
        Connect,
        Rename,
        RemoveFromMenu,
        DatabasePath, // shows `detail` (the path) in a 10-point font; does nothing when chosen
    };

    struct Item
    {
        Action action = Action::None;
        QString title;
    };

    Kind kind = Kind::Command;
    QString title;
    Action action = Action::None; // what a Command does
    QString path;                 // the database an entry stands for
    QString detail;               // the path as shown under "Database Path"
    bool checked = false;         // the selected database
    bool fileExists = true;       // whether the database's file is there
    QList<Item> items;            // the actions of a Database entry, in menu order
};

} // namespace corvanta::app
