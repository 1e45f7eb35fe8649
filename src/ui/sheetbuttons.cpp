#include "sheetbuttons.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QPushButton>

namespace corvanta::ui {

SheetButtons SheetButtons::make(QDialog* sheet)
{
    SheetButtons buttons;
    buttons.cancel = new QPushButton(tr("Cancel"), sheet);
    buttons.cancel->setObjectName(QStringLiteral("cancelButton"));
    buttons.cancel->setAutoDefault(false);
    buttons.save = new QPushButton(tr("Save"), sheet);
    buttons.save->setObjectName(QStringLiteral("saveButton"));
    buttons.save->setDefault(true);
    QObject::connect(buttons.cancel, &QPushButton::clicked, sheet, &QDialog::reject);
    buttons.layout = new QHBoxLayout;
    buttons.layout->addStretch(1);
    buttons.layout->addWidget(buttons.cancel);
    buttons.layout->addWidget(buttons.save);
    return buttons;
}

} // namespace corvanta::ui
