#include "readonlydatabase.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <atomic>

namespace corvanta::model {

namespace {

QString nextConnectionName()
{
    static std::atomic<int> counter{0};
    return QStringLiteral("corvanta-readonly-%1").arg(++counter);
}

} // namespace

ReadOnlyDatabase::ReadOnlyDatabase(const QString& file)
    : m_file(file)
    , m_connectionName(nextConnectionName())
{}

ReadOnlyDatabase::~ReadOnlyDatabase()
{
    if (QSqlDatabase::contains(m_connectionName)) {
        {
            QSqlDatabase db = QSqlDatabase::database(m_connectionName, false);
            db.close();
        }
        QSqlDatabase::removeDatabase(m_connectionName);
    }
}

bool ReadOnlyDatabase::open(QString* error)
{
    if (m_opened)
        return true;
    if (!QFileInfo(m_file).isFile()) {
        if (error)
            *error = tr("The database \"%1\" does not exist.").arg(m_file);
        return false;
    }
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    db.setDatabaseName(m_file);
    db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=5000"));
    if (!db.open()) {
        if (error)
            *error = db.lastError().text();
        return false;
    }
    m_opened = true;
    return true;
}

bool ReadOnlyDatabase::vacuumInto(const QString& copy, QString* error)
{
    if (QFileInfo::exists(copy)) {
        if (error)
            *error = tr("The copy \"%1\" already exists.").arg(copy);
        return false;
    }
    if (!open(error))
        return false;
    QSqlQuery q(QSqlDatabase::database(m_connectionName, false));
    q.prepare(QStringLiteral("VACUUM INTO ?"));
    q.addBindValue(copy);
    if (!q.exec()) {
        if (error)
            *error = q.lastError().text();
        QFile::remove(copy);
        return false;
    }
    return true;
}

QString ReadOnlyDatabase::companyName()
{
    if (!open(nullptr))
        return {};
    QSqlQuery q(QSqlDatabase::database(m_connectionName, false));
    if (q.exec(QStringLiteral("SELECT \"name\" FROM \"MyCompany\" ORDER BY pk LIMIT 1")) && q.next())
        return q.value(0).toString().trimmed();
    return {};
}

} // namespace corvanta::model
