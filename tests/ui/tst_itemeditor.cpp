#include "editors/documentcontroller.h"
#include "editors/itemcontroller.h"
#include "format/numberinput.h"
#include "ui/deliverysheet.h"
#include "ui/itemeditorwindow.h"
#include "ui/openeditors.h"
#include "ui/tagspopover.h"
#include "uitestsupport.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCompleter>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QToolButton>
#include <QTreeWidget>

using namespace corvanta;
using namespace corvanta::ui::testing;
using store::Record;
using ui::DeliverySheet;
using ui::ItemEditorWindow;

namespace {

// Replaces a field's text as the user does, and leaves it with Return unless told not to.
void type(QLineEdit* edit, const QString& text, bool pressReturn = true)
{
    QVERIFY(edit);
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Backspace);
    QTest::keyClicks(edit, text);
    if (pressReturn)
        QTest::keyClick(edit, Qt::Key_Return);
}

void choose(QComboBox* popup, const QString& text)
{
    QVERIFY(popup);
    const int index = popup->findText(text);
    QVERIFY2(index >= 0, qPrintable(text + s(" is not offered")));
    popup->setCurrentIndex(index);
    Q_EMIT popup->activated(index);
}

QStringList rowsOf(const QTreeWidget* list)
{
    QStringList rows;
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        QStringList cells;
        for (int column = 0; column < list->columnCount(); ++column)
            cells << list->topLevelItem(i)->text(column);
        rows << cells.join(s(" | "));
    }
    return rows;
}

QString shortDate(const QDate& date)
{
    return QLocale().toString(date, QLocale::ShortFormat);
}

} // namespace

class TestItemEditor : public QObject
{
    Q_OBJECT

private:
    // A record stored at once; clients and items get their identifier.
    Record* insert(const char* entity, QVariantMap values)
    {
        if (s(entity) == s("Clients") || s(entity) == s("Items"))
            values.insert(s("identifier"), support::UUID());
        Record* record = m_company->main().insertRecord(s(entity), values);
        m_company->save();
        return record;
    }
    Record* addSupplier(const QString& companyName)
    {
        return insert("Clients", {{s("company_name"), companyName}, {s("type"), qint64(1)}});
    }
    Record* addItem(const QString& name)
    {
        return insert("Items", {{s("name"), name}, {s("type"), qint64(1)}});
    }
    void addDelivery(Record* item, Record* supplier, double quantity, const QDate& date)
    {
        Record* delivery = insert("Warehouse", {{s("quantity"), quantity}, {s("date"), date.startOfDay()}});
        delivery->setRelated(s("item"), item);
        delivery->setRelated(s("client"), supplier);
        m_company->save();
    }

    // Opens the delivery sheet from the window's warehouse view.
    static DeliverySheet* openDeliverySheet(ItemEditorWindow& window)
    {
        window.findChild<QToolButton*>(s("deliveriesInButton"))->click();
        window.findChild<QPushButton*>(s("addDeliveryButton"))->click();
        auto* sheet = window.findChild<DeliverySheet*>(s("DeliverySheet"));
        return sheet && QTest::qWaitForWindowExposed(sheet) ? sheet : nullptr;
    }

    // Types into the supplier field and picks the first suggestion from the completer's list.
    static void pickSupplier(DeliverySheet* sheet, const QString& typed)
    {
        auto* edit = sheet->findChild<QLineEdit*>(s("supplierEdit"));
        QTest::keyClicks(edit, typed);
        QAbstractItemView* popup = edit->completer()->popup();
        QTRY_VERIFY(popup->isVisible());
        popup->setCurrentIndex(popup->model()->index(0, 0));
        QTest::keyClick(popup, Qt::Key_Return);
    }

private Q_SLOTS:
    void initTestCase() { QCoreApplication::setOrganizationName(s("corvanta-tests")); }
    void init()
    {
        m_company = std::make_unique<UiCompany>();
        m_openEditors = std::make_unique<ui::OpenEditors>();
    }
    void cleanup()
    {
        m_openEditors.reset();
        m_company.reset();
    }

    // Prices are typed into the window's own fields; Gross to Net takes out the first rate of
    // the chosen tax and shows the net prices.
    void grossToNet()
    {
        insert("Taxes", {{s("name"), s("VAT 20/5")}, {s("rate1"), 20.0}, {s("rate2"), 5.0}});
        ItemEditorWindow window(m_company->store(), m_company->prompter(), *m_openEditors);
        QVERIFY(window.newItem(1));
        choose(window.findChild<QComboBox*>(s("taxPopup")), s("VAT 20/5"));
        type(window.findChild<QLineEdit*>(s("priceEdit01")), s("120"));
        type(window.findChild<QLineEdit*>(s("priceEdit02")), s("60"));
        QTest::mouseClick(window.findChild<QPushButton*>(s("grossToNetButton")), Qt::LeftButton);

        const Record* item = window.controller().item();
        QCOMPARE(item->value(s("custom_price01")).toDouble(), 100.0);
        QCOMPARE(item->value(s("custom_price02")).toDouble(), 50.0);
        QCOMPARE(window.findChild<QLineEdit*>(s("priceEdit01"))->text(), s("100"));
        QVERIFY(window.isWindowModified());
    }

    // A price the program cannot take is told and the field shows the stored price again.
    void refusedPrice()
    {
        ItemEditorWindow window(m_company->store(), m_company->prompter(), *m_openEditors);
        QVERIFY(window.newItem(0));
        auto* field = window.findChild<QLineEdit*>(s("priceEdit03"));
        type(field, s("12.5"));
        type(field, s("abc"));

        QCOMPARE(m_company->prompter().titles(), QStringList{format::NumberInput::alertTitle()});
        QCOMPARE(m_company->prompter().questions().constFirst().text,
                 format::NumberInput::notANumberMessage(s("abc")));
        QCOMPARE(window.controller().item()->value(s("custom_price03")).toDouble(), 12.5);
        QCOMPARE(field->text(), s("12.5"));
    }

    // Only the sheet's confirming button adds the delivery; the supplier comes from the
    // suggestions of suppliers (type 1) and is shown by its full name.
    void deliverySheet_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<int>("deliveries");
        QTest::newRow("Add") << s("add") << 1;
        QTest::newRow("Return in the quantity field") << s("return") << 1;
        QTest::newRow("Cancel") << s("cancel") << 0;
        QTest::newRow("typed name that is no supplier") << s("unknown") << 0;
    }
    void deliverySheet()
    {
        QFETCH(QString, answer);
        QFETCH(int, deliveries);
        addSupplier(s("Acme Supplies Ltd"));
        m_company->addClient(s("Acme Retail")); // a customer, not a supplier
        ItemEditorWindow window(m_company->store(), m_company->prompter(), *m_openEditors);
        QVERIFY(window.newItem(1));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        QPointer<DeliverySheet> sheet = openDeliverySheet(window);
        QVERIFY(sheet);
        QCOMPARE(sheet->windowModality(), Qt::WindowModal);
        auto* supplierEdit = sheet->findChild<QLineEdit*>(s("supplierEdit"));
        auto* addButton = sheet->findChild<QPushButton*>(s("addButton"));
        if (answer == s("unknown")) {
            type(supplierEdit, s("Acme Retail"), false);
            QVERIFY(!addButton->isEnabled());
            QVERIFY(sheet->findChild<QLabel*>(s("supplierHint"))->isVisible());
            QTest::mouseClick(addButton, Qt::LeftButton);
            QVERIFY(window.controller().movementsIn().isEmpty());
            return;
        }
        pickSupplier(sheet, s("acme"));
        QVERIFY(!sheet->findChild<QLabel*>(s("supplierHint"))->isVisible());
        QCOMPARE(supplierEdit->completer()->model()->rowCount(), 1);
        QCOMPARE(supplierEdit->text(), s("Acme Supplies Ltd"));
        sheet->findChild<QDateEdit*>(s("dateEdit"))->setDate(QDate(2026, 3, 14));
        type(sheet->findChild<QLineEdit*>(s("quantityEdit")), s("7.5"), answer == s("return"));
        if (answer == s("add"))
            QTest::mouseClick(addButton, Qt::LeftButton);
        else if (answer == s("cancel"))
            QTest::mouseClick(sheet->findChild<QPushButton*>(s("cancelButton")), Qt::LeftButton);
        QTRY_VERIFY(sheet.isNull());

        const QList<Record*> in = window.controller().movementsIn();
        QCOMPARE(in.size(), deliveries);
        QCOMPARE(rowsOf(window.findChild<QTreeWidget*>(s("deliveriesInList"))).size(), deliveries);
        QCOMPARE(window.isWindowModified(), deliveries > 0);
        if (deliveries) {
            QCOMPARE(in.constFirst()->value(s("quantity")).toDouble(), 7.5);
            QCOMPARE(in.constFirst()->value(s("date")).toDateTime().date(), QDate(2026, 3, 14));
            QCOMPARE(in.constFirst()->valueForKeyPath(s("client.company_name")).toString(),
                     s("Acme Supplies Ltd"));
        }
        QVERIFY(m_company->prompter().questions().isEmpty());
    }

    // Out: rows of final documents; in: the deliveries. A delivery removed and one added through
    // the sheet count in the stock once the item is saved: 5 + 4 delivered, 3 sold.
    void warehouseAndStock()
    {
        Record* supplier = addSupplier(s("Northwind Traders"));
        Record* item = addItem(s("Oak Table"));
        addDelivery(item, supplier, 10, QDate(2026, 1, 5));
        addDelivery(item, supplier, 5, QDate(2026, 2, 9));
        const QDateTime created(QDate(2026, 3, 1), QTime(10, 0));
        Record* invoice = m_company->addInvoice(s("INV-7"), 0.0);
        invoice->setValue(s("created"), created);
        invoice->setValue(s("date_creation"), created);
        invoice->setRelated(s("client"), m_company->addClient(s("Blue Harbour")));
        Record* row = insert("DocumentRows", {{s("quantity"), 3.0}, {s("order"), 1}});
        row->setRelated(s("document"), invoice);
        row->setRelated(s("item"), item);
        m_company->save();

        QPointer<ItemEditorWindow> window =
            new ItemEditorWindow(m_company->store(), m_company->prompter(), *m_openEditors);
        QVERIFY(window->openItem(item->ref()));
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QCOMPARE(rowsOf(window->findChild<QTreeWidget*>(s("movementsOutList"))),
                 QStringList{s("3 | Blue Harbour | INV-7 | ") + shortDate(created.date())});
        auto* inList = window->findChild<QTreeWidget*>(s("deliveriesInList"));
        QCOMPARE(rowsOf(inList), (QStringList{shortDate(QDate(2026, 1, 5)) + s(" | Northwind Traders | 10"),
                                              shortDate(QDate(2026, 2, 9)) + s(" | Northwind Traders | 5")}));

        auto* removeButton = window->findChild<QPushButton*>(s("removeDeliveryButton"));
        QVERIFY(!removeButton->isEnabled());
        inList->setCurrentItem(inList->topLevelItem(0));
        removeButton->click();
        QCOMPARE(rowsOf(inList), QStringList{shortDate(QDate(2026, 2, 9)) + s(" | Northwind Traders | 5")});
        QVERIFY(window->isWindowModified());

        QPointer<DeliverySheet> sheet = openDeliverySheet(*window);
        QVERIFY(sheet);
        pickSupplier(sheet, s("north"));
        type(sheet->findChild<QLineEdit*>(s("quantityEdit")), s("4"), false);
        QTest::mouseClick(sheet->findChild<QPushButton*>(s("addButton")), Qt::LeftButton);
        QTRY_VERIFY(sheet.isNull());
        QTest::mouseClick(window->findChild<QPushButton*>(s("saveButton")), Qt::LeftButton);
        QTRY_VERIFY(window.isNull()); // a save from the window's own button closes it

        ItemEditorWindow reopened(m_company->store(), m_company->prompter(), *m_openEditors);
        QVERIFY(reopened.openItem(item->ref()));
        QCOMPARE(reopened.findChild<QLabel*>(s("stockLabel"))->text(), s("6"));
        QVERIFY(m_company->prompter().questions().isEmpty());
    }

    // A new item saved while a document editor is shown becomes a row of that document at the
    // price level active there; without one shown nothing is handed over.
    void handOver_data()
    {
        QTest::addColumn<bool>("documentShown");
        QTest::addColumn<int>("level");
        QTest::addColumn<double>("unitPrice");
        QTest::newRow("third level, document editor shown") << true << 3 << 30.0;
        QTest::newRow("document editor hidden") << false << 1 << 0.0;
    }
    void handOver()
    {
        QFETCH(bool, documentShown);
        QFETCH(int, level);
        QFETCH(double, unitPrice);
        editors::DocumentController document(m_company->store(), m_company->prompter());
        QVERIFY(document.newDocument(0));
        document.defaultPriceChanged(level);
        QWidget documentWindow;
        if (documentShown)
            documentWindow.show();
        m_openEditors->addDocumentEditor(&documentWindow, &document);

        QPointer<ItemEditorWindow> window =
            new ItemEditorWindow(m_company->store(), m_company->prompter(), *m_openEditors);
        QVERIFY(window->newItem(0));
        type(window->findChild<QLineEdit*>(s("nameEdit")), s("Consulting"));
        QCOMPARE(window->windowTitle(), s("Consulting[*]"));
        for (int n = 1; n <= 5; ++n)
            type(window->findChild<QLineEdit*>(s("priceEdit0%1").arg(n)), QString::number(n * 10));
        QVERIFY(window->save());
        QTRY_VERIFY(window.isNull());

        const QList<Record*> rows = document.rows();
        QCOMPARE(rows.size(), documentShown ? 1 : 0);
        if (documentShown) {
            QCOMPARE(rows.constFirst()->valueForKeyPath(s("item.name")).toString(), s("Consulting"));
            QCOMPARE(rows.constFirst()->value(s("unit_price")).toDouble(), unitPrice);
        }
    }

    // A tag ticked in the popover marks the item edited and is saved with it, next to the
    // program's own tag of the item's type.
    void tags()
    {
        m_company->main().insertRecord(s("Categories"), {{s("name"), s("Outdoor")}, {s("type"), qint64(2)}});
        m_company->save();
        QPointer<ItemEditorWindow> window =
            new ItemEditorWindow(m_company->store(), m_company->prompter(), *m_openEditors);
        QVERIFY(window->openItem(addItem(s("Garden Bench"))->ref()));
        window->show();
        QVERIFY(!window->isWindowModified());
        window->findChild<QPushButton*>(s("tagsButton"))->click();
        auto* popover = window->findChild<ui::TagsPopover*>();
        QVERIFY(popover);
        QCOMPARE(popover->rows().size(), 1);
        popover->toggleRow(0);
        QVERIFY(window->isWindowModified());
        QVERIFY(window->save());
        QTRY_VERIFY(window.isNull());

        QStringList names;
        for (const Record* tag :
             m_company->named("Items", s("name"), s("Garden Bench"))->relatedList(s("tags")))
            names << tag->value(s("name")).toString();
        names.sort();
        QCOMPARE(names, (QStringList{s("Outdoor"), s("Product")}));
    }

    // The company's names for the custom fields and price levels label the fields; a hidden
    // custom field is not shown; what is typed lands in the field's own key.
    void fieldLabels()
    {
        const auto compose = [&](const char* name) {
            return m_company->named("Compose", s("name"), s(name));
        };
        compose("item_custom02")->setValue(s("label"), s("Colour"));
        compose("item_custom04")->setValue(s("hidden"), true);
        compose("item_custom_price02")->setValue(s("label"), s("Wholesale"));
        m_company->save();
        ItemEditorWindow window(m_company->store(), m_company->prompter(), *m_openEditors);
        QVERIFY(window.newItem(1));
        window.show();

        const auto labelOf = [&](const char* field) {
            const QList<QLabel*> labels = window.findChildren<QLabel*>();
            for (const QLabel* label : labels) {
                if (label->buddy() && label->buddy()->objectName() == s(field))
                    return label->isVisibleTo(&window) ? label->text() : s("(hidden)");
            }
            return s("(none)");
        };
        QCOMPARE(labelOf("customEdit02"), s("Colour:"));
        QCOMPARE(labelOf("customEdit04"), s("(hidden)"));
        QCOMPARE(labelOf("priceEdit02"), s("Wholesale:"));
        QTest::keyClicks(window.findChild<QLineEdit*>(s("customEdit02")), s("Green"));
        QCOMPARE(window.controller().item()->value(s("custom02")).toString(), s("Green"));
    }

private:
    std::unique_ptr<UiCompany> m_company;
    std::unique_ptr<ui::OpenEditors> m_openEditors;
};

CORVANTA_UI_TEST_MAIN(TestItemEditor)

#include "tst_itemeditor.moc"
