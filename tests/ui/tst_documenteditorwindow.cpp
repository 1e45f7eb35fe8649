#include "editors/documentcontroller.h"
#include "format/numberinput.h"
#include "model/companyrecord.h"
#include "support/uuid.h"
#include "ui/documenteditorwindow.h"
#include "ui/documentrowsmodel.h"
#include "ui/documentrowsview.h"
#include "ui/openeditors.h"
#include "ui/tagspopover.h"
#include "uitestsupport.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCompleter>
#include <QElapsedTimer>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTableView>
#include <QToolButton>

using namespace corvanta;
using namespace corvanta::ui::testing;
using store::Record;
using ui::DocumentEditorWindow;
using ui::DocumentRowsModel;

namespace {

// A document of 1,000 rows opens well within this; the sanitizers make everything several times
// slower.
#if defined(__SANITIZE_ADDRESS__)
constexpr qint64 kOpeningLimitMs = 1500;
#else
constexpr qint64 kOpeningLimitMs = 300;
#endif

} // namespace

class tst_DocumentEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void clientChosenFromSuggestions();
    void rowsTypedWithTabAndReturn();
    void typedQuantity_data();
    void typedQuantity();
    void itemNameEntered_data();
    void itemNameEntered();
    void priceLevelsKeepTypedPrices();
    void rowNoteLibrary();
    void tagsTicked();
    void saveWithoutClientKeepsWindowAndEdits();
    void draftThenFinalisedWhenPrinted();
    void closeQuestion_data();
    void closeQuestion();
    void foreignCurrencyShowsRateAndAmounts();
    void handOversGoToTheLastActiveEditor();
    void longDocumentOpensQuickly();
    void picture();

private:
    DocumentEditorWindow* newWindow();
    Record* addItem(const QString& name, const QString& code, double price);
    Record* addDocument(int rows, const QString& currencyCode);
    void useEuro();
    // The editor that has the keyboard: the cell being edited.
    QLineEdit* cellEditor() const { return qobject_cast<QLineEdit*>(QApplication::focusWidget()); }
    QString cellText(DocumentEditorWindow* window, int row, int column) const;

    std::unique_ptr<UiCompany> m_company;
    std::unique_ptr<ui::OpenEditors> m_openEditors;
    QList<QPointer<DocumentEditorWindow>> m_windows;
};

void tst_DocumentEditor::init()
{
    m_company = std::make_unique<UiCompany>();
    m_openEditors = std::make_unique<ui::OpenEditors>();
}

void tst_DocumentEditor::cleanup()
{
    // Closing without questions: the edits of a failed test are dropped. Closed windows go too,
    // before the store their controllers work on.
    qDeleteAll(m_windows);
    m_windows.clear();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_openEditors.reset();
    m_company.reset();
}

DocumentEditorWindow* tst_DocumentEditor::newWindow()
{
    m_windows << new DocumentEditorWindow(m_company->store(), m_company->prompter(), *m_openEditors);
    return m_windows.last();
}

Record* tst_DocumentEditor::addItem(const QString& name, const QString& code, double price)
{
    Record* item = m_company->main().insertRecord(s("Items"), {{s("name"), name},
                                                               {s("code"), code},
                                                               {s("custom_price01"), price},
                                                               {s("custom_price02"), price * 0.9},
                                                               {s("identifier"), support::UUID()}});
    item->setRelated(s("tax"), model::CompanyRecord::defaultRecord(m_company->main(), s("default_tax")));
    m_company->save();
    return item;
}

void tst_DocumentEditor::useEuro()
{
    Record* euro = m_company->named("Currencies", s("code"), s("EUR"));
    euro->setValue(s("selectable"), true);
    euro->setValue(s("symbol"), s("€"));
    euro->setValue(s("symbol_format"), s("sr"));
    euro->setValue(s("show_fixed_digits"), true);
    euro->setValue(s("grouping_separator"), s("."));
    euro->setValue(s("decimal_separator"), s(","));
    m_company->save();
}

// A saved invoice for "Acme Ltd" with `rows` rows of the same few items.
Record* tst_DocumentEditor::addDocument(int rows, const QString& currencyCode)
{
    store::EditingContext& main = m_company->main();
    Record* client = m_company->addClient(s("Acme Ltd"));
    Record* document = main.insertRecord(s("Documents"), {{s("type"), qint64(0)},
                                                          {s("draft"), false},
                                                          {s("number_formatted"), s("INVOICE/2026-0042")},
                                                          {s("date_creation"), QDateTime::currentDateTime()},
                                                          {s("created"), QDateTime::currentDateTime()},
                                                          {s("client_full_name"), s("Acme Ltd")},
                                                          {s("client_street"), s("12 Harbour Road")},
                                                          {s("exchange_rate"), 1.08},
                                                          {s("identifier"), support::UUID()}});
    document->setRelated(s("client"), client);
    document->setValue(s("date_due"), QDateTime::currentDateTime().addDays(14));
    for (const char* key : {"payment_type", "bank"})
        document->setRelated(s(key), model::CompanyRecord::defaultRecord(main, s("default_") + s(key)));
    document->setRelated(s("template"),
                         model::CompanyRecord::defaultRecord(main, s("default_template_invoice")));
    document->setRelated(s("currency"), m_company->named("Currencies", s("code"), currencyCode));
    Record* tax = model::CompanyRecord::defaultRecord(main, s("default_tax"));
    const QStringList names{s("Design work"), s("Hosting, one month"), s("Steel bolts M8"),
                            s("On-site support")};
    for (int i = 0; i < rows; ++i) {
        Record* row = main.insertRecord(
            s("DocumentRows"), {{s("order"), qint64(i + 1)}, {s("name"), names.at(i % names.size())}});
        row->setRelated(s("document"), document);
        row->setValue(s("unit_name"), s("pcs"));
        row->setValue(s("quantity"), double(1 + i % 5));
        row->setValue(s("unit_price"), 12.5 * (1 + i % 7));
        row->setValue(s("custom_price01"), 12.5 * (1 + i % 7));
        row->setRelated(s("tax"), tax);
        row->setValue(s("quantity"), double(1 + i % 5)); // recomputes with the tax
    }
    m_company->save();
    return document;
}

QString tst_DocumentEditor::cellText(DocumentEditorWindow* window, int row, int column) const
{
    auto* view = window->findChild<QAbstractItemView*>(s("rowsView"));
    return view->model()->index(row, column).data().toString();
}

void tst_DocumentEditor::clientChosenFromSuggestions()
{
    m_company->addClient(s("Acme Ltd"));
    m_company->addClient(s("Beta Works"));
    DocumentEditorWindow* window = newWindow();
    QVERIFY(window->newDocument(0));
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window));

    auto* clientEdit = window->findChild<QLineEdit*>(s("clientEdit"));
    clientEdit->setFocus();
    QTest::keyClicks(clientEdit, s("acm"));
    QCompleter* completer = clientEdit->completer();
    QCOMPARE(completer->completionModel()->rowCount(), 1);
    QVERIFY(completer->popup()->isVisible());
    QTest::keyClick(completer->popup(), Qt::Key_Down);
    QTest::keyClick(completer->popup(), Qt::Key_Return);

    const Record* document = window->controller().document();
    QCOMPARE(document->value(s("client_full_name")).toString(), s("Acme Ltd"));
    QVERIFY(document->related(s("client")));
    // The client's terms came with it, and the field is ready for another name.
    QVERIFY(!document->value(s("date_due")).isNull());
    QVERIFY(clientEdit->text().isEmpty());
    QCOMPARE(window->findChild<QLabel*>(s("clientLabel"))->text(), s("Acme Ltd"));
    QVERIFY(window->isWindowModified());
}

void tst_DocumentEditor::rowsTypedWithTabAndReturn()
{
    addItem(s("Bolt"), s("B-8"), 4.5);
    DocumentEditorWindow* window = newWindow();
    QVERIFY(window->newDocument(0));
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window));
    auto* view = window->findChild<ui::DocumentRowsView*>(s("rowsView"));

    QTest::mouseClick(window->findChild<QToolButton*>(s("addRowButton")), Qt::LeftButton);
    QLineEdit* editor = cellEditor();
    QVERIFY(editor);
    QCOMPARE(editor->objectName(), s("itemNameEditor"));
    QTest::keyClicks(editor, s("bo"));
    QCOMPARE(editor->completer()->completionModel()->index(0, 0).data().toString(), s("Bolt"));
    editor->setText(s("Bolt"));
    QTest::keyClick(editor, Qt::Key_Tab);

    // The item filled the row; Tab went on to the quantity, and from there over the unit to the price.
    QCOMPARE(cellText(window, 0, DocumentRowsModel::Price), s("$4.5"));
    QCOMPARE(view->currentIndex().column(), int(DocumentRowsModel::Quantity));
    // Typing changes single rows; the table is rebuilt only when rows come or go.
    QSignalSpy resets(view->model(), &QAbstractItemModel::modelReset);
    QTest::keyClicks(cellEditor(), s("3"));
    QTest::keyClick(cellEditor(), Qt::Key_Tab);
    QCOMPARE(view->currentIndex().column(), int(DocumentRowsModel::Price));
    QCOMPARE(cellText(window, 0, DocumentRowsModel::Total), s("$14.85"));
    QCOMPARE(resets.count(), 0);

    // Return on the last row adds a row and edits its name.
    QTest::keyClick(cellEditor(), Qt::Key_Return);
    QTRY_COMPARE(view->model()->rowCount(), 2);
    QCOMPARE(resets.count(), 1);
    QCOMPARE(view->currentIndex(), view->model()->index(1, DocumentRowsModel::Name));
    QVERIFY(cellEditor());
    QTest::keyClicks(cellEditor(), s("Consulting"));
    QTest::keyClick(cellEditor(), Qt::Key_Tab);
    QTest::keyClicks(cellEditor(), s("2"));
    QTest::keyClick(cellEditor(), Qt::Key_Tab);
    QTest::keyClicks(cellEditor(), s("50"));
    QTest::keyClick(cellEditor(), Qt::Key_Tab);
    QCOMPARE(view->currentIndex().column(), int(DocumentRowsModel::Tax));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);

    const QList<Record*> rows = window->controller().rows();
    QCOMPARE(rows.size(), 2);
    QCOMPARE(rows.at(1)->value(s("name")).toString(), s("Consulting"));
    QCOMPARE(rows.at(1)->value(s("net")).toDouble(), 100.0);
    // The totals follow the rows: 13.5 + 100 net, with 10% tax on both.
    QCOMPARE(window->findChild<QLabel*>(s("netValue"))->text(), s("$113.5"));
    QCOMPARE(window->findChild<QLabel*>(s("totalValue"))->text(), s("$124.85"));
}

void tst_DocumentEditor::typedQuantity_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<double>("quantity");
    QTest::addColumn<QStringList>("asked");

    QTest::newRow("grouped thousands and a fraction") << s("1,250.5") << 1250.5 << QStringList();
    QTest::newRow("an emptied field is no quantity") << s("") << 0.0 << QStringList();
    QTest::newRow("words are refused and change nothing")
        << s("ten") << 1.0 << QStringList{format::NumberInput::alertTitle()};
}

void tst_DocumentEditor::typedQuantity()
{
    QFETCH(QString, typed);
    QFETCH(double, quantity);
    QFETCH(QStringList, asked);

    DocumentEditorWindow* window = newWindow();
    QVERIFY(window->newDocument(0));
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window));
    window->addRow();
    QTest::keyClick(cellEditor(), Qt::Key_Tab);
    QLineEdit* editor = cellEditor();
    QVERIFY(editor);
    QCOMPARE(editor->objectName(), s("quantityEditor"));
    editor->setText(typed);
    QTest::keyClick(editor, Qt::Key_Tab);
    QCOMPARE(window->controller().rows().value(0)->value(s("quantity")).toDouble(), quantity);
    QCOMPARE(m_company->prompter().titles(), asked);
}

void tst_DocumentEditor::itemNameEntered_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("price");
    QTest::addColumn<bool>("linked");

    QTest::newRow("one item of the name fills the row") << s("Bolt") << s("Bolt") << s("$4.5") << true;
    QTest::newRow("an unknown name stays as typed") << s("Gadget") << s("Gadget") << s("") << false;
    QTest::newRow("a name two items share links none") << s("Nut") << s("Nut") << s("") << false;
}

void tst_DocumentEditor::itemNameEntered()
{
    QFETCH(QString, typed);
    QFETCH(QString, name);
    QFETCH(QString, price);
    QFETCH(bool, linked);

    addItem(s("Bolt"), s("B-8"), 4.5);
    addItem(s("Nut"), s("N-8"), 0.2);
    addItem(s("Nut"), s("N-10"), 0.3);
    DocumentEditorWindow* window = newWindow();
    QVERIFY(window->newDocument(0));
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window));

    window->addRow();
    QVERIFY(cellEditor());
    QTest::keyClicks(cellEditor(), typed);
    QTest::keyClick(cellEditor(), Qt::Key_Tab);
    const Record* row = window->controller().rows().value(0);
    QCOMPARE(row->value(s("name")).toString(), name);
    QCOMPARE(row->related(s("item")) != nullptr, linked);
    QCOMPARE(cellText(window, 0, DocumentRowsModel::Price), price);
}

void tst_DocumentEditor::priceLevelsKeepTypedPrices()
{
    const Record* bolt = addItem(s("Bolt"), s("B-8"), 4.5);
    DocumentEditorWindow* window = newWindow();
    QVERIFY(window->newDocument(0));
    window->show();
    window->controller().addItem(bolt->ref());
    auto* view = window->findChild<QTableView*>(s("rowsView"));
    view->selectRow(0);
    auto* level1 = window->findChild<QLineEdit*>(s("priceField1"));
    QCOMPARE(level1->text(), s("4.5"));

    // A price typed for the active level is the row's price, and stays when another level is shown.
    level1->setText(s("5.25"));
    level1->setModified(true);
    Q_EMIT level1->editingFinished();
    QCOMPARE(cellText(window, 0, DocumentRowsModel::Price), s("$5.25"));
    QTest::mouseClick(window->findChild<QToolButton*>(s("priceLevel2")), Qt::LeftButton);
    QVERIFY(window->findChild<QToolButton*>(s("priceLevel2"))->isChecked());
    QCOMPARE(cellText(window, 0, DocumentRowsModel::Price), s("$4.05"));
    QCOMPARE(window->findChild<QLabel*>(s("totalValue"))->text(), s("$4.46"));
    QTest::mouseClick(window->findChild<QToolButton*>(s("priceLevel1")), Qt::LeftButton);
    QCOMPARE(cellText(window, 0, DocumentRowsModel::Price), s("$5.25"));
    QCOMPARE(level1->text(), s("5.25"));
}

void tst_DocumentEditor::rowNoteLibrary()
{
    DocumentEditorWindow* window = newWindow();
    QVERIFY(window->newDocument(0));
    window->show();
    window->controller().addRow();
    window->controller().addRow();
    auto* view = window->findChild<QTableView*>(s("rowsView"));
    auto* note = window->findChild<QPlainTextEdit*>(s("rowNoteEdit"));
    auto* menu = window->findChild<QToolButton*>(s("rowNotesButton"))->menu();
    const auto entry = [&](const QString& title) {
        Q_EMIT menu->aboutToShow();
        for (QAction* action : menu->actions()) {
            if (action->text() == title)
                return action->menu();
        }
        return static_cast<QMenu*>(nullptr);
    };

    // A note typed for the first row goes to the library, and from there to the second row.
    view->selectRow(0);
    note->setPlainText(s("Delivered in two parts"));
    Q_EMIT menu->aboutToShow();
    menu->findChild<QAction*>(s("saveNoteAction"))->trigger();
    view->selectRow(1);
    QVERIFY(note->toPlainText().isEmpty());
    QMenu* saved = entry(s("Delivered in two parts"));
    QVERIFY(saved);
    saved->actions().value(0)->trigger(); // Add to Selected Line
    QCOMPARE(window->controller().rows().value(1)->value(s("note")).toString(), s("Delivered in two parts"));
    QCOMPARE(note->toPlainText(), s("Delivered in two parts"));

    entry(s("Delivered in two parts"))->actions().value(1)->trigger(); // Remove from Menu
    QVERIFY(!entry(s("Delivered in two parts")));
}

void tst_DocumentEditor::tagsTicked()
{
    m_company->main().insertRecord(s("Categories"), {{s("name"), s("Urgent")}, {s("type"), qint64(3)}});
    m_company->save();
    DocumentEditorWindow* window = newWindow();
    QVERIFY(window->newDocument(0));
    window->show();
    QTest::mouseClick(window->findChild<QPushButton*>(s("tagsButton")), Qt::LeftButton);
    auto* popover = window->findChild<ui::TagsPopover*>(s("TagsPopover"));
    QVERIFY(popover && popover->isVisible());
    QCOMPARE(popover->rows().size(), 1);
    QVERIFY(!window->isWindowModified());
    popover->toggleRow(0);
    const QList<Record*> tags = window->controller().document()->relatedList(s("tags"));
    QCOMPARE(tags.size(), 1);
    QCOMPARE(tags.first()->value(s("name")).toString(), s("Urgent"));
    QVERIFY(window->isWindowModified());
}

void tst_DocumentEditor::saveWithoutClientKeepsWindowAndEdits()
{
    DocumentEditorWindow* window = newWindow();
    QVERIFY(window->newDocument(0));
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window));
    window->addRow();
    QVERIFY(cellEditor());
    QTest::keyClicks(cellEditor(), s("Repair"));
    window->findChild<QTabWidget*>(s("tabs"))->setCurrentIndex(1);

    window->findChild<QAction*>(s("saveAction"))->trigger();
    QCoreApplication::processEvents();
    QCOMPARE(m_company->prompter().titles(), QStringList{s("No Client Selected")});
    QVERIFY(window->isVisible());
    QCOMPARE(window->findChild<QTabWidget*>(s("tabs"))->currentIndex(), 0);
    QCOMPARE(window->controller().rows().value(0)->value(s("name")).toString(), s("Repair"));
    QVERIFY(window->isWindowModified());
}

void tst_DocumentEditor::draftThenFinalisedWhenPrinted()
{
    m_company->addClient(s("Acme Ltd"));
    DocumentEditorWindow* window = newWindow();
    QVERIFY(window->newDocument(0));
    window->show();
    auto* clientEdit = window->findChild<QLineEdit*>(s("clientEdit"));
    clientEdit->setText(s("Acme Ltd"));
    window->save(); // the typed client is taken on the way
    QCoreApplication::processEvents();
    QVERIFY(!window->isVisible());
    Record* stored = m_company->client(s("Acme Ltd"))->relatedList(s("documents")).value(0);
    QVERIFY(stored);
    QVERIFY(stored->value(s("draft")).toBool());
    QVERIFY(stored->value(s("number_formatted")).toString().startsWith(s("DRAFT - ")));

    // Printing the draft asks to finalise it and gives it the first number of the year.
    DocumentEditorWindow* second = newWindow();
    QVERIFY(second->openDocument(stored->ref()));
    QVERIFY(second->windowTitle().startsWith(s("Invoice DRAFT - ")));
    second->show();
    m_company->prompter().clear();
    m_company->prompter().addAnswer(s("Finalize"));
    second->print();
    QCoreApplication::processEvents();
    QCOMPARE(m_company->prompter().titles().value(0), s("Finalize Invoice"));
    QVERIFY(!second->isVisible());
    QVERIFY(!stored->value(s("draft")).toBool());
    QCOMPARE(stored->value(s("number_formatted")).toString(),
             s("INVOICE/%1-0001").arg(QDate::currentDate().year()));
}

void tst_DocumentEditor::closeQuestion_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("closed");
    QTest::addColumn<int>("storedDocuments");

    QTest::newRow("Save stores the document and closes") << s("Save") << true << 1;
    QTest::newRow("Don't Save drops the edits and closes") << s("Don't Save") << true << 0;
    QTest::newRow("Cancel keeps the window and the edits") << s("Cancel") << false << 0;
}

void tst_DocumentEditor::closeQuestion()
{
    QFETCH(QString, answer);
    QFETCH(bool, closed);
    QFETCH(int, storedDocuments);

    m_company->addClient(s("Acme Ltd"));
    DocumentEditorWindow* window = newWindow();
    QVERIFY(window->newDocument(0));
    window->show();
    auto* clientEdit = window->findChild<QLineEdit*>(s("clientEdit"));
    clientEdit->setText(s("Acme Ltd"));
    Q_EMIT clientEdit->editingFinished();
    QVERIFY(window->isWindowModified());

    m_company->prompter().clear();
    m_company->prompter().addAnswer(answer);
    window->close();
    QCOMPARE(m_company->prompter().titles(), QStringList{s("Save this document?")});
    QCOMPARE(m_company->prompter().questions().first().buttons,
             (QStringList{s("Save"), s("Don't Save"), s("Cancel")}));
    QCOMPARE(!window->isVisible(), closed);
    QCOMPARE(m_company->client(s("Acme Ltd"))->relatedList(s("documents")).size(), storedDocuments);
    if (!closed)
        QCOMPARE(window->controller().document()->value(s("client_full_name")).toString(), s("Acme Ltd"));
}

void tst_DocumentEditor::foreignCurrencyShowsRateAndAmounts()
{
    useEuro();
    addItem(s("Bolt"), s("B-8"), 1234.5);
    DocumentEditorWindow* window = newWindow();
    QVERIFY(window->newDocument(0));
    window->show();
    window->controller().addItem(m_company->named("Items", s("name"), s("Bolt"))->ref());
    // An item handed over from its editor shows in the totals at once.
    QCOMPARE(window->findChild<QLabel*>(s("totalValue"))->text(), s("$1,357.95"));

    auto* rate = window->findChild<QLineEdit*>(s("exchangeRateEdit"));
    auto* currencies = window->findChild<QComboBox*>(s("currencyChooser"));
    QVERIFY(!rate->isVisible());
    const int euro = currencies->findText(s("EUR"));
    QVERIFY(euro >= 0);
    currencies->setCurrentIndex(euro);
    Q_EMIT currencies->activated(euro);
    QVERIFY(rate->isVisible());
    QCOMPARE(rate->text(), s("1"));
    QCOMPARE(cellText(window, 0, DocumentRowsModel::Total), s("1.357,95 €"));
    QCOMPARE(window->findChild<QLabel*>(s("totalValue"))->text(), s("1.357,95 €"));

    rate->setText(s("1.0825"));
    rate->setModified(true);
    Q_EMIT rate->editingFinished();
    QCOMPARE(window->controller().document()->value(s("exchange_rate")).toDouble(), 1.0825);

    const int dollar = currencies->findText(s("USD"));
    currencies->setCurrentIndex(dollar);
    Q_EMIT currencies->activated(dollar);
    QVERIFY(!rate->isVisible());
    QCOMPARE(window->controller().document()->value(s("exchange_rate")).toDouble(), 1.0);
}

void tst_DocumentEditor::handOversGoToTheLastActiveEditor()
{
    DocumentEditorWindow* first = newWindow();
    DocumentEditorWindow* second = newWindow();
    QVERIFY(first->newDocument(0) && second->newDocument(3));
    QCOMPARE(second->windowTitle(), s("New Quotation[*]"));
    first->show();
    second->show();
    for (DocumentEditorWindow* window : {second, first, second}) {
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window));
        QCOMPARE(m_openEditors->documentEditor(), &window->controller());
    }
}

void tst_DocumentEditor::longDocumentOpensQuickly()
{
    const Record* document = addDocument(1000, s("USD"));
    DocumentEditorWindow* window = newWindow();
    QElapsedTimer timer;
    timer.start();
    QVERIFY(window->openDocument(document->ref()));
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window));
    const qint64 elapsed = timer.elapsed();
    qInfo("1000 rows opened and shown in %lld ms", elapsed);
    QCOMPARE(window->findChild<QAbstractItemView*>(s("rowsView"))->model()->rowCount(), 1000);
    QVERIFY2(elapsed < kOpeningLimitMs, qPrintable(QString::number(elapsed)));
    // Showing the stored values is no edit.
    QCOMPARE(window->windowTitle(), s("Invoice INVOICE/2026-0042[*]"));
    QVERIFY(!window->isWindowModified() && !window->controller().isEdited());
}

// Set CORVANTA_PICTURE to a file name to keep a picture of a 30-row invoice in euros.
void tst_DocumentEditor::picture()
{
    const QString path = qEnvironmentVariable("CORVANTA_PICTURE");
    if (path.isEmpty())
        QSKIP("CORVANTA_PICTURE names no file");
    // The program's icons, found in the system's icon folders as at its start.
    QIcon::setThemeSearchPaths(QIcon::themeSearchPaths() +
                               QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, s("icons"),
                                                         QStandardPaths::LocateDirectory));
    QIcon::setThemeName(s("breeze"));
    useEuro();
    const Record* document = addDocument(30, s("EUR"));
    DocumentEditorWindow* window = newWindow();
    QVERIFY(window->openDocument(document->ref()));
    window->resize(1100, 780);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window));
    auto* view = window->findChild<QAbstractItemView*>(s("rowsView"));
    view->selectionModel()->select(view->model()->index(2, 0),
                                   QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    QVERIFY(window->grab().save(path));
}

CORVANTA_UI_TEST_MAIN(tst_DocumentEditor)
#include "tst_documenteditorwindow.moc"
