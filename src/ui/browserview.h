#pragma once

#include <QWidget>

class QSettings;
class QSplitter;

namespace corvanta::store {
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

class BrowserCommands;
class DetailPane;
class EditorWindows;
class RecordListView;
class SidebarView;

// The browser: the sidebar, the list of the records its selected node selects, and the detail
// page of the selected record, side by side like a mail program's folders, list and reader.
class BrowserView : public QWidget
{
    Q_OBJECT

public:
    // `editors` opens the editor windows for the browser's commands (none: those stay disabled).
    BrowserView(store::Store& store, support::Prompter& prompter, EditorWindows* editors = nullptr,
                QWidget* parent = nullptr);
    ~BrowserView() override;

    SidebarView* sidebar() const { return m_sidebar; }
    RecordListView* recordList() const { return m_list; }
    DetailPane* detailPane() const { return m_detail; }
    BrowserCommands* commands() const { return m_commands; }

    int selectionCount() const;
    // The list kind of the record the detail page shows (3 for a document); 0 for none.
    int shownKind() const;
    // The sidebar node listed now and how many records it selects, for the tool bar.
    QString selectedNodeTitle() const;

    void saveLayout(QSettings& settings) const;
    void restoreLayout(const QSettings& settings);

Q_SIGNALS:
    // The node, the selection or the shown record changed: the commands' states follow.
    void stateChanged();

private:
    void categorySelected(store::Record* category);
    void selectionChanged();

    SidebarView* m_sidebar = nullptr;
    RecordListView* m_list = nullptr;
    DetailPane* m_detail = nullptr;
    BrowserCommands* m_commands = nullptr;
    QSplitter* m_outer = nullptr;
    QSplitter* m_inner = nullptr;
};

} // namespace corvanta::ui
