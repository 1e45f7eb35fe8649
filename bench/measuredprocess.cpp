#include "measuredprocess.h"

#include <QStandardPaths>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace corvanta::bench {

namespace {

double monotonicSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

// Null-terminated char* arrays over byte arrays that live as long as this object.
class CStringList
{
public:
    void append(const QByteArray& text) { m_texts.push_back(text); }
    char** pointers()
    {
        m_pointers.clear();
        for (QByteArray& text : m_texts)
            m_pointers.push_back(text.data());
        m_pointers.push_back(nullptr);
        return m_pointers.data();
    }

private:
    std::vector<QByteArray> m_texts;
    std::vector<char*> m_pointers;
};

} // namespace

MeasuredProcess::MeasuredProcess(QString program, QStringList arguments, QStringList environment)
    : m_program(std::move(program))
    , m_arguments(std::move(arguments))
    , m_environment(std::move(environment))
{}

void MeasuredProcess::setOutputFiles(const QString& standardOutput, const QString& standardError)
{
    m_standardOutput = standardOutput;
    m_standardError = standardError;
}

QString MeasuredProcess::findProgram(const QString& program)
{
    return QStandardPaths::findExecutable(program);
}

MeasuredProcess::Result MeasuredProcess::run() const
{
    Result result;
    CStringList arguments;
    arguments.append(m_program.toLocal8Bit());
    for (const QString& argument : m_arguments)
        arguments.append(argument.toLocal8Bit());

    // The child's environment: ours, with the given entries replacing those of the same name.
    CStringList environment;
    for (char** entry = environ; *entry; ++entry) {
        const QByteArray text(*entry);
        const QByteArray name = text.left(text.indexOf('=') + 1);
        const bool replaced = std::any_of(m_environment.begin(), m_environment.end(),
                                          [&](const QString& e) { return e.toLocal8Bit().startsWith(name); });
        if (!replaced)
            environment.append(text);
    }
    for (const QString& entry : m_environment)
        environment.append(entry.toLocal8Bit());

    const QByteArray out =
        m_standardOutput.isEmpty() ? QByteArray("/dev/null") : m_standardOutput.toLocal8Bit();
    const QByteArray err =
        m_standardError.isEmpty() ? QByteArray("/dev/null") : m_standardError.toLocal8Bit();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.constData(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0644);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.constData(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0644);

    const double start = monotonicSeconds();
    pid_t child = 0;
    const int spawned = posix_spawn(&child, arguments.pointers()[0], &actions, nullptr, arguments.pointers(),
                                    environment.pointers());
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        result.error =
            QStringLiteral("cannot start %1: %2").arg(m_program, QString::fromLocal8Bit(strerror(spawned)));
        return result;
    }
    result.started = true;

    int status = 0;
    rusage usage{};
    pid_t waited = 0;
    do {
        waited = wait4(child, &status, 0, &usage);
    } while (waited < 0 && errno == EINTR);
    result.seconds = monotonicSeconds() - start;
    if (waited < 0) {
        result.error = QStringLiteral("lost %1: %2").arg(m_program, QString::fromLocal8Bit(strerror(errno)));
        return result;
    }
    // Linux reports ru_maxrss in KiB: the largest resident set of the child (and of any
    // grandchild it waited for), which is what the process needed at its peak.
    result.peakBytes = qint64(usage.ru_maxrss) * 1024;
    if (WIFEXITED(status)) {
        result.exitCode = WEXITSTATUS(status);
        if (result.exitCode != 0)
            result.error = QStringLiteral("%1 exited with %2").arg(m_program).arg(result.exitCode);
    } else if (WIFSIGNALED(status)) {
        result.error = QStringLiteral("%1 was killed by signal %2").arg(m_program).arg(WTERMSIG(status));
    }
    return result;
}

} // namespace corvanta::bench
