#include "scriptedprompter.h"

namespace corvanta::support {

QStringList ScriptedPrompter::titles() const
{
    QStringList titles;
    for (const Question& q : m_questions)
        titles << q.title;
    return titles;
}

std::optional<std::optional<QString>> ScriptedPrompter::nextAnswer()
{
    if (m_answers.isEmpty())
        return std::nullopt;
    return m_answers.takeFirst();
}

QString ScriptedPrompter::alert(const QString& title, const QString& text, const QStringList& buttons)
{
    m_questions.append({Question::Kind::Alert, title, text, buttons, {}, {}});
    const auto answer = nextAnswer();
    if (!answer)
        return buttons.value(0);
    return answer->value_or(QString());
}

std::optional<QString> ScriptedPrompter::chooseFolder(const QString& title)
{
    m_questions.append({Question::Kind::ChooseFolder, title, {}, {}, {}, {}});
    return nextAnswer().value_or(std::nullopt);
}

std::optional<QString> ScriptedPrompter::chooseFile(const QString& title, const QStringList& extensions)
{
    m_questions.append({Question::Kind::ChooseFile, title, {}, {}, extensions, {}});
    return nextAnswer().value_or(std::nullopt);
}

std::optional<QString> ScriptedPrompter::askText(const QString& title, const QString& label,
                                                 const QString& initial)
{
    m_questions.append({Question::Kind::AskText, title, label, {}, {}, initial});
    return nextAnswer().value_or(std::nullopt);
}

} // namespace corvanta::support
