#pragma once

#include "support/prompter.h"

#include <QStringList>

namespace corvanta::cli {

// The core's questions answered without a screen. The user asked for the command, so a question
// is answered with its action button (the first one: "Finalize", "Cancel Invoice", "Connect").
// An alert with a single button is a message: it is kept for standard error, where it tells why
// a command was refused (or adds a note to one that was done). Entry windows (the start number,
// a company name) take the text the command's options give, otherwise their pre-filled text;
// one asked a second time in a command (its answer was refused) is cancelled, so that a script
// never loops. Choosers are cancelled: every file and folder comes from the options.
class CliPrompter : public support::Prompter
{
public:
    // Starts a command: `answer` is what its entry windows are answered with (none keeps their
    // pre-filled text), and each of them may be answered once again.
    void beginCommand(const std::optional<QString>& answer)
    {
        m_textAnswer = answer;
        m_answeredEntries.clear();
    }

    // A message of the command line itself (an unknown name, a refused combination).
    void report(const QString& message) { m_messages << message; }
    // The messages shown so far, each "title: text" (or the title alone).
    const QStringList& messages() const { return m_messages; }
    bool hasMessages() const { return !m_messages.isEmpty(); }
    QStringList takeMessages();
    // The titles of the questions answered so far, for the record.
    const QStringList& questions() const { return m_questions; }

    QString alert(const QString& title, const QString& text, const QStringList& buttons) override;
    std::optional<QString> chooseFolder(const QString& title) override;
    std::optional<QString> chooseFile(const QString& title, const QStringList& extensions) override;
    std::optional<QString> askText(const QString& title, const QString& label,
                                   const QString& initial) override;

    // A message as one line: the title, then the text after ": " (or a blank when the title
    // already ends a sentence).
    static QString messageLine(const QString& title, const QString& text);

private:
    std::optional<QString> m_textAnswer;
    QStringList m_messages;
    QStringList m_questions;
    QStringList m_answeredEntries; // titles of the entry windows this command answered
};

} // namespace corvanta::cli
