#include "measuredprocess.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace corvanta::bench {

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

QString MeasuredProcess::peakmeter()
{
    return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("peakmeter"));
}

MeasuredProcess::Result MeasuredProcess::run() const
{
    Result result;
    QTemporaryDir scratch;
    const QString figures = scratch.filePath(QStringLiteral("figures"));
    const QString devNull = QStringLiteral("/dev/null");

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString& entry : m_environment) {
        const qsizetype equals = entry.indexOf(QLatin1Char('='));
        environment.insert(entry.left(equals), entry.mid(equals + 1));
    }
    QProcess meter;
    meter.setProcessEnvironment(environment);
    meter.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    meter.start(peakmeter(), QStringList{figures, m_standardOutput.isEmpty() ? devNull : m_standardOutput,
                                         m_standardError.isEmpty() ? devNull : m_standardError, m_program} +
                                 m_arguments);
    if (!meter.waitForFinished(-1) || meter.exitStatus() != QProcess::NormalExit || meter.exitCode() != 0) {
        result.error = QStringLiteral("cannot run %1 through %2").arg(m_program, peakmeter());
        return result;
    }

    // "EXIT SIGNAL SECONDS PEAK_BYTES"
    QFile file(figures);
    const QList<QByteArray> fields =
        file.open(QIODevice::ReadOnly) ? file.readAll().simplified().split(' ') : QList<QByteArray>{};
    if (fields.size() != 4) {
        result.error = QStringLiteral("%1 reported nothing for %2").arg(peakmeter(), m_program);
        return result;
    }
    result.started = true;
    result.exitCode = fields.at(0).toInt();
    result.seconds = fields.at(2).toDouble();
    result.peakBytes = fields.at(3).toLongLong();
    if (fields.at(1).toInt() != 0)
        result.error =
            QStringLiteral("%1 was killed by signal %2").arg(m_program, QString::fromLatin1(fields.at(1)));
    else if (result.exitCode != 0)
        result.error = QStringLiteral("%1 exited with %2").arg(m_program).arg(result.exitCode);
    return result;
}

} // namespace corvanta::bench
