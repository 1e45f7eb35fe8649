#pragma once

#include "recordeditor.h"

namespace corvanta::editors {

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

    ClientController(store::Store& store, support::Prompter& prompter,
                     documents::Clock clock = documents::systemClock(), QObject* parent = nullptr);
    ~ClientController() override;

    // A new client of `type` (0 company, 1 supplier, 2 individual).
    store::Record* newClient(qint64 type);
    // The stored client in this editor's context, or null.
    store::Record* openClient(const predicate::RecordRef& client);
    store::Record* client() const { return m_record; }

    // The kind was chosen: from a control, every name field and the tax number are emptied.
    void typeChanged(qint64 type, Sender sender);
    NameFields nameFields() const;

    // The first address or contact becomes the default; removing the default makes the first
    // one left the default.
    store::Record* addAddress();
    void removeAddress(store::Record* address);
    void defaultAddressChanged(store::Record* address);
    store::Record* addContact();
    void removeContact(store::Record* contact);
    void defaultContactChanged(store::Record* contact);

protected:
    void prepareSave() override;
    void handOver(DocumentController& openDocument) override;

private:
    void fileUnderKind();
    store::Record* addOwned(const QString& entity, const QString& list, const QString& defaultKey);
    void removeOwned(store::Record* record, const QString& list, const QString& defaultKey);
};

} // namespace corvanta::editors
