#include "browse/sidebarmodel.h"

#include "browse/categorycounts.h"
#include "store/editingcontext.h"
#include "store/record.h"

#include <QDataStream>
#include <QIODevice>
#include <QMimeData>

namespace corvanta::browse {

using store::Record;

namespace {
QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// Whether a change set moved nodes, added or removed some. The company's saved selection and
// expansion change the categories too (the other end of those sets), and must not reread the
// tree under a view that is selecting in it.
bool reshapesTree(const store::ChangeSet& changes)
{
    const QString categories = s("Categories");
    const auto isCategory = [&](const predicate::RecordRef& ref) { return ref.entity == categories; };
    if (std::any_of(changes.inserted.begin(), changes.inserted.end(), isCategory) ||
        std::any_of(changes.deleted.begin(), changes.deleted.end(), isCategory))
        return true;
    for (const store::ChangeSet::Update& update : changes.updated) {
        if (update.ref.entity == categories &&
            (update.keys.contains(s("parent")) || update.keys.contains(s("indexpath"))))
            return true;
    }
    return false;
}

// The nodes whose shown values (name, kind, colours, condition) changed.
QList<predicate::RecordRef> redrawnNodes(const store::ChangeSet& changes)
{
    static const QStringList shown{
        s("name"), s("type"), s("subtype"), s("predicate"), s("foreground_color"), s("background_color")};
    QList<predicate::RecordRef> nodes;
    for (const store::ChangeSet::Update& update : changes.updated) {
        if (update.ref.entity == s("Categories") &&
            std::any_of(update.keys.begin(), update.keys.end(),
                        [](const QString& key) { return shown.contains(key); }))
            nodes << update.ref;
    }
    return nodes;
}
} // namespace

const QString& SidebarModel::mimeType()
{
    static const QString type = s("corvantaCategoryDragType");
    return type;
}

SidebarModel::SidebarModel(store::EditingContext& context, QObject* parent)
    : QAbstractItemModel(parent)
    , m_context(context)
    , m_tree(context)
    , m_clock([] { return QDateTime::currentDateTime(); })
{
    connect(&m_context, &store::EditingContext::objectsDidChange, this, &SidebarModel::contextChanged);
    build();
    recount();
}

void SidebarModel::build()
{
    m_children.clear();
    m_parents.clear();
    const std::function<void(Record*)> addChildren = [&](Record* node) {
        const QList<Record*> children = CategoryTree::children(node);
        m_children.insert(node, children);
        for (Record* child : children) {
            m_parents.insert(child, node);
            addChildren(child);
        }
    };
    const QList<Record*> top = m_tree.topLevel();
    m_children.insert(nullptr, top);
    for (Record* node : top) {
        m_parents.insert(node, nullptr);
        addChildren(node);
    }
}

void SidebarModel::reload()
{
    beginResetModel();
    build();
    endResetModel();
    recount();
}

void SidebarModel::recount()
{
    const QList<Record*> changed = CategoryCounts::update(m_context, m_clock());
    if (changed.isEmpty())
        return;
    // Stored at once, so that new counts never leave the context with changes of its own.
    saveContext();
    for (Record* node : changed) {
        const QModelIndex at = indexOf(node);
        if (at.isValid())
            Q_EMIT dataChanged(at, at, {CountRole});
    }
}

bool SidebarModel::saveContext()
{
    m_saving = true;
    const bool saved = m_context.save();
    m_saving = false;
    return saved;
}

void SidebarModel::contextChanged(const store::ChangeSet& changes)
{
    if (m_saving)
        return;
    if (reshapesTree(changes)) {
        reload();
        return;
    }
    for (const predicate::RecordRef& ref : redrawnNodes(changes)) {
        const QModelIndex at = indexOf(m_context.record(ref));
        if (at.isValid())
            Q_EMIT dataChanged(at, at);
    }
    recount();
}

Record* SidebarModel::recordAt(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<Record*>(index.internalPointer()) : nullptr;
}

QModelIndex SidebarModel::indexOf(const Record* node) const
{
    if (!node || !m_parents.contains(node))
        return {};
    const qsizetype row = m_children.value(m_parents.value(node)).indexOf(node);
    return row < 0 ? QModelIndex() : createIndex(int(row), 0, const_cast<Record*>(node));
}

QModelIndex SidebarModel::index(int row, int column, const QModelIndex& parent) const
{
    if (column != 0 || row < 0 || (parent.isValid() && parent.column() != 0))
        return {};
    const QList<Record*>& children = m_children[recordAt(parent)];
    return row < children.size() ? createIndex(row, 0, children[row]) : QModelIndex();
}

QModelIndex SidebarModel::parent(const QModelIndex& child) const
{
    return indexOf(m_parents.value(recordAt(child)));
}

int SidebarModel::rowCount(const QModelIndex& parent) const
{
    if (parent.isValid() && parent.column() != 0)
        return 0;
    return int(m_children.value(recordAt(parent)).size());
}

int SidebarModel::columnCount(const QModelIndex&) const
{
    return 1;
}

QVariant SidebarModel::data(const QModelIndex& index, int role) const
{
    const Record* node = recordAt(index);
    if (!node)
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
    case NameRole:
        return node->value(s("name")).toString();
    case CountRole:
        return node->value(s("count")).toString();
    case TypeRole:
        return node->value(s("type")).toLongLong();
    case SubtypeRole:
        return node->value(s("subtype"));
    case IndexPathRole:
        return node->value(s("indexpath")).toString();
    case ForegroundColorRole:
        return CategoryTree::colourText(node->value(s("foreground_color")));
    case BackgroundColorRole:
        return CategoryTree::colourText(node->value(s("background_color")));
    case IsGroupRole:
        return CategoryTree::kindOf(node) == CategoryTree::NodeKind::Group;
    case IsContainerRole:
        return CategoryTree::isContainer(node);
    case IsTagRole:
        return CategoryTree::kindOf(node) == CategoryTree::NodeKind::Tag;
    case IsSmartFolderRole:
        return CategoryTree::kindOf(node) == CategoryTree::NodeKind::SmartFolder;
    case IsSystemRole:
        return CategoryTree::isSystemNode(node);
    default:
        return {};
    }
}

bool SidebarModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    Record* node = recordAt(index);
    const QString name = value.toString();
    if (!node || (role != Qt::EditRole && role != NameRole) || name.isEmpty())
        return false;
    if (node->value(s("name")).toString() == name)
        return true;
    node->setValue(s("name"), name);
    if (!saveContext()) {
        // A name the database did not take is not shown as if it were kept.
        m_context.rollback();
        Q_EMIT dataChanged(index, index, {Qt::DisplayRole, Qt::EditRole, NameRole});
        return false;
    }
    Q_EMIT dataChanged(index, index, {Qt::DisplayRole, Qt::EditRole, NameRole});
    return true;
}

Qt::ItemFlags SidebarModel::flags(const QModelIndex& index) const
{
    const Record* node = recordAt(index);
    if (!node)
        return Qt::ItemIsDropEnabled; // the top level takes groups
    Qt::ItemFlags flags =
        Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsDragEnabled;
    if (CategoryTree::isContainer(node))
        flags |= Qt::ItemIsDropEnabled;
    return flags;
}

QHash<int, QByteArray> SidebarModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractItemModel::roleNames();
    names.insert(NameRole, "name");
    names.insert(CountRole, "count");
    names.insert(TypeRole, "type");
    names.insert(SubtypeRole, "subtype");
    names.insert(IndexPathRole, "indexpath");
    names.insert(ForegroundColorRole, "foregroundColor");
    names.insert(BackgroundColorRole, "backgroundColor");
    names.insert(IsGroupRole, "isGroup");
    names.insert(IsContainerRole, "isContainer");
    names.insert(IsTagRole, "isTag");
    names.insert(IsSmartFolderRole, "isSmartFolder");
    names.insert(IsSystemRole, "isSystem");
    return names;
}

QStringList SidebarModel::mimeTypes() const
{
    return {mimeType()};
}

QMimeData* SidebarModel::mimeData(const QModelIndexList& indexes) const
{
    QByteArray encoded;
    QDataStream stream(&encoded, QIODevice::WriteOnly);
    for (const QModelIndex& index : indexes) {
        if (const Record* node = recordAt(index))
            stream << node->pk();
    }
    auto* data = new QMimeData;
    data->setData(mimeType(), encoded);
    return data;
}

Qt::DropActions SidebarModel::supportedDropActions() const
{
    return Qt::MoveAction;
}

Qt::DropActions SidebarModel::supportedDragActions() const
{
    return Qt::MoveAction;
}

QList<Record*> SidebarModel::draggedNodes(const QMimeData* data) const
{
    QList<Record*> nodes;
    if (!data || !data->hasFormat(mimeType()))
        return nodes;
    QDataStream stream(data->data(mimeType()));
    while (!stream.atEnd()) {
        qint64 pk = 0;
        stream >> pk;
        Record* node = m_context.record({s("Categories"), pk});
        // Only nodes of this tree: a stale drag of a deleted node carries nothing.
        if (stream.status() != QDataStream::Ok || !m_parents.contains(node))
            return {};
        if (!nodes.contains(node))
            nodes << node;
    }
    return nodes;
}

bool SidebarModel::canDropMimeData(const QMimeData* data, Qt::DropAction action, int, int,
                                   const QModelIndex& parent) const
{
    const QList<Record*> dragged = draggedNodes(data);
    return action == Qt::MoveAction && !dragged.isEmpty() &&
           CategoryTree::dropRefusal(dragged, recordAt(parent)) == CategoryTree::DropRefusal::None;
}

bool SidebarModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                const QModelIndex& parent)
{
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    if (!m_tree.move(draggedNodes(data), recordAt(parent), row))
        return false;
    const bool saved = saveContext();
    if (!saved)
        m_context.rollback(); // the tree goes back to what is stored
    reload();
    // The rows were moved here; removeRows() stays refused, so a view's own removal after a
    // move does nothing.
    return saved;
}

} // namespace corvanta::browse
