#include "browse/categoryquestions.h"

#include "browse/categorytree.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "support/prompter.h"

namespace corvanta::browse {

using store::Record;

namespace {
QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QString nameOf(const Record* node)
{
    return node->value(s("name")).toString();
}
} // namespace

CategoryDeletion::CategoryDeletion(CategoryTree& tree, support::Prompter& prompter)
    : m_tree(tree)
    , m_prompter(prompter)
{}

bool CategoryDeletion::canDelete(const Record* node)
{
    return node && !CategoryTree::isSystemNode(node);
}

CategoryDeletion::Result CategoryDeletion::deleteCategory(Record* node)
{
    if (!canDelete(node))
        return Result::Refused;
    const QList<Record*> below = CategoryTree::descendants(node);
    if (std::any_of(below.begin(), below.end(), CategoryTree::isSystemNode)) {
        m_prompter.alert(tr("Cannot be deleted"),
                         tr("Cannot be deleted because includes minimum one system tag. Before deleting, "
                            "place system tags in another folder by drag & drop."),
                         {tr("OK")});
        return Result::Refused;
    }
    QString included;
    for (const Record* child : below)
        included += nameOf(child) + s(", ");
    const QString name = nameOf(node);
    QString message;
    QString text;
    QString button;
    switch (CategoryTree::kindOf(node)) {
    case CategoryTree::NodeKind::Group:
        message = tr("Delete the group \"%1\"?").arg(name);
        text = tr("Included: %1\n\nDeleting a group permanently removes it and any folders and tags it "
                  "contains. This action cannot be undone.")
                   .arg(included);
        button = tr("Delete Group");
        break;
    case CategoryTree::NodeKind::SmartFolder:
        message = tr("Delete the Smart Folder \"%1\"?").arg(name);
        text = tr("Deleting a Smart Folder removes it but does not delete its contents. This action cannot "
                  "be undone.");
        button = tr("Delete Smart Folder");
        break;
    case CategoryTree::NodeKind::Tag:
        message = tr("Delete the tag \"%1\"?").arg(name);
        text = tr("This action cannot be undone.");
        button = tr("Delete Tag");
        break;
    case CategoryTree::NodeKind::Folder:
        message = tr("Delete the folder \"%1\"?").arg(name);
        text = tr("Included: %1\n\nDeleting a folder permanently removes it and any folders and tags it "
                  "contains. This action cannot be undone.")
                   .arg(included);
        button = tr("Delete Folder");
        break;
    }
    if (m_prompter.alert(message, text, {button, tr("Cancel")}) != button)
        return Result::Cancelled;
    // The children go with it: the relationship cascades.
    m_tree.context().deleteRecord(node);
    m_tree.rewriteIndexPaths();
    return Result::Deleted;
}

QString FolderOrTagSheet::title(Mode mode)
{
    return mode == Mode::NewTag || mode == Mode::EditTag ? tr("New Tag") : tr("New Folder");
}

QString FolderOrTagSheet::informativeText(Mode mode, const QString& parentName)
{
    switch (mode) {
    case Mode::NewTag:
        return tr("Enter name for new tag to be created inside \"%1\". Select Tag Type, background color and "
                  "font color.")
            .arg(parentName);
    case Mode::EditTag:
        return tr("For tag to be edited inside \"%1\", enter name, choose background color and font color.")
            .arg(parentName);
    case Mode::NewFolder:
    case Mode::EditFolder:
        break;
    }
    return tr("Enter name for new folder to be created inside \"%1\".").arg(parentName);
}

QStringList FolderOrTagSheet::parentEntries(const QList<Record*>& containers)
{
    QStringList entries;
    for (const Record* node : containers)
        entries << QString(CategoryTree::depth(node), QLatin1Char('\t')) + nameOf(node);
    return entries;
}

QString FolderOrTagSheet::previewName(const QString& name)
{
    return name.isEmpty() ? tr("No Name") : name;
}

bool FolderOrTagSheet::checkTagType(Mode mode, int type, support::Prompter& prompter)
{
    if ((mode != Mode::NewTag && mode != Mode::EditTag) || (type >= 1 && type <= 4))
        return true;
    prompter.alert(tr("There is no \"Tag Type\" chosen"), tr("For saving, please choose a \"Tag Type\"."),
                   {tr("OK")});
    return false;
}

} // namespace corvanta::browse
