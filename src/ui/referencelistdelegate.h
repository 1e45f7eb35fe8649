#pragma once

#include <QStyledItemDelegate>

namespace corvanta::ui {

// The cell editors of a reference list: a pop-up with readable names for the columns that offer
// a fixed set of values (a currency's symbol placement and separators), right-aligned fields for
// numbers, which start from the number as the list shows it, and plain fields for texts.
class ReferenceListDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    // How a value of a fixed set reads: "sr" as "After Amount, Spaced", " " as "Space".
    static QString readableChoice(const QString& key, const QString& value);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
    // A column with a pop-up is as wide as the pop-up showing its longest name.
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace corvanta::ui
