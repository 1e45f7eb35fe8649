// Times the document editor window on a long invoice: from making the window to its rows drawn on
// the screen, against the editor's core reading the same document, and typing in a row in the
// middle of it: each key to the cell drawn, and each typed quantity to the new total drawn.
#include "app/applicationcore.h"
#include "benchoutput.h"
#include "editors/documentcontroller.h"
#include "model/companyrecord.h"
#include "scratchcompany.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "support/scriptedprompter.h"
#include "support/uuid.h"
#include "ui/documenteditorwindow.h"
#include "ui/documentrowsmodel.h"
#include "ui/documentrowsview.h"
#include "ui/openeditors.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

using namespace corvanta;
using bench::medianOf;
using bench::msSince;
using bench::out;
using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// Counts the paints of every widget in the program, by widget, so that a figure can wait for
// what the user sees rather than for the call that changed it.
class PaintWatcher : public QObject
{
public:
    PaintWatcher() { qApp->installEventFilter(this); }
    ~PaintWatcher() override { qApp->removeEventFilter(this); }

    int paintsOf(const QObject* widget) const { return m_paints.value(widget); }
    int paintsOfName(const QString& name) const { return m_byName.value(name); }

    // Runs the event loop until `done` holds; fails the benchmark after ten seconds.
    template <typename Condition>
    static void waitFor(Condition done, const char* what)
    {
        QElapsedTimer limit;
        limit.start();
        while (!done()) {
            if (limit.elapsed() > 10000)
                qFatal("waited in vain for %s", what);
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        }
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            ++m_paints[watched];
            if (!watched->objectName().isEmpty())
                ++m_byName[watched->objectName()];
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QHash<const QObject*, int> m_paints;
    QHash<QString, int> m_byName;
};

// A saved invoice of `rowCount` rows, each of one of twenty items with the company's default tax.
predicate::RecordRef addInvoice(store::EditingContext& context, int rowCount)
{
    Record* tax = model::CompanyRecord::defaultRecord(context, s("default_tax"));
    if (!tax)
        qFatal("the new company has no default tax");
    QList<Record*> items;
    for (int i = 0; i < 20; ++i) {
        Record* item = context.insertRecord(s("Items"), {{s("name"), s("Article %1").arg(i + 1)},
                                                         {s("code"), s("A-%1").arg(i + 1)},
                                                         {s("custom_price01"), 4.5 + i * 3.25},
                                                         {s("identifier"), support::UUID()}});
        item->setRelated(s("tax"), tax);
        items << item;
    }
    Record* client = context.insertRecord(s("Clients"), {{s("company_name"), s("Acme Ltd")},
                                                         {s("full_name"), s("Acme Ltd")},
                                                         {s("type"), qint64(0)},
                                                         {s("identifier"), support::UUID()}});
    const QDateTime now = QDateTime::currentDateTime();
    Record* document = context.insertRecord(s("Documents"), {{s("type"), qint64(0)},
                                                             {s("draft"), false},
                                                             {s("number_formatted"), s("INVOICE/2026-0001")},
                                                             {s("date_creation"), now},
                                                             {s("date_due"), now.addDays(14)},
                                                             {s("created"), now},
                                                             {s("client_full_name"), s("Acme Ltd")},
                                                             {s("identifier"), support::UUID()}});
    document->setRelated(s("client"), client);
    for (const char* key : {"payment_type", "bank", "currency"})
        document->setRelated(s(key), model::CompanyRecord::defaultRecord(context, s("default_") + s(key)));
    document->setRelated(s("template"),
                         model::CompanyRecord::defaultRecord(context, s("default_template_invoice")));
    for (int i = 0; i < rowCount; ++i) {
        Record* item = items.at(i % items.size());
        Record* row = context.insertRecord(
            s("DocumentRows"), {{s("order"), qint64(i + 1)}, {s("name"), item->value(s("name"))}});
        row->setRelated(s("document"), document);
        row->setRelated(s("item"), item);
        row->setRelated(s("tax"), tax);
        row->setValue(s("unit_name"), s("pcs"));
        row->setValue(s("unit_price"), item->value(s("custom_price01")));
        row->setValue(s("custom_price01"), item->value(s("custom_price01")));
        row->setValue(s("quantity"), double(1 + i % 5)); // computes the row's amounts with its tax
    }
    store::StoreError error;
    if (!context.save(&error))
        qFatal("cannot save the invoice: %s", qPrintable(error.message()));
    return document->ref();
}

// The editor's core alone: the document and its rows read into a new editing context.
double coreOpened(store::Store& store, support::Prompter& prompter, const predicate::RecordRef& invoice,
                  int rowCount)
{
    QElapsedTimer timer;
    timer.start();
    editors::DocumentController controller(store, prompter);
    if (!controller.openDocument(invoice))
        qFatal("the core does not open the invoice");
    const qsizetype rows = controller.rows().size();
    const double elapsed = msSince(timer);
    if (rows != rowCount)
        qFatal("the core read %lld rows of %d", qlonglong(rows), rowCount);
    return elapsed;
}

// From making the window to the window on the screen with its rows drawn. The window is left
// open for the caller, who deletes it.
double windowShown(store::Store& store, support::Prompter& prompter, ui::OpenEditors& openEditors,
                   const predicate::RecordRef& invoice, int rowCount, ui::DocumentEditorWindow** shown)
{
    PaintWatcher watcher;
    QElapsedTimer timer;
    timer.start();
    auto* window = new ui::DocumentEditorWindow(store, prompter, openEditors);
    if (!window->openDocument(invoice))
        qFatal("the window does not open the invoice");
    window->show();
    auto* view = window->findChild<ui::DocumentRowsView*>(s("rowsView"));
    PaintWatcher::waitFor(
        [&] {
            return window->windowHandle() && window->windowHandle()->isExposed() &&
                   watcher.paintsOf(view->viewport()) > 0;
        },
        "the window's rows drawn");
    const double elapsed = msSince(timer);
    if (view->model()->rowCount() != rowCount)
        qFatal("the window shows %d rows of %d", view->model()->rowCount(), rowCount);
    *shown = window;
    return elapsed;
}

struct TypingFigures
{
    QList<double> keys;    // a key typed into the cell editor to the editor drawn again
    QList<double> commits; // Return on a typed quantity to the new total drawn
};

// Types quantities into the row in the middle of the open window: `count` times a digit followed
// by Return, each timed apart.
TypingFigures typeInMiddleRow(ui::DocumentEditorWindow* window, int count)
{
    PaintWatcher watcher;
    auto* view = window->findChild<ui::DocumentRowsView*>(s("rowsView"));
    const int middle = view->model()->rowCount() / 2;
    const QModelIndex quantity = view->model()->index(middle, ui::DocumentRowsModel::Quantity);
    window->activateWindow();
    if (!QTest::qWaitForWindowActive(window))
        qFatal("the window does not become active");
    auto totalText = [window] {
        const auto* label = window->findChild<QLabel*>(s("totalValue"));
        return label ? label->text() : QString();
    };

    TypingFigures figures;
    for (int i = 0; i < count; ++i) {
        view->scrollTo(quantity);
        view->setCurrentIndex(quantity);
        view->edit(quantity);
        auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        if (!editor)
            qFatal("no cell editor after starting to edit the quantity");
        editor->selectAll();
        QCoreApplication::processEvents();

        // Quantities 1 to 9 in turn, never the one the row holds, so that every commit moves the total.
        const QString digit = QString::number(1 + (i % 9));
        const QString typed = digit == editor->text() ? QString::number(1 + ((i + 1) % 9)) : digit;
        const int editorPaints = watcher.paintsOf(editor);
        QElapsedTimer timer;
        timer.start();
        QTest::keyClicks(editor, typed);
        PaintWatcher::waitFor([&] { return watcher.paintsOf(editor) > editorPaints; }, "the typed key drawn");
        figures.keys << msSince(timer);
        if (editor->text() != typed)
            qFatal("the cell editor holds \"%s\" instead of \"%s\"", qPrintable(editor->text()),
                   qPrintable(typed));

        const QString before = totalText();
        const int totalPaints = watcher.paintsOfName(s("totalValue"));
        timer.restart();
        QTest::keyClick(editor, Qt::Key_Return);
        PaintWatcher::waitFor(
            [&] { return totalText() != before && watcher.paintsOfName(s("totalValue")) > totalPaints; },
            "the new total drawn");
        figures.commits << msSince(timer);
        if (view->model()->index(middle, ui::DocumentRowsModel::Quantity).data().toString() != typed)
            qFatal("the row does not show the typed quantity");
    }
    return figures;
}

double worstOf(const QList<double>& values)
{
    return *std::max_element(values.begin(), values.end());
}

} // namespace

int main(int argc, char** argv)
{
    ScratchCompany company;
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        s("Times the document editor window on a long invoice against its core, and typing in it."));
    parser.addHelpOption();
    const QCommandLineOption rowsOption(s("rows"), s("Rows of the invoice."), s("n"), s("1000"));
    const QCommandLineOption runsOption(s("runs"), s("Timed runs per figure (median)."), s("n"), s("7"));
    const QCommandLineOption keysOption(s("keys"), s("Quantities typed into the middle row."), s("n"),
                                        s("50"));
    parser.addOptions({rowsOption, runsOption, keysOption});
    parser.process(application);
    const int rowCount = qMax(2, parser.value(rowsOption).toInt());
    const int runs = qMax(1, parser.value(runsOption).toInt());
    const int keys = qMax(1, parser.value(keysOption).toInt());

    const std::unique_ptr<app::ApplicationCore> core = company.start();
    store::Store& store = *core->store();
    support::ScriptedPrompter& prompter = company.prompter();
    const predicate::RecordRef invoice = addInvoice(store.mainContext(), rowCount);
    ui::OpenEditors openEditors;

    // The first window of the process loads the style, fonts and icons that later ones find ready.
    ui::DocumentEditorWindow* window = nullptr;
    const double firstWindow = windowShown(store, prompter, openEditors, invoice, rowCount, &window);
    delete window;
    QList<double> windows;
    QList<double> cores;
    for (int run = 0; run < runs; ++run) {
        cores << coreOpened(store, prompter, invoice, rowCount);
        windows << windowShown(store, prompter, openEditors, invoice, rowCount, &window);
        if (run + 1 < runs)
            delete window;
    }

    const TypingFigures typing = typeInMiddleRow(window, keys);
    if (!prompter.questions().isEmpty())
        qFatal("the editor asked \"%s\" while typing", qPrintable(prompter.titles().join(s(", "))));
    // The typed quantities are not kept: the window closes without its question.
    window->controller().context().rollback();
    delete window;

    const double windowMedian = medianOf(windows);
    const double coreMedian = medianOf(cores);
    out() << "invoice rows: " << rowCount << ", runs per figure: " << runs << " (median)\n\n";
    out() << "window made to rows drawn (first in process): " << firstWindow << " ms\n";
    out() << "window made to rows drawn:                     " << windowMedian << " ms   (goal: 300 ms)\n";
    out() << "  core alone (open + rows):                    " << coreMedian << " ms   (window/core "
          << windowMedian / coreMedian << "x)\n";
    out() << "typing in row " << rowCount / 2 + 1 << ", " << keys << " keys and " << keys << " commits:\n";
    out() << "  key to cell drawn:                           median " << medianOf(typing.keys)
          << " ms, worst " << worstOf(typing.keys) << " ms\n";
    out() << "  Return to new total drawn:                   median " << medianOf(typing.commits)
          << " ms, worst " << worstOf(typing.commits) << " ms   (goal: under 50 ms each)\n";
    out().flush();
    return 0;
}
