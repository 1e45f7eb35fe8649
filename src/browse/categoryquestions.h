#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>

namespace corvanta::support {
class Prompter;
}

namespace corvanta::store {
class Record;
}

namespace corvanta::browse {

class CategoryTree;

// Deleting a sidebar node: asks first in words that fit its kind, refuses when it or anything
// below it is a system node, and removes the node with everything below it. The records that
// carried a deleted tag or folder keep everything else.
class CategoryDeletion
{
    Q_DECLARE_TR_FUNCTIONS(CategoryDeletion)

public:
    enum class Result { Deleted, Cancelled, Refused };

    CategoryDeletion(CategoryTree& tree, support::Prompter& prompter);

    // Whether the plain delete command applies: a node that is not itself a system node.
    static bool canDelete(const store::Record* node);
    // Asks, and deletes when confirmed (the context is not saved); every `indexpath` is then
    // written afresh. A system node itself is refused without a question.
    Result deleteCategory(store::Record* node);

private:
    CategoryTree& m_tree;
    support::Prompter& m_prompter;
};

// The texts of the sheet that creates or edits a folder or a tag.
class FolderOrTagSheet
{
    Q_DECLARE_TR_FUNCTIONS(FolderOrTagSheet)

public:
    enum class Mode { NewFolder, NewTag, EditTag, EditFolder };

    static QString title(Mode mode);
    // The line under the title, naming the parent.
    static QString informativeText(Mode mode, const QString& parentName);
    // The parent pop-up's entries: the containers' names, one tab a level deep, in `indexpath`
    // order, parallel to CategoryTree::containers().
    static QStringList parentEntries(const QList<store::Record*>& containers);
    // The name the preview draws.
    static QString previewName(const QString& name);
    // Whether the sheet may save: a tag needs a tag type (1 to 4); without one the user is told
    // so and the sheet stays open.
    static bool checkTagType(Mode mode, int type, support::Prompter& prompter);
};

} // namespace corvanta::browse
