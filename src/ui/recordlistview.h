#pragma once

#include "browse/listkind.h"
#include "predicate/recordref.h"

#include <QList>
#include <QWidget>

class QLabel;
class QMenu;
class QTableView;
class QToolButton;

namespace corvanta::store {
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}
namespace corvanta::browse {
class RecordListModel;
}

namespace corvanta::ui {

// The records of the node chosen in the sidebar, as a table with its sort button above it.
// Rows come a page at a time from the model as the table scrolls. The selection survives the
// model reading its rows again after a save (a record that is gone drops out of it); it is
// cleared when another node is listed.
class RecordListView : public QWidget
{
    Q_OBJECT

public:
    RecordListView(store::Store& store, support::Prompter& prompter, QWidget* parent = nullptr);
    ~RecordListView() override;

    // Lists what the category selects; null or a group heading empties the list.
    void setCategory(store::Record* category);
    browse::ListKind kind() const;
    // The selected records in the table's order.
    QList<store::Record*> selectedRecords() const;
    // Selects the record alone and scrolls to it, reading further pages until it is found. False
    // when the list does not hold it.
    bool selectRecord(const predicate::RecordRef& record);

    QTableView* table() const { return m_table; }
    browse::RecordListModel* model() const { return m_model; }
    QToolButton* sortButton() const { return m_sortButton; }

Q_SIGNALS:
    // The selected records changed.
    void selectionChanged();
    // A right click on a row (selected alone by now), or the keyboard's menu key on the
    // selection: the kind's context menu belongs at `globalPosition`.
    void contextMenuRequested(const QPoint& globalPosition);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fillSortMenu();
    void sortChosen(int tag);
    void updateSortButton();
    void modelAboutToBeReset();
    void modelWasReset();
    void tableSelectionChanged();
    void contextMenuAt(const QPoint& position);
    void sizeColumns();
    bool showElidedText(const QPoint& position, const QPoint& globalPosition);
    QList<predicate::RecordRef> selectedRefs() const;

    browse::RecordListModel* m_model = nullptr;
    QTableView* m_table = nullptr;
    QToolButton* m_sortButton = nullptr;
    QLabel* m_sortLabel = nullptr;
    QMenu* m_sortMenu = nullptr;
    // The selection held across the model's reset, and whether it is kept at all.
    QList<predicate::RecordRef> m_heldSelection;
    bool m_resetting = false;
    bool m_keepSelection = true;
    browse::ListKind m_sizedKind = browse::ListKind::None;
    bool m_sizedWithRows = false;
};

} // namespace corvanta::ui
