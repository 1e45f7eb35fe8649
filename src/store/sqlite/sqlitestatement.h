#pragma once

#include <QString>
#include <QVariant>
#include <memory>

struct sqlite3;
struct sqlite3_stmt;

namespace corvanta::store {

// A statement prepared directly on the store's SQLite connection, for the hot path of writing
// records: binding through Qt costs more per value than SQLite's own work, and a record row
// binds dozens of values. Values left unbound are NULL.
class SqliteStatement
{
public:
    static std::unique_ptr<SqliteStatement> prepare(sqlite3* db, const QString& sql, QString* error);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    // Binds a value at a 0-based position (qint64, int, bool, double, QString, QByteArray).
    void bind(int index, const QVariant& value);
    // Runs the statement and makes it ready for the next values.
    bool run(QString* error);

private:
    SqliteStatement(sqlite3* db, sqlite3_stmt* statement);

    sqlite3* m_db;
    sqlite3_stmt* m_statement;
};

} // namespace corvanta::store
