#include "clientfactory.h"

#include "batchinserter.h"
#include "random.h"
#include "referencedata.h"
#include "sampletext.h"

namespace corvanta::bench {

using store::Record;

ClientFactory::ClientFactory(BatchInserter& inserter, Random& random, const ReferenceData& reference)
    : m_inserter(inserter)
    , m_random(random)
    , m_reference(reference)
{}

ClientSnapshot ClientFactory::make(const QDateTime& created)
{
    ClientSnapshot snapshot;
    snapshot.type = m_random.weighted({55, 15, 30});
    Record* client = m_inserter.insert(QStringLiteral("Clients"));
    client->setValue(QStringLiteral("type"), snapshot.type);

    QString emailName;
    QString emailLocal;
    if (snapshot.type <= 1) {
        snapshot.fullName = SampleText::companyName(m_random);
        client->setValue(QStringLiteral("company_name"), snapshot.fullName);
        emailName = snapshot.fullName;
        emailLocal = m_random.chance(0.5) ? QStringLiteral("office") : QStringLiteral("accounts");
    } else {
        const QString first = SampleText::firstName(m_random);
        const QString last = SampleText::lastName(m_random);
        client->setValue(QStringLiteral("first_name"), first);
        client->setValue(QStringLiteral("last_name"), last);
        snapshot.fullName = first + QLatin1Char(' ') + last;
        emailName = m_random.chance(0.5) ? QStringLiteral("mailbox") : QStringLiteral("inbox");
        emailLocal = SampleText::slug(first) + QLatin1Char('.') + SampleText::slug(last);
    }
    if (m_random.chance(snapshot.type <= 1 ? 0.9 : 0.2)) {
        snapshot.taxNumber = QStringLiteral("%1-%2").arg(m_random.digits(2), m_random.digits(7));
        client->setValue(QStringLiteral("tax_number"), snapshot.taxNumber);
    }
    QStringList emails{SampleText::email(m_random, emailLocal, emailName)};
    if (m_random.chance(0.2))
        emails << SampleText::email(m_random, QStringLiteral("billing"), emailName);
    snapshot.email = emails.first();
    client->setValue(QStringLiteral("emails"), emails);
    QStringList phones{SampleText::phone(m_random)};
    if (m_random.chance(0.3))
        phones << SampleText::phone(m_random);
    snapshot.phone = phones.first();
    client->setValue(QStringLiteral("phones"), phones);
    client->setValue(QStringLiteral("identifier"), m_random.identifier());
    client->setValue(QStringLiteral("rating"), m_random.between(0, 5));
    client->setValue(QStringLiteral("status"), 0);
    client->setValue(QStringLiteral("created"), created);
    if (m_random.chance(0.2))
        client->setValue(QStringLiteral("desc"), SampleText::sentence(m_random));
    if (m_random.chance(0.3)) {
        const auto& types = m_reference.paymentTypes();
        client->setRelated(
            QStringLiteral("default_payment_type"),
            m_inserter.existing(QStringLiteral("PaymentTypes"), types.at(m_random.between(0, 1)).pk));
    }
    if (m_random.chance(0.3)) {
        const auto& dueDays = m_reference.dueDays();
        client->setRelated(QStringLiteral("default_due_day"),
                           m_inserter.existing(QStringLiteral("DueDays"),
                                               dueDays.at(m_random.between(0, int(dueDays.size()) - 1))));
    }

    const int addresses = m_random.chance(0.25) ? 2 : 1;
    for (int i = 0; i < addresses; ++i) {
        const SampleText::Place place = SampleText::place(m_random);
        const QString street = SampleText::street(m_random);
        Record* address = m_inserter.insert(QStringLiteral("Addresses"));
        address->setValue(QStringLiteral("street"), street);
        address->setValue(QStringLiteral("city"), place.city);
        address->setValue(QStringLiteral("state"), place.state);
        address->setValue(QStringLiteral("zip_code"), place.zipCode);
        address->setValue(QStringLiteral("country"), place.country);
        if (m_random.chance(0.1))
            address->setValue(QStringLiteral("address_note"), SampleText::sentence(m_random));
        client->addRelated(QStringLiteral("addresses"), address);
        if (i == 0) {
            client->setRelated(QStringLiteral("default_address"), address);
            snapshot.street = street;
            snapshot.city = place.city;
            snapshot.state = place.state;
            snapshot.zipCode = place.zipCode;
            snapshot.country = place.country;
        }
    }

    const int contacts = snapshot.type <= 1 ? m_random.weighted({35, 40, 18, 7}) : 0;
    for (int i = 0; i < contacts; ++i) {
        const QString first = SampleText::firstName(m_random);
        const QString last = SampleText::lastName(m_random);
        Record* contact = m_inserter.insert(QStringLiteral("Contacts"));
        contact->setValue(QStringLiteral("name"), first + QLatin1Char(' ') + last);
        contact->setValue(QStringLiteral("email"),
                          SampleText::email(m_random, SampleText::slug(first), snapshot.fullName));
        contact->setValue(QStringLiteral("phone"), SampleText::phone(m_random));
        client->addRelated(QStringLiteral("contacts"), contact);
        if (i == 0)
            client->setRelated(QStringLiteral("default_contact"), contact);
    }

    m_inserter.tag(client,
                   m_inserter.existing(QStringLiteral("Categories"), m_reference.clientKind(snapshot.type)));
    const QList<qint64>& tags = m_reference.userTags();
    if (!tags.isEmpty() && m_random.chance(0.2)) {
        const int first = m_random.between(0, int(tags.size()) - 1);
        m_inserter.tag(client, m_inserter.existing(QStringLiteral("Categories"), tags.at(first)));
        const int second = m_random.between(0, int(tags.size()) - 1);
        if (second != first && m_random.chance(0.25))
            m_inserter.tag(client, m_inserter.existing(QStringLiteral("Categories"), tags.at(second)));
    }
    snapshot.pk = client->pk();
    return snapshot;
}

} // namespace corvanta::bench
