#include "referencelistmodel.h"

#include "defaultvaluetransformer.h"
#include "model/companyrecord.h"
#include "referencelisteditor.h"
#include "store/record.h"

#include <QHash>
#include <QSet>

namespace corvanta::editors {

using model::CompanyRecord;

using store::Record;
using Kind = ReferenceListColumn::Kind;

ReferenceListModel::ReferenceListModel(ReferenceListEditor& editor, QObject* parent)
    : QAbstractTableModel(parent)
    , m_editor(editor)
{
    connect(&editor, &ReferenceListEditor::listChanged, this, &ReferenceListModel::refresh);
    refresh();
}

int ReferenceListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int ReferenceListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_editor.list().columns().size());
}

Record* ReferenceListModel::recordAt(int row) const
{
    return row >= 0 && row < m_rows.size() ? m_rows.at(row) : nullptr;
}

QModelIndex ReferenceListModel::indexOf(const Record* record, int column) const
{
    const qsizetype row = m_rows.indexOf(record);
    return row < 0 ? QModelIndex() : index(int(row), column);
}

int ReferenceListModel::namingColumn() const
{
    const QList<ReferenceListColumn>& columns = m_editor.list().columns();
    for (qsizetype i = 0; i < columns.size(); ++i) {
        if (columns.at(i).key == m_editor.list().namingKey())
            return int(i);
    }
    return 0;
}

bool ReferenceListModel::isListed(const QModelIndex& index) const
{
    // Views ask about the invalid index too; that is no misuse.
    return index.isValid() && checkIndex(index, CheckIndexOption::ParentIsInvalid);
}

QVariant ReferenceListModel::checkState(const Record* record, int column) const
{
    const ReferenceListColumn& c = m_editor.list().columns().at(column);
    bool on = false;
    switch (c.kind) {
    case Kind::Check:
        on = record->value(c.key).toBool();
        break;
    case Kind::BusinessDays:
        on = record->value(c.key).toLongLong() != 0;
        break;
    case Kind::Default:
        on = record == m_default;
        break;
    default:
        return {};
    }
    return on ? Qt::Checked : Qt::Unchecked;
}

QVariant ReferenceListModel::data(const QModelIndex& index, int role) const
{
    if (!isListed(index))
        return {};
    const Record* record = m_rows.at(index.row());
    const ReferenceListColumn& column = m_editor.list().columns().at(index.column());
    if (role == RecordRole)
        return QVariant::fromValue(const_cast<Record*>(record));
    if (role == KeyRole)
        return column.key;
    if (record->isDeleted())
        return {};
    if (role == ChoicesRole) {
        if (column.key == QLatin1String("symbol_format"))
            return QStringList{QStringLiteral("l"),  QStringLiteral("ls"),   QStringLiteral("r"),
                               QStringLiteral("sr"), QStringLiteral("code"), QStringLiteral("no")};
        if (column.key == QLatin1String("grouping_separator"))
            return QStringList{QStringLiteral("."), QStringLiteral(","), QStringLiteral(" "),
                               QStringLiteral("'"), QStringLiteral("none")};
        if (column.key == QLatin1String("decimal_separator"))
            return QStringList{QStringLiteral("."), QStringLiteral(",")};
        return {};
    }
    if (role == Qt::CheckStateRole)
        return checkState(record, index.column());

    switch (column.kind) {
    case Kind::Text:
    case Kind::Computed:
        if (role == Qt::DisplayRole || role == Qt::EditRole)
            return record->value(column.key).toString();
        break;
    case Kind::Decimal:
        if (role == Qt::DisplayRole)
            return m_numbers->stringForObjectValue(record->value(column.key));
        if (role == Qt::EditRole)
            return record->value(column.key);
        break;
    case Kind::Integer: {
        const QVariant value = record->value(column.key);
        if (role == Qt::DisplayRole)
            return value.isNull() ? QString() : QString::number(value.toLongLong());
        if (role == Qt::EditRole)
            return value;
        break;
    }
    case Kind::Check:
    case Kind::BusinessDays:
    case Kind::Default:
        if (role == Qt::EditRole)
            return checkState(record, index.column()) == Qt::Checked;
        break;
    }
    if (role == Qt::TextAlignmentRole && (column.kind == Kind::Decimal || column.kind == Kind::Integer))
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

bool ReferenceListModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!isListed(index))
        return false;
    Record* record = m_rows.at(index.row());
    const ReferenceListColumn& column = m_editor.list().columns().at(index.column());
    const bool checked = value.toInt() == Qt::Checked;
    switch (column.kind) {
    case Kind::Text:
    case Kind::Decimal:
    case Kind::Integer:
        return role == Qt::EditRole && m_editor.setValue(record, column.key, value);
    case Kind::Check:
        return role == Qt::CheckStateRole && m_editor.setValue(record, column.key, checked);
    case Kind::BusinessDays:
        return role == Qt::CheckStateRole && m_editor.setValue(record, column.key, checked ? 1 : 0);
    case Kind::Default:
        // A default is given up only by choosing another.
        return role == Qt::CheckStateRole && checked && m_editor.setDefault(record);
    case Kind::Computed:
        break;
    }
    return false;
}

Qt::ItemFlags ReferenceListModel::flags(const QModelIndex& index) const
{
    if (!isListed(index))
        return Qt::NoItemFlags;
    const Qt::ItemFlags base = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    switch (m_editor.list().columns().at(index.column()).kind) {
    case Kind::Text:
    case Kind::Decimal:
    case Kind::Integer:
        return base | Qt::ItemIsEditable;
    case Kind::Check:
    case Kind::BusinessDays:
    case Kind::Default:
        return base | Qt::ItemIsUserCheckable;
    case Kind::Computed:
        break;
    }
    return base;
}

QVariant ReferenceListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section >= 0 && section < columnCount())
        return m_editor.list().columns().at(section).title;
    return QAbstractTableModel::headerData(section, orientation, role);
}

void ReferenceListModel::refresh()
{
    const QList<Record*> fresh = m_editor.records();
    // The default and the number format first: views read them while rows come and go.
    const Record* company = CompanyRecord::of(m_editor.context());
    m_numbers.emplace(company ? company->related(QStringLiteral("default_currency")) : nullptr);
    const DefaultValueTransformer isDefault(company);
    m_default = nullptr;
    for (Record* record : fresh) {
        if (isDefault.transformedValue(QVariant::fromValue(record)).toBool()) {
            m_default = record;
            break;
        }
    }
    QHash<const Record*, int> position;
    for (qsizetype i = 0; i < fresh.size(); ++i)
        position.insert(fresh.at(i), int(i));

    for (int row = int(m_rows.size()) - 1; row >= 0; --row) {
        if (!position.contains(m_rows.at(row))) {
            beginRemoveRows({}, row, row);
            m_rows.removeAt(row);
            endRemoveRows();
        }
    }
    const QSet<Record*> listed(m_rows.cbegin(), m_rows.cend());
    QList<Record*> added;
    for (Record* record : fresh) {
        if (!listed.contains(record))
            added << record;
    }
    if (!added.isEmpty()) {
        beginInsertRows({}, int(m_rows.size()), int(m_rows.size() + added.size() - 1));
        m_rows += added;
        endInsertRows();
    }
    if (m_rows != fresh) {
        Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
        const QModelIndexList before = persistentIndexList();
        QModelIndexList after;
        for (const QModelIndex& index : before)
            after << this->index(position.value(m_rows.at(index.row())), index.column());
        m_rows = fresh;
        changePersistentIndexList(before, after);
        Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
    }

    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(int(m_rows.size()) - 1, columnCount() - 1));
}

} // namespace corvanta::editors
