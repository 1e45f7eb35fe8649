// Times the desktop program on a large company: from the start to the main window on the screen,
// from choosing "All Documents" to its list drawn (against loading every document at once, as a
// list without paging would), and the sidebar's recount after a save.
#include "app/applicationcore.h"
#include "benchoutput.h"
#include "browse/sidebarmodel.h"
#include "browse/sidebarstate.h"
#include "companies/databaselist.h"
#include "companygenerator.h"
#include "model/companydatabase.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/store.h"
#include "support/scriptedprompter.h"
#include "support/uuid.h"
#include "ui/browserview.h"
#include "ui/mainwindow.h"
#include "ui/recordlistview.h"
#include "ui/sidebarview.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QTableView>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTreeView>
#include <QWindow>

using namespace corvanta;
using bench::medianOf;
using bench::msSince;
using bench::out;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// Counts the paints a widget receives.
class PaintCounter : public QObject
{
public:
    int paints = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return QObject::eventFilter(watched, event);
    }
};

store::Record* category(store::EditingContext& context, const char* name)
{
    return context.fetchFirst(
        store::FetchRequest(s("Categories"), predicate::literal("name == %@", {s(name)})));
}

// The generated company holds records and tags only: the sidebar's groups with their "All"
// folders are added as a new company has them, and the own-company record that keeps its state.
void addSidebarGroups(store::EditingContext& context)
{
    if (category(context, "All Documents"))
        return;
    const char* groups[][2] = {{"Clients", "All Clients"},
                               {"Items", "All Items"},
                               {"Documents", "All Documents"},
                               {"ToDos", "All ToDos"}};
    for (int kind = 1; kind <= 4; ++kind) {
        const QString path = QStringLiteral("%1").arg(kind + 100, 3, 10, QLatin1Char('0'));
        store::Record* group = context.insertRecord(
            s("Categories"),
            {{s("name"), s(groups[kind - 1][0])}, {s("type"), -kind}, {s("indexpath"), path}});
        store::Record* all = context.insertRecord(s("Categories"), {{s("name"), s(groups[kind - 1][1])},
                                                                    {s("type"), -kind},
                                                                    {s("subtype"), -kind},
                                                                    {s("indexpath"), path + s("000")}});
        all->setRelated(s("parent"), group);
    }
    // The smart folders a new company has, whose counts cost the most.
    const struct
    {
        const char* name;
        int type;
        const char* predicate;
    } smartFolders[] = {
        {"Critical Stock", -2, "stock_current <= stock_critical && type == 1"},
        {"Paid Invoices", -3, "sum_total == payments.@sum.amount && type == 0 && draft == NO"},
        {"Unpaid Invoices", -3,
         "sum_total != payments.@sum.amount && type == 0 && draft == NO && cancel_reference == NULL"},
        {"Draft Invoices", -3, "draft == YES"},
    };
    int position = 1;
    for (const auto& folder : smartFolders) {
        store::Record* group = category(context, folder.type == -2 ? "Items" : "Documents");
        store::Record* node = context.insertRecord(
            s("Categories"),
            {{s("name"), s(folder.name)},
             {s("type"), folder.type},
             {s("predicate"), s(folder.predicate)},
             {s("indexpath"), group->value(s("indexpath")).toString() +
                                  QStringLiteral("%1").arg(position++, 3, 10, QLatin1Char('0'))}});
        node->setRelated(s("parent"), group);
    }
    if (!context.fetchFirst(store::FetchRequest(s("MyCompany"))))
        context.insertRecord(s("MyCompany"), {{s("name"), s("Big Company")}});
    store::StoreError error;
    if (!context.save(&error))
        qFatal("cannot add the sidebar's groups: %s", qPrintable(error.message()));
}

// The folders of a user whose only company is the one at `file`, reopened with "All Documents" selected.
companies::DatabaseFolders prepareUser(const QTemporaryDir& scratch, const QString& file)
{
    companies::DatabaseFolders folders{scratch.filePath(s("data")), scratch.filePath(s("Desktop")),
                                       scratch.filePath(s("Documents"))};
    QDir().mkpath(folders.applicationFiles);
    companies::DatabaseEntry entry;
    entry.name = s("Big Company");
    entry.path = file;
    entry.directory = QFileInfo(file).absolutePath();
    entry.filename = QFileInfo(file).fileName();
    entry.selected = true;
    QString error;
    if (!companies::DatabaseList::write(QDir(folders.applicationFiles).filePath(s("corvanta.databases")),
                                        {entry}, &error))
        qFatal("cannot write the database list: %s", qPrintable(error));
    store::StoreError storeError;
    auto store = model::CompanyDatabase::open(file, &storeError);
    if (store)
        addSidebarGroups(store->mainContext());
    if (!store || !browse::SidebarState(store->mainContext())
                       .save({category(store->mainContext(), "All Documents")}, {}, &storeError))
        qFatal("cannot prepare the sidebar: %s", qPrintable(storeError.message()));
    return folders;
}

// Starts the program's core on the company, makes the main window and waits until it is on the
// screen and drawn, with the list of "All Documents" in it.
double startToWindowShown(const companies::DatabaseFolders& folders)
{
    QElapsedTimer timer;
    timer.start();
    support::ScriptedPrompter prompter;
    app::ApplicationCore core(prompter, folders);
    if (!core.start())
        qFatal("the company does not open");
    ui::MainWindow window(core, prompter);
    PaintCounter counter;
    window.installEventFilter(&counter);
    window.show();
    while (!(window.windowHandle() && window.windowHandle()->isExposed() && counter.paints > 0))
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    const double shown = msSince(timer);
    if (window.browserView()->recordList()->table()->model()->rowCount() == 0)
        qFatal("the main window shows no documents");
    return shown;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QElapsedTimer process;
    process.start();
    QApplication application(argc, argv);
    const double applicationObject = msSince(process);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        s("Times the main window, the documents list and the sidebar counts on a large "
          "company, against loading every document at once."));
    parser.addHelpOption();
    const QCommandLineOption databaseOption(s("database"),
                                            s("Copy this company database and run on the copy."), s("file"));
    const QCommandLineOption scaleOption(
        s("scale"), s("Without --database, generate a company of this size first (1 = 100,000 documents)."),
        s("factor"), s("1"));
    const QCommandLineOption runsOption(s("runs"), s("Timed runs per figure (median)."), s("n"), s("7"));
    parser.addOptions({databaseOption, scaleOption, runsOption});
    parser.process(application);
    const int runs = qMax(1, parser.value(runsOption).toInt());

    QTemporaryDir scratch;
    const QString file = scratch.filePath(support::UUID() + s(".cvdb"));
    if (parser.isSet(databaseOption)) {
        if (!QFile::copy(parser.value(databaseOption), file))
            qFatal("cannot copy %s", qPrintable(parser.value(databaseOption)));
    } else {
        store::StoreError error;
        auto store = model::CompanyDatabase::open(file, &error);
        if (!store)
            qFatal("%s", qPrintable(error.message()));
        out() << "generating a company at scale " << parser.value(scaleOption) << " ..." << Qt::endl;
        bench::CompanyGenerator generator(
            *store, bench::CompanyGenerator::Sizes::scaled(parser.value(scaleOption).toDouble()));
        if (!generator.generate(&error))
            qFatal("generation failed: %s", qPrintable(error.message()));
    }
    const companies::DatabaseFolders folders = prepareUser(scratch, file);

    // The first start in a process pays for the web view's engine; later ones find it running.
    const double coldStart = startToWindowShown(folders);
    QList<double> warmStarts;
    for (int run = 0; run < runs; ++run)
        warmStarts << startToWindowShown(folders);

    support::ScriptedPrompter prompter;
    app::ApplicationCore core(prompter, folders);
    if (!core.start())
        qFatal("the company does not open");
    ui::MainWindow window(core, prompter);
    window.show();
    QCoreApplication::processEvents();
    store::EditingContext& main = core.store()->mainContext();
    const int documents = main.count(store::FetchRequest(s("Documents")));
    ui::SidebarView* sidebar = window.browserView()->sidebar();
    QTableView* table = window.browserView()->recordList()->table();
    const QModelIndex allClients = sidebar->model()->indexOf(category(main, "All Clients"));
    const QModelIndex allDocuments = sidebar->model()->indexOf(category(main, "All Documents"));

    QList<double> listShown;
    QList<double> everything;
    int rowsShown = 0;
    for (int run = 0; run < runs; ++run) {
        sidebar->tree()->setCurrentIndex(allClients);
        QCoreApplication::processEvents();
        QElapsedTimer timer;
        timer.start();
        sidebar->tree()->setCurrentIndex(allDocuments);
        table->viewport()->repaint();
        listShown << msSince(timer);
        rowsShown = table->model()->rowCount();

        // What a list without paging would do before drawing its first row.
        std::unique_ptr<store::EditingContext> context = core.store()->newContext();
        timer.restart();
        const QList<store::Record*> all = context->fetch(store::FetchRequest(s("Documents")));
        everything << msSince(timer);
        if (all.size() != documents)
            qFatal("the documents fetched are not all");
    }

    QList<double> recounts;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        sidebar->model()->recount();
        recounts << msSince(timer);
    }

    out() << "documents: " << documents << ", runs per figure: " << runs << " (median)\n\n";
    out() << "application object made:                      " << applicationObject << " ms\n";
    out() << "start to main window shown (first in process): " << coldStart << " ms   (goal: 1000 ms)\n";
    out() << "start to main window shown (engine running):   " << medianOf(warmStarts) << " ms\n";
    out() << "\"All Documents\" chosen to list drawn:          " << medianOf(listShown) << " ms, "
          << rowsShown << " rows loaded of " << documents << "   (goal: 100 ms)\n";
    out() << "  every document loaded at once instead:       " << medianOf(everything) << " ms   (ratio "
          << medianOf(everything) / medianOf(listShown) << "x)\n";
    out() << "sidebar recount after a save (every node):     " << medianOf(recounts) << " ms\n";
    out().flush();
    return 0;
}
