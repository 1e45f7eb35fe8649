#include "companiesmenu.h"

#include "companies/databasemanager.h"
#include "databasenamewindow.h"

#include <QFileInfo>
#include <algorithm>
#include <numeric>

namespace corvanta::app {

CompaniesMenu::CompaniesMenu(companies::DatabaseManager& manager, DatabaseNameWindow& nameWindow,
                             QObject* parent)
    : QObject(parent)
    , m_manager(manager)
    , m_nameWindow(nameWindow)
{
    connect(&manager, &companies::DatabaseManager::databasesChanged, this,
            &CompaniesMenu::setupMyCompaniesMenu);
}

void CompaniesMenu::myCompaniesMenuConnect(const QString& path)
{
    m_manager.connectDatabase(path);
}

void CompaniesMenu::myCompaniesMenuRename(const QString& path)
{
    m_nameWindow.myCompaniesMenuRename(path);
}

void CompaniesMenu::myCompaniesMenuRemove(const QString& path)
{
    m_manager.removeDatabase(path);
}

void CompaniesMenu::trigger(DatabaseMenuEntry::Action action, const QString& path)
{
    using Action = DatabaseMenuEntry::Action;
    switch (action) {
    case Action::NewLocalDatabase:
        m_nameWindow.newLocalDatabase();
        break;
    case Action::NewRemoteDatabase:
        m_nameWindow.newRemoteDatabase();
        break;
    case Action::AddExistingDatabase:
        m_nameWindow.addExistingDatabase();
        break;
    case Action::SaveLocalDatabaseToDesktop:
        m_manager.saveDatabase();
        break;
    case Action::Connect:
        myCompaniesMenuConnect(path);
        break;
    case Action::Rename:
        myCompaniesMenuRename(path);
        break;
    case Action::RemoveFromMenu:
        myCompaniesMenuRemove(path);
        break;
    case Action::DatabasePath:
    case Action::None:
        break;
    }
}

const QList<DatabaseMenuEntry>& CompaniesMenu::setupMyCompaniesMenu()
{
    using Action = DatabaseMenuEntry::Action;
    using Kind = DatabaseMenuEntry::Kind;
    m_menu.clear();
    const auto command = [&](Action action, const QString& title) {
        DatabaseMenuEntry entry;
        entry.kind = Kind::Command;
        entry.action = action;
        entry.title = title;
        m_menu.append(entry);
    };
    command(Action::NewLocalDatabase, tr("New Local Database"));
    command(Action::NewRemoteDatabase, tr("New Remote Database"));
    command(Action::AddExistingDatabase, tr("Add Existing Database"));
    command(Action::SaveLocalDatabaseToDesktop, tr("Save Local Database to Desktop"));
    DatabaseMenuEntry separator;
    separator.kind = Kind::Separator;
    m_menu.append(separator);

    const QList<companies::DatabaseEntry> entries =
        m_manager.databases().value_or(QList<companies::DatabaseEntry>());
    qsizetype selected = -1;
    for (qsizetype i = 0; i < entries.size() && selected < 0; ++i) {
        if (entries.at(i).selected)
            selected = i;
    }
    QList<qsizetype> order(entries.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](qsizetype a, qsizetype b) {
        return QString::localeAwareCompare(entries.at(a).name, entries.at(b).name) < 0;
    });
    for (const qsizetype i : order) {
        const companies::DatabaseEntry& database = entries.at(i);
        DatabaseMenuEntry entry;
        entry.kind = Kind::Database;
        entry.title = database.name;
        entry.path = database.path;
        entry.checked = i == selected;
        entry.fileExists = QFileInfo::exists(m_manager.locate(database));
        entry.detail = entry.fileExists ? database.path : tr("%1 (not found)").arg(database.path);
        if (entry.checked) {
            entry.items = {{Action::DatabasePath, tr("Database Path")}, {Action::Rename, tr("Rename")}};
        } else {
            entry.items = {{Action::Connect, tr("Connect")},
                           {Action::Rename, tr("Rename")},
                           {Action::RemoveFromMenu, tr("Remove from Menu")},
                           {Action::DatabasePath, tr("Database Path")}};
        }
        m_menu.append(entry);
    }
    Q_EMIT myCompaniesMenuChanged();
    return m_menu;
}

} // namespace corvanta::app
