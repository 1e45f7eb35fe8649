#include "browse/tagchoices.h"
#include "browse/tagrow.h"
#include "browsetestsupport.h"
#include "model/companysettings.h"

using namespace corvanta;
using namespace corvanta::browse::testing;
using browse::TagChoices;
using browse::TagRow;

namespace {

QString rowsText(const QList<TagChoices::Row>& rows)
{
    QStringList texts;
    for (const TagChoices::Row& row : rows)
        texts << row.name + (row.selected ? s(" [x]") : s(" [ ]"));
    return texts.join(s(", "));
}

} // namespace

class tst_Tags : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shownRow_data();
    void shownRow();
    void choicesKeepSystemTags();
};

void tst_Tags::shownRow_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<QString>("setting");
    QTest::addColumn<int>("systemTags");
    QTest::addColumn<QString>("shown");
    const int bySettings = int(TagRow::SystemTags::ByHidingSettings);
    const int never = int(TagRow::SystemTags::Never);
    // A supplier carries Company (subtype 0) and Supplier (1) and the user's tags "beta" and
    // "Alpha"; an item carries Product (1) and its own "Fragile".
    QTest::newRow("client, user tags first")
        << s("Clients") << QString() << bySettings << s("Alpha, beta, Company, Supplier");
    QTest::newRow("client, client's system tags hidden")
        << s("Clients") << s("system_tags_client_hidden") << bySettings << s("Alpha, beta");
    QTest::newRow("client, item setting does not hide them")
        << s("Clients") << s("system_tags_item_hidden") << bySettings << s("Alpha, beta, Company, Supplier");
    QTest::newRow("client without system tags") << s("Clients") << QString() << never << s("Alpha, beta");
    QTest::newRow("item, shown") << s("Items") << s("system_tags_client_hidden") << bySettings
                                 << s("Fragile, Product");
    QTest::newRow("item, hidden") << s("Items") << s("system_tags_item_hidden") << bySettings << s("Fragile");
}

void tst_Tags::shownRow()
{
    QFETCH(QString, entity);
    QFETCH(QString, setting);
    QFETCH(int, systemTags);
    BrowseCompany company;
    Record* supplier = company.main().insertRecord(s("Clients"), {{s("type"), 1}});
    QVERIFY(TagRow::shown(supplier).isEmpty());
    for (Record* tag : {company.category(s("Supplier")), company.category(s("Company")),
                        company.userTag(s("beta"), 1), company.userTag(s("Alpha"), 1)})
        supplier->addRelated(s("tags"), tag);
    Record* item = company.main().insertRecord(s("Items"), {{s("name"), s("Vase")}});
    item->addRelated(s("tags"), company.category(s("Product")));
    item->addRelated(s("tags"), company.userTag(s("Fragile"), 2));
    company.saveMain();
    if (!setting.isEmpty())
        QVERIFY(model::CompanySettings(company.main()).setSetting(setting, 1));

    Record* record = entity == s("Clients") ? supplier : item;
    const QList<Record*> row = TagRow::shown(record, TagRow::SystemTags(systemTags));
    QTEST(namesOf(row), "shown");
    // Hiding is only in the row: the record keeps every tag.
    QCOMPARE(record->relatedList(s("tags")).size(), entity == s("Clients") ? 4 : 2);
}

void tst_Tags::choicesKeepSystemTags()
{
    BrowseCompany company;
    Record* vip = company.userTag(s("VIP"), 1);
    Record* late = company.userTag(s("Late payer"), 1);
    company.userTag(s("Fragile"), 2); // another kind's tag is not offered
    Record* client = company.main().insertRecord(s("Clients"), {{s("type"), 0}});
    Record* companyTag = company.category(s("Company"));
    client->addRelated(s("tags"), companyTag);
    client->addRelated(s("tags"), vip);
    company.saveMain();

    TagChoices choices(client);
    QCOMPARE(rowsText(choices.rows()), s("Late payer [ ], VIP [x]"));
    QCOMPARE(choices.rows().first().background.name(), s("#ff8000"));

    QVERIFY(choices.setSelected(late, true));
    QVERIFY(choices.setSelected(vip, false));
    QCOMPARE(rowsText(choices.rows()), s("Late payer [x], VIP [ ]"));
    // A system tag is no choice: it can be neither taken off nor put on here.
    QVERIFY(!choices.setSelected(companyTag, false));
    QVERIFY(!choices.setSelected(company.category(s("Supplier")), true));
    company.saveMain();
    QCOMPARE(company.storedText(client->ref(), s("tags.name")).split(s("=")).last().split(s("|")).size(), 2);
    QVERIFY(client->relatedList(s("tags")).contains(companyTag));
    QVERIFY(client->relatedList(s("tags")).contains(late));
}

QTEST_GUILESS_MAIN(tst_Tags)
#include "tst_tags.moc"
