#pragma once

#include "crashsoakdatabasecheck.h"
#include "crashsoakenvironment.h"
#include "crashsoakfigures.h"
#include "crashsoakfilecheck.h"
#include "crashsoakledger.h"
#include "crashsoakoptions.h"
#include "crashsoakplanner.h"
#include "crashsoakstartcheck.h"
#include "crashsoakwriters.h"
#include "random.h"

#include <QTextStream>
#include <array>

namespace corvanta::bench {

// The soak: rounds of writers, each killed or not at a random moment, the next start checked
// after every round, and the database, its list and the archives checked every so many kills
// and at the end.
class CrashSoak
{
public:
    CrashSoak(const SoakOptions& options, const QString& workDir, QTextStream& log);

    // Runs for the options' seconds; false when the database could not even be set up.
    bool run();
    const SoakFigures& figures() const { return m_figures; }

private:
    bool setUp();
    QList<WriterRun> planRound();
    int killDelay(Operation::Kind kind);
    void account(const QList<WriterRun>& round);
    void accountExit(const WriterRun& writer, const QList<WriterRun>& round);
    static bool overlapsAnother(const WriterRun& writer, const QList<WriterRun>& round);
    void checkStart();
    void checkFiles();
    static QString describe(const WriterRun& writer);

    SoakOptions m_options;
    SoakEnvironment m_environment;
    QTextStream& m_log;
    Random m_random;
    Ledger m_ledger;
    OperationPlanner m_planner;
    WriterPool m_pool;
    StartCheck m_start;
    DatabaseCheck m_database;
    FileCheck m_files;
    SoakFigures m_figures;
    QString m_databasePath;
    std::array<double, Operation::kKindCount> m_typicalMs;
    int m_killsAtLastCheck = 0;
};

} // namespace corvanta::bench
