#include "recordeditor.h"

#include "model/editingcontext.h"
#include "model/prompter.h"
#include "model/store.h"
#include "predicate/parser.h"
#include "savefailure.h"

namespace corvanta::documents {

RecordEditor::RecordEditor(model::Store& store, model::Prompter& prompter, Clock clock, const QString& entity,
                           const CloseQuestion& question, QObject* parent)
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

model::Record* RecordEditor::editNew(const QVariantMap& values)
{
    m_context->rollback();
    m_record = m_context->insertRecord(m_entity, values);
    setEdited(false);
    return m_record;
}

model::Record* RecordEditor::editStored(const predicate::RecordRef& ref)
{
    m_context->rollback();
    m_record = m_context->fetchFirst(model::FetchRequest(
        m_entity, *predicate::Parser::parse(QStringLiteral("self == %@"), {QVariant::fromValue(ref)})));
    setEdited(false);
    return m_record;
}

bool RecordEditor::save(Sender sender, DocumentController* openDocument)
{
    if (!m_record)
        return false;
    prepareSave();
    model::StoreError error;
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

} // namespace corvanta::documents
