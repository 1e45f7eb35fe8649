#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

class QWidget;

namespace corvanta::editors {
class DocumentController;
}

namespace corvanta::ui {

// The document editor windows that are open. A client or item saved in its own editor goes to
// the document of the one the user worked in last, as long as its window is shown or minimised.
class OpenEditors : public QObject
{
    Q_OBJECT

public:
    explicit OpenEditors(QObject* parent = nullptr);

    // Registers a document editor window; it leaves the list when it is destroyed.
    void addDocumentEditor(QWidget* window, editors::DocumentController* controller);
    // Moves the window to the front of the list; call it when the window becomes active.
    void documentEditorActivated(QWidget* window);
    // The controller of the most recently active document editor whose window is visible or
    // minimised, or null.
    editors::DocumentController* documentEditor() const;
    // That editor's window, or null.
    QWidget* documentEditorWindow() const;

Q_SIGNALS:
    void documentEditorsChanged();

private:
    struct Entry
    {
        QPointer<QWidget> window;
        editors::DocumentController* controller = nullptr;
    };
    const Entry* shownEntry() const;

    QList<Entry> m_documents; // most recently active first
};

} // namespace corvanta::ui
