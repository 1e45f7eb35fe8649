// Takes the pictures of the desktop program that docs/ keeps: the main window on a company, the
// company-databases menu, the sidebar's sheets and the questions, each as the user sees it; with
// --editors also the editor windows, their sheets and their questions (editorpictures.cpp).
// --lists also the reference lists, my company, the preferences, the imports, the e-mail
// templates and the template library (listspictures.cpp, companypictures.cpp, importpictures.cpp,
// mailpictures.cpp, librarypictures.cpp).
//
//   uipictures --database demo.cvdb --out docs/desktop --editors docs/editors --lists docs/lists
//
// The program runs on a scratch home folder whose only company is a copy of the given database.
#include "app/applicationcore.h"
#include "browse/sidebarmodel.h"
#include "companies/databaselist.h"
#include "companypictures.h"
#include "importpictures.h"
#include "librarypictures.h"
#include "listspictures.h"
#include "mailpictures.h"
#include "pictures.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"
#include "store/store.h"
#include "ui/browserview.h"
#include "ui/desktopapplication.h"
#include "ui/mainwindow.h"
#include "ui/recordlistview.h"
#include "ui/sidebarview.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>

using namespace corvanta;

namespace corvanta::uipictures {

namespace {
QString g_out;
} // namespace

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

void setFolder(const QString& folder)
{
    g_out = folder;
    QDir().mkpath(g_out);
}

void save(QWidget* widget, const char* name)
{
    save(widget->grab(), name);
}

void save(const QPixmap& picture, const char* name)
{
    const QString file = QDir(g_out).filePath(s(name) + s(".png"));
    if (!picture.save(file))
        qFatal("cannot write %s", qPrintable(file));
    QTextStream(stdout) << file << '\n';
}

void pictureNextDialog(const char* name, const QString& button, std::function<void()> then)
{
    auto* timer = new QTimer;
    timer->setInterval(50);
    QObject::connect(timer, &QTimer::timeout, [timer, name, button, then] {
        QWidget* dialog = QApplication::activeModalWidget();
        if (!dialog || !dialog->isVisible())
            return;
        timer->stop();
        timer->deleteLater();
        QTest::qWait(300);
        if (name)
            save(dialog, name);
        if (then)
            QTimer::singleShot(0, then);
        if (auto* box = qobject_cast<QMessageBox*>(dialog)) {
            QAbstractButton* chosen = box->escapeButton();
            for (QAbstractButton* candidate : box->buttons()) {
                if (candidate->text() == button)
                    chosen = candidate;
            }
            if (chosen)
                chosen->click();
        } else if (auto* sheet = qobject_cast<QDialog*>(dialog)) {
            sheet->reject();
        }
    });
    timer->start();
}

} // namespace corvanta::uipictures

namespace {

using uipictures::pictureNextDialog;
using uipictures::s;
using uipictures::save;

store::Record* find(ui::MainWindow* window, const char* entity, const char* key, const QString& value)
{
    store::EditingContext& main = window->browserView()->sidebar()->model()->tree().context();
    return main.fetchFirst(
        store::FetchRequest(s(entity), predicate::literal(QString(s(key) + s(" == %@")), {value})));
}

void show(ui::MainWindow* window, const char* node, const char* entity, const char* key, const char* value)
{
    ui::SidebarView* sidebar = window->browserView()->sidebar();
    sidebar->tree()->setCurrentIndex(sidebar->model()->indexOf(find(window, "Categories", "name", s(node))));
    if (store::Record* record = find(window, entity, key, s(value)))
        window->browserView()->recordList()->selectRecord(record->ref());
    // The detail page draws in the web engine's own time.
    QTest::qWait(2500);
}

void takeMainWindowPictures(ui::MainWindow* window)
{
    show(window, "All Documents", "Documents", "number_formatted", "INVOICE/2026-0001");
    save(window, "main-window");
    show(window, "All Clients", "Clients", "full_name", "Acme Ltd");
    save(window, "main-window-client");
    show(window, "All Items", "Items", "name", "Bolt");
    save(window, "main-window-item");

    auto* databases = window->findChild<QMenu*>(s("companyDatabasesMenu"));
    databases->popup(window->mapToGlobal(QPoint(40, 40)));
    QTest::qWait(300);
    save(databases, "company-databases-menu");
    databases->close();

    ui::SidebarView* sidebar = window->browserView()->sidebar();
    pictureNextDialog("new-tag-sheet");
    sidebar->newNode(1);
    pictureNextDialog("new-folder-sheet");
    sidebar->newNode(0);
    pictureNextDialog("predicate-editor-sheet");
    sidebar->newNode(-3);

    show(window, "All Clients", "Clients", "full_name", "Acme Ltd");
    window->activateWindow();
    if (!QTest::qWaitForWindowActive(window))
        qFatal("the main window is not in front");
    window->browserView()->recordList()->table()->setFocus();
    window->updateCommandStates();
    pictureNextDialog("delete-client-question", s("Cancel"));
    window->commandAction(app::Command::Delete)->trigger();

    sidebar->tree()->setCurrentIndex(
        sidebar->model()->indexOf(find(window, "Categories", "name", s("My Folder"))));
    pictureNextDialog("delete-folder-question", s("Cancel"));
    sidebar->deleteSelected();
    sidebar->tree()->setCurrentIndex(
        sidebar->model()->indexOf(find(window, "Categories", "name", s("Clients"))));
    pictureNextDialog("group-refusal", s("OK"));
    sidebar->deleteSelected();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(s("corvanta"));
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption databaseOption(
        s("database"), s("The company database to picture (a copy is used)."), s("file"));
    const QCommandLineOption outOption(s("out"), s("The folder the main window's pictures go to."),
                                       s("folder"));
    const QCommandLineOption editorsOption(s("editors"), s("The folder the editor windows' pictures go to."),
                                           s("folder"));
    const QCommandLineOption listsOption(
        s("lists"), s("The folder the list windows' and the company windows' pictures go to."), s("folder"));
    parser.addOptions({databaseOption, outOption, editorsOption, listsOption});
    parser.process(application);
    if (!parser.isSet(databaseOption) ||
        (!parser.isSet(outOption) && !parser.isSet(editorsOption) && !parser.isSet(listsOption)))
        parser.showHelp(1);

    QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_DATA_HOME", home.filePath(s("share")).toUtf8());
    qputenv("XDG_CONFIG_HOME", home.filePath(s("config")).toUtf8());
    const QString data = home.filePath(s("share/corvanta"));
    QDir().mkpath(data);
    const QString file = QDir(data).filePath(s("demo.cvdb"));
    if (!QFile::copy(parser.value(databaseOption), file))
        qFatal("cannot copy the database");
    companies::DatabaseEntry entry;
    entry.name = s("Demo Company");
    entry.path = file;
    entry.directory = data;
    entry.filename = s("demo.cvdb");
    entry.selected = true;
    QString error;
    if (!companies::DatabaseList::write(QDir(data).filePath(s("corvanta.databases")), {entry}, &error))
        qFatal("%s", qPrintable(error));

    ui::DesktopApplication program;
    program.setEndingActions([] {}, [] {});
    if (!program.start())
        return 1;
    ui::MainWindow* window = program.mainWindow();
    window->resize(1440, 860);
    window->activateWindow();
    if (!QTest::qWaitForWindowExposed(window))
        qFatal("the main window is not shown");

    if (parser.isSet(outOption)) {
        uipictures::setFolder(parser.value(outOption));
        takeMainWindowPictures(window);
    }
    if (parser.isSet(editorsOption)) {
        uipictures::setFolder(parser.value(editorsOption));
        uipictures::takeEditorPictures(*program.core()->store(), *window);
    }
    if (parser.isSet(listsOption)) {
        uipictures::setFolder(parser.value(listsOption));
        store::Store& store = *program.core()->store();
        uipictures::takeReferenceListPictures(store);
        uipictures::takeImportPictures(store);
        uipictures::takeMailPictures(store);
        uipictures::takeLibraryPictures(store);
        // Last: it fills in the company's own data.
        uipictures::takeCompanyPictures(store);
    }
    return 0;
}
