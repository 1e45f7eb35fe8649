#include "app/applicationcore.h"
#include "browse/categorytree.h"
#include "browse/sidebarmodel.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"
#include "store/store.h"
#include "support/scriptedprompter.h"
#include "ui/sidebardelegate.h"
#include "ui/sidebarview.h"

#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

using namespace corvanta;
using browse::CategoryTree;
using browse::SidebarModel;
using store::Record;
using ui::SidebarView;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

// A company database with its default records in a folder of its own, opened as the program
// opens it, that can be closed and opened again.
class Company
{
public:
    enum Extra { Defaults, WithInnerFolder };
    explicit Company(Extra extra = Defaults)
    {
        open();
        // A folder inside "My Folder", for what is dragged into a child or deleted with one.
        if (extra == WithInnerFolder) {
            CategoryTree(m_store->mainContext()).newFolder(s("Inner"), category(s("My Folder")));
            if (!m_store->mainContext().save())
                qFatal("the inner folder is not saved");
        }
    }

    void open()
    {
        store::StoreError error;
        m_store = app::ApplicationCore::openCompanyDatabase(m_dir.filePath(s("Company.cvdb")), m_dir.path(),
                                                            m_dir.filePath(s("templates")), &error);
        if (!m_store)
            qFatal("the company database does not open: %s", qPrintable(error.message()));
    }
    void close() { m_store.reset(); }

    store::Store& store() { return *m_store; }
    support::ScriptedPrompter& prompter() { return m_prompter; }
    QString asked() const
    {
        QStringList questions;
        for (const auto& q : m_prompter.questions())
            questions << q.title + s(" | ") + q.text + s(" | ") + q.buttons.join(s(", "));
        return questions.join(s("\n"));
    }

    Record* category(const QString& name)
    {
        return m_store->mainContext().fetchFirst(
            store::FetchRequest(s("Categories"), predicate::literal("name == %@", {name})));
    }
    // The node's name as the database holds it, read afresh.
    QString storedName(const Record* node)
    {
        std::unique_ptr<store::EditingContext> fresh = m_store->newContext();
        const Record* stored = fresh->fetchRecord(s("Categories"), node->ref());
        return stored ? stored->value(s("name")).toString() : s("(deleted)");
    }

private:
    QTemporaryDir m_dir;
    std::unique_ptr<store::Store> m_store;
    support::ScriptedPrompter m_prompter;
};

QString nameOf(const Record* node)
{
    return node ? node->value(s("name")).toString() : s("(none)");
}

void select(SidebarView& view, Record* node)
{
    view.tree()->selectionModel()->setCurrentIndex(view.model()->indexOf(node),
                                                   QItemSelectionModel::ClearAndSelect);
}

QAction* menuEntry(SidebarView& view, const char* menu, const QString& text)
{
    const QList<QAction*> actions = view.findChild<QMenu*>(s(menu))->actions();
    const auto found =
        std::find_if(actions.begin(), actions.end(), [&](QAction* a) { return a->text() == text; });
    return found == actions.end() ? nullptr : *found;
}

} // namespace

class tst_SidebarView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The view counts over the main context, so a client saved by an editor's own context shows
    // up in the tags it carries.
    void countsFollowTheRecords()
    {
        Company company;
        SidebarView view(company.store(), company.prompter());
        const QModelIndex tag = view.model()->indexOf(company.category(s("Company")));
        QCOMPARE(tag.data(SidebarModel::CountRole).toString(), s("0"));
        std::unique_ptr<store::EditingContext> editor = company.store().newContext();
        Record* client = editor->insertRecord(s("Clients"), {{s("type"), 0}, {s("company_name"), s("Acme")}});
        client->addRelated(s("tags"), editor->record(company.category(s("Company"))->ref()));
        QVERIFY(editor->save());
        QCOMPARE(
            view.model()->indexOf(company.category(s("Company"))).data(SidebarModel::CountRole).toString(),
            s("1"));
    }

    void drops_data()
    {
        QTest::addColumn<QString>("dragged");
        QTest::addColumn<QString>("target");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("folder into its own child") << s("My Folder") << s("Inner") << false;
        QTest::newRow("folder onto a tag") << s("My Folder") << s("Invoice") << false;
        QTest::newRow("tag into a closed folder") << s("Supplier") << s("Inner") << true;
    }
    // Drops go through the view's model with what the view drags: its selected rows.
    void drops()
    {
        QFETCH(QString, dragged);
        QFETCH(QString, target);
        QFETCH(bool, accepted);
        Company company(Company::WithInnerFolder);
        SidebarView view(company.store(), company.prompter());
        view.restoreState(); // every group expanded
        Record* node = company.category(dragged);
        Record* parentBefore = node->related(s("parent"));
        select(view, node);

        std::unique_ptr<QMimeData> data(
            view.model()->mimeData(view.tree()->selectionModel()->selectedRows()));
        const QModelIndex onto = view.model()->indexOf(company.category(target));
        QAbstractItemModel* model = view.tree()->model();
        QCOMPARE(model->canDropMimeData(data.get(), Qt::MoveAction, 0, 0, onto), accepted);
        QCOMPARE(model->dropMimeData(data.get(), Qt::MoveAction, 0, 0, onto), accepted);

        QCOMPARE(nameOf(node->related(s("parent"))), accepted ? target : nameOf(parentBefore));
        // The moved node stays selected, in sight under its new parent.
        QCOMPARE(view.selectedCategory(), node);
        QVERIFY(view.tree()->isExpanded(view.model()->indexOf(node).parent()));
        // The tree was read again after the move, and keeps what was open.
        QVERIFY(view.tree()->isExpanded(view.model()->indexOf(company.category(s("ToDos")))));
    }

    void deleting_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("fromGroupMenu");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("question");
        QTest::addColumn<QString>("selectedAfter"); // empty: the node is kept and stays selected

        QTest::newRow("group holding system tags, from the group menu")
            << s("Clients") << true << QString()
            << s("Cannot be deleted | Cannot be deleted because includes minimum one system tag. "
                 "Before deleting, place system tags in another folder by drag & drop. | OK")
            << QString();
        const QString folder =
            s("Delete the folder \"My Folder\"? | Included: Inner, \n\nDeleting a folder "
              "permanently removes it and any folders and tags it contains. This action cannot "
              "be undone. | Delete Folder, Cancel");
        QTest::newRow("folder, cancelled") << s("My Folder") << false << s("Cancel") << folder << QString();
        QTest::newRow("folder, deleted")
            << s("My Folder") << false << s("Delete Folder") << folder << s("My Group");
        QTest::newRow("system tag: plain delete disabled")
            << s("Cancellation") << false << QString() << QString() << QString();
    }
    void deleting()
    {
        QFETCH(QString, name);
        QFETCH(bool, fromGroupMenu);
        QFETCH(QString, answer);
        QFETCH(QString, selectedAfter);
        Company company(Company::WithInnerFolder);
        SidebarView view(company.store(), company.prompter());
        Record* node = company.category(name);
        select(view, node);
        const bool system = CategoryTree::isSystemNode(node);
        QCOMPARE(view.canDelete(), !system);
        QCOMPARE(view.findChild<QAction*>(s("deleteCategoryAction"))->isEnabled(), !system);

        if (!answer.isEmpty())
            company.prompter().addAnswer(answer);
        if (fromGroupMenu)
            menuEntry(view, "deleteGroupMenu", name)->trigger();
        else
            view.deleteSelected();

        QTEST(company.asked(), "question");
        QCOMPARE(company.storedName(node), selectedAfter.isEmpty() ? name : s("(deleted)"));
        QCOMPARE(nameOf(view.selectedCategory()), selectedAfter.isEmpty() ? name : selectedAfter);
    }

    void groupNamesAreTypedInTheirRows_data()
    {
        QTest::addColumn<bool>("newGroup");
        QTest::addColumn<QString>("indexPath");
        QTest::newRow("renamed from the group menu") << false << s("004");
        QTest::newRow("new group") << true << s("005");
    }
    void groupNamesAreTypedInTheirRows()
    {
        QFETCH(bool, newGroup);
        Company company;
        SidebarView view(company.store(), company.prompter());
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        if (newGroup)
            view.newNode(SidebarView::NewGroupTag);
        else
            menuEntry(view, "renameGroupMenu", s("My Group"))->trigger();

        auto* editor = view.tree()->findChild<QLineEdit*>(s("groupNameEditor"));
        QVERIFY(editor);
        QCOMPARE(editor->text(), newGroup ? s("New Group") : s("My Group"));
        editor->selectAll();
        QTest::keyClicks(editor, s("Archive"));
        QTest::keyClick(editor, Qt::Key_Return);

        // The line edit hands its text over once the key is handled.
        Record* group = view.selectedCategory();
        QTRY_COMPARE(company.storedName(group), s("Archive"));
        QTEST(group->value(s("indexpath")).toString(), "indexPath");
        QVERIFY(!view.canEdit()); // groups have no sheet
    }

    // Each selection is announced; the selected node and the open ones are there again when the
    // company is opened again.
    void stateSurvivesReopening()
    {
        Company company;
        {
            SidebarView view(company.store(), company.prompter());
            QSignalSpy spy(&view, &SidebarView::categorySelected);
            view.restoreState();
            QCOMPARE(nameOf(view.selectedCategory()), s("All Documents"));
            view.tree()->clearSelection();
            QCOMPARE(spy.last().first().value<Record*>(), nullptr);
            QVERIFY(!view.canEdit());
            view.tree()->collapse(view.model()->indexOf(company.category(s("Documents"))));
            view.tree()->expand(view.model()->indexOf(company.category(s("My Folder"))));
            select(view, company.category(s("Supplier")));
            QCOMPARE(spy.last().first().value<Record*>(), company.category(s("Supplier")));
        }
        company.close();
        company.open();
        SidebarView view(company.store(), company.prompter());
        QSignalSpy spy(&view, &SidebarView::categorySelected);
        view.restoreState();
        QCOMPARE(nameOf(view.selectedCategory()), s("Supplier"));
        QCOMPARE(spy.size(), 1);
        const auto expanded = [&](const char* name) {
            return view.tree()->isExpanded(view.model()->indexOf(company.category(s(name))));
        };
        QCOMPARE(QList<bool>({expanded("Clients"), expanded("Documents"), expanded("My Folder")}),
                 QList<bool>({true, false, true}));
    }

    void longNamesElide_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("elided");
        QTest::newRow("short folder") << s("My Folder") << s("Letters") << false;
        QTest::newRow("long folder") << s("My Folder") << s("Quarterly statements for the tax adviser")
                                     << true;
        QTest::newRow("short tag") << s("Supplier") << s("Supplier") << false;
        QTest::newRow("long tag") << s("Supplier") << s("Suppliers of office furniture and lamps") << true;
    }
    // A name is elided, with its tool tip, only when it does not fit beside its icon and count.
    void longNamesElide()
    {
        QFETCH(QString, node);
        QFETCH(QString, name);
        Company company;
        Record* category = company.category(node);
        category->setValue(s("name"), name);
        QVERIFY(company.store().mainContext().save());
        SidebarView view(company.store(), company.prompter());
        view.resize(240, 500);
        view.tree()->expandAll();
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QTreeView* tree = view.tree();
        const QModelIndex index = view.model()->indexOf(category);
        QStyleOptionViewItem option;
        option.initFrom(tree->viewport());
        option.rect = tree->visualRect(index);
        option.widget = tree;
        QVERIFY(option.rect.isValid());
        QTEST(static_cast<ui::SidebarDelegate*>(tree->itemDelegate())->isElided(option, index), "elided");
    }
};

QTEST_MAIN(tst_SidebarView)
#include "tst_sidebarview.moc"
