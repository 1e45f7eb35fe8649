#pragma once

#include "predicate/recordref.h"

#include <QList>
#include <QWidget>

class QAction;
class QMenu;
class QModelIndex;
class QToolButton;
class QTreeView;

namespace corvanta::browse {
class SidebarModel;
}
namespace corvanta::store {
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

class SidebarDelegate;

// The browser's sidebar: the tree of groups, folders, tags and smart folders with their counts,
// and below it the buttons that add nodes and act on them (the same commands as the tree's
// context menu). Nodes are made and edited in scratch contexts through their sheets, groups are
// renamed in their rows, and nodes are moved by dragging them within the tree. The selected and
// expanded nodes are saved on the company record whenever they change, and the tree keeps them
// across every reload of the model.
class SidebarView : public QWidget
{
    Q_OBJECT

public:
    // What the add menu's entries make, as newNode() takes them: a group, a folder, a tag; a
    // smart folder of list kind k is -k.
    enum NewNodeTag { NewGroupTag = 100, NewFolderTag = 0, NewTagTag = 1 };

    SidebarView(store::Store& store, support::Prompter& prompter, QWidget* parent = nullptr);
    ~SidebarView() override;

    browse::SidebarModel* model() const { return m_model; }
    QTreeView* tree() const { return m_tree; }

    // The selected node in the main context; null when nothing is selected.
    store::Record* selectedCategory() const;

    // Expands and selects the nodes saved on the company record; without a saved selection the
    // list of all documents (or the first node there is) is selected.
    void restoreState();
    // Stores the selected and expanded nodes on the company record and saves the store.
    bool saveSidebarSettingsToDatabase();

    void newNode(int tag);
    void editSelected();
    void deleteSelected();
    // Plain delete applies to a selected node that the program does not assign itself.
    bool canDelete() const;
    // Editing needs a selected node that is not a group; groups are renamed in their rows.
    bool canEdit() const;

Q_SIGNALS:
    void categorySelected(corvanta::store::Record* category);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QMenu* buildAddMenu();
    QMenu* buildActionMenu();
    void rebuildGroupMenus();
    void updateActions();
    void showContextMenu(const QPoint& position);

    void newGroup();
    void editNode(store::Record* node);
    void renameGroup(store::Record* group);
    void deleteNode(store::Record* node);

    // Selects the node (expanding its parents) and tells the browser even when it was selected
    // already, so that the list is fetched afresh.
    void selectNode(const predicate::RecordRef& ref);
    QModelIndex indexOf(const predicate::RecordRef& ref) const;
    QList<store::Record*> expandedNodes() const;
    store::Record* defaultNode() const;

    void selectionChanged();
    void expansionChanged();
    void rememberBeforeReset();
    void restoreAfterReset();

    store::Store& m_store;
    support::Prompter& m_prompter;
    browse::SidebarModel* m_model = nullptr;
    QTreeView* m_tree = nullptr;
    SidebarDelegate* m_delegate = nullptr;
    QToolButton* m_addButton = nullptr;
    QToolButton* m_actionButton = nullptr;
    QMenu* m_addMenu = nullptr;
    QMenu* m_actionMenu = nullptr;
    QMenu* m_renameGroupMenu = nullptr;
    QMenu* m_deleteGroupMenu = nullptr;
    QAction* m_editAction = nullptr;
    QAction* m_deleteAction = nullptr;

    // While the tree is put back as it was, its selection and expansion are not saved again.
    bool m_restoring = false;
    bool m_saving = false;
    // Across a reload of the model: the selected node followed by its ancestors, and the
    // expanded nodes.
    QList<predicate::RecordRef> m_selectedPath;
    QList<predicate::RecordRef> m_expandedBeforeReset;
};

} // namespace corvanta::ui
