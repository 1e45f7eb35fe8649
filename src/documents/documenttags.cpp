#include "documenttags.h"

#include "predicate/literal.h"
#include "store/editingcontext.h"

namespace corvanta::documents {

using store::Record;

Record* DocumentTags::typeCategory(Record* document, qint64 subtype)
{
    return document->context()->fetchFirst(store::FetchRequest(
        QStringLiteral("Categories"), predicate::literal("type == 3 && subtype == %@", {subtype})));
}

void DocumentTags::update(Record* document)
{
    const bool cancellation = !document->value(QStringLiteral("cancel_reference")).isNull();
    QVariantList kept;
    for (const Record* tag : document->relatedList(QStringLiteral("tags"))) {
        if (tag->value(QStringLiteral("subtype")).isNull() || cancellation)
            kept << QVariant::fromValue(tag->ref());
    }
    if (Record* category = typeCategory(document, document->value(QStringLiteral("type")).toLongLong())) {
        const QVariant ref = QVariant::fromValue(category->ref());
        if (!kept.contains(ref))
            kept << ref;
    }
    document->setValue(QStringLiteral("tags"), kept);
}

} // namespace corvanta::documents
