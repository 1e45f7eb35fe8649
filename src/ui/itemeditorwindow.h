#pragma once

#include "predicate/recordref.h"

#include <QWidget>
#include <array>
#include <memory>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace corvanta::editors {
class ItemController;
}
namespace corvanta::store {
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

class ItemWarehouseView;
class OpenEditors;

// The editor window of one item: its name, type, code, unit, tax and description, the company's
// custom fields, the five price levels under the user's labels with the gross-to-net conversion,
// the warehouse with its current stock, and the tags. Fields write straight into the item of the
// controller's own context; saving hands a new item to the document being edited, if any.
class ItemEditorWindow : public QWidget
{
    Q_OBJECT

public:
    ItemEditorWindow(store::Store& store, support::Prompter& prompter, OpenEditors& openEditors,
                     QWidget* parent = nullptr);
    ~ItemEditorWindow() override;

    // Starts on a new item of `type` (0 service, 1 product).
    bool newItem(qint64 type);
    // Shows a stored item; false when it no longer exists.
    bool openItem(const predicate::RecordRef& item);
    editors::ItemController& controller() { return *m_controller; }

public Q_SLOTS:
    // Saves the item; the window closes when the save succeeds.
    bool save();
    // Takes the first tax rate out of all five prices.
    void pricesToNet();
    void showTags();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    static constexpr int kLevels = 5;
    static constexpr int kCustomFields = 5;

    QWidget* makeItemFields();
    QWidget* makePrices();
    QWidget* makeWarehouse();
    void fillReferencePopup(QComboBox* popup, const QString& entity);
    void selectReference(QComboBox* popup, const store::Record* current);
    void referenceChosen(QComboBox* popup, const QString& key);
    void loadItem();
    void showPrice(int level);
    void priceEntered(int level);
    // Applies price texts typed but not yet left, as leaving the field would.
    void finishEditing();
    void showStock();
    void setText(const QString& key, const QString& text);
    void updateTitle();

    support::Prompter& m_prompter;
    OpenEditors& m_openEditors;
    std::unique_ptr<editors::ItemController> m_controller;
    bool m_loading = false;
    bool m_enteringPrice = false;

    QLineEdit* m_nameEdit = nullptr;
    QComboBox* m_typePopup = nullptr;
    QLineEdit* m_codeEdit = nullptr;
    QComboBox* m_unitPopup = nullptr;
    QComboBox* m_taxPopup = nullptr;
    QPlainTextEdit* m_descEdit = nullptr;
    std::array<QLabel*, kCustomFields> m_customLabels{};
    std::array<QLineEdit*, kCustomFields> m_customEdits{};
    std::array<QLabel*, kLevels> m_priceLabels{};
    std::array<QLineEdit*, kLevels> m_priceEdits{};
    std::array<QString, kLevels> m_shownPrices;
    QPushButton* m_grossToNetButton = nullptr;
    QCheckBox* m_warehouseCheck = nullptr;
    QLabel* m_stockLabel = nullptr;
    ItemWarehouseView* m_warehouseView = nullptr;
    QPushButton* m_tagsButton = nullptr;
    QPushButton* m_saveButton = nullptr;
};

} // namespace corvanta::ui
