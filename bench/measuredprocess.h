#pragma once

#include <QString>
#include <QStringList>

namespace corvanta::bench {

// Runs one program to its end as a child process (an argument list, never a shell) and
// measures it from the outside: the wall time from start to exit, and its peak resident memory
// as the kernel reports it to wait4(). The run goes through the small peakmeter program beside
// this one, so that the peak is the program's own and not this large process's (see
// peakmeter.cpp). Standard output and error go to files, so that a failing run can be looked
// at and a chatty one does not slow the terminal.
class MeasuredProcess
{
public:
    struct Result
    {
        bool started = false;
        int exitCode = -1; // -1 when killed by a signal or not started
        double seconds = 0.0;
        qint64 peakBytes = -1;
        QString error; // why it did not start or did not exit normally

        bool succeeded() const { return started && exitCode == 0; }
    };

    // `environment` entries ("NAME=value") are added to this process's environment.
    MeasuredProcess(QString program, QStringList arguments, QStringList environment = {});

    // Files that receive the child's standard output and error; /dev/null without them.
    void setOutputFiles(const QString& standardOutput, const QString& standardError);

    Result run() const;

    // The absolute path of `program` found on PATH, or empty.
    static QString findProgram(const QString& program);

private:
    static QString peakmeter();

    QString m_program;
    QStringList m_arguments;
    QStringList m_environment;
    QString m_standardOutput;
    QString m_standardError;
};

} // namespace corvanta::bench
