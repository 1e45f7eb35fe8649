#pragma once

#include <QAbstractTableModel>
#include <QCoreApplication>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::editors {

// The user-defined fields of one group ("my_", "client_" or "item_") as a table a view shows:
// every definition of the group by name, labelled or not, with its readable name and its label.
// The label is edited in place and saved at once; an emptied label is cleared, so the field is
// listed by its readable name again wherever it shows.
class CustomFieldsModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Field, Label, ColumnCount };

    CustomFieldsModel(store::EditingContext& context, const QString& prefix, support::Prompter& prompter,
                      QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    store::Record* fieldAt(int row) const;

private:
    store::EditingContext& m_context;
    support::Prompter& m_prompter;
    QList<store::Record*> m_fields;
};

} // namespace corvanta::editors
