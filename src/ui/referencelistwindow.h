#pragma once

#include "editors/referencelist.h"

#include <QWidget>
#include <memory>

class QTableView;
class QToolButton;

namespace corvanta::editors {
class ReferenceListEditor;
class ReferenceListModel;
} // namespace corvanta::editors
namespace corvanta::store {
class EditingContext;
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

// The window of one reference list (taxes, units, banks, due days, payment types, currencies):
// a table edited in place, with the company's default ticked per row, and "+", "-" and copy
// buttons under it. Every change is committed at once by the list's editor, in a context of
// the window's own; open document editors take the change from the store.
class ReferenceListWindow : public QWidget
{
    Q_OBJECT

public:
    ReferenceListWindow(editors::ReferenceListType type, store::Store& store, support::Prompter& prompter,
                        QWidget* parent = nullptr);
    ~ReferenceListWindow() override;

    // "ReferenceListWindow_Taxes" and so on: the window's objectName, also the key of its geometry.
    static QString objectNameFor(editors::ReferenceListType type);
    static QString titleFor(editors::ReferenceListType type);

    editors::ReferenceListType type() const;
    editors::ReferenceListEditor& editor() const { return *m_editor; }
    editors::ReferenceListModel& model() const { return *m_model; }
    QTableView* view() const { return m_view; }
    // The selected record, or null.
    store::Record* selectedRecord() const;
    // Selects a record's row; false when it is not listed.
    bool selectRecord(const store::Record* record);

public Q_SLOTS:
    // A new record, selected and opened for editing in its naming cell.
    void addRow();
    // Opens the selected record's naming cell for editing.
    void editRow();
    // A copy of the selected record, selected and opened for editing.
    void duplicateRow();
    // Deletes the selected record unless it is in use or the company's default.
    void deleteRow();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void editNaming(const store::Record* record);
    void selectionChanged();

    std::unique_ptr<store::EditingContext> m_context;
    std::unique_ptr<editors::ReferenceListEditor> m_editor;
    editors::ReferenceListModel* m_model = nullptr;
    QTableView* m_view = nullptr;
    QToolButton* m_addButton = nullptr;
    QToolButton* m_removeButton = nullptr;
    QToolButton* m_duplicateButton = nullptr;
};

} // namespace corvanta::ui
