#include "documentrowdelegate.h"

#include "documentrowsmodel.h"
#include "editors/documentcontroller.h"
#include "store/editingcontext.h"
#include "store/record.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCompleter>
#include <QLineEdit>
#include <QStringListModel>

namespace corvanta::ui {

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

} // namespace

DocumentRowDelegate::DocumentRowDelegate(editors::DocumentController& controller, QObject* parent)
    : QStyledItemDelegate(parent)
    , m_controller(controller)
{}

QWidget* DocumentRowDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                           const QModelIndex& index) const
{
    switch (index.column()) {
    case DocumentRowsModel::Name:
        return createNameEditor(parent);
    case DocumentRowsModel::Unit:
        return createChooser(parent, s("Units"), s("name"));
    case DocumentRowsModel::Tax:
        return createChooser(parent, s("Taxes"), s("name"));
    case DocumentRowsModel::Quantity:
    case DocumentRowsModel::Price: {
        auto* edit = new QLineEdit(parent);
        edit->setObjectName(index.column() == DocumentRowsModel::Quantity ? s("quantityEditor")
                                                                          : s("priceEditor"));
        edit->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        edit->setFrame(false);
        return edit;
    }
    default:
        return QStyledItemDelegate::createEditor(parent, option, index);
    }
}

QWidget* DocumentRowDelegate::createNameEditor(QWidget* parent) const
{
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(s("itemNameEditor"));
    edit->setFrame(false);
    // The items offered are those whose name, code or description holds the typed text, so the
    // completer shows them as they come and filters nothing itself.
    auto* names = new QStringListModel(edit);
    auto* completer = new QCompleter(names, edit);
    completer->setObjectName(s("itemCompleter"));
    completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    edit->setCompleter(completer);
    connect(edit, &QLineEdit::textEdited, edit, [this, names, completer](const QString& text) {
        QStringList found;
        if (!text.isEmpty()) {
            for (const store::Record* item : m_controller.itemSuggestions(text)) {
                const QString name = item->value(s("name")).toString();
                if (!found.contains(name))
                    found << name;
            }
        }
        names->setStringList(found);
        if (found.isEmpty())
            completer->popup()->hide();
        else
            completer->complete();
    });
    return edit;
}

QWidget* DocumentRowDelegate::createChooser(QWidget* parent, const QString& entity,
                                            const QString& nameKey) const
{
    auto* chooser = new QComboBox(parent);
    chooser->setObjectName(entity == s("Units") ? s("unitEditor") : s("taxEditor"));
    chooser->addItem(QString(), qint64(0));
    const QList<store::Record*> records = m_controller.context().fetch(
        store::FetchRequest(entity, {}, {store::SortDescriptor::localized(nameKey)}));
    for (const store::Record* record : records)
        chooser->addItem(record->value(nameKey).toString(), record->pk());
    return chooser;
}

void DocumentRowDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    if (auto* chooser = qobject_cast<QComboBox*>(editor)) {
        chooser->setCurrentIndex(std::max(0, chooser->findData(index.data(Qt::EditRole).toLongLong())));
        return;
    }
    if (auto* edit = qobject_cast<QLineEdit*>(editor)) {
        edit->setText(index.data(Qt::EditRole).toString());
        return;
    }
    QStyledItemDelegate::setEditorData(editor, index);
}

void DocumentRowDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                       const QModelIndex& index) const
{
    if (auto* chooser = qobject_cast<QComboBox*>(editor)) {
        if (chooser->currentData() != index.data(Qt::EditRole))
            model->setData(index, chooser->currentData());
        return;
    }
    if (auto* edit = qobject_cast<QLineEdit*>(editor)) {
        model->setData(index, edit->text());
        return;
    }
    QStyledItemDelegate::setModelData(editor, model, index);
}

} // namespace corvanta::ui
