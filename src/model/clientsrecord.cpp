#include "clientsrecord.h"

#include "companycache.h"

namespace corvanta::model {

ClientsRecord::ClientsRecord(const Init& init, CompanyCache& settings)
    : Record(init)
    , m_settings(settings)
{}

QString ClientsRecord::fullName(qint64 type, const QString& companyName, const QString& firstName,
                                const QString& lastName, qint64 firstNamePosition)
{
    if (type <= 1)
        return companyName.trimmed();
    const QString joined = firstNamePosition == 0 ? QStringLiteral("%1 %2").arg(firstName, lastName)
                                                  : QStringLiteral("%1 %2").arg(lastName, firstName);
    return joined.trimmed();
}

void ClientsRecord::updateFullName()
{
    const qint64 position = m_settings.value(QStringLiteral("first_name_position")).toLongLong();
    const QString name = fullName(primitiveValue(QStringLiteral("type")).toLongLong(),
                                  primitiveValue(QStringLiteral("company_name")).toString(),
                                  primitiveValue(QStringLiteral("first_name")).toString(),
                                  primitiveValue(QStringLiteral("last_name")).toString(), position);
    // A stored name made under another setting is corrected at the next save.
    setPrimitiveValue(QStringLiteral("full_name"), name, true);
}

void ClientsRecord::awakeFromFetch()
{
    updateFullName();
}

void ClientsRecord::awakeFromInsert()
{
    updateFullName();
}

void ClientsRecord::didChangeValue(const QString& key)
{
    if (key == QLatin1String("type") || key == QLatin1String("company_name") ||
        key == QLatin1String("first_name") || key == QLatin1String("last_name"))
        updateFullName();
}

QVariant ClientsRecord::willSetValue(const QString& key, const QVariant& value)
{
    if ((key == QLatin1String("emails") || key == QLatin1String("phones")) &&
        (value.typeId() == QMetaType::QStringList || value.typeId() == QMetaType::QVariantList))
        return value.toStringList().join(QLatin1Char(','));
    return value;
}

} // namespace corvanta::model
