#pragma once

#include <QStyledItemDelegate>

namespace corvanta::editors {
class DocumentController;
}

namespace corvanta::ui {

// The editors of a document row's cells: the item name with completion from the items, numbers
// right-aligned, and the unit and tax chosen from their lists (with an empty choice for none).
class DocumentRowDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit DocumentRowDelegate(editors::DocumentController& controller, QObject* parent = nullptr);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

private:
    QWidget* createNameEditor(QWidget* parent) const;
    QWidget* createChooser(QWidget* parent, const QString& entity, const QString& nameKey) const;

    editors::DocumentController& m_controller;
};

} // namespace corvanta::ui
