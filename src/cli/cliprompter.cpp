#include "cliprompter.h"

namespace corvanta::cli {

QStringList CliPrompter::takeMessages()
{
    QStringList messages;
    messages.swap(m_messages);
    return messages;
}

QString CliPrompter::messageLine(const QString& title, const QString& text)
{
    const QString head = title.trimmed();
    const QString tail = text.trimmed();
    if (tail.isEmpty())
        return head;
    if (head.isEmpty())
        return tail;
    const QChar last = head.back();
    const bool sentence = last == QLatin1Char('.') || last == QLatin1Char('!') || last == QLatin1Char('?');
    return head + (sentence ? QStringLiteral(" ") : QStringLiteral(": ")) + tail;
}

QString CliPrompter::alert(const QString& title, const QString& text, const QStringList& buttons)
{
    if (buttons.size() > 1) {
        m_questions << title;
        return buttons.first();
    }
    QString line = messageLine(title, text);
    line.replace(QStringLiteral("\n\n"), QStringLiteral(" "));
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    m_messages << line;
    return buttons.value(0);
}

std::optional<QString> CliPrompter::chooseFolder(const QString& title)
{
    m_questions << title;
    return std::nullopt;
}

std::optional<QString> CliPrompter::chooseFile(const QString& title, const QStringList& extensions)
{
    Q_UNUSED(extensions)
    m_questions << title;
    return std::nullopt;
}

std::optional<QString> CliPrompter::askText(const QString& title, const QString& label,
                                            const QString& initial)
{
    Q_UNUSED(label)
    m_questions << title;
    if (m_answeredEntries.contains(title))
        return std::nullopt;
    m_answeredEntries << title;
    return m_textAnswer.value_or(initial);
}

} // namespace corvanta::cli
