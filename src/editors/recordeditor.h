#pragma once

#include "documents/clock.h"
#include "predicate/recordref.h"

#include <QObject>
#include <QVariantMap>
#include <memory>

namespace corvanta::store {
class EditingContext;
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::editors {

class DocumentController;

// What the client and item editors share: one record in an editing context of its own, the
// edited flag, and the save and the close question around the record's own rules. A saved
// record is handed to the document open in the document editor.
class RecordEditor : public QObject
{
    Q_OBJECT

public:
    // Who runs a command: the editor's own control, or nobody (another command on its way).
    enum class Sender { None, Control };
    enum class CloseAnswer { Close, KeepOpen };

    ~RecordEditor() override;

    store::EditingContext& context() { return *m_context; }
    bool isEdited() const { return m_edited; }
    void markEdited() { setEdited(true); }

    // Saves the record; `openDocument` is the document editor when its window is shown or
    // minimised, which then takes the record. False when the save failed; a save from the
    // editor's own control closes the editor.
    bool save(Sender sender, DocumentController* openDocument = nullptr);
    // Asks whether to save unsaved changes: saving, forgetting them, or keeping the window.
    CloseAnswer windowShouldClose(DocumentController* openDocument = nullptr);

Q_SIGNALS:
    void editedChanged(bool edited);
    void closeRequested();

protected:
    // The close question's title and text, such as "Save this client?".
    struct CloseQuestion
    {
        QString title;
        QString text;
    };

    RecordEditor(store::Store& store, support::Prompter& prompter, documents::Clock clock,
                 const QString& entity, const CloseQuestion& question, QObject* parent);

    // Forgets what was edited and starts on a new record with `values`, or on a stored one.
    store::Record* editNew(const QVariantMap& values);
    store::Record* editStored(const predicate::RecordRef& ref);
    void setEdited(bool edited);

    // The record's own rules, applied just before it is written.
    virtual void prepareSave() = 0;
    // Gives the saved record to the open document.
    virtual void handOver(DocumentController& openDocument) = 0;

    support::Prompter& m_prompter;
    documents::Clock m_clock;
    std::unique_ptr<store::EditingContext> m_context;
    store::Record* m_record = nullptr;

private:
    QString m_entity;
    CloseQuestion m_question;
    bool m_edited = false;
};

} // namespace corvanta::editors
