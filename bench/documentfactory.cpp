#include "documentfactory.h"

#include "batchinserter.h"
#include "model/documentrowsrecord.h"
#include "random.h"
#include "referencedata.h"
#include "sampletext.h"

#include <QTimeZone>
#include <algorithm>
#include <cmath>

namespace corvanta::bench {

using store::Record;

namespace {

constexpr int kInvoice = 0;
constexpr int kPurchaseOrder = 7;

double cents(double amount)
{
    return std::round(amount * 100.0) / 100.0;
}

} // namespace

DocumentFactory::DocumentFactory(BatchInserter& inserter, Random& random, const ReferenceData& reference,
                                 const std::vector<ClientSnapshot>& clients,
                                 const std::vector<ItemSnapshot>& items, QDate lastDay)
    : m_inserter(inserter)
    , m_random(random)
    , m_reference(reference)
    , m_clients(clients)
    , m_items(items)
    , m_end(lastDay.addDays(1), QTime(0, 0), QTimeZone::utc())
{
    for (std::size_t i = 0; i < clients.size(); ++i)
        (clients[i].type == 1 ? m_suppliers : m_customers).push_back(int(i));
    // With no client of the wanted kind, any client will do.
    if (m_suppliers.empty())
        m_suppliers = m_customers;
    if (m_customers.empty())
        m_customers = m_suppliers;
}

const ClientSnapshot& DocumentFactory::pickClient(int type)
{
    const std::vector<int>& pool = type == kPurchaseOrder ? m_suppliers : m_customers;
    return m_clients[std::size_t(pool[std::size_t(m_random.skewed(int(pool.size())))])];
}

DocumentFactory::Payment DocumentFactory::make(const DocumentSchedule& schedule,
                                               const DocumentSchedule::Entry& entry)
{
    const int type = entry.type;
    const QDateTime created = schedule.dateCreation(entry);
    const int dueDays = m_random.chance(0.7) ? 30 : 14;
    const QDateTime due = created.addDays(dueDays);

    Record* document = m_inserter.insert(QStringLiteral("Documents"));
    document->setValue(QStringLiteral("type"), type);
    document->setValue(QStringLiteral("draft"), entry.draft);
    if (!entry.draft) {
        document->setValue(QStringLiteral("number"), entry.number);
        document->setValue(QStringLiteral("number_formatted"), schedule.numberFormatted(entry));
    }
    document->setValue(QStringLiteral("date_creation"), created);
    document->setValue(QStringLiteral("created"), created.addSecs(m_random.between(0, 600)));
    document->setValue(QStringLiteral("date_due"), due);
    if (type == kInvoice || type == 4)
        document->setValue(QStringLiteral("date_completion"), created);
    document->setValue(QStringLiteral("identifier"), m_random.identifier());

    const ClientSnapshot& client = pickClient(type);
    document->setRelated(QStringLiteral("client"), m_inserter.existing(QStringLiteral("Clients"), client.pk));
    copyClient(document, client);
    copyCompany(document);

    const auto& currencies = m_reference.currencies();
    const int currency = m_random.weighted({85, 10, 5});
    const ReferenceData::Currency& c = currencies.at(std::min(currency, int(currencies.size()) - 1));
    document->setRelated(QStringLiteral("currency"), m_inserter.existing(QStringLiteral("Currencies"), c.pk));
    document->setRelated(QStringLiteral("default_currency"),
                         m_inserter.existing(QStringLiteral("Currencies"), currencies.first().pk));
    const double exchangeRate =
        c.exchangeRate == 1.0 ? 1.0
                              : std::round(c.exchangeRate * m_random.real(0.97, 1.03) * 10000.0) / 10000.0;
    document->setValue(QStringLiteral("exchange_rate"), exchangeRate);

    const auto& paymentTypes = m_reference.paymentTypes();
    const ReferenceData::PaymentType& paymentType = paymentTypes.at(m_random.chance(0.8) ? 0 : 1);
    document->setRelated(QStringLiteral("payment_type"),
                         m_inserter.existing(QStringLiteral("PaymentTypes"), paymentType.pk));
    document->setValue(QStringLiteral("payment_type_name"), paymentType.name);
    if (paymentType.pk == paymentTypes.first().pk) {
        document->setRelated(QStringLiteral("bank"),
                             m_inserter.existing(QStringLiteral("Banks"), m_reference.bank()));
        document->setValue(QStringLiteral("bank_line1"), m_reference.bankLine1());
    }
    if (m_random.chance(0.1))
        document->setValue(QStringLiteral("note"), SampleText::sentence(m_random));

    const Sums sums = addRows(document, entry.rows);
    document->setValue(QStringLiteral("sum_net"), sums.net);
    document->setValue(QStringLiteral("sum_tax1"), sums.tax1);
    document->setValue(QStringLiteral("sum_tax2"), sums.tax2);
    document->setValue(QStringLiteral("sum_total"), sums.total);

    m_inserter.tag(document,
                   m_inserter.existing(QStringLiteral("Categories"), m_reference.documentKind(type)));
    const QList<qint64>& tags = m_reference.userTags();
    if (!tags.isEmpty() && m_random.chance(0.05))
        m_inserter.tag(document, m_inserter.existing(QStringLiteral("Categories"),
                                                     tags.at(m_random.between(0, int(tags.size()) - 1))));

    if (type != kInvoice)
        return Payment::NotAnInvoice;
    if (entry.draft)
        return Payment::Draft;
    return addPayments(document, created, due, sums.total, paymentType.pk);
}

void DocumentFactory::copyClient(Record* document, const ClientSnapshot& client)
{
    document->setValue(QStringLiteral("client_type"), client.type);
    document->setValue(QStringLiteral("client_full_name"), client.fullName);
    document->setValue(QStringLiteral("client_street"), client.street);
    document->setValue(QStringLiteral("client_city"), client.city);
    document->setValue(QStringLiteral("client_state"), client.state);
    document->setValue(QStringLiteral("client_zip_code"), client.zipCode);
    document->setValue(QStringLiteral("client_country"), client.country);
    document->setValue(QStringLiteral("client_email"), client.email);
    document->setValue(QStringLiteral("client_phone"), client.phone);
    if (!client.taxNumber.isEmpty())
        document->setValue(QStringLiteral("client_tax_number"), client.taxNumber);
}

void DocumentFactory::copyCompany(Record* document)
{
    document->setValue(QStringLiteral("my_name"), m_reference.myName());
    document->setValue(QStringLiteral("my_address"), m_reference.myAddress());
    document->setValue(QStringLiteral("my_email"), m_reference.myEmail());
    document->setValue(QStringLiteral("my_phone"), m_reference.myPhone());
    document->setValue(QStringLiteral("my_tax_number"), m_reference.myTaxNumber());
}

DocumentFactory::Sums DocumentFactory::addRows(Record* document, int rows)
{
    const auto& taxes = m_reference.taxes();
    // One summary per tax, in the order the taxes first appear.
    std::vector<std::pair<int, Sums>> perTax;
    Sums sums;
    for (int order = 1; order <= rows; ++order) {
        const ItemSnapshot& item = m_items[std::size_t(m_random.skewed(int(m_items.size())))];
        const ReferenceData::Tax& tax = taxes.at(item.tax);
        const double quantity = item.type == 0 ? m_random.between(1, 160) * 0.25
                                               : double(m_random.chance(0.8) ? m_random.between(1, 10)
                                                                             : m_random.between(11, 100));
        const double unitPrice =
            m_random.chance(0.1) ? item.customPrices[std::size_t(m_random.between(0, 4))] : item.unitPrice;
        // The row's amounts as the program derives them, so that the record class's recomputation
        // on insert leaves them as they are.
        const model::DocumentRowsRecord::Prices prices =
            model::DocumentRowsRecord::computePrices(quantity, unitPrice, tax.rate1, tax.rate2, false);
        const double net = prices.net;
        const double tax1 = prices.tax1Value;
        const double tax2 = prices.tax2Value;
        const double total = prices.total;

        Record* row = m_inserter.insert(QStringLiteral("DocumentRows"));
        row->setValue(QStringLiteral("order"), order);
        row->setValue(QStringLiteral("name"), item.name);
        row->setValue(QStringLiteral("code"), item.code);
        row->setValue(QStringLiteral("unit_name"), item.unitName);
        row->setValue(QStringLiteral("quantity"), quantity);
        row->setValue(QStringLiteral("unit_price"), unitPrice);
        row->setValue(QStringLiteral("tax_name"), tax.name);
        row->setValue(QStringLiteral("tax1_rate"), tax.rate1);
        row->setValue(QStringLiteral("tax2_rate"), tax.rate2);
        row->setValue(QStringLiteral("tax_cumulative"), false);
        row->setValue(QStringLiteral("net"), net);
        row->setValue(QStringLiteral("tax1_value"), tax1);
        row->setValue(QStringLiteral("tax2_value"), tax2);
        row->setValue(QStringLiteral("total"), total);
        row->setRelated(QStringLiteral("document"), document);
        row->setRelated(QStringLiteral("item"), m_inserter.existing(QStringLiteral("Items"), item.pk));
        row->setRelated(QStringLiteral("unit"), m_inserter.existing(QStringLiteral("Units"), item.unit));
        row->setRelated(QStringLiteral("tax"), m_inserter.existing(QStringLiteral("Taxes"), tax.pk));

        sums.net += net;
        sums.tax1 += tax1;
        sums.tax2 += tax2;
        sums.total += total;
        auto it =
            std::find_if(perTax.begin(), perTax.end(), [&](const auto& p) { return p.first == item.tax; });
        if (it == perTax.end())
            it = perTax.insert(perTax.end(), {item.tax, Sums{}});
        it->second.net += net;
        it->second.tax1 += tax1;
        it->second.tax2 += tax2;
        it->second.total += total;
    }

    int order = 0;
    for (const auto& [taxIndex, taxSums] : perTax) {
        const ReferenceData::Tax& tax = taxes.at(taxIndex);
        Record* summary = m_inserter.insert(QStringLiteral("DocumentSummaries"));
        summary->setValue(QStringLiteral("order"), ++order);
        summary->setValue(QStringLiteral("tax_name"), tax.name);
        summary->setValue(QStringLiteral("tax1_rate"), tax.rate1);
        summary->setValue(QStringLiteral("tax2_rate"), tax.rate2);
        summary->setValue(QStringLiteral("tax_cumulative"), false);
        summary->setValue(QStringLiteral("rate1"), tax.rate1);
        summary->setValue(QStringLiteral("rate2"), tax.rate2);
        summary->setValue(QStringLiteral("net"), taxSums.net);
        summary->setValue(QStringLiteral("tax1_value"), taxSums.tax1);
        summary->setValue(QStringLiteral("tax2_value"), taxSums.tax2);
        summary->setValue(QStringLiteral("total"), taxSums.total);
        summary->setRelated(QStringLiteral("document"), document);
    }
    return sums;
}

DocumentFactory::Payment DocumentFactory::addPayments(Record* document, const QDateTime& created,
                                                      const QDateTime& due, double total, qint64 paymentType)
{
    // Invoices not due yet at the end of the period are mostly still open.
    const int outcome = due > m_end ? m_random.weighted({20, 10, 70}) : m_random.weighted({72, 13, 15});
    const QDateTime first = std::min(m_end.addSecs(-3600), created.addDays(m_random.between(0, 45)));
    if (outcome == 0) {
        if (m_random.chance(0.25)) {
            const double part = cents(total * m_random.real(0.3, 0.7));
            const double rest = total - part;
            // Two payments only when they add up to the total exactly.
            if (part > 0.0 && rest > 0.0 && part + rest == total) {
                addPayment(document, part, first, paymentType);
                addPayment(document, rest,
                           std::min(m_end.addSecs(-60), first.addDays(m_random.between(1, 30))), paymentType);
                return Payment::Paid;
            }
        }
        addPayment(document, total, first, paymentType);
        return Payment::Paid;
    }
    if (outcome == 1) {
        const double part = cents(total * m_random.real(0.2, 0.8));
        if (part > 0.0 && part < total) {
            addPayment(document, part, first, paymentType);
            return Payment::PartlyPaid;
        }
    }
    return Payment::Unpaid;
}

void DocumentFactory::addPayment(Record* document, double amount, const QDateTime& date, qint64 paymentType)
{
    Record* payment = m_inserter.insert(QStringLiteral("Payments"));
    payment->setValue(QStringLiteral("amount"), amount);
    payment->setValue(QStringLiteral("date"), date);
    payment->setRelated(QStringLiteral("payment"),
                        m_inserter.existing(QStringLiteral("PaymentTypes"), paymentType));
    payment->setRelated(QStringLiteral("document"), document);
}

} // namespace corvanta::bench
