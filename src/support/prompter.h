#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace corvanta::support {

// How the core asks the user something: alerts with exact titles, texts and buttons, choosers
// and small entry windows. The desktop shows them as dialogs (Return answers with the first
// button, Escape with "Cancel"); tests and the command line answer from a script.
class Prompter
{
public:
    virtual ~Prompter() = default;

    // Shows an alert and returns the text of the chosen button (the first button is the
    // default one); an empty text when the alert was dismissed.
    virtual QString alert(const QString& title, const QString& text, const QStringList& buttons) = 0;
    // A folder to use, or nothing when cancelled.
    virtual std::optional<QString> chooseFolder(const QString& title) = 0;
    // An existing file with one of the extensions (without dots), or nothing when cancelled.
    virtual std::optional<QString> chooseFile(const QString& title, const QStringList& extensions) = 0;
    // A line of text entered in a small window that starts with `initial`, or nothing when
    // cancelled (the company-name window, the start-number window).
    virtual std::optional<QString> askText(const QString& title, const QString& label,
                                           const QString& initial) = 0;
};

} // namespace corvanta::support
