#include "clientsimport.h"

#include "documents/savefailure.h"
#include "importfields.h"
#include "model/clientsrecord.h"
#include "model/companycache.h"
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

// The full names of the stored clients, derived from their names as a loaded client derives its
// own, without loading every client.
QSet<QString> existingNames(store::EditingContext& context)
{
    const qint64 firstNamePosition =
        model::CompanyCache::of(context.store()).value(s("first_name_position")).toLongLong();
    QSet<QString> names;
    const auto rows = context.storedValues(store::FetchRequest(s("Clients")),
                                           {s("type"), s("company_name"), s("first_name"), s("last_name")});
    for (const store::StoredRow& row : rows.value_or(QList<store::StoredRow>{})) {
        names.insert(model::ClientsRecord::fullName(row.values.at(0).toLongLong(),
                                                    row.values.at(1).toString(), row.values.at(2).toString(),
                                                    row.values.at(3).toString(), firstNamePosition));
    }
    return names;
}

bool isDuplicate(const QStringList& row, bool person, const QSet<QString>& names)
{
    if (!person)
        return names.contains(row.value(0));
    const QString first = row.value(0);
    const QString second = row.value(1);
    return names.contains(QStringLiteral("%1 %2").arg(first, second)) ||
           names.contains(QStringLiteral("%1 %2").arg(second, first));
}

} // namespace

ClientsImport::ClientsImport(store::Store& store, support::Prompter& prompter)
    : m_store(store)
    , m_prompter(prompter)
{}

std::optional<int> ClientsImport::run(const QList<QStringList>& rows, const Options& options,
                                      const ImportProgress& progress)
{
    // The clients are made in a context of their own: a cancelled or refused import leaves
    // nothing behind, and the save reaches the main context (and the sidebar's counts) at once.
    const std::unique_ptr<store::EditingContext> context = m_store.newContext();
    Record* chosenTag = context->fetchFirst(store::FetchRequest(
        s("Categories"), predicate::literal("type == 1 && subtype == %ld", {qint64(options.tag)})));
    Record* standardTag = context->fetchFirst(
        store::FetchRequest(s("Categories"), predicate::literal("type == 1 && subtype == 1")));
    QVariantList tags;
    if (chosenTag)
        tags << QVariant::fromValue(chosenTag->ref());
    // The second entry stands for both tags; the set holds each tag once.
    if (options.tag == 1 && standardTag && standardTag != chosenTag)
        tags << QVariant::fromValue(standardTag->ref());

    const QSet<QString> names = existingNames(*context);
    const bool person = options.clientType > 1;
    int added = 0;
    for (qsizetype index = 0; index < rows.size(); ++index) {
        const QStringList& row = rows.at(index);
        if (!isDuplicate(row, person, names)) {
            Record* client = context->insertRecord(s("Clients"), {{s("identifier"), support::UUID()}});
            Record* address = context->insertRecord(s("Addresses"), {{s("street"), tr("New Address")}});
            const qsizetype columns = qMin(options.columnKeys.size(), row.size());
            for (qsizetype column = 0; column < columns; ++column) {
                const QString& key = options.columnKeys.at(column);
                if (ImportFields::isAddressKey(key)) {
                    address->setValue(key, row.at(column));
                } else {
                    client->setValue(ImportFields::attributeKey(key), row.at(column));
                }
            }
            client->addRelated(s("addresses"), address);
            // Documents print a client's default address; without it the imported address
            // would be on file but never on an invoice.
            client->setRelated(s("default_address"), address);
            client->setValue(s("tags"), tags);
            client->setValue(s("type"), options.clientType);
            ++added;
        }
        if (progress && !progress(index + 1, rows.size()))
            return std::nullopt;
    }
    if (!documents::SaveFailure::save(*context, m_prompter))
        return std::nullopt;
    m_prompter.alert(tr("Import Clients"), tr("%n clients successfully added.", nullptr, added), {tr("OK")});
    return added;
}

} // namespace corvanta::exchange
