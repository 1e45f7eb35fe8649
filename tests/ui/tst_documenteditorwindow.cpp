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
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QToolButton>

using namespace corvanta;
using namespace corvanta::ui::testing;
using store::Record;
using ui::DocumentEditorWindow;
using ui::DocumentRowsModel;

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
    void typedClientTakenOnSaveAsDraft();
    void foreignCurrencyShowsRateAndAmounts();
    void handOversGoToTheLastActiveEditor();
    void storedDocumentOpensUnedited();

private:
    DocumentEditorWindow* newWindow();
    // A new document of `type` in a window that is shown and active.
    DocumentEditorWindow* shownNewDocument(qint64 type = 0);
    Record* addItem(const QString& name, const QString& code, double price);
    Record* addDocument(int rows);
    void useEuro();
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

DocumentEditorWindow* tst_DocumentEditor::shownNewDocument(qint64 type)
{
    DocumentEditorWindow* window = newWindow();
    if (!window->newDocument(type))
        qFatal("no new document");
    window->show();
    window->activateWindow();
    if (!QTest::qWaitForWindowActive(window))
        qFatal("the document window does not become active");
    return window;
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

// A saved invoice for "Acme Ltd" with `rows` rows.
Record* tst_DocumentEditor::addDocument(int rows)
{
    Record* document = m_company->addInvoice(s("INVOICE/2026-0042"), 0);
    document->setRelated(s("client"), m_company->addClient(s("Acme Ltd")));
    for (int i = 0; i < rows; ++i) {
        Record* row = m_company->main().insertRecord(
            s("DocumentRows"), {{s("order"), qint64(i + 1)}, {s("name"), s("Row %1").arg(i + 1)}});
        row->setRelated(s("document"), document);
        row->setValue(s("quantity"), double(1 + i % 5));
        row->setValue(s("unit_price"), 12.5);
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
    DocumentEditorWindow* window = shownNewDocument();

    auto* clientEdit = window->findChild<QLineEdit*>(s("clientEdit"));
    clientEdit->setFocus();
    QTest::keyClicks(clientEdit, s("acm"));
    QCompleter* completer = clientEdit->completer();
    QCOMPARE(completer->completionModel()->rowCount(), 1);
    QVERIFY(completer->popup()->isVisible());
    QTest::keyClick(completer->popup(), Qt::Key_Down);
    QTest::keyClick(completer->popup(), Qt::Key_Return);

    const Record* document = window->controller().document();
    QCOMPARE(document->valueForKeyPath(s("client.full_name")).toString(), s("Acme Ltd"));
    // The client's terms came with it, and the field is ready for another name.
    QVERIFY(!document->value(s("date_due")).isNull());
    QVERIFY(clientEdit->text().isEmpty());
    QCOMPARE(window->findChild<QLabel*>(s("clientLabel"))->text(), s("Acme Ltd"));
    QVERIFY(window->isWindowModified());
}

void tst_DocumentEditor::rowsTypedWithTabAndReturn()
{
    addItem(s("Bolt"), s("B-8"), 4.5);
    DocumentEditorWindow* window = shownNewDocument();
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
    QTest::keyClick(cellEditor(), Qt::Key_Escape);
    // The totals follow the rows: 13.5 net with 10% tax.
    QCOMPARE(window->findChild<QLabel*>(s("netValue"))->text(), s("$13.5"));
    QCOMPARE(window->findChild<QLabel*>(s("totalValue"))->text(), s("$14.85"));
}

void tst_DocumentEditor::typedQuantity_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<double>("quantity");
    QTest::addColumn<QStringList>("asked");

    QTest::newRow("grouped thousands and a fraction") << s("1,250.5") << 1250.5 << QStringList();
    QTest::newRow("words are refused and change nothing")
        << s("ten") << 1.0 << QStringList{format::NumberInput::alertTitle()};
}

void tst_DocumentEditor::typedQuantity()
{
    QFETCH(QString, typed);
    QFETCH(double, quantity);
    QFETCH(QStringList, asked);

    DocumentEditorWindow* window = shownNewDocument();
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
    QTest::newRow("an unknown name stays as typed") << s("Gadget");
    QTest::newRow("a name two items share links none") << s("Nut");
}

void tst_DocumentEditor::itemNameEntered()
{
    QFETCH(QString, typed);
    addItem(s("Nut"), s("N-8"), 0.2);
    addItem(s("Nut"), s("N-10"), 0.3);
    DocumentEditorWindow* window = shownNewDocument();

    window->addRow();
    QVERIFY(cellEditor());
    QTest::keyClicks(cellEditor(), typed);
    QTest::keyClick(cellEditor(), Qt::Key_Tab);
    const Record* row = window->controller().rows().value(0);
    QCOMPARE(row->value(s("name")).toString(), typed);
    QVERIFY(!row->related(s("item")));
    QCOMPARE(cellText(window, 0, DocumentRowsModel::Price), QString());
}

void tst_DocumentEditor::priceLevelsKeepTypedPrices()
{
    const Record* bolt = addItem(s("Bolt"), s("B-8"), 4.5);
    DocumentEditorWindow* window = shownNewDocument();
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
    DocumentEditorWindow* window = shownNewDocument();
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
    DocumentEditorWindow* window = shownNewDocument();
    QTest::mouseClick(window->findChild<QPushButton*>(s("tagsButton")), Qt::LeftButton);
    auto* popover = window->findChild<ui::TagsPopover*>(s("TagsPopover"));
    QVERIFY(popover && popover->isVisible());
    QVERIFY(!window->isWindowModified());
    popover->toggleRow(0);
    const QList<Record*> tags = window->controller().document()->relatedList(s("tags"));
    QCOMPARE(tags.size(), 1);
    QCOMPARE(tags.first()->value(s("name")).toString(), s("Urgent"));
    QVERIFY(window->isWindowModified());
}

void tst_DocumentEditor::saveWithoutClientKeepsWindowAndEdits()
{
    DocumentEditorWindow* window = shownNewDocument();
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

void tst_DocumentEditor::typedClientTakenOnSaveAsDraft()
{
    m_company->addClient(s("Acme Ltd"));
    DocumentEditorWindow* window = shownNewDocument();
    auto* clientEdit = window->findChild<QLineEdit*>(s("clientEdit"));
    clientEdit->setText(s("Acme Ltd"));
    const QPointer<DocumentEditorWindow> saved = window;
    window->save(); // the typed client is taken on the way
    // Saved from its own command, the window closes and goes.
    QTRY_VERIFY(saved.isNull());
    Record* stored = m_company->client(s("Acme Ltd"))->relatedList(s("documents")).value(0);
    QVERIFY(stored);
    QVERIFY(stored->value(s("draft")).toBool());
    QVERIFY(stored->value(s("number_formatted")).toString().startsWith(s("DRAFT - ")));

    DocumentEditorWindow* reopened = newWindow();
    QVERIFY(reopened->openDocument(stored->ref()));
    QVERIFY(reopened->windowTitle().startsWith(s("Invoice DRAFT - ")));
}

void tst_DocumentEditor::foreignCurrencyShowsRateAndAmounts()
{
    useEuro();
    addItem(s("Bolt"), s("B-8"), 1234.5);
    DocumentEditorWindow* window = shownNewDocument();
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

void tst_DocumentEditor::storedDocumentOpensUnedited()
{
    const Record* document = addDocument(1000);
    DocumentEditorWindow* window = newWindow();
    QVERIFY(window->openDocument(document->ref()));
    window->show();
    QCOMPARE(window->findChild<QAbstractItemView*>(s("rowsView"))->model()->rowCount(), 1000);
    // Showing the stored values is no edit.
    QCOMPARE(window->windowTitle(), s("Invoice INVOICE/2026-0042[*]"));
    QVERIFY(!window->isWindowModified() && !window->controller().isEdited());
}

CORVANTA_UI_TEST_MAIN(tst_DocumentEditor)
#include "tst_documenteditorwindow.moc"
