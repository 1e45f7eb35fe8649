#include "browse/categorytree.h"

#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/record.h"

#include <QColor>
#include <algorithm>

namespace corvanta::browse {

using store::Record;

namespace {
QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QString segment(qsizetype number)
{
    return QString::asprintf("%03ld", long(number));
}

QString pathOf(const Record* node)
{
    return node->value(s("indexpath")).toString();
}

qint64 typeOf(const Record* node)
{
    return node->value(s("type")).toLongLong();
}

void sortByPath(QList<Record*>& nodes)
{
    std::stable_sort(nodes.begin(), nodes.end(), [](const Record* a, const Record* b) {
        const QString x = pathOf(a);
        const QString y = pathOf(b);
        return x != y ? x < y : a->pk() < b->pk();
    });
}

void appendDescendants(const Record* node, QList<Record*>& into)
{
    for (Record* child : CategoryTree::children(node)) {
        into << child;
        appendDescendants(child, into);
    }
}

void writePaths(const QList<Record*>& siblings, const QString& prefix)
{
    for (qsizetype i = 0; i < siblings.size(); ++i) {
        Record* node = siblings[i];
        // The children are ordered by their old paths before this node's path changes.
        const QList<Record*> children = CategoryTree::children(node);
        const QString path = prefix + segment(i);
        if (pathOf(node) != path)
            node->setValue(s("indexpath"), path);
        writePaths(children, path);
    }
}
} // namespace

CategoryTree::CategoryTree(store::EditingContext& context)
    : m_context(context)
{}

QList<Record*> CategoryTree::all() const
{
    return m_context.fetch(store::FetchRequest(s("Categories"), {}, {{s("indexpath")}}));
}

QList<Record*> CategoryTree::topLevel() const
{
    QList<Record*> nodes = m_context.fetch(
        store::FetchRequest(s("Categories"), predicate::literal("parent == NULL"), {{s("indexpath")}}));
    sortByPath(nodes); // unsaved nodes are sorted in memory too, but ties need one order
    return nodes;
}

QList<Record*> CategoryTree::groupsByName() const
{
    return m_context.fetch(store::FetchRequest(s("Categories"), predicate::literal("parent == NULL"),
                                               {store::SortDescriptor::localized(s("name"))}));
}

QList<Record*> CategoryTree::children(const Record* node)
{
    QList<Record*> nodes = node->relatedList(s("children"));
    nodes.removeIf([](const Record* child) { return child->isDeleted(); });
    sortByPath(nodes);
    return nodes;
}

QList<Record*> CategoryTree::descendants(const Record* node)
{
    QList<Record*> nodes;
    appendDescendants(node, nodes);
    return nodes;
}

int CategoryTree::depth(const Record* node)
{
    int levels = 0;
    for (const Record* up = node->related(s("parent")); up; up = up->related(s("parent")))
        ++levels;
    return levels;
}

CategoryTree::NodeKind CategoryTree::kindOf(const Record* node)
{
    if (!node->related(s("parent")))
        return NodeKind::Group;
    const qint64 type = typeOf(node);
    return type > 0 ? NodeKind::Tag : type < 0 ? NodeKind::SmartFolder : NodeKind::Folder;
}

bool CategoryTree::isSystemNode(const Record* node)
{
    return !node->value(s("subtype")).isNull();
}

bool CategoryTree::isContainer(const Record* node)
{
    const qint64 type = typeOf(node);
    return type == 0 || (type < 0 && !node->related(s("parent")));
}

QString CategoryTree::colourText(const QVariant& colour)
{
    const QColor value = colour.value<QColor>();
    return colour.isNull() || !value.isValid() ? QString() : value.name(QColor::HexRgb).toUpper();
}

QList<Record*> CategoryTree::containers() const
{
    QList<Record*> nodes;
    for (Record* group : topLevel()) {
        if (!isContainer(group))
            continue;
        nodes << group;
        QList<Record*> below = descendants(group);
        below.removeIf([](const Record* node) { return !isContainer(node); });
        nodes << below;
    }
    return nodes;
}

Record* CategoryTree::placementParent(Record* selected)
{
    if (!selected || isContainer(selected))
        return selected;
    return selected->related(s("parent"));
}

QString CategoryTree::newChildPath(const Record* parent) const
{
    if (!parent)
        return segment(topLevel().size());
    return pathOf(parent) + segment(children(parent).size());
}

Record* CategoryTree::insertNode(const QString& name, Record* parent)
{
    const QString path = newChildPath(parent);
    Record* node = m_context.insertRecord(s("Categories"), {{s("name"), name}, {s("indexpath"), path}});
    if (parent)
        node->setRelated(s("parent"), parent);
    return node;
}

Record* CategoryTree::newGroup()
{
    return insertNode(tr("New Group"), nullptr);
}

Record* CategoryTree::newFolder(const QString& name, Record* parent)
{
    Record* folder = insertNode(name, parent);
    folder->setValue(s("type"), 0);
    return folder;
}

Record* CategoryTree::newTag(const QString& name, int type, Record* parent)
{
    Record* tag = insertNode(name, parent);
    tag->setValue(s("type"), type);
    tag->setValue(s("foreground_color"), QColor::fromRgbF(1.0f, 1.0f, 1.0f));
    tag->setValue(s("background_color"), QColor::fromRgbF(1.0f, 0.5f, 0.0f));
    return tag;
}

Record* CategoryTree::newSmartFolder(const QString& name, int kind, const QString& predicate, Record* parent)
{
    Record* folder = insertNode(name.isEmpty() ? tr("Smart Folder") : name, parent);
    folder->setValue(s("type"), -kind);
    folder->setValue(s("predicate"), predicate);
    return folder;
}

CategoryTree::DropRefusal CategoryTree::dropRefusal(const QList<Record*>& dragged, const Record* target)
{
    if (!target)
        return DropRefusal::None;
    const qint64 type = typeOf(target);
    if (type > 0)
        return DropRefusal::OntoTag;
    if (type < 0 && target->related(s("parent")))
        return DropRefusal::OntoNestedSmartFolder;
    for (const Record* up = target; up; up = up->related(s("parent"))) {
        if (dragged.contains(up))
            return DropRefusal::IntoDraggedSubtree;
    }
    return DropRefusal::None;
}

QString CategoryTree::refusalMessage(DropRefusal refusal)
{
    switch (refusal) {
    case DropRefusal::OntoTag:
        return tr("Nothing can be placed inside a tag.");
    case DropRefusal::OntoNestedSmartFolder:
        return tr("Nothing can be placed inside a Smart Folder that is inside another folder.");
    case DropRefusal::IntoDraggedSubtree:
        return tr("A folder cannot be placed inside itself or one of its own folders.");
    case DropRefusal::None:
        break;
    }
    return {};
}

bool CategoryTree::move(const QList<Record*>& dragged, Record* target, int position)
{
    if (dragged.isEmpty() || dropRefusal(dragged, target) != DropRefusal::None)
        return false;
    QList<Record*> siblings = target ? children(target) : topLevel();
    if (position < 0 || position > siblings.size())
        position = int(siblings.size());
    qsizetype insertAt = 0;
    for (qsizetype i = 0; i < position; ++i) {
        if (!dragged.contains(siblings[i]))
            ++insertAt;
    }
    siblings.removeIf([&](const Record* node) { return dragged.contains(node); });
    for (qsizetype i = 0; i < dragged.size(); ++i)
        siblings.insert(insertAt + i, dragged[i]);
    for (Record* node : dragged) {
        if (node->related(s("parent")) != target)
            node->setRelated(s("parent"), target);
    }
    // The new order among the target's children, for the walk below to number.
    const QString prefix = target ? pathOf(target) : QString();
    for (qsizetype i = 0; i < siblings.size(); ++i)
        siblings[i]->setValue(s("indexpath"), prefix + segment(i));
    rewriteIndexPaths();
    return true;
}

void CategoryTree::rewriteIndexPaths()
{
    writePaths(topLevel(), QString());
}

} // namespace corvanta::browse
