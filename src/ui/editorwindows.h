#pragma once

#include "browse/listkind.h"
#include "predicate/recordref.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>

class QWidget;

namespace corvanta::store {
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

class DocumentEditorWindow;
class DocumentOutputs;
class OpenEditors;
class SoundPlayer;

// Opens the editor windows: a new record of a kind, a stored record (the window already open for
// it comes to the front instead of a second one), and the browser's hand-overs to the document
// editor. Owns what the editors share: the list of open document editors, the document output
// (preview, print, export, e-mail) and the sounds.
class EditorWindows : public QObject
{
    Q_OBJECT

public:
    // `mainWindow` is the parent of the file and print dialogs that belong to no editor.
    EditorWindows(store::Store& store, support::Prompter& prompter, QWidget* mainWindow);
    ~EditorWindows() override;

    OpenEditors& openEditors() { return *m_openEditors; }
    DocumentOutputs& outputs() { return *m_outputs; }

    // A new record of `kind` in its editor; for documents `type` is the document type, for
    // clients and items their kind. Null when the editor could not start.
    QWidget* newEditor(browse::ListKind kind, qint64 type = 0);
    // The editor of a stored client, item, document or to-do.
    QWidget* editRecord(const predicate::RecordRef& record);
    // The item editor of a stored item, showing its stock.
    QWidget* showWarehouse(const predicate::RecordRef& item);

    // A client or item of the browser goes to the document editor the user worked in last; a
    // new invoice is opened for it when no document editor is shown.
    bool addToDocument(const predicate::RecordRef& record);
    // A stored document printed, exported or e-mailed as its editor would: the save check, the
    // finalising question and the save come first. An editor open for it hands over its own state.
    bool printDocument(const predicate::RecordRef& document);
    bool saveDocumentAs(const predicate::RecordRef& document);
    // The e-mail sheet for a document (as above) or a client.
    bool sendEmail(const predicate::RecordRef& record);
    // The payments of a document, in a sheet over `parent`.
    void showDocumentPayments(const predicate::RecordRef& document, QWidget* parent);

    // The editor windows open now.
    QList<QWidget*> windows() const;

private:
    struct Entry
    {
        QPointer<QWidget> window;
        std::function<predicate::RecordRef()> record;
    };

    DocumentEditorWindow* newDocumentEditor(qint64 type);
    QWidget* track(QWidget* window, std::function<predicate::RecordRef()> record);
    QWidget* openFor(const predicate::RecordRef& record) const;
    static QWidget* show(QWidget* window);
    enum class HandOver { Print, SaveAs, Email };
    bool throughController(const predicate::RecordRef& document, HandOver command);
    // The preview of an open document editor follows its edits.
    void followInPreview(DocumentEditorWindow* window);

    store::Store& m_store;
    support::Prompter& m_prompter;
    QPointer<QWidget> m_mainWindow;
    OpenEditors* m_openEditors = nullptr;
    std::unique_ptr<DocumentOutputs> m_outputs;
    SoundPlayer* m_sounds = nullptr;
    QList<Entry> m_windows;
};

} // namespace corvanta::ui
