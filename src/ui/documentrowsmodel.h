#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <memory>
#include <optional>

namespace corvanta::editors {
class DocumentController;
}
namespace corvanta::format {
class CurrencyFormatter;
class NumberFormatter;
} // namespace corvanta::format
namespace corvanta::store {
class Record;
}
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

// The rows of the document a DocumentController edits, one table row per document row in display
// order. The row records are taken from the controller once per change of the row list (never
// per keystroke or per cell); edits go through the controller's row operations, and amounts show
// in the document's currency.
class DocumentRowsModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Name, Quantity, Unit, Price, Tax, Total, ColumnCount };

    DocumentRowsModel(editors::DocumentController& controller, support::Prompter& prompter,
                      QObject* parent = nullptr);
    ~DocumentRowsModel() override;

    // Takes the controller's rows again, after rows were added, copied or removed.
    void reload();
    // Takes the document's currency again and redraws the amounts.
    void updateFormats();

    store::Record* rowRecord(int row) const { return m_rows.value(row); }
    // A row's values were changed outside the table (its price fields): redraws it and the totals.
    void rowValuesChanged(const store::Record* record);
    // A price as a price field shows it for typing: the document currency's separators, no mark.
    QString priceText(const QVariant& price) const;
    // Reads a typed price; nothing, after telling the user why, when the text is no number. An
    // emptied field reads as 0.
    std::optional<double> readPrice(const QString& text) const;
    int rowOf(const store::Record* record) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    // Name, quantity and price take the typed text; unit and tax take the record's key (0 for
    // none). A number the formatter cannot read is refused with a message.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

Q_SIGNALS:
    // A row's amounts may have changed: the totals follow.
    void amountsChanged();

private:
    bool setNumber(store::Record* row, int column, const QString& text);
    void rowChanged(int row);

    editors::DocumentController& m_controller;
    support::Prompter& m_prompter;
    QList<store::Record*> m_rows;
    std::unique_ptr<format::CurrencyFormatter> m_amounts;
    std::unique_ptr<format::NumberFormatter> m_priceInput;
    std::unique_ptr<format::NumberFormatter> m_quantities;
};

} // namespace corvanta::ui
