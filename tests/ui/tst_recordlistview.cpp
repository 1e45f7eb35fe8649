#include "browse/categorytree.h"
#include "browse/recordlistmodel.h"
#include "ui/browsercommands.h"
#include "ui/recordlistview.h"
#include "uitestsupport.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QSignalSpy>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>
#include <memory>

using namespace corvanta;
using namespace corvanta::ui;
using namespace corvanta::ui::testing;
using store::Record;

class TestRecordListView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void sortMenuReordersTable_data();
    void sortMenuReordersTable();
    void rightClickSelectsRowAlone();
    void deleteAsksFirst();
    void tagsMenuTogglesTag();
    void cancelOnlyForFinalInvoices();
    void selectionAcrossSaves_data();
    void selectionAcrossSaves();
    void largeListShowsFirstPage();

private:
    Record* addDocument(const QString& number, qint64 sequence, const QDate& due, bool draft = false);
    QStringList column(int index) const;
    QAction* menuAction(QMenu* menu, const QString& text) const;

    std::unique_ptr<UiCompany> m_company;
    std::unique_ptr<QWidget> m_window;
    RecordListView* m_list = nullptr;
    BrowserCommands* m_commands = nullptr;
};

void TestRecordListView::init()
{
    m_company = std::make_unique<UiCompany>();
    m_window = std::make_unique<QWidget>();
    m_list = new RecordListView(m_company->store(), m_company->prompter());
    auto* layout = new QVBoxLayout(m_window.get());
    layout->addWidget(m_list);
    m_commands = new BrowserCommands(m_company->store(), m_company->prompter(), *m_list, m_window.get());
    m_window->resize(800, 600);
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void TestRecordListView::cleanup()
{
    m_window.reset();
    m_company.reset();
}

Record* TestRecordListView::addDocument(const QString& number, qint64 sequence, const QDate& due, bool draft)
{
    Record* document = m_company->main().insertRecord(
        s("Documents"), {{s("type"), qint64(0)},
                         {s("draft"), draft},
                         {s("number_formatted"), number},
                         {s("number"), sequence},
                         {s("sum_total"), 100.0},
                         {s("date_due"), QDateTime(due, QTime(12, 0))},
                         {s("date_creation"), QDateTime(QDate(2024, 1, 1), QTime(12, 0))},
                         {s("created"), QDateTime(QDate(2024, 1, 1), QTime(12, 0))},
                         {s("identifier"), support::UUID()}});
    m_company->save();
    return document;
}

QStringList TestRecordListView::column(int index) const
{
    QStringList values;
    for (int row = 0; row < m_list->table()->model()->rowCount(); ++row)
        values << m_list->table()->model()->index(row, index).data().toString();
    return values;
}

QAction* TestRecordListView::menuAction(QMenu* menu, const QString& text) const
{
    for (QAction* action : menu->actions()) {
        if (action->text() == text)
            return action;
    }
    return nullptr;
}

void TestRecordListView::sortMenuReordersTable_data()
{
    QTest::addColumn<QList<int>>("tags");
    QTest::addColumn<QStringList>("numbers");

    // Due dates: A on the 3rd, B and C both on the 2nd (B numbered 2, C numbered 3), D on the 1st.
    QTest::newRow("due date keeps the default's descending direction")
        << QList<int>{-4} << QStringList{s("A"), s("C"), s("B"), s("D")};
    QTest::newRow("due date ascending, equal dates by number")
        << QList<int>{-4, 1} << QStringList{s("D"), s("B"), s("C"), s("A")};
}

void TestRecordListView::sortMenuReordersTable()
{
    QFETCH(QList<int>, tags);
    QFETCH(QStringList, numbers);

    addDocument(s("B"), 2, QDate(2024, 2, 2));
    addDocument(s("D"), 4, QDate(2024, 2, 1));
    addDocument(s("A"), 1, QDate(2024, 2, 3));
    addDocument(s("C"), 3, QDate(2024, 2, 2));
    m_list->setCategory(m_company->category(s("All Documents")));

    QMenu* menu = m_list->sortButton()->menu();
    for (int tag : tags) {
        Q_EMIT menu->aboutToShow();
        QAction* chosen = nullptr;
        for (QAction* action : menu->actions()) {
            if (!action->isSeparator() && action->data().toInt() == tag)
                chosen = action;
        }
        QVERIFY2(chosen, qPrintable(QString::number(tag)));
        chosen->trigger();
        // The button names the key chosen last, as the menu's own entry does.
        if (tag < 0)
            QCOMPARE(m_list->sortButton()->text(), chosen->text());
    }
    QCOMPARE(column(0), numbers);
}

void TestRecordListView::rightClickSelectsRowAlone()
{
    for (const char* name : {"Alpha", "Beta", "Gamma", "Delta"})
        m_company->addClient(s(name));
    m_list->setCategory(m_company->category(s("All Clients")));
    m_list->table()->selectionModel()->select(
        QItemSelection(m_list->model()->index(0, 0), m_list->model()->index(2, 0)),
        QItemSelectionModel::Select | QItemSelectionModel::Rows);
    QSignalSpy changed(m_list, &RecordListView::selectionChanged);

    QTableView* table = m_list->table();
    const QPoint position = table->visualRect(m_list->model()->index(3, 0)).center();
    QContextMenuEvent click(QContextMenuEvent::Mouse, position, table->viewport()->mapToGlobal(position));
    QApplication::sendEvent(table->viewport(), &click);

    QCOMPARE(m_list->selectedRecords(), QList<Record*>{m_list->model()->recordAt(3)});
    QVERIFY(changed.count() >= 1);
    QCOMPARE(QApplication::focusWidget(), table);
    QMenu* menu = m_commands->contextMenu(browse::ListKind::Clients);
    QTRY_VERIFY(menu->isVisible());
    menu->close();
}

// The question names the client; Cancel keeps it. (Deleting through it is walked in the
// walkthrough test, by the main window's command that runs the same code.)
void TestRecordListView::deleteAsksFirst()
{
    m_company->addClient(s("Acme Ltd"));
    m_list->setCategory(m_company->category(s("All Clients")));
    m_list->table()->selectRow(0);

    m_company->prompter().addAnswer(s("Cancel"));
    menuAction(m_commands->contextMenu(browse::ListKind::Clients), s("Delete…"))->trigger();

    const auto& asked = m_company->prompter().questions();
    QCOMPARE(asked.size(), 1);
    QCOMPARE(asked.at(0).title, s("Are you sure you want to delete the client \"Acme Ltd\"?"));
    QCOMPARE(asked.at(0).text,
             s("The chosen client is in use in 0 documents. This action cannot be undone."));
    QCOMPARE(asked.at(0).buttons, (QStringList{s("Delete Client"), s("Cancel")}));
    QVERIFY(m_company->client(s("Acme Ltd")));
    QCOMPARE(column(0), QStringList{s("Acme Ltd")});
}

void TestRecordListView::tagsMenuTogglesTag()
{
    Record* client = m_company->addClient(s("Acme Ltd"));
    browse::CategoryTree(m_company->main()).newTag(s("Regulars"), 1, m_company->category(s("My Folder")));
    m_company->save();
    Record* tag = m_company->category(s("Regulars"));
    QVERIFY(tag);
    m_list->setCategory(m_company->category(s("All Clients")));
    m_list->table()->selectRow(0);

    for (bool carried : {true, false}) {
        QMenu* tags = m_commands->contextMenu(browse::ListKind::Clients)->findChild<QMenu*>(s("tagsMenu"));
        QAction* regulars = menuAction(tags, s("Regulars"));
        QVERIFY(regulars);
        QCOMPARE(regulars->isChecked(), !carried);
        regulars->trigger();
        QCOMPARE(client->relatedList(s("tags")).contains(tag), carried);
        // The list read its rows again after the save; the client stays selected.
        QCOMPARE(m_list->selectedRecords(), QList<Record*>{client});
    }
}

void TestRecordListView::cancelOnlyForFinalInvoices()
{
    Record* final = addDocument(s("RE-1"), 1, QDate(2024, 2, 1));
    Record* draft = addDocument(s("RE-2"), 2, QDate(2024, 2, 1), true);
    m_list->setCategory(m_company->category(s("All Documents")));
    for (Record* document : {final, draft}) {
        QVERIFY(m_list->selectRecord(document->ref()));
        QCOMPARE(menuAction(m_commands->contextMenu(browse::ListKind::Documents), s("Cancel Invoice…"))
                     ->isEnabled(),
                 document == final);
    }
}

void TestRecordListView::selectionAcrossSaves_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QStringList>("selected");
    QTest::addColumn<int>("signals");

    // Acme Ltd is selected; Zenith is listed after it.
    QTest::newRow("another client renamed to come first") << s("rename") << QStringList{s("Acme Ltd")} << 0;
    QTest::newRow("the selected client deleted") << s("delete") << QStringList{} << 1;
    QTest::newRow("the selected client duplicated") << s("duplicate") << QStringList{s("Acme Ltd Copy")} << 1;
}

void TestRecordListView::selectionAcrossSaves()
{
    QFETCH(QString, change);
    QFETCH(QStringList, selected);
    QFETCH(int, signals);

    for (const char* name : {"Acme Ltd", "Zenith"})
        m_company->addClient(s(name));
    m_list->setCategory(m_company->category(s("All Clients")));
    m_list->table()->selectRow(0);
    QSignalSpy spy(m_list, &RecordListView::selectionChanged);

    if (change == s("duplicate")) {
        m_commands->duplicateRecord();
    } else if (change == s("delete")) {
        m_company->main().deleteRecord(m_company->client(s("Acme Ltd")));
        m_company->save();
    } else {
        // A company's shown name follows its company name.
        m_company->client(s("Zenith"))->setValue(s("company_name"), s("Aaron"));
        m_company->save();
    }

    QStringList names;
    for (const Record* record : m_list->selectedRecords())
        names << record->value(s("full_name")).toString();
    QCOMPARE(names, selected);
    QCOMPARE(spy.count(), signals);
}

void TestRecordListView::largeListShowsFirstPage()
{
    constexpr int total = 5000;
    for (int i = 0; i < total; ++i)
        m_company->main().insertRecord(
            s("Documents"),
            {{s("type"), qint64(0)},
             {s("draft"), false},
             {s("number_formatted"), s("RE-%1").arg(i)},
             {s("number"), qint64(i)},
             {s("date_creation"), QDateTime(QDate(2020, 1, 1).addDays(i % 1500), QTime(12, 0))},
             {s("created"), QDateTime(QDate(2020, 1, 1), QTime(12, 0)).addSecs(i)},
             {s("identifier"), support::UUID()}});
    m_company->save();

    m_list->setCategory(m_company->category(s("All Documents")));
    const int first = m_list->model()->rowCount();
    QVERIFY2(first > 0 && first < total, qPrintable(QString::number(first)));

    m_list->table()->scrollToBottom();
    QTRY_VERIFY(m_list->model()->rowCount() > first);
    QVERIFY(m_list->model()->rowCount() < total);
}

CORVANTA_UI_TEST_MAIN(TestRecordListView)
#include "tst_recordlistview.moc"
