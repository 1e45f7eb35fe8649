#include "rowsample.h"

#include "random.h"
#include "sampletext.h"

#include <algorithm>
#include <cmath>

namespace corvanta::bench {

namespace {

struct SampleTax
{
    qint64 pk;
    const char* name;
    double rate1;
    double rate2;
};

const SampleTax kTaxes[] = {{1, "10%", 10.0, 0.0}, {2, "GST / PST", 5.0, 7.0}};
constexpr qint64 kUnitEach = 1;
constexpr qint64 kUnitHours = 2;
constexpr int kItems = 500;

} // namespace

RowSample::RowSample(int documents, int documentsPerBatch, std::uint32_t seed)
    : m_documents(std::max(1, documents))
{
    Random random(seed);
    m_columns = QStringList{
        QStringLiteral("order"),          QStringLiteral("name"),      QStringLiteral("code"),
        QStringLiteral("unit_name"),      QStringLiteral("quantity"),  QStringLiteral("unit_price"),
        QStringLiteral("tax_name"),       QStringLiteral("tax1_rate"), QStringLiteral("tax2_rate"),
        QStringLiteral("tax_cumulative"), QStringLiteral("net"),       QStringLiteral("tax1_value"),
        QStringLiteral("tax2_value"),     QStringLiteral("total"),     QStringLiteral("document"),
        QStringLiteral("item"),           QStringLiteral("unit"),      QStringLiteral("tax")};

    Parents units{QStringLiteral("Units"), {QStringLiteral("pk"), QStringLiteral("name")}, {}};
    units.records = {{kUnitEach, QStringLiteral("Each")}, {kUnitHours, QStringLiteral("Hours")}};
    Parents taxes{
        QStringLiteral("Taxes"),
        {QStringLiteral("pk"), QStringLiteral("name"), QStringLiteral("rate1"), QStringLiteral("rate2")},
        {}};
    for (const SampleTax& t : kTaxes)
        taxes.records.push_back({t.pk, QString::fromLatin1(t.name), t.rate1, t.rate2});

    struct Item
    {
        qint64 pk;
        bool service;
        QString name;
        QString code;
        double price;
        int tax;
    };
    std::vector<Item> items;
    Parents itemRecords{QStringLiteral("Items"),
                        {QStringLiteral("pk"), QStringLiteral("type"), QStringLiteral("name"),
                         QStringLiteral("code"), QStringLiteral("unit_price"), QStringLiteral("unit"),
                         QStringLiteral("tax")},
                        {}};
    for (int i = 1; i <= kItems; ++i) {
        const bool service = random.chance(0.4);
        Item item{i,
                  service,
                  service ? SampleText::serviceName(random) : SampleText::productName(random),
                  QStringLiteral("%1-%2")
                      .arg(QLatin1String(service ? "SRV" : "PRD"))
                      .arg(i, 5, 10, QLatin1Char('0')),
                  service ? random.money(25.0, 180.0) : random.money(2.0, 400.0),
                  random.chance(0.8) ? 0 : 1};
        itemRecords.records.push_back({item.pk, service ? 0 : 1, item.name, item.code, item.price,
                                       service ? kUnitHours : kUnitEach, kTaxes[item.tax].pk});
        items.push_back(item);
    }

    Parents documentRecords{QStringLiteral("Documents"),
                            {QStringLiteral("pk"), QStringLiteral("type"), QStringLiteral("number_formatted"),
                             QStringLiteral("draft")},
                            {}};
    const qsizetype width = m_columns.size();
    const QString taxNames[] = {QString::fromLatin1(kTaxes[0].name), QString::fromLatin1(kTaxes[1].name)};
    const QString each = QStringLiteral("Each");
    const QString hours = QStringLiteral("Hours");
    m_values.reserve(std::size_t(m_documents) * 10 * std::size_t(width));
    const int perBatch = std::max(1, documentsPerBatch);
    for (int d = 1; d <= m_documents; ++d) {
        documentRecords.records.push_back(
            {d, 0, QStringLiteral("INVOICE/2025-%1").arg(d, 4, 10, QLatin1Char('0')), false});
        const int rows = random.between(1, 19);
        for (int order = 1; order <= rows; ++order) {
            const Item& item = items[std::size_t(random.skewed(kItems))];
            const SampleTax& tax = kTaxes[item.tax];
            const double quantity =
                item.service ? random.between(1, 160) * 0.25 : double(random.between(1, 20));
            const double net = quantity * item.price;
            const double tax1 = net * tax.rate1 / 100.0;
            const double tax2 = net * tax.rate2 / 100.0;
            const QVariant values[] = {order,
                                       item.name,
                                       item.code,
                                       item.service ? hours : each,
                                       quantity,
                                       item.price,
                                       taxNames[item.tax],
                                       tax.rate1,
                                       tax.rate2,
                                       false,
                                       net,
                                       tax1,
                                       tax2,
                                       net + tax1 + tax2,
                                       qint64(d),
                                       item.pk,
                                       item.service ? kUnitHours : kUnitEach,
                                       tax.pk};
            Q_ASSERT(qsizetype(std::size(values)) == width);
            m_values.insert(m_values.end(), std::begin(values), std::end(values));
        }
        if (d % perBatch == 0 || d == m_documents)
            m_batchEnds.push_back(qint64(m_values.size()) / width);
    }
    m_parents = {units, taxes, itemRecords, documentRecords};
}

} // namespace corvanta::bench
