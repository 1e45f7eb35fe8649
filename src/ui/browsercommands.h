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

class RecordListView;

// The record commands of the browser, on the record selected in the list (the one the detail
// pane shows), and the lists' context menus that offer them. The rules (what a selection
// allows, the questions, what deleting, cancelling and duplicating do) are the core's.
class BrowserCommands : public QObject
{
    Q_OBJECT

public:
    // `window` is the window the menus and file choosers belong to.
    BrowserCommands(store::Store& store, support::Prompter& prompter, RecordListView& list, QWidget* window);
    ~BrowserCommands() override;

    bool isEnabled(browse::RecordCommand command) const;

    // The context menu of a list kind, its commands enabled for the selection as it is now and
    // its tags and design-template submenus filled; the same menu each time, refreshed again
    // whenever it opens.
    QMenu* contextMenu(browse::ListKind kind);

public Q_SLOTS:
    // Copies the selected record and selects the copy.
    void duplicateRecord();
    void deleteRecord();
    void cancelDocument();
    // The selected document's PDF, written to a file the user names.
    void saveAs();
    // The selected document's PDF, opened in the desktop's PDF viewer.
    void preview();

private:
    QMenu* makeMenu(browse::ListKind kind);
    void refresh(QMenu* menu);
    void fillTags(QMenu* tags);
    void fillDesignTemplates(QMenu* templates);
    void showContextMenu(const QPoint& globalPosition);
    // The single selected record, or null when the command is not enabled.
    store::Record* target(browse::RecordCommand command) const;
    // Renders the document with its own template to `path`; false after telling the user why.
    bool writePdf(store::Record* document, const QString& path, const QString& title);
    QString databaseFolder(const QString& name) const;

    store::Store& m_store;
    support::Prompter& m_prompter;
    RecordListView& m_list;
    QPointer<QWidget> m_window;
    browse::RecordCommands* m_commands = nullptr;
    browse::RecordMenus* m_menus = nullptr;
    QHash<int, QPointer<QMenu>> m_contextMenus;
};

} // namespace corvanta::ui
