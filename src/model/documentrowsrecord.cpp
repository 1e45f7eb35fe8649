#include "documentrowsrecord.h"

#include "companyrecord.h"
#include "modellog.h"
#include "taxvaluetext.h"

#include <algorithm>
#include <cmath>

namespace corvanta::model {

using store::Record;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

} // namespace

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
    setRelated(s("tax"), tax);
    calcPrices();
}

void DocumentRowsRecord::setTax(Record* row, Record* tax)
{
    if (auto* documentRow = dynamic_cast<DocumentRowsRecord*>(row))
        documentRow->setTax(tax);
    else if (row)
        row->setRelated(s("tax"), tax);
}

void DocumentRowsRecord::calcPrices()
{
    const Record* tax = related(s("tax"));
    const double rate1 = tax ? tax->value(s("rate1")).toDouble() : 0.0;
    const double rate2 = tax ? tax->value(s("rate2")).toDouble() : 0.0;
    const bool cumulative = tax && tax->value(s("cumulative")).toBool();
    const Prices p = computePrices(primitiveValue(s("quantity")).toDouble(),
                                   primitiveValue(s("unit_price")).toDouble(), rate1, rate2, cumulative);
    if (!std::isfinite(p.net) || !std::isfinite(p.tax1Value) || !std::isfinite(p.tax2Value) ||
        !std::isfinite(p.total)) {
        // The entry fields refuse such numbers; a row can only get here from a program error.
        qCWarning(lcModel) << "DocumentRowsRecord: amounts out of range, row left unchanged";
        return;
    }

    const Record* company = CompanyRecord::of(*context());
    const Record* defaultCurrency = company ? company->related(s("default_currency")) : nullptr;
    setPrimitiveValue(s("rate1"), rate1, true);
    setPrimitiveValue(s("rate2"), rate2, true);
    setPrimitiveValue(s("cumulative"), cumulative, true);
    setPrimitiveValue(s("tax1_value"), p.tax1Value, true);
    setPrimitiveValue(s("tax2_value"), p.tax2Value, true);
    setPrimitiveValue(s("tax_value"), TaxValueText::text(p.tax1Value, p.tax2Value, defaultCurrency), true);
    setPrimitiveValue(s("net"), p.net, true);
    setPrimitiveValue(s("total"), p.total, true);
    if (const Record* document = related(s("document"))) {
        const double rate = document->value(s("exchange_rate")).toDouble();
        setPrimitiveValue(s("default_currency_tax1_value"), p.tax1Value * rate, true);
        setPrimitiveValue(s("default_currency_tax2_value"), p.tax2Value * rate, true);
    }
}

void DocumentRowsRecord::refreshTaxSnapshot()
{
    const Record* tax = related(s("tax"));
    setValue(s("tax_name"), tax ? tax->value(s("name")) : QVariant());
    setValue(s("tax1_rate"), tax ? tax->value(s("rate1")) : QVariant());
    setValue(s("tax2_rate"), tax ? tax->value(s("rate2")) : QVariant());
    setValue(s("tax_cumulative"), tax ? tax->value(s("cumulative")) : QVariant());
}

void DocumentRowsRecord::refreshUnitName()
{
    const Record* unit = related(s("unit"));
    setValue(s("unit_name"), unit ? unit->value(s("name")) : QVariant());
}

QList<Record*> DocumentRowsRecord::displayOrder(const Record* document)
{
    QList<Record*> rows = document ? document->relatedList(s("rows")) : QList<Record*>();
    std::stable_sort(rows.begin(), rows.end(), [](const Record* a, const Record* b) {
        const QVariant x = a->value(s("order"));
        const QVariant y = b->value(s("order"));
        if (x.isNull() != y.isNull())
            return y.isNull(); // rows without a position come last
        if (x.toLongLong() != y.toLongLong())
            return x.toLongLong() < y.toLongLong();
        return a->pk() < b->pk();
    });
    return rows;
}

void DocumentRowsRecord::didChangeValue(const QString& key)
{
    if (key == QLatin1String("quantity") || key == QLatin1String("unit_price") || key == QLatin1String("tax"))
        calcPrices();
}

} // namespace corvanta::model
