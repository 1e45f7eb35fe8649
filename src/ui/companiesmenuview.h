#pragma once

#include <QMenu>

namespace corvanta::app {
class CompaniesMenu;
}

namespace corvanta::ui {

// The company-databases menu as the menu bar shows it, rebuilt whenever the core rebuilds its
// entries: the four commands, a separator, then one submenu per database with its actions; the
// open database is checked and its path shown in a small font.
class CompaniesMenuView : public QMenu
{
    Q_OBJECT

public:
    CompaniesMenuView(app::CompaniesMenu& menu, QWidget* parent = nullptr);

    void rebuild();

private:
    app::CompaniesMenu& m_menu;
};

} // namespace corvanta::ui
