#include "companiesmenuview.h"

#include "app/companiesmenu.h"

namespace corvanta::ui {

namespace {

QString iconOf(app::DatabaseMenuEntry::Action action)
{
    using Action = app::DatabaseMenuEntry::Action;
    switch (action) {
    case Action::NewLocalDatabase:
        return QStringLiteral("document-new");
    case Action::NewRemoteDatabase:
        return QStringLiteral("folder-remote");
    case Action::AddExistingDatabase:
        return QStringLiteral("document-open");
    case Action::SaveLocalDatabaseToDesktop:
        return QStringLiteral("document-save-as");
    case Action::Connect:
        return QStringLiteral("network-connect");
    case Action::Rename:
        return QStringLiteral("edit-rename");
    case Action::RemoveFromMenu:
        return QStringLiteral("list-remove");
    default:
        return {};
    }
}

} // namespace

CompaniesMenuView::CompaniesMenuView(app::CompaniesMenu& menu, QWidget* parent)
    : QMenu(tr("Company &Databases"), parent)
    , m_menu(menu)
{
    setObjectName(QStringLiteral("companyDatabasesMenu"));
    setIcon(QIcon::fromTheme(QStringLiteral("office-database")));
    connect(&m_menu, &app::CompaniesMenu::myCompaniesMenuChanged, this, &CompaniesMenuView::rebuild);
    rebuild();
}

void CompaniesMenuView::rebuild()
{
    using Entry = app::DatabaseMenuEntry;
    clear();
    for (const Entry& entry : m_menu.myCompaniesMenu()) {
        switch (entry.kind) {
        case Entry::Kind::Separator:
            addSeparator();
            break;
        case Entry::Kind::Command: {
            QAction* action = addAction(QIcon::fromTheme(iconOf(entry.action)), entry.title);
            const Entry::Action what = entry.action;
            // The entries are rebuilt while an action runs: the slot keeps its own copy of what it needs.
            connect(
                action, &QAction::triggered, this, [this, what] { m_menu.trigger(what); },
                Qt::QueuedConnection);
            break;
        }
        case Entry::Kind::Database: {
            QMenu* database = addMenu(entry.title);
            database->setObjectName(QStringLiteral("database:") + entry.path);
            database->menuAction()->setCheckable(true);
            database->menuAction()->setChecked(entry.checked);
            if (!entry.fileExists)
                database->setToolTip(tr("The file of this database is not there."));
            for (const Entry::Item& item : entry.items) {
                if (item.action == Entry::Action::DatabasePath) {
                    QMenu* pathMenu = database->addMenu(item.title);
                    QAction* path = pathMenu->addAction(entry.detail);
                    QFont small = path->font();
                    small.setPointSize(10);
                    path->setFont(small);
                    path->setEnabled(false);
                    continue;
                }
                QAction* action = database->addAction(QIcon::fromTheme(iconOf(item.action)), item.title);
                const Entry::Action what = item.action;
                const QString path = entry.path;
                connect(
                    action, &QAction::triggered, this, [this, what, path] { m_menu.trigger(what, path); },
                    Qt::QueuedConnection);
            }
            break;
        }
        }
    }
}

} // namespace corvanta::ui
