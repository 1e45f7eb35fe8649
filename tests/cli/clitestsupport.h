#pragma once

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace corvanta::cli::testing {

inline QString s(const char* text)
{
    return QString::fromUtf8(text);
}

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;

    QJsonValue json() const
    {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(out.toUtf8(), &error);
        if (error.error != QJsonParseError::NoError)
            qWarning("not one JSON value (%s): %s", qPrintable(error.errorString()), qPrintable(out));
        return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
    }
    QString firstLine() const { return out.section(QLatin1Char('\n'), 0, 0); }
};

// The built corvanta-cli run as a user runs it, in a home folder of its own, so that the database
// list, the databases and the copies it makes never touch the real user's files.
class Cli
{
public:
    Cli() { QDir().mkpath(m_home.filePath(s("Desktop"))); }

    QString home() const { return m_home.path(); }
    QString path(const QString& name) const { return m_home.filePath(name); }
    // The company database the runs name with --database.
    QString database() const { return m_home.filePath(s("company.cvdb")); }

    // corvanta-cli with these arguments exactly.
    Run raw(const QStringList& arguments) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(s("HOME"), m_home.path());
        environment.insert(s("XDG_DATA_HOME"), m_home.filePath(s("data")));
        environment.insert(s("XDG_CONFIG_HOME"), m_home.filePath(s("config")));
        environment.insert(s("XDG_CACHE_HOME"), m_home.filePath(s("cache")));
        environment.insert(s("TMPDIR"), m_home.path());
        environment.insert(s("TZ"), s("UTC"));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(CORVANTA_CLI), arguments);
        if (!process.waitForFinished(60000))
            qWarning("corvanta-cli did not finish: %s", qPrintable(arguments.join(QLatin1Char(' '))));
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }
    // corvanta-cli on the test's database.
    Run run(const QStringList& arguments) const
    {
        return raw(QStringList{s("--database"), database()} + arguments);
    }
    // The same with --json; the value it printed.
    QJsonValue json(const QStringList& arguments) const
    {
        return run(QStringList{s("--json")} + arguments).json();
    }
    QJsonObject document(const QString& number) const
    {
        return json({s("documents"), s("show"), number}).toObject();
    }

private:
    QTemporaryDir m_home;
};

} // namespace corvanta::cli::testing
