#include "crashsoak.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

namespace corvanta::bench {

namespace {

const QString kClient = QStringLiteral("Soak Client Ltd");

} // namespace

CrashSoak::CrashSoak(const SoakOptions& options, const QString& workDir, QTextStream& log)
    : m_options(options)
    , m_environment(workDir)
    , m_log(log)
    , m_random(options.seed)
    , m_planner(m_ledger, m_random, kClient)
    , m_pool(options.cli, m_environment.processEnvironment(), m_environment.archiveFolders())
    , m_start(options.cli, m_environment.processEnvironment())
    , m_database(m_ledger)
    , m_files(m_environment.scratch())
{
    m_typicalMs.fill(100.0);
}

bool CrashSoak::setUp()
{
    QString error;
    if (!m_environment.prepare(&error)) {
        m_log << "cannot prepare the work folder: " << error << '\n';
        return false;
    }
    // The first start makes the database list and the database; then the client every document is for.
    const StartCheck::Result first = m_start.run();
    if (!first.ok) {
        m_log << "the first start failed: " << first.detail << '\n';
        return false;
    }
    m_databasePath = first.path;
    if (!m_databasePath.startsWith(m_environment.dataFolder() + QLatin1Char('/'))) {
        m_log << "the database " << m_databasePath << " is not in the soak's own data folder "
              << m_environment.dataFolder() << '\n';
        return false;
    }
    QList<WriterRun> client(1);
    client[0].operation.arguments = {QStringLiteral("clients"), QStringLiteral("add"),
                                     QStringLiteral("--kind"),  QStringLiteral("company"),
                                     QStringLiteral("--name"),  kClient};
    m_pool.run(client);
    if (client[0].crashed || client[0].exitCode != 0) {
        m_log << "cannot add the client: " << client[0].standardError << '\n';
        return false;
    }
    return true;
}

int CrashSoak::killDelay(Operation::Kind kind)
{
    // Some the moment they start; the others anywhere up to a little past a usual run.
    if (m_random.chance(0.12))
        return 0;
    return m_random.between(1, std::max(2, int(m_typicalMs[size_t(kind)] * 1.3)));
}

QList<WriterRun> CrashSoak::planRound()
{
    // Now and then one writer alone, killed the moment it takes the lock or writes its save.
    if (m_random.chance(0.3)) {
        QList<WriterRun> aimed(1);
        aimed[0].operation = m_planner.next();
        aimed[0].aim = m_random.chance(0.5) ? WriterRun::Aim::LockFile : WriterRun::Aim::Wal;
        return aimed;
    }
    QList<WriterRun> round(m_options.writers);
    for (WriterRun& writer : round) {
        writer.operation = m_planner.next();
        writer.startDelayMs = m_random.between(0, int(m_typicalMs[size_t(writer.operation.kind)]));
        if (m_random.chance(0.7))
            writer.killDelayMs = killDelay(writer.operation.kind);
    }
    return round;
}

bool CrashSoak::overlapsAnother(const WriterRun& writer, const QList<WriterRun>& round)
{
    for (const WriterRun& other : round)
        if (&other != &writer && other.started && other.startedAtMs <= writer.finishedAtMs &&
            other.finishedAtMs >= writer.startedAtMs)
            return true;
    return false;
}

QString CrashSoak::describe(const WriterRun& writer)
{
    return QStringLiteral("corvanta-cli %1 (exit %2%3): %4")
        .arg(writer.operation.arguments.join(QLatin1Char(' ')))
        .arg(writer.exitCode)
        .arg(writer.crashed ? QStringLiteral(", by a signal") : QString())
        .arg(QString::fromUtf8(writer.standardError.trimmed()).left(300));
}

void CrashSoak::account(const QList<WriterRun>& round)
{
    for (const WriterRun& writer : round) {
        if (!writer.started) {
            m_figures.fail(QStringLiteral("a writer did not start: %1").arg(describe(writer)));
            continue;
        }
        ++m_figures.writersStarted;
        if (writer.hung) {
            m_figures.fail(QStringLiteral("a writer hung for a minute: %1").arg(describe(writer)));
            continue;
        }
        if (writer.aim != WriterRun::Aim::Delay && !writer.killSent)
            ++m_figures.aimedMissed;
        if (writer.killed()) {
            ++m_figures.kills;
            ++m_figures.killsByPhase[size_t(writer.phase)];
            if (writer.aim == WriterRun::Aim::LockFile)
                ++m_figures.killedAtLockFile;
            else if (writer.aim == WriterRun::Aim::Wal)
                ++m_figures.killedAtWal;
            else if (writer.killDelayMs == 0)
                ++m_figures.killedAtStart;
            continue;
        }
        if (writer.crashed) {
            m_figures.fail(QStringLiteral("a writer died on its own: %1").arg(describe(writer)));
            continue;
        }
        if (writer.killSent)
            ++m_figures.exitedBeforeKill;
        accountExit(writer, round);
    }
}

void CrashSoak::accountExit(const WriterRun& writer, const QList<WriterRun>& round)
{
    const Operation& operation = writer.operation;
    if (writer.exitCode == 0) {
        QJsonParseError error;
        const QJsonDocument output = QJsonDocument::fromJson(writer.standardOutput, &error);
        if (!output.isObject()) {
            m_figures.fail(QStringLiteral("exit 0 without a readable result (%1): %2")
                               .arg(error.errorString(), describe(writer)));
            return;
        }
        if (const QString problem = m_ledger.acknowledge(operation, output.object()); !problem.isEmpty())
            m_figures.fail(
                QStringLiteral("acknowledged result is wrong, %1: %2").arg(problem, describe(writer)));
        else if (!writer.killSent)
            m_typicalMs[size_t(operation.kind)] =
                0.8 * m_typicalMs[size_t(operation.kind)] + 0.2 * double(writer.durationMs());
        return;
    }
    const QString message = QString::fromUtf8(writer.standardError.trimmed());
    if (writer.exitCode == 1 && StartCheck::isRefusal(writer.standardError)) {
        if (overlapsAnother(writer, round))
            ++m_figures.refusedByLiveHolder;
        else
            m_figures.fail(
                QStringLiteral("refused although no other writer was alive: %1").arg(describe(writer)));
        return;
    }
    // Refusals of the program's rules: the ledger does not learn what an unacknowledged command
    // did, so a cancellation may meet an invoice cancelled already.
    if (writer.exitCode == 1 && operation.kind == Operation::Kind::Cancel &&
        message.startsWith(QLatin1String("Document cannot be cancelled"))) {
        ++m_figures.refusedByRule[message];
        return;
    }
    m_figures.fail(QStringLiteral("a writer failed: %1").arg(describe(writer)));
}

void CrashSoak::checkStart()
{
    ++m_figures.startChecks;
    StartCheck::Result result = m_start.run();
    if (result.ok && result.path == m_databasePath)
        return;
    if (result.ok) {
        m_figures.fail(
            QStringLiteral("the next start opened %1 instead of %2").arg(result.path, m_databasePath));
        return;
    }
    const QString lock = StartCheck::describeLock(m_databasePath);
    m_figures.fail(
        QStringLiteral("the next start after round %1 (%2 kills) failed with no writer alive: %3; %4")
            .arg(m_figures.rounds)
            .arg(m_figures.kills)
            .arg(result.detail, lock));
    // A refusal with nobody holding the database is a stale lock: it is taken away so that the
    // soak can go on looking for other faults.
    if (result.refused && QFile::remove(m_databasePath + QStringLiteral(".lock")))
        ++m_figures.staleLocksRemoved;
}

void CrashSoak::checkFiles()
{
    m_killsAtLastCheck = m_figures.kills;
    ++m_figures.databaseChecks;
    for (const QString& failure : m_database.run(m_databasePath))
        m_figures.fail(QStringLiteral("database check %1: %2").arg(m_figures.databaseChecks).arg(failure));
    m_figures.documentsInDatabase = m_database.documentsChecked();
    m_figures.documentsChecked += m_database.documentsChecked();
    ++m_figures.listChecks;
    for (const QString& failure : m_files.checkList(m_environment.listFile(), m_databasePath))
        m_figures.fail(failure);
    for (const QString& failure : m_files.checkArchives(m_environment.archiveFolders(), m_ledger.archives()))
        m_figures.fail(failure);
    m_figures.archivesChecked = m_files.archivesChecked();
}

bool CrashSoak::run()
{
    if (!setUp())
        return false;
    QElapsedTimer clock;
    clock.start();
    const qint64 end = qint64(m_options.seconds) * 1000;
    while (clock.elapsed() < end) {
        QList<WriterRun> round = planRound();
        if (round.first().aim == WriterRun::Aim::Delay)
            m_pool.run(round);
        else
            m_pool.runAimed(round.first(), m_databasePath,
                            3 * int(m_typicalMs[size_t(round.first().operation.kind)]) + 100);
        ++m_figures.rounds;
        account(round);
        checkStart();
        if (m_figures.kills - m_killsAtLastCheck >= m_options.checkEveryKills) {
            checkFiles();
            m_log << QStringLiteral("  %1 s: %2 kills, %3 documents, %4 failures\n")
                         .arg(double(clock.elapsed()) / 1000.0, 6, 'f', 1)
                         .arg(m_figures.kills, 5)
                         .arg(m_figures.documentsInDatabase, 5)
                         .arg(m_figures.failures.size());
            m_log.flush();
        }
    }
    checkStart();
    checkFiles();
    for (int kind = 0; kind < Operation::kKindCount; ++kind)
        m_figures.acknowledged[size_t(kind)] = m_ledger.acknowledged(Operation::Kind(kind));
    m_figures.seconds = double(clock.elapsed()) / 1000.0;
    return true;
}

} // namespace corvanta::bench
