#pragma once

#include "support/prompter.h"

#include <QPointer>
#include <QWidget>

namespace corvanta::ui {

// The core's questions as the desktop shows them: an alert is a message box over the window in
// front (window-modal, like a sheet), its first button the default one that Return chooses and
// "Cancel" the one Escape chooses; choosers are the platform's file dialogs.
class DialogPrompter : public support::Prompter
{
public:
    // Questions are shown over the active window, or over `window` when none is active.
    explicit DialogPrompter(QWidget* window = nullptr);

    void setWindow(QWidget* window) { m_window = window; }

    QString alert(const QString& title, const QString& text, const QStringList& buttons) override;
    std::optional<QString> chooseFolder(const QString& title) override;
    std::optional<QString> chooseFile(const QString& title, const QStringList& extensions) override;
    std::optional<QString> askText(const QString& title, const QString& label,
                                   const QString& initial) override;

private:
    QWidget* parentWindow() const;

    QPointer<QWidget> m_window;
};

} // namespace corvanta::ui
