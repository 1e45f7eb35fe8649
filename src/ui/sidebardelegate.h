#pragma once

#include <QIcon>
#include <QStyledItemDelegate>

namespace corvanta::ui {

// Draws the rows of the sidebar's tree: groups as small headings with a little room above them,
// folders and smart folders with their icons, tags as their coloured labels, and each node's
// count right-aligned in a rounded badge. A name too long for the row is elided and shown whole
// in a tool tip. Only group rows are edited in place (their names); the line edit sits where
// the name is drawn.
class SidebarDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit SidebarDelegate(QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

    // Whether the row's name does not fit and is drawn elided.
    bool isElided(const QStyleOptionViewItem& option, const QModelIndex& index) const;

private:
    struct Layout
    {
        QRect content; // the row without the room above a group
        QRect icon;
        QRect name;  // the name's text, or the whole tag label
        QRect badge; // empty when the node counts nothing
        QString count;
        QString shownName; // elided to fit
        bool elided = false;
    };

    Layout layoutOf(const QStyleOptionViewItem& option, const QModelIndex& index) const;

    QIcon m_folderIcon;
    QIcon m_smartFolderIcon;
};

} // namespace corvanta::ui
