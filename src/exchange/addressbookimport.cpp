#include "addressbookimport.h"

#include "documents/savefailure.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "support/prompter.h"

#include <QSet>

namespace corvanta::exchange {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// The client tag with that subtype: 0 companies, 2 persons.
store::Record* clientTag(store::EditingContext& context, int subtype)
{
    return context.fetchFirst(
        store::FetchRequest(s("Categories"), predicate::literal("type == 1 && subtype == %ld", {subtype})));
}

QSet<QString> existingIdentifiers(store::EditingContext& context)
{
    QSet<QString> identifiers;
    const auto rows = context.storedValues(store::FetchRequest(s("Clients")), {s("identifier")});
    for (const store::StoredRow& row : rows.value_or(QList<store::StoredRow>{}))
        identifiers.insert(row.values.value(0).toString());
    return identifiers;
}

void addAddresses(store::EditingContext& context, store::Record* client,
                  const QList<AddressBookPerson::PostalAddress>& addresses)
{
    for (const AddressBookPerson::PostalAddress& postal : addresses) {
        store::Record* address = context.insertRecord(s("Addresses"), {{s("street"), postal.street},
                                                                       {s("city"), postal.city},
                                                                       {s("state"), postal.state},
                                                                       {s("zip_code"), postal.zipCode},
                                                                       {s("country"), postal.country},
                                                                       {s("address_note"), QString()}});
        if (!client->related(s("default_address")))
            client->setRelated(s("default_address"), address);
        client->addRelated(s("addresses"), address);
    }
}

// A client made from the person, with its tag (companies and persons have one each).
void addClient(store::EditingContext& context, const AddressBookPerson& person, store::Record* tag)
{
    store::Record* client = context.insertRecord(s("Clients"), {{s("identifier"), person.uid}});
    if (person.company) {
        client->setValue(s("type"), 0);
        client->setValue(s("company_name"), AddressBookImport::companyName(person));
    } else {
        // 2, not the 1 the selection editor calls "individual": persons come in as type 2.
        client->setValue(s("type"), 2);
        client->setValue(s("first_name"), person.firstName);
        client->setValue(s("last_name"), person.lastName);
    }
    if (tag)
        client->addRelated(s("tags"), tag);
    client->setValue(s("phones"), person.phones.join(QLatin1Char(',')));
    client->setValue(s("emails"), person.emails.join(QLatin1Char(',')));
    addAddresses(context, client, person.addresses);
}

} // namespace

AddressBookImport::AddressBookImport(store::Store& store, support::Prompter& prompter)
    : m_store(store)
    , m_prompter(prompter)
{}

QString AddressBookImport::companyName(const AddressBookPerson& person)
{
    if (!person.organization.isEmpty())
        return person.organization;
    if (person.firstName.isEmpty() || person.lastName.isEmpty())
        return person.firstName + person.lastName;
    return person.firstName + QLatin1Char(' ') + person.lastName;
}

std::optional<int> AddressBookImport::importPersons(const QList<AddressBookPerson>& persons,
                                                    const ImportProgress& progress)
{
    const std::unique_ptr<store::EditingContext> context = m_store.newContext();
    store::Record* companyTag = clientTag(*context, 0);
    store::Record* personTag = clientTag(*context, 2);
    QSet<QString> identifiers = existingIdentifiers(*context);

    int added = 0;
    for (qsizetype index = 0; index < persons.size(); ++index) {
        const AddressBookPerson& person = persons.at(index);
        if (!person.uid.isEmpty() && !identifiers.contains(person.uid)) {
            identifiers.insert(person.uid); // a person listed twice is added once
            addClient(*context, person, person.company ? companyTag : personTag);
            ++added;
        }
        // The clients so far live only in this context: a cancel forgets them with it.
        if (progress && !progress(index + 1, persons.size()))
            return std::nullopt;
    }

    if (!documents::SaveFailure::save(*context, m_prompter))
        return std::nullopt;
    m_prompter.alert(tr("Import Address Book"), tr("%1 clients successfully added.").arg(added), {tr("OK")});
    return added;
}

} // namespace corvanta::exchange
