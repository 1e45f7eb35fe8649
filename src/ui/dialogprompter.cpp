#include "dialogprompter.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

namespace corvanta::ui {

namespace {

// A question that ends in "This action cannot be undone." destroys something: it warns.
QMessageBox::Icon iconFor(const QString& text, const QStringList& buttons)
{
    if (text.contains(QLatin1String("cannot be undone")))
        return QMessageBox::Warning;
    return buttons.size() > 1 ? QMessageBox::Question : QMessageBox::Information;
}

bool isCancel(const QString& button)
{
    return button == QCoreApplication::translate("DialogPrompter", "Cancel") ||
           button == QLatin1String("Cancel");
}

} // namespace

DialogPrompter::DialogPrompter(QWidget* window)
    : m_window(window)
{}

QWidget* DialogPrompter::parentWindow() const
{
    // The window in front (a sheet when one is open) is where a question belongs.
    if (QWidget* active = QApplication::activeWindow())
        return active;
    return m_window ? m_window->window() : nullptr;
}

QString DialogPrompter::alert(const QString& title, const QString& text, const QStringList& buttons)
{
    QWidget* parent = parentWindow();
    QMessageBox box(parent);
    box.setObjectName(QStringLiteral("alert"));
    box.setWindowTitle(title);
    // Titles and texts hold record values ("A & B Ltd"): they are shown as plain text, never markup.
    box.setTextFormat(Qt::PlainText);
    box.setText(title);
    box.setInformativeText(text);
    if (auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
        QFont bold = label->font();
        bold.setBold(true);
        label->setFont(bold);
    }
    if (auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel")))
        label->setTextFormat(Qt::PlainText);
    box.setIcon(iconFor(text, buttons));
    if (parent)
        box.setWindowModality(Qt::WindowModal);

    QList<QPushButton*> pushButtons;
    const QStringList shown =
        buttons.isEmpty() ? QStringList{QApplication::translate("DialogPrompter", "OK")} : buttons;
    for (const QString& button : shown) {
        const QMessageBox::ButtonRole role =
            isCancel(button) ? QMessageBox::RejectRole : QMessageBox::AcceptRole;
        QPushButton* pushButton = box.addButton(button, role);
        pushButton->setObjectName(QStringLiteral("alertButton%1").arg(pushButtons.size()));
        pushButtons.append(pushButton);
    }
    box.setDefaultButton(pushButtons.first());
    // Escape answers "Cancel"; an alert without one is dismissed by Escape with its only button
    // or, with several, by its last (the one that keeps things as they are, "Don't Cancel").
    QPushButton* escape = pushButtons.last();
    for (int i = 0; i < shown.size(); ++i) {
        if (isCancel(shown.at(i)))
            escape = pushButtons.at(i);
    }
    box.setEscapeButton(escape);

    box.exec();
    const int chosen = pushButtons.indexOf(qobject_cast<QPushButton*>(box.clickedButton()));
    return chosen >= 0 ? shown.at(chosen) : QString();
}

std::optional<QString> DialogPrompter::chooseFolder(const QString& title)
{
    const QString folder = QFileDialog::getExistingDirectory(parentWindow(), title);
    if (folder.isEmpty())
        return std::nullopt;
    return folder;
}

std::optional<QString> DialogPrompter::chooseFile(const QString& title, const QStringList& extensions)
{
    QStringList patterns;
    for (const QString& extension : extensions)
        patterns.append(QStringLiteral("*.") + extension);
    QString filter;
    if (!patterns.isEmpty())
        filter = QApplication::translate("DialogPrompter", "Files (%1)").arg(patterns.join(QLatin1Char(' ')));
    const QString file = QFileDialog::getOpenFileName(parentWindow(), title, QString(), filter);
    if (file.isEmpty())
        return std::nullopt;
    return file;
}

std::optional<QString> DialogPrompter::askText(const QString& title, const QString& label,
                                               const QString& initial)
{
    // One field under the question, starting with `initial` selected so that typing replaces it;
    // Return confirms, Escape cancels.
    QWidget* parent = parentWindow();
    QInputDialog dialog(parent);
    dialog.setObjectName(QStringLiteral("askTextDialog"));
    dialog.setWindowTitle(title);
    dialog.setLabelText(label);
    dialog.setInputMode(QInputDialog::TextInput);
    dialog.setTextValue(initial);
    if (parent)
        dialog.setWindowModality(Qt::WindowModal);
    if (auto* field = dialog.findChild<QLineEdit*>())
        field->setObjectName(QStringLiteral("askTextField"));
    if (auto* text = dialog.findChild<QLabel*>())
        text->setTextFormat(Qt::PlainText);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.textValue();
}

} // namespace corvanta::ui
