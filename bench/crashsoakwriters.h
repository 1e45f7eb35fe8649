#pragma once

#include "crashsoakoperation.h"

#include <QByteArray>
#include <QList>
#include <QProcessEnvironment>
#include <QString>

class QProcess;

namespace corvanta::bench {

// What a writer's process had open when it was killed, read from /proc just before the kill;
// AfterOutput when it had already printed (part of) its result.
enum class KillPhase { Starting, DatabaseList, Lock, Database, Archive, AfterOutput };
constexpr int kKillPhaseCount = 6;
QString killPhaseName(KillPhase phase);

// One writer: its command, when it starts and whether and when it is killed, and how it ended.
struct WriterRun
{
    // When the kill is sent: after a delay, or the moment the writer touches the lock file or
    // writes to the database's write-ahead log.
    enum class Aim { Delay, LockFile, Wal };

    Operation operation;
    Aim aim = Aim::Delay;
    int startDelayMs = 0;
    int killDelayMs = -1; // after the process started; -1: never killed

    bool started = false;
    qint64 startedAtMs = -1; // on the pool's clock
    qint64 finishedAtMs = -1;
    bool killSent = false;
    KillPhase phase = KillPhase::Starting;
    bool hung = false;    // ended by the pool's watchdog
    bool crashed = false; // ended by a signal (the kill, or not)
    int exitCode = -1;
    QByteArray standardOutput;
    QByteArray standardError;

    // Ended by the kill the pool sent, rather than having exited before it landed.
    bool killed() const { return killSent && crashed && !hung; }
    qint64 durationMs() const { return finishedAtMs - startedAtMs; }
};

// Runs a batch of writers at once: each corvanta-cli starts after its delay (an argument list,
// no shell) and is killed with SIGKILL after its own delay; returns when every one has ended.
class WriterPool
{
public:
    WriterPool(QString cli, QProcessEnvironment environment, QStringList archiveFolders);

    void run(QList<WriterRun>& writers);
    // Runs one writer alone and kills it the moment it touches the file its aim names, watched
    // with inotify; one that does not within `patienceMs` runs to its end.
    void runAimed(WriterRun& writer, const QString& database, int patienceMs);
    // Milliseconds since the pool was made; the clock of startedAtMs and finishedAtMs.
    qint64 now() const;

private:
    KillPhase phaseOf(qint64 pid) const;
    void setUp(QProcess& process, const WriterRun& writer) const;
    static void collect(QProcess& process, WriterRun& writer, qint64 finishedAtMs);

    QString m_cli;
    QProcessEnvironment m_environment;
    QStringList m_archiveFolders;
    qint64 m_epochNs;
};

} // namespace corvanta::bench
