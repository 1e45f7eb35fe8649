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

// The words of a command line; none of them holds a blank.
inline QStringList words(QAnyStringView line)
{
    return line.toString().split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

// A new invoice for the client of Cli::addClientAndItems(), with more options.
inline QString invoice(QAnyStringView options)
{
    return s("documents new --type invoice --client Acme ") + options.toString();
}

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;

    // The one JSON value printed (an empty object when there is none).
    QJsonValue json() const
    {
        const QJsonDocument document = QJsonDocument::fromJson(out.toUtf8());
        return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
    }
    QString line(int index) const { return out.section(QLatin1Char('\n'), index, index); }
};

// The built corvanta-cli run as a user runs it, in a home folder (and working folder) of its own,
// so that the database list, the databases and the copies it makes never touch the real user's
// files.
class Cli
{
public:
    Cli() { QDir().mkpath(m_home.filePath(s("Desktop"))); }

    QString home() const { return m_home.path(); }
    QString path(QAnyStringView name) const { return m_home.filePath(name.toString()); }
    // The company database that run() names with --database.
    QString database() const { return path("company.cvdb"); }

    // corvanta-cli with these arguments exactly.
    Run exec(const QStringList& arguments) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(s("HOME"), home());
        environment.insert(s("XDG_DATA_HOME"), path("data"));
        environment.insert(s("XDG_CONFIG_HOME"), path("config"));
        environment.insert(s("XDG_CACHE_HOME"), path("cache"));
        environment.insert(s("TMPDIR"), home());
        environment.insert(s("TZ"), s("UTC"));
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(home());
        process.start(QStringLiteral(CORVANTA_CLI), arguments);
        if (!process.waitForFinished(60000))
            qWarning("corvanta-cli did not finish: %s", qPrintable(arguments.join(QLatin1Char(' '))));
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }
    Run raw(QAnyStringView line) const { return exec(words(line)); }
    // corvanta-cli on the test's database.
    Run run(QAnyStringView line) const
    {
        return exec(QStringList{s("--database"), database()} + words(line));
    }
    Run run(const QStringList& arguments) const
    {
        return exec(QStringList{s("--database"), database()} + arguments);
    }
    // The same with --json: the value it printed.
    QJsonValue json(QAnyStringView line) const { return run(s("--json ") + line.toString()).json(); }
    QJsonValue json(const QStringList& arguments) const
    {
        return run(QStringList{s("--json")} + arguments).json();
    }
    QJsonObject document(const QString& number) const
    {
        return json(s("documents show ") + number).toObject();
    }
    double stock(QAnyStringView item) const
    {
        return json(s("items show ") + item.toString())[s("stock_current")].toDouble();
    }

    // The client and items the scenarios work with. Bolt: 10 with the tax "10%"; Labour: 100
    // without tax.
    void addClientAndItems() const
    {
        for (const char* line : {"clients add --kind company --name Acme",
                                 "items add --name Bolt --price 10 --tax 10% --unit Each",
                                 "items add --name Labour --kind service --price 100"}) {
            const Run done = run(line);
            QVERIFY2(done.exitCode == 0, qPrintable(done.err));
        }
    }

private:
    QTemporaryDir m_home;
};

} // namespace corvanta::cli::testing
