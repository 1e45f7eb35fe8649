#pragma once

#include <QList>

namespace corvanta::store {
class Record;
}

namespace corvanta::browse {

// The tags a record shows in its row of coloured labels: ordered by `subtype` ascending (the
// user's own tags, which have none, first, as the store sorts a missing value first), then by
// `name`. System tags of clients and of items are left out when the company's
// `system_tags_client_hidden`, respectively `system_tags_item_hidden`, is 1; with
// SystemTags::Never every system tag is left out. The record's `tags` are never changed.
class TagRow
{
public:
    enum class SystemTags { ByHidingSettings, Never };
    static QList<store::Record*> shown(const store::Record* record,
                                       SystemTags systemTags = SystemTags::ByHidingSettings);
};

} // namespace corvanta::browse
