#include "readonlydatabase.h"

namespace corvanta::companies {

ReadOnlyDatabase::ReadOnlyDatabase(const QString& file)
    : m_file(file)
{}

bool ReadOnlyDatabase::vacuumInto(const QString& copy, QString* error)
{
    return m_file.writeCopy(copy, error);
}

QString ReadOnlyDatabase::companyName()
{
    return m_file.firstValue(QStringLiteral("MyCompany"), QStringLiteral("name")).toString().trimmed();
}

} // namespace corvanta::companies
