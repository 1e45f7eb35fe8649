#include "emailhandover.h"

#include "exchangelog.h"

#include <QProcess>
#include <QStandardPaths>
#include <algorithm>

namespace corvanta::exchange {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

bool isControl(QChar c)
{
    return c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

// The recipient as a message can quote it on one line: control characters written as escapes.
QString visible(const QString& text)
{
    QString shown;
    for (const QChar c : text) {
        if (c == QLatin1Char('\n'))
            shown += s("\\n");
        else if (c == QLatin1Char('\r'))
            shown += s("\\r");
        else if (c == QLatin1Char('\t'))
            shown += s("\\t");
        else if (isControl(c))
            shown += s("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            shown += c;
    }
    return shown;
}

} // namespace

EmailHandOver::EmailHandOver(const QString& program, int gracePeriodMs)
    : m_program(program)
    , m_gracePeriodMs(gracePeriodMs)
{}

QString EmailHandOver::recipientRefusal(const QString& to)
{
    QString reason;
    if (std::any_of(to.begin(), to.end(), isControl))
        reason = tr("it holds a line break or another control character, which could add a header");
    else if (to.startsWith(QLatin1Char('-')))
        reason = tr("it begins with \"-\", which would make it an option");
    else if (to.startsWith(s("mailto:"), Qt::CaseInsensitive))
        reason = tr("it begins with \"mailto:\", which would make it a link with fields of its own");
    else if (to.contains(QLatin1Char('?')) || to.contains(QLatin1Char('&')))
        reason = tr("it holds \"?\" or \"&\", which could add a field such as an attachment");
    if (reason.isEmpty())
        return {};
    return tr("The recipient \"%1\" is not handed to the mail program: %2.").arg(visible(to), reason);
}

QStringList EmailHandOver::arguments(const QString& to, const QString& subject, const QString& body,
                                     const QString& attachmentPath)
{
    QStringList arguments{s("--utf8"), s("--to"), to};
    if (!subject.isEmpty())
        arguments << s("--subject") << subject;
    if (!body.isEmpty())
        arguments << s("--body") << body + s("\n\n\n");
    if (!attachmentPath.isEmpty())
        arguments << s("--attach") << attachmentPath;
    return arguments;
}

bool EmailHandOver::failed(const QString& message, QString* error) const
{
    qCWarning(lcExchange).noquote() << message;
    if (error)
        *error = message;
    return false;
}

bool EmailHandOver::sendEmailTo(const QString& to, const QString& subject, const QString& body,
                                const QString& attachmentPath, QString* error) const
{
    const QString refusal = recipientRefusal(to);
    if (!refusal.isEmpty()) {
        if (error)
            *error = refusal;
        return false;
    }
    const QString executable = QStandardPaths::findExecutable(m_program);
    if (executable.isEmpty())
        return failed(tr("The mail program could not be reached: \"%1\" was not found.").arg(m_program),
                      error);

    auto* process = new QProcess;
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardOutputFile(QProcess::nullDevice());
    process->start(executable, arguments(to, subject, body, attachmentPath));
    if (!process->waitForStarted(m_gracePeriodMs)) {
        const QString reason = process->errorString();
        delete process;
        return failed(tr("The mail program could not be started: %1").arg(reason), error);
    }
    if (!process->waitForFinished(m_gracePeriodMs)) {
        // The message is open in a mail program that xdg-email still waits for. Killing it would
        // take the user's message away: it goes on alone and only a failure is written down.
        QObject::connect(process, &QProcess::finished, process, [process] {
            const QString message = finishedFailure(*process);
            if (!message.isEmpty())
                qCWarning(lcExchange).noquote() << message;
            process->deleteLater();
        });
        return true;
    }
    const QString message = finishedFailure(*process);
    delete process;
    return message.isEmpty() ? true : failed(message, error);
}

QString EmailHandOver::finishedFailure(QProcess& process)
{
    if (process.exitStatus() != QProcess::NormalExit)
        return tr("The mail program stopped: %1").arg(process.errorString());
    if (process.exitCode() == 0)
        return {};
    const QString output = QString::fromLocal8Bit(process.readAllStandardError()).trimmed();
    return output.isEmpty()
               ? tr("The mail program ended with status %1.").arg(process.exitCode())
               : tr("The mail program ended with status %1: %2").arg(process.exitCode()).arg(output);
}

} // namespace corvanta::exchange
