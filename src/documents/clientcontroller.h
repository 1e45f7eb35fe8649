#pragma once

#include "recordeditor.h"

namespace corvanta::documents {

// The client editor without its window: one client in its own editing context, with its kind,
// name fields, addresses and contacts and their defaults, and the rules of its save. A saved
// client is handed to the document open in the document editor.
class ClientController : public RecordEditor
{
    Q_OBJECT

public:
    // The two name fields of the window for the client's kind.
    struct NameFields
    {
        QString firstLabel;
        QString firstKey;
        QString secondLabel;
        QString secondKey;
    };

    ClientController(model::Store& store, model::Prompter& prompter, Clock clock = systemClock(),
                     QObject* parent = nullptr);
    ~ClientController() override;

    // A new client of `type` (0 company, 1 supplier, 2 individual).
    model::Record* newClient(qint64 type);
    // The stored client in this editor's context, or null.
    model::Record* openClient(const predicate::RecordRef& client);
    model::Record* client() const { return m_record; }

    // The kind was chosen: from a control, every name field and the tax number are emptied.
    void typeChanged(qint64 type, Sender sender);
    NameFields nameFields() const;

    // The first address or contact becomes the default; removing the default makes the first
    // one left the default.
    model::Record* addAddress();
    void removeAddress(model::Record* address);
    void defaultAddressChanged(model::Record* address);
    model::Record* addContact();
    void removeContact(model::Record* contact);
    void defaultContactChanged(model::Record* contact);

protected:
    void prepareSave() override;
    void handOver(DocumentController& openDocument) override;

private:
    void fileUnderKind();
    model::Record* addOwned(const QString& entity, const QString& list, const QString& defaultKey);
    void removeOwned(model::Record* record, const QString& list, const QString& defaultKey);
};

} // namespace corvanta::documents
