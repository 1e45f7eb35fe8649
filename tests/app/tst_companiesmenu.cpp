#include "../companies/companiestestsupport.h"
#include "app/companiesmenu.h"
#include "app/databasenamewindow.h"
#include "companies/databasemanager.h"

#include <QSignalSpy>

using namespace corvanta::app;
using namespace corvanta::companies::testing;
using corvanta::companies::DatabaseManager;
using corvanta::support::ScriptedPrompter;
using Action = DatabaseMenuEntry::Action;

namespace {

// The company-databases menu of a start on the scratch folders, as the application builds it.
struct Menu
{
    ScratchFolders folders;
    ScriptedPrompter prompter;
    DatabaseManager manager{prompter, folders.folders()};
    DatabaseNameWindow nameWindow{manager, prompter};
    CompaniesMenu menu{manager, nameWindow};

    // The menu's database entries, "*" for the checked one.
    QStringList databases() const
    {
        QStringList titles;
        for (const DatabaseMenuEntry& entry : menu.myCompaniesMenu()) {
            if (entry.kind == DatabaseMenuEntry::Kind::Database)
                titles << entry.title + (entry.checked ? s("*") : QString());
        }
        return titles;
    }
};

} // namespace

// The menu and its name window: what they offer, what they ask, and that the menu follows
// every change of the list.
class tst_CompaniesMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entriesAndTheirCommands();
    void nameWindow_data();
    void nameWindow();
};

void tst_CompaniesMenu::entriesAndTheirCommands()
{
    Menu m;
    m.folders.writeList({ScratchFolders::entry(s("Zeta"), m.folders.app(), s("Z.cvdb"), false),
                         ScratchFolders::entry(s("Acme"), m.folders.app(), s("A1.cvdb"), false),
                         ScratchFolders::entry(s("Mine"), m.folders.app(), s("M.cvdb"), true),
                         ScratchFolders::entry(s("Acme"), m.folders.app(), s("A2.cvdb"), false)});
    for (const char* file : {"Z.cvdb", "A1.cvdb", "M.cvdb"})
        ScratchFolders::writeBytes(m.folders.app(s(file)), {});
    // Commands, a separator, then the databases by name (equal names in the order of the list),
    // each with its path (or that it is not found) and its commands.
    const QList<DatabaseMenuEntry> menu = m.menu.setupMyCompaniesMenu();
    QStringList shown;
    for (const DatabaseMenuEntry& entry : menu) {
        QStringList items;
        for (const auto& item : entry.items)
            items << item.title;
        shown << s("%1%2 %3 [%4]")
                     .arg(entry.title, entry.checked ? s("*") : QString(),
                          QString(entry.detail).replace(m.folders.app(), s("APP")), items.join(s(", ")));
    }
    const QString others = s("[Connect, Rename, Remove from Menu, Database Path]");
    QCOMPARE(shown,
             (QStringList{s("New Local Database  []"), s("New Remote Database  []"),
                          s("Add Existing Database  []"), s("Save Local Database to Desktop  []"), s("  []"),
                          s("Acme APP/A1.cvdb ") + others, s("Acme APP/A2.cvdb (not found) ") + others,
                          s("Mine* APP/M.cvdb [Database Path, Rename]"), s("Zeta APP/Z.cvdb ") + others}));
    QCOMPARE(int(menu.at(3).action), int(Action::SaveLocalDatabaseToDesktop));
    QCOMPARE(int(menu.at(4).kind), int(DatabaseMenuEntry::Kind::Separator));

    // The commands on a database reach the list, and the menu follows each change.
    QSignalSpy changed(&m.menu, &CompaniesMenu::myCompaniesMenuChanged);
    m.prompter.addAnswer(s("New Name"));
    m.menu.trigger(Action::Rename, m.folders.app(s("Z.cvdb")));
    QCOMPARE(m.prompter.questions().first().title + s(": ") + m.prompter.questions().first().initial,
             s("Rename Database: Zeta"));
    m.prompter.addAnswer(s("Connect"));
    m.menu.trigger(Action::Connect, m.folders.app(s("Z.cvdb")));
    QVERIFY(m.manager.isRestartRequested());
    m.prompter.addAnswer(s("Remove"));
    m.menu.trigger(Action::RemoveFromMenu, m.folders.app(s("M.cvdb")));
    QCOMPARE(m.databases(), (QStringList{s("Acme"), s("Acme"), s("New Name*")}));
    QCOMPARE(changed.count(), 3);
    m.prompter.clear();
    m.menu.trigger(Action::Rename, m.folders.app(s("Gone.cvdb")));
    QCOMPARE(m.prompter.titles(), QStringList{s("Database Not in the List")});
}

void tst_CompaniesMenu::nameWindow_data()
{
    QTest::addColumn<int>("action");
    QTest::addColumn<QString>("title");
    QTest::newRow("new local") << int(Action::NewLocalDatabase) << s("New Local Database");
    QTest::newRow("new remote") << int(Action::NewRemoteDatabase) << s("New Remote Database");
    QTest::newRow("add existing") << int(Action::AddExistingDatabase) << s("Add Existing Database");
}

// Each command asks for the name first: cancelling changes nothing, an empty name is refused and
// asked again, a name carries the action out (a local database at once, the other two after
// their chooser, cancelled here).
void tst_CompaniesMenu::nameWindow()
{
    QFETCH(int, action);
    QFETCH(QString, title);
    Menu m;
    m.manager.selectedDatabaseFile(); // a first start makes the list
    m.prompter.addAnswer(std::nullopt);
    m.menu.trigger(Action(action));
    m.prompter.addAnswer(s("   "));
    m.prompter.addAnswer(s("OK"));
    m.prompter.addAnswer(s("  Acme Ltd  "));
    m.menu.trigger(Action(action));
    const bool local = action == int(Action::NewLocalDatabase);
    QStringList expected{title, title, s("No Company Name"), title};
    if (!local)
        expected << (action == int(Action::NewRemoteDatabase) ? s("Choose the Folder for the New Database")
                                                              : s("Choose a Company Database"));
    QCOMPARE(m.prompter.titles(), expected);
    QCOMPARE(m.prompter.questions().at(1).text, s("Company name:"));
    QCOMPARE(m.prompter.questions().at(2).text, s("Enter the name of the company."));
    QCOMPARE(m.databases(),
             local ? (QStringList{s("Acme Ltd"), s("My Company*")}) : QStringList{s("My Company*")});
}

QTEST_GUILESS_MAIN(tst_CompaniesMenu)
#include "tst_companiesmenu.moc"
