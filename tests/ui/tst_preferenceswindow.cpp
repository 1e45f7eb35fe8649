#include "databasewritelock.h"
#include "model/companysettings.h"
#include "ui/numberformatfield.h"
#include "ui/preferenceswindow.h"
#include "uitestsupport.h"

#include <QCheckBox>
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

// The sample shows the week-based year.
QString year(int digits)
{
    int weekYear = 0;
    QDate::currentDate().weekNumber(&weekYear);
    return QString::number(weekYear).right(digits);
}

} // namespace

class TestPreferencesWindow : public QObject
{
    Q_OBJECT

private:
    QVariant setting(const char* key) { return model::CompanySettings(m_company->main()).setting(s(key)); }
    template <typename Widget>
    Widget* child(const QString& name)
    {
        return m_window->findChild<Widget*>(name);
    }

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

    void tokenMenuChangesTheFormat_data()
    {
        QTest::addColumn<int>("token");
        QTest::addColumn<QStringList>("offered");
        QTest::addColumn<int>("chosen");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("sample");
        QTest::newRow("short year") << 1 << QStringList{s("YY"), s("YYYY")} << 0 << s("INVOICE/,YY,-,NNNN")
                                    << s("INVOICE/%1-0123").arg(year(2));
        QTest::newRow("six digits") << 3 << QStringList{s("NNNN"), s("NNNNN"), s("NNNNNN")} << 2
                                    << s("INVOICE/,YYYY,-,NNNNNN") << s("INVOICE/%1-000123").arg(year(4));
    }

    // The entry chosen replaces the token; the sample and the stored format follow.
    void tokenMenuChangesTheFormat()
    {
        QFETCH(int, token);
        QFETCH(QStringList, offered);
        QFETCH(int, chosen);
        QFETCH(QString, format);
        QFETCH(QString, sample);
        QCOMPARE(child<QLabel>(s("sample_invoice"))->text(), s("INVOICE/%1-0123").arg(year(4)));
        auto* button =
            child<NumberFormatField>(s("format_invoice"))->findChild<QToolButton*>(s("token%1").arg(token));
        QVERIFY(button && button->menu());
        QStringList entries;
        for (QAction* action : button->menu()->actions())
            entries << action->text();
        QCOMPARE(entries, offered);
        button->menu()->actions().at(chosen)->trigger();
        QCOMPARE(child<QLineEdit>(s("formatEdit_invoice"))->text(), format);
        QCOMPARE(child<QLabel>(s("sample_invoice"))->text(), sample);
        QCOMPARE(setting("number_format_invoice").toString(), format);
        QCOMPARE(m_company->prompter().titles(), QStringList{});
    }

    // Another program holds the database: the typed format, its sample and the window stay until
    // the format can be stored.
    void refusedFormatIsKept()
    {
        const QRegularExpression failed(s("^Saving .* failed: database is locked"));
        auto lock = std::make_unique<DatabaseWriteLock>(m_company->store().path());
        QTest::ignoreMessage(QtWarningMsg, failed);
        auto* edit = child<QLineEdit>(s("formatEdit_invoice"));
        edit->selectAll();
        QTest::keyClicks(edit, s("R,NNNNN"));
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(m_company->prompter().titles(), QStringList{databaseInUseText(m_company->store())});
        QCOMPARE(edit->text(), s("R,NNNNN"));
        QCOMPARE(child<QLabel>(s("sample_invoice"))->text(), s("R00123"));
        QCOMPARE(setting("number_format_invoice").toString(), s("INVOICE/,YYYY,-,NNNN"));
        QTest::ignoreMessage(QtWarningMsg, failed);
        QVERIFY(!m_window->close());
        lock.reset();
        QVERIFY(m_window->close());
        QCOMPARE(setting("number_format_invoice").toString(), s("R,NNNNN"));
    }

    void resetRestoresTheDefault()
    {
        model::CompanySettings(m_company->main()).setSetting(s("number_format_proforma"), s("PF,NNNN"));
        child<QPushButton>(s("reset_proforma"))->click();
        QCOMPARE(setting("number_format_proforma").toString(), s("PROFORMA/,YYYY,-,NNNN"));
        QCOMPARE(child<QLineEdit>(s("formatEdit_proforma"))->text(), s("PROFORMA/,YYYY,-,NNNN"));
        QCOMPARE(child<QLabel>(s("sample_proforma"))->text(), s("PROFORMA/%1-0123").arg(year(4)));
    }

    void settingIsStored_data()
    {
        QTest::addColumn<QString>("key"); // also the control's name
        QTest::addColumn<int>("shown");   // value, tick or index before the change
        QTest::addColumn<qint64>("stored");
        QTest::newRow("print copies") << s("print_copy_invoice") << 2 << qint64(3);
        QTest::newRow("finalize sound") << s("sound_finalize_invoice") << 1 << qint64(0);
        // The box shows the tags: ticked, they are not hidden.
        QTest::newRow("system tags, inverted") << s("system_tags_client_hidden") << 1 << qint64(1);
        QTest::newRow("order of names") << s("first_name_position") << 0 << qint64(1);
    }

    // Each control shows its setting and stores the user's change at once.
    void settingIsStored()
    {
        QFETCH(QString, key);
        QFETCH(int, shown);
        QFETCH(qint64, stored);
        if (auto* spin = child<QSpinBox>(key)) {
            QCOMPARE(spin->value(), shown);
            spin->setValue(3);
        } else if (auto* box = child<QCheckBox>(key)) {
            QCOMPARE(int(box->isChecked()), shown);
            box->click();
        } else {
            auto* order = child<QComboBox>(key);
            QVERIFY(order);
            QCOMPARE(order->currentIndex(), shown);
            pickText(order, order->itemText(1));
        }
        QCOMPARE(setting(qPrintable(key)).toLongLong(), stored);
    }
};

CORVANTA_UI_TEST_MAIN(TestPreferencesWindow)
#include "tst_preferenceswindow.moc"
