#include "databasewritelock.h"
#include "documents/documentnumbering.h"
#include "model/companysettings.h"
#include "ui/numberformatfield.h"
#include "ui/preferenceswindow.h"
#include "uitestsupport.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>
#include <QToolButton>

using namespace corvanta;
using namespace corvanta::ui::testing;
using ui::NumberFormatField;
using ui::PreferencesWindow;

namespace {

// The year as the sample shows it (week-based) and as real numbers take it (calendar).
QString weekYear(int digits)
{
    int year = 0;
    QDate::currentDate().weekNumber(&year);
    return QString::number(year).right(digits);
}

QString calendarYear(int digits)
{
    return QString::number(QDate::currentDate().year()).right(digits);
}

} // namespace

class TestPreferencesWindow : public QObject
{
    Q_OBJECT

private:
    QVariant setting(const char* key) { return model::CompanySettings(m_company->main()).setting(s(key)); }
    QString nextInvoiceNumber()
    {
        documents::DocumentNumbering numbering(m_company->main(), m_company->prompter());
        return numbering.nextNumberByType(0, QDateTime::currentDateTime(), false).formattedNumber;
    }
    QLabel* invoiceSample() { return m_window->findChild<QLabel*>(s("sample_invoice")); }
    NumberFormatField* invoiceField() { return m_window->findChild<NumberFormatField*>(s("format_invoice")); }
    QLineEdit* invoiceEdit() { return m_window->findChild<QLineEdit*>(s("formatEdit_invoice")); }

    std::unique_ptr<UiCompany> m_company;
    QPointer<PreferencesWindow> m_window;

private Q_SLOTS:
    void init()
    {
        m_company = std::make_unique<UiCompany>();
        m_window = new PreferencesWindow(m_company->store(), m_company->prompter());
        m_window->show();
    }
    void cleanup()
    {
        delete m_window;
        m_company.reset();
    }

    void formatsAreListedInOrder();
    void tokenMenuChangesTheFormat_data();
    void tokenMenuChangesTheFormat();
    void typedFormatShowsItsSampleAndIsStoredOnLeaving();
    void refusedFormatStaysShown();
    void resetRestoresTheDefault();
    void documentSettingsAreStored();
    void firstNamePositionRenamesIndividuals();
};

void TestPreferencesWindow::formatsAreListedInOrder()
{
    QStringList order;
    for (NumberFormatField* field : m_window->findChildren<NumberFormatField*>())
        order << field->objectName();
    QCOMPARE(order, (QStringList{s("format_invoice"), s("format_proforma"), s("format_estimate"),
                                 s("format_quotation"), s("format_delivery_note"), s("format_credit_note"),
                                 s("format_purchase_order"), s("format_credit_memo")}));
    QCOMPARE(invoiceField()->format(), s("INVOICE/,YYYY,-,NNNN"));
    QCOMPARE(invoiceEdit()->text(), s("INVOICE/,YYYY,-,NNNN"));
    QCOMPARE(invoiceSample()->text(), s("INVOICE/%1-0123").arg(weekYear(4)));
}

void TestPreferencesWindow::tokenMenuChangesTheFormat_data()
{
    QTest::addColumn<int>("token");
    QTest::addColumn<QStringList>("offered");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("sample");
    QTest::addColumn<QString>("next");
    const QStringList years{s("YY"), s("YYYY")};
    const QStringList numbers{s("NNNN"), s("NNNNN"), s("NNNNNN")};
    QTest::newRow("short year") << 1 << years << s("YY") << s("INVOICE/,YY,-,NNNN")
                                << s("INVOICE/%1-0123").arg(weekYear(2))
                                << s("INVOICE/%1-0001").arg(calendarYear(2));
    QTest::newRow("six digits") << 3 << numbers << s("NNNNNN") << s("INVOICE/,YYYY,-,NNNNNN")
                                << s("INVOICE/%1-000123").arg(weekYear(4))
                                << s("INVOICE/%1-000001").arg(calendarYear(4));
}

// Choosing from a token's menu replaces that token, shows the new sample and stores the format,
// which the next invoice number then follows.
void TestPreferencesWindow::tokenMenuChangesTheFormat()
{
    QFETCH(int, token);
    QFETCH(QStringList, offered);
    QFETCH(QString, entry);
    QFETCH(QString, format);
    QFETCH(QString, sample);
    QFETCH(QString, next);
    QVERIFY(!invoiceField()->findChild<QWidget*>(s("token0"))->inherits("QToolButton"));
    auto* button = invoiceField()->findChild<QToolButton*>(s("token%1").arg(token));
    QVERIFY(button && button->menu());
    QStringList entries;
    QAction* chosen = nullptr;
    for (QAction* action : button->menu()->actions()) {
        entries << action->text();
        if (action->text() == entry)
            chosen = action;
    }
    QCOMPARE(entries, offered);
    chosen->trigger();

    QCOMPARE(invoiceEdit()->text(), format);
    QCOMPARE(invoiceField()->format(), format);
    QCOMPARE(invoiceSample()->text(), sample);
    QCOMPARE(setting("number_format_invoice").toString(), format);
    QCOMPARE(nextInvoiceNumber(), next);
    QCOMPARE(m_company->prompter().titles(), QStringList{});
}

void TestPreferencesWindow::typedFormatShowsItsSampleAndIsStoredOnLeaving()
{
    QLineEdit* edit = invoiceEdit();
    edit->selectAll();
    QTest::keyClicks(edit, s("R,NNNNN"));
    QCOMPARE(invoiceSample()->text(), s("R00123"));
    QVERIFY(invoiceField()->findChild<QToolButton*>(s("token1")));
    QCOMPARE(setting("number_format_invoice").toString(), s("INVOICE/,YYYY,-,NNNN"));
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(setting("number_format_invoice").toString(), s("R,NNNNN"));
    QCOMPARE(nextInvoiceNumber(), s("R00001"));
}

// The database is locked by another program: the user is told, the typed format and its sample
// stay, and the window stays open until the format can be stored.
void TestPreferencesWindow::refusedFormatStaysShown()
{
    auto lock = std::make_unique<DatabaseWriteLock>(m_company->store().path());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(s("^Saving .* failed: database is locked")));
    invoiceEdit()->selectAll();
    QTest::keyClicks(invoiceEdit(), s("R,NNNNN"));
    QTest::keyClick(invoiceEdit(), Qt::Key_Return);
    QCOMPARE(m_company->prompter().titles(),
             QStringList{s("The company database \"%1\" is in use by another program: it could not be saved.")
                             .arg(m_company->store().path())});
    QCOMPARE(invoiceEdit()->text(), s("R,NNNNN"));
    QCOMPARE(invoiceSample()->text(), s("R00123"));
    QCOMPARE(setting("number_format_invoice").toString(), s("INVOICE/,YYYY,-,NNNN"));

    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(s("^Saving .* failed: database is locked")));
    QVERIFY(!m_window->close());
    lock.reset();
    QVERIFY(m_window->close());
    QCOMPARE(setting("number_format_invoice").toString(), s("R,NNNNN"));
}

void TestPreferencesWindow::resetRestoresTheDefault()
{
    model::CompanySettings(m_company->main()).setSetting(s("number_format_proforma"), s("PF,NNNN"));
    auto* reset = m_window->findChild<QPushButton*>(s("reset_proforma"));
    QVERIFY(reset);
    reset->click();
    QCOMPARE(setting("number_format_proforma").toString(), s("PROFORMA/,YYYY,-,NNNN"));
    QCOMPARE(m_window->findChild<QLineEdit*>(s("formatEdit_proforma"))->text(), s("PROFORMA/,YYYY,-,NNNN"));
    QCOMPARE(m_window->findChild<QLabel*>(s("sample_proforma"))->text(),
             s("PROFORMA/%1-0123").arg(weekYear(4)));
}

void TestPreferencesWindow::documentSettingsAreStored()
{
    QCOMPARE(m_window->findChild<QSpinBox*>(s("print_copy_invoice"))->value(), 2);
    m_window->findChild<QSpinBox*>(s("print_copy_quotation"))->setValue(3);
    QCOMPARE(setting("print_copy_quotation").toLongLong(), 3);
    QCOMPARE(setting("print_copy_invoice").toLongLong(), 2);

    auto* sound = m_window->findChild<QCheckBox*>(s("sound_finalize_invoice"));
    QVERIFY(sound->isChecked());
    sound->click();
    QCOMPARE(setting("sound_finalize_invoice").toLongLong(), 0);

    // Hidden system tags are shown as the opposite: a ticked "show" box is a setting of 0.
    auto* tags = m_window->findChild<QCheckBox*>(s("system_tags_client_hidden"));
    QVERIFY(tags->isChecked());
    tags->click();
    QCOMPARE(setting("system_tags_client_hidden").toLongLong(), 1);
}

void TestPreferencesWindow::firstNamePositionRenamesIndividuals()
{
    store::Record* person =
        m_company->main().insertRecord(s("Clients"), {{s("type"), qint64(2)},
                                                      {s("first_name"), s("Anna")},
                                                      {s("last_name"), s("Berg")},
                                                      {s("identifier"), support::UUID()}});
    m_company->save();
    QCOMPARE(person->value(s("full_name")).toString(), s("Anna Berg"));

    auto* order = m_window->findChild<QComboBox*>(s("first_name_position"));
    QCOMPARE(order->currentText(), s("First Name Last Name"));
    order->setCurrentIndex(1);
    Q_EMIT order->activated(1);
    QCOMPARE(order->currentText(), s("Last Name First Name"));
    QCOMPARE(setting("first_name_position").toLongLong(), 1);
    QCOMPARE(m_company->client(s("Berg Anna")), person);
}

CORVANTA_UI_TEST_MAIN(TestPreferencesWindow)
#include "tst_preferenceswindow.moc"
