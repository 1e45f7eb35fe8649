#pragma once

#include "clock.h"
#include "predicate/recordref.h"

#include <QObject>
#include <memory>

namespace corvanta::model {
class EditingContext;
class Prompter;
class Record;
class Store;
} // namespace corvanta::model

namespace corvanta::documents {

class DocumentController;

// The client editor without its window: one client in its own editing context, with its kind,
// name fields, addresses and contacts and their defaults, and the rules of its save. A saved
// client is handed to the document open in the document editor.
class ClientController : public QObject
{
    Q_OBJECT

public:
    enum class Sender { None, Control };
    enum class CloseAnswer { Close, KeepOpen };
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
    model::Record* client() const { return m_client; }
    model::EditingContext& context() { return *m_context; }

    bool isEdited() const { return m_edited; }
    void markEdited() { setEdited(true); }

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

    // Saves the client; `openDocument` is the document editor when its window is shown or
    // minimised, which then takes this client. False when the save failed.
    bool save(Sender sender, DocumentController* openDocument = nullptr);
    CloseAnswer windowShouldClose(DocumentController* openDocument = nullptr);

Q_SIGNALS:
    void editedChanged(bool edited);
    void closeRequested();

private:
    void setEdited(bool edited);
    void fileUnderKind();
    model::Record* addOwned(const QString& entity, const QString& list, const QString& defaultKey);
    void removeOwned(model::Record* record, const QString& list, const QString& defaultKey);

    model::Prompter& m_prompter;
    Clock m_clock;
    std::unique_ptr<model::EditingContext> m_context;
    model::Record* m_client = nullptr;
    bool m_edited = false;
};

} // namespace corvanta::documents
