#include "contactperson.h"

#include <QUuid>

namespace corvanta::exchange {

namespace {

bool isNamed(EVCardAttribute* attribute, const char* name)
{
    return g_ascii_strcasecmp(e_vcard_attribute_get_name(attribute), name) == 0;
}

// The property's values (its ";"-separated components, unescaped and decoded), trimmed.
QStringList valuesOf(EVCardAttribute* attribute)
{
    QStringList values;
    for (GList* value = e_vcard_attribute_get_values(attribute); value; value = value->next)
        values << QString::fromUtf8(static_cast<const char*>(value->data)).trimmed();
    return values;
}

// A single value whose text may itself hold ";" (a tel: URI with parameters).
QString wholeValue(EVCardAttribute* attribute)
{
    return valuesOf(attribute).join(QLatin1Char(';')).trimmed();
}

QString phoneNumber(EVCardAttribute* attribute)
{
    QString number = wholeValue(attribute);
    // vCard 4.0 writes numbers as tel: URIs (TEL;VALUE=uri:tel:+1-555-0100).
    if (number.startsWith(QLatin1String("tel:"), Qt::CaseInsensitive))
        number = number.mid(4).trimmed();
    return number;
}

AddressBookPerson::PostalAddress postalAddress(EVCardAttribute* attribute)
{
    // The components: post-office box, extended address, street, locality, region, postal
    // code, country.
    const QStringList parts = valuesOf(attribute);
    QStringList streetLines;
    for (const int index : {2, 1, 0}) {
        if (!parts.value(index).isEmpty())
            streetLines << parts.value(index);
    }
    return {streetLines.join(QLatin1Char('\n')), parts.value(3), parts.value(4), parts.value(5),
            parts.value(6)};
}

bool isEmptyAddress(const AddressBookPerson::PostalAddress& address)
{
    return address == AddressBookPerson::PostalAddress{};
}

// First and last name read from a display name ("Dr. Ann Lee Jr." gives Ann and Lee).
void namesFromFullName(const QString& fullName, AddressBookPerson* person)
{
    const QByteArray text = fullName.toUtf8();
    EContactName* name = e_contact_name_from_string(text.constData());
    if (!name)
        return;
    person->firstName = QString::fromUtf8(name->given).trimmed();
    person->lastName = QString::fromUtf8(name->family).trimmed();
    e_contact_name_free(name);
}

} // namespace

AddressBookPerson ContactPerson::fromContact(EContact* contact)
{
    AddressBookPerson person;
    QString fullName;
    for (GList* item = e_vcard_get_attributes(E_VCARD(contact)); item; item = item->next) {
        auto* attribute = static_cast<EVCardAttribute*>(item->data);
        if (isNamed(attribute, EVC_UID)) {
            person.uid = wholeValue(attribute);
        } else if (isNamed(attribute, "KIND")) {
            const QString kind = wholeValue(attribute);
            if (kind.compare(QLatin1String("org"), Qt::CaseInsensitive) == 0 ||
                kind.compare(QLatin1String("organization"), Qt::CaseInsensitive) == 0)
                person.company = true;
        } else if (isNamed(attribute, "X-ABSHOWAS")) {
            if (wholeValue(attribute).compare(QLatin1String("COMPANY"), Qt::CaseInsensitive) == 0)
                person.company = true;
        } else if (isNamed(attribute, EVC_ORG)) {
            person.organization = valuesOf(attribute).value(0);
        } else if (isNamed(attribute, EVC_N)) {
            const QStringList parts = valuesOf(attribute);
            person.lastName = parts.value(0);
            person.firstName = parts.value(1);
        } else if (isNamed(attribute, EVC_FN)) {
            fullName = wholeValue(attribute);
        } else if (isNamed(attribute, EVC_TEL)) {
            if (const QString number = phoneNumber(attribute); !number.isEmpty())
                person.phones << number;
        } else if (isNamed(attribute, EVC_EMAIL)) {
            if (const QString address = wholeValue(attribute); !address.isEmpty())
                person.emails << address;
        } else if (isNamed(attribute, EVC_ADR)) {
            if (const auto address = postalAddress(attribute); !isEmptyAddress(address))
                person.addresses << address;
        }
    }
    // FN is the display name: a person's names when N gives none; for a company (where vCard 4.0
    // makes it the organisation's name) it stands in only for a missing ORG, when N names no one
    // either, since the company's name is taken from the names before it would be.
    if (person.firstName.isEmpty() && person.lastName.isEmpty() && !fullName.isEmpty()) {
        if (!person.company)
            namesFromFullName(fullName, &person);
        else if (person.organization.isEmpty())
            person.organization = fullName;
    }
    if (person.uid.isEmpty() && !isEmpty(person))
        person.uid = derivedUid(person);
    return person;
}

bool ContactPerson::isGroup(EContact* contact)
{
    for (GList* item = e_vcard_get_attributes(E_VCARD(contact)); item; item = item->next) {
        auto* attribute = static_cast<EVCardAttribute*>(item->data);
        const QString value = wholeValue(attribute);
        if ((isNamed(attribute, "KIND") || isNamed(attribute, "X-ADDRESSBOOKSERVER-KIND")) &&
            value.compare(QLatin1String("group"), Qt::CaseInsensitive) == 0)
            return true;
        if (isNamed(attribute, EVC_X_LIST) && value.compare(QLatin1String("TRUE"), Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

QString ContactPerson::derivedUid(const AddressBookPerson& person)
{
    // Fixed for this program, so that the same fields always give the same identifier.
    static const QUuid space(QStringLiteral("8f600267-3db8-45f0-911b-88d3dfd9a205"));
    QStringList fields{person.company ? QStringLiteral("company") : QStringLiteral("person"),
                       person.organization,
                       person.firstName,
                       person.lastName,
                       person.phones.join(QLatin1Char('\x1e')),
                       person.emails.join(QLatin1Char('\x1e'))};
    for (const AddressBookPerson::PostalAddress& address : person.addresses)
        fields << QStringList{address.street, address.city, address.state, address.zipCode, address.country}
                      .join(QLatin1Char('\x1e'));
    return QUuid::createUuidV5(space, fields.join(QLatin1Char('\x1f')))
        .toString(QUuid::WithoutBraces)
        .toUpper();
}

bool ContactPerson::isEmpty(const AddressBookPerson& person)
{
    return person.organization.isEmpty() && person.firstName.isEmpty() && person.lastName.isEmpty() &&
           person.phones.isEmpty() && person.emails.isEmpty() && person.addresses.isEmpty();
}

} // namespace corvanta::exchange
