#include "browse/categorycounts.h"

#include "browse/listkind.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/record.h"

namespace corvanta::browse {

using store::Record;

int CategoryCounts::countOf(Record* category, const QDateTime& now)
{
    if (ListKinds::ofCategory(category) == ListKind::None)
        return -1;
    const std::optional<store::FetchRequest> request = CategoryFetch::of(category, now);
    if (!request)
        return 0;
    store::FetchRequest counted = *request;
    counted.sortDescriptors.clear(); // order means nothing to a count
    return std::max(0, category->context()->count(counted));
}

QList<Record*> CategoryCounts::update(store::EditingContext& context, const QDateTime& now)
{
    const QString countKey = QStringLiteral("count");
    QList<Record*> changed;
    for (ListKind kind : ListKinds::all()) {
        const qint64 k = qint64(kind);
        const QList<Record*> nodes = context.fetch(store::FetchRequest(
            QStringLiteral("Categories"), predicate::literal("type == %ld || type == %ld", {-k, k})));
        for (Record* node : nodes) {
            const QString count = QString::asprintf("%ld", long(countOf(node, now)));
            if (node->value(countKey).toString() != count) {
                node->setValue(countKey, count);
                changed << node;
            }
        }
    }
    return changed;
}

} // namespace corvanta::browse
