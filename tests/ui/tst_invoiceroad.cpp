// The whole road of an invoice through the windows, as a user goes it with the mouse and the
// keyboard: a new invoice from the File menu, its client and item made in their own editors on
// the way, a row typed, saved as a draft, previewed, finalised on the way to its PDF, and paid in
// the payments sheet; and a monthly to-do beside it.
#include "browse/pagebridge.h"
#include "browse/sidebarmodel.h"
#include "documents/paymentstatus.h"
#include "editors/documentcontroller.h"
#include "ui/browserview.h"
#include "ui/detailpane.h"
#include "ui/documenteditorwindow.h"
#include "ui/documentoutputs.h"
#include "ui/documentrowsmodel.h"
#include "ui/editorwindows.h"
#include "ui/mainwindow.h"
#include "ui/previewwindow.h"
#include "ui/recordlistview.h"
#include "ui/sidebarview.h"
#include "uitestsupport.h"

#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPdfDocument>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

using namespace corvanta;
using namespace corvanta::ui::testing;
using app::Command;
using store::Record;

class TestInvoiceRoad : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void invoiceFromNothingToPaid();
    void monthlyToDo();

private:
    // The editor window opened last, brought to the front.
    template <typename Window>
    Window* editorInFront();
    void activate(QWidget* window);
    void type(QWidget* field, const QString& text);

    std::unique_ptr<UiCompany> m_company;
    std::unique_ptr<ui::MainWindow> m_window;
};

void TestInvoiceRoad::init()
{
    m_company = std::make_unique<UiCompany>();
    m_window = std::make_unique<ui::MainWindow>(m_company->core(), m_company->prompter());
    activate(m_window.get());
}

void TestInvoiceRoad::cleanup()
{
    m_window.reset();
    m_company.reset();
}

void TestInvoiceRoad::activate(QWidget* window)
{
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
    m_window->updateCommandStates();
}

void TestInvoiceRoad::type(QWidget* field, const QString& text)
{
    QVERIFY2(field, qPrintable(text));
    field->setFocus();
    QTest::keyClicks(field, text);
}

template <typename Window>
Window* TestInvoiceRoad::editorInFront()
{
    const QList<QWidget*> windows = m_window->editorWindows()->windows();
    for (auto it = windows.crbegin(); it != windows.crend(); ++it) {
        if (auto* editor = qobject_cast<Window*>(*it); editor && editor->isVisible()) {
            activate(editor);
            return editor;
        }
    }
    return nullptr;
}

void TestInvoiceRoad::invoiceFromNothingToPaid()
{
    support::ScriptedPrompter& prompter = m_company->prompter();

    // File > New Document: an empty invoice.
    m_window->findChild<QAction*>(s("actionWindow3"))->trigger();
    auto* invoice = editorInFront<ui::DocumentEditorWindow>();
    QVERIFY(invoice);
    editors::DocumentController& controller = invoice->controller();
    QCOMPARE(controller.document()->value(s("type")).toLongLong(), 0);

    // File > New Client while the invoice is open: the saved client becomes its client.
    m_window->findChild<QAction*>(s("actionWindow1"))->trigger();
    QWidget* client = editorInFront<QWidget>();
    QVERIFY(client);
    QCOMPARE(client->objectName(), s("ClientEditorWindow"));
    type(client->findChild<QLineEdit*>(s("firstNameField")), s("Springfield Power"));
    type(client->findChild<QLineEdit*>(s("emailsField")), s("office@springfield.test"));
    QTest::mouseClick(client->findChild<QPushButton*>(s("saveButton")), Qt::LeftButton);
    QTRY_VERIFY(!client->isVisible());
    QCOMPARE(controller.document()->value(s("client_full_name")).toString(), s("Springfield Power"));

    // File > New Item: the saved item becomes a row at the invoice's price level.
    m_window->findChild<QAction*>(s("actionWindow2"))->trigger();
    QWidget* item = editorInFront<QWidget>();
    QVERIFY(item);
    QCOMPARE(item->objectName(), s("ItemEditorWindow"));
    type(item->findChild<QLineEdit*>(s("nameEdit")), s("Turbine Inspection"));
    auto* price = item->findChild<QLineEdit*>(s("priceEdit01"));
    QVERIFY(price);
    price->selectAll();
    type(price, s("250"));
    QTest::keyClick(price, Qt::Key_Tab);
    QTest::mouseClick(item->findChild<QPushButton*>(s("saveButton")), Qt::LeftButton);
    QTRY_VERIFY(!item->isVisible());
    QCOMPARE(controller.rows().size(), 1);
    Record* row = controller.rows().first();
    QCOMPARE(row->value(s("name")).toString(), s("Turbine Inspection"));
    QCOMPARE(row->value(s("unit_price")).toDouble(), 250.0);

    // Back in the invoice: a second row typed with the keyboard, then saved as a draft through
    // the main window's Save, which goes to the editor in front.
    activate(invoice);
    QTest::mouseClick(invoice->findChild<QToolButton*>(s("addRowButton")), Qt::LeftButton);
    auto* cell = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    QVERIFY(cell);
    QTest::keyClicks(cell, s("Travel"));
    QTest::keyClick(cell, Qt::Key_Tab);
    QTest::keyClicks(QApplication::focusWidget(), s("2"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClicks(QApplication::focusWidget(), s("40"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    QCOMPARE(controller.rows().size(), 2);
    QCOMPARE(controller.rows().at(1)->value(s("net")).toDouble(), 80.0);
    invoice->findChild<QTableView*>(s("rowsView"))->setFocus();
    m_window->updateCommandStates();
    QVERIFY(m_window->commandAction(Command::Save)->isEnabled());
    m_window->commandAction(Command::Save)->trigger();
    QTRY_VERIFY(!controller.isEdited());
    QVERIFY(prompter.questions().isEmpty());

    Record* stored = m_company->client(s("Springfield Power"))->relatedList(s("documents")).value(0);
    QVERIFY(stored);
    QVERIFY(stored->value(s("draft")).toBool());
    const double total = stored->value(s("sum_total")).toDouble();
    QVERIFY(total > 330.0);
    if (invoice->isVisible())
        invoice->close();

    // In the browser: the draft listed, and its preview in the program's own window, which
    // neither saves nor finalises it.
    activate(m_window.get());
    ui::SidebarView* sidebar = m_window->browserView()->sidebar();
    sidebar->tree()->setCurrentIndex(sidebar->model()->indexOf(m_company->category(s("All Documents"))));
    ui::RecordListView* list = m_window->browserView()->recordList();
    QVERIFY(list->selectRecord(stored->ref()));
    m_window->updateCommandStates();
    m_window->commandAction(Command::Preview)->trigger();
    ui::PreviewWindow* preview = m_window->editorWindows()->outputs().previewWindow(stored->ref());
    QVERIFY(preview);
    QTRY_VERIFY(preview->isVisible());
    QVERIFY(stored->value(s("draft")).toBool());
    preview->close();

    // Edit opens it again; Save as PDF finalises it first and writes the file the user names.
    activate(m_window.get());
    m_window->commandAction(Command::Edit)->trigger();
    invoice = editorInFront<ui::DocumentEditorWindow>();
    QVERIFY(invoice);
    QTemporaryDir folder;
    QString written;
    QTimer::singleShot(0, this, [&] {
        QTRY_VERIFY(qobject_cast<QFileDialog*>(QApplication::activeModalWidget()));
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        written = folder.filePath(QFileInfo(dialog->selectedFiles().value(0)).fileName());
        dialog->selectFile(written);
        QMetaObject::invokeMethod(dialog, "accept");
    });
    prompter.addAnswer(s("Finalize"));
    invoice->saveAs();
    QCOMPARE(prompter.titles().value(0), s("Finalize Invoice"));
    QTRY_VERIFY(!written.isEmpty());
    QVERIFY(!stored->value(s("draft")).toBool());
    const QString number = stored->value(s("number_formatted")).toString();
    QCOMPARE(number, s("INVOICE/%1-0001").arg(QDate::currentDate().year()));
    QPdfDocument pdf;
    QCOMPARE(pdf.load(written), QPdfDocument::Error::None);
    QVERIFY(pdf.pageCount() >= 1);
    QVERIFY2(pdf.getAllText(0).text().contains(s("Turbine Inspection")), qPrintable(written));
    if (invoice->isVisible())
        invoice->close();
    QVERIFY(!documents::PaymentStatus::isPaid(stored));

    // The page's payments link opens the sheet; settling the rest makes the invoice paid.
    activate(m_window.get());
    QVERIFY(list->selectRecord(stored->ref()));
    m_window->browserView()->detailPane()->bridge().showDocumentPayments();
    QWidget* sheet = nullptr;
    QTRY_VERIFY((sheet = m_window->findChild<QWidget*>(s("DocumentPaymentsSheet"))) && sheet->isVisible());
    QTest::mouseClick(sheet->findChild<QPushButton*>(s("settleButton")), Qt::LeftButton);
    QTRY_VERIFY(documents::PaymentStatus::isPaid(stored));
    const QList<Record*> payments = stored->relatedList(s("payments"));
    QCOMPARE(payments.size(), 1);
    QCOMPARE(payments.first()->value(s("amount")).toDouble(), total);
}

void TestInvoiceRoad::monthlyToDo()
{
    // File > New To-Do, a title and a monthly repeat, saved by the main window's Save.
    m_window->findChild<QAction*>(s("actionWindow4"))->trigger();
    QWidget* todo = editorInFront<QWidget>();
    QVERIFY(todo);
    QCOMPARE(todo->objectName(), s("ToDoEditorWindow"));
    type(todo->findChild<QLineEdit*>(s("titleEdit")), s("Pay the rent"));
    auto* repeat = todo->findChild<QComboBox*>(s("repeatPopup"));
    repeat->setCurrentIndex(repeat->findText(s("Monthly")));
    auto* summary = todo->findChild<QLabel*>(s("summaryLabel"));
    QVERIFY(summary->text().startsWith(s("Monthly on day ")));
    todo->findChild<QLineEdit*>(s("titleEdit"))->setFocus();
    m_window->updateCommandStates();
    m_window->commandAction(Command::Save)->trigger();

    Record* stored = m_company->named("ToDos", s("title"), s("Pay the rent"));
    QVERIFY(stored);
    QCOMPARE(stored->value(s("repeat_summary")).toString(), summary->text());
    QCOMPARE(m_company->main().fetch(store::FetchRequest(s("ToDos"))).size(), 1);
    // Saved: closing asks nothing.
    QVERIFY(todo->close());
    QVERIFY(m_company->prompter().questions().isEmpty());
}

CORVANTA_UI_TEST_MAIN(TestInvoiceRoad)
#include "tst_invoiceroad.moc"
