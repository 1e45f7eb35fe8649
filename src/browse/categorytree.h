#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::browse {

// The tree of `Categories` that the sidebar shows: its shape, the kinds of its nodes, where new
// nodes go and how nodes move. Every node's place is kept in `indexpath`, three digits a level
// ("000", "000002"); siblings are ordered by it. Changes stay in the context until it is saved.
class CategoryTree
{
    Q_DECLARE_TR_FUNCTIONS(CategoryTree)

public:
    enum class NodeKind { Group, Folder, Tag, SmartFolder };
    // Why a drop is refused; None when it is accepted.
    enum class DropRefusal { None, OntoTag, OntoNestedSmartFolder, IntoDraggedSubtree };

    explicit CategoryTree(store::EditingContext& context);

    store::EditingContext& context() const { return m_context; }

    // Every node in `indexpath` order, and the top-level ones ("parent == NULL").
    QList<store::Record*> all() const;
    QList<store::Record*> topLevel() const;
    // The groups as the rename and group-delete menus list them: by name.
    QList<store::Record*> groupsByName() const;

    static QList<store::Record*> children(const store::Record* node);
    // Children, grandchildren … depth first, each level in `indexpath` order.
    static QList<store::Record*> descendants(const store::Record* node);
    static int depth(const store::Record* node);
    static NodeKind kindOf(const store::Record* node);
    // A node with a `subtype`: one the program assigns itself.
    static bool isSystemNode(const store::Record* node);
    // A node that can hold others: a group, or a folder.
    static bool isContainer(const store::Record* node);
    // A stored colour as "#RRGGBB"; empty for none.
    static QString colourText(const QVariant& colour);
    // The containers in `indexpath` order, as the parent pop-up offers them.
    QList<store::Record*> containers() const;

    // Where a node made while `selected` is selected goes: under it when it is a container,
    // else under its parent (null: top level).
    static store::Record* placementParent(store::Record* selected);
    // The `indexpath` a new child of `parent` gets: its path and its current number of
    // children, "%03ld"; for the top level the number of top-level nodes.
    QString newChildPath(const store::Record* parent) const;

    store::Record* newGroup();
    store::Record* newFolder(const QString& name, store::Record* parent);
    // A tag of list kind `type` (1 to 4), white on orange.
    store::Record* newTag(const QString& name, int type, store::Record* parent);
    // A smart folder of list kind `kind` (1 to 4) selecting by `predicate`; named "Smart Folder"
    // when `name` is empty, as the predicate editor opens a new one.
    store::Record* newSmartFolder(const QString& name, int kind, const QString& predicate,
                                  store::Record* parent);

    static DropRefusal dropRefusal(const QList<store::Record*>& dragged, const store::Record* target);
    static QString refusalMessage(DropRefusal refusal);
    // Moves the nodes under `target` (null: the top level) before its child at `position`
    // (counted among its current children; -1 or past the end: after the last), then writes
    // every node's `indexpath` afresh. False when the drop is refused.
    bool move(const QList<store::Record*>& dragged, store::Record* target, int position);

    // Writes every node's `indexpath` from its place in the tree, walking it from the top.
    void rewriteIndexPaths();

private:
    store::Record* insertNode(const QString& name, store::Record* parent);

    store::EditingContext& m_context;
};

} // namespace corvanta::browse
