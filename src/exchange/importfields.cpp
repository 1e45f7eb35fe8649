#include "importfields.h"

#include "documents/customfields.h"
#include "store/record.h"

namespace corvanta::exchange {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// The custom fields of a group that the user has not hidden, with the group prefix kept in the key.
QList<ImportFields::Field> customFields(store::EditingContext& context, const QString& prefix)
{
    QList<ImportFields::Field> fields;
    for (const store::Record* field : documents::CustomFields::group(context, prefix)) {
        if (!field->value(s("hidden")).toBool())
            fields.append({field->value(s("name")).toString(), documents::CustomFields::displayName(field)});
    }
    return fields;
}

} // namespace

const QStringList& ImportFields::addressKeys()
{
    static const QStringList keys{s("street"), s("city"), s("state"), s("zip_code"), s("country")};
    return keys;
}

bool ImportFields::isAddressKey(const QString& key)
{
    return addressKeys().contains(key);
}

QString ImportFields::attributeKey(const QString& key)
{
    for (const QLatin1String prefix : {QLatin1String("client_"), QLatin1String("item_")}) {
        if (key.startsWith(prefix))
            return key.mid(prefix.size());
    }
    return key;
}

ImportFields ImportFields::clients(store::EditingContext& context)
{
    ImportFields result;
    result.m_fields = {
        {s("company_name"), tr("Company Name"), true},
        {s("first_name"), tr("First Name")},
        {s("last_name"), tr("Last Name")},
        {s("tax_number"), tr("Tax Number")},
        {s("desc"), tr("Description")},
        {s("emails"), tr("Email")},
        {s("phones"), tr("Phone")},
        {s("street"), tr("Street")},
        {s("city"), tr("City")},
        {s("state"), tr("State")},
        {s("zip_code"), tr("Zip Code")},
        {s("country"), tr("Country")},
    };
    result.m_fields += customFields(context, s("client_"));
    return result;
}

ImportFields ImportFields::items(store::EditingContext& context)
{
    ImportFields result;
    result.m_fields = {
        {s("name"), tr("Name"), true},
        {s("code"), tr("Code")},
        {s("desc"), tr("Description")},
        {s("unit_price"), tr("Unit Price")},
    };
    // The price levels are the "item_custom_price" definitions, listed before the text fields.
    QList<Field> texts;
    for (const Field& field : customFields(context, s("item_")))
        (field.key.contains(s("_price")) ? result.m_fields : texts).append(field);
    result.m_fields += texts;
    return result;
}

QStringList ImportFields::keys() const
{
    QStringList result;
    for (const Field& field : m_fields)
        result << field.key;
    return result;
}

void ImportFields::toggle(qsizetype index)
{
    if (index >= 0 && index < m_fields.size())
        m_fields[index].ticked = !m_fields[index].ticked;
}

void ImportFields::setTicked(const QString& key, bool ticked)
{
    for (Field& field : m_fields) {
        if (field.key == key)
            field.ticked = ticked;
    }
}

void ImportFields::clientTypeChanged(int typeIndex)
{
    const bool company = typeIndex <= 1;
    setTicked(s("company_name"), company);
    setTicked(s("first_name"), !company);
    setTicked(s("last_name"), !company);
}

QList<ImportFields::HeaderColumn> ImportFields::header() const
{
    QList<HeaderColumn> columns;
    for (qsizetype index = 0; index < m_fields.size(); ++index) {
        const Field& field = m_fields.at(index);
        if (field.ticked)
            columns.append({QStringLiteral("column%1").arg(index), field.key, field.title});
    }
    return columns;
}

QStringList ImportFields::tickedKeys() const
{
    QStringList result;
    for (const HeaderColumn& column : header())
        result << column.key;
    return result;
}

} // namespace corvanta::exchange
