#include "databasewritelock.h"
#include "model/companyrecord.h"
#include "ui/mycompanywindow.h"
#include "uitestsupport.h"

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

    void leavingAFieldStoresIt_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("text");
        QTest::newRow("name") << s("nameEdit") << s("name") << s("Lindqvist Joinery Ltd");
        QTest::newRow("address, two lines")
            << s("addressEdit") << s("address") << s("4 Mill Lane\nYork YO1 7HH");
        QTest::newRow("third custom field") << s("customEdit03") << s("custom03") << s("IBAN GB29 NWBK");
    }

    // Typing stores nothing; Return, or the focus leaving a multi-line field, commits.
    void leavingAFieldStoresIt()
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

    void defaultFollowsBothWays_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("naming");
        QTest::addColumn<QString>("choice");
        QTest::newRow("tax") << s("default_tax") << s("name") << s("GST / PST");
        QTest::newRow("currency") << s("default_currency") << s("code") << s("EUR");
    }

    // Chosen in the pop-up, the default is stored; chosen back in another window, it is shown.
    void defaultFollowsBothWays()
    {
        QFETCH(QString, key);
        QFETCH(QString, naming);
        QFETCH(QString, choice);
        store::Record* company = model::CompanyRecord::of(m_company->main());
        store::Record* before = company->related(key);
        auto* popup = m_window->findChild<QComboBox*>(key + s("Popup"));
        QVERIFY(popup);
        QCOMPARE(popup->currentText(), before->value(naming).toString());
        pickText(popup, choice);
        QCOMPARE(company->related(key)->value(naming).toString(), choice);
        company->setRelated(key, before);
        m_company->save();
        QCOMPARE(popup->currentText(), before->value(naming).toString());
    }

    // Captioned with the company's labels; hidden fields are not offered.
    void customFieldsShowTheirLabels()
    {
        m_company->named("Compose", s("name"), s("my_custom01"))->setValue(s("label"), s("Bank Account"));
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

    // Another program holds the database: the user is told, the typed name and the window stay;
    // once free, closing stores the name.
    void refusedSaveKeepsTheTypedValue()
    {
        auto* edit = m_window->findChild<QLineEdit*>(s("nameEdit"));
        auto lock = std::make_unique<DatabaseWriteLock>(m_company->store().path());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(s("^Saving .* failed: database is locked")));
        edit->selectAll();
        QTest::keyClicks(edit, s("Harbour Lights"));
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(m_company->prompter().titles(), QStringList{databaseInUseText(m_company->store())});
        QCOMPARE(edit->text(), s("Harbour Lights"));
        QCOMPARE(stored(s("name")).toString(), s("My Company"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(s("^Saving .* failed: database is locked")));
        QVERIFY(!m_window->close());
        QVERIFY(m_window && m_window->isVisible());
        lock.reset();
        QVERIFY(m_window->close());
        QCOMPARE(stored(s("name")).toString(), s("Harbour Lights"));
    }
};

CORVANTA_UI_TEST_MAIN(TestMyCompanyWindow)
#include "tst_mycompanywindow.moc"
