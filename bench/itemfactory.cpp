#include "itemfactory.h"

#include "batchinserter.h"
#include "random.h"
#include "referencedata.h"
#include "sampletext.h"

#include <QDateTime>
#include <QTime>
#include <QTimeZone>
#include <algorithm>
#include <cmath>

namespace corvanta::bench {

using store::Record;

ItemFactory::ItemFactory(BatchInserter& inserter, Random& random, const ReferenceData& reference,
                         QList<qint64> suppliers, QDate firstDay, QDate lastDay)
    : m_inserter(inserter)
    , m_random(random)
    , m_reference(reference)
    , m_suppliers(std::move(suppliers))
    , m_firstDay(firstDay)
    , m_days(int(firstDay.daysTo(lastDay)) + 1)
{}

ItemSnapshot ItemFactory::make(int number)
{
    ItemSnapshot snapshot;
    snapshot.type = m_random.weighted({40, 60});
    const bool service = snapshot.type == 0;
    if (service) {
        snapshot.name = SampleText::serviceName(m_random);
        snapshot.code = QStringLiteral("SRV-%1").arg(number, 5, 10, QLatin1Char('0'));
        snapshot.unitPrice = m_random.money(25.0, 180.0);
        snapshot.unit = m_reference.unitHours();
        snapshot.unitName = QStringLiteral("Hours");
    } else {
        snapshot.name =
            SampleText::productName(m_random) + QStringLiteral(" %1%2")
                                                    .arg(QLatin1Char(char('A' + m_random.between(0, 25))))
                                                    .arg(m_random.between(10, 990));
        snapshot.code = QStringLiteral("PRD-%1").arg(number, 5, 10, QLatin1Char('0'));
        // Cheap goods are more common than dear ones.
        snapshot.unitPrice =
            std::round(std::exp(m_random.real(std::log(2.0), std::log(900.0))) * 100.0) / 100.0;
        snapshot.unit = m_reference.unitEach();
        snapshot.unitName = QStringLiteral("Each");
    }
    const double tiers[] = {0.95, 0.9, 0.85, 0.8, 1.1};
    for (std::size_t i = 0; i < snapshot.customPrices.size(); ++i)
        snapshot.customPrices[i] = std::round(snapshot.unitPrice * tiers[i] * 100.0) / 100.0;
    snapshot.tax = m_random.chance(0.8) ? 0 : 1;

    Record* item = m_inserter.insert(QStringLiteral("Items"));
    item->setValue(QStringLiteral("type"), snapshot.type);
    item->setValue(QStringLiteral("name"), snapshot.name);
    item->setValue(QStringLiteral("code"), snapshot.code);
    item->setValue(QStringLiteral("identifier"), m_random.identifier());
    item->setValue(QStringLiteral("unit_price"), snapshot.unitPrice);
    for (std::size_t i = 0; i < snapshot.customPrices.size(); ++i)
        item->setValue(QStringLiteral("custom_price%1").arg(i + 1, 2, 10, QLatin1Char('0')),
                       snapshot.customPrices[i]);
    if (m_random.chance(0.3))
        item->setValue(QStringLiteral("desc"), SampleText::sentence(m_random));
    item->setRelated(QStringLiteral("unit"), m_inserter.existing(QStringLiteral("Units"), snapshot.unit));
    item->setRelated(QStringLiteral("tax"),
                     m_inserter.existing(QStringLiteral("Taxes"), m_reference.taxes().at(snapshot.tax).pk));
    const bool warehouse = !service && m_random.chance(0.7);
    item->setValue(QStringLiteral("use_warehouse"), warehouse);
    if (warehouse)
        addMovements(item);

    m_inserter.tag(item,
                   m_inserter.existing(QStringLiteral("Categories"), m_reference.itemKind(snapshot.type)));
    const QList<qint64>& tags = m_reference.userTags();
    if (!tags.isEmpty() && m_random.chance(0.1))
        m_inserter.tag(item, m_inserter.existing(QStringLiteral("Categories"),
                                                 tags.at(m_random.between(0, int(tags.size()) - 1))));
    snapshot.pk = item->pk();
    return snapshot;
}

void ItemFactory::addMovements(Record* item)
{
    const int movements = m_random.between(2, 6);
    double stock = 0.0;
    int day = m_random.between(0, m_days / 2);
    for (int i = 0; i < movements; ++i) {
        // Goods come in first; later movements are a mix of receipts and issues.
        const bool receipt = i == 0 || m_random.chance(0.5);
        const double quantity =
            receipt ? m_random.between(10, 200) : -std::min(stock, double(m_random.between(1, 40)));
        stock += quantity;
        Record* movement = m_inserter.insert(QStringLiteral("Warehouse"));
        movement->setValue(
            QStringLiteral("date"),
            QDateTime(m_firstDay.addDays(day), QTime(m_random.between(8, 17), 0), QTimeZone::utc()));
        movement->setValue(QStringLiteral("quantity"), quantity);
        movement->setRelated(QStringLiteral("item"), item);
        if (receipt && !m_suppliers.isEmpty() && m_random.chance(0.6))
            movement->setRelated(
                QStringLiteral("client"),
                m_inserter.existing(QStringLiteral("Clients"),
                                    m_suppliers.at(m_random.between(0, int(m_suppliers.size()) - 1))));
        day = std::min(m_days - 1, day + m_random.between(1, 120));
    }
    item->setValue(QStringLiteral("stock_current"), stock);
    item->setValue(QStringLiteral("stock_critical"), m_random.between(5, 20));
}

} // namespace corvanta::bench
