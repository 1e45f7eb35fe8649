#pragma once

#include "predicate/predicate.h"

#include <QList>
#include <QString>

namespace corvanta::store {

struct SortDescriptor
{
    enum class Comparison {
        Default,                  // numbers, dates and text by their plain order
        LocalizedCaseInsensitive, // text in the user's locale, ignoring case
    };

    QString keyPath;
    bool ascending = true;
    Comparison comparison = Comparison::Default;

    static SortDescriptor localized(const QString& keyPath, bool ascending = true)
    {
        return {keyPath, ascending, Comparison::LocalizedCaseInsensitive};
    }
};

// A selection of one entity's records: a condition, an order and an optional window.
struct FetchRequest
{
    QString entity;
    predicate::Predicate predicate;
    QList<SortDescriptor> sortDescriptors;
    int limit = 0; // 0 = all
    int offset = 0;
    // Whether records inserted, changed or deleted in the context and not yet saved count.
    bool includesPendingChanges = true;

    FetchRequest() = default;
    explicit FetchRequest(const QString& entityName, const predicate::Predicate& condition = {},
                          const QList<SortDescriptor>& sort = {})
        : entity(entityName)
        , predicate(condition)
        , sortDescriptors(sort)
    {}
};

} // namespace corvanta::store
