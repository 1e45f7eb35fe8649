#pragma once

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace corvanta::ui::testing {

// A second connection that holds a company database's write lock, as another program writing to
// the file would: every save of the store waits for it, then fails.
class DatabaseWriteLock
{
public:
    explicit DatabaseWriteLock(const QString& file)
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name());
        database.setDatabaseName(file);
        QSqlQuery begin(database);
        if (!database.open() || !begin.exec(QStringLiteral("BEGIN IMMEDIATE")))
            qFatal("cannot lock the database: %s", qPrintable(database.lastError().text()));
    }
    ~DatabaseWriteLock()
    {
        QSqlDatabase::database(name()).close();
        QSqlDatabase::removeDatabase(name());
    }
    DatabaseWriteLock(const DatabaseWriteLock&) = delete;
    DatabaseWriteLock& operator=(const DatabaseWriteLock&) = delete;

private:
    static QString name() { return QStringLiteral("corvanta_test_write_lock"); }
};

} // namespace corvanta::ui::testing
