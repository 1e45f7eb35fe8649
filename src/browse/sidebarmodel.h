#pragma once

#include "browse/categorytree.h"

#include <QAbstractItemModel>
#include <QDateTime>
#include <QHash>
#include <functional>

namespace corvanta::store {
class ChangeSet;
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::browse {

// The sidebar's tree of `Categories` as an item model: one column, nodes ordered by
// `indexpath`, each with its name, kind, colours and count. Counts are taken when the tree
// loads and again after every change the context sees (its own saves and those merged into
// it), and saved when they changed; the tree is read afresh when nodes were added, removed,
// renamed or moved. Nodes are
// dragged under the MIME type "corvantaCategoryDragType"; an accepted drop moves them and
// saves the context.
class SidebarModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Role {
        NameRole = Qt::UserRole + 1,
        CountRole,   // decimal text; empty for a node that counts nothing
        TypeRole,    // qint64
        SubtypeRole, // qint64, or null for a node the user made
        IndexPathRole,
        ForegroundColorRole, // "#RRGGBB", or empty
        BackgroundColorRole,
        IsGroupRole,
        IsContainerRole,
        IsTagRole,
        IsSmartFolderRole,
        IsSystemRole,
    };

    static const QString& mimeType();

    explicit SidebarModel(store::EditingContext& context, QObject* parent = nullptr);

    void setClock(std::function<QDateTime()> clock) { m_clock = std::move(clock); }

    // Reads the tree again; then counts.
    void reload();
    // Counts every node again and tells the views of the numbers that changed.
    void recount();

    store::Record* recordAt(const QModelIndex& index) const;
    QModelIndex indexOf(const store::Record* node) const;
    CategoryTree& tree() { return m_tree; }

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QHash<int, QByteArray> roleNames() const override;

    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDropActions() const override;
    Qt::DropActions supportedDragActions() const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

private:
    void contextChanged(const store::ChangeSet& changes);
    void build();
    bool saveContext();
    QList<store::Record*> draggedNodes(const QMimeData* data) const;

    store::EditingContext& m_context;
    CategoryTree m_tree;
    std::function<QDateTime()> m_clock;
    QHash<const store::Record*, QList<store::Record*>> m_children; // null key: the top level
    QHash<const store::Record*, store::Record*> m_parents;
    bool m_saving = false;
};

} // namespace corvanta::browse
