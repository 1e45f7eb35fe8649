#include "companycache.h"

#include "store/editingcontext.h"
#include "store/store.h"

namespace corvanta::model {

CompanyCache& CompanyCache::of(store::Store& store)
{
    if (auto* cache = store.findChild<CompanyCache*>(QString(), Qt::FindDirectChildrenOnly))
        return *cache;
    return *new CompanyCache(store);
}

CompanyCache::CompanyCache(store::Store& store)
    : QObject(&store)
    , m_store(store)
{
    connect(&store, &store::Store::didSave, this, [this](const store::ChangeSet& changes) {
        if (changes.touches(QStringLiteral("Settings")))
            m_values.reset();
        if (changes.touches(QStringLiteral("MyCompany")))
            m_companyKey.reset();
    });
}

QVariant CompanyCache::value(const QString& key)
{
    if (!m_values) {
        // A context of its own reads what is stored, whatever another context holds unsaved.
        const std::unique_ptr<store::EditingContext> context = m_store.newContext();
        m_values.emplace();
        for (const store::Record* row : context->fetch(store::FetchRequest(QStringLiteral("Settings"))))
            m_values->insert(row->value(QStringLiteral("key")).toString(),
                             row->value(QStringLiteral("value")));
    }
    return m_values->value(key);
}

qint64 CompanyCache::companyKey()
{
    if (!m_companyKey) {
        const std::unique_ptr<store::EditingContext> context = m_store.newContext();
        const store::Record* company = context->fetchFirst(store::FetchRequest(QStringLiteral("MyCompany")));
        m_companyKey = company ? company->pk() : 0;
    }
    return *m_companyKey;
}

} // namespace corvanta::model
