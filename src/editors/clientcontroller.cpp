#include "clientcontroller.h"

#include "documentcontroller.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "support/prompter.h"
#include "support/uuid.h"

namespace corvanta::editors {

using documents::Clock;

using store::FetchRequest;
using store::Record;
using store::SortDescriptor;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

FetchRequest categories(const QString& condition, const QVariantList& arguments = {})
{
    return FetchRequest(s("Categories"), predicate::literal(condition, arguments),
                        {SortDescriptor{s("subtype"), true, SortDescriptor::Comparison::Default}});
}

} // namespace

ClientController::ClientController(store::Store& store, support::Prompter& prompter, Clock clock,
                                   QObject* parent)
    : RecordEditor(
          store, prompter, std::move(clock), s("Clients"),
          {tr("Save this client?"),
           tr("This client has not been saved and contains unsaved changes. Would you like to save now?")},
          parent)
{}

ClientController::~ClientController() = default;

Record* ClientController::newClient(qint64 type)
{
    return editNew({{s("type"), type}, {s("identifier"), support::UUID()}, {s("created"), m_clock()}});
}

Record* ClientController::openClient(const predicate::RecordRef& client)
{
    return editStored(client);
}

void ClientController::typeChanged(qint64 type, Sender sender)
{
    if (!m_record)
        return;
    m_record->setValue(s("type"), type);
    if (sender == Sender::Control) {
        for (const char* key : {"company_name", "tax_number", "first_name", "last_name"})
            m_record->setValue(s(key), QString());
    }
    markEdited();
}

ClientController::NameFields ClientController::nameFields() const
{
    if (m_record && m_record->value(s("type")).toLongLong() == 2)
        return {tr("First Name"), s("first_name"), tr("Last Name"), s("last_name")};
    return {tr("Company Name"), s("company_name"), tr("Tax Number"), s("tax_number")};
}

Record* ClientController::addOwned(const QString& entity, const QString& list, const QString& defaultKey)
{
    if (!m_record)
        return nullptr;
    const bool first = m_record->relatedList(list).isEmpty();
    Record* record = m_context->insertRecord(entity);
    record->setRelated(s("client"), m_record);
    if (first || !m_record->related(defaultKey))
        m_record->setRelated(defaultKey, record);
    markEdited();
    return record;
}

void ClientController::removeOwned(Record* record, const QString& list, const QString& defaultKey)
{
    if (!m_record || !record || record->related(s("client")) != m_record)
        return;
    const bool wasDefault = m_record->related(defaultKey) == record;
    m_context->deleteRecord(record);
    if (wasDefault)
        m_record->setRelated(defaultKey, m_record->relatedList(list).value(0));
    markEdited();
}

Record* ClientController::addAddress()
{
    return addOwned(s("Addresses"), s("addresses"), s("default_address"));
}

void ClientController::removeAddress(Record* address)
{
    removeOwned(address, s("addresses"), s("default_address"));
}

void ClientController::defaultAddressChanged(Record* address)
{
    if (!m_record || (address && address->related(s("client")) != m_record))
        return;
    m_record->setRelated(s("default_address"), address);
    markEdited();
}

Record* ClientController::addContact()
{
    return addOwned(s("Contacts"), s("contacts"), s("default_contact"));
}

void ClientController::removeContact(Record* contact)
{
    removeOwned(contact, s("contacts"), s("default_contact"));
}

void ClientController::defaultContactChanged(Record* contact)
{
    if (!m_record || (contact && contact->related(s("client")) != m_record))
        return;
    m_record->setRelated(s("default_contact"), contact);
    markEdited();
}

void ClientController::fileUnderKind()
{
    QVariantList tags;
    for (const Record* tag : m_record->relatedList(s("tags"))) {
        if (tag->value(s("subtype")).isNull())
            tags << QVariant::fromValue(tag->ref());
    }
    QList<Record*> kindTags;
    switch (m_record->value(s("type")).toLongLong()) {
    case 0:
        kindTags = m_context->fetch(categories(s("type == 1 && subtype == 0")));
        kindTags = kindTags.mid(0, 1);
        break;
    case 1: {
        // A supplier is filed as a company too.
        const QList<Record*> found = m_context->fetch(categories(s("type == 1 && subtype <= 1")));
        if (!found.isEmpty())
            kindTags = {found.first(), found.last()};
        break;
    }
    case 2:
        kindTags = m_context->fetch(categories(s("type == 1 && subtype == 2"))).mid(0, 1);
        break;
    default:
        break;
    }
    for (const Record* tag : std::as_const(kindTags)) {
        const QVariant ref = QVariant::fromValue(tag->ref());
        if (!tags.contains(ref))
            tags << ref;
    }
    m_record->setValue(s("tags"), tags);
}

void ClientController::prepareSave()
{
    const qint64 type = m_record->value(s("type")).toLongLong();
    // Which name is filled in differs from the name fields on purpose: an individual's company
    // name and a supplier's first name.
    const QString nameKey = type == 1 ? s("first_name") : s("company_name");
    if ((type == 0 || type == 1 || type == 2) && m_record->value(nameKey).toString().isEmpty())
        m_record->setValue(nameKey, tr("No Name"));
    fileUnderKind();
}

void ClientController::handOver(DocumentController& openDocument)
{
    openDocument.setClient(m_record->ref());
}

} // namespace corvanta::editors
