#include "browse/clientpage.h"
#include "browse/documentpage.h"
#include "browse/eventhistory.h"
#include "browse/htmltext.h"
#include "browse/itempage.h"
#include "browse/pageaddress.h"
#include "browse/todopage.h"
#include "browsetestsupport.h"

#include <QRegularExpression>

using namespace corvanta;
using namespace corvanta::browse;
using namespace corvanta::browse::testing;

namespace {

// What a script string written into an attribute means to the page: the attribute's entities
// decoded first, then the script's \uXXXX escapes.
QString decodedScriptArgument(const QString& attribute)
{
    QString text = attribute;
    text.replace(s("&#39;"), s("'")).replace(s("&quot;"), s("\"")).replace(s("&lt;"), s("<"));
    text.replace(s("&gt;"), s(">")).replace(s("&amp;"), s("&"));
    static const QRegularExpression escape(s("\\\\u([0-9a-f]{4})"));
    QString result;
    qsizetype from = 0;
    for (auto it = escape.globalMatch(text); it.hasNext();) {
        const auto match = it.next();
        result += text.mid(from, match.capturedStart() - from) +
                  QChar(char16_t(match.captured(1).toUShort(nullptr, 16)));
        from = match.capturedEnd();
    }
    return result + text.mid(from);
}

// The history's events in order, as "class:link".
QStringList eventsOf(const QString& html)
{
    static const QRegularExpression row(s("<tr class='(eNotice|eDone|ePending)'>.*?href='([^']*)'"));
    QStringList events;
    for (auto it = row.globalMatch(html); it.hasNext();) {
        const auto match = it.next();
        events << match.captured(1) + s(":") + match.captured(2).replace(s("&amp;"), s("&"));
    }
    return events;
}

// The count the "Show More" row asks for, or 0 without that row.
int moreCount(const QString& html)
{
    static const QRegularExpression more(
        s("<a href='' onclick='moreRow\\((\\d+)\\); return false;'>Show More</a>"));
    const auto match = more.match(html);
    return match.hasMatch() ? match.captured(1).toInt() : 0;
}

} // namespace

class tst_DetailPages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_company = std::make_unique<PageCompany>(); }
    void cleanup() { m_company.reset(); }

    void address_data();
    void address();
    void scriptArgument_data();
    void scriptArgument();
    void clientPage();
    void filledPagesMatchTheirFiles();
    void documentPayment_data();
    void documentPayment();
    void history_data();
    void history();
    void historyOrderAndEvents();

private:
    std::unique_ptr<PageCompany> m_company;
};

void tst_DetailPages::address_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("kind"); // 0: refused
    QTest::addColumn<QString>("identifier");

    QTest::newRow("client") << s("client.html?1&A1-b_2") << 1 << s("A1-b_2");
    QTest::newRow("item in a folder") << s("/pages/item.html?2&x") << 2 << s("x");
    QTest::newRow("document as a URL") << s("qrc:/pages/document.html?3&D9") << 3 << s("D9");
    QTest::newRow("to-do") << s("todo.html?4&t") << 4 << s("t");
    QTest::newRow("empty page") << s("no_selected.html") << 0 << QString();
    QTest::newRow("kind 0") << s("client.html?0&x") << 0 << QString();
    QTest::newRow("kind 5") << s("client.html?5&x") << 0 << QString();
    QTest::newRow("negative kind") << s("client.html?-1&x") << 0 << QString();
    QTest::newRow("non-ASCII digit") << s("client.html?\u0661&x") << 0 << QString();
    QTest::newRow("no identifier") << s("client.html?1&") << 0 << QString();
    QTest::newRow("no separator") << s("client.html?1x") << 0 << QString();
    QTest::newRow("extra part") << s("client.html?1&x&y") << 0 << QString();
    QTest::newRow("address book UID") << s("client.html?1&urn%3Auuid%3A1%40x") << 1 << s("urn:uuid:1@x");
    QTest::newRow("line break in identifier") << s("client.html?1&a%0Ab") << 0 << QString();
    QTest::newRow("blank identifier") << s("client.html?1&%20") << 0 << QString();
    QTest::newRow("quote in identifier") << s("client.html?1&x'y") << 0 << QString();
    QTest::newRow("another kind's page") << s("item.html?1&x") << 0 << QString();
}

void tst_DetailPages::address()
{
    QFETCH(QString, address);
    QFETCH(int, kind);
    QFETCH(QString, identifier);
    const std::optional<PageAddress> parsed = PageAddress::parse(address);
    QCOMPARE(parsed.has_value(), kind != 0);
    if (!parsed)
        return;
    QCOMPARE(int(parsed->kind), kind);
    QCOMPARE(parsed->identifier, identifier);
    QVERIFY(address.endsWith(PageAddress::of(parsed->kind, identifier)));
}

void tst_DetailPages::scriptArgument_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << s("anna@example.com");
    QTest::newRow("single quote") << s("o'brien@example.com");
    QTest::newRow("double quote") << s("a\"b@example.com");
    QTest::newRow("breaking out") << s("x'); alert(1); ('");
    QTest::newRow("attribute end") << s("x\" onmouseover=\"alert(1)");
    QTest::newRow("backslash and line") << s("a\\b\ncd");
    QTest::newRow("tags and entities") << s("</script><b>&amp;");
}

void tst_DetailPages::scriptArgument()
{
    QFETCH(QString, text);
    const QString argument = HtmlText::scriptArgument(text);
    for (const char* unsafe : {"'", "\"", "<", ">", "\n", "\\'"})
        QVERIFY2(!argument.contains(s(unsafe)), qPrintable(argument));
    QCOMPARE(decodedScriptArgument(argument), text);
}

void tst_DetailPages::clientPage()
{
    Record* client = m_company->record(m_company->client);
    client->setValue(s("emails"), s("a@x.org,o'b@y.org"));
    client->setValue(s("tax_number"), s("DE<1>"));
    Record* tag =
        m_company->main().insertRecord(s("Categories"), {{s("name"), s("VIP & co")},
                                                         {s("type"), 1},
                                                         {s("foreground_color"), QColor(Qt::white)},
                                                         {s("background_color"), QColor(0x11, 0x22, 0x33)}});
    client->addRelated(s("tags"), tag);
    m_company->saveMain();

    const DetailPage page = ClientPage::fill(client);
    QCOMPARE(page.content(s("name")), s("Acme &lt;b&gt;Ltd&lt;/b&gt;"));
    QCOMPARE(page.content(s("tags")),
             s("<span style='padding:2px 4px 2px 4px; margin-right:4px; color:#ffffff; "
               "background-color:#112233'>VIP &amp; co</span>"));
    QVERIFY(page.content(s("properties"))
                .contains(s("<tr><td style='padding-left:24px; padding-right:14px; vertical-align:top; "
                            "white-space:nowrap;'><b>Tax Number</b></td><td>DE&lt;1&gt;</td></tr>")));
    QVERIFY(
        page.content(s("emails_group"))
            .contains(s("<a href='' onclick=\"sendEmail('a@x.org'); return false;\">a@x.org</a>&nbsp;&nbsp;"
                        "<a href='' onclick=\"sendEmail('o\\u0027b@y.org'); return false;\">o&#39;b@y.org</a>"
                        "&nbsp;&nbsp;")));
    QVERIFY(!page.isHidden(s("emails_group")));
    for (const char* empty : {"phones_group", "addresses_group", "contacts_group"})
        QVERIFY2(page.isHidden(s(empty)), empty);
    QVERIFY(page.html().contains(s("<tbody id=\"phones_group\" style=\"display:none;\"></tbody>")));
    // A client whose state was never chosen has none of the status images selected.
    QVERIFY(client->value(s("status")).isNull());
    QVERIFY(!page.content(s("status")).contains(s("_selected.svg")));

    client->setValue(s("phones"), s("+49 1,555 <2>"));
    QCOMPARE(ClientPage::fill(client).content(s("phones_group")).section(s("<td>"), 1),
             s("+49 1&nbsp;&nbsp;555 &lt;2&gt;&nbsp;&nbsp;</td></tr>"));
}

// Every element a filler sets is one its page's file has; a misspelt id would leave the page
// empty where the record's data belongs.
void tst_DetailPages::filledPagesMatchTheirFiles()
{
    m_company->invoice(QDate(2024, 3, 1));
    const RecordRef todo = m_company->todo(m_company->client, s("Call"), at(2024, 3, 2));
    Record* document = m_company->main().fetchFirst(store::FetchRequest(s("Documents")));
    const QList<DetailPage> pages{ClientPage::fill(m_company->record(m_company->client)),
                                  ItemPage::fill(m_company->record(m_company->item)),
                                  DocumentPage::fill(document), ToDoPage::fill(m_company->record(todo)),
                                  DetailPage::nothingSelected()};
    for (const DetailPage& page : pages) {
        const QString file = DetailPage::pageTemplate(page.kind());
        QVERIFY2(!file.isEmpty(), qPrintable(PageAddress::pageName(page.kind())));
        QString html = page.html();
        for (const QString& id : {s("name"), s("events"), s("rows"), s("done"), s("message")}) {
            if (file.contains(s("id=\"%1\"").arg(id)))
                QVERIFY2(page.content(id).size() > 0,
                         qPrintable(PageAddress::pageName(page.kind()) + s(": ") + id));
        }
        // The content lands inside its element.
        if (!page.content(s("name")).isEmpty())
            QVERIFY(html.contains(s("<h1 id=\"name\">%1</h1>").arg(page.content(s("name")))));
    }
    // The same filling as the script the desktop runs in a loaded page.
    const QString script = pages[0].script();
    QVERIFY(script.contains(s("document.getElementById(\"name\").innerHTML = "
                              "\"Acme \\u0026lt;b\\u0026gt;Ltd\\u0026lt;/b\\u0026gt;\";")));
    QVERIFY(script.contains(s("document.getElementById(\"phones_group\").style.display = \"none\";")));
    QVERIFY(pages[2].html().contains(s("addPieValues(")));
    QVERIFY(pages[3].content(s("done")).contains(s("done('todo-1')")));
}

void tst_DetailPages::documentPayment_data()
{
    QTest::addColumn<QList<double>>("payments");
    QTest::addColumn<QString>("pie");
    QTest::addColumn<bool>("paid");
    // One bolt at 10 plus 20 % tax: 12.
    QTest::newRow("nothing paid") << QList<double>{} << s("0.000000, 12.000000") << false;
    QTest::newRow("partly paid") << QList<double>{5} << s("5.000000, 7.000000") << false;
    QTest::newRow("paid in two") << QList<double>{5, 7} << s("12.000000, 0.000000") << true;
    QTest::newRow("overpaid") << QList<double>{20} << s("20.000000, -8.000000") << false;
}

void tst_DetailPages::documentPayment()
{
    QFETCH(QList<double>, payments);
    QFETCH(QString, pie);
    QFETCH(bool, paid);
    const RecordRef ref = m_company->invoice(QDate(2024, 3, 1));
    for (double amount : payments)
        m_company->add("Payments", {{s("amount"), amount}, {s("document"), QVariant::fromValue(ref)}});
    const DetailPage page = DocumentPage::fill(m_company->record(ref));
    QCOMPARE(page.calls(), QStringList{s("addPieValues([%1], [\"Paid\", \"Unpaid\"])").arg(pie)});
    QCOMPARE(page.content(s("payment")), paid ? s("<span style='color:#0acd8c;'>Paid<span>")
                                              : s("<span style='color:#d10103'>Unpaid<span>"));
    const QString rows = page.content(s("rows"));
    QVERIFY2(rows.contains(s("<td>Bolt</td><td class='number' style='text-align:right;'>1</td>"
                             "<td class='number' style='text-align:right;'>€10</td>")),
             qPrintable(rows));
}

void tst_DetailPages::history_data()
{
    QTest::addColumn<int>("documents");
    QTest::addColumn<int>("todos"); // every second one done
    QTest::addColumn<int>("filter");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("shown");
    QTest::addColumn<int>("more"); // the count "Show More" asks for; 0: no such row

    QTest::newRow("fewer than ten") << 3 << 2 << -1 << 0 << 5 << 0;
    QTest::newRow("exactly ten") << 6 << 4 << -1 << 0 << 10 << 0;
    QTest::newRow("eleven") << 6 << 5 << -1 << 0 << 10 << 11;
    QTest::newRow("twenty-five, first page") << 15 << 10 << -1 << 0 << 10 << 20;
    QTest::newRow("twenty-five, second page") << 15 << 10 << -1 << 20 << 20 << 25;
    QTest::newRow("twenty-five, all") << 15 << 10 << -1 << 25 << 25 << 0;
    QTest::newRow("documents only") << 15 << 10 << 0 << 0 << 10 << 15;
    QTest::newRow("to-dos only") << 15 << 10 << 1 << 0 << 10 << 0;
    QTest::newRow("done to-dos") << 15 << 10 << 2 << 0 << 5 << 0;
    QTest::newRow("pending to-dos") << 15 << 10 << 3 << 0 << 5 << 0;
    QTest::newRow("other filter lists all") << 15 << 10 << 7 << 0 << 10 << 20;
}

void tst_DetailPages::history()
{
    QFETCH(int, documents);
    QFETCH(int, todos);
    QFETCH(int, filter);
    QFETCH(int, count);
    QFETCH(int, shown);
    for (int n = 0; n < documents; ++n)
        m_company->invoice(QDate(2024, 1, 1).addDays(3 * n));
    m_company->invoice(QDate(2024, 2, 1), 1, false); // a draft is no event
    for (int n = 0; n < todos; ++n)
        m_company->todo(m_company->client, s("T%1").arg(n), at(2024, 1, 2).addDays(3 * n), n % 2 == 1);
    m_company->todo(m_company->other, s("someone else's"), at(2024, 1, 2));

    const QString html = EventHistory(m_company->record(m_company->client)).html(filter, count);
    const QStringList events = eventsOf(html);
    QCOMPARE(events.size(), shown);
    QTEST(moreCount(html), "more");
    const QString onlyClass = filter == 0   ? s("eNotice")
                              : filter == 2 ? s("eDone")
                              : filter == 3 ? s("ePending")
                                            : QString();
    if (!onlyClass.isEmpty())
        QCOMPARE(events.filter(onlyClass + s(":")).size(), shown);
    if (filter == 1)
        QCOMPARE(events.filter(s("eNotice")).size(), 0);
}

void tst_DetailPages::historyOrderAndEvents()
{
    m_company->invoice(QDate(2024, 2, 20));
    const RecordRef newer = m_company->invoice(QDate(2024, 3, 10));
    m_company->todo(m_company->item, s("Check <stock>"), at(2024, 3, 5, 9, 7), false,
                    {{s("desc"), s("line 1\nline 2")}});
    m_company->todo(m_company->item, s("Order"), at(2024, 3, 12), true, {{s("all_day"), true}});

    const QString html = EventHistory(m_company->record(m_company->item)).html(-1, 0);
    QCOMPARE(eventsOf(html),
             (QStringList{s("eDone:todo.html?4&todo-2"), s("eNotice:document.html?3&doc-2"),
                          s("ePending:todo.html?4&todo-1"), s("eNotice:document.html?3&doc-1")}));
    QCOMPARE(html.count(s("<tr class='eMonth'>")), 2);
    QVERIFY(html.contains(s("<span class='month'>March</span> <span class='year'>2024</span>")));
    QVERIFY(
        html.contains(s("Check &lt;stock&gt;</a><br>line 1<br>line 2</td><td class='eAmount'>09:07</td>")));
    QVERIFY(html.contains(s(">Order</a></td><td class='eAmount'></td>")));
    QVERIFY(
        html.contains(s(">%1</a> ").arg(m_company->record(newer)->value(s("number_formatted")).toString())));
    QVERIFY(html.contains(s("<td class='eAmount'>€12 EUR</td>")));
}

QTEST_GUILESS_MAIN(tst_DetailPages)
#include "tst_detailpages.moc"
