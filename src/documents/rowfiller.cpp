#include "rowfiller.h"

#include "model/documentrowsrecord.h"
#include "pricelevels.h"

namespace corvanta::documents {

using model::DocumentRowsRecord;

using store::Record;

const QStringList& RowFiller::itemKeys()
{
    static const QStringList keys = [] {
        QStringList k{QStringLiteral("name"), QStringLiteral("type"), QStringLiteral("desc"),
                      QStringLiteral("code"), QStringLiteral("unit"), QStringLiteral("tax")};
        for (int n = 1; n <= 5; ++n)
            k << QStringLiteral("custom0%1").arg(n);
        for (int n = 1; n <= 5; ++n)
            k << PriceLevels::slotKey(n);
        return k;
    }();
    return keys;
}

void RowFiller::fillFromItem(Record* row, Record* item, int priceLevel)
{
    if (!row || !item)
        return;
    for (const QString& key : itemKeys()) {
        if (key == QLatin1String("unit"))
            setUnit(row, item->related(key));
        else if (key == QLatin1String("tax"))
            setTax(row, item->related(key));
        else
            row->setValue(key, item->value(key));
    }
    row->setValue(QStringLiteral("unit_price"), item->value(PriceLevels::slotKey(priceLevel)));
    row->setRelated(QStringLiteral("item"), item);
}

void RowFiller::setUnit(Record* row, Record* unit)
{
    row->setRelated(QStringLiteral("unit"), unit);
    if (auto* documentRow = dynamic_cast<DocumentRowsRecord*>(row))
        documentRow->refreshUnitName();
}

void RowFiller::setTax(Record* row, Record* tax)
{
    DocumentRowsRecord::setTax(row, tax);
    if (auto* documentRow = dynamic_cast<DocumentRowsRecord*>(row))
        documentRow->refreshTaxSnapshot();
}

} // namespace corvanta::documents
