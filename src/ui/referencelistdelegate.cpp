#include "referencelistdelegate.h"

#include "editors/referencelistmodel.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QStyleOptionComboBox>
#include <algorithm>

namespace corvanta::ui {

using editors::ReferenceListModel;

namespace {

QStringList choicesOf(const QModelIndex& index)
{
    return index.data(ReferenceListModel::ChoicesRole).toStringList();
}

bool isNumber(const QModelIndex& index)
{
    const QVariant alignment = index.data(Qt::TextAlignmentRole);
    return alignment.isValid() && (alignment.value<Qt::Alignment>() & Qt::AlignRight);
}

} // namespace

QString ReferenceListDelegate::readableChoice(const QString& key, const QString& value)
{
    if (key == QLatin1String("symbol_format")) {
        if (value == QLatin1String("l"))
            return tr("Before Amount");
        if (value == QLatin1String("ls"))
            return tr("Before Amount, Spaced");
        if (value == QLatin1String("r"))
            return tr("After Amount");
        if (value == QLatin1String("sr"))
            return tr("After Amount, Spaced");
        if (value == QLatin1String("code"))
            return tr("Code After Amount");
        return tr("None");
    }
    if (value == QLatin1String("."))
        return tr("Period");
    if (value == QLatin1String(","))
        return tr("Comma");
    if (value == QLatin1String("'"))
        return tr("Apostrophe");
    if (value == QLatin1String("none"))
        return tr("None");
    if (!value.isEmpty() && value.trimmed().isEmpty())
        return tr("Space");
    // A mark of the system's own, such as the Arabic decimal separator, shows as itself.
    return value;
}

QWidget* ReferenceListDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                             const QModelIndex& index) const
{
    const QStringList choices = choicesOf(index);
    const QString key = index.data(ReferenceListModel::KeyRole).toString();
    if (!choices.isEmpty()) {
        auto* chooser = new QComboBox(parent);
        chooser->setObjectName(key + QStringLiteral("Editor"));
        for (const QString& choice : choices)
            chooser->addItem(readableChoice(key, choice), choice);
        // The choice is taken as soon as it is made, not only when the cell is left.
        connect(chooser, &QComboBox::activated, this,
                [this, chooser] { Q_EMIT const_cast<ReferenceListDelegate*>(this)->commitData(chooser); });
        return chooser;
    }
    QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
    editor->setObjectName(key + QStringLiteral("Editor"));
    if (auto* edit = qobject_cast<QLineEdit*>(editor); edit && isNumber(index))
        edit->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return editor;
}

void ReferenceListDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    if (auto* chooser = qobject_cast<QComboBox*>(editor)) {
        const QString value = index.data(Qt::EditRole).toString();
        int at = chooser->findData(value);
        if (at < 0) {
            // A value outside the set, as the system gave it, stays choosable.
            chooser->insertItem(0, readableChoice(index.data(ReferenceListModel::KeyRole).toString(), value),
                                value);
            at = 0;
        }
        chooser->setCurrentIndex(at);
        return;
    }
    if (auto* edit = qobject_cast<QLineEdit*>(editor); edit && isNumber(index)) {
        // Numbers are typed as they are shown, in the default currency's style.
        edit->setText(index.data(Qt::DisplayRole).toString());
        return;
    }
    QStyledItemDelegate::setEditorData(editor, index);
}

void ReferenceListDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                         const QModelIndex& index) const
{
    if (auto* chooser = qobject_cast<QComboBox*>(editor)) {
        if (chooser->currentData() != index.data(Qt::EditRole))
            model->setData(index, chooser->currentData());
        return;
    }
    if (auto* edit = qobject_cast<QLineEdit*>(editor); edit && isNumber(index)) {
        if (edit->isModified())
            model->setData(index, edit->text());
        return;
    }
    QStyledItemDelegate::setModelData(editor, model, index);
}

QSize ReferenceListDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QSize hint = QStyledItemDelegate::sizeHint(option, index);
    const QStringList choices = choicesOf(index);
    if (choices.isEmpty())
        return hint;
    const QString key = index.data(ReferenceListModel::KeyRole).toString();
    int widest = 0;
    for (const QString& choice : choices)
        widest = std::max(widest, option.fontMetrics.horizontalAdvance(readableChoice(key, choice)));
    QStyleOptionComboBox box;
    box.initFrom(option.widget);
    const QStyle* style = option.widget ? option.widget->style() : QApplication::style();
    const QSize content(widest, option.fontMetrics.height());
    return hint.expandedTo(style->sizeFromContents(QStyle::CT_ComboBox, &box, content, option.widget));
}

void ReferenceListDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (!choicesOf(index).isEmpty())
        option->text = readableChoice(index.data(ReferenceListModel::KeyRole).toString(), option->text);
}

} // namespace corvanta::ui
