#include "browse/categorycounts.h"
#include "browse/categoryquestions.h"
#include "browse/sidebarmodel.h"
#include "browse/sidebarstate.h"
#include "browsetestsupport.h"
#include "editors/clientcontroller.h"

#include <QAbstractItemModelTester>
#include <QMimeData>
#include <QSignalSpy>

using namespace corvanta;
using namespace corvanta::browse::testing;
using browse::CategoryTree;
using browse::SidebarModel;

namespace {

QString pathOf(const Record* record)
{
    return record ? record->value(s("indexpath")).toString() : s("(none)");
}

// Every node as "indexpath name", in tree order.
QString outline(BrowseCompany& company)
{
    QStringList lines;
    for (const Record* record : CategoryTree(company.main()).all())
        lines << pathOf(record) + QLatin1Char(' ') + record->value(s("name")).toString();
    return lines.join(QLatin1Char('\n'));
}

} // namespace

class tst_Sidebar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void modelShowsTheTree();
    void counts_data();
    void counts();
    void relativeDatesCountFromDayToDay();
    void newNodePlacement_data();
    void newNodePlacement();
    void deletion_data();
    void deletion();
    void drops_data();
    void drops();
    void folderOrTagSheet();
    void stateSurvivesReopening();
};

void tst_Sidebar::modelShowsTheTree()
{
    BrowseCompany company;
    SidebarModel model(company.main());
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);

    QStringList groups;
    for (int row = 0; row < model.rowCount(); ++row)
        groups << model.index(row, 0).data().toString();
    QCOMPARE(groups, (QStringList{s("Clients"), s("Items"), s("Documents"), s("ToDos"), s("My Group")}));

    const QModelIndex clients = model.index(0, 0);
    QCOMPARE(model.rowCount(clients), 4);
    const QModelIndex supplier = model.index(2, 0, clients);
    QVERIFY(!(model.flags(supplier) & Qt::ItemIsDropEnabled)); // a tag takes no drops

    // Saving the selection leaves the tree as it is under the view; a rename elsewhere redraws.
    QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QVERIFY(browse::SidebarState(company.main()).save({model.recordAt(supplier)}, {}));
    auto editor = company.store().newContext();
    editor->record(model.recordAt(supplier)->ref())->setValue(s("name"), s("Vendor"));
    QVERIFY(editor->save());
    QCOMPARE(resets.size(), 0);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().first().value<QModelIndex>(), supplier);
    QCOMPARE(supplier.data().toString(), s("Vendor"));

    // Renaming through the model is saved.
    QVERIFY(model.setData(model.index(4, 0), s("Archive")));
    QCOMPARE(company.storedText(company.category(s("Archive"))->ref(), s("name")), s("name=Archive"));
}

void tst_Sidebar::counts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("count");
    // Two companies and a supplier (filed under Company and Supplier), two final invoices of
    // which one is paid, a draft invoice and an estimate.
    QTest::newRow("group without predicate") << s("Clients") << s("3");
    QTest::newRow("company tag holds the supplier") << s("Company") << s("3");
    QTest::newRow("supplier tag") << s("Supplier") << s("1");
    QTest::newRow("nobody is an individual") << s("Individual") << s("0");
    QTest::newRow("all documents") << s("All Documents") << s("4");
    QTest::newRow("paid invoices") << s("Paid Invoices") << s("1");
    QTest::newRow("unpaid invoices") << s("Unpaid Invoices") << s("1");
    QTest::newRow("invoice tag") << s("Invoice") << s("3");
    QTest::newRow("estimate tag") << s("Estimate") << s("1");
    QTest::newRow("folder counts nothing") << s("My Folder") << QString();
    QTest::newRow("group of type 0 counts nothing") << s("My Group") << QString();
}

void tst_Sidebar::counts()
{
    QFETCH(QString, name);
    BrowseCompany company;
    // The model is there before the records: it recounts after each save, the client editor's
    // in a context of its own which the main context merges.
    SidebarModel model(company.main());
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    // The client editor files each new client under its type's tags.
    editors::ClientController clients(company.store(), company.prompter(), company.clock());
    for (const auto& [type, clientName] : {std::pair{1, "Supplies Ltd"}, {0, "Acme"}, {0, "Bolt"}}) {
        clients.newClient(type);
        clients.client()->setValue(s("company_name"), s(clientName));
        QVERIFY(clients.save(editors::RecordEditor::Sender::None));
    }
    const auto client = company.category(s("Company"))->relatedList(s("clients")).first()->ref();
    const auto item = company.addItem(s("Pen"), 2.5);
    const auto paid = company.addDocument(0, client, item, 2);
    company.addDocument(0, client, item, 1);
    company.addDocument(0, client, item, 1, false);
    company.addDocument(2, client, item, 1);
    company.add("Payments", {{s("amount"), company.record(paid)->value(s("sum_total"))},
                             {s("document"), QVariant::fromValue(paid)}});

    const QModelIndex index = model.indexOf(company.category(name));
    QVERIFY(index.isValid());
    QTEST(index.data(SidebarModel::CountRole).toString(), "count");
    QVERIFY(!changed.isEmpty());
}

void tst_Sidebar::relativeDatesCountFromDayToDay()
{
    BrowseCompany company; // 15 March 2024
    const auto client = company.addClient(s("Acme"));
    company.addDocument(0, client, company.addItem(s("Pen"), 1), 1);
    CategoryTree tree(company.main());
    Record* recent = tree.newSmartFolder(s("Recent"), 3, s("date_creation >= \"@yesterday\""),
                                         company.category(s("Documents")));
    company.saveMain();

    browse::CategoryCounts::update(company.main(), at(2024, 3, 16));
    QCOMPARE(recent->value(s("count")).toString(), s("1"));
    QCOMPARE(browse::CategoryCounts::update(company.main(), at(2024, 3, 18)), QList<Record*>{recent});
    QCOMPARE(recent->value(s("count")).toString(), s("0"));
}

void tst_Sidebar::newNodePlacement_data()
{
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QString>("parent");
    QTest::addColumn<int>("subfolders"); // made in "My Folder" first
    QTest::addColumn<QString>("path");
    QTest::newRow("nothing selected: top level") << QString() << QString() << 0 << s("005");
    QTest::newRow("group selected") << s("Items") << s("Items") << 0 << s("001004");
    QTest::newRow("folder selected") << s("My Folder") << s("My Folder") << 0 << s("004000000");
    QTest::newRow("after twelve children") << s("My Folder") << s("My Folder") << 12 << s("004000012");
    QTest::newRow("tag selected: beside it") << s("Product") << s("Items") << 0 << s("001004");
    QTest::newRow("nested smart folder: beside it")
        << s("Paid Invoices") << s("Documents") << 0 << s("002013");
}

void tst_Sidebar::newNodePlacement()
{
    QFETCH(QString, selected);
    QFETCH(QString, parent);
    QFETCH(int, subfolders);
    BrowseCompany company;
    CategoryTree tree(company.main());
    for (int i = 0; i < subfolders; ++i)
        tree.newFolder(s("Sub %1").arg(i), company.category(s("My Folder")));
    Record* under = CategoryTree::placementParent(company.category(selected));
    QCOMPARE(under, company.category(parent));

    Record* tag = tree.newTag(s("Urgent"), 2, under);
    QTEST(pathOf(tag), "path");
    QCOMPARE(CategoryTree::colourText(tag->value(s("foreground_color"))), s("#FFFFFF"));
    QCOMPARE(CategoryTree::colourText(tag->value(s("background_color"))), s("#FF8000"));
}

void tst_Sidebar::deletion_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("question"); // the start of the one asked, if any
    QTest::addColumn<int>("removed");      // nodes; 0: refused
    QTest::newRow("group") << s("My Group")
                           << s("Delete the group \"My Group\"? | Included: My Folder, Inner, Label, \n\n")
                           << 4;
    QTest::newRow("folder") << s("My Folder")
                            << s("Delete the folder \"My Folder\"? | Included: Inner, Label, \n\n") << 3;
    QTest::newRow("tag") << s("Label") << s("Delete the tag \"Label\"? | This action cannot be undone.") << 1;
    QTest::newRow("smart folder") << s("Recent")
                                  << s("Delete the Smart Folder \"Recent\"? | Deleting a Smart Folder "
                                       "removes it but does not delete its contents.")
                                  << 1;
    QTest::newRow("group holding system tags")
        << s("Clients")
        << s("Cannot be deleted | Cannot be deleted because includes minimum one system tag. Before "
             "deleting, "
             "place system tags in another folder by drag & drop. | OK")
        << 0;
    QTest::newRow("system tag itself") << s("Cancellation") << QString() << 0;
    QTest::newRow("system smart folder itself") << s("All Items") << QString() << 0;
}

void tst_Sidebar::deletion()
{
    QFETCH(QString, name);
    QFETCH(QString, question);
    QFETCH(int, removed);
    using Result = browse::CategoryDeletion::Result;
    BrowseCompany company;
    CategoryTree tree(company.main());
    Record* inner = tree.newFolder(s("Inner"), company.category(s("My Folder")));
    tree.newTag(s("Label"), 1, inner);
    tree.newSmartFolder(s("Recent"), 3, s("date_creation >= \"@today\""), company.category(s("Documents")));
    company.saveMain();
    const int before = company.count("Categories");
    const QString shape = outline(company);

    // Declined or refused, the tree stays as it was.
    browse::CategoryDeletion deletion(tree, company.prompter());
    QCOMPARE(browse::CategoryDeletion::canDelete(company.category(name)), !question.isEmpty());
    if (removed)
        company.prompter().addAnswer(s("Cancel"));
    QCOMPARE(deletion.deleteCategory(company.category(name)), removed ? Result::Cancelled : Result::Refused);
    QCOMPARE(company.asked().size(), question.isEmpty() ? 0 : 1);
    QVERIFY2(company.asked().value(0).startsWith(question), qPrintable(company.question()));
    QCOMPARE(outline(company), shape);

    if (removed) {
        QCOMPARE(deletion.deleteCategory(company.category(name)), Result::Deleted);
        company.saveMain();
        QCOMPARE(company.count("Categories"), before - removed);
        QVERIFY(!company.category(name));
    } else if (name == s("Clients")) {
        // Once its system tags are dragged elsewhere the group can go.
        QVERIFY(
            tree.move(CategoryTree::children(company.category(name)), company.category(s("My Group")), 0));
        QCOMPARE(deletion.deleteCategory(company.category(name)), Result::Deleted);
        QCOMPARE(pathOf(company.category(s("My Group"))), s("003"));
        QCOMPARE(pathOf(company.category(s("All Clients"))), s("003000"));
        QCOMPARE(pathOf(company.category(s("My Folder"))), s("003004"));
    }
}

void tst_Sidebar::drops_data()
{
    QTest::addColumn<QStringList>("dragged");
    QTest::addColumn<QString>("target");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("refusal");
    QTest::addColumn<QString>("expected"); // the target's children afterwards, with their paths
    using R = CategoryTree::DropRefusal;
    QTest::newRow("onto a tag") << QStringList{s("My Folder")} << s("Invoice") << -1 << int(R::OntoTag)
                                << QString();
    QTest::newRow("onto a nested smart folder") << QStringList{s("My Folder")} << s("Paid Invoices") << -1
                                                << int(R::OntoNestedSmartFolder) << QString();
    QTest::newRow("into itself") << QStringList{s("My Group")} << s("My Group") << 0
                                 << int(R::IntoDraggedSubtree) << QString();
    QTest::newRow("into its own child")
        << QStringList{s("My Group")} << s("My Folder") << 0 << int(R::IntoDraggedSubtree) << QString();
    QTest::newRow("folder to the front of a group")
        << QStringList{s("My Folder")} << s("Items") << 0 << int(R::None)
        << s("001000 My Folder, 001001 All Items, 001002 Critical Stock, 001003 Service, 001004 Product");
    QTest::newRow("tags reordered in their group")
        << QStringList{s("Company"), s("All Clients")} << s("Clients") << 4 << int(R::None)
        << s("000000 Supplier, 000001 Individual, 000002 Company, 000003 All Clients");
    QTest::newRow("onto a top-level smart folder, at the end")
        << QStringList{s("Done")} << s("Documents") << -1 << int(R::None)
        << s("002000 All Documents, 002001 Paid Invoices, 002002 Unpaid Invoices, 002003 Draft Invoices, "
             "002004 Invoice, 002005 Pro Forma, 002006 Estimate, 002007 Quotation, 002008 Delivery Note, "
             "002009 Credit Note, 002010 Credit Memo, 002011 Purchase Order, 002012 Cancellation, 002013 "
             "Done");
}

void tst_Sidebar::drops()
{
    QFETCH(QStringList, dragged);
    QFETCH(QString, target);
    QFETCH(int, row);
    QFETCH(int, refusal);
    BrowseCompany company;
    SidebarModel model(company.main());
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QList<Record*> nodes;
    QModelIndexList indexes;
    for (const QString& name : dragged) {
        nodes << company.category(name);
        indexes << model.indexOf(nodes.last());
    }
    Record* onto = company.category(target);
    QCOMPARE(int(CategoryTree::dropRefusal(nodes, onto)), refusal);

    std::unique_ptr<QMimeData> data(model.mimeData(indexes));
    QVERIFY(data->hasFormat(s("corvantaCategoryDragType")));
    const QModelIndex parent = model.indexOf(onto);
    const bool accepted = refusal == int(CategoryTree::DropRefusal::None);
    QCOMPARE(model.canDropMimeData(data.get(), Qt::MoveAction, row, 0, parent), accepted);
    const QString shape = outline(company);
    QCOMPARE(model.dropMimeData(data.get(), Qt::MoveAction, row, 0, parent), accepted);
    if (!accepted) {
        QCOMPARE(outline(company), shape);
        return;
    }
    QStringList children;
    const QModelIndex moved = model.indexOf(onto);
    for (int i = 0; i < model.rowCount(moved); ++i) {
        const QModelIndex child = model.index(i, 0, moved);
        children << child.data(SidebarModel::IndexPathRole).toString() + QLatin1Char(' ') +
                        child.data().toString();
    }
    QTEST(children.join(s(", ")), "expected");
    // Saved, and every path is its place in the tree: the stored outline agrees with the model.
    QVERIFY(!company.main().hasChanges());
    for (Record* record : CategoryTree(company.main()).all()) {
        const Record* up = record->related(s("parent"));
        const QString path = pathOf(record);
        QCOMPARE(path.size(), 3 * (CategoryTree::depth(record) + 1));
        QVERIFY2(!up || path.startsWith(pathOf(up)), qPrintable(path));
        QCOMPARE(path.right(3).toInt(), model.indexOf(record).row());
    }
}

void tst_Sidebar::folderOrTagSheet()
{
    using browse::FolderOrTagSheet;
    BrowseCompany company;
    CategoryTree tree(company.main());
    tree.newFolder(s("Inner"), company.category(s("My Folder")));
    QCOMPARE(FolderOrTagSheet::parentEntries(tree.containers()),
             (QStringList{s("Clients"), s("Items"), s("Documents"), s("ToDos"), s("My Group"),
                          s("\tMy Folder"), s("\t\tInner")}));
    QCOMPARE(namesOf(tree.groupsByName()), s("Clients, Documents, Items, My Group, ToDos"));
    QCOMPARE(FolderOrTagSheet::informativeText(FolderOrTagSheet::Mode::NewFolder, s("My Group")),
             s("Enter name for new folder to be created inside \"My Group\"."));

    QVERIFY(FolderOrTagSheet::checkTagType(FolderOrTagSheet::Mode::NewFolder, 0, company.prompter()));
    QVERIFY(FolderOrTagSheet::checkTagType(FolderOrTagSheet::Mode::NewTag, 4, company.prompter()));
    QVERIFY(company.asked().isEmpty());
    QVERIFY(!FolderOrTagSheet::checkTagType(FolderOrTagSheet::Mode::NewTag, 0, company.prompter()));
    QCOMPARE(company.question(),
             s("There is no \"Tag Type\" chosen | For saving, please choose a \"Tag Type\". | OK"));
}

void tst_Sidebar::stateSurvivesReopening()
{
    BrowseCompany company;
    {
        browse::SidebarState state(company.main());
        QCOMPARE(namesOf(state.expanded()), s("Clients, Items, Documents, ToDos, My Group"));
        // A gap left by a deleted sibling is closed when the state is saved.
        company.main().deleteRecord(company.category(s("Items")));
        QVERIFY(state.save({company.category(s("Invoice"))}, {company.category(s("Documents"))}));
    }
    std::unique_ptr<store::EditingContext> fresh = company.store().newContext();
    browse::SidebarState reopened(*fresh);
    QCOMPARE(namesOf(reopened.selected()), s("Invoice"));
    QCOMPARE(namesOf(reopened.expanded()), s("Documents"));
    QCOMPARE(pathOf(reopened.selected().first()), s("001004"));
}

QTEST_GUILESS_MAIN(tst_Sidebar)
#include "tst_sidebar.moc"
