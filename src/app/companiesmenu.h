#pragma once

#include "databasemenuentry.h"

#include <QCoreApplication>
#include <QObject>

namespace corvanta::companies {
class DatabaseManager;
}

namespace corvanta::app {

class DatabaseNameWindow;

// The company-databases menu as data: four commands, a separator and one entry per known
// database with its own actions, rebuilt from the database list whenever the list changes.
// The desktop shows the entries and hands a chosen action back to trigger().
class CompaniesMenu : public QObject
{
    Q_OBJECT

public:
    CompaniesMenu(companies::DatabaseManager& manager, DatabaseNameWindow& nameWindow,
                  QObject* parent = nullptr);

    // Rebuilds the menu from the list: the commands, then the databases sorted by name (a
    // stable sort keeps equal names in list order); the selected one is checked and offers only
    // "Database Path" and "Rename".
    const QList<DatabaseMenuEntry>& setupMyCompaniesMenu();
    const QList<DatabaseMenuEntry>& myCompaniesMenu() const { return m_menu; }

    // Runs the action of a menu entry; `path` is the entry's.
    void trigger(DatabaseMenuEntry::Action action, const QString& path = {});
    void myCompaniesMenuConnect(const QString& path);
    void myCompaniesMenuRename(const QString& path);
    void myCompaniesMenuRemove(const QString& path);

Q_SIGNALS:
    void myCompaniesMenuChanged();

private:
    companies::DatabaseManager& m_manager;
    DatabaseNameWindow& m_nameWindow;
    QList<DatabaseMenuEntry> m_menu;
};

} // namespace corvanta::app
