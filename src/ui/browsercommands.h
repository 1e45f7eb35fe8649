#pragma once

#include "browse/commandavailability.h"
#include "browse/listkind.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>

class QMenu;
class QWidget;

namespace corvanta::store {
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}
namespace corvanta::browse {
class RecordCommands;
class RecordMenus;
} // namespace corvanta::browse

namespace corvanta::ui {

class EditorWindows;
class RecordListView;

// The record commands of the browser, on the record selected in the list (the one the detail
// pane shows), and the lists' context menus that offer them. The rules (what a selection
// allows, the questions, what deleting, cancelling and duplicating do) are the core's.
class BrowserCommands : public QObject
{
    Q_OBJECT

public:
    // `window` is the window the menus and file choosers belong to; `editors` opens the editor
    // windows and hands documents to print, export and e-mail. Without it the commands that need
    // an editor or the document output stay disabled.
    BrowserCommands(store::Store& store, support::Prompter& prompter, RecordListView& list, QWidget* window,
                    EditorWindows* editors = nullptr);
    ~BrowserCommands() override;

    bool isEnabled(browse::RecordCommand command) const;

    // The context menu of a list kind, its commands enabled for the selection as it is now and
    // its tags and design-template submenus filled; the same menu each time, refreshed again
    // whenever it opens.
    QMenu* contextMenu(browse::ListKind kind);

public Q_SLOTS:
    // A new record of the selected one's kind (and document type) in its editor.
    void newRecord();
    // The selected record in its editor.
    void editRecord();
    // Copies the selected record and selects the copy.
    void duplicateRecord();
    void deleteRecord();
    void cancelDocument();
    // The selected document's PDF, written to a file the user names, after the same save check
    // and finalising question as from its editor.
    void saveAs();
    // The selected document's PDF in the preview window.
    void preview();
    void print();
    // The e-mail sheet for the selected document or client.
    void sendEmail();
    // The selected client or item goes to the document editor the user worked in last.
    void addToDocument();

private:
    QMenu* makeMenu(browse::ListKind kind);
    void refresh(QMenu* menu);
    void fillTags(QMenu* tags);
    void fillDesignTemplates(QMenu* templates);
    void showContextMenu(const QPoint& globalPosition);
    // The single selected record, or null when the command is not enabled.
    store::Record* target(browse::RecordCommand command) const;

    store::Store& m_store;
    support::Prompter& m_prompter;
    RecordListView& m_list;
    QPointer<QWidget> m_window;
    EditorWindows* m_editors = nullptr;
    browse::RecordCommands* m_commands = nullptr;
    browse::RecordMenus* m_menus = nullptr;
    QHash<int, QPointer<QMenu>> m_contextMenus;
};

} // namespace corvanta::ui
