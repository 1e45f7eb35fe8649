#include "companysettings.h"

#include "store/editingcontext.h"

namespace corvanta::model {

using store::EditingContext;
using store::FetchRequest;
using store::Record;
using store::StoreError;

using predicate::Predicate;

CompanySettings::CompanySettings(EditingContext& mainContext)
    : m_context(mainContext)
{}

QVariant CompanySettings::setting(const QString& key)
{
    m_settingsDictionary.clear();
    for (const Record* row : m_context.fetch(FetchRequest(QStringLiteral("Settings"))))
        m_settingsDictionary.insert(row->value(QStringLiteral("key")).toString(),
                                    row->value(QStringLiteral("value")));
    return m_settingsDictionary.value(key);
}

bool CompanySettings::setSetting(const QString& key, const QVariant& value, StoreError* error)
{
    const QList<Record*> rows = m_context.fetch(
        FetchRequest(QStringLiteral("Settings"),
                     Predicate::compare(QStringLiteral("key"), Predicate::Operator::Equal, key)));
    if (!rows.isEmpty())
        rows.first()->setValue(QStringLiteral("value"), value);
    if (!m_context.save(error))
        return false;
    if (key == QLatin1String("first_name_position") && !rows.isEmpty()) {
        // Stored client names follow the new order: loading each client derives its name again.
        m_context.fetch(
            FetchRequest(QStringLiteral("Clients"),
                         Predicate::compare(QStringLiteral("type"), Predicate::Operator::Greater, 1)));
        return m_context.save(error);
    }
    return true;
}

} // namespace corvanta::model
