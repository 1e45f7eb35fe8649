#include "databasewritelock.h"
#include "model/companyrecord.h"
#include "ui/mycompanywindow.h"
#include "uitestsupport.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>

using namespace corvanta;
using namespace corvanta::ui::testing;
using ui::MyCompanyWindow;

class TestMyCompanyWindow : public QObject
{
    Q_OBJECT

private:
    QVariant stored(const QString& key) { return model::CompanyRecord::of(m_company->main())->value(key); }

    std::unique_ptr<UiCompany> m_company;
    QPointer<MyCompanyWindow> m_window;

private Q_SLOTS:
    void init()
    {
        m_company = std::make_unique<UiCompany>();
        m_window = new MyCompanyWindow(m_company->store(), m_company->prompter());
        m_window->show();
    }
    void cleanup()
    {
        delete m_window;
        m_company.reset();
    }

    void leavingAFieldStoresIt_data();
    void leavingAFieldStoresIt();
    void choosingADefaultStoresIt_data();
    void choosingADefaultStoresIt();
    void defaultChosenElsewhereIsShown();
    void customFieldsShowTheirLabels();
    void refusedSaveKeepsTheTypedValue();
};

void TestMyCompanyWindow::leavingAFieldStoresIt_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    QTest::newRow("name") << s("nameEdit") << s("name") << s("Lindqvist Joinery Ltd");
    QTest::newRow("tax number") << s("taxNumberEdit") << s("tax_number") << s("GB 123 4567 89");
    QTest::newRow("e-mail") << s("emailEdit") << s("email") << s("office@lindqvist.example");
    QTest::newRow("address, two lines") << s("addressEdit") << s("address") << s("4 Mill Lane\nYork YO1 7HH");
    QTest::newRow("third custom field") << s("customEdit03") << s("custom03") << s("IBAN GB29 NWBK");
}

// Typing alone stores nothing; leaving the field (Return, or the focus going elsewhere for the
// multi-line ones) commits it, and other contexts see it.
void TestMyCompanyWindow::leavingAFieldStoresIt()
{
    QFETCH(QString, field);
    QFETCH(QString, key);
    QFETCH(QString, text);
    if (auto* edit = m_window->findChild<QLineEdit*>(field)) {
        edit->selectAll();
        QTest::keyClicks(edit, text);
        QCOMPARE_NE(stored(key).toString(), text);
        QTest::keyClick(edit, Qt::Key_Return);
    } else {
        auto* textEdit = m_window->findChild<QPlainTextEdit*>(field);
        QVERIFY(textEdit);
        textEdit->setPlainText(text);
        QCOMPARE_NE(stored(key).toString(), text);
        QFocusEvent leave(QEvent::FocusOut);
        QCoreApplication::sendEvent(textEdit, &leave);
    }
    QCOMPARE(stored(key).toString(), text);
    QCOMPARE(m_company->prompter().titles(), QStringList{});
}

void TestMyCompanyWindow::choosingADefaultStoresIt_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("naming");
    QTest::addColumn<QString>("choice");
    QTest::newRow("tax") << s("default_tax") << s("name") << s("GST / PST");
    QTest::newRow("unit") << s("default_unit") << s("name") << s("Hours");
    QTest::newRow("payment type") << s("default_payment_type") << s("name") << s("Cash");
    QTest::newRow("currency") << s("default_currency") << s("code") << s("EUR");
}

void TestMyCompanyWindow::choosingADefaultStoresIt()
{
    QFETCH(QString, key);
    QFETCH(QString, naming);
    QFETCH(QString, choice);
    auto* popup = m_window->findChild<QComboBox*>(key + s("Popup"));
    QVERIFY(popup);
    QCOMPARE(popup->currentText(),
             model::CompanyRecord::defaultRecord(m_company->main(), key)->value(naming));
    const int index = popup->findText(choice);
    QVERIFY(index >= 0);
    popup->setCurrentIndex(index);
    Q_EMIT popup->activated(index);
    QCOMPARE(model::CompanyRecord::defaultRecord(m_company->main(), key)->value(naming).toString(), choice);
}

// A list window makes another tax the default: the window shows it without being reopened.
void TestMyCompanyWindow::defaultChosenElsewhereIsShown()
{
    model::CompanyRecord::of(m_company->main())
        ->setRelated(s("default_tax"), m_company->named("Taxes", s("name"), s("GST / PST")));
    m_company->save();
    QCOMPARE(m_window->findChild<QComboBox*>(s("default_taxPopup"))->currentText(), s("GST / PST"));
}

// Fields are captioned with the company's labels; hidden ones are not offered.
void TestMyCompanyWindow::customFieldsShowTheirLabels()
{
    store::Record* first = m_company->named("Compose", s("name"), s("my_custom01"));
    first->setValue(s("label"), s("Bank Account"));
    m_company->named("Compose", s("name"), s("my_custom02"))->setValue(s("hidden"), true);
    m_company->save();

    QStringList shown;
    for (QLabel* caption : m_window->findChildren<QLabel*>()) {
        if (caption->buddy() && caption->buddy()->objectName().startsWith(s("customEdit")) &&
            caption->isVisible())
            shown << caption->text();
    }
    QCOMPARE(shown, (QStringList{s("Bank Account:"), s("Custom Field 3:"), s("Custom Field 4:"),
                                 s("Custom Field 5:")}));
}

// The database is locked by another program: the user is told, the typed name stays and the
// window stays open; once the lock is gone, closing stores the name.
void TestMyCompanyWindow::refusedSaveKeepsTheTypedValue()
{
    auto* edit = m_window->findChild<QLineEdit*>(s("nameEdit"));
    auto lock = std::make_unique<DatabaseWriteLock>(m_company->store().path());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(s("^Saving .* failed: database is locked")));
    edit->selectAll();
    QTest::keyClicks(edit, s("Harbour Lights"));
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(m_company->prompter().titles(),
             QStringList{s("The company database \"%1\" is in use by another program: it could not be saved.")
                             .arg(m_company->store().path())});
    QCOMPARE(edit->text(), s("Harbour Lights"));
    QCOMPARE(stored(s("name")).toString(), s("My Company"));

    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(s("^Saving .* failed: database is locked")));
    QVERIFY(!m_window->close());
    QVERIFY(m_window && m_window->isVisible());

    lock.reset();
    QVERIFY(m_window->close());
    QCOMPARE(stored(s("name")).toString(), s("Harbour Lights"));
}

CORVANTA_UI_TEST_MAIN(TestMyCompanyWindow)
#include "tst_mycompanywindow.moc"
