#include "storefile.h"

#include "sqlite/sqlitedatabase.h"

namespace corvanta::store {

StoreFile::StoreFile(const QString& path)
    : m_path(path)
    , m_database(std::make_unique<SqliteDatabase>())
{}

StoreFile::~StoreFile() = default;

bool StoreFile::open(QString* error)
{
    if (!m_opened)
        m_opened = m_database->openReadOnly(m_path, error);
    return m_opened;
}

bool StoreFile::writeCopy(const QString& copy, QString* error)
{
    return open(error) && m_database->writeCopy(copy, error);
}

QVariant StoreFile::firstValue(const QString& entity, const QString& attribute)
{
    QString error;
    return open(&error) ? m_database->firstValue(entity, attribute) : QVariant();
}

} // namespace corvanta::store
