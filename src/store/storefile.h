#pragma once

#include <QString>
#include <QVariant>
#include <memory>

namespace corvanta::store {

class SqliteDatabase;

// A database file read through a read-only connection of its own, beside any store that may
// have it open: for copying databases that are not open and for peeking at one value in them.
// Nothing is checked or migrated; a file that is no database simply yields nothing.
class StoreFile
{
public:
    explicit StoreFile(const QString& path);
    ~StoreFile();
    StoreFile(const StoreFile&) = delete;
    StoreFile& operator=(const StoreFile&) = delete;

    // Writes a consistent copy of the database as committed so far to `copy`, which must not
    // exist yet.
    bool writeCopy(const QString& copy, QString* error);
    // The value of `attribute` in the record of `entity` with the lowest key; null when there
    // is none or the file cannot be read.
    QVariant firstValue(const QString& entity, const QString& attribute);

private:
    bool open(QString* error);

    QString m_path;
    std::unique_ptr<SqliteDatabase> m_database;
    bool m_opened = false;
};

} // namespace corvanta::store
