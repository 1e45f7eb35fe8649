#pragma once

#include <QTableView>

namespace corvanta::ui {

// The table of a document's rows, made for typing: Tab and Backtab walk the item name,
// quantity, price and tax of each row and go on to the next row; Return on the last row asks
// for a new row.
class DocumentRowsView : public QTableView
{
    Q_OBJECT

public:
    explicit DocumentRowsView(QWidget* parent = nullptr);

    // Ends the edit in progress, keeping what was typed.
    void finishEditing();

Q_SIGNALS:
    // Return was pressed on the last row, or an edit of it was ended with Return.
    void returnOnLastRow();

protected:
    QModelIndex moveCursor(CursorAction cursorAction, Qt::KeyboardModifiers modifiers) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;

private:
    bool isOnLastRow() const;
};

} // namespace corvanta::ui
