// A new user's first session: the program started on a fresh home folder, the demo company
// added and connected to (the program starts again on it), folders and records selected, a
// smart folder made in the predicate editor, a client deleted through its question, and quitting
// with the day's backup written. Every question is answered in its real dialog.
#include "app/applicationcore.h"
#include "browse/pagebridge.h"
#include "browse/recordlistmodel.h"
#include "browse/sidebarmodel.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"
#include "store/store.h"
#include "ui/browserview.h"
#include "ui/desktopapplication.h"
#include "ui/detailpane.h"
#include "ui/mainwindow.h"
#include "ui/recordlistview.h"
#include "ui/sidebarview.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QProcess>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>

using namespace corvanta;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

// Answers the next modal dialog for which `act` returns true, as soon as it is in front.
void whenDialogShows(std::function<bool(QWidget*)> act)
{
    auto* timer = new QTimer;
    timer->setInterval(20);
    QObject::connect(timer, &QTimer::timeout, [timer, act] {
        QWidget* dialog = QApplication::activeModalWidget();
        if (dialog && dialog->isVisible() && act(dialog)) {
            timer->stop();
            timer->deleteLater();
        }
    });
    timer->start();
}

// Clicks the button of a message box with this text; `asked` receives the box's texts.
void answerAlert(const QString& button, QStringList* asked = nullptr)
{
    whenDialogShows([button, asked](QWidget* dialog) {
        auto* box = qobject_cast<QMessageBox*>(dialog);
        if (!box)
            return false;
        if (asked)
            *asked << box->windowTitle() << box->informativeText();
        for (QAbstractButton* candidate : box->buttons()) {
            if (candidate->text() == button) {
                candidate->click();
                return true;
            }
        }
        return false;
    });
}

// The shown control of that name: a sheet that rebuilds its rows hides the old ones first.
template <typename T>
T* shown(QWidget* parent, const char* name)
{
    for (T* child : parent->findChildren<T*>(s(name))) {
        if (child->isVisible())
            return child;
    }
    return nullptr;
}

// Chooses an entry of a pop-up as the user does.
void choose(QComboBox* popup, const QString& text)
{
    const int index = popup->findText(text);
    popup->setCurrentIndex(index);
    Q_EMIT popup->activated(index);
}

QAction* actionNamed(QMenu* menu, const QString& text)
{
    for (QAction* action : menu->actions()) {
        if (action->text() == text)
            return action;
    }
    return nullptr;
}

} // namespace

class TestWalkthrough : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void firstSession();

private:
    void selectNode(ui::MainWindow* window, const QString& name);
    store::Record* find(ui::MainWindow* window, const char* entity, const char* condition,
                        const QString& value);

    QTemporaryDir m_home;
    QString m_demo;
};

void TestWalkthrough::initTestCase()
{
    QVERIFY(m_home.isValid());
    qputenv("HOME", m_home.path().toUtf8());
    qputenv("XDG_DATA_HOME", m_home.filePath(s(".local/share")).toUtf8());
    qputenv("XDG_CONFIG_HOME", m_home.filePath(s(".config")).toUtf8());
    qputenv("XDG_CACHE_HOME", m_home.filePath(s(".cache")).toUtf8());

    // The demo company, made as a user makes it from the command line.
    m_demo = m_home.filePath(s("demo.cvdb"));
    QProcess cli;
    cli.start(s(CORVANTA_CLI), {s("--database"), m_demo, s("demo")});
    QVERIFY(cli.waitForFinished(120000));
    QVERIFY2(cli.exitCode() == 0, cli.readAllStandardError().constData());
}

void TestWalkthrough::selectNode(ui::MainWindow* window, const QString& name)
{
    ui::SidebarView* sidebar = window->browserView()->sidebar();
    store::Record* node = find(window, "Categories", "name == %@", name);
    QVERIFY2(node, qPrintable(name));
    sidebar->tree()->setCurrentIndex(sidebar->model()->indexOf(node));
    QCOMPARE(sidebar->selectedCategory(), node);
}

store::Record* TestWalkthrough::find(ui::MainWindow* window, const char* entity, const char* condition,
                                     const QString& value)
{
    store::EditingContext& main = window->browserView()->sidebar()->model()->tree().context();
    return main.fetchFirst(store::FetchRequest(s(entity), predicate::literal(condition, {value})));
}

void TestWalkthrough::firstSession()
{
    bool restarted = false;
    bool quit = false;

    // A fresh home folder: the program makes "My Company" and shows it.
    {
        ui::DesktopApplication program;
        program.setEndingActions([&] { restarted = true; }, [&] { quit = true; });
        QVERIFY(program.start());
        ui::MainWindow* window = program.mainWindow();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        auto* databases = window->findChild<QMenu*>(s("companyDatabasesMenu"));
        QVERIFY(databases);
        QVERIFY(actionNamed(databases, s("My Company")));

        // The demo company is added under a name of its own, then connected to.
        whenDialogShows([](QWidget* dialog) {
            auto* name = qobject_cast<QInputDialog*>(dialog);
            if (!name)
                return false;
            name->setTextValue(s("Demo Company"));
            name->accept();
            return true;
        });
        const QString demo = m_demo;
        whenDialogShows([demo](QWidget* dialog) {
            auto* chooser = qobject_cast<QFileDialog*>(dialog);
            if (!chooser)
                return false;
            // The file's path typed into the name field, as a user may do.
            auto* name = chooser->findChild<QLineEdit*>(s("fileNameEdit"));
            if (!name)
                return false;
            name->setText(demo);
            QMetaObject::invokeMethod(chooser, "accept");
            return !chooser->isVisible();
        });
        actionNamed(databases, s("Add Existing Database"))->trigger();
        QTRY_VERIFY(actionNamed(databases, s("Demo Company")));

        QStringList asked;
        answerAlert(s("Connect"), &asked);
        QAction* connect = actionNamed(actionNamed(databases, s("Demo Company"))->menu(), s("Connect"));
        QVERIFY(connect);
        connect->trigger();
        QTRY_VERIFY(quit);
        QVERIFY(restarted);
        QCOMPARE(asked,
                 (QStringList{
                     s("Connecting to Database"),
                     s("The program is going to restart, will you continue connecting to the database?")}));
    }

    // The program again, on the demo company.
    ui::DesktopApplication program;
    quit = false;
    program.setEndingActions([&] { restarted = true; }, [&] { quit = true; });
    QVERIFY(program.start());
    ui::MainWindow* window = program.mainWindow();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
    QVERIFY(find(window, "Clients", "full_name == %@", s("Acme Ltd")));

    // Folders and records: the clients, then the documents with one chosen for its page.
    QTableView* list = window->browserView()->recordList()->table();
    selectNode(window, s("All Clients"));
    QCOMPARE(list->model()->rowCount(), 3);
    selectNode(window, s("All Documents"));
    QCOMPARE(list->model()->rowCount(), 9);
    list->selectRow(0);
    QTRY_COMPARE(window->browserView()->shownKind(), 3);
    window->updateCommandStates();
    QVERIFY(window->commandAction(app::Command::Preview)->isEnabled());
    selectNode(window, s("Paid Invoices"));
    QCOMPARE(list->model()->rowCount(), 1);

    // A smart folder of the clients of one city, made in the predicate editor.
    whenDialogShows([](QWidget* dialog) {
        if (dialog->objectName() != s("PredicateEditorWindow"))
            return false;
        shown<QLineEdit>(dialog, "nameEdit")->setText(s("Springfield Clients"));
        choose(shown<QComboBox>(dialog, "fieldPopup"), s("City"));
        choose(shown<QComboBox>(dialog, "operatorPopup"), s("contains"));
        QTest::keyClicks(shown<QLineEdit>(dialog, "valueEdit"), s("springfield"));
        dialog->findChild<QAbstractButton*>(s("saveButton"))->click();
        return true;
    });
    window->browserView()->sidebar()->newNode(-1);
    store::Record* folder = find(window, "Categories", "name == %@", s("Springfield Clients"));
    QVERIFY(folder);
    QCOMPARE(folder->value(s("predicate")).toString(), s("addresses.city CONTAINS[cd] \"springfield\""));
    QCOMPARE(window->browserView()->sidebar()->selectedCategory(), folder);
    QCOMPARE(list->model()->rowCount(), 2);

    // A client deleted through its question.
    selectNode(window, s("All Clients"));
    store::Record* northwind = find(window, "Clients", "full_name == %@", s("Northwind Supplies"));
    QVERIFY(northwind);
    const int row = window->browserView()->recordList()->model()->rowOf(northwind->ref());
    QVERIFY(row >= 0);
    list->selectRow(row);
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
    list->setFocus();
    window->updateCommandStates();
    QStringList asked;
    answerAlert(s("Delete Client"), &asked);
    window->commandAction(app::Command::Delete)->trigger();
    QCOMPARE(asked,
             (QStringList{s("Are you sure you want to delete the client \"Northwind Supplies\"?"),
                          s("The chosen client is in use in 1 documents. This action cannot be undone.")}));
    QVERIFY(!find(window, "Clients", "full_name == %@", s("Northwind Supplies")));
    QCOMPARE(list->model()->rowCount(), 2);

    // Quitting writes the day's backup of the data folder (the first session's is taken away to
    // see this one written).
    const QString backup = m_home.filePath(s("Documents/Corvanta Backup/CorvantaBackup%1.zip")
                                               .arg(QDate::currentDate().toString(s("yyyyMMdd"))));
    QVERIFY(QFile::remove(backup));
    window->findChild<QAction*>(s("actionQuit"))->trigger();
    QTRY_VERIFY(quit);
    QVERIFY2(QFileInfo(backup).size() > 0, qPrintable(backup));
}

int main(int argc, char** argv)
{
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(s("corvanta"));
    TestWalkthrough test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_walkthrough.moc"
