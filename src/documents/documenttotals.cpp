#include "documenttotals.h"

#include "model/documentrowsrecord.h"
#include "store/editingcontext.h"

#include <QList>
#include <functional>

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

// The groups of a document's rows, keyed by the tax's name: two taxes of one name share a
// line, with the rates of the one met last. Rows are read in the order given, each row's amounts
// as they were last computed.
struct Collected
{
    QList<TaxGroup> groups;
    double sumNet = 0.0;
    double sumTax1 = 0.0;
    double sumTax2 = 0.0;
    double sumTotal = 0.0;
};

TaxGroup* groupNamed(QList<TaxGroup>& groups, const QString& name)
{
    for (TaxGroup& g : groups) {
        if (g.name == name)
            return &g;
    }
    return nullptr;
}

Collected collect(const QList<Record*>& rows, double exchangeRate,
                  const std::function<void(Record*, qint64)>& visitRow = {})
{
    Collected result;
    QList<const Record*> taxes;
    for (const Record* row : rows) {
        const Record* tax = row->related(s("tax"));
        if (!tax || taxes.contains(tax))
            continue;
        taxes << tax;
        const QString name = tax->value(s("name")).toString();
        TaxGroup* group = groupNamed(result.groups, name);
        if (!group) {
            result.groups.append(TaxGroup{});
            group = &result.groups.last();
            group->name = name;
        }
        group->rate1 = tax->value(s("rate1"));
        group->rate2 = tax->value(s("rate2"));
        group->cumulative = tax->value(s("cumulative"));
    }

    qint64 position = 1;
    for (Record* row : rows) {
        if (visitRow)
            visitRow(row, position);
        ++position;
        const double net = row->value(s("net")).toDouble();
        const double tax1 = row->value(s("tax1_value")).toDouble();
        const double tax2 = row->value(s("tax2_value")).toDouble();
        const double total = row->value(s("total")).toDouble();
        if (const Record* tax = row->related(s("tax"))) {
            if (TaxGroup* group = groupNamed(result.groups, tax->value(s("name")).toString())) {
                group->net += net;
                group->tax1Value += tax1;
                group->tax2Value += tax2;
                group->total += total;
                group->defaultCurrencyTax1Value += tax1 * exchangeRate;
                group->defaultCurrencyTax2Value += tax2 * exchangeRate;
            }
        }
        result.sumNet += net;
        result.sumTax1 += tax1;
        result.sumTax2 += tax2;
        result.sumTotal += total;
    }
    return result;
}

} // namespace

DocumentTotals::Sums DocumentTotals::currentSums(const Record* document)
{
    Sums sums;
    if (!document)
        return sums;
    const Collected collected =
        collect(DocumentRowsRecord::displayOrder(document), document->value(s("exchange_rate")).toDouble());
    sums.net = collected.sumNet;
    sums.tax1 = collected.sumTax1;
    sums.tax2 = collected.sumTax2;
    sums.total = collected.sumTotal;
    for (const TaxGroup& g : collected.groups)
        sums.taxLines.append({g.name, g.net, g.tax1Value, g.tax2Value, g.total});
    return sums;
}

void DocumentTotals::updateTaxSummary(Record* document)
{
    if (!document)
        return;
    store::EditingContext& context = *document->context();
    const Collected collected =
        collect(DocumentRowsRecord::displayOrder(document), document->value(s("exchange_rate")).toDouble(),
                [](Record* row, qint64 position) {
                    row->setValue(s("order"), position);
                    if (auto* documentRow = dynamic_cast<DocumentRowsRecord*>(row))
                        documentRow->refreshTaxSnapshot();
                });
    const QList<TaxGroup>& groups = collected.groups;

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
    document->setValue(s("sum_net"), collected.sumNet);
    document->setValue(s("sum_tax1"), collected.sumTax1);
    document->setValue(s("sum_tax2"), collected.sumTax2);
    document->setValue(s("sum_total"), collected.sumTotal);
}

} // namespace corvanta::documents
