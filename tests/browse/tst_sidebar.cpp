#include "../documents/documenttestsupport.h"
#include "browse/categorycounts.h"
#include "browse/categoryquestions.h"
#include "browse/categorytree.h"
#include "browse/sidebarmodel.h"
#include "browse/sidebarstate.h"
#include "editors/clientcontroller.h"

#include <QAbstractItemModelTester>
#include <QMimeData>
#include <QSignalSpy>

using namespace corvanta;
using browse::CategoryTree;
using browse::SidebarModel;
using documents::testing::at;
using documents::testing::s;
using documents::testing::TestCompany;
using store::Record;

namespace {

Record* node(TestCompany& company, const QString& name)
{
    return company.named("Categories", name);
}

QString pathOf(const Record* record)
{
    return record ? record->value(s("indexpath")).toString() : s("(none)");
}

// Every node as "indexpath name", in tree order.
QString outline(TestCompany& company)
{
    QStringList lines;
    for (const Record* record : CategoryTree(company.main()).all())
        lines << pathOf(record) + QLatin1Char(' ') + record->value(s("name")).toString();
    return lines.join(QLatin1Char('\n'));
}

QStringList namesOf(const QList<Record*>& records)
{
    QStringList names;
    for (const Record* record : records)
        names << record->value(s("name")).toString();
    return names;
}

} // namespace

class tst_Sidebar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void modelShowsTheTree();
    void counts_data();
    void counts();
    void recountsAfterAnotherContextSaves();
    void relativeDatesCountFromDayToDay();
    void newNodePlacement_data();
    void newNodePlacement();
    void newNodeUnderTwelveChildren();
    void deleteQuestions_data();
    void deleteQuestions();
    void systemNodesAreKept_data();
    void systemNodesAreKept();
    void drops_data();
    void drops();
    void folderOrTagSheet();
    void stateSurvivesReopening();
};

void tst_Sidebar::modelShowsTheTree()
{
    TestCompany company;
    SidebarModel model(company.main());
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);

    QStringList groups;
    for (int row = 0; row < model.rowCount(); ++row)
        groups << model.index(row, 0).data().toString();
    QCOMPARE(groups, (QStringList{s("Clients"), s("Items"), s("Documents"), s("ToDos"), s("My Group")}));

    const QModelIndex clients = model.index(0, 0);
    QCOMPARE(model.rowCount(clients), 4);
    const QModelIndex supplier = model.index(2, 0, clients);
    QCOMPARE(supplier.data(SidebarModel::NameRole).toString(), s("Supplier"));
    QCOMPARE(supplier.data(SidebarModel::IndexPathRole).toString(), s("000002"));
    QCOMPARE(supplier.data(SidebarModel::ForegroundColorRole).toString(), s("#FFFFFF"));
    QVERIFY(supplier.data(SidebarModel::IsTagRole).toBool());
    QVERIFY(supplier.data(SidebarModel::IsSystemRole).toBool());
    QVERIFY(!(model.flags(supplier) & Qt::ItemIsDropEnabled));
    QCOMPARE(model.parent(supplier), clients);
    QVERIFY(clients.data(SidebarModel::IsGroupRole).toBool());
    QVERIFY(clients.data(SidebarModel::IsContainerRole).toBool());
    QVERIFY(model.index(1, 0, model.index(1, 0)).data(SidebarModel::IsSmartFolderRole).toBool());

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
    QCOMPARE(company.storedText(node(company, s("Archive"))->ref(), s("name")), s("name=Archive"));
}

void tst_Sidebar::counts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("count");
    // Two companies and a supplier (filed under Company and Supplier), two final invoices of
    // which one is paid, a draft invoice and an estimate.
    QTest::newRow("group without predicate") << s("Clients") << s("3");
    QTest::newRow("all clients") << s("All Clients") << s("3");
    QTest::newRow("company tag holds the supplier") << s("Company") << s("3");
    QTest::newRow("supplier tag") << s("Supplier") << s("1");
    QTest::newRow("nobody is an individual") << s("Individual") << s("0");
    QTest::newRow("all documents") << s("All Documents") << s("4");
    QTest::newRow("paid invoices") << s("Paid Invoices") << s("1");
    QTest::newRow("unpaid invoices") << s("Unpaid Invoices") << s("1");
    QTest::newRow("draft invoices") << s("Draft Invoices") << s("1");
    QTest::newRow("invoice tag") << s("Invoice") << s("3");
    QTest::newRow("estimate tag") << s("Estimate") << s("1");
    QTest::newRow("folder counts nothing") << s("My Folder") << QString();
    QTest::newRow("group of type 0 counts nothing") << s("My Group") << QString();
}

void tst_Sidebar::counts()
{
    QFETCH(QString, name);
    QFETCH(QString, count);
    TestCompany company;
    editors::ClientController suppliers(company.store(), company.prompter(), company.clock());
    suppliers.newClient(1);
    suppliers.client()->setValue(s("company_name"), s("Supplies Ltd"));
    QVERIFY(suppliers.save(editors::RecordEditor::Sender::None));
    editors::ClientController companies(company.store(), company.prompter(), company.clock());
    for (const char* clientName : {"Acme", "Bolt"}) {
        companies.newClient(0);
        companies.client()->setValue(s("company_name"), s(clientName));
        QVERIFY(companies.save(editors::RecordEditor::Sender::None));
    }
    const auto client = node(company, s("Company"))->relatedList(s("clients")).first()->ref();
    const auto item = company.addItem(s("Pen"), 2.5);
    const auto paid = company.addDocument(0, client, item, 2);
    company.addDocument(0, client, item, 1);
    company.addDocument(0, client, item, 1, false);
    company.addDocument(2, client, item, 1);
    company.add("Payments", {{s("amount"), company.record(paid)->value(s("sum_total"))},
                             {s("document"), QVariant::fromValue(paid)}});

    SidebarModel model(company.main());
    const QModelIndex index = model.indexOf(node(company, name));
    QVERIFY(index.isValid());
    QCOMPARE(index.data(SidebarModel::CountRole).toString(), count);
}

void tst_Sidebar::recountsAfterAnotherContextSaves()
{
    TestCompany company;
    SidebarModel model(company.main());
    const QModelIndex supplier = model.indexOf(node(company, s("Supplier")));
    QCOMPARE(supplier.data(SidebarModel::CountRole).toString(), s("0"));
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);

    // The client editor saves in a context of its own; the main context merges it.
    editors::ClientController controller(company.store(), company.prompter(), company.clock());
    controller.newClient(1);
    QVERIFY(controller.save(editors::RecordEditor::Sender::None));

    QCOMPARE(supplier.data(SidebarModel::CountRole).toString(), s("1"));
    QCOMPARE(model.indexOf(node(company, s("Company"))).data(SidebarModel::CountRole).toString(), s("1"));
    QVERIFY(!changed.isEmpty());
}

void tst_Sidebar::relativeDatesCountFromDayToDay()
{
    TestCompany company; // 15 March 2024
    const auto client = company.addClient(s("Acme"));
    company.addDocument(0, client, company.addItem(s("Pen"), 1), 1);
    CategoryTree tree(company.main());
    Record* recent = tree.newSmartFolder(s("Recent"), 3, s("date_creation >= \"@yesterday\""),
                                         node(company, s("Documents")));
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
    QTest::addColumn<QString>("path");
    QTest::newRow("nothing selected: top level") << QString() << QString() << s("005");
    QTest::newRow("group selected") << s("Items") << s("Items") << s("001004");
    QTest::newRow("folder selected") << s("My Folder") << s("My Folder") << s("004000000");
    QTest::newRow("tag selected: beside it") << s("Product") << s("Items") << s("001004");
    QTest::newRow("nested smart folder: beside it") << s("Paid Invoices") << s("Documents") << s("002013");
}

void tst_Sidebar::newNodePlacement()
{
    QFETCH(QString, selected);
    QFETCH(QString, parent);
    QFETCH(QString, path);
    TestCompany company;
    CategoryTree tree(company.main());
    Record* under = CategoryTree::placementParent(selected.isEmpty() ? nullptr : node(company, selected));
    QCOMPARE(under, parent.isEmpty() ? nullptr : node(company, parent));

    Record* tag = tree.newTag(s("Urgent"), 2, under);
    QCOMPARE(pathOf(tag), path);
    QCOMPARE(CategoryTree::colourText(tag->value(s("foreground_color"))), s("#FFFFFF"));
    QCOMPARE(CategoryTree::colourText(tag->value(s("background_color"))), s("#FF8000"));
}

void tst_Sidebar::newNodeUnderTwelveChildren()
{
    TestCompany company;
    CategoryTree tree(company.main());
    Record* folder = node(company, s("My Folder"));
    for (int i = 0; i < 12; ++i)
        tree.newFolder(s("Sub %1").arg(i), folder);
    QCOMPARE(pathOf(tree.newTag(s("Thirteenth"), 1, folder)), s("004000012"));
    QCOMPARE(pathOf(tree.newGroup()), s("005"));
    QCOMPARE(tree.topLevel().last()->value(s("name")).toString(), s("New Group"));
    QCOMPARE(tree.newSmartFolder({}, 2, s("type == 1"), folder)->value(s("name")).toString(),
             s("Smart Folder"));
}

void tst_Sidebar::deleteQuestions_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("question");
    QTest::addColumn<int>("removed");
    QTest::newRow("group")
        << s("My Group")
        << s("Delete the group \"My Group\"? | Included: My Folder, Inner, Label, \n\n"
             "Deleting a group permanently removes it and any folders and tags it contains. "
             "This action cannot be undone. | Delete Group, Cancel")
        << 4;
    QTest::newRow("folder") << s("My Folder")
                            << s("Delete the folder \"My Folder\"? | Included: Inner, Label, \n\n"
                                 "Deleting a folder permanently removes it and any folders and tags it "
                                 "contains. This action cannot be undone. | Delete Folder, Cancel")
                            << 3;
    QTest::newRow("tag")
        << s("Label") << s("Delete the tag \"Label\"? | This action cannot be undone. | Delete Tag, Cancel")
        << 1;
    QTest::newRow("smart folder") << s("Recent")
                                  << s("Delete the Smart Folder \"Recent\"? | Deleting a Smart Folder "
                                       "removes it but does not delete its contents. This action cannot be "
                                       "undone. | Delete Smart Folder, Cancel")
                                  << 1;
}

void tst_Sidebar::deleteQuestions()
{
    QFETCH(QString, name);
    QFETCH(QString, question);
    QFETCH(int, removed);
    TestCompany company;
    CategoryTree tree(company.main());
    Record* inner = tree.newFolder(s("Inner"), node(company, s("My Folder")));
    tree.newTag(s("Label"), 1, inner);
    tree.newSmartFolder(s("Recent"), 3, s("date_creation >= \"@today\""), node(company, s("Documents")));
    company.saveMain();
    const int before = company.count("Categories");
    const QString shape = outline(company);

    browse::CategoryDeletion deletion(tree, company.prompter());
    company.prompter().addAnswer(s("Cancel"));
    QCOMPARE(deletion.deleteCategory(node(company, name)), browse::CategoryDeletion::Result::Cancelled);
    QCOMPARE(company.question(), question);
    QCOMPARE(outline(company), shape);

    QCOMPARE(deletion.deleteCategory(node(company, name)), browse::CategoryDeletion::Result::Deleted);
    company.saveMain();
    QCOMPARE(company.count("Categories"), before - removed);
    QVERIFY(!node(company, name));
}

void tst_Sidebar::systemNodesAreKept_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("asked");
    QTest::newRow("group holding system tags") << s("Clients") << true;
    QTest::newRow("system tag itself") << s("Cancellation") << false;
    QTest::newRow("system smart folder itself") << s("All Items") << false;
}

void tst_Sidebar::systemNodesAreKept()
{
    QFETCH(QString, name);
    QFETCH(bool, asked);
    TestCompany company;
    CategoryTree tree(company.main());
    const QString shape = outline(company);
    QCOMPARE(browse::CategoryDeletion::canDelete(node(company, name)), asked);
    browse::CategoryDeletion deletion(tree, company.prompter());
    QCOMPARE(deletion.deleteCategory(node(company, name)), browse::CategoryDeletion::Result::Refused);
    QCOMPARE(company.asked(),
             asked
                 ? QStringList{s("Cannot be deleted | Cannot be deleted because includes minimum one system "
                                 "tag. Before deleting, place system tags in another folder by drag & "
                                 "drop. | OK")}
                 : QStringList{});
    QCOMPARE(outline(company), shape);

    // Once its system tags are dragged elsewhere the group can go.
    if (name == s("Clients")) {
        QVERIFY(tree.move(CategoryTree::children(node(company, name)), node(company, s("My Group")), 0));
        QCOMPARE(deletion.deleteCategory(node(company, name)), browse::CategoryDeletion::Result::Deleted);
        QCOMPARE(pathOf(node(company, s("My Group"))), s("003"));
        QCOMPARE(pathOf(node(company, s("All Clients"))), s("003000"));
        QCOMPARE(pathOf(node(company, s("My Folder"))), s("003004"));
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
    QFETCH(QString, expected);
    TestCompany company;
    SidebarModel model(company.main());
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QList<Record*> nodes;
    QModelIndexList indexes;
    for (const QString& name : dragged) {
        nodes << node(company, name);
        indexes << model.indexOf(nodes.last());
    }
    Record* onto = node(company, target);
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
    QCOMPARE(children.join(s(", ")), expected);
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
    TestCompany company;
    CategoryTree tree(company.main());
    tree.newFolder(s("Inner"), node(company, s("My Folder")));
    QCOMPARE(FolderOrTagSheet::parentEntries(tree.containers()),
             (QStringList{s("Clients"), s("Items"), s("Documents"), s("ToDos"), s("My Group"),
                          s("\tMy Folder"), s("\t\tInner")}));
    QCOMPARE(namesOf(tree.groupsByName()),
             (QStringList{s("Clients"), s("Documents"), s("Items"), s("My Group"), s("ToDos")}));
    QCOMPARE(FolderOrTagSheet::title(FolderOrTagSheet::Mode::NewTag), s("New Tag"));
    QCOMPARE(FolderOrTagSheet::informativeText(FolderOrTagSheet::Mode::EditTag, s("Items")),
             s("For tag to be edited inside \"Items\", enter name, choose background color and font color."));
    QCOMPARE(FolderOrTagSheet::informativeText(FolderOrTagSheet::Mode::NewFolder, s("My Group")),
             s("Enter name for new folder to be created inside \"My Group\"."));
    QCOMPARE(FolderOrTagSheet::previewName(QString()), s("No Name"));

    QVERIFY(FolderOrTagSheet::checkTagType(FolderOrTagSheet::Mode::NewFolder, 0, company.prompter()));
    QVERIFY(FolderOrTagSheet::checkTagType(FolderOrTagSheet::Mode::NewTag, 4, company.prompter()));
    QVERIFY(company.asked().isEmpty());
    QVERIFY(!FolderOrTagSheet::checkTagType(FolderOrTagSheet::Mode::NewTag, 0, company.prompter()));
    QCOMPARE(company.question(),
             s("There is no \"Tag Type\" chosen | For saving, please choose a \"Tag Type\". | OK"));
}

void tst_Sidebar::stateSurvivesReopening()
{
    TestCompany company;
    {
        browse::SidebarState state(company.main());
        QCOMPARE(namesOf(state.expanded()),
                 (QStringList{s("Clients"), s("Items"), s("Documents"), s("ToDos"), s("My Group")}));
        // A gap left by a deleted sibling is closed when the state is saved.
        company.main().deleteRecord(node(company, s("Items")));
        QVERIFY(state.save({node(company, s("Invoice"))}, {node(company, s("Documents"))}));
    }
    std::unique_ptr<store::EditingContext> fresh = company.store().newContext();
    browse::SidebarState reopened(*fresh);
    QCOMPARE(namesOf(reopened.selected()), QStringList{s("Invoice")});
    QCOMPARE(namesOf(reopened.expanded()), QStringList{s("Documents")});
    QCOMPARE(pathOf(reopened.selected().first()), s("001004"));
}

QTEST_GUILESS_MAIN(tst_Sidebar)
#include "tst_sidebar.moc"
