#include "../documents/documenttestsupport.h"
#include "browse/categorytree.h"
#include "browse/tagchoices.h"
#include "browse/tagrow.h"
#include "model/companysettings.h"

using namespace corvanta;
using browse::TagChoices;
using browse::TagRow;
using documents::testing::s;
using documents::testing::TestCompany;
using store::Record;

namespace {

QString names(const QList<Record*>& records)
{
    QStringList texts;
    for (const Record* record : records)
        texts << record->value(s("name")).toString();
    return texts.join(s(", "));
}

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
    QFETCH(QString, shown);
    TestCompany company;
    browse::CategoryTree tree(company.main());
    Record* supplier = company.main().insertRecord(s("Clients"), {{s("type"), 1}});
    QVERIFY(TagRow::shown(supplier).isEmpty());
    for (const char* name : {"Supplier", "Company"})
        supplier->addRelated(s("tags"), company.named("Categories", s(name)));
    Record* folder = company.named("Categories", s("My Folder"));
    supplier->addRelated(s("tags"), tree.newTag(s("beta"), 1, folder));
    supplier->addRelated(s("tags"), tree.newTag(s("Alpha"), 1, folder));
    Record* item = company.main().insertRecord(s("Items"), {{s("name"), s("Vase")}});
    item->addRelated(s("tags"), company.named("Categories", s("Product")));
    item->addRelated(s("tags"), tree.newTag(s("Fragile"), 2, folder));
    company.saveMain();
    if (!setting.isEmpty())
        QVERIFY(model::CompanySettings(company.main()).setSetting(setting, 1));

    Record* record = entity == s("Clients") ? supplier : item;
    const QList<Record*> row = TagRow::shown(record, TagRow::SystemTags(systemTags));
    QCOMPARE(names(row), shown);
    // When nothing is hidden the row is in the order the store sorts the same tags in.
    if (row.size() == record->relatedList(s("tags")).size()) {
        const char* inverse = entity == s("Clients") ? "ANY clients == %@" : "ANY items == %@";
        QCOMPARE(names(company.main().fetch(store::FetchRequest(
                     s("Categories"), predicate::literal(inverse, {QVariant::fromValue(record->ref())}),
                     {{s("subtype")}, {s("name")}}))),
                 shown);
    }
    // Hiding is only in the row: the record keeps every tag.
    QCOMPARE(record->relatedList(s("tags")).size(), entity == s("Clients") ? 4 : 2);
}

void tst_Tags::choicesKeepSystemTags()
{
    TestCompany company;
    browse::CategoryTree tree(company.main());
    Record* folder = company.named("Categories", s("My Folder"));
    Record* vip = tree.newTag(s("VIP"), 1, folder);
    Record* late = tree.newTag(s("Late payer"), 1, folder);
    tree.newTag(s("Fragile"), 2, folder); // another kind's tag is not offered
    Record* client = company.main().insertRecord(s("Clients"), {{s("type"), 0}});
    Record* companyTag = company.named("Categories", s("Company"));
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
    QVERIFY(!choices.setSelected(company.named("Categories", s("Supplier")), true));
    company.saveMain();
    QCOMPARE(company.storedText(client->ref(), s("tags.name")).split(s("=")).last().split(s("|")).size(), 2);
    QVERIFY(client->relatedList(s("tags")).contains(companyTag));
    QVERIFY(client->relatedList(s("tags")).contains(late));
}

QTEST_GUILESS_MAIN(tst_Tags)
#include "tst_tags.moc"
