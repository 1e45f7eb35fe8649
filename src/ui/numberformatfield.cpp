#include "numberformatfield.h"

#include "documents/numberformat.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QToolButton>

namespace corvanta::ui {

using documents::NumberFormat;

NumberFormatField::NumberFormatField(QWidget* parent)
    : QFrame(parent)
{
    setFrameShape(QFrame::StyledPanel);
    setFrameShadow(QFrame::Sunken);
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    m_layout = new QHBoxLayout(this);
    m_layout->setContentsMargins(4, 2, 4, 2);
    m_layout->setSpacing(2);
}

void NumberFormatField::setFormat(const QString& format)
{
    m_format = format;
    while (QLayoutItem* item = m_layout->takeAt(0)) {
        // A token's menu may still be running in its button: the button goes later, unnamed.
        if (QWidget* widget = item->widget()) {
            widget->hide();
            widget->setObjectName(QString());
            widget->deleteLater();
        }
        delete item;
    }
    QList<QWidget*> buttons;
    const QStringList pieces = NumberFormat::tokens(format);
    for (int index = 0; index < pieces.size(); ++index) {
        const QString& piece = pieces.at(index);
        if (piece.isEmpty())
            continue;
        const QStringList entries = NumberFormat::menuEntries(piece);
        if (entries.isEmpty()) {
            auto* label = new QLabel(piece, this);
            label->setObjectName(QStringLiteral("token%1").arg(index));
            label->setTextFormat(Qt::PlainText);
            m_layout->addWidget(label);
            continue;
        }
        auto* button = new QToolButton(this);
        button->setObjectName(QStringLiteral("token%1").arg(index));
        button->setText(piece);
        button->setToolTip(NumberFormat::isYearToken(piece)
                               ? tr("Year: choose its length")
                               : tr("Number: choose how many digits it is padded to"));
        button->setAccessibleName(button->toolTip());
        button->setPopupMode(QToolButton::InstantPopup);
        auto* menu = new QMenu(button);
        menu->setObjectName(QStringLiteral("tokenMenu"));
        for (const QString& entry : entries) {
            QAction* action = menu->addAction(entry);
            action->setCheckable(true);
            action->setChecked(entry == piece);
            connect(action, &QAction::triggered, this,
                    [this, index, entry] { Q_EMIT tokenChosen(index, entry); });
        }
        button->setMenu(menu);
        m_layout->addWidget(button);
        buttons << button;
    }
    m_layout->addStretch(1);

    // New buttons join the end of the window's tab chain; they are moved to read in place.
    if (m_following && !buttons.isEmpty()) {
        QWidget* previous = m_following->previousInFocusChain();
        for (QWidget* button : std::as_const(buttons)) {
            QWidget::setTabOrder(previous, button);
            previous = button;
        }
        QWidget::setTabOrder(previous, m_following);
    }
}

} // namespace corvanta::ui
