#include "customfieldsmodel.h"

#include "documents/customfields.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "support/prompter.h"

namespace corvanta::editors {

using documents::CustomFields;
using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

CustomFieldsModel::CustomFieldsModel(store::EditingContext& context, const QString& prefix,
                                     support::Prompter& prompter, QObject* parent)
    : QAbstractTableModel(parent)
    , m_context(context)
    , m_prompter(prompter)
    // Every definition: one whose label was emptied is listed too, to be named again.
    , m_fields(context.fetch(store::FetchRequest(s("Compose"),
                                                 predicate::literal("name beginswith[c] %@", {prefix}),
                                                 {store::SortDescriptor{s("name")}})))
{}

int CustomFieldsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_fields.size());
}

int CustomFieldsModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

Record* CustomFieldsModel::fieldAt(int row) const
{
    return row >= 0 && row < m_fields.size() ? m_fields.at(row) : nullptr;
}

QVariant CustomFieldsModel::data(const QModelIndex& index, int role) const
{
    const Record* field = index.isValid() ? fieldAt(index.row()) : nullptr;
    if (!field || field->isDeleted())
        return {};
    const QString name = field->value(s("name")).toString();
    if (index.column() == Field && (role == Qt::DisplayRole || role == Qt::ToolTipRole))
        return role == Qt::DisplayRole ? CustomFields::readableName(name) : name;
    if (index.column() == Label) {
        if (role == Qt::DisplayRole)
            return CustomFields::displayName(field);
        if (role == Qt::EditRole)
            return field->value(s("label")).toString();
    }
    return {};
}

bool CustomFieldsModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    Record* field = index.isValid() ? fieldAt(index.row()) : nullptr;
    if (!field || index.column() != Label || role != Qt::EditRole)
        return false;
    const QString label = value.toString().trimmed();
    if (label == field->value(s("label")).toString())
        return true;
    field->setValue(s("label"), label.isEmpty() ? QVariant() : QVariant(label));
    store::StoreError error;
    if (!m_context.save(&error)) {
        m_context.rollback();
        m_prompter.alert(tr("The label could not be saved"), error.message(), {tr("OK")});
        Q_EMIT dataChanged(index, index);
        return false;
    }
    Q_EMIT dataChanged(index, index);
    return true;
}

Qt::ItemFlags CustomFieldsModel::flags(const QModelIndex& index) const
{
    if (!index.isValid() || !fieldAt(index.row()))
        return Qt::NoItemFlags;
    const Qt::ItemFlags base = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    return index.column() == Label ? base | Qt::ItemIsEditable : base;
}

QVariant CustomFieldsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return section == Field ? tr("Field") : tr("Label");
    return QAbstractTableModel::headerData(section, orientation, role);
}

} // namespace corvanta::editors
