#include "sqlconnection.h"

#include <QSqlError>
#include <QSqlQuery>

namespace corvanta::bench {

SqlConnection::SqlConnection(const QString& path)
    : m_path(path)
{
    static int counter = 0;
    m_name = QStringLiteral("bench-plain-%1").arg(++counter);
}

SqlConnection::~SqlConnection()
{
    if (!QSqlDatabase::contains(m_name))
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(m_name, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(m_name);
}

bool SqlConnection::open(QString* error)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
    db.setDatabaseName(m_path);
    db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
    if (!db.open()) {
        *error = db.lastError().text();
        return false;
    }
    QSqlQuery q(db);
    for (const QString& pragma :
         {QStringLiteral("PRAGMA journal_mode = WAL"), QStringLiteral("PRAGMA synchronous = FULL"),
          QStringLiteral("PRAGMA foreign_keys = ON")}) {
        if (!q.exec(pragma)) {
            *error = q.lastError().text();
            return false;
        }
    }
    return true;
}

QSqlDatabase SqlConnection::database() const
{
    return QSqlDatabase::database(m_name, false);
}

} // namespace corvanta::bench
