#pragma once

#include <QList>

namespace corvanta::store {
class EditingContext;
class Record;
struct StoreError;
} // namespace corvanta::store

namespace corvanta::browse {

// The sidebar's selection and expanded nodes, kept on the own-company record
// (`category_selected`, `category_expanded`) so that each company database reopens as it was
// left.
class SidebarState
{
public:
    explicit SidebarState(store::EditingContext& context)
        : m_context(context)
    {}

    QList<store::Record*> selected() const;
    QList<store::Record*> expanded() const;
    // Stores both sets, writes every node's `indexpath` from its place in the tree and saves the
    // context. False, with `error` set, when the save fails or there is no company record.
    bool save(const QList<store::Record*>& selected, const QList<store::Record*>& expanded,
              store::StoreError* error = nullptr);

private:
    store::Record* company() const;
    QList<store::Record*> stored(const char* key) const;

    store::EditingContext& m_context;
};

} // namespace corvanta::browse
