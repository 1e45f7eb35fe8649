#pragma once

#include "prompter.h"

#include <QList>

namespace corvanta::support {

// A Prompter that answers from a script and records every question, in order. Used by the
// tests, and by the command line where the answers come from its options.
class ScriptedPrompter : public Prompter
{
public:
    struct Question
    {
        enum class Kind { Alert, ChooseFolder, ChooseFile, AskText };
        Kind kind = Kind::Alert;
        QString title;
        QString text; // alert text, or the entry window's label
        QStringList buttons;
        QStringList extensions;
        QString initial;
    };

    // Answers are taken in order; an alert without a scripted answer takes its first button,
    // a chooser or entry window without one is cancelled. A scripted answer of std::nullopt
    // cancels.
    void addAnswer(const std::optional<QString>& answer) { m_answers.append(answer); }

    const QList<Question>& questions() const { return m_questions; }
    // The titles asked so far, for short checks.
    QStringList titles() const;
    void clear()
    {
        m_questions.clear();
        m_answers.clear();
    }

    QString alert(const QString& title, const QString& text, const QStringList& buttons) override;
    std::optional<QString> chooseFolder(const QString& title) override;
    std::optional<QString> chooseFile(const QString& title, const QStringList& extensions) override;
    std::optional<QString> askText(const QString& title, const QString& label,
                                   const QString& initial) override;

private:
    std::optional<std::optional<QString>> nextAnswer();

    QList<Question> m_questions;
    QList<std::optional<QString>> m_answers;
};

} // namespace corvanta::support
