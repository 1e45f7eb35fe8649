#include "documentrowsview.h"

#include "documentrowsmodel.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <array>

namespace corvanta::ui {

namespace {

// The cells Tab stops at, in order; the unit and the total are reached with the mouse or the
// arrow keys.
constexpr std::array<int, 4> kTabColumns = {DocumentRowsModel::Name, DocumentRowsModel::Quantity,
                                            DocumentRowsModel::Price, DocumentRowsModel::Tax};

// Room above and below a row's text, enough for the chooser of a unit or a tax.
constexpr int kCellPadding = 5;

} // namespace

DocumentRowsView::DocumentRowsView(QWidget* parent)
    : QTableView(parent)
{
    setTabKeyNavigation(true);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                    QAbstractItemView::AnyKeyPressed | QAbstractItemView::SelectedClicked);
    setAlternatingRowColors(true);
    setWordWrap(false);
    // Fixed row heights: a long document opens without measuring every row.
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() + 2 * kCellPadding);
    verticalHeader()->hide();
    horizontalHeader()->setHighlightSections(false);
}

void DocumentRowsView::finishEditing()
{
    if (state() != EditingState)
        return;
    if (QWidget* editor = indexWidget(currentIndex())) {
        commitData(editor);
        QTableView::closeEditor(editor, QAbstractItemDelegate::NoHint);
    }
}

QModelIndex DocumentRowsView::moveCursor(CursorAction cursorAction, Qt::KeyboardModifiers modifiers)
{
    if ((cursorAction != MoveNext && cursorAction != MovePrevious) || !model())
        return QTableView::moveCursor(cursorAction, modifiers);
    const int rows = model()->rowCount();
    if (rows == 0)
        return {};
    const QModelIndex current = currentIndex();
    if (!current.isValid())
        return model()->index(0, kTabColumns.front());
    const int column = current.column();
    if (cursorAction == MoveNext) {
        for (int stop : kTabColumns) {
            if (stop > column)
                return model()->index(current.row(), stop);
        }
        return current.row() + 1 < rows ? model()->index(current.row() + 1, kTabColumns.front())
                                        : QModelIndex();
    }
    for (auto it = kTabColumns.rbegin(); it != kTabColumns.rend(); ++it) {
        if (*it < column)
            return model()->index(current.row(), *it);
    }
    return current.row() > 0 ? model()->index(current.row() - 1, kTabColumns.back()) : QModelIndex();
}

void DocumentRowsView::keyPressEvent(QKeyEvent* event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && state() != EditingState && event->modifiers() == Qt::NoModifier) {
        if (isOnLastRow() || !currentIndex().isValid())
            Q_EMIT returnOnLastRow();
        else
            edit(currentIndex());
        event->accept();
        return;
    }
    QTableView::keyPressEvent(event);
}

void DocumentRowsView::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint)
{
    // Return in an editor ends the edit with SubmitModelCache; Tab and Escape use other hints.
    const bool lastRow = isOnLastRow();
    QTableView::closeEditor(editor, hint);
    if (hint == QAbstractItemDelegate::SubmitModelCache && lastRow)
        Q_EMIT returnOnLastRow();
}

bool DocumentRowsView::isOnLastRow() const
{
    return model() && currentIndex().isValid() && currentIndex().row() == model()->rowCount() - 1;
}

} // namespace corvanta::ui
