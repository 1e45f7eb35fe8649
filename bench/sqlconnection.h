#pragma once

#include <QSqlDatabase>
#include <QString>

namespace corvanta::bench {

// A plain Qt SQL connection to a company database file, with the pragmas the store uses
// (write-ahead log, full synchronous writes, foreign keys). Closed and removed on destruction.
class SqlConnection
{
public:
    explicit SqlConnection(const QString& path);
    ~SqlConnection();
    SqlConnection(const SqlConnection&) = delete;
    SqlConnection& operator=(const SqlConnection&) = delete;

    bool open(QString* error);
    QSqlDatabase database() const;

private:
    QString m_path;
    QString m_name;
};

} // namespace corvanta::bench
