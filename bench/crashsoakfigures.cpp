#include "crashsoakfigures.h"

namespace corvanta::bench {

void SoakFigures::print(QTextStream& out) const
{
    const auto line = [&out](const QString& what, const QString& value) {
        out << QStringLiteral("  %1 %2\n").arg(what, -40).arg(value);
    };
    out << "crash soak figures\n";
    line(QStringLiteral("seconds"), QString::number(seconds, 'f', 1));
    line(QStringLiteral("rounds of writers"), QString::number(rounds));
    line(QStringLiteral("writer processes started"), QString::number(writersStarted));
    line(QStringLiteral("kills (SIGKILL landed)"), QString::number(kills));
    for (int phase = 0; phase < kKillPhaseCount; ++phase)
        line(QStringLiteral("  %1").arg(killPhaseName(KillPhase(phase))),
             QString::number(killsByPhase[size_t(phase)]));
    line(QStringLiteral("  of them the moment it started"), QString::number(killedAtStart));
    line(QStringLiteral("  of them the moment it touched the lock"), QString::number(killedAtLockFile));
    line(QStringLiteral("  of them the moment it wrote the WAL"), QString::number(killedAtWal));
    line(QStringLiteral("aimed kills that found nothing to aim at"), QString::number(aimedMissed));
    line(QStringLiteral("exited before its kill landed"), QString::number(exitedBeforeKill));
    int total = 0;
    for (int kind = 0; kind < Operation::kKindCount; ++kind)
        total += acknowledged[size_t(kind)];
    line(QStringLiteral("acknowledged operations"), QString::number(total));
    for (int kind = 0; kind < Operation::kKindCount; ++kind)
        line(QStringLiteral("  %1").arg(Operation::kindName(Operation::Kind(kind))),
             QString::number(acknowledged[size_t(kind)]));
    line(QStringLiteral("refused: database held by a live writer"), QString::number(refusedByLiveHolder));
    for (auto it = refusedByRule.cbegin(); it != refusedByRule.cend(); ++it)
        line(QStringLiteral("refused by a rule: %1").arg(it.key().left(60)), QString::number(it.value()));
    line(QStringLiteral("documents in the database at the end"), QString::number(documentsInDatabase));
    line(QStringLiteral("documents checked over all checks"), QString::number(documentsChecked));
    line(QStringLiteral("database checks"), QString::number(databaseChecks));
    line(QStringLiteral("database list checks"), QString::number(listChecks));
    line(QStringLiteral("archives checked"), QString::number(archivesChecked));
    line(QStringLiteral("next-start checks"), QString::number(startChecks));
    if (staleLocksRemoved > 0)
        line(QStringLiteral("stale locks removed to go on"), QString::number(staleLocksRemoved));
    line(QStringLiteral("failures"), QString::number(failures.size()));
    constexpr qsizetype kShown = 60;
    for (const QString& failure : failures.mid(0, kShown))
        out << "  FAIL " << failure << '\n';
    if (failures.size() > kShown)
        out << "  ... and " << failures.size() - kShown << " more failures\n";
    out << (failures.isEmpty() ? "crash soak passed\n" : "crash soak FAILED\n");
    out.flush();
}

} // namespace corvanta::bench
