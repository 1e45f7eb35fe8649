#include "itemsimport.h"

#include "documents/savefailure.h"
#include "importfields.h"
#include "importprice.h"
#include "model/companyrecord.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "support/prompter.h"
#include "support/uuid.h"

#include <QSet>

namespace corvanta::exchange {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QSet<QString> existingNames(store::EditingContext& context)
{
    QSet<QString> names;
    const auto rows = context.storedValues(store::FetchRequest(s("Items")), {s("name")});
    for (const store::StoredRow& row : rows.value_or(QList<store::StoredRow>{}))
        names.insert(row.values.at(0).toString());
    return names;
}

Record* chosenOrDefault(store::EditingContext& context, const predicate::RecordRef& chosen,
                        const char* defaultKey)
{
    if (!chosen.isNull())
        return context.record(chosen);
    return model::CompanyRecord::defaultRecord(context, s(defaultKey));
}

} // namespace

ItemsImport::ItemsImport(store::Store& store, support::Prompter& prompter)
    : m_store(store)
    , m_prompter(prompter)
{}

std::optional<int> ItemsImport::run(const QList<QStringList>& rows, const Options& options,
                                    const ImportProgress& progress)
{
    // A context of its own: a cancelled or refused import leaves nothing behind.
    const std::unique_ptr<store::EditingContext> context = m_store.newContext();
    Record* tag = context->fetchFirst(store::FetchRequest(
        s("Categories"), predicate::literal("type == 2 && subtype == %ld", {qint64(options.tag)})));
    Record* tax = chosenOrDefault(*context, options.tax, "default_tax");
    Record* unit = chosenOrDefault(*context, options.unit, "default_unit");
    const QSet<QString> names = existingNames(*context);

    int added = 0;
    for (qsizetype index = 0; index < rows.size(); ++index) {
        const QStringList& row = rows.at(index);
        if (!names.contains(row.value(0))) {
            Record* item = context->insertRecord(s("Items"), {{s("identifier"), support::UUID()}});
            item->setRelated(s("tax"), tax);
            item->setRelated(s("unit"), unit);
            const qsizetype columns = qMin(options.columnKeys.size(), row.size());
            for (qsizetype column = 0; column < columns; ++column) {
                const QString& key = options.columnKeys.at(column);
                if (key.contains(s("_price")))
                    item->setValue(ImportFields::attributeKey(key), ImportPrice::read(row.at(column)));
                else
                    item->setValue(ImportFields::attributeKey(key), row.at(column));
            }
            item->setValue(s("tags"), tag ? QVariantList{QVariant::fromValue(tag->ref())} : QVariantList{});
            item->setValue(s("type"), options.itemType);
            ++added;
        }
        if (progress && !progress(index + 1, rows.size()))
            return std::nullopt;
    }
    if (!documents::SaveFailure::save(*context, m_prompter))
        return std::nullopt;
    m_prompter.alert(tr("Import Items"), tr("%n items successfully added.", nullptr, added), {tr("OK")});
    return added;
}

} // namespace corvanta::exchange
