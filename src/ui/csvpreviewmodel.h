#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QStringList>

namespace corvanta::ui {

// The rows of an import file as the preview table shows them: one column per field of the
// file's first line, each cell read from the rows on demand, so that a file of many thousand
// lines costs the view no more than the lines on the screen.
class CsvPreviewModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    // Shows new rows; `columns` is the number of fields of the first line.
    void setRows(const QList<QStringList>& rows, qsizetype columns);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    QList<QStringList> m_rows;
    int m_columns = 0;
};

} // namespace corvanta::ui
