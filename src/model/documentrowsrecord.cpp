#include "documentrowsrecord.h"

#include "companyrecord.h"
#include "modellog.h"
#include "taxvaluetext.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace corvanta::model {

using store::Record;

DocumentRowsRecord::Prices DocumentRowsRecord::computePrices(double quantity, double unitPrice, double rate1,
                                                             double rate2, bool cumulative)
{
    Prices p;
    p.net = quantity * unitPrice;
    p.tax1Value = rate1 / 100.0 * p.net;
    p.tax2Value = cumulative ? rate2 / 100.0 * (p.net + p.tax1Value) : rate2 / 100.0 * p.net;
    p.total = p.tax2Value + (p.tax1Value + p.net);
    return p;
}

void DocumentRowsRecord::setTax(Record* tax)
{
    setRelated(QStringLiteral("tax"), tax);
    calcPrices();
}

void DocumentRowsRecord::setTax(Record* row, Record* tax)
{
    if (auto* documentRow = dynamic_cast<DocumentRowsRecord*>(row))
        documentRow->setTax(tax);
    else if (row)
        row->setRelated(QStringLiteral("tax"), tax);
}

void DocumentRowsRecord::calcPrices()
{
    const Record* tax = related(QStringLiteral("tax"));
    const double rate1 = tax ? tax->value(QStringLiteral("rate1")).toDouble() : 0.0;
    const double rate2 = tax ? tax->value(QStringLiteral("rate2")).toDouble() : 0.0;
    const bool cumulative = tax && tax->value(QStringLiteral("cumulative")).toBool();
    const Prices p =
        computePrices(primitiveValue(QStringLiteral("quantity")).toDouble(),
                      primitiveValue(QStringLiteral("unit_price")).toDouble(), rate1, rate2, cumulative);
    if (!std::isfinite(p.net) || !std::isfinite(p.tax1Value) || !std::isfinite(p.tax2Value) ||
        !std::isfinite(p.total)) {
        // The entry fields refuse such numbers; a row can only get here from a program error.
        qCWarning(lcModel) << "DocumentRowsRecord: amounts out of range, row left unchanged";
        return;
    }

    const Record* company = CompanyRecord::of(*context());
    const Record* defaultCurrency = company ? company->related(QStringLiteral("default_currency")) : nullptr;
    setPrimitiveValue(QStringLiteral("rate1"), rate1, true);
    setPrimitiveValue(QStringLiteral("rate2"), rate2, true);
    setPrimitiveValue(QStringLiteral("cumulative"), cumulative, true);
    setPrimitiveValue(QStringLiteral("tax1_value"), p.tax1Value, true);
    setPrimitiveValue(QStringLiteral("tax2_value"), p.tax2Value, true);
    setPrimitiveValue(QStringLiteral("tax_value"),
                      TaxValueText::text(p.tax1Value, p.tax2Value, defaultCurrency), true);
    setPrimitiveValue(QStringLiteral("net"), p.net, true);
    setPrimitiveValue(QStringLiteral("total"), p.total, true);
    if (const Record* document = related(QStringLiteral("document"))) {
        const double rate = document->value(QStringLiteral("exchange_rate")).toDouble();
        setPrimitiveValue(QStringLiteral("default_currency_tax1_value"), p.tax1Value * rate, true);
        setPrimitiveValue(QStringLiteral("default_currency_tax2_value"), p.tax2Value * rate, true);
    }
}

void DocumentRowsRecord::refreshTaxSnapshot()
{
    const Record* tax = related(QStringLiteral("tax"));
    setValue(QStringLiteral("tax_name"), tax ? tax->value(QStringLiteral("name")) : QVariant());
    setValue(QStringLiteral("tax1_rate"), tax ? tax->value(QStringLiteral("rate1")) : QVariant());
    setValue(QStringLiteral("tax2_rate"), tax ? tax->value(QStringLiteral("rate2")) : QVariant());
    setValue(QStringLiteral("tax_cumulative"), tax ? tax->value(QStringLiteral("cumulative")) : QVariant());
}

void DocumentRowsRecord::refreshUnitName()
{
    const Record* unit = related(QStringLiteral("unit"));
    setValue(QStringLiteral("unit_name"), unit ? unit->value(QStringLiteral("name")) : QVariant());
}

QList<Record*> DocumentRowsRecord::displayOrder(const Record* document)
{
    const QList<Record*> rows = document ? document->relatedList(QStringLiteral("rows")) : QList<Record*>();
    // Each row's position is read once: the totals follow every typed number of a long document,
    // and reading the values in each comparison made the sort the larger part of that work.
    struct Position
    {
        bool unordered;
        qint64 order;
        qint64 pk;
        Record* row;
    };
    std::vector<Position> positions;
    positions.reserve(size_t(rows.size()));
    const QString orderKey = QStringLiteral("order");
    for (Record* row : rows) {
        const QVariant order = row->value(orderKey);
        positions.push_back({order.isNull(), order.toLongLong(), row->pk(), row});
    }
    std::stable_sort(positions.begin(), positions.end(), [](const Position& a, const Position& b) {
        if (a.unordered != b.unordered)
            return b.unordered; // rows without a position come last
        if (a.order != b.order)
            return a.order < b.order;
        return a.pk < b.pk;
    });
    QList<Record*> sorted;
    sorted.reserve(rows.size());
    for (const Position& position : positions)
        sorted << position.row;
    return sorted;
}

void DocumentRowsRecord::didChangeValue(const QString& key)
{
    if (key == QLatin1String("quantity") || key == QLatin1String("unit_price") || key == QLatin1String("tax"))
        calcPrices();
}

} // namespace corvanta::model
