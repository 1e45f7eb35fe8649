#pragma once

#include <QWidget>
#include <memory>

class QTabWidget;
class QTableView;

namespace corvanta::editors {
class CustomFieldsModel;
}
namespace corvanta::store {
class EditingContext;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

// The labels of the user-defined fields, in three tabs: the company's own fields, the clients'
// and the items' (with the price levels). Each field is listed by its readable name with its
// label edited in place; a change is saved at once, in a context of the window's own.
class CustomFieldsWindow : public QWidget
{
    Q_OBJECT

public:
    enum Group { MyCompany, Clients, Items, GroupCount };

    CustomFieldsWindow(store::Store& store, support::Prompter& prompter, QWidget* parent = nullptr);
    ~CustomFieldsWindow() override;

    QTabWidget* tabs() const { return m_tabs; }
    QTableView* view(Group group) const { return m_views[group]; }
    editors::CustomFieldsModel& model(Group group) const { return *m_models[group]; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    std::unique_ptr<store::EditingContext> m_context;
    QTabWidget* m_tabs = nullptr;
    QTableView* m_views[GroupCount] = {};
    editors::CustomFieldsModel* m_models[GroupCount] = {};
};

} // namespace corvanta::ui
