#include "recordeditor.h"

#include "documents/savefailure.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "support/prompter.h"

namespace corvanta::editors {

using documents::Clock;
using documents::SaveFailure;

RecordEditor::RecordEditor(store::Store& store, support::Prompter& prompter, Clock clock,
                           const QString& entity, const CloseQuestion& question, QObject* parent)
    : QObject(parent)
    , m_prompter(prompter)
    , m_clock(std::move(clock))
    , m_context(store.newContext())
    , m_entity(entity)
    , m_question(question)
{}

RecordEditor::~RecordEditor() = default;

void RecordEditor::setEdited(bool edited)
{
    if (m_edited == edited)
        return;
    m_edited = edited;
    Q_EMIT editedChanged(edited);
}

store::Record* RecordEditor::editNew(const QVariantMap& values)
{
    m_context->rollback();
    m_record = m_context->insertRecord(m_entity, values);
    setEdited(false);
    return m_record;
}

store::Record* RecordEditor::editStored(const predicate::RecordRef& ref)
{
    m_context->rollback();
    m_record = m_context->fetchRecord(m_entity, ref);
    setEdited(false);
    return m_record;
}

bool RecordEditor::save(Sender sender, DocumentController* openDocument)
{
    if (!m_record)
        return false;
    prepareSave();
    store::StoreError error;
    if (!m_context->save(&error)) {
        SaveFailure::show(m_prompter, error);
        return false;
    }
    setEdited(false);
    if (openDocument)
        handOver(*openDocument);
    if (sender == Sender::Control)
        Q_EMIT closeRequested();
    return true;
}

RecordEditor::CloseAnswer RecordEditor::windowShouldClose(DocumentController* openDocument)
{
    if (!m_edited)
        return CloseAnswer::Close;
    const QString saveButton = tr("Save");
    const QString dontSave = tr("Don't Save");
    const QString answer =
        m_prompter.alert(m_question.title, m_question.text, {saveButton, dontSave, tr("Cancel")});
    if (answer == saveButton)
        return save(Sender::None, openDocument) ? CloseAnswer::Close : CloseAnswer::KeepOpen;
    if (answer == dontSave) {
        m_context->rollback();
        m_record = nullptr;
        setEdited(false);
        return CloseAnswer::Close;
    }
    return CloseAnswer::KeepOpen;
}

} // namespace corvanta::editors
