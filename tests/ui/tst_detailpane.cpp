#include "browse/pagebridge.h"
#include "ui/chartsettingswindow.h"
#include "ui/detailpane.h"
#include "uitestsupport.h"

#include <QDateEdit>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QWebEnginePage>
#include <memory>
#include <optional>

using namespace corvanta;
using namespace corvanta::ui;
using namespace corvanta::ui::testing;
using browse::ListKind;
using store::Record;

class TestDetailPane : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void nothingSelected();
    void ratingFromThePage_data();
    void ratingFromThePage();
    void navigation_data();
    void navigation();
    void chartSettings_data();
    void chartSettings();

private:
    // Runs a script in the page and gives its result.
    QVariant evaluate(const QString& script);
    // The text of the page's element, empty while the page has none of that id.
    QString text(const QString& element);
    void showClient();

    std::unique_ptr<UiCompany> m_company;
    std::unique_ptr<DetailPane> m_pane;
    Record* m_client = nullptr;
    Record* m_invoice = nullptr;
};

void TestDetailPane::init()
{
    m_company = std::make_unique<UiCompany>();
    m_client = m_company->addClient(s("Acme <b>Ltd</b>"));
    m_client->setValue(s("rating"), qint64(2));
    m_invoice = m_company->addInvoice(s("RE-2024-001"), 119);
    m_company->save();
    m_pane = std::make_unique<DetailPane>(m_company->store());
    m_pane->resize(600, 700);
    m_pane->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_pane.get()));
}

void TestDetailPane::cleanup()
{
    m_pane.reset();
    m_company.reset();
}

QVariant TestDetailPane::evaluate(const QString& script)
{
    // The answer may come after the wait gave up: it is kept where both can reach it.
    auto answer = std::make_shared<std::optional<QVariant>>();
    m_pane->page()->runJavaScript(script, [answer](const QVariant& value) { *answer = value; });
    if (!QTest::qWaitFor([&] { return answer->has_value(); }, 10000))
        qWarning("The page did not answer: %s", qPrintable(script));
    return answer->value_or(QVariant());
}

QString TestDetailPane::text(const QString& element)
{
    return evaluate(
               s("(function () { var e = document.getElementById('%1'); return e ? e.textContent : ''; })()")
                   .arg(element))
        .toString();
}

void TestDetailPane::showClient()
{
    m_pane->showRecord(m_client);
    QTRY_COMPARE_WITH_TIMEOUT(text(s("name")), s("Acme <b>Ltd</b>"), 20000);
    // The page reaches the bridge once its channel is set up.
    QTRY_VERIFY_WITH_TIMEOUT(evaluate(s("bridge !== null")).toBool(), 10000);
}

void TestDetailPane::nothingSelected()
{
    showClient();
    m_pane->showRecord(nullptr);
    QTRY_COMPARE_WITH_TIMEOUT(text(s("message")), s("No Selection"), 20000);
    QVERIFY(!m_pane->bridge().currentTypeAndIdentifier());
}

void TestDetailPane::ratingFromThePage_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<bool>("refused");
    QTest::addColumn<int>("stars");

    // The client has two stars.
    QTest::newRow("the fourth star clicked")
        << s("document.querySelectorAll('#rating span')[3].click()") << false << 4;
    QTest::newRow("rating as text") << s("bridge.clientRating('x')") << true << 2;
    QTest::newRow("rating above five") << s("bridge.clientRating(6)") << true << 2;
}

void TestDetailPane::ratingFromThePage()
{
    QFETCH(QString, script);
    QFETCH(bool, refused);
    QFETCH(int, stars);

    showClient();
    QSignalSpy refusals(&m_pane->bridge(), &browse::PageBridge::callRefused);

    evaluate(script);

    if (refused) {
        QTRY_COMPARE(refusals.count(), 1);
        QCOMPARE(refusals.at(0).at(0).toString(), s("clientRating"));
    }
    QTRY_COMPARE(m_company->client(s("Acme <b>Ltd</b>"))->value(s("rating")).toLongLong(), qint64(stars));
    // The page is drawn again with the stored rating.
    QTRY_COMPARE_WITH_TIMEOUT(evaluate(s("document.querySelectorAll('#rating .full').length")).toInt(), stars,
                              20000);
    QCOMPARE(refusals.count(), refused ? 1 : 0);
}

void TestDetailPane::navigation_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<bool>("refused");

    QTest::newRow("a web site") << s("http://example.com/") << true;
    QTest::newRow("a page of the program that is no record's") << s("pages.css") << true;
    QTest::newRow("the page of a document") << s("document.html?3&%1") << false;
}

// A refused link leaves the client's page shown; a record's link shows that record.
void TestDetailPane::navigation()
{
    QFETCH(QString, target);
    QFETCH(bool, refused);

    showClient();
    QSignalSpy refusals(m_pane.get(), &DetailPane::navigationRefused);
    evaluate(s("window.location.href = '%1'")
                 .arg(target.replace(s("%1"), m_invoice->value(s("identifier")).toString())));

    if (refused) {
        QTRY_COMPARE(refusals.count(), 1);
        QCOMPARE(refusals.at(0).at(0).toUrl().fileName(), QUrl(target).fileName());
    }
    QTRY_COMPARE_WITH_TIMEOUT(text(s("name")), refused ? s("Acme <b>Ltd</b>") : s("RE-2024-001"), 20000);
    QCOMPARE(refusals.count(), refused ? 1 : 0);
    const std::optional<browse::PageAddress> shown = m_pane->bridge().currentTypeAndIdentifier();
    QVERIFY(shown);
    QCOMPARE(shown->kind, refused ? ListKind::Clients : ListKind::Documents);
}

void TestDetailPane::chartSettings_data()
{
    QTest::addColumn<QDate>("from");
    QTest::addColumn<QDate>("to");
    QTest::addColumn<bool>("accepted");

    QTest::newRow("a quarter chosen by hand") << QDate(2024, 1, 1) << QDate(2024, 3, 31) << true;
    QTest::newRow("an end before the start") << QDate(2024, 3, 1) << QDate(2024, 2, 1) << false;
}

void TestDetailPane::chartSettings()
{
    QFETCH(QDate, from);
    QFETCH(QDate, to);
    QFETCH(bool, accepted);

    showClient();
    const QDate before = m_pane->bridge().chartFrom();
    evaluate(s("showChartSettings()"));
    ChartSettingsWindow* sheet = nullptr;
    QTRY_VERIFY((sheet = m_pane->findChild<ChartSettingsWindow*>()) && sheet->isVisible());
    QCOMPARE(sheet->windowModality(), Qt::WindowModal);

    sheet->findChild<QDateEdit*>(s("fromDate"))->setDate(from);
    sheet->findChild<QDateEdit*>(s("toDate"))->setDate(to);
    QPushButton* ok = sheet->findChild<QDialogButtonBox*>(s("buttons"))->button(QDialogButtonBox::Ok);
    QCOMPARE(ok->isEnabled(), accepted);
    QTest::mouseClick(ok, Qt::LeftButton);

    QCOMPARE(m_pane->bridge().chartFrom(), accepted ? from : before);
    if (accepted)
        QCOMPARE(m_pane->bridge().chartTo(), to);
}

CORVANTA_UI_TEST_MAIN(TestDetailPane)
#include "tst_detailpane.moc"
