#pragma once

#include "crashsoakoperation.h"
#include "crashsoakwriters.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QTextStream>
#include <array>

namespace corvanta::bench {

// The counts a soak prints at its end, and every failure it found.
struct SoakFigures
{
    double seconds = 0;
    int rounds = 0;
    int writersStarted = 0;
    int kills = 0;
    std::array<int, kKillPhaseCount> killsByPhase{};
    int killedAtStart = 0;    // killed the moment the process started
    int killedAtLockFile = 0; // the moment it touched the lock file
    int killedAtWal = 0;      // the moment it wrote to the write-ahead log
    int aimedMissed = 0;      // aimed at a file it did not touch in time
    int exitedBeforeKill = 0;
    std::array<int, Operation::kKindCount> acknowledged{};
    int refusedByLiveHolder = 0;
    QMap<QString, int> refusedByRule; // a guard of the program, by message
    int documentsInDatabase = 0;      // found and checked by the last database check
    int documentsChecked = 0;         // over all database checks
    int databaseChecks = 0;
    int listChecks = 0;
    int archivesChecked = 0;
    int startChecks = 0;
    int staleLocksRemoved = 0;
    QStringList failures;

    void fail(const QString& failure) { failures << failure; }
    void print(QTextStream& out) const;
};

} // namespace corvanta::bench
