#pragma once

#include "browse/listkind.h"
#include "store/fetchrequest.h"

#include <QCoreApplication>
#include <QList>
#include <QString>

namespace corvanta::browse {

// The sort menu of a list. Its items carry tags: 0 and 1 choose the direction (descending,
// ascending) and keep the key; -1 to -4 choose the key and keep the direction of the first
// sort descriptor. Documents sorted by a date are ordered by number among equal dates, in the
// same direction. Names and titles compare in the user's locale ignoring case, the rest plainly.
class SortMenu
{
    Q_DECLARE_TR_FUNCTIONS(SortMenu)

public:
    static constexpr int kDescending = 0;
    static constexpr int kAscending = 1;

    struct Entry
    {
        int tag = 0;
        QString title;
        bool checked = false; // the key or direction in force
    };

    // The menu for a kind: its keys, then the two directions.
    static QList<Entry> entries(ListKind kind, const QList<store::SortDescriptor>& current);
    // The order after choosing the item with `tag`; `current` unchanged for a tag the kind
    // does not have.
    static QList<store::SortDescriptor> changed(ListKind kind, const QList<store::SortDescriptor>& current,
                                                int tag);
    // The sort button's title: the name of the first descriptor's key, empty for a key the menu
    // does not offer.
    static QString buttonTitle(const QList<store::SortDescriptor>& current);
};

} // namespace corvanta::browse
