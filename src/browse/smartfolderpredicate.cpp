#include "browse/smartfolderpredicate.h"

#include "store/editingcontext.h"

namespace corvanta::browse {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

SmartFolderPredicate::SmartFolderPredicate(store::Record* category)
    : m_category(category)
    , m_rows(PredicateRowTemplates::forKind(ListKinds::ofCategory(category), *category->context()))
    , m_root(m_rows.defaultRoot())
{
    if (!category->value(s("subtype")).isNull()) {
        m_bound = false;
        return;
    }
    const QString stored = category->value(s("predicate")).toString().trimmed();
    if (stored.isEmpty())
        return;
    if (std::optional<PredicateRow> read = m_rows.fromText(stored, &m_openError))
        m_root = *read;
    else
        m_bound = false;
}

const PredicateRow* SmartFolderPredicate::row(const QList<int>& path) const
{
    const PredicateRow* current = &m_root;
    for (int position : path) {
        if (position < 0 || position >= current->children.size())
            return nullptr;
        current = &current->children.at(position);
    }
    return current;
}

PredicateRow* SmartFolderPredicate::mutableRow(const QList<int>& path)
{
    // Walked with non-const access: rows still shared with a copy of this object (or of its
    // root) are detached on the way, so that changing them here never changes the copy.
    PredicateRow* current = &m_root;
    for (int position : path) {
        if (position < 0 || position >= current->children.size())
            return nullptr;
        current = &current->children[position];
    }
    return current;
}

int SmartFolderPredicate::comparisonCount(const PredicateRow& row)
{
    if (!row.isCompound())
        return 1;
    int count = 0;
    for (const PredicateRow& child : row.children)
        count += comparisonCount(child);
    return count;
}

bool SmartFolderPredicate::insertRow(const QList<int>& parentPath, int position, const PredicateRow& row)
{
    PredicateRow* parent = mutableRow(parentPath);
    if (!parent || !parent->isCompound() || position > parent->children.size())
        return false;
    if (row.isCompound() && comparisonCount(row) == 0)
        return false;
    parent->children.insert(position < 0 ? parent->children.size() : position, row);
    return true;
}

bool SmartFolderPredicate::replaceRow(const QList<int>& path, const PredicateRow& row)
{
    PredicateRow* target = mutableRow(path);
    if (!target || (row.isCompound() && comparisonCount(row) == 0) || (path.isEmpty() && !row.isCompound()))
        return false;
    *target = row;
    return true;
}

bool SmartFolderPredicate::removeRow(const QList<int>& path)
{
    const PredicateRow* target = row(path);
    if (!target || path.isEmpty() || comparisonCount(m_root) - comparisonCount(*target) < 1)
        return false;
    QList<int> parentPath = path;
    const int position = parentPath.takeLast();
    mutableRow(parentPath)->children.removeAt(position);
    // A nested compound without rows would read "of the following are true" over nothing.
    while (!parentPath.isEmpty() && row(parentPath)->children.isEmpty()) {
        const int emptyAt = parentPath.takeLast();
        mutableRow(parentPath)->children.removeAt(emptyAt);
    }
    return true;
}

std::optional<QString> SmartFolderPredicate::predicateText(QString* error) const
{
    return m_rows.toText(m_root, error);
}

bool SmartFolderPredicate::save(QString* error)
{
    if (m_bound) {
        const std::optional<QString> text = predicateText(error);
        if (!text)
            return false;
        m_category->setValue(s("predicate"), *text);
    }
    store::StoreError storeError;
    if (!m_category->context()->save(&storeError)) {
        if (error)
            *error = storeError.message();
        return false;
    }
    return true;
}

} // namespace corvanta::browse
