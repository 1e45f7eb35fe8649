#pragma once

#include "store/storefile.h"

#include <QString>

namespace corvanta::companies {

// A company database that is not open, read without a store of its own: the consistent
// snapshot that an archive takes of it, and the name of its company.
class ReadOnlyDatabase
{
public:
    explicit ReadOnlyDatabase(const QString& file);

    // Writes a consistent copy of the database to `copy`, which must not exist yet.
    bool vacuumInto(const QString& copy, QString* error);
    // The `name` of its first MyCompany record, trimmed; empty when it has none or is no database.
    QString companyName();

private:
    store::StoreFile m_file;
};

} // namespace corvanta::companies
