#pragma once

#include <QCoreApplication>
#include <QString>

namespace corvanta::model {

// A company database file read through its own read-only SQLite connection, beside any store:
// for copying databases that are not open and for reading their company's name.
class ReadOnlyDatabase
{
    Q_DECLARE_TR_FUNCTIONS(ReadOnlyDatabase)

public:
    explicit ReadOnlyDatabase(const QString& file);
    ~ReadOnlyDatabase();
    ReadOnlyDatabase(const ReadOnlyDatabase&) = delete;
    ReadOnlyDatabase& operator=(const ReadOnlyDatabase&) = delete;

    // Writes a consistent copy of the database to `copy`, which must not exist yet.
    bool vacuumInto(const QString& copy, QString* error);
    // The `name` of its first MyCompany record; empty when it has none or is no database.
    QString companyName();

private:
    bool open(QString* error);

    QString m_file;
    QString m_connectionName;
    bool m_opened = false;
};

} // namespace corvanta::model
