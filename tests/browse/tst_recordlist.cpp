#include "browse/recordlistmodel.h"
#include "browse/sortmenu.h"
#include "browsetestsupport.h"

#include <QAbstractItemModelTester>

using namespace corvanta;
using namespace corvanta::browse::testing;
using browse::ListKind;
using browse::RecordListModel;
using browse::SortMenu;
using store::SortDescriptor;

namespace {

// Column 0 of every loaded row, joined by ", "; documents by their number ("draft" for a draft,
// whose number holds the moment it was made).
QString firstColumn(const RecordListModel& model)
{
    QStringList texts;
    for (int row = 0; row < model.rowCount(); ++row) {
        const Record* record = model.recordAt(row);
        if (record->entityName() != s("Documents"))
            texts << model.index(row, 0).data().toString();
        else
            texts << (record->value(s("draft")).toBool() ? s("draft")
                                                         : record->value(s("number")).toString());
    }
    return texts.join(s(", "));
}

// "key asc|desc [text]" for each descriptor.
QString sortText(const QList<SortDescriptor>& sort)
{
    QStringList texts;
    for (const SortDescriptor& d : sort) {
        texts << d.keyPath + (d.ascending ? s(" asc") : s(" desc")) +
                     (d.comparison == SortDescriptor::Comparison::LocalizedCaseInsensitive ? s(" text")
                                                                                           : QString());
    }
    return texts.join(s(", "));
}

// A company with a few records of each kind: clients whose names only sort right ignoring case,
// documents of several days with due dates that tie, an item below its critical stock, to-dos.
class ListCompany : public BrowseCompany
{
public:
    ListCompany()
    {
        const auto alpha = addClient(s("Alpha AG"));
        addClient(s("beta gmbh"));
        const auto charlie = addClient(s("Charlie"));
        for (const auto& client : {alpha, charlie})
            record(client)->addRelated(s("tags"), category(s("Company")));
        const auto widget = addItem(s("Widget"), 10);
        record(widget)->setValue(s("stock_critical"), 5);
        addItem(s("gadget"), 4);
        // Numbers 1, 2, 3 in the order made; the first and the third are due on the same day.
        addDocument(0, alpha, widget, 1, true,
                    {{s("date_creation"), at(2024, 3, 1)}, {s("date_due"), at(2024, 4, 1)}});
        addDocument(0, charlie, widget, 1, true,
                    {{s("date_creation"), at(2024, 3, 10)}, {s("date_due"), at(2024, 3, 20)}});
        addDocument(0, alpha, widget, 1, true,
                    {{s("date_creation"), at(2024, 2, 20)}, {s("date_due"), at(2024, 4, 1)}});
        addDocument(0, charlie, widget, 1, false, {{s("date_creation"), at(2024, 3, 12)}});
        add("ToDos", {{s("title"), s("call back")}, {s("date_start"), at(2024, 3, 2)}});
        add("ToDos", {{s("title"), s("Ship")}, {s("date_start"), at(2024, 3, 9)}});
        saveMain();
    }

    Record* smartFolder(int type, const QString& predicate)
    {
        return record(
            add("Categories", {{s("name"), s("smart")}, {s("type"), type}, {s("predicate"), predicate}}));
    }
};

} // namespace

// The browser's record list: what a sidebar node lists and in which order, fetched page by page
// and again after every save, and the sort menu's rules.
class tst_RecordList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsWhatTheNodeSelects_data();
    void listsWhatTheNodeSelects();
    void relativeDatesFixedAtEachFetch();
    void sortOrders_data();
    void sortOrders();
    void pagesOfAFolder_data();
    void pagesOfAFolder();
    void refetchedAfterSaves();
    void rowRoles();
    void sortMenuEntries();
};

void tst_RecordList::listsWhatTheNodeSelects_data()
{
    QTest::addColumn<QString>("node");
    QTest::addColumn<QString>("listed");
    QTest::newRow("all clients, names ignoring case")
        << s("All Clients") << s("Alpha AG, beta gmbh, Charlie");
    QTest::newRow("a tag lists its members") << s("Company") << s("Alpha AG, Charlie");
    QTest::newRow("items by name") << s("All Items") << s("gadget, Widget");
    QTest::newRow("critical stock") << s("Critical Stock") << s("Widget");
    QTest::newRow("documents newest first") << s("All Documents") << s("draft, 2, 1, 3");
    QTest::newRow("draft invoices") << s("Draft Invoices") << s("draft");
    QTest::newRow("to-dos newest first") << s("All ToDos") << s("Ship, call back");
    QTest::newRow("group heading") << s("My Group") << QString();
    QTest::newRow("no node") << QString() << QString();
}

void tst_RecordList::listsWhatTheNodeSelects()
{
    QFETCH(QString, node);
    QFETCH(QString, listed);
    ListCompany company;
    RecordListModel model(company.main(), company.clock());
    QAbstractItemModelTester tester(&model);
    model.setCategory(company.category(s("All Clients"))); // something listed before
    model.setCategory(company.category(node));
    QCOMPARE(firstColumn(model), listed);
    QCOMPARE(model.columnCount() == 0, listed.isEmpty());
}

void tst_RecordList::relativeDatesFixedAtEachFetch()
{
    ListCompany company;
    RecordListModel model(company.main(), company.clock());
    Record* thisMonth = company.smartFolder(-3, s("date_creation >= \"@this_month\" && draft == NO"));
    // The same folder fetched on three days: "this month" is the month of each fetch.
    for (const auto& [day, listed] :
         {std::pair{at(2024, 3, 15), 2}, {at(2024, 2, 25), 3}, {at(2024, 5, 2), 0}}) {
        company.setNow(day);
        model.setCategory(thisMonth);
        QCOMPARE(model.rowCount(), listed);
    }
    QVERIFY(model.fetchError().isEmpty());
}

void tst_RecordList::sortOrders_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QList<int>>("tags"); // sort menu entries chosen, from the kind's first order
    QTest::addColumn<QString>("sort");
    QTest::addColumn<QString>("listed"); // documents of the "Invoice" tag by number, drafts left out
    const int up = SortMenu::kAscending;
    const int down = SortMenu::kDescending;
    const int documents = int(ListKind::Documents);
    QTest::newRow("documents newest first")
        << documents << QList<int>{} << s("date_creation desc, created desc") << s("2, 1, 3");
    QTest::newRow("direction turns both document keys")
        << documents << QList<int>{up} << s("date_creation asc, created asc") << s("3, 1, 2");
    QTest::newRow("number, kept direction")
        << documents << QList<int>{-1} << s("number_formatted desc") << s("3, 2, 1");
    QTest::newRow("number ascending")
        << documents << QList<int>{-1, up} << s("number_formatted asc") << s("1, 2, 3");
    QTest::newRow("due date ascending, equal dates by number")
        << documents << QList<int>{up, -4} << s("date_due asc, number asc") << s("2, 1, 3");
    QTest::newRow("due date descending, equal dates by number")
        << documents << QList<int>{-4, down} << s("date_due desc, number desc") << s("3, 1, 2");
    QTest::newRow("completion date then number")
        << documents << QList<int>{-3} << s("date_completion desc, number desc") << s("3, 2, 1");
    QTest::newRow("client names descending, ignoring case")
        << int(ListKind::Clients) << QList<int>{down} << s("full_name desc text")
        << s("Charlie, beta gmbh, Alpha AG");
    QTest::newRow("a key the kind lacks") << int(ListKind::Clients) << QList<int>{-2}
                                          << s("full_name asc text") << s("Alpha AG, beta gmbh, Charlie");
    QTest::newRow("to-do title as text")
        << int(ListKind::ToDos) << QList<int>{-1} << s("title desc text") << s("Ship, call back");
    QTest::newRow("to-do start plainly")
        << int(ListKind::ToDos) << QList<int>{-1, up, -2} << s("date_start asc") << s("call back, Ship");
}

// The sort menu's entries change the order as told, and the list is fetched in that order.
void tst_RecordList::sortOrders()
{
    QFETCH(int, kind);
    QFETCH(QList<int>, tags);
    ListCompany company;
    RecordListModel model(company.main(), company.clock());
    const char* node = kind == int(ListKind::Clients) ? "All Clients"
                       : kind == int(ListKind::ToDos) ? "All ToDos"
                                                      : "Invoice";
    model.setCategory(company.category(s(node)));
    QCOMPARE(int(model.kind()), kind);
    for (int tag : tags)
        model.setSortDescriptors(SortMenu::changed(model.kind(), model.sortDescriptors(), tag));
    QTEST(sortText(model.sortDescriptors()), "sort");
    QStringList listed = firstColumn(model).split(s(", "));
    listed.removeAll(s("draft"));
    QTEST(listed.join(s(", ")), "listed");
}

void tst_RecordList::pagesOfAFolder_data()
{
    QTest::addColumn<int>("members");
    QTest::addColumn<int>("others");
    QTest::newRow("a few pages") << 250 << 30;
    // Large enough to be read along the order's index instead of from the join table.
    QTest::newRow("many members") << 1050 << 20;
}

void tst_RecordList::pagesOfAFolder()
{
    QFETCH(int, members);
    QFETCH(int, others);
    BrowseCompany company;
    Record* folder = company.category(s("Invoice"));
    for (int i = 0; i < members + others; ++i) {
        // Days repeat, so equal dates are ordered by when the document was made.
        Record* d =
            company.main().insertRecord(s("Documents"), {{s("type"), i < members ? 0 : 1},
                                                         {s("number_formatted"), QString::number(i)},
                                                         {s("date_creation"), at(2024, 1, 1).addDays(i % 40)},
                                                         {s("created"), at(2024, 1, 1).addSecs(i)}});
        if (i < members)
            d->addRelated(s("tags"), folder);
    }
    company.saveMain();

    RecordListModel model(company.main(), company.clock());
    model.setCategory(folder);
    QCOMPARE(model.rowCount(), RecordListModel::kPageSize);
    QAbstractItemModelTester tester(&model);
    while (model.canFetchMore())
        model.fetchMore();
    QCOMPARE(model.rowCount(), members);

    // The pages joined are the whole list in one piece.
    std::optional<store::FetchRequest> whole = browse::CategoryFetch::of(folder);
    QVERIFY(whole);
    QList<qint64> expected, listed;
    for (const Record* d : company.main().fetch(*whole))
        expected << d->pk();
    for (int row = 0; row < model.rowCount(); ++row)
        listed << model.recordAt(row)->pk();
    QCOMPARE(listed, expected);
}

void tst_RecordList::refetchedAfterSaves()
{
    ListCompany company;
    RecordListModel model(company.main(), company.clock());
    model.setCategory(company.category(s("Company")));
    QCOMPARE(firstColumn(model), s("Alpha AG, Charlie"));

    // Another context's save reaches the list through the main context's merge.
    std::unique_ptr<store::EditingContext> editor = company.store().newContext();
    Record* beta =
        editor->fetchFirst(store::FetchRequest(s("Clients"), predicate::literal("full_name == 'beta gmbh'")));
    beta->addRelated(s("tags"), editor->record(company.category(s("Company"))->ref()));
    beta->setValue(s("company_name"), s("Bravo"));
    QVERIFY(editor->save());
    QCOMPARE(firstColumn(model), s("Alpha AG, Bravo, Charlie"));

    company.main().deleteRecord(company.category(s("Company")));
    company.saveMain();
    QCOMPARE(model.rowCount(), 0);
}

void tst_RecordList::rowRoles()
{
    ListCompany company;
    RecordListModel model(company.main(), company.clock());
    model.setCategory(company.category(s("All Documents")));
    const int last = model.rowCount() - 1;
    Record* document = model.recordAt(last);
    QCOMPARE(model.rowOf(document->ref()), last);
    QCOMPARE(model.index(last, 2).data().toString(), s("Alpha AG"));
    QCOMPARE(model.index(last, 3).data(Qt::EditRole).toDouble(), 10.0);
    QVERIFY(model.index(last, 3).data().toString().contains(s("10")));
    // An item's price is its first price level.
    model.setCategory(company.category(s("All Items")));
    QCOMPARE(model.index(0, 2).data(Qt::EditRole).toDouble(), 4.0);
}

void tst_RecordList::sortMenuEntries()
{
    QList<SortDescriptor> byDue = browse::ListKinds::defaultSort(ListKind::Documents);
    for (int tag : {int(SortMenu::kAscending), -4})
        byDue = SortMenu::changed(ListKind::Documents, byDue, tag);
    QStringList shown;
    for (const SortMenu::Entry& entry : SortMenu::entries(ListKind::Documents, byDue))
        shown << QString::number(entry.tag) + s(" ") + entry.title + (entry.checked ? s(" *") : QString());
    QCOMPARE(shown.join(s(", ")),
             s("-1 Number, -2 Date, -3 Completion Date, -4 Due Date *, 1 Ascending *, 0 Descending"));
    QCOMPARE(SortMenu::buttonTitle(byDue), s("Due Date"));
    QVERIFY(SortMenu::entries(ListKind::None, {}).isEmpty());
}

QTEST_GUILESS_MAIN(tst_RecordList)
#include "tst_recordlist.moc"
