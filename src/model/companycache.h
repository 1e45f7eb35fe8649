#pragma once

#include <QHash>
#include <QObject>
#include <QVariant>
#include <optional>

namespace corvanta::store {
class Store;
}

namespace corvanta::model {

// What a company database stores once and rules read on every use: its `Settings` values (a
// number format, the finalising sound, the first-name position of client names) and the key of
// its company record. Read once, and read again after any save that changed a setting or the
// company record. Values not yet saved are not seen.
class CompanyCache : public QObject
{
    Q_OBJECT

public:
    // The cache of a store, made on its first use; the store owns it.
    static CompanyCache& of(store::Store& store);

    // The stored value of `key`; null when no setting has it.
    QVariant value(const QString& key);
    // The key of the stored MyCompany record; 0 when none is stored.
    qint64 companyKey();

private:
    explicit CompanyCache(store::Store& store);

    store::Store& m_store;
    std::optional<QHash<QString, QVariant>> m_values;
    std::optional<qint64> m_companyKey;
};

} // namespace corvanta::model
