#pragma once

#include <QCoreApplication>

class QDialog;
class QHBoxLayout;
class QPushButton;

namespace corvanta::ui {

// The row every sheet ends with: "Cancel", which closes it, and the default "Save" at the right,
// which Return presses. The sheet connects "Save" to its own saving.
struct SheetButtons
{
    Q_DECLARE_TR_FUNCTIONS(SheetButtons)

public:
    QPushButton* cancel = nullptr;
    QPushButton* save = nullptr;
    QHBoxLayout* layout = nullptr;

    static SheetButtons make(QDialog* sheet);
};

} // namespace corvanta::ui
