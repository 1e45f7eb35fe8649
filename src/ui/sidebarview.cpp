#include "sidebarview.h"

#include "browse/categoryquestions.h"
#include "browse/categorytree.h"
#include "browse/sidebarmodel.h"
#include "browse/sidebarstate.h"
#include "folderortagwindow.h"
#include "predicateeditorwindow.h"
#include "sidebardelegate.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "support/prompter.h"

#include <QAction>
#include <QDialog>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLoggingCategory>
#include <QMenu>
#include <QScopedValueRollback>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace corvanta::ui {

using browse::CategoryTree;
using browse::SidebarModel;
using predicate::RecordRef;
using store::Record;

namespace {

Q_LOGGING_CATEGORY(lcSidebar, "corvanta.ui.sidebar")

QString nameOf(const Record* node)
{
    return node->value(QStringLiteral("name")).toString();
}

// A group's name as a menu entry: an ampersand in it is shown, not taken for a mnemonic.
QString menuText(const Record* group)
{
    return nameOf(group).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

// The same node in another context, or null for none.
Record* inContext(store::EditingContext& context, const Record* node)
{
    return node ? context.record(node->ref()) : nullptr;
}

} // namespace

SidebarView::SidebarView(store::Store& store, support::Prompter& prompter, QWidget* parent)
    : QWidget(parent)
    , m_store(store)
    , m_prompter(prompter)
{
    setObjectName(QStringLiteral("SidebarView"));
    m_model = new SidebarModel(store.mainContext(), this);

    m_tree = new QTreeView;
    m_tree->setObjectName(QStringLiteral("sidebarTree"));
    m_tree->setAccessibleName(tr("Sidebar"));
    m_tree->setHeaderHidden(true);
    m_tree->setUniformRowHeights(false);
    m_tree->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tree->setSelectionBehavior(QAbstractItemView::SelectRows);
    // Groups are renamed through their commands; the sheets edit everything else.
    m_tree->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tree->setDragEnabled(true);
    m_tree->setAcceptDrops(true);
    m_tree->setDropIndicatorShown(true);
    m_tree->setDragDropMode(QAbstractItemView::InternalMove);
    m_tree->setDefaultDropAction(Qt::MoveAction);
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    m_delegate = new SidebarDelegate(m_tree);
    m_tree->setItemDelegate(m_delegate);
    m_tree->setModel(m_model);
    m_tree->installEventFilter(this);

    m_addButton = new QToolButton;
    m_addButton->setObjectName(QStringLiteral("sidebarAddButton"));
    m_addButton->setIcon(QIcon::fromTheme(QStringLiteral("list-add")));
    m_addButton->setToolTip(tr("Add to Sidebar"));
    m_addButton->setAccessibleName(tr("Add to Sidebar"));
    m_addButton->setPopupMode(QToolButton::InstantPopup);
    m_addButton->setAutoRaise(true);
    m_addMenu = buildAddMenu();
    m_addButton->setMenu(m_addMenu);

    m_actionButton = new QToolButton;
    m_actionButton->setObjectName(QStringLiteral("sidebarActionButton"));
    m_actionButton->setIcon(
        QIcon::fromTheme(QStringLiteral("configure"), QIcon::fromTheme(QStringLiteral("application-menu"))));
    m_actionButton->setToolTip(tr("Sidebar Actions"));
    m_actionButton->setAccessibleName(tr("Sidebar Actions"));
    m_actionButton->setPopupMode(QToolButton::InstantPopup);
    m_actionButton->setAutoRaise(true);
    m_actionMenu = buildActionMenu();
    m_actionButton->setMenu(m_actionMenu);

    auto* bar = new QToolBar;
    bar->setObjectName(QStringLiteral("sidebarToolBar"));
    bar->setIconSize(QSize(16, 16));
    bar->addWidget(m_addButton);
    bar->addWidget(m_actionButton);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_tree, 1);
    layout->addWidget(bar);

    connect(m_tree->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &SidebarView::selectionChanged);
    connect(m_tree, &QTreeView::expanded, this, &SidebarView::expansionChanged);
    connect(m_tree, &QTreeView::collapsed, this, &SidebarView::expansionChanged);
    connect(m_tree, &QWidget::customContextMenuRequested, this, &SidebarView::showContextMenu);
    connect(m_model, &QAbstractItemModel::modelAboutToBeReset, this, &SidebarView::rememberBeforeReset);
    connect(m_model, &QAbstractItemModel::modelReset, this, &SidebarView::restoreAfterReset);
    // The group menus name the groups as they are now.
    connect(m_model, &QAbstractItemModel::modelReset, this, &SidebarView::rebuildGroupMenus);
    connect(m_model, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex&, const QModelIndex&, const QList<int>& roles) {
                if (roles.isEmpty() || roles.contains(Qt::DisplayRole) ||
                    roles.contains(SidebarModel::NameRole))
                    rebuildGroupMenus();
            });
    rebuildGroupMenus();
    updateActions();
}

SidebarView::~SidebarView() = default;

QMenu* SidebarView::buildAddMenu()
{
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("sidebarAddMenu"));
    const auto add = [this](QMenu* into, const QString& text, int tag, const char* icon, const char* name) {
        QAction* action = into->addAction(QIcon::fromTheme(QString::fromLatin1(icon)), text);
        action->setObjectName(QString::fromLatin1(name));
        action->setData(tag);
        connect(action, &QAction::triggered, this, [this, tag] { newNode(tag); });
    };
    add(menu, tr("New &Group"), NewGroupTag, "view-group", "newGroupAction");
    add(menu, tr("New &Folder"), NewFolderTag, "folder-new", "newFolderAction");
    add(menu, tr("New &Tag"), NewTagTag, "tag-new", "newTagAction");
    QMenu* smart = menu->addMenu(QIcon::fromTheme(QStringLiteral("folder-saved-search"),
                                                  QIcon::fromTheme(QStringLiteral("edit-find"))),
                                 tr("New &Smart Folder"));
    smart->setObjectName(QStringLiteral("newSmartFolderMenu"));
    add(smart, tr("&Clients"), -1, "", "newClientsSmartFolderAction");
    add(smart, tr("&Items"), -2, "", "newItemsSmartFolderAction");
    add(smart, tr("&Documents"), -3, "", "newDocumentsSmartFolderAction");
    add(smart, tr("T&o-Dos"), -4, "", "newToDosSmartFolderAction");
    return menu;
}

QMenu* SidebarView::buildActionMenu()
{
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("sidebarActionMenu"));
    m_editAction = menu->addAction(QIcon::fromTheme(QStringLiteral("document-edit")), tr("&Edit…"));
    m_editAction->setObjectName(QStringLiteral("editCategoryAction"));
    connect(m_editAction, &QAction::triggered, this, &SidebarView::editSelected);
    m_deleteAction = menu->addAction(QIcon::fromTheme(QStringLiteral("edit-delete")), tr("&Delete"));
    m_deleteAction->setObjectName(QStringLiteral("deleteCategoryAction"));
    connect(m_deleteAction, &QAction::triggered, this, &SidebarView::deleteSelected);
    menu->addSeparator();
    m_renameGroupMenu = menu->addMenu(QIcon::fromTheme(QStringLiteral("edit-rename")), tr("&Rename Group"));
    m_renameGroupMenu->setObjectName(QStringLiteral("renameGroupMenu"));
    m_deleteGroupMenu = menu->addMenu(QIcon::fromTheme(QStringLiteral("edit-delete")), tr("De&lete Group"));
    m_deleteGroupMenu->setObjectName(QStringLiteral("deleteGroupMenu"));
    connect(menu, &QMenu::aboutToShow, this, &SidebarView::updateActions);
    return menu;
}

void SidebarView::rebuildGroupMenus()
{
    // The old entries go later: one of them may be the entry whose command reloaded the tree.
    for (QMenu* menu : {m_renameGroupMenu, m_deleteGroupMenu}) {
        for (QAction* action : menu->actions()) {
            menu->removeAction(action);
            action->deleteLater();
        }
    }
    for (Record* group : m_model->tree().groupsByName()) {
        const RecordRef ref = group->ref();
        // Every group is listed, also those holding nodes the program assigns: deleting one of
        // those is refused with the reason when it is tried.
        auto* rename = new QAction(menuText(group), m_renameGroupMenu);
        m_renameGroupMenu->addAction(rename);
        connect(rename, &QAction::triggered, this, [this, ref] {
            if (Record* node = m_model->recordAt(indexOf(ref)))
                renameGroup(node);
        });
        auto* remove = new QAction(menuText(group), m_deleteGroupMenu);
        m_deleteGroupMenu->addAction(remove);
        connect(remove, &QAction::triggered, this, [this, ref] {
            if (Record* node = m_model->recordAt(indexOf(ref)))
                deleteNode(node);
        });
    }
    m_renameGroupMenu->setEnabled(!m_renameGroupMenu->actions().isEmpty());
    m_deleteGroupMenu->setEnabled(!m_deleteGroupMenu->actions().isEmpty());
}

void SidebarView::updateActions()
{
    m_editAction->setEnabled(canEdit());
    m_deleteAction->setEnabled(canDelete());
}

void SidebarView::showContextMenu(const QPoint& position)
{
    const QModelIndex index = m_tree->indexAt(position);
    if (index.isValid())
        m_tree->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    updateActions();
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("sidebarContextMenu"));
    menu.addActions(m_addMenu->actions());
    menu.addSeparator();
    menu.addActions(m_actionMenu->actions());
    menu.exec(m_tree->viewport()->mapToGlobal(position));
}

Record* SidebarView::selectedCategory() const
{
    const QModelIndexList selected = m_tree->selectionModel()->selectedRows();
    return selected.isEmpty() ? nullptr : m_model->recordAt(selected.first());
}

bool SidebarView::canDelete() const
{
    return browse::CategoryDeletion::canDelete(selectedCategory());
}

bool SidebarView::canEdit() const
{
    const Record* node = selectedCategory();
    return node && CategoryTree::kindOf(node) != CategoryTree::NodeKind::Group;
}

QModelIndex SidebarView::indexOf(const RecordRef& ref) const
{
    if (ref.isNull())
        return {};
    QList<QModelIndex> pending{QModelIndex()};
    while (!pending.isEmpty()) {
        const QModelIndex parent = pending.takeFirst();
        for (int row = 0; row < m_model->rowCount(parent); ++row) {
            const QModelIndex child = m_model->index(row, 0, parent);
            if (m_model->recordAt(child)->ref() == ref)
                return child;
            pending << child;
        }
    }
    return {};
}

QList<Record*> SidebarView::expandedNodes() const
{
    QList<Record*> nodes;
    QList<QModelIndex> pending{QModelIndex()};
    while (!pending.isEmpty()) {
        const QModelIndex parent = pending.takeFirst();
        for (int row = 0; row < m_model->rowCount(parent); ++row) {
            const QModelIndex child = m_model->index(row, 0, parent);
            if (m_tree->isExpanded(child))
                nodes << m_model->recordAt(child);
            pending << child;
        }
    }
    return nodes;
}

Record* SidebarView::defaultNode() const
{
    // The list of all documents, which the program itself keeps: what an invoicing day starts
    // with.
    QList<QModelIndex> pending{QModelIndex()};
    while (!pending.isEmpty()) {
        const QModelIndex parent = pending.takeFirst();
        for (int row = 0; row < m_model->rowCount(parent); ++row) {
            const QModelIndex child = m_model->index(row, 0, parent);
            if (child.data(SidebarModel::TypeRole).toLongLong() == -3 &&
                child.data(SidebarModel::SubtypeRole).toLongLong() == -3 &&
                !child.data(SidebarModel::IsGroupRole).toBool())
                return m_model->recordAt(child);
            pending << child;
        }
    }
    const QModelIndex first = m_model->index(0, 0);
    const QModelIndex firstChild = m_model->index(0, 0, first);
    return m_model->recordAt(firstChild.isValid() ? firstChild : first);
}

void SidebarView::selectNode(const RecordRef& ref)
{
    const QModelIndex index = indexOf(ref);
    if (!index.isValid())
        return;
    for (QModelIndex up = index.parent(); up.isValid(); up = up.parent())
        m_tree->expand(up);
    const bool already = selectedCategory() == m_model->recordAt(index);
    m_tree->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    m_tree->scrollTo(index);
    if (already)
        Q_EMIT categorySelected(m_model->recordAt(index));
}

void SidebarView::restoreState()
{
    browse::SidebarState state(m_store.mainContext());
    Record* chosen = nullptr;
    {
        const QScopedValueRollback restoring(m_restoring, true);
        m_tree->collapseAll();
        for (Record* node : state.expanded()) {
            const QModelIndex index = m_model->indexOf(node);
            if (index.isValid())
                m_tree->expand(index);
        }
        for (Record* node : state.selected()) {
            if (m_model->indexOf(node).isValid()) {
                chosen = node;
                break;
            }
        }
        if (chosen) {
            selectNode(chosen->ref());
            return;
        }
    }
    // Nothing saved yet: the default choice is kept as if the user had made it.
    if (Record* fallback = defaultNode())
        selectNode(fallback->ref());
    else
        Q_EMIT categorySelected(nullptr);
}

bool SidebarView::saveSidebarSettingsToDatabase()
{
    if (m_saving)
        return true;
    const QScopedValueRollback saving(m_saving, true);
    QList<Record*> selected;
    if (Record* node = selectedCategory())
        selected << node;
    store::StoreError error;
    if (!browse::SidebarState(m_store.mainContext()).save(selected, expandedNodes(), &error)) {
        // Where the sidebar was left is worth no question of its own; the next change or the
        // quit tries again.
        qCWarning(lcSidebar) << "The sidebar's state was not saved:" << error.message();
        return false;
    }
    return true;
}

void SidebarView::selectionChanged()
{
    updateActions();
    Q_EMIT categorySelected(selectedCategory());
    if (!m_restoring)
        saveSidebarSettingsToDatabase();
}

void SidebarView::expansionChanged()
{
    if (!m_restoring)
        saveSidebarSettingsToDatabase();
}

void SidebarView::rememberBeforeReset()
{
    m_selectedPath.clear();
    const QModelIndexList selected = m_tree->selectionModel()->selectedRows();
    for (QModelIndex up = selected.value(0); up.isValid(); up = up.parent())
        m_selectedPath << m_model->recordAt(up)->ref();
    m_expandedBeforeReset.clear();
    for (const Record* node : expandedNodes())
        m_expandedBeforeReset << node->ref();
}

void SidebarView::restoreAfterReset()
{
    const QScopedValueRollback restoring(m_restoring, true);
    for (const RecordRef& ref : std::as_const(m_expandedBeforeReset)) {
        const QModelIndex index = indexOf(ref);
        if (index.isValid())
            m_tree->expand(index);
    }
    // The selected node where it is now, or the nearest of its parents that is left (after
    // the node was deleted), else the default one.
    // Nothing was selected: nothing is chosen for the user.
    if (m_selectedPath.isEmpty())
        return;
    const RecordRef before = m_selectedPath.first();
    RecordRef chosen;
    for (const RecordRef& ref : std::as_const(m_selectedPath)) {
        if (indexOf(ref).isValid()) {
            chosen = ref;
            break;
        }
    }
    if (chosen.isNull()) {
        if (Record* fallback = defaultNode())
            chosen = fallback->ref();
    }
    if (chosen.isNull()) {
        Q_EMIT categorySelected(nullptr);
        return;
    }
    selectNode(chosen);
    if (chosen != before) {
        // Saved once the reload is over, outside the save that caused it.
        QTimer::singleShot(0, this, [this] { saveSidebarSettingsToDatabase(); });
    }
}

void SidebarView::newNode(int tag)
{
    if (tag == NewGroupTag) {
        newGroup();
        return;
    }
    if (tag != NewFolderTag && tag != NewTagTag && (tag > -1 || tag < -4))
        return;
    std::unique_ptr<store::EditingContext> scratch = m_store.newContext();
    Record* parent = CategoryTree::placementParent(inContext(*scratch, selectedCategory()));
    RecordRef saved;
    if (tag < 0) {
        Record* folder = CategoryTree(*scratch).newSmartFolder({}, -tag, {}, parent);
        PredicateEditorWindow sheet(folder, m_prompter, this);
        if (sheet.exec() != QDialog::Accepted)
            return;
        saved = folder->ref();
    } else {
        using Mode = browse::FolderOrTagSheet::Mode;
        FolderOrTagWindow sheet(*scratch, tag == NewTagTag ? Mode::NewTag : Mode::NewFolder, nullptr, parent,
                                m_prompter, this);
        if (sheet.exec() != QDialog::Accepted || !sheet.node())
            return;
        saved = sheet.node()->ref();
    }
    selectNode(saved);
}

void SidebarView::newGroup()
{
    std::unique_ptr<store::EditingContext> scratch = m_store.newContext();
    Record* group = CategoryTree(*scratch).newGroup();
    store::StoreError error;
    if (!scratch->save(&error)) {
        m_prompter.alert(error.description, error.reason, {tr("OK")});
        return;
    }
    // The main context has the new group now; its name is typed in its row.
    const RecordRef ref = group->ref();
    selectNode(ref);
    if (Record* node = m_model->recordAt(indexOf(ref)))
        renameGroup(node);
}

void SidebarView::renameGroup(Record* group)
{
    const QModelIndex index = m_model->indexOf(group);
    if (!index.isValid())
        return;
    selectNode(group->ref());
    m_tree->setFocus();
    m_tree->edit(index);
}

void SidebarView::editSelected()
{
    if (Record* node = selectedCategory())
        editNode(node);
}

void SidebarView::editNode(Record* node)
{
    const CategoryTree::NodeKind kind = CategoryTree::kindOf(node);
    if (kind == CategoryTree::NodeKind::Group) {
        renameGroup(node);
        return;
    }
    std::unique_ptr<store::EditingContext> scratch = m_store.newContext();
    Record* own = inContext(*scratch, node);
    if (!own)
        return;
    bool accepted = false;
    if (kind == CategoryTree::NodeKind::SmartFolder) {
        PredicateEditorWindow sheet(own, m_prompter, this);
        accepted = sheet.exec() == QDialog::Accepted;
    } else {
        using Mode = browse::FolderOrTagSheet::Mode;
        FolderOrTagWindow sheet(*scratch,
                                kind == CategoryTree::NodeKind::Tag ? Mode::EditTag : Mode::EditFolder, own,
                                own->related(QStringLiteral("parent")), m_prompter, this);
        accepted = sheet.exec() == QDialog::Accepted;
    }
    if (accepted)
        selectNode(own->ref());
}

void SidebarView::deleteSelected()
{
    if (canDelete())
        deleteNode(selectedCategory());
}

void SidebarView::deleteNode(Record* node)
{
    std::unique_ptr<store::EditingContext> scratch = m_store.newContext();
    Record* own = inContext(*scratch, node);
    if (!own)
        return;
    CategoryTree tree(*scratch);
    if (browse::CategoryDeletion(tree, m_prompter).deleteCategory(own) !=
        browse::CategoryDeletion::Result::Deleted)
        return; // cancelled or refused: the scratch context goes with its changes
    store::StoreError error;
    if (!scratch->save(&error))
        m_prompter.alert(error.description, error.reason, {tr("OK")});
    // The main context merged the deletion and the tree was read again: the selection moved to
    // the nearest node left.
}

bool SidebarView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_tree && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_F2) {
        // The rename key: a group's name in its row, anything else in its sheet. (While a name
        // is typed the keys go to its line edit, not here.)
        editSelected();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace corvanta::ui
