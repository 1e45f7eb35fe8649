#include "../companies/companiestestsupport.h"
#include "app/companiesmenu.h"
#include "app/databasenamewindow.h"
#include "companies/databasemanager.h"

#include <QSignalSpy>

using namespace corvanta::app;
using namespace corvanta::companies::testing;
using corvanta::companies::DatabaseEntry;
using corvanta::companies::DatabaseManager;
using corvanta::support::ScriptedPrompter;
using Action = DatabaseMenuEntry::Action;

namespace {

QStringList titlesOf(const QList<DatabaseMenuEntry::Item>& items)
{
    QStringList titles;
    for (const auto& item : items)
        titles << item.title;
    return titles;
}

// The company-databases menu of a start on the scratch folders, as the application builds it.
struct Menu
{
    ScratchFolders folders;
    ScriptedPrompter prompter;
    DatabaseManager manager{prompter, folders.folders()};
    DatabaseNameWindow nameWindow{manager, prompter};
    CompaniesMenu menu{manager, nameWindow};

    QStringList names() const
    {
        QStringList result;
        for (const DatabaseEntry& entry : manager.databases().value_or(QList<DatabaseEntry>()))
            result << entry.name;
        return result;
    }
};

} // namespace

// The menu and its name window: what they offer, what they ask, and that the menu follows
// every change of the list.
class tst_CompaniesMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entries();
    void nameWindow_data();
    void nameWindow();
    void nameWindowRefusesAnEmptyName();
    void renameStartsFromTheCurrentName();
    void menuFollowsTheList();
};

void tst_CompaniesMenu::entries()
{
    Menu m;
    m.folders.writeList({ScratchFolders::entry(s("Zeta"), m.folders.app(), s("Z.cvdb"), false),
                         ScratchFolders::entry(s("Acme"), m.folders.app(), s("A1.cvdb"), false),
                         ScratchFolders::entry(s("Mine"), m.folders.app(), s("M.cvdb"), true),
                         ScratchFolders::entry(s("Acme"), m.folders.app(), s("A2.cvdb"), false)});
    for (const char* file : {"Z.cvdb", "A1.cvdb", "M.cvdb"})
        ScratchFolders::writeBytes(m.folders.app(s(file)), {});
    const QList<DatabaseMenuEntry> menu = m.menu.setupMyCompaniesMenu();
    QStringList titles;
    for (const DatabaseMenuEntry& entry : menu)
        titles << entry.title;
    QCOMPARE(titles, (QStringList{s("New Local Database"), s("New Remote Database"),
                                  s("Add Existing Database"), s("Save Local Database to Desktop"), QString(),
                                  s("Acme"), s("Acme"), s("Mine"), s("Zeta")}));
    QCOMPARE(int(menu.at(4).kind), int(DatabaseMenuEntry::Kind::Separator));
    QCOMPARE(int(menu.at(3).action), int(Action::SaveLocalDatabaseToDesktop));
    // Equal names keep the order of the list.
    QCOMPARE(menu.at(5).path, m.folders.app(s("A1.cvdb")));
    QCOMPARE(menu.at(6).path, m.folders.app(s("A2.cvdb")));

    const DatabaseMenuEntry& mine = menu.at(7);
    QVERIFY(mine.checked);
    QCOMPARE(titlesOf(mine.items), (QStringList{s("Database Path"), s("Rename")}));
    QCOMPARE(mine.detail, m.folders.app(s("M.cvdb")));
    const DatabaseMenuEntry& acme = menu.at(5);
    QVERIFY(!acme.checked);
    QCOMPARE(titlesOf(acme.items),
             (QStringList{s("Connect"), s("Rename"), s("Remove from Menu"), s("Database Path")}));
    QVERIFY(acme.fileExists);
    QVERIFY(!menu.at(6).fileExists);
    QCOMPARE(menu.at(6).detail, s("%1 (not found)").arg(m.folders.app(s("A2.cvdb"))));
}

void tst_CompaniesMenu::nameWindow_data()
{
    QTest::addColumn<int>("action");
    QTest::addColumn<QString>("title");
    QTest::addColumn<int>("pending");
    QTest::newRow("new local") << int(Action::NewLocalDatabase) << s("New Local Database")
                               << int(DatabaseNameWindow::NewLocalDatabaseAction);
    QTest::newRow("new remote") << int(Action::NewRemoteDatabase) << s("New Remote Database")
                                << int(DatabaseNameWindow::NewRemoteDatabaseAction);
    QTest::newRow("add existing") << int(Action::AddExistingDatabase) << s("Add Existing Database")
                                  << int(DatabaseNameWindow::AddExistingDatabaseAction);
}

// Each command asks for the name first; cancelling changes nothing, a name carries the action
// out (a local database at once, the other two after their chooser, cancelled here).
void tst_CompaniesMenu::nameWindow()
{
    QFETCH(int, action);
    QFETCH(QString, title);
    QFETCH(int, pending);
    Menu m;
    m.manager.selectedDatabaseFile();
    m.prompter.addAnswer(std::nullopt);
    m.menu.trigger(Action(action));
    QCOMPARE(m.names(), QStringList{s("My Company")});

    m.prompter.addAnswer(s("  Acme Ltd  "));
    m.menu.trigger(Action(action));
    QCOMPARE(m.nameWindow.myCompanyDatabaseAction(), pending);
    const ScriptedPrompter::Question& asked = m.prompter.questions().at(1);
    QCOMPARE(int(asked.kind), int(ScriptedPrompter::Question::Kind::AskText));
    QCOMPARE(asked.title, title);
    QCOMPARE(asked.text, s("Company name:"));
    const bool local = pending == DatabaseNameWindow::NewLocalDatabaseAction;
    QCOMPARE(m.names(), local ? (QStringList{s("My Company"), s("Acme Ltd")}) : QStringList{s("My Company")});
    QCOMPARE(m.prompter.questions().size(), local ? 2 : 3);
}

void tst_CompaniesMenu::nameWindowRefusesAnEmptyName()
{
    Menu m;
    m.manager.selectedDatabaseFile();
    m.prompter.addAnswer(s("   "));
    m.nameWindow.newLocalDatabase(); // asked again after the alert, then cancelled
    QCOMPARE(m.prompter.titles(),
             (QStringList{s("New Local Database"), s("No Company Name"), s("New Local Database")}));
    QCOMPARE(m.prompter.questions().at(1).text, s("Enter the name of the company."));
    QVERIFY(!m.nameWindow.databaseNameChanged(s("")));
    QCOMPARE(m.names(), QStringList{s("My Company")});
}

void tst_CompaniesMenu::renameStartsFromTheCurrentName()
{
    Menu m;
    m.folders.writeList({ScratchFolders::entry(s("Mine"), m.folders.app(), s("A.cvdb"), true),
                         ScratchFolders::entry(s("Old Name"), m.folders.app(), s("B.cvdb"), false)});
    m.prompter.addAnswer(s("New Name"));
    m.menu.trigger(Action::Rename, m.folders.app(s("B.cvdb")));
    QCOMPARE(m.prompter.questions().first().title, s("Rename Database"));
    QCOMPARE(m.prompter.questions().first().initial, s("Old Name"));
    QCOMPARE(m.nameWindow.myCompanyDatabaseAction(), int(DatabaseNameWindow::RenameDatabaseAction));
    QCOMPARE(m.names(), (QStringList{s("Mine"), s("New Name")}));

    m.prompter.clear();
    m.menu.trigger(Action::Rename, m.folders.app(s("Gone.cvdb")));
    QCOMPARE(m.prompter.titles(), QStringList{s("Database Not in the List")});
}

void tst_CompaniesMenu::menuFollowsTheList()
{
    Menu m;
    m.folders.writeList({ScratchFolders::entry(s("Mine"), m.folders.app(), s("A.cvdb"), true),
                         ScratchFolders::entry(s("Other"), m.folders.app(), s("B.cvdb"), false)});
    m.menu.setupMyCompaniesMenu();
    QSignalSpy changed(&m.menu, &CompaniesMenu::myCompaniesMenuChanged);
    const auto databaseTitles = [&] {
        QStringList titles;
        for (const DatabaseMenuEntry& entry : m.menu.myCompaniesMenu()) {
            if (entry.kind == DatabaseMenuEntry::Kind::Database)
                titles << entry.title + (entry.checked ? s(" *") : QString());
        }
        return titles;
    };

    m.prompter.addAnswer(s("Connect"));
    m.menu.trigger(Action::Connect, m.folders.app(s("B.cvdb")));
    QVERIFY(m.manager.isRestartRequested());
    QCOMPARE(databaseTitles(), (QStringList{s("Mine"), s("Other *")}));
    m.prompter.addAnswer(s("Remove"));
    m.menu.trigger(Action::RemoveFromMenu, m.folders.app(s("A.cvdb")));
    QCOMPARE(databaseTitles(), QStringList{s("Other *")});
    QCOMPARE(changed.count(), 2);
}

QTEST_GUILESS_MAIN(tst_CompaniesMenu)
#include "tst_companiesmenu.moc"
