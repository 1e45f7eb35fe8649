#include "companyrecord.h"

#include "companycache.h"
#include "store/editingcontext.h"

namespace corvanta::model {

using store::Record;

Record* CompanyRecord::of(store::EditingContext& context)
{
    // Rows recompute their amounts on every change and ask for the company each time: the
    // stored company is reached by its key, without a fetch. A company not stored yet (a new
    // database being filled) is looked for among the context's own records.
    if (const qint64 key = CompanyCache::of(context.store()).companyKey()) {
        Record* company = context.record({QStringLiteral("MyCompany"), key});
        return company->isDeleted() ? nullptr : company;
    }
    return context.fetchFirst(store::FetchRequest(QStringLiteral("MyCompany")));
}

Record* CompanyRecord::defaultRecord(store::EditingContext& context, const QString& key)
{
    const Record* company = of(context);
    return company ? company->related(key) : nullptr;
}

} // namespace corvanta::model
