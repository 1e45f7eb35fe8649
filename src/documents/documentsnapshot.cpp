#include "documentsnapshot.h"

#include "model/companyrecord.h"
#include "store/editingcontext.h"

namespace corvanta::documents {

using model::CompanyRecord;

using store::Record;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

// Every attribute X of `source` that the document has as "client_X".
void copyClientFields(Record* document, const Record* source)
{
    const store::EntityDescription& documents = document->entity();
    for (const store::AttributeDescription& a : source->entity().attributes()) {
        const QString key = s("client_") + a.name;
        if (documents.attribute(key))
            document->setValue(key, source->value(a.name));
    }
}

// The first of several values joined by ","; the list is kept as stored, without trimming.
void copyFirstPart(Record* document, const QString& key, const QVariant& list)
{
    const QString text = list.toString();
    if (text.isEmpty())
        return;
    document->setValue(key, text.section(QLatin1Char(','), 0, 0));
}

} // namespace

void DocumentSnapshot::update(Record* document)
{
    if (!document)
        return;
    if (const Record* client = document->related(s("client"))) {
        copyClientFields(document, client);
        if (const Record* address = client->related(s("default_address")))
            copyClientFields(document, address);
        copyFirstPart(document, s("client_email"), client->value(s("emails")));
        copyFirstPart(document, s("client_phone"), client->value(s("phones")));
    }

    const Record* paymentType = document->related(s("payment_type"));
    document->setValue(s("payment_type_name"), paymentType ? paymentType->value(s("name")) : QVariant());
    const Record* bank = document->related(s("bank"));
    for (const char* line : {"line1", "line2", "line3"})
        document->setValue(s("bank_") + s(line), bank ? bank->value(s(line)) : QVariant());

    const Record* company = CompanyRecord::of(*document->context());
    const auto fromCompany = [&](const QString& key) { return company ? company->value(key) : QVariant(); };
    for (const char* key : {"name", "tax_number", "address", "email", "phone", "desc"})
        document->setValue(s("my_") + s(key), fromCompany(s(key)));
    for (int n = 1; n <= 10; ++n) {
        const QString custom = QStringLiteral("custom%1").arg(n, 2, 10, QLatin1Char('0'));
        document->setValue(s("my_") + custom, fromCompany(custom));
    }
}

} // namespace corvanta::documents
