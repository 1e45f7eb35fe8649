#include "browse/pagebridge.h"
#include "browsetestsupport.h"

#include <QMetaMethod>
#include <QSignalSpy>

using namespace corvanta;
using namespace corvanta::browse;
using namespace corvanta::browse::testing;

class tst_PageBridge : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void onlyThePageCallsAreInvokable();
    void shownPage_data();
    void shownPage();
    void refused_data();
    void refused();
    void clientRatingAndStatus_data();
    void clientRatingAndStatus();
    void doneTogglesStateAndTag();
    void historyCalls();
    void signalsForTheDesktop();
    void chart();

private:
    // The client's stored rating, status and the bridge's history state in one text.
    QString state()
    {
        return s("rating=%1 status=%2 events=%3/%4")
            .arg(m_company->stored(m_company->client, "rating").toString(),
                 m_company->stored(m_company->client, "status").toString())
            .arg(m_bridge->selectedEventsType())
            .arg(m_bridge->eventsCount());
    }

    std::unique_ptr<PageCompany> m_company;
    std::unique_ptr<PageBridge> m_bridge;
};

void tst_PageBridge::init()
{
    m_company = std::make_unique<PageCompany>();
    Record* client = m_company->record(m_company->client);
    client->setValue(s("emails"), s("a@x.org,b@x.org"));
    client->setValue(s("rating"), 2);
    client->setValue(s("status"), 1);
    Record* contact = m_company->main().insertRecord(s("Contacts"), {{s("email"), s("c@x.org")}});
    client->addRelated(s("contacts"), contact);
    m_company->saveMain();
    m_bridge = std::make_unique<PageBridge>(m_company->store());
}

void tst_PageBridge::cleanup()
{
    m_bridge.reset();
    m_company.reset();
}

void tst_PageBridge::onlyThePageCallsAreInvokable()
{
    const QMetaObject* meta = m_bridge->metaObject();
    QStringList invokable;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.methodType() != QMetaMethod::Signal && method.access() == QMetaMethod::Public)
            invokable << QString::fromLatin1(method.name());
    }
    invokable.sort();
    QCOMPARE(invokable, (QStringList{s("changeView"), s("clientRating"), s("clientStatus"), s("done"),
                                     s("filterEventsByType"), s("moreRow"), s("openWarehouse"),
                                     s("sendEmail"), s("showChartSettings"), s("showDocumentPayments")}));
}

void tst_PageBridge::shownPage_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("shown");
    QTest::newRow("client") << s("client.html?1&client-1") << true;
    QTest::newRow("item") << s("item.html?2&item-1") << true;
    QTest::newRow("unknown identifier") << s("client.html?1&nobody") << false;
    QTest::newRow("item identifier on a client page") << s("client.html?1&item-1") << false;
}

void tst_PageBridge::shownPage()
{
    QFETCH(QString, address);
    QFETCH(bool, shown);
    QCOMPARE(m_bridge->showPage(address), shown);
    QCOMPARE(m_bridge->currentTypeAndIdentifier().has_value(), shown);
    QCOMPARE(m_bridge->page().kind() != ListKind::None, shown);
    if (shown)
        QCOMPARE(m_bridge->shownRecord()->value(s("identifier")).toString(),
                 address.section(QLatin1Char('&'), 1));
}

void tst_PageBridge::refused_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("call");
    QTest::addColumn<QVariant>("argument"); // none when invalid

    const QString client = s("client.html?1&client-1");
    QTest::newRow("rating above 5") << client << s("clientRating") << QVariant(6.0);
    QTest::newRow("rating below 0") << client << s("clientRating") << QVariant(-1.0);
    QTest::newRow("rating as text") << client << s("clientRating") << QVariant(s("3"));
    QTest::newRow("rating as a fraction") << client << s("clientRating") << QVariant(2.5);
    QTest::newRow("rating as truth") << client << s("clientRating") << QVariant(true);
    QTest::newRow("rating of an item") << s("item.html?2&item-1") << s("clientRating") << QVariant(3.0);
    QTest::newRow("status 3") << client << s("clientStatus") << QVariant(3.0);
    QTest::newRow("status without a page") << QString() << s("clientStatus") << QVariant(1.0);
    QTest::newRow("unknown view") << client << s("changeView") << QVariant(s("list_view"));
    QTest::newRow("view as number") << client << s("changeView") << QVariant(1.0);
    QTest::newRow("no more rows") << client << s("moreRow") << QVariant(0.0);
    QTest::newRow("more rows than exist") << client << s("moreRow") << QVariant(11.0);
    QTest::newRow("rows as text") << client << s("moreRow") << QVariant(s("20"));
    QTest::newRow("filter as text") << client << s("filterEventsByType") << QVariant(s("1"));
    QTest::newRow("address not the client's") << client << s("sendEmail") << QVariant(s("evil@x.org"));
    QTest::newRow("address as number") << client << s("sendEmail") << QVariant(1.0);
    QTest::newRow("unknown to-do") << client << s("done") << QVariant(s("todo-99"));
    QTest::newRow("another client's to-do") << client << s("done") << QVariant(s("todo-2"));
    QTest::newRow("warehouse of a client") << client << s("openWarehouse") << QVariant();
    QTest::newRow("payments of a client") << client << s("showDocumentPayments") << QVariant();
    QTest::newRow("chart settings of a document")
        << s("document.html?3&doc-1") << s("showChartSettings") << QVariant();
}

void tst_PageBridge::refused()
{
    QFETCH(QString, page);
    QFETCH(QString, call);
    QFETCH(QVariant, argument);
    m_company->invoice(QDate(2024, 3, 1));
    m_company->todo(m_company->client, s("mine"), at(2024, 3, 1));
    m_company->todo(m_company->other, s("theirs"), at(2024, 3, 1));
    if (!page.isEmpty())
        QVERIFY(m_bridge->showPage(page));
    const QString before = state();
    const QString todos = m_company->storedText(m_company->record(m_company->other)->ref(), s("todos.done"));
    QSignalSpy refusals(m_bridge.get(), &PageBridge::callRefused);
    QSignalSpy history(m_bridge.get(), &PageBridge::historyChanged);
    QSignalSpy changed(m_bridge.get(), &PageBridge::pageChanged);

    const QByteArray name = call.toLatin1();
    QVERIFY(argument.isValid()
                ? QMetaObject::invokeMethod(m_bridge.get(), name.constData(), Q_ARG(QVariant, argument))
                : QMetaObject::invokeMethod(m_bridge.get(), name.constData()));

    QCOMPARE(refusals.count(), 1);
    QCOMPARE(refusals.at(0).at(0).toString(), call);
    QCOMPARE(history.count() + changed.count(), 0);
    QCOMPARE(state(), before);
    QCOMPARE(m_company->storedText(m_company->record(m_company->other)->ref(), s("todos.done")), todos);
}

void tst_PageBridge::clientRatingAndStatus_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QVariant>("argument");
    QTest::addColumn<int>("rating"); // the client's was 2
    QTest::addColumn<int>("status"); // and 1, "possible"
    QTest::addColumn<QString>("statusName");
    QTest::newRow("five stars from the page")
        << s("clientRating") << QVariant(5.0) << 5 << 1 << s("possible");
    QTest::newRow("no stars") << s("clientRating") << QVariant(0) << 0 << 1 << s("possible");
    QTest::newRow("lost") << s("clientStatus") << QVariant(0.0) << 2 << 0 << s("lost");
    QTest::newRow("available") << s("clientStatus") << QVariant(2.0) << 2 << 2 << s("available");
}

void tst_PageBridge::clientRatingAndStatus()
{
    QFETCH(QString, call);
    QFETCH(QVariant, argument);
    QFETCH(int, rating);
    QFETCH(int, status);
    QFETCH(QString, statusName);
    QVERIFY(m_bridge->showPage(s("client.html?1&client-1")));
    QSignalSpy changed(m_bridge.get(), &PageBridge::pageChanged);
    QVERIFY(
        QMetaObject::invokeMethod(m_bridge.get(), call.toLatin1().constData(), Q_ARG(QVariant, argument)));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(state().section(s(" events"), 0, 0), s("rating=%1 status=%2").arg(rating).arg(status));
    // The page drawn again shows them: full stars first, each star setting the rating of its place,
    // and the one status image selected.
    QString stars;
    for (int n = 1; n <= 5; ++n)
        stars += s("<span onclick='clientRating(%1)' class='%2</span>")
                     .arg(n)
                     .arg(n <= rating ? s("full'>&#9733;") : s("empty'>&#9734;"));
    const DetailPage page = m_bridge->page();
    QCOMPARE(page.content(s("rating")), stars);
    QCOMPARE(page.content(s("status")).count(s("_selected.svg")), 1);
    QVERIFY(page.content(s("status"))
                .contains(s("status_%1_selected.svg' title='%1' onclick='clientStatus(%2)'")
                              .arg(statusName)
                              .arg(status)));
}

void tst_PageBridge::doneTogglesStateAndTag()
{
    const RecordRef todo = m_company->todo(m_company->client, s("Call"), at(2024, 3, 1));
    QVERIFY(m_bridge->showPage(s("client.html?1&client-1")));
    QSignalSpy history(m_bridge.get(), &PageBridge::historyChanged);
    const auto tagsAndState = [&] { return m_company->storedText(todo, s("done tags.name")); };

    m_bridge->done(s("todo-1"));
    QCOMPARE(tagsAndState(), s("done=true tags.name=Done"));
    QCOMPARE(history.count(), 1);
    QVERIFY(history.at(0).at(0).toString().contains(s("<tr class='eDone'>")));

    QVERIFY(m_bridge->showPage(s("todo.html?4&todo-1")));
    m_bridge->done(s("todo-1"));
    QCOMPARE(tagsAndState(), s("done=false tags.name=Pending"));
    QVERIFY(m_bridge->page().content(s("done")).contains(s("&#9744;")));
}

void tst_PageBridge::historyCalls()
{
    for (int n = 0; n < 13; ++n)
        m_company->invoice(QDate(2024, 1, 1).addDays(n));
    for (int n = 0; n < 4; ++n)
        m_company->todo(m_company->client, s("T%1").arg(n), at(2024, 2, 1).addDays(n), n < 1);
    QVERIFY(m_bridge->showPage(s("client.html?1&client-1")));
    QSignalSpy history(m_bridge.get(), &PageBridge::historyChanged);
    const auto events = [&] { return history.last().at(0).toString().count(s("<td class='eMark eDay'>")); };

    m_bridge->moreRow(17.0);
    QCOMPARE(events(), 17);
    QCOMPARE(m_bridge->eventsCount(), 17);
    // A filter starts again from ten.
    m_bridge->filterEventsByType(3.0);
    QCOMPARE(events(), 3);
    QCOMPARE(m_bridge->selectedEventsType(), 3);
    m_bridge->filterEventsByType(0.0);
    QCOMPARE(events(), 10);
    QCOMPARE(m_bridge->eventsCount(), 0);
    m_bridge->filterEventsByType(42.0);
    QCOMPARE(m_bridge->selectedEventsType(), -1);
    // The filter stays when another page is shown; the count does not.
    m_bridge->moreRow(17.0);
    QVERIFY(m_bridge->showPage(s("client.html?1&client-1")));
    QCOMPARE(m_bridge->eventsCount(), 0);
    QCOMPARE(history.count(), 5);
}

void tst_PageBridge::signalsForTheDesktop()
{
    const RecordRef document = m_company->invoice(QDate(2024, 3, 1));
    QSignalSpy email(m_bridge.get(), &PageBridge::emailRequested);
    QSignalSpy payments(m_bridge.get(), &PageBridge::documentPaymentsRequested);
    QSignalSpy warehouse(m_bridge.get(), &PageBridge::warehouseRequested);
    QSignalSpy view(m_bridge.get(), &PageBridge::viewChanged);

    QVERIFY(m_bridge->showPage(s("client.html?1&client-1")));
    m_bridge->sendEmail(s("b@x.org"));
    m_bridge->sendEmail(s("c@x.org"));
    m_bridge->changeView(s("events_view"));
    QVERIFY(m_bridge->showPage(s("document.html?3&") + m_company->identifier(document)));
    m_bridge->showDocumentPayments();
    QVERIFY(m_bridge->showPage(s("item.html?2&item-1")));
    m_bridge->openWarehouse();

    QCOMPARE(email.count(), 2);
    QCOMPARE(email.at(1).at(0).toString(), s("c@x.org"));
    QCOMPARE(payments.count(), 1);
    QCOMPARE(payments.at(0).at(0).toString(), m_company->identifier(document));
    QCOMPARE(warehouse.count(), 1);
    QCOMPARE(warehouse.at(0).at(0).toString(), s("item-1"));
    QCOMPARE(view.count(), 1);
}

void tst_PageBridge::chart()
{
    const RecordRef dollar = m_company->currency("USD")->ref();
    m_company->invoice(QDate(2024, 1, 10), 1);       // 12
    m_company->invoice(QDate(2024, 1, 31), 2);       // 24
    m_company->invoice(QDate(2024, 3, 1), 3);        // 36
    m_company->invoice(QDate(2024, 3, 2), 5, false); // a draft
    m_company->invoice(QDate(2024, 3, 3), 7, true, dollar);
    m_company->invoice(QDate(2024, 4, 1), 9); // after the range

    QVERIFY(m_bridge->showPage(s("client.html?1&client-1")));
    m_bridge->setSelectedCurrency(s("EUR"));
    QSignalSpy chart(m_bridge.get(), &PageBridge::chartChanged);
    m_bridge->setChartRange(QDate(2024, 1, 1), QDate(2024, 3, 31));
    m_bridge->changeView(s("chart_view"));
    QCOMPARE(chart.count(), 2);
    QCOMPARE(chart.last().at(0).toStringList(), (QStringList{s("Jan 2024"), s("Feb 2024"), s("Mar 2024")}));
    QCOMPARE(chart.last().at(1).toList(), (QVariantList{36.0, 0.0, 36.0}));

    // An item sums its rows' totals; a range of more than two years goes by year.
    QVERIFY(m_bridge->showPage(s("item.html?2&item-1")));
    m_bridge->setChartRange(QDate(2022, 6, 1), QDate(2024, 12, 31));
    QCOMPARE(chart.last().at(0).toStringList(), (QStringList{s("2022"), s("2023"), s("2024")}));
    QCOMPARE(chart.last().at(1).toList(), (QVariantList{0.0, 0.0, 36.0 + 36.0 + 108.0}));
}

QTEST_GUILESS_MAIN(tst_PageBridge)
#include "tst_pagebridge.moc"
