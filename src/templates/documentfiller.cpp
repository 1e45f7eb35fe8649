#include "documentfiller.h"

#include "fieldreplacer.h"
#include "fillingsteps.h"
#include "format/amountbytext.h"
#include "format/formattedcurrency.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"

#include <algorithm>

namespace corvanta::templates {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// The values of the table footer's fields, from the document's tax summaries.
QList<std::pair<QString, QString>> tableFooterValues(const store::Record& document)
{
    const store::Record* currency = document.related(s("currency"));
    const store::Record* defaultCurrency = document.related(s("default_currency"));
    QList<store::Record*> summaries = document.relatedList(s("summaries"));
    std::sort(summaries.begin(), summaries.end(), filling::inOrder);

    const auto lines = [&](const char* key, const store::Record* in) {
        QStringList texts;
        for (const store::Record* summary : std::as_const(summaries))
            texts << format::formattedCurrency(summary->value(s(key)).toDouble(), in);
        return texts.join(QLatin1Char('\n'));
    };
    const auto sum = [&](const char* key, const store::Record* in) {
        return format::formattedCurrency(document.valueForKeyPath(s("summaries.@sum.") + s(key)).toDouble(),
                                         in);
    };
    QStringList taxNames;
    for (const store::Record* summary : std::as_const(summaries))
        taxNames << summary->value(s("tax_name")).toString();
    const double grandTotal = document.valueForKeyPath(s("summaries.@sum.total")).toDouble();

    return {
        {s("@summary_tax_name"), taxNames.join(QLatin1Char('\n'))},
        {s("@summary_net"), lines("net", currency)},
        {s("@summary_tax1"), lines("tax1_value", currency)},
        {s("@summary_tax2"), lines("tax2_value", currency)},
        {s("@summary_default_currency_tax1"), lines("default_currency_tax1_value", defaultCurrency)},
        {s("@summary_default_currency_tax2"), lines("default_currency_tax2_value", defaultCurrency)},
        {s("@summary_total"), lines("total", currency)},
        {s("@summary_sum_net"), sum("net", currency)},
        {s("@summary_sum_tax1"), sum("tax1_value", currency)},
        {s("@summary_sum_tax2"), sum("tax2_value", currency)},
        {s("@summary_sum_default_currency_tax1"), sum("default_currency_tax1_value", defaultCurrency)},
        {s("@summary_sum_default_currency_tax2"), sum("default_currency_tax2_value", defaultCurrency)},
        {s("@summary_sum_total"), sum("total", currency)},
        {s("@grand_total"), format::formattedCurrency(grandTotal, currency)},
        {s("@amount_by_text"), format::amountByText(grandTotal)},
    };
}

} // namespace

FilledTemplate DocumentFiller::fill(store::Record* templateRecord, store::Record* document)
{
    return fill(templateElements(templateRecord), document);
}

FilledTemplate DocumentFiller::fill(const QList<store::Record*>& elements, store::Record* document)
{
    FilledTemplate filled;
    const WorkingElements fresh = resetReplaceElements(elements);
    if (!document) {
        filled.page = fresh;
        filled.tableFooter = fresh;
        return filled;
    }
    const store::Record* currency = document->related(s("currency"));
    const QVariant exchangeRate = document->value(s("exchange_rate"));
    const bool defaultCurrencyRate = !exchangeRate.isNull() && exchangeRate.toDouble() == 1.0;

    // The page sections. A text that shows the exchange rate is dropped whole for a document in
    // the default currency; it is judged by the element's own text, before the rate is put in.
    filled.page = fresh;
    const FieldReplacer documentFields(document->entity(), currency);
    filling::replaceTexts(
        filled.page,
        [](const WorkingElement& e) {
            return !filling::isRowSection(e.section) && !filling::isTableFooter(e.section);
        },
        [&](const QString& text) {
            if (defaultCurrencyRate && text.contains(QLatin1String("exchange_rate")))
                return QString();
            return documentFields.replaced(text, *document);
        });

    // One details set per row.
    const QList<store::Record*> rows = rowsInOrder(document);
    const WorkingElements details = filling::ofSection(fresh, s("details"));
    if (!rows.isEmpty()) {
        const FieldReplacer rowFields(rows.first()->entity(), currency);
        filled.rows.reserve(rows.size());
        for (const store::Record* row : std::as_const(rows)) {
            TableEntry entry;
            entry.values = details;
            filling::replaceTexts(
                entry.values, [](const WorkingElement&) { return true; },
                [&](const QString& text) { return rowFields.replaced(text, *row); });
            filled.rows.append(entry);
        }
    }

    // The table footer.
    filled.tableFooter = fresh;
    const QList<std::pair<QString, QString>> footerValues = tableFooterValues(*document);
    filling::replaceTexts(
        filled.tableFooter, [](const WorkingElement& e) { return filling::isTableFooter(e.section); },
        [&](const QString& text) {
            if (defaultCurrencyRate && text.contains(QLatin1String("exchange_rate")))
                return QString();
            return filling::replacedTokens(text, footerValues);
        });
    return filled;
}

QList<store::Record*> DocumentFiller::rowsInOrder(store::Record* document)
{
    // One query rather than each row faulted in on its own through the relationship.
    QList<store::Record*> rows = document->context()->fetch(store::FetchRequest(
        s("DocumentRows"), predicate::literal("document == %@", {QVariant::fromValue(document->ref())})));
    std::sort(rows.begin(), rows.end(), filling::inOrder);
    return rows;
}

} // namespace corvanta::templates
