#include "documenttags.h"

#include "model/editingcontext.h"
#include "predicate/parser.h"

namespace corvanta::documents {

using model::Record;

Record* DocumentTags::typeCategory(Record* document, qint64 subtype)
{
    const auto condition = predicate::Parser::parse(QStringLiteral("type == 3 && subtype == %@"), {subtype});
    return document->context()->fetchFirst(model::FetchRequest(QStringLiteral("Categories"), *condition));
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
