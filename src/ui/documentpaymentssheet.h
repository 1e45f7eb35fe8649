#pragma once

#include "predicate/recordref.h"

#include <QDialog>
#include <memory>

class QLabel;
class QPushButton;
class QTableView;

namespace corvanta::store {
class Store;
}
namespace corvanta::support {
class Prompter;
}
namespace corvanta::documents {
class DocumentPayments;
}

namespace corvanta::ui {

class PaymentsTableModel;

// The payments of one document over its window: when, how and how much was paid, edited in
// place, the amount still open, and two ways out: "Close", and the settling button, which pays
// the rest by the company's default payment type now. Every change is stored at once.
class DocumentPaymentsSheet : public QDialog
{
    Q_OBJECT

public:
    DocumentPaymentsSheet(store::Store& store, support::Prompter& prompter,
                          const predicate::RecordRef& document, QWidget* parent = nullptr);
    ~DocumentPaymentsSheet() override;

    documents::DocumentPayments& payments() const { return *m_payments; }
    QTableView* table() const { return m_table; }

public Q_SLOTS:
    // A payment of nothing yet, by the company's default payment type today, its amount opened
    // for editing.
    void addPayment();
    // Removes the selected payments.
    void removePayments();
    // Leaves the sheet, paying the rest when `settle` is set.
    void finish(bool settle);
    // Escape and the window's close button leave as "Close" does.
    void reject() override;

private:
    void updateRemaining();
    void updateButtons();

    predicate::RecordRef m_document;
    documents::DocumentPayments* m_payments = nullptr;
    PaymentsTableModel* m_model = nullptr;

    QTableView* m_table = nullptr;
    QLabel* m_remainingLabel = nullptr;
    QPushButton* m_addButton = nullptr;
    QPushButton* m_removeButton = nullptr;
    QPushButton* m_settleButton = nullptr;
    QPushButton* m_closeButton = nullptr;
};

} // namespace corvanta::ui
