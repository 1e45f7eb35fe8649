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

    // Read as UTF-8 first, the file is refused; the encoding chosen reads it again with the
    // separator chosen before.
    void encodingChosenAfterARefusal()
    {
        ui::ImportClientsWindow window(m_company->store(), m_company->prompter());
        pickText(window.findChild<QComboBox*>(s("separatorPopup")), s(";"));
        QVERIFY(!window.openFile(write("Caf\xe9;Z\xfcrich\n")));
        QCOMPARE(m_company->prompter().titles(), QStringList{s("Warning")});
        pickText(window.findChild<QComboBox*>(s("encodingPopup")), s("Western (ISO Latin 1)"));
        QCOMPARE(previewRows(&window), QStringList{s("Café|Zürich")});
        QCOMPARE(window.findChild<QLabel*>(s("countLabel"))->text(), s("1 line, 2 columns"));
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

    // The tag chosen is given to every client brought in.
    void importedClientsAreTagged()
    {
        QPointer<ui::ImportClientsWindow> window =
            new ui::ImportClientsWindow(m_company->store(), m_company->prompter());
        window->show();
        QVERIFY(window->openFile(write("Acme Ltd\nBeta GmbH\n")));
        pickText(window->findChild<QComboBox*>(s("tagPopup")), s("Supplier"));
        clickImport(window);
        QTRY_VERIFY(!window);
        for (const char* name : {"Acme Ltd", "Beta GmbH"}) {
            const Record* client = m_company->named("Clients", s("company_name"), s(name));
            QVERIFY2(client && client->relatedList(s("tags")).size() == 1, name);
            QCOMPARE(client->relatedList(s("tags")).constFirst()->value(s("name")).toString(), s("Supplier"));
        }
    }

    void importItems()
    {
        QPointer<ui::ImportItemsWindow> window =
            new ui::ImportItemsWindow(m_company->store(), m_company->prompter());
        window->show();
        QVERIFY(window->openFile(write("Widget;1 234,50\nGadget;3\n")));
        tick(window, "unit_price");
        // The company's default tax comes first; the next one is chosen.
        auto* taxPopup = window->findChild<QComboBox*>(s("taxPopup"));
        const QString tax = taxPopup->itemText(1);
        pickText(taxPopup, tax);
        clickImport(window);
        QCOMPARE(askedLines(m_company->prompter()),
                 QStringList{s("Import Items | 2 items successfully added. | OK")});
        QTRY_VERIFY(!window);
        const Record* widget = m_company->named("Items", s("name"), s("Widget"));
        QVERIFY(widget);
        QCOMPARE(widget->value(s("unit_price")).toDouble(), 1234.5);
        QCOMPARE(widget->related(s("tax"))->value(s("name")).toString(), tax);
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
                // The window stays while its import runs; Cancel stops it.
                cancelled = !window->close();
                progress->cancel();
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
