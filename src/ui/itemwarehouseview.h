#pragma once

#include <QWidget>

class QButtonGroup;
class QPushButton;
class QStackedWidget;
class QToolButton;
class QTreeWidget;

namespace corvanta::editors {
class ItemController;
}
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

// The item's stock, seen two ways behind a two-part switch: what went out in documents that are
// not drafts (quantity, client, document number, date), and the deliveries that came in (date,
// supplier, quantity), which are added in the delivery sheet and removed here.
class ItemWarehouseView : public QWidget
{
    Q_OBJECT

public:
    enum class Side { Out, In };

    ItemWarehouseView(editors::ItemController& controller, support::Prompter& prompter,
                      QWidget* parent = nullptr);

    Side side() const;
    void setSide(Side side);
    // Lists both sides afresh from the controller's item.
    void reload();

public Q_SLOTS:
    // Opens the delivery sheet over the window.
    void addDelivery();
    // Removes the selected delivery.
    void removeDelivery();

private:
    void reloadOut();
    void reloadIn();
    void updateButtons();

    editors::ItemController& m_controller;
    support::Prompter& m_prompter;

    QButtonGroup* m_sides = nullptr;
    QToolButton* m_outButton = nullptr;
    QToolButton* m_inButton = nullptr;
    QStackedWidget* m_pages = nullptr;
    QTreeWidget* m_outList = nullptr;
    QTreeWidget* m_inList = nullptr;
    QPushButton* m_addButton = nullptr;
    QPushButton* m_removeButton = nullptr;
};

} // namespace corvanta::ui
