#include "ui/importclientswindow.h"
#include "ui/importitemswindow.h"
#include "uitestsupport.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QProgressDialog>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>

using namespace corvanta;
using namespace corvanta::ui::testing;
using store::Record;

namespace {

QStringList previewRows(const QWidget* window)
{
    return modelRows(*window->findChild<QTableView*>(s("previewTable"))->model());
}

QStringList headerTitles(const QWidget* window)
{
    return columnTitles(*window->findChild<QHeaderView*>(s("fieldHeader"))->model());
}

void tick(QWidget* window, const char* key)
{
    auto* action = window->findChild<QMenu*>(s("composeMenu"))->findChild<QAction*>(s(key));
    QVERIFY2(action, key);
    action->trigger();
}

void clickImport(QWidget* window)
{
    QTest::mouseClick(window->findChild<QPushButton*>(s("importButton")), Qt::LeftButton);
}

} // namespace

class TestCsvImportWindow : public QObject
{
    Q_OBJECT

private:
    QString write(const QByteArray& bytes)
    {
        const QString path = m_folder.filePath(QStringLiteral("file%1.csv").arg(++m_files));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(path));
        return path;
    }

    int count(const char* entity) { return m_company->main().count(store::FetchRequest(s(entity))); }

    std::unique_ptr<UiCompany> m_company;
    QTemporaryDir m_folder;
    int m_files = 0;

private Q_SLOTS:
    void init() { m_company = std::make_unique<UiCompany>(); }
    void cleanup() { m_company.reset(); }

    void preview_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("separator");
        QTest::addColumn<QString>("encoding");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QString>("count");
        QTest::newRow("semicolon, quotes holding the separator")
            << QByteArray("\"Acme; Ltd\";Main St\nBeta;\"Elm St\"\n") << s(";") << QString()
            << QStringList{s("Acme| Ltd|Main St"), s("Beta|Elm St|")} << s("2 lines, 3 columns");
        QTest::newRow("comma, fields beyond the first line dropped")
            << QByteArray("a;1,b\nc,d,e\n") << s(",") << QString() << QStringList{s("a;1|b"), s("c|d")}
            << s("2 lines, 2 columns");
        QTest::newRow("latin-1 accents after switching the encoding")
            << QByteArray("Caf\xe9;Z\xfcrich\n") << s(";") << s("Western (ISO Latin 1)")
            << QStringList{s("Café|Zürich")} << s("1 line, 2 columns");
    }

    void preview()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, separator);
        QFETCH(QString, encoding);
        QFETCH(QStringList, rows);
        QFETCH(QString, count);
        ui::ImportClientsWindow window(m_company->store(), m_company->prompter());
        pickText(window.findChild<QComboBox*>(s("separatorPopup")), separator);
        // Latin-1 accents are not UTF-8: the first reading is refused.
        QCOMPARE(window.openFile(write(bytes)), encoding.isEmpty());
        if (!encoding.isEmpty()) {
            QCOMPARE(m_company->prompter().titles(), QStringList{s("Warning")});
            pickText(window.findChild<QComboBox*>(s("encodingPopup")), encoding);
        }
        QCOMPARE(previewRows(&window), rows);
        QCOMPARE(window.findChild<QLabel*>(s("countLabel"))->text(), count);
    }

    void composeBuildsHeader()
    {
        ui::ImportClientsWindow window(m_company->store(), m_company->prompter());
        QCOMPARE(headerTitles(&window), QStringList{s("Company Name")});
        // Ticked in another order than the pop-up's: the header follows the pop-up.
        tick(&window, "city");
        tick(&window, "tax_number");
        tick(&window, "tax_number");
        // A click in the open pop-up ticks the field and leaves the pop-up open for the next one.
        window.show();
        auto* menu = window.findChild<QMenu*>(s("composeMenu"));
        menu->popup(window.mapToGlobal(QPoint(0, 0)));
        QVERIFY(QTest::qWaitForWindowExposed(menu));
        QAction* street = menu->findChild<QAction*>(s("street"));
        menu->setActiveAction(street);
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(street).center());
        QVERIFY(menu->isVisible());
        QVERIFY(street->isChecked());
        menu->hide();
        QCOMPARE(headerTitles(&window), (QStringList{s("Company Name"), s("Street"), s("City")}));
        pickText(window.findChild<QComboBox*>(s("clientTypePopup")), s("Individual"));
        QCOMPARE(headerTitles(&window),
                 (QStringList{s("First Name"), s("Last Name"), s("Street"), s("City")}));
        QVERIFY(!menu->findChild<QAction*>(s("company_name"))->isChecked());
        QVERIFY(menu->findChild<QAction*>(s("last_name"))->isChecked());
    }

    void importClients()
    {
        QPointer<ui::ImportClientsWindow> window =
            new ui::ImportClientsWindow(m_company->store(), m_company->prompter());
        window->show();
        QVERIFY(window->openFile(write("Acme Ltd;Main Street 1;Springfield\nBeta GmbH;Ring 2;Berlin\n")));
        tick(window, "street");
        tick(window, "city");
        pickText(window->findChild<QComboBox*>(s("tagPopup")), s("Supplier"));
        clickImport(window);
        QCOMPARE(askedLines(m_company->prompter()),
                 QStringList{s("Import Clients | 2 clients successfully added. | OK")});
        QTRY_VERIFY(!window);
        // The columns went where the header put them; the tag chosen was given.
        const Record* acme = m_company->named("Clients", s("company_name"), s("Acme Ltd"));
        QVERIFY(acme && acme->related(s("default_address")));
        QCOMPARE(acme->related(s("default_address"))->value(s("city")).toString(), s("Springfield"));
        QCOMPARE(acme->relatedList(s("tags")).size(), 1);
        QCOMPARE(acme->relatedList(s("tags")).constFirst()->value(s("name")).toString(), s("Supplier"));
    }

    void importItems()
    {
        QPointer<ui::ImportItemsWindow> window =
            new ui::ImportItemsWindow(m_company->store(), m_company->prompter());
        window->show();
        QVERIFY(window->openFile(write("Widget;1 234,50\nGadget;3\n")));
        tick(window, "unit_price");
        auto* taxPopup = window->findChild<QComboBox*>(s("taxPopup"));
        auto* unitPopup = window->findChild<QComboBox*>(s("unitPopup"));
        // The company's defaults come first; the next ones are chosen.
        const QString tax = taxPopup->itemText(1), unit = unitPopup->itemText(1);
        QVERIFY(!tax.isEmpty() && !unit.isEmpty());
        pickText(taxPopup, tax);
        pickText(unitPopup, unit);
        clickImport(window);
        QCOMPARE(askedLines(m_company->prompter()),
                 QStringList{s("Import Items | 2 items successfully added. | OK")});
        QTRY_VERIFY(!window);
        const Record* widget = m_company->named("Items", s("name"), s("Widget"));
        QVERIFY(widget);
        QCOMPARE(widget->value(s("unit_price")).toDouble(), 1234.5);
        QCOMPARE(widget->related(s("tax"))->value(s("name")).toString(), tax);
        QCOMPARE(widget->related(s("unit"))->value(s("name")).toString(), unit);
    }

    void cancelStoresNothing()
    {
        QByteArray bytes;
        for (int line = 0; line < 500; ++line)
            bytes += QByteArray("Client ") + QByteArray::number(line) + ";Street\n";
        const int clients = count("Clients");
        QPointer<ui::ImportClientsWindow> window =
            new ui::ImportClientsWindow(m_company->store(), m_company->prompter());
        window->show();
        QVERIFY(window->openFile(write(bytes)));
        m_company->prompter().clear();
        bool cancelled = false;
        QTimer::singleShot(0, window, [&] {
            if (auto* progress = window->findChild<QProgressDialog*>(s("importProgress"))) {
                progress->cancel();
                cancelled = true;
            }
        });
        clickImport(window);
        QVERIFY(cancelled);
        QVERIFY(window && window->isVisible());
        QCOMPARE(count("Clients"), clients);
        QCOMPARE(m_company->prompter().titles(), QStringList{});
        delete window;
    }

    void unreadableFileKeepsThePreview()
    {
        ui::ImportClientsWindow window(m_company->store(), m_company->prompter());
        QVERIFY(window.openFile(write("One;1\nTwo;2\n")));
        QVERIFY(!window.openFile(m_folder.filePath(s("missing.csv"))));
        QCOMPARE(m_company->prompter().titles(), QStringList{s("Warning")});
        QCOMPARE(previewRows(&window), (QStringList{s("One|1"), s("Two|2")}));
    }
};

CORVANTA_UI_TEST_MAIN(TestCsvImportWindow)
#include "tst_csvimportwindow.moc"
