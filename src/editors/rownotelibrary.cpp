#include "rownotelibrary.h"

#include "documents/savefailure.h"
#include "store/editingcontext.h"
#include "store/store.h"

namespace corvanta::editors {

using documents::SaveFailure;

using store::FetchRequest;
using store::Record;
using store::SortDescriptor;

RowNoteLibrary::RowNoteLibrary(store::Store& store, support::Prompter& prompter)
    : m_context(store.newContext())
    , m_prompter(prompter)
{}

RowNoteLibrary::~RowNoteLibrary() = default;

QString RowNoteLibrary::menuTitle(const QString& note)
{
    QString title = note;
    title.replace(QLatin1String("\r\n"), QLatin1String(" "));
    title.replace(QLatin1Char('\n'), QLatin1Char(' '));
    title.replace(QLatin1Char('\r'), QLatin1Char(' '));
    if (title.size() >= 51)
        return QStringLiteral("%1...").arg(title.left(50));
    return title;
}

QList<RowNoteLibrary::Entry> RowNoteLibrary::entries()
{
    // Notes changed elsewhere since the last look are read afresh.
    m_context->reset();
    const QList<Record*> notes = m_context->fetch(FetchRequest(
        QStringLiteral("DocumentRowNotes"), {}, {SortDescriptor::localized(QStringLiteral("note"))}));
    QList<Entry> result;
    for (const Record* note : notes) {
        const QString text = note->value(QStringLiteral("note")).toString();
        result.append({menuTitle(text), text, note->pk()});
    }
    return result;
}

bool RowNoteLibrary::add(const QString& text)
{
    m_context->insertRecord(QStringLiteral("DocumentRowNotes"), {{QStringLiteral("note"), text}});
    return save();
}

bool RowNoteLibrary::remove(const Entry& entry)
{
    const QString entity = QStringLiteral("DocumentRowNotes");
    Record* note = m_context->fetchRecord(entity, {entity, entry.pk});
    if (!note)
        return true;
    m_context->deleteRecord(note);
    return save();
}

bool RowNoteLibrary::save()
{
    return SaveFailure::save(*m_context, m_prompter);
}

} // namespace corvanta::editors
