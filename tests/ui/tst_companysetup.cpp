// A new company made the user's own through its windows, as a user on a fresh machine goes it:
// clients brought in from a CSV file and from a vCard file, a tax edited in its list, the
// invoice number format changed in the preferences and seen on the next invoice, and an invoice
// template duplicated into a quotation template in the template library.
#include "editors/documentcontroller.h"
#include "editors/referencelisteditor.h"
#include "editors/referencelistmodel.h"
#include "store/editingcontext.h"
#include "ui/documenteditorwindow.h"
#include "ui/editorwindows.h"
#include "ui/importaddressbookwindow.h"
#include "ui/listwindows.h"
#include "ui/mainwindow.h"
#include "ui/preferenceswindow.h"
#include "ui/referencelistwindow.h"
#include "ui/templatelibrarywindow.h"
#include "uitestsupport.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QCompleter>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>

using namespace corvanta;
using namespace corvanta::ui::testing;
using store::Record;

class TestCompanySetup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void companyMadeOwn();

private:
    void activate(QWidget* window);
    // The list window of a class that is open now.
    template <typename Window>
    Window* listWindow() const;
    QString writeFile(const char* name, const QByteArray& contents);
    void importClientsFromCsv();
    void importPeopleFromVCard();
    void editTax();
    void numberInvoicesTheNewWay();
    void duplicateInvoiceTemplateAsQuotation();

    std::unique_ptr<UiCompany> m_company;
    std::unique_ptr<ui::MainWindow> m_window;
    QTemporaryDir m_files;
};

void TestCompanySetup::init()
{
    m_company = std::make_unique<UiCompany>();
    m_window = std::make_unique<ui::MainWindow>(m_company->core(), m_company->prompter());
    activate(m_window.get());
}

void TestCompanySetup::cleanup()
{
    m_window.reset();
    m_company.reset();
}

void TestCompanySetup::activate(QWidget* window)
{
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
    m_window->updateCommandStates();
}

template <typename Window>
Window* TestCompanySetup::listWindow() const
{
    for (QWidget* open : m_window->listWindows()->windows()) {
        if (auto* window = qobject_cast<Window*>(open))
            return window;
    }
    return nullptr;
}

QString TestCompanySetup::writeFile(const char* name, const QByteArray& contents)
{
    const QString path = m_files.filePath(s(name));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
        qFatal("cannot write %s", name);
    return path;
}

void TestCompanySetup::companyMadeOwn()
{
    for (void (TestCompanySetup::*step)() :
         {&TestCompanySetup::importClientsFromCsv, &TestCompanySetup::importPeopleFromVCard,
          &TestCompanySetup::editTax, &TestCompanySetup::numberInvoicesTheNewWay,
          &TestCompanySetup::duplicateInvoiceTemplateAsQuotation}) {
        (this->*step)();
        if (QTest::currentTestFailed())
            return;
    }
}

void TestCompanySetup::importClientsFromCsv()
{
    // Company name and city, the city ticked on the compose pop-up over the second column.
    const QString csv =
        writeFile("clients.csv", "Nordwind GmbH;Berlin\r\nSolis Ltd;Leeds\r\n\"Kestrel & Co\";Dublin\r\n");
    QPointer<QWidget> window = m_window->listWindows()->importClients(csv);
    QVERIFY(window);
    QCOMPARE(window->objectName(), s("ImportClientsWindow"));
    auto* city = window->findChild<QMenu*>(s("composeMenu"))->findChild<QAction*>(s("city"));
    QVERIFY(city && !city->isChecked());
    city->trigger();
    QVERIFY(city->isChecked());

    QTest::mouseClick(window->findChild<QPushButton*>(s("importButton")), Qt::LeftButton);
    QTRY_VERIFY(!window || !window->isVisible());
    const support::ScriptedPrompter::Question report = m_company->prompter().questions().value(0);
    QCOMPARE(report.title, s("Import Clients"));
    QCOMPARE(report.text, s("3 clients successfully added."));
    Record* kestrel = m_company->client(s("Kestrel & Co"));
    QVERIFY(kestrel);
    QCOMPARE(kestrel->relatedList(s("addresses")).value(0)->value(s("city")).toString(), s("Dublin"));
    m_company->prompter().clear();
}

void TestCompanySetup::importPeopleFromVCard()
{
    const QString vcard =
        writeFile("people.vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lindqvist;Astrid;;;\r\n"
                                "FN:Astrid Lindqvist\r\nEMAIL:astrid@lindqvist.test\r\n"
                                "END:VCARD\r\n"
                                "BEGIN:VCARD\r\nVERSION:3.0\r\nN:;;;;\r\nFN:Harbour Café\r\n"
                                "ORG:Harbour Café\r\nX-ABShowAs:COMPANY\r\nEND:VCARD\r\n");
    m_window->findChild<QAction*>(s("actionImportAddressBook"))->trigger();
    QPointer<ui::ImportAddressBookWindow> window = listWindow<ui::ImportAddressBookWindow>();
    QVERIFY(window);
    QVERIFY(window->addFiles({vcard}));
    QTest::mouseClick(window->findChild<QPushButton*>(s("importButton")), Qt::LeftButton);
    QTRY_VERIFY(!window || !window->isVisible());
    Record* astrid = m_company->client(s("Astrid Lindqvist"));
    QVERIFY(astrid);
    QCOMPARE(astrid->value(s("type")).toLongLong(), 2);
    QVERIFY(m_company->named("Clients", s("company_name"), s("Harbour Café")));
    QVERIFY(m_company->client(s("Nordwind GmbH")));
    m_company->prompter().clear();
}

void TestCompanySetup::editTax()
{
    // Company ▸ Taxes: the default tax's first rate typed over in its cell.
    m_window->findChild<QAction*>(s("actionWindow105"))->trigger();
    QPointer<ui::ReferenceListWindow> taxes = listWindow<ui::ReferenceListWindow>();
    QVERIFY(taxes);
    activate(taxes);
    Record* tax = m_company->named("Taxes", s("name"), s("10%"));
    QVERIFY(taxes->selectRecord(taxes->editor().context().record(tax->ref())));
    int rateColumn = -1;
    for (int column = 0; column < taxes->model().columnCount(); ++column) {
        if (taxes->model().index(0, column).data(editors::ReferenceListModel::KeyRole) == s("rate1"))
            rateColumn = column;
    }
    QVERIFY(rateColumn >= 0);
    const QModelIndex cell = taxes->model().indexOf(taxes->selectedRecord(), rateColumn);
    taxes->view()->setCurrentIndex(cell);
    taxes->view()->edit(cell);
    auto* editor = qobject_cast<QAbstractSpinBox*>(taxes->view()->indexWidget(cell));
    QVERIFY(editor);
    editor->selectAll();
    QTest::keyClicks(editor, s("20"));
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();
    // The main context merges the list window's save.
    QCOMPARE(tax->value(s("rate1")).toDouble(), 20.0);
    QVERIFY(m_company->prompter().questions().isEmpty());
    taxes->close();
}

void TestCompanySetup::numberInvoicesTheNewWay()
{
    // Company ▸ Preferences: the invoice format typed, its sample following.
    m_window->findChild<QAction*>(s("actionPreferences"))->trigger();
    auto* preferences = listWindow<ui::PreferencesWindow>();
    QVERIFY(preferences);
    auto* format = preferences->findChild<QLineEdit*>(s("formatEdit_invoice"));
    QVERIFY(format);
    format->setFocus();
    format->selectAll();
    QTest::keyClicks(format, s("INV-,YY,/,NNNNN"));
    QTest::keyClick(format, Qt::Key_Return);
    const QString year = QString::number(QDate::currentDate().year());
    QCOMPARE(preferences->findChild<QLabel*>(s("sample_invoice"))->text().left(7),
             s("INV-%1/").arg(year.right(2)));
    preferences->close();

    // File ▸ New Document for an imported client, finalised on its way to a PDF.
    m_window->findChild<QAction*>(s("actionWindow3"))->trigger();
    QPointer<ui::DocumentEditorWindow> invoice;
    for (QWidget* open : m_window->editorWindows()->windows())
        invoice = qobject_cast<ui::DocumentEditorWindow*>(open);
    QVERIFY(invoice);
    activate(invoice);
    auto* client = invoice->findChild<QLineEdit*>(s("clientEdit"));
    client->setFocus();
    QTest::keyClicks(client, s("Solis"));
    QTRY_VERIFY(client->completer()->popup()->isVisible());
    QTest::keyClick(client->completer()->popup(), Qt::Key_Down);
    QTest::keyClick(client->completer()->popup(), Qt::Key_Return);
    QCOMPARE(invoice->controller().document()->valueForKeyPath(s("client.full_name")).toString(),
             s("Solis Ltd"));

    QString written;
    QTimer::singleShot(0, this, [&] {
        QTRY_VERIFY(qobject_cast<QFileDialog*>(QApplication::activeModalWidget()));
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        written = m_files.filePath(QFileInfo(dialog->selectedFiles().value(0)).fileName());
        dialog->selectFile(written);
        QMetaObject::invokeMethod(dialog, "accept");
    });
    m_company->prompter().addAnswer(s("Finalize"));
    invoice->saveAs();
    QTRY_VERIFY(!written.isEmpty());
    const QString number = s("INV-%1/00001").arg(year.right(2));
    QVERIFY2(m_company->named("Documents", s("number_formatted"), number), qPrintable(number));
    QVERIFY(QFileInfo(written).fileName().startsWith(s("INV-")));
    if (invoice)
        invoice->close();
    m_company->prompter().clear();
}

void TestCompanySetup::duplicateInvoiceTemplateAsQuotation()
{
    // Company ▸ Template Library: the default invoice template duplicated into a quotation one.
    m_window->findChild<QAction*>(s("actionWindow107"))->trigger();
    QPointer<ui::TemplateLibraryWindow> library = listWindow<ui::TemplateLibraryWindow>();
    QVERIFY(library);
    Record* invoiceTemplate = m_company->main()
                                  .fetchFirst(store::FetchRequest(s("MyCompany")))
                                  ->related(s("default_template_invoice"));
    QVERIFY(invoiceTemplate);
    QVERIFY(library->selectTemplate(invoiceTemplate->ref()));
    auto* asQuotation = library->duplicateMenu()->findChild<QAction*>(s("duplicateAs_quotation"));
    QVERIFY(asQuotation && asQuotation->isEnabled());
    asQuotation->trigger();

    const QString copyName = invoiceTemplate->value(s("name")).toString() + s(" Copy");
    Record* copy = m_company->named("Templates", s("name"), copyName);
    QVERIFY2(copy, qPrintable(copyName));
    QCOMPARE(copy->value(s("type")).toLongLong(), 3);
    QCOMPARE(library->selectedTemplate()->ref(), copy->ref());
    QVERIFY(m_company->prompter().questions().isEmpty());
    library->close();
}

CORVANTA_UI_TEST_MAIN(TestCompanySetup)
#include "tst_companysetup.moc"
