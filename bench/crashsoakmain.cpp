// crash_soak: corvanta-cli writers on one company database, killed with SIGKILL at random
// moments, and the checks that every acknowledged save is kept, no half-done save is left, the
// database list and the archives stay whole and the next start is never refused.
//
//   crash_soak --cli build/bin/corvanta-cli --seconds 30 [--workdir DIR] [--seed S] [--writers K]
//
// Exit status: 0 when every check passed, 1 when one failed, 2 when the soak could not run.

#include "crashsoak.h"
#include "crashsoakoptions.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTextStream>

using namespace corvanta::bench;

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);

    QString error;
    const std::optional<SoakOptions> options = SoakOptions::parse(QCoreApplication::arguments(), &error);
    if (!options) {
        err << error << '\n';
        return 2;
    }

    QTemporaryDir temporary;
    QString workDir = options->workDir;
    if (workDir.isEmpty()) {
        if (!temporary.isValid()) {
            err << "cannot make a temporary folder\n";
            return 2;
        }
        workDir = temporary.path();
    } else if (QDir(workDir).exists() && !QDir(workDir).isEmpty()) {
        err << "the work folder " << workDir << " is not empty\n";
        return 2;
    }

    out << QStringLiteral("crash soak: %1 s, %2 writers at a time, seed %3, work folder %4\n")
               .arg(options->seconds)
               .arg(options->writers)
               .arg(options->seed)
               .arg(workDir);
    out.flush();
    CrashSoak soak(*options, workDir, out);
    if (!soak.run())
        return 2;
    soak.figures().print(out);
    const bool passed = soak.figures().failures.isEmpty();
    if (!passed && options->workDir.isEmpty()) {
        temporary.setAutoRemove(false);
        out << "the work folder is kept: " << workDir << '\n';
    }
    return passed ? 0 : 1;
}
