#pragma once

#include <QCoreApplication>
#include <QHash>
#include <QVariant>

namespace corvanta::store {
class EditingContext;
struct StoreError;
} // namespace corvanta::store

namespace corvanta::model {

// Key/value access to the `Settings` records of the open company database, through the main
// editing context.
class CompanySettings
{
    Q_DECLARE_TR_FUNCTIONS(CompanySettings)

public:
    explicit CompanySettings(store::EditingContext& mainContext);

    // Reads every Settings row afresh and returns the value of `key`, or null when no row has it.
    QVariant setting(const QString& key);
    // Sets the value of the first row with `key` and saves the context. A key without a row
    // stores nothing (rows are only created with the defaults), but the context is still saved.
    bool setSetting(const QString& key, const QVariant& value, store::StoreError* error = nullptr);

    // The values of the last read, by key.
    const QHash<QString, QVariant>& settingsDictionary() const { return m_settingsDictionary; }

private:
    store::EditingContext& m_context;
    QHash<QString, QVariant> m_settingsDictionary;
};

} // namespace corvanta::model
