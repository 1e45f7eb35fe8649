#include "crashsoakstartcheck.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

namespace corvanta::bench {

StartCheck::StartCheck(QString cli, QProcessEnvironment environment)
    : m_cli(std::move(cli))
    , m_environment(std::move(environment))
{}

bool StartCheck::isRefusal(const QByteArray& standardError)
{
    return standardError.contains("is already open in another running instance of Corvanta");
}

StartCheck::Result StartCheck::run() const
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(m_cli, {QStringLiteral("--json"), QStringLiteral("info")});
    Result result;
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        result.detail = QStringLiteral("info did not end within a minute");
        return result;
    }
    const QByteArray error = process.readAllStandardError().trimmed();
    result.refused = isRefusal(error);
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        result.detail =
            QStringLiteral("info exited %1: %2").arg(process.exitCode()).arg(QString::fromUtf8(error));
        return result;
    }
    result.path = QJsonDocument::fromJson(process.readAllStandardOutput())
                      .object()
                      .value(QStringLiteral("path"))
                      .toString();
    result.ok = !result.path.isEmpty();
    if (!result.ok)
        result.detail = QStringLiteral("info printed no database path");
    return result;
}

QString StartCheck::describeLock(const QString& database)
{
    QFile lock(database + QStringLiteral(".lock"));
    if (!lock.exists())
        return QStringLiteral("no lock file");
    if (!lock.open(QIODevice::ReadOnly))
        return QStringLiteral("an unreadable lock file");
    const QByteArray content = lock.read(200);
    return QStringLiteral("lock file of %1 bytes: \"%2\"")
        .arg(QFileInfo(lock).size())
        .arg(QString::fromUtf8(content).replace(QLatin1Char('\n'), QLatin1String("\\n")));
}

} // namespace corvanta::bench
