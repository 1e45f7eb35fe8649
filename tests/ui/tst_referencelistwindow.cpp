#include "editors/customfieldsmodel.h"
#include "editors/referencelisteditor.h"
#include "editors/referencelistmodel.h"
#include "model/companyrecord.h"
#include "ui/customfieldswindow.h"
#include "ui/documenteditorwindow.h"
#include "ui/documentrowsmodel.h"
#include "ui/openeditors.h"
#include "ui/referencelistwindow.h"
#include "uitestsupport.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTableView>
#include <QToolButton>

using namespace corvanta;
using namespace corvanta::ui::testing;
using editors::ReferenceListType;
using store::Record;
using ui::ReferenceListWindow;
using Type = ReferenceListType;

Q_DECLARE_METATYPE(ReferenceListType)

// The reference list and custom field windows on a real company.
class tst_ReferenceListWindow : public QObject
{
    Q_OBJECT

private:
    ReferenceListWindow* open(Type type)
    {
        auto* window = new ReferenceListWindow(type, m_company->store(), m_company->prompter());
        m_windows << window;
        window->show();
        return window;
    }
    // The column of an attribute, -1 without one.
    static int column(const ReferenceListWindow* window, const QString& key)
    {
        for (int c = 0; c < window->model().columnCount(); ++c) {
            if (window->model().index(0, c).data(editors::ReferenceListModel::KeyRole) == key)
                return c;
        }
        return -1;
    }
    // The cell editor open at the view's current index.
    template <typename Editor>
    static Editor* cellEditor(QTableView* view)
    {
        return qobject_cast<Editor*>(view->indexWidget(view->currentIndex()));
    }
    // Types into the open cell editor and leaves it with Return.
    static void typeIn(QTableView* view, const QString& text)
    {
        auto* edit = cellEditor<QLineEdit>(view);
        QVERIFY(edit);
        edit->clear();
        QTest::keyClicks(edit, text);
        QTest::keyClick(edit, Qt::Key_Return);
        QCoreApplication::processEvents(); // the delegate commits after the key
    }
    // Adds a record named `name` in the window as the user does.
    static void addNamed(ReferenceListWindow* window, const QString& name)
    {
        window->findChild<QToolButton*>(s("addButton"))->click();
        typeIn(window->view(), name);
    }

    std::unique_ptr<UiCompany> m_company;
    QList<QPointer<QWidget>> m_windows;

private Q_SLOTS:
    void init() { m_company = std::make_unique<UiCompany>(); }
    void cleanup()
    {
        qDeleteAll(m_windows);
        m_windows.clear();
        m_company.reset();
    }

    void everyList_data()
    {
        QTest::addColumn<Type>("type");
        QTest::addColumn<QString>("columns");
        QTest::newRow("taxes") << Type::Taxes << s("Name|Rate 1|Rate 2|Cumulative|Default");
        QTest::newRow("units") << Type::Units << s("Name|Default");
        QTest::newRow("banks") << Type::Banks << s("Line 1|Line 2|Line 3|Default");
        QTest::newRow("due days") << Type::DueDays << s("Name|Days|Business Days|Default");
        QTest::newRow("payment types") << Type::PaymentTypes << s("Name|Default");
        QTest::newRow("currencies")
            << Type::Currencies
            << s("Code|Symbol|Symbol Format|Grouping Separator|Decimal Separator|Digits|"
                 "Fixed Digits|Selectable|Sample|Default");
    }

    // Currencies are neither added nor copied; in the other lists "+" opens the new record's naming
    // cell, and what is typed there is stored on Return.
    void everyList()
    {
        QFETCH(Type, type);
        QFETCH(QString, columns);
        ReferenceListWindow* window = open(type);
        QCOMPARE(columnTitles(window->model()).join(u'|'), columns);
        const bool changeable = type != Type::Currencies;
        QCOMPARE(window->property("canAdd").toBool(), changeable);
        QCOMPARE(window->findChild<QToolButton*>(s("addButton"))->isVisible(), changeable);
        const int rows = window->model().rowCount();
        if (!changeable) {
            window->addRow();
            window->duplicateRow();
            QCOMPARE(window->model().rowCount(), rows);
            return;
        }
        addNamed(window, s("Harbour"));
        window->findChild<QToolButton*>(s("duplicateButton"))->click();
        QCOMPARE(window->model().rowCount(), rows + 2);
        QCOMPARE(window->property("selectedRowCount").toInt(), 1);
        QVERIFY(cellEditor<QLineEdit>(window->view()));
        const QString entity = window->editor().list().entity();
        QVERIFY(m_company->named(qPrintable(entity), window->editor().list().namingKey(), s("Harbour")));
    }

    void deleteFromTheMinusButton_data()
    {
        QTest::addColumn<bool>("isDefault");
        QTest::newRow("the default, refused") << true;
        QTest::newRow("unused") << false;
    }

    // The refusal comes from the list's rules; the window shows it and keeps the row.
    void deleteFromTheMinusButton()
    {
        QFETCH(bool, isDefault);
        Record* tax = isDefault ? model::CompanyRecord::defaultRecord(m_company->main(), s("default_tax"))
                                : m_company->main().insertRecord(s("Taxes"), {{s("name"), s("Luxury")}});
        m_company->save();
        const predicate::RecordRef ref = tax->ref();
        ReferenceListWindow* window = open(Type::Taxes);
        QVERIFY(window->selectRecord(window->editor().context().record(ref)));
        m_company->prompter().clear();
        window->findChild<QToolButton*>(s("removeButton"))->click();
        QCOMPARE(m_company->prompter().titles(),
                 isDefault ? QStringList{s("Tax cannot be deleted")} : QStringList());
        QCOMPARE(m_company->main().fetchRecord(s("Taxes"), ref) != nullptr, isDefault);
    }

    // Space on another row's tick makes it the company's default and keeps the row selected.
    void defaultTickMoves()
    {
        ReferenceListWindow* window = open(Type::Units);
        addNamed(window, s("Pallet"));
        Record* pallet = window->selectedRecord();
        QVERIFY(pallet);
        window->view()->setCurrentIndex(window->model().indexOf(pallet, window->model().defaultColumn()));
        QTest::keyClick(window->view(), Qt::Key_Space);
        QCOMPARE(model::CompanyRecord::defaultRecord(m_company->main(), s("default_unit"))->value(s("name")),
                 QVariant(s("Pallet")));
        QCOMPARE(window->selectedRecord(), pallet);
    }

    void currencySampleFollowsEdits_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value"); // typed, chosen, or ticked with Space
        QTest::addColumn<QString>("sample");
        QTest::newRow("digits typed") << s("digits") << s("3") << s("$12,345.679");
        QTest::newRow("placement chosen") << s("symbol_format") << s("sr") << s("12,345.68 $");
        QTest::newRow("fixed digits ticked") << s("show_fixed_digits") << QString() << s("$12,345.60");
    }

    // The sample of the default currency (US dollar: "$" before, "," and ".", two digits) changes
    // as soon as the cell is left.
    void currencySampleFollowsEdits()
    {
        QFETCH(QString, key);
        QFETCH(QString, value);
        QFETCH(QString, sample);
        ReferenceListWindow* window = open(Type::Currencies);
        Record* dollar = window->editor().defaultCurrency();
        const QModelIndex cell = window->model().indexOf(dollar, column(window, key));
        window->view()->setCurrentIndex(cell);
        if (value.isEmpty()) {
            QTest::keyClick(window->view(), Qt::Key_Space);
        } else if (window->view()->edit(cell); auto* chooser = cellEditor<QComboBox>(window->view())) {
            chooser->setCurrentIndex(chooser->findData(value));
            QTest::keyClick(chooser, Qt::Key_Return);
            QCoreApplication::processEvents();
        } else {
            typeIn(window->view(), value);
        }
        QCOMPARE(window->model().indexOf(dollar, column(window, s("sample"))).data().toString(), sample);
        QCOMPARE(m_company->named("Currencies", s("code"), s("USD"))->value(s("sample")).toString(), sample);
    }

    void documentEditorFollows_data()
    {
        QTest::addColumn<Type>("type");
        QTest::addColumn<QString>("chooser"); // empty: the tax pop-up of the first row
        QTest::addColumn<QString>("name");
        QTest::newRow("tax") << Type::Taxes << QString() << s("Reduced 7");
        QTest::newRow("bank") << Type::Banks << s("bankChooser") << s("Harbour Bank");
        QTest::newRow("currency made selectable") << Type::Currencies << s("currencyChooser") << s("JPY");
    }

    // A record added in a list window, or a currency made selectable there, is offered by a document
    // editor that was open before.
    void documentEditorFollows()
    {
        QFETCH(Type, type);
        QFETCH(QString, chooser);
        QFETCH(QString, name);
        ui::OpenEditors openEditors;
        auto* editor = new ui::DocumentEditorWindow(m_company->store(), m_company->prompter(), openEditors);
        m_windows << editor;
        QVERIFY(editor->newDocument(0));
        editor->show();
        ReferenceListWindow* window = open(type);
        if (type == Type::Currencies) {
            const Record* yen =
                window->editor().context().record(m_company->named("Currencies", s("code"), s("JPY"))->ref());
            window->view()->setCurrentIndex(window->model().indexOf(yen, column(window, s("selectable"))));
            QTest::keyClick(window->view(), Qt::Key_Space);
        } else {
            addNamed(window, name);
        }
        QComboBox* offered = nullptr;
        if (chooser.isEmpty()) {
            editor->addRow();
            auto* rows = editor->findChild<QTableView*>(s("rowsView"));
            rows->setCurrentIndex(rows->model()->index(0, ui::DocumentRowsModel::Tax));
            rows->edit(rows->currentIndex());
            offered = cellEditor<QComboBox>(rows);
        } else {
            offered = editor->findChild<QComboBox*>(chooser);
        }
        QVERIFY(offered);
        QVERIFY2(offered->findText(name) >= 0, qPrintable(name));
    }

    void customFieldLabel_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<QString>("shown");
        QTest::newRow("named") << s("Birthday") << QVariant(s("Birthday")) << s("Birthday");
        QTest::newRow("emptied") << QString() << QVariant() << s("Custom 3");
    }

    // A client field's label is saved as soon as it is typed; emptied, the field shows its readable
    // name and stays listed in a window opened later.
    void customFieldLabel()
    {
        QFETCH(QString, typed);
        QFETCH(QVariant, stored);
        QFETCH(QString, shown);
        const auto clientsView = [this] {
            auto* window = new ui::CustomFieldsWindow(m_company->store(), m_company->prompter());
            m_windows << window;
            window->show();
            return window->view(ui::CustomFieldsWindow::Clients);
        };
        QTableView* view = clientsView();
        view->setCurrentIndex(view->model()->index(2, editors::CustomFieldsModel::Label));
        view->edit(view->currentIndex());
        typeIn(view, typed);
        QCOMPARE(view->currentIndex().data().toString(), shown);
        QCOMPARE(m_company->named("Compose", s("name"), s("client_custom03"))->value(s("label")), stored);
        // Listed again, by its label or its readable name, in a window opened later.
        QCOMPARE(clientsView()->model()->index(2, editors::CustomFieldsModel::Label).data().toString(),
                 shown);
    }
};

CORVANTA_UI_TEST_MAIN(tst_ReferenceListWindow)
#include "tst_referencelistwindow.moc"
