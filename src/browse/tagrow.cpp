#include "browse/tagrow.h"

#include "model/companycache.h"
#include "predicate/evaluator.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"

#include <algorithm>
#include <optional>

namespace corvanta::browse {

namespace {
QString s(const char* text)
{
    return QString::fromLatin1(text);
}

bool isHidingSet(store::Record* anyRecord, const char* key)
{
    return model::CompanyCache::of(anyRecord->context()->store()).value(s(key)).toInt() == 1;
}
} // namespace

QList<store::Record*> TagRow::shown(const store::Record* record, SystemTags systemTags)
{
    if (!record)
        return {};
    QList<store::Record*> tags = record->relatedList(s("tags"));
    if (tags.isEmpty())
        return tags;
    // Each setting is read once per row, and only when a system tag of its kind is there.
    std::optional<bool> clientsHidden;
    std::optional<bool> itemsHidden;
    const auto hidden = [&](store::Record* tag) {
        if (tag->value(s("subtype")).isNull())
            return false;
        if (systemTags == SystemTags::Never)
            return true;
        switch (tag->value(s("type")).toLongLong()) {
        case 1:
            if (!clientsHidden)
                clientsHidden = isHidingSet(tag, "system_tags_client_hidden");
            return *clientsHidden;
        case 2:
            if (!itemsHidden)
                itemsHidden = isHidingSet(tag, "system_tags_item_hidden");
            return *itemsHidden;
        default:
            return false;
        }
    };
    tags.removeIf(hidden);
    std::stable_sort(tags.begin(), tags.end(), [](const store::Record* a, const store::Record* b) {
        const int bySubtype =
            predicate::Evaluator::compareValues(a->value(s("subtype")), b->value(s("subtype")));
        if (bySubtype != 0)
            return bySubtype < 0;
        return predicate::Evaluator::compareValues(a->value(s("name")), b->value(s("name"))) < 0;
    });
    return tags;
}

} // namespace corvanta::browse
