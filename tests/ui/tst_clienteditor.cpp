#include "editors/documentcontroller.h"
#include "ui/clienteditorwindow.h"
#include "ui/openeditors.h"
#include "ui/taglabel.h"
#include "ui/tagspopover.h"
#include "uitestsupport.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QToolButton>

using namespace corvanta;
using namespace corvanta::ui::testing;
using store::Record;
using ui::ClientEditorWindow;

class TestClientEditor : public QObject
{
    Q_OBJECT

private:
    template <typename T>
    static T* child(QWidget* window, const char* name)
    {
        T* found = window->findChild<T*>(s(name));
        if (!found)
            qFatal("no %s in the window", name);
        return found;
    }
    // Chooses a pop-up's entry with the keyboard, as a user does.
    static void choose(QComboBox* popup, int index)
    {
        QTest::keyClick(popup, Qt::Key_Home);
        for (int i = 0; i < index; ++i)
            QTest::keyClick(popup, Qt::Key_Down);
        QCOMPARE(popup->currentIndex(), index);
    }
    static QString labelText(QWidget* window, const char* name)
    {
        return child<QLabel>(window, name)->text().remove(QLatin1Char('&'));
    }
    // The client as stored, read in a fresh context.
    static QString stored(UiCompany& company, const QString& identifier, const QString& keys)
    {
        auto context = company.store().newContext();
        const Record* client = context->fetchFirst(
            store::FetchRequest(s("Clients"), predicate::literal("identifier == %@", {identifier})));
        if (!client)
            return s("(not stored)");
        QStringList values;
        for (const QString& key : keys.split(QLatin1Char(' ')))
            values << key + s("=") + client->value(key).toString();
        QStringList tags;
        for (const Record* tag : client->relatedList(s("tags")))
            tags << tag->value(s("name")).toString();
        tags.sort();
        values << s("tags=") + tags.join(s(","));
        return values.join(s(" "));
    }

    // A new client of `type` in a shown window, which deletes itself when closed.
    QPointer<ClientEditorWindow> newWindow(qint64 type)
    {
        QPointer window = new ClientEditorWindow(m_company->store(), m_company->prompter(), m_openEditors);
        if (!window->newClient(type))
            qFatal("no new client");
        window->show();
        return window;
    }

private Q_SLOTS:
    // The windows keep their size in the user's settings: here in a scratch folder.
    void initTestCase() { qputenv("XDG_CONFIG_HOME", m_config.path().toUtf8()); }
    void init() { m_company = std::make_unique<UiCompany>(); }
    void cleanup() { m_company.reset(); }

    // Changing the kind from the pop-up empties every name field and labels the two fields
    // after the new kind.
    void kindChange_data()
    {
        QTest::addColumn<qint64>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<QString>("labels");
        QTest::newRow("company to individual") << qint64(0) << 2 << s("First Name: | Last Name:");
        QTest::newRow("individual to supplier") << qint64(2) << 1 << s("Company Name: | Tax Number:");
    }
    void kindChange()
    {
        QFETCH(qint64, from);
        QFETCH(int, to);
        QFETCH(QString, labels);
        ClientEditorWindow window(m_company->store(), m_company->prompter(), m_openEditors);
        QVERIFY(window.newClient(from));
        window.show();
        QVERIFY(!window.isWindowModified());
        QCOMPARE(window.windowTitle(), s("New Client[*]"));
        QTest::keyClicks(child<QLineEdit>(&window, "firstNameField"), s("Ada"));
        QTest::keyClicks(child<QLineEdit>(&window, "secondNameField"), s("Lovelace"));
        QVERIFY(window.isWindowModified());
        QCOMPARE(window.windowTitle(), from == 2 ? s("Ada Lovelace[*]") : s("Ada[*]"));
        Record* client = window.client();
        for (const char* key : {"company_name", "tax_number", "first_name", "last_name"})
            client->setValue(s(key), s("x"));

        choose(child<QComboBox>(&window, "kindPopup"), to);
        QCOMPARE(client->value(s("type")).toInt(), to);
        for (const char* key : {"company_name", "tax_number", "first_name", "last_name"})
            QVERIFY2(client->value(s(key)).toString().isEmpty(), key);
        QCOMPARE(child<QLineEdit>(&window, "firstNameField")->text(), QString());
        QCOMPARE(labelText(&window, "firstNameLabel") + s(" | ") + labelText(&window, "secondNameLabel"),
                 labels);
        // The fields now write the new kind's keys.
        QTest::keyClicks(child<QLineEdit>(&window, "firstNameField"), s("Grace"));
        QCOMPARE(client->value(to == 2 ? s("first_name") : s("company_name")).toString(), s("Grace"));
    }

    // A supplier saved without a name is given one and filed as a company and a supplier;
    // a save from the window's button closes it.
    void saveSupplierWithoutName()
    {
        QPointer window = newWindow(1);
        const QString identifier = window->client()->value(s("identifier")).toString();
        QTest::keyClicks(child<QLineEdit>(window, "emailsField"), s("orders@example.com"));
        QTest::mouseClick(child<QPushButton>(window, "saveButton"), Qt::LeftButton);
        QTRY_VERIFY(window.isNull());
        QCOMPARE(stored(*m_company, identifier, s("first_name company_name emails")),
                 s("first_name=No Name company_name= emails=orders@example.com tags=Company,Supplier"));
        QVERIFY(m_company->prompter().questions().isEmpty());
    }

    // Three addresses added with the button: the first is the default until another is ticked;
    // removing the default moves it to the first address left.
    void addresses()
    {
        const int ticked = 2;
        const QString defaultAfter = s("One Street");
        ClientEditorWindow window(m_company->store(), m_company->prompter(), m_openEditors);
        QVERIFY(window.newClient(0));
        window.show();
        auto* list = child<QListWidget>(&window, "addressesList");
        auto* street = window.findChild<QWidget*>(s("addresses_street"));
        QVERIFY(street);
        const QStringList streets = {s("One Street"), s("Two Street"), s("Three Street")};
        for (const QString& text : streets) {
            QTest::mouseClick(child<QToolButton>(&window, "addressesAddButton"), Qt::LeftButton);
            QTest::keyClicks(street, text);
        }
        Record* client = window.client();
        QCOMPARE(client->relatedList(s("addresses")).size(), 3);
        QCOMPARE(list->item(2)->text(), s("Three Street"));
        QCOMPARE(client->valueForKeyPath(s("default_address.street")).toString(), s("One Street"));
        QCOMPARE(list->item(0)->checkState(), Qt::Checked);

        list->item(ticked)->setCheckState(Qt::Checked);
        QCOMPARE(client->valueForKeyPath(s("default_address.street")).toString(), streets.at(ticked));
        for (int row = 0; row < 3; ++row)
            QCOMPARE(list->item(row)->checkState() == Qt::Checked, row == ticked);
        list->setCurrentRow(ticked);
        QTest::mouseClick(child<QToolButton>(&window, "addressesRemoveButton"), Qt::LeftButton);
        QCOMPARE(client->relatedList(s("addresses")).size(), 2);
        QCOMPARE(list->count(), 2);
        QCOMPARE(client->valueForKeyPath(s("default_address.street")).toString(), defaultAfter);
        for (int row = 0; row < 2; ++row)
            QCOMPARE(list->item(row)->checkState() == Qt::Checked, list->item(row)->text() == defaultAfter);
        QVERIFY(window.isWindowModified());
    }

    // The Tags button opens the popover (its list is the popover's own test); a ticked tag is
    // shown in the window's tag row and saved beside the kind folder.
    void tagsPopover()
    {
        m_company->main().insertRecord(s("Categories"),
                                       {{s("name"), s("Wholesale")}, {s("type"), qint64(1)}});
        m_company->save();
        const Record* acme = m_company->addClient(s("Acme"));
        QPointer window = new ClientEditorWindow(m_company->store(), m_company->prompter(), m_openEditors);
        QVERIFY(window->openClient(acme->ref()));
        window->show();
        QTest::mouseClick(child<QPushButton>(window, "tagsButton"), Qt::LeftButton);
        ui::TagsPopover* popover = window->tagsPopover();
        QVERIFY(popover && popover->isVisible());
        popover->toggleRow(0);
        QVERIFY(window->isWindowModified());
        const QList<ui::TagLabelWidget*> shown =
            window->findChild<QWidget*>(s("tagRow"))->findChildren<ui::TagLabelWidget*>();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown.constFirst()->text(), s("Wholesale"));
        QVERIFY(shown.constFirst()->isVisible());

        const QString identifier = window->client()->value(s("identifier")).toString();
        window->save();
        QTRY_VERIFY(window.isNull());
        QCOMPARE(stored(*m_company, identifier, s("company_name")),
                 s("company_name=Acme tags=Company,Wholesale"));
    }

    // The payment defaults are chosen from the company's records, "nothing" first; a saved
    // choice is shown again when the client is opened.
    void paymentDefaults_data()
    {
        QTest::addColumn<QString>("popup");
        QTest::addColumn<QString>("none");
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QString>("keyPath");
        QTest::newRow("payment type")
            << s("paymentTypePopup") << s("No Payment") << s("Cash") << s("default_payment_type.name");
        QTest::newRow("bank") << s("bankPopup") << s("No bank") << s("My Bank") << s("default_bank.line1");
        QTest::newRow("due days") << s("dueDaysPopup") << s("No terms") << s("8 Business Days")
                                  << s("default_due_day.name");
    }
    void paymentDefaults()
    {
        QFETCH(QString, popup);
        QFETCH(QString, none);
        QFETCH(QString, entry);
        QFETCH(QString, keyPath);
        QPointer window = newWindow(0);
        QTest::keyClicks(child<QLineEdit>(window, "firstNameField"), s("Fabrikam"));
        auto* combo = window->findChild<QComboBox*>(popup);
        QVERIFY(combo);
        QCOMPARE(combo->currentText(), none);
        const int index = combo->findText(entry);
        QVERIFY(index > 0);
        choose(combo, index);
        QCOMPARE(window->client()->valueForKeyPath(keyPath).toString(), entry);
        window->save();
        QTRY_VERIFY(window.isNull());

        const auto saved = m_company->main().fetchFirst(
            store::FetchRequest(s("Clients"), predicate::literal("full_name == %@", {s("Fabrikam")})));
        QVERIFY(saved);
        ClientEditorWindow reopened(m_company->store(), m_company->prompter(), m_openEditors);
        QVERIFY(reopened.openClient(saved->ref()));
        auto* shown = reopened.findChild<QComboBox*>(popup);
        QCOMPARE(shown->currentText(), entry);
        choose(shown, 0);
        QVERIFY(reopened.client()->valueForKeyPath(keyPath).isNull());
        QVERIFY(reopened.isWindowModified());
    }

    // A client saved while a document editor is open, even minimised, becomes its document's
    // client; a hidden document editor is not open.
    void handOver_data()
    {
        QTest::addColumn<QString>("state");
        QTest::addColumn<QString>("client");
        QTest::newRow("shown") << s("shown") << s("Contoso");
        QTest::newRow("minimised") << s("minimised") << s("Contoso");
        QTest::newRow("hidden") << s("hidden") << QString();
    }
    void handOver()
    {
        QFETCH(QString, state);
        QFETCH(QString, client);
        editors::DocumentController document(m_company->store(), m_company->prompter());
        QVERIFY(document.newDocument(0));
        QWidget documentWindow;
        ui::OpenEditors openEditors;
        openEditors.addDocumentEditor(&documentWindow, &document);
        if (state == s("shown"))
            documentWindow.show();
        else if (state == s("minimised"))
            documentWindow.showMinimized();

        QPointer window = new ClientEditorWindow(m_company->store(), m_company->prompter(), openEditors);
        QVERIFY(window->newClient(0));
        window->show();
        QTest::keyClicks(child<QLineEdit>(window, "firstNameField"), s("Contoso"));
        QTest::mouseClick(child<QPushButton>(window, "saveButton"), Qt::LeftButton);
        QTRY_VERIFY(window.isNull());
        QCOMPARE(document.document()->valueForKeyPath(s("client.full_name")).toString(), client);
    }

private:
    QTemporaryDir m_config;
    ui::OpenEditors m_openEditors;
    std::unique_ptr<UiCompany> m_company;
};

CORVANTA_UI_TEST_MAIN(TestClientEditor)
#include "tst_clienteditor.moc"
