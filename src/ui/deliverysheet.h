#pragma once

#include <QDialog>

class QCompleter;
class QDateEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QStringListModel;

namespace corvanta::editors {
class ItemController;
}
namespace corvanta::store {
class Record;
}
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

// The sheet that records one delivery of stock into the warehouse: the supplier, picked from
// the suppliers whose company name holds the typed text, the quantity and the date. Only its
// confirming button adds the delivery to the item; "Cancel" leaves the item as it was.
class DeliverySheet : public QDialog
{
    Q_OBJECT

public:
    DeliverySheet(editors::ItemController& controller, support::Prompter& prompter,
                  QWidget* parent = nullptr);
    ~DeliverySheet() override;

    // The supplier chosen from the suggestions, or null.
    store::Record* supplier() const { return m_supplier; }
    // The delivery the confirming button added, or null.
    store::Record* delivery() const { return m_delivery; }

private:
    void supplierEdited(const QString& text);
    void supplierChosen(const QString& fullName);
    void supplierLeft();
    void updateAddButton();
    void confirm();

    editors::ItemController& m_controller;
    support::Prompter& m_prompter;
    QList<store::Record*> m_suggestions;
    store::Record* m_supplier = nullptr;
    store::Record* m_delivery = nullptr;

    QLineEdit* m_supplierEdit = nullptr;
    QLabel* m_supplierHint = nullptr;
    QStringListModel* m_suggestionModel = nullptr;
    QCompleter* m_completer = nullptr;
    QLineEdit* m_quantityEdit = nullptr;
    QDateEdit* m_dateEdit = nullptr;
    QPushButton* m_addButton = nullptr;
};

} // namespace corvanta::ui
