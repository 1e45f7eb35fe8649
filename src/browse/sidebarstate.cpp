#include "browse/sidebarstate.h"

#include "browse/categorytree.h"
#include "store/editingcontext.h"
#include "store/record.h"

#include <algorithm>

namespace corvanta::browse {

using store::Record;

namespace {
void replaceSet(Record* company, const QString& key, const QList<Record*>& nodes)
{
    const QList<Record*> before = company->relatedList(key);
    for (Record* node : before) {
        if (!nodes.contains(node))
            company->removeRelated(key, node);
    }
    for (Record* node : nodes) {
        if (!before.contains(node))
            company->addRelated(key, node);
    }
}
} // namespace

Record* SidebarState::company() const
{
    return m_context.fetchFirst(store::FetchRequest(QStringLiteral("MyCompany")));
}

QList<Record*> SidebarState::stored(const char* key) const
{
    Record* own = company();
    if (!own)
        return {};
    QList<Record*> nodes = own->relatedList(QString::fromLatin1(key));
    std::sort(nodes.begin(), nodes.end(), [](const Record* a, const Record* b) {
        return a->value(QStringLiteral("indexpath")).toString() <
               b->value(QStringLiteral("indexpath")).toString();
    });
    return nodes;
}

QList<Record*> SidebarState::selected() const
{
    return stored("category_selected");
}

QList<Record*> SidebarState::expanded() const
{
    return stored("category_expanded");
}

bool SidebarState::save(const QList<Record*>& selected, const QList<Record*>& expanded,
                        store::StoreError* error)
{
    Record* own = company();
    if (!own) {
        if (error)
            *error = store::StoreError::make(store::StoreError::SaveFailed,
                                             QStringLiteral("The company record is missing."), {});
        return false;
    }
    replaceSet(own, QStringLiteral("category_selected"), selected);
    replaceSet(own, QStringLiteral("category_expanded"), expanded);
    CategoryTree(m_context).rewriteIndexPaths();
    return m_context.save(error);
}

} // namespace corvanta::browse
