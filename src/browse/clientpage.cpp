#include "browse/clientpage.h"

#include "browse/eventhistory.h"
#include "browse/htmltext.h"
#include "store/record.h"

namespace corvanta::browse {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QStringList listed(const QString& joined)
{
    QStringList parts = joined.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (QString& part : parts)
        part = part.trimmed();
    parts.removeAll(QString());
    return parts;
}

// The non-empty values of `keys`, escaped, one per line.
QString lines(const Record* record, std::initializer_list<const char*> keys)
{
    QStringList result;
    for (const char* key : keys) {
        const QString value = record->value(s(key)).toString().trimmed();
        if (!value.isEmpty())
            result << HtmlText::multiline(value);
    }
    return result.join(QLatin1String("<br>"));
}

QString addressText(const Record* address)
{
    const QString place = QStringList{address->value(s("zip_code")).toString().trimmed(),
                                      address->value(s("city")).toString().trimmed()}
                              .join(QLatin1Char(' '))
                              .trimmed();
    QStringList result;
    if (const QString street = lines(address, {"street"}); !street.isEmpty())
        result << street;
    if (!place.isEmpty())
        result << HtmlText::escaped(place);
    if (const QString rest = lines(address, {"state", "country", "address_note"}); !rest.isEmpty())
        result << rest;
    return result.join(QLatin1String("<br>"));
}

QString contactText(const Record* contact)
{
    QStringList result;
    if (const QString name = lines(contact, {"name"}); !name.isEmpty())
        result << name;
    if (const QString email = contact->value(s("email")).toString().trimmed(); !email.isEmpty())
        result << ClientPage::emailLinks(email);
    if (const QString rest = lines(contact, {"phone", "contact_note"}); !rest.isEmpty())
        result << rest;
    return result.join(QLatin1String("<br>"));
}

// A group row, or nothing for an empty group, which the page then hides.
void fillGroup(DetailPage& page, const char* element, const QString& label, const QString& valueHtml)
{
    if (valueHtml.isEmpty())
        page.hide(s(element));
    else
        page.setContent(s(element), DetailPage::propertyRow(label, valueHtml));
}

} // namespace

QString ClientPage::ratingStars(qint64 rating)
{
    QString stars;
    for (int star = 1; star <= 5; ++star) {
        stars +=
            star <= rating
                ? QStringLiteral("<span onclick='clientRating(%1)' class='full'>&#9733;</span>").arg(star)
                : QStringLiteral("<span onclick='clientRating(%1)' class='empty'>&#9734;</span>").arg(star);
    }
    return stars;
}

QString ClientPage::statusImages(qint64 status)
{
    // The names are the images' and, translated, their titles.
    static const char* const names[] = {QT_TR_NOOP("lost"), QT_TR_NOOP("possible"), QT_TR_NOOP("available")};
    QString images;
    // Shown from the best state to the worst; each stores its own number.
    for (int state = 2; state >= 0; --state) {
        images += QStringLiteral("<img src='images/status_%1%2.svg' title='%3' onclick='clientStatus(%4)'>")
                      .arg(s(names[state]), state == status ? s("_selected") : QString(),
                           HtmlText::escaped(tr(names[state])), QString::number(state));
    }
    return images;
}

QString ClientPage::emailLinks(const QString& emails)
{
    QString links;
    for (const QString& address : listed(emails)) {
        links += QStringLiteral("<a href='' onclick=\"sendEmail('%1'); return false;\">%2</a>&nbsp;&nbsp;")
                     .arg(HtmlText::scriptArgument(address), HtmlText::escaped(address));
    }
    return links;
}

QString ClientPage::phoneNumbers(const QString& phones)
{
    QString numbers;
    for (const QString& phone : listed(phones))
        numbers += HtmlText::escaped(phone) + QLatin1String("&nbsp;&nbsp;");
    return numbers;
}

DetailPage ClientPage::fill(Record* client, int eventsFilter, int eventsCount)
{
    DetailPage page(ListKind::Clients);
    if (!client)
        return page;
    page.setContent(s("name"), HtmlText::escaped(client->value(s("full_name")).toString()));
    page.setContent(s("tags"), DetailPage::tagLabels(client));
    page.setContent(s("rating"), ratingStars(client->value(s("rating")).toLongLong()));
    // A client whose state was never chosen has none of the three images selected.
    const QVariant status = client->value(s("status"));
    page.setContent(s("status"), statusImages(status.isNull() ? -1 : status.toLongLong()));

    QString properties;
    if (const QString taxNumber = client->value(s("tax_number")).toString(); !taxNumber.isEmpty())
        properties += DetailPage::propertyRow(tr("Tax Number"), HtmlText::escaped(taxNumber));
    properties += DetailPage::customFieldRows(client, s("client_"));
    if (const QString desc = client->value(s("desc")).toString(); !desc.isEmpty())
        properties += DetailPage::propertyRow(tr("Description"), HtmlText::multiline(desc));
    page.setContent(s("properties"), properties);

    fillGroup(page, "emails_group", tr("E-mails"), emailLinks(client->value(s("emails")).toString()));
    fillGroup(page, "phones_group", tr("Phones"), phoneNumbers(client->value(s("phones")).toString()));
    QStringList addresses;
    for (const Record* address : client->relatedList(s("addresses"))) {
        if (const QString text = addressText(address); !text.isEmpty())
            addresses << text;
    }
    fillGroup(page, "addresses_group", tr("Addresses"), addresses.join(QLatin1String("<br><br>")));
    QStringList contacts;
    for (const Record* contact : client->relatedList(s("contacts"))) {
        if (const QString text = contactText(contact); !text.isEmpty())
            contacts << text;
    }
    fillGroup(page, "contacts_group", tr("Contacts"), contacts.join(QLatin1String("<br><br>")));

    page.setContent(s("events"), EventHistory(client).html(eventsFilter, eventsCount));
    return page;
}

} // namespace corvanta::browse
