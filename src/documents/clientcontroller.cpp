#include "clientcontroller.h"

#include "documentcontroller.h"
#include "model/editingcontext.h"
#include "model/prompter.h"
#include "model/store.h"
#include "model/uuid.h"
#include "predicate/parser.h"
#include "savefailure.h"

namespace corvanta::documents {

using model::FetchRequest;
using model::Record;
using model::SortDescriptor;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

FetchRequest categories(const QString& condition, const QVariantList& arguments = {})
{
    return FetchRequest(s("Categories"), *predicate::Parser::parse(condition, arguments),
                        {SortDescriptor{s("subtype"), true, SortDescriptor::Comparison::Default}});
}

} // namespace

ClientController::ClientController(model::Store& store, model::Prompter& prompter, Clock clock,
                                   QObject* parent)
    : QObject(parent)
    , m_prompter(prompter)
    , m_clock(std::move(clock))
    , m_context(store.newContext())
{}

ClientController::~ClientController() = default;

void ClientController::setEdited(bool edited)
{
    if (m_edited == edited)
        return;
    m_edited = edited;
    Q_EMIT editedChanged(edited);
}

Record* ClientController::newClient(qint64 type)
{
    m_context->rollback();
    m_client = m_context->insertRecord(
        s("Clients"), {{s("type"), type}, {s("identifier"), model::UUID()}, {s("created"), m_clock()}});
    setEdited(false);
    return m_client;
}

Record* ClientController::openClient(const predicate::RecordRef& client)
{
    m_context->rollback();
    m_client = m_context->fetchFirst(FetchRequest(
        s("Clients"), *predicate::Parser::parse(s("self == %@"), {QVariant::fromValue(client)})));
    setEdited(false);
    return m_client;
}

void ClientController::typeChanged(qint64 type, Sender sender)
{
    if (!m_client)
        return;
    m_client->setValue(s("type"), type);
    if (sender == Sender::Control) {
        for (const char* key : {"company_name", "tax_number", "first_name", "last_name"})
            m_client->setValue(s(key), QString());
    }
    markEdited();
}

ClientController::NameFields ClientController::nameFields() const
{
    if (m_client && m_client->value(s("type")).toLongLong() == 2)
        return {tr("First Name"), s("first_name"), tr("Last Name"), s("last_name")};
    return {tr("Company Name"), s("company_name"), tr("Tax Number"), s("tax_number")};
}

Record* ClientController::addOwned(const QString& entity, const QString& list, const QString& defaultKey)
{
    if (!m_client)
        return nullptr;
    const bool first = m_client->relatedList(list).isEmpty();
    Record* record = m_context->insertRecord(entity);
    record->setRelated(s("client"), m_client);
    if (first || !m_client->related(defaultKey))
        m_client->setRelated(defaultKey, record);
    markEdited();
    return record;
}

void ClientController::removeOwned(Record* record, const QString& list, const QString& defaultKey)
{
    if (!m_client || !record || record->related(s("client")) != m_client)
        return;
    const bool wasDefault = m_client->related(defaultKey) == record;
    m_context->deleteRecord(record);
    if (wasDefault)
        m_client->setRelated(defaultKey, m_client->relatedList(list).value(0));
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
    if (!m_client || (address && address->related(s("client")) != m_client))
        return;
    m_client->setRelated(s("default_address"), address);
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
    if (!m_client || (contact && contact->related(s("client")) != m_client))
        return;
    m_client->setRelated(s("default_contact"), contact);
    markEdited();
}

void ClientController::fileUnderKind()
{
    QVariantList tags;
    for (const Record* tag : m_client->relatedList(s("tags"))) {
        if (tag->value(s("subtype")).isNull())
            tags << QVariant::fromValue(tag->ref());
    }
    QList<Record*> kindTags;
    switch (m_client->value(s("type")).toLongLong()) {
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
    m_client->setValue(s("tags"), tags);
}

bool ClientController::save(Sender sender, DocumentController* openDocument)
{
    if (!m_client)
        return false;
    const qint64 type = m_client->value(s("type")).toLongLong();
    // Which name is filled in differs from the name fields on purpose: an individual's company
    // name and a supplier's first name.
    const QString nameKey = type == 1 ? s("first_name") : s("company_name");
    if ((type == 0 || type == 1 || type == 2) && m_client->value(nameKey).toString().isEmpty())
        m_client->setValue(nameKey, tr("No Name"));
    fileUnderKind();

    model::StoreError error;
    if (!m_context->save(&error)) {
        SaveFailure::show(m_prompter, error);
        return false;
    }
    setEdited(false);
    if (openDocument)
        openDocument->setClient(m_client->ref());
    if (sender == Sender::Control)
        Q_EMIT closeRequested();
    return true;
}

ClientController::CloseAnswer ClientController::windowShouldClose(DocumentController* openDocument)
{
    if (!m_edited)
        return CloseAnswer::Close;
    const QString saveButton = tr("Save");
    const QString dontSave = tr("Don't Save");
    const QString answer = m_prompter.alert(
        tr("Save this client?"),
        tr("This client has not been saved and contains unsaved changes. Would you like to save now?"),
        {saveButton, dontSave, tr("Cancel")});
    if (answer == saveButton)
        return save(Sender::None, openDocument) ? CloseAnswer::Close : CloseAnswer::KeepOpen;
    if (answer == dontSave) {
        m_context->rollback();
        m_client = nullptr;
        setEdited(false);
        return CloseAnswer::Close;
    }
    return CloseAnswer::KeepOpen;
}

} // namespace corvanta::documents
