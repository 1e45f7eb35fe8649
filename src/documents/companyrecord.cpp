#include "companyrecord.h"

#include "documenttypes.h"
#include "model/editingcontext.h"

namespace corvanta::documents {

using model::Record;

Record* CompanyRecord::of(model::EditingContext& context)
{
    return context.fetchFirst(model::FetchRequest(QStringLiteral("MyCompany")));
}

Record* CompanyRecord::defaultRecord(model::EditingContext& context, const QString& key)
{
    const Record* company = of(context);
    return company ? company->related(key) : nullptr;
}

Record* CompanyRecord::defaultTemplate(model::EditingContext& context, qint64 type)
{
    if (!DocumentTypes::isValid(type))
        return nullptr;
    return defaultRecord(context,
                         QStringLiteral("default_template_") + DocumentTypes::typeNameByNumber(type));
}

} // namespace corvanta::documents
