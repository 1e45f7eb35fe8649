#pragma once

#include "browse/tagchoices.h"

#include <QWidget>

class QLabel;
class QListWidget;
class QListWidgetItem;

namespace corvanta::store {
class Record;
}

namespace corvanta::ui {

// The list of the user's tags for one record, opened under the editor's Tags button: each tag
// drawn as its label with a check box, ticked when the record carries it. Ticking or unticking
// (a click on the row, or Space on the current row) changes only that tag among the record's
// tags, in the editor's own context; system tags are never listed and stay as they are.
class TagsPopover : public QWidget
{
    Q_OBJECT

public:
    explicit TagsPopover(store::Record* record, QWidget* parent = nullptr);

    // Lists the tags afresh and opens the popover below `button` (above it when the screen
    // has no room below), with the keyboard on the first tag.
    void showUnder(QWidget* button);

    // The tags listed, in order, and whether each is ticked.
    QList<browse::TagChoices::Row> rows() const;
    // Ticks or unticks the tag of `row`, as a click on it does.
    void toggleRow(int row);

Q_SIGNALS:
    void tagsChanged();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void reload();
    void itemChanged(QListWidgetItem* item);

    browse::TagChoices m_choices;
    QList<browse::TagChoices::Row> m_rows;
    QListWidget* m_list = nullptr;
    QLabel* m_emptyLabel = nullptr;
    bool m_reloading = false;
};

} // namespace corvanta::ui
