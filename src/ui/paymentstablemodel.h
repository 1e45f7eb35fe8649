#pragma once

#include "predicate/recordref.h"

#include <QAbstractTableModel>
#include <memory>

namespace corvanta::store {
class EditingContext;
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::documents {
class DocumentPayments;
}

namespace corvanta::ui {

// The payments of one document by date: the date in the short format, the payment type's name
// and the amount in the document's currency, right-aligned. Edits go to the core's payments,
// which store them at once; the list is then read again.
class PaymentsTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { DateColumn, PaymentTypeColumn, AmountColumn, ColumnCount };
    // The payment's reference, in every column.
    static constexpr int kPaymentRole = Qt::UserRole + 1;

    PaymentsTableModel(store::Store& store, documents::DocumentPayments& payments,
                       const predicate::RecordRef& document, QObject* parent = nullptr);
    ~PaymentsTableModel() override;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    // Date: a QDate; payment type: a PaymentTypes key (0: the company's default); amount: a number.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

    // Reads the document and its payments again.
    void reload();
    predicate::RecordRef paymentAt(int row) const;
    int rowOf(const predicate::RecordRef& payment) const;
    // The payment types by name, for the pop-up that edits a payment's type.
    QList<store::Record*> paymentTypes() const;
    // The document's total less its payments, in the document's currency.
    double remaining() const;
    QString formattedAmount(double amount) const;

private:
    store::Store& m_store;
    documents::DocumentPayments& m_payments;
    predicate::RecordRef m_document;
    std::unique_ptr<store::EditingContext> m_context;
    store::Record* m_documentRecord = nullptr;
    QList<store::Record*> m_rows;
};

} // namespace corvanta::ui
