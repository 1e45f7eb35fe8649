#pragma once

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

namespace corvanta::documents::testing {

// Makes every write of one kind (INSERT, UPDATE or DELETE) to a table of a company database fail,
// through a trigger set from a second connection, for as long as the object lives: a real
// failure in the middle of a save, after the statements before it have run.
class ForcedFailure
{
public:
    ForcedFailure(const QString& databasePath, const QString& table, const QString& operation)
        : m_connection(QUuid::createUuid().toString())
        , m_trigger(QStringLiteral("forced_failure_%1_%2").arg(table, operation.toLower()))
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
        db.setDatabaseName(databasePath);
        if (!db.open())
            qFatal("cannot open the database for a forced failure");
        run(QStringLiteral(
                "CREATE TRIGGER \"%1\" BEFORE %2 ON \"%3\" BEGIN SELECT RAISE(ABORT, 'forced failure'); END")
                .arg(m_trigger, operation, table));
    }
    ~ForcedFailure()
    {
        run(QStringLiteral("DROP TRIGGER IF EXISTS \"%1\"").arg(m_trigger));
        QSqlDatabase::database(m_connection).close();
        QSqlDatabase::removeDatabase(m_connection);
    }
    ForcedFailure(const ForcedFailure&) = delete;
    ForcedFailure& operator=(const ForcedFailure&) = delete;

private:
    void run(const QString& sql)
    {
        QSqlQuery query(QSqlDatabase::database(m_connection));
        if (!query.exec(sql))
            qFatal("forced failure: %s", qPrintable(query.lastError().text()));
    }

    QString m_connection;
    QString m_trigger;
};

} // namespace corvanta::documents::testing
