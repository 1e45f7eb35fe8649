#include "csvpreviewmodel.h"

#include "exchange/csvpreview.h"

#include <QIcon>

namespace corvanta::ui {

void CsvPreviewModel::setRows(const QList<QStringList>& rows, qsizetype columns)
{
    beginResetModel();
    m_rows = rows;
    m_columns = int(columns);
    endResetModel();
}

int CsvPreviewModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int CsvPreviewModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_columns;
}

QVariant CsvPreviewModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    return m_rows.at(index.row()).value(index.column());
}

QVariant CsvPreviewModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical)
        return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
    switch (role) {
    case Qt::DisplayRole:
        return section + 1;
    case Qt::DecorationRole:
        // The field a column goes to is chosen on the compose pop-up, whose icon this is.
        return QIcon::fromTheme(QStringLiteral("view-list-details"));
    case Qt::ToolTipRole:
        return tr("Column %1").arg(section + 1);
    case Qt::UserRole:
        return exchange::CsvPreview::columnKey(section);
    default:
        return {};
    }
}

} // namespace corvanta::ui
