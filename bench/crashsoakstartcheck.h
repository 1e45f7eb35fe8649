#pragma once

#include <QProcessEnvironment>
#include <QString>

namespace corvanta::bench {

// The next start after a crash: `corvanta-cli info` on the database of the list must open it.
class StartCheck
{
public:
    struct Result
    {
        bool ok = false;
        bool refused = false; // told that another running instance has the database open
        QString path;         // of the database info opened
        QString detail;       // what went wrong
    };

    StartCheck(QString cli, QProcessEnvironment environment);

    Result run() const;
    // What the lock file beside `database` holds, for a report of a refused start.
    static QString describeLock(const QString& database);

    static bool isRefusal(const QByteArray& standardError);

private:
    QString m_cli;
    QProcessEnvironment m_environment;
};

} // namespace corvanta::bench
