#pragma once

#include "format/numberformatter.h"

#include <QAbstractTableModel>
#include <optional>

namespace corvanta::store {
class Record;
}

namespace corvanta::editors {

class ReferenceListEditor;

// A reference list as a table that a view shows directly: one row per record in the list's
// order, one column per field of the list and a last column ticking the company's default.
// Text and number columns are edited in place (numbers are read with the entry-field
// formatter), boolean fields, the due days' business-day switch and the default are ticks.
// Every edit goes through the editor, which commits it at once; the rows follow the editor's
// list, keeping selections and other persistent indexes on their records when the order changes.
//
// Record pointers stay valid while the editor's context is not reset.
class ReferenceListModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Role {
        RecordRole = Qt::UserRole + 1, // the row's store::Record*
        KeyRole,                       // the column's attribute name
        ChoicesRole,                   // the values a column offers, where it has a fixed set
    };

    explicit ReferenceListModel(ReferenceListEditor& editor, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    store::Record* recordAt(int row) const;
    // The index of a record's cell, invalid when the record is not listed.
    QModelIndex indexOf(const store::Record* record, int column = 0) const;
    // The column of the naming field, which an added record is opened for editing in.
    int namingColumn() const;
    int defaultColumn() const { return columnCount() - 1; }

public Q_SLOTS:
    // Follows the editor's list: removed rows, added rows, then the new order and values.
    void refresh();

private:
    bool isListed(const QModelIndex& index) const;
    QVariant checkState(const store::Record* record, int column) const;

    ReferenceListEditor& m_editor;
    QList<store::Record*> m_rows;
    const store::Record* m_default = nullptr;
    std::optional<format::NumberFormatter> m_numbers;
};

} // namespace corvanta::editors
