#include "openeditors.h"

#include <QWidget>

namespace corvanta::ui {

OpenEditors::OpenEditors(QObject* parent)
    : QObject(parent)
{}

void OpenEditors::addDocumentEditor(QWidget* window, editors::DocumentController* controller)
{
    m_documents.prepend({window, controller});
    connect(window, &QObject::destroyed, this, [this] {
        m_documents.removeIf([](const Entry& entry) { return entry.window.isNull(); });
        Q_EMIT documentEditorsChanged();
    });
    Q_EMIT documentEditorsChanged();
}

void OpenEditors::documentEditorActivated(QWidget* window)
{
    for (qsizetype i = 0; i < m_documents.size(); ++i) {
        if (m_documents.at(i).window == window) {
            m_documents.move(i, 0);
            return;
        }
    }
}

const OpenEditors::Entry* OpenEditors::shownEntry() const
{
    for (const Entry& entry : m_documents) {
        // A minimised window is still visible to Qt; a closed (hidden) one is not.
        if (entry.window && (entry.window->isVisible() || entry.window->isMinimized()))
            return &entry;
    }
    return nullptr;
}

editors::DocumentController* OpenEditors::documentEditor() const
{
    const Entry* entry = shownEntry();
    return entry ? entry->controller : nullptr;
}

QWidget* OpenEditors::documentEditorWindow() const
{
    const Entry* entry = shownEntry();
    return entry ? entry->window.data() : nullptr;
}

} // namespace corvanta::ui
