#include "crashsoakwriters.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QProcess>
#include <QTimer>
#include <memory>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace corvanta::bench {

namespace {

// A writer still running after this long is taken for hung: killed, and reported.
constexpr int kWatchdogMs = 60000;

qint64 monotonicNs()
{
    static QElapsedTimer clock = [] {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }();
    return clock.nsecsElapsed();
}

} // namespace

QString killPhaseName(KillPhase phase)
{
    switch (phase) {
    case KillPhase::Starting:
        return QStringLiteral("starting (nothing open yet)");
    case KillPhase::DatabaseList:
        return QStringLiteral("reading the database list");
    case KillPhase::Lock:
        return QStringLiteral("holding or taking the lock");
    case KillPhase::Database:
        return QStringLiteral("database open");
    case KillPhase::Archive:
        return QStringLiteral("writing an archive");
    case KillPhase::AfterOutput:
        return QStringLiteral("after printing its result");
    }
    return {};
}

WriterPool::WriterPool(QString cli, QProcessEnvironment environment, QStringList archiveFolders)
    : m_cli(std::move(cli))
    , m_environment(std::move(environment))
    , m_archiveFolders(std::move(archiveFolders))
    , m_epochNs(monotonicNs())
{}

qint64 WriterPool::now() const
{
    return (monotonicNs() - m_epochNs) / 1000000;
}

KillPhase WriterPool::phaseOf(qint64 pid) const
{
    bool list = false, lock = false, database = false, archive = false;
    const QDir fds(QStringLiteral("/proc/%1/fd").arg(pid));
    for (const QFileInfo& fd : fds.entryInfoList(QDir::Files | QDir::System | QDir::NoDotAndDotDot)) {
        const QString target = fd.symLinkTarget();
        if (target.endsWith(QLatin1String(".lock")))
            lock = true;
        else if (target.endsWith(QLatin1String(".cvdb")) || target.endsWith(QLatin1String(".cvdb-wal")))
            database = true;
        else if (target.endsWith(QLatin1String("corvanta.databases")))
            list = true;
        for (const QString& folder : m_archiveFolders)
            if (target.startsWith(folder + QLatin1Char('/')))
                archive = true;
    }
    if (archive)
        return KillPhase::Archive;
    if (database)
        return KillPhase::Database;
    if (lock)
        return KillPhase::Lock;
    return list ? KillPhase::DatabaseList : KillPhase::Starting;
}

void WriterPool::setUp(QProcess& process, const WriterRun& writer) const
{
    process.setProgram(m_cli);
    process.setArguments(writer.operation.arguments);
    process.setProcessEnvironment(m_environment);
    process.setStandardInputFile(QProcess::nullDevice());
}

void WriterPool::collect(QProcess& process, WriterRun& writer, qint64 finishedAtMs)
{
    writer.finishedAtMs = finishedAtMs;
    writer.exitCode = process.exitCode();
    writer.crashed = process.exitStatus() == QProcess::CrashExit;
    writer.standardOutput = process.readAllStandardOutput();
    writer.standardError = process.readAllStandardError();
    if (writer.killSent && !writer.standardOutput.isEmpty())
        writer.phase = KillPhase::AfterOutput;
}

void WriterPool::runAimed(WriterRun& writer, const QString& database, int patienceMs)
{
    const QFileInfo file(database);
    const QByteArray target =
        (file.fileName() +
         (writer.aim == WriterRun::Aim::LockFile ? QStringLiteral(".lock") : QStringLiteral("-wal")))
            .toUtf8();
    const uint32_t events =
        writer.aim == WriterRun::Aim::LockFile ? IN_CREATE | IN_OPEN | IN_MODIFY : IN_MODIFY;
    const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (watch >= 0)
        inotify_add_watch(watch, QFile::encodeName(file.absolutePath()).constData(), events);

    QProcess process;
    setUp(process, writer);
    process.start();
    if (!process.waitForStarted()) {
        writer.standardError = "failed to start";
        if (watch >= 0)
            close(watch);
        return;
    }
    writer.started = true;
    writer.startedAtMs = now();
    const qint64 deadline = writer.startedAtMs + patienceMs;
    alignas(inotify_event) char buffer[4096];
    while (watch >= 0 && !writer.killSent && now() < deadline) {
        pollfd ready{watch, POLLIN, 0};
        if (poll(&ready, 1, 2) <= 0) {
            if (process.waitForFinished(0))
                break;
            continue;
        }
        const ssize_t length = read(watch, buffer, sizeof buffer);
        for (ssize_t offset = 0; offset < length;) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer + offset);
            if (event->len > 0 && target == event->name && !writer.killSent) {
                // Killed first, asked later: reading /proc would let the moment pass.
                process.kill();
                writer.killSent = true;
                writer.phase = writer.aim == WriterRun::Aim::LockFile ? KillPhase::Lock : KillPhase::Database;
            }
            offset += ssize_t(sizeof(inotify_event)) + event->len;
        }
    }
    if (watch >= 0)
        close(watch);
    if (process.state() != QProcess::NotRunning && !process.waitForFinished(kWatchdogMs)) {
        writer.hung = true;
        process.kill();
        process.waitForFinished();
    }
    collect(process, writer, now());
}

void WriterPool::run(QList<WriterRun>& writers)
{
    QEventLoop loop;
    std::vector<std::unique_ptr<QProcess>> processes;
    int pending = int(writers.size());

    for (qsizetype i = 0; i < writers.size(); ++i) {
        auto process = std::make_unique<QProcess>();
        setUp(*process, writers[i]);
        QProcess* p = process.get();
        WriterRun* writer = &writers[i];

        const auto kill = [this, p, writer] {
            if (p->state() != QProcess::Running || writer->killSent)
                return;
            writer->phase = phaseOf(p->processId());
            writer->killSent = true;
            p->kill();
        };
        QObject::connect(p, &QProcess::started, &loop, [this, writer, kill, &loop] {
            writer->started = true;
            writer->startedAtMs = now();
            if (writer->killDelayMs == 0)
                kill();
            else if (writer->killDelayMs > 0)
                QTimer::singleShot(writer->killDelayMs, Qt::PreciseTimer, &loop, kill);
        });
        QObject::connect(p, &QProcess::finished, &loop, [this, p, writer, &pending, &loop] {
            collect(*p, *writer, now());
            if (--pending == 0)
                loop.quit();
        });
        QObject::connect(p, &QProcess::errorOccurred, &loop,
                         [writer, &pending, &loop](QProcess::ProcessError error) {
                             if (error != QProcess::FailedToStart)
                                 return;
                             writer->standardError = "failed to start";
                             if (--pending == 0)
                                 loop.quit();
                         });
        QTimer::singleShot(writer->startDelayMs, Qt::PreciseTimer, &loop, [p] { p->start(); });
        processes.push_back(std::move(process));
    }

    QTimer watchdog;
    watchdog.setSingleShot(true);
    QObject::connect(&watchdog, &QTimer::timeout, &loop, [&] {
        for (qsizetype i = 0; i < writers.size(); ++i) {
            if (processes[size_t(i)]->state() != QProcess::NotRunning) {
                writers[i].hung = true;
                processes[size_t(i)]->kill();
            }
        }
    });
    watchdog.start(kWatchdogMs);
    if (pending > 0)
        loop.exec();
    for (auto& process : processes)
        process->waitForFinished(5000);
}

} // namespace corvanta::bench
