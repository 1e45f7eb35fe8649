#include "documenttotals.h"

#include "model/documentrowsrecord.h"
#include "store/editingcontext.h"

#include <QList>

namespace corvanta::documents {

using model::DocumentRowsRecord;

using store::Record;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

// One summary line in the making: the rows of one tax name.
struct TaxGroup
{
    QString name;
    QVariant rate1;
    QVariant rate2;
    QVariant cumulative;
    double net = 0.0;
    double tax1Value = 0.0;
    double tax2Value = 0.0;
    double defaultCurrencyTax1Value = 0.0;
    double defaultCurrencyTax2Value = 0.0;
    double total = 0.0;
};

} // namespace

void DocumentTotals::updateTaxSummary(Record* document)
{
    if (!document)
        return;
    store::EditingContext& context = *document->context();
    const QList<Record*> rows = DocumentRowsRecord::displayOrder(document);

    // Groups are keyed by the tax's name: two taxes of one name share a line, with the rates of
    // the one met last.
    QList<TaxGroup> groups;
    const auto groupNamed = [&](const QString& name) -> TaxGroup* {
        for (TaxGroup& g : groups) {
            if (g.name == name)
                return &g;
        }
        return nullptr;
    };
    QList<const Record*> taxes;
    for (const Record* row : rows) {
        const Record* tax = row->related(s("tax"));
        if (!tax || taxes.contains(tax))
            continue;
        taxes << tax;
        const QString name = tax->value(s("name")).toString();
        TaxGroup* group = groupNamed(name);
        if (!group) {
            groups.append(TaxGroup{});
            group = &groups.last();
            group->name = name;
        }
        group->rate1 = tax->value(s("rate1"));
        group->rate2 = tax->value(s("rate2"));
        group->cumulative = tax->value(s("cumulative"));
    }

    const double exchangeRate = document->value(s("exchange_rate")).toDouble();
    double sumNet = 0.0;
    double sumTax1 = 0.0;
    double sumTax2 = 0.0;
    double sumTotal = 0.0;
    qint64 position = 1;
    for (Record* row : rows) {
        row->setValue(s("order"), position++);
        if (auto* documentRow = dynamic_cast<DocumentRowsRecord*>(row))
            documentRow->refreshTaxSnapshot();
        const double net = row->value(s("net")).toDouble();
        const double tax1 = row->value(s("tax1_value")).toDouble();
        const double tax2 = row->value(s("tax2_value")).toDouble();
        const double total = row->value(s("total")).toDouble();
        if (const Record* tax = row->related(s("tax"))) {
            if (TaxGroup* group = groupNamed(tax->value(s("name")).toString())) {
                group->net += net;
                group->tax1Value += tax1;
                group->tax2Value += tax2;
                group->total += total;
                group->defaultCurrencyTax1Value += tax1 * exchangeRate;
                group->defaultCurrencyTax2Value += tax2 * exchangeRate;
            }
        }
        sumNet += net;
        sumTax1 += tax1;
        sumTax2 += tax2;
        sumTotal += total;
    }

    for (Record* summary : document->relatedList(s("summaries")))
        context.deleteRecord(summary);
    qint64 order = 1;
    for (const TaxGroup& g : std::as_const(groups)) {
        Record* summary = context.insertRecord(
            s("DocumentSummaries"), {{s("order"), order++},
                                     {s("tax_name"), g.name},
                                     {s("rate1"), g.rate1},
                                     {s("rate2"), g.rate2},
                                     {s("tax1_rate"), g.rate1},
                                     {s("tax2_rate"), g.rate2},
                                     {s("tax_cumulative"), g.cumulative},
                                     {s("net"), g.net},
                                     {s("tax1_value"), g.tax1Value},
                                     {s("tax2_value"), g.tax2Value},
                                     {s("default_currency_tax1_value"), g.defaultCurrencyTax1Value},
                                     {s("default_currency_tax2_value"), g.defaultCurrencyTax2Value},
                                     {s("total"), g.total}});
        summary->setRelated(s("document"), document);
    }
    document->setValue(s("sum_net"), sumNet);
    document->setValue(s("sum_tax1"), sumTax1);
    document->setValue(s("sum_tax2"), sumTax2);
    document->setValue(s("sum_total"), sumTotal);
}

} // namespace corvanta::documents
