#include "numberformatfield.h"

#include "documents/numberformat.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

namespace corvanta::ui {

using documents::NumberFormat;

NumberFormatField::NumberFormatField(QWidget* parent)
    : QWidget(parent)
{
    m_tokens = new QWidget(this);
    m_tokens->setObjectName(QStringLiteral("tokens"));
    m_tokenLayout = new QHBoxLayout(m_tokens);
    m_tokenLayout->setContentsMargins(0, 0, 0, 0);
    m_tokenLayout->setSpacing(2);
    m_edit = new QLineEdit(this);
    m_edit->setObjectName(QStringLiteral("formatEdit"));
    m_edit->setToolTip(tr("The pieces of the number joined by commas: YYYY or YY for the year, "
                          "NNNN, NNNNN or NNNNNN for the number, anything else as it is"));
    setFocusProxy(m_edit);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_tokens);
    layout->addWidget(m_edit);

    connect(m_edit, &QLineEdit::textEdited, this, [this](const QString& format) {
        showTokens(format);
        Q_EMIT textEdited(format);
    });
    connect(m_edit, &QLineEdit::editingFinished, this, &NumberFormatField::editingFinished);
}

QString NumberFormatField::text() const
{
    return m_edit->text();
}

void NumberFormatField::setText(const QString& format)
{
    if (m_edit->text() != format)
        m_edit->setText(format);
    showTokens(format);
}

void NumberFormatField::showTokens(const QString& format)
{
    while (QLayoutItem* item = m_tokenLayout->takeAt(0)) {
        // A token's menu may still be running in its button: the button goes later, unnamed.
        if (QWidget* widget = item->widget()) {
            widget->hide();
            widget->setObjectName(QString());
            widget->deleteLater();
        }
        delete item;
    }
    const QStringList pieces = NumberFormat::tokens(format);
    for (int index = 0; index < pieces.size(); ++index) {
        const QString& piece = pieces.at(index);
        if (piece.isEmpty())
            continue;
        const QStringList entries = NumberFormat::menuEntries(piece);
        if (entries.isEmpty()) {
            auto* label = new QLabel(piece, m_tokens);
            label->setObjectName(QStringLiteral("token%1").arg(index));
            label->setTextFormat(Qt::PlainText);
            m_tokenLayout->addWidget(label);
            continue;
        }
        auto* button = new QToolButton(m_tokens);
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
            action->setObjectName(entry);
            action->setCheckable(true);
            action->setChecked(entry == piece);
            connect(action, &QAction::triggered, this,
                    [this, index, entry] { Q_EMIT tokenChosen(index, entry); });
        }
        button->setMenu(menu);
        m_tokenLayout->addWidget(button);
    }
    m_tokenLayout->addStretch(1);
}

} // namespace corvanta::ui
