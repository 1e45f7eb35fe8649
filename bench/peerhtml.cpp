#include "peerhtml.h"

#include "format/amountbytext.h"
#include "format/formattedcurrency.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"

#include <QSaveFile>
#include <algorithm>

namespace corvanta::bench {

using store::Record;

namespace {

QString text(const Record& record, const char* key)
{
    return record.value(QString::fromLatin1(key)).toString().toHtmlEscaped();
}

QString date(const Record& record, const char* key)
{
    return record.value(QString::fromLatin1(key)).toDateTime().toLocalTime().date().toString(Qt::ISODate);
}

QString money(const Record& document, double amount)
{
    return format::formattedCurrency(amount, document.related(QStringLiteral("currency"))).toHtmlEscaped();
}

QString amount(const Record& document, const Record& record, const char* key)
{
    return money(document, record.value(QString::fromLatin1(key)).toDouble());
}

QString lines(const QString& multiline)
{
    return multiline.toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br>"));
}

QList<Record*> inOrder(QList<Record*> records)
{
    std::stable_sort(records.begin(), records.end(), [](const Record* a, const Record* b) {
        return a->value(QStringLiteral("order")).toInt() < b->value(QStringLiteral("order")).toInt();
    });
    return records;
}

const char* const kStyle = R"(
@page { size: A4; margin: 20mm 18mm 22mm 22mm;
        @bottom-right { content: "Page " counter(page) " of " counter(pages);
                        font: 8pt "Liberation Sans"; color: #555; } }
body { font: 9pt "Liberation Sans", Arial, sans-serif; color: #222; margin: 0; }
.sender { font-size: 7pt; color: #555; border-bottom: 0.5pt solid #999; margin-bottom: 3mm; }
.head td { vertical-align: top; }
.company { text-align: right; }
h1 { font-size: 16pt; margin: 10mm 0 2mm; }
table.rows { width: 100%; border-collapse: collapse; margin-top: 6mm; }
table.rows thead { display: table-header-group; }
table.rows tr { page-break-inside: avoid; }
table.rows th { text-align: left; border-bottom: 1pt solid #333; padding: 1mm; }
table.rows td { border-bottom: 0.3pt solid #ccc; padding: 1mm; }
.num { text-align: right; white-space: nowrap; }
.totals { margin: 5mm 0 0 auto; border-collapse: collapse; page-break-inside: avoid; }
.totals td { padding: 0.8mm 2mm; }
.total td { font-weight: bold; font-size: 11pt; border-top: 1pt solid #333; }
.words { text-align: right; font-size: 8pt; margin-top: 2mm; }
.payment { margin-top: 6mm; font-size: 8pt; color: #444; page-break-inside: avoid; }
)";

} // namespace

bool PeerHtml::writeInvoice(store::EditingContext& context, const QString& identifier, const QString& path)
{
    const Record* document = context.fetchFirst(store::FetchRequest(
        QStringLiteral("Documents"), predicate::literal("identifier == %@", {identifier})));
    if (!document)
        return false;
    return write(
        path, page(document->value(QStringLiteral("number_formatted")).toString(), invoiceBody(*document)));
}

bool PeerHtml::writeReport(store::EditingContext& context, const QString& path)
{
    int documents = 0;
    const QString body = reportBody(context, &documents);
    return documents > 0 && write(path, page(QStringLiteral("Document Report"), body));
}

QString PeerHtml::page(const QString& title, const QString& body)
{
    return QStringLiteral("<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>%1</title>"
                          "<style>%2</style></head>\n<body>\n%3</body></html>\n")
        .arg(title.toHtmlEscaped(), QString::fromLatin1(kStyle), body);
}

QString PeerHtml::invoiceBody(const Record& document)
{
    const QString myAddress = text(document, "my_address").replace(QLatin1Char('\n'), QStringLiteral(" · "));
    QString html;
    html += QStringLiteral("<div class=\"sender\">%1 · %2</div>\n").arg(text(document, "my_name"), myAddress);
    html +=
        QStringLiteral(
            "<table class=\"head\" width=\"100%\"><tr><td>%1<br>%2<br>%3 %4 %5<br>%6</td>"
            "<td class=\"company\"><b>%7</b><br>%8<br>%9<br>%10<br>Tax no. %11</td></tr></table>\n")
            .arg(text(document, "client_full_name"), text(document, "client_street"),
                 text(document, "client_zip_code"), text(document, "client_city"),
                 text(document, "client_state"), text(document, "client_country"), text(document, "my_name"),
                 lines(document.value(QStringLiteral("my_address")).toString()), text(document, "my_phone"))
            .arg(text(document, "my_email"), text(document, "my_tax_number"));
    html += QStringLiteral("<h1>Invoice</h1>\n<table class=\"facts\"><tr><td>Number</td><td>%1</td></tr>"
                           "<tr><td>Date</td><td>%2</td></tr><tr><td>Delivery date</td><td>%3</td></tr>"
                           "<tr><td>Due date</td><td>%4</td></tr><tr><td>Payment</td><td>%5</td></tr>"
                           "<tr><td>Client tax no.</td><td>%6</td></tr></table>\n")
                .arg(text(document, "number_formatted"), date(document, "date_creation"),
                     date(document, "date_completion"), date(document, "date_due"),
                     text(document, "payment_type_name"), text(document, "client_tax_number"));

    html += QStringLiteral("<table class=\"rows\"><thead><tr><th>Description</th><th class=\"num\">Qty</th>"
                           "<th>Unit</th><th class=\"num\">Net</th><th>Tax</th><th class=\"num\">Total</th>"
                           "</tr></thead>\n<tbody>\n");
    for (const Record* row : inOrder(document.relatedList(QStringLiteral("rows"))))
        html += QStringLiteral("<tr><td>%1<br><small>%2</small></td><td class=\"num\">%3</td><td>%4</td>"
                               "<td class=\"num\">%5</td><td>%6</td><td class=\"num\">%7</td></tr>\n")
                    .arg(text(*row, "name"), lines(row->value(QStringLiteral("note")).toString()),
                         QString::number(row->value(QStringLiteral("quantity")).toDouble()),
                         text(*row, "unit_name"), amount(document, *row, "net"), text(*row, "tax_name"),
                         amount(document, *row, "total"));

    html += QStringLiteral(
        "</tbody></table>\n<table class=\"totals\">\n<tr><th>Tax rate</th><th class=\"num\">Net</th>"
        "<th class=\"num\">Tax</th><th class=\"num\">Total</th></tr>\n");
    for (const Record* summary : inOrder(document.relatedList(QStringLiteral("summaries"))))
        html += QStringLiteral("<tr><td>%1</td><td class=\"num\">%2</td><td class=\"num\">%3</td>"
                               "<td class=\"num\">%4</td></tr>\n")
                    .arg(text(*summary, "tax_name"), amount(document, *summary, "net"),
                         amount(document, *summary, "tax1_value"), amount(document, *summary, "total"));
    const double total = document.value(QStringLiteral("sum_total")).toDouble();
    html +=
        QStringLiteral("<tr class=\"total\"><td colspan=\"3\">Total due</td><td class=\"num\">%1</td></tr>\n"
                       "</table>\n<div class=\"words\">In words: %2</div>\n")
            .arg(money(document, total), format::amountByText(total).toHtmlEscaped());

    html +=
        QStringLiteral("<div class=\"payment\">%1 · %2<br>%3 · %4 · Tax no. %5<br>%6<br>%7<br>%8</div>\n")
            .arg(text(document, "my_name"), myAddress, text(document, "my_phone"), text(document, "my_email"),
                 text(document, "my_tax_number"), text(document, "payment_type_name"),
                 text(document, "bank_line1"), lines(document.value(QStringLiteral("note")).toString()));
    return html;
}

QString PeerHtml::reportBody(store::EditingContext& context, int* documents)
{
    const QList<Record*> all = context.fetch(
        store::FetchRequest(QStringLiteral("Documents"), {},
                            {store::SortDescriptor{QStringLiteral("date_creation"), true,
                                                   store::SortDescriptor::Comparison::Default}}));
    *documents = int(all.size());
    const Record* company = context.fetchFirst(store::FetchRequest(QStringLiteral("MyCompany")));
    const Record* currency = company ? company->related(QStringLiteral("default_currency")) : nullptr;

    const QString period = all.isEmpty() ? QString()
                                         : date(*all.first(), "date_creation") + QStringLiteral(" – ") +
                                               date(*all.last(), "date_creation");
    QString html =
        QStringLiteral("<h1>Document Report</h1>\n<div>%1</div>\n<table class=\"rows\"><thead><tr>"
                       "<th>Number</th><th>Date</th><th>Client</th><th class=\"num\">Net</th>"
                       "<th class=\"num\">Tax</th><th class=\"num\">Total</th></tr></thead>\n<tbody>\n")
            .arg(period);
    double net = 0.0;
    double tax = 0.0;
    double total = 0.0;
    for (const Record* document : all) {
        const double rate = document->value(QStringLiteral("exchange_rate")).toDouble();
        // The tax column of the document report is the first tax.
        const double documentTax = document->value(QStringLiteral("sum_tax1")).toDouble();
        net += document->value(QStringLiteral("sum_net")).toDouble() * rate;
        tax += documentTax * rate;
        total += document->value(QStringLiteral("sum_total")).toDouble() * rate;
        html += QStringLiteral("<tr><td>%1</td><td>%2</td><td>%3</td><td class=\"num\">%4</td>"
                               "<td class=\"num\">%5</td><td class=\"num\">%6</td></tr>\n")
                    .arg(text(*document, "number_formatted"), date(*document, "date_creation"),
                         text(*document, "client_full_name"), amount(*document, *document, "sum_net"),
                         money(*document, documentTax), amount(*document, *document, "sum_total"));
    }
    html += QStringLiteral("</tbody></table>\n<table class=\"totals\">\n"
                           "<tr><td>Documents</td><td class=\"num\">%1</td></tr>\n"
                           "<tr><td>Net</td><td class=\"num\">%2</td></tr>\n"
                           "<tr><td>Tax</td><td class=\"num\">%3</td></tr>\n"
                           "<tr class=\"total\"><td>Total</td><td class=\"num\">%4</td></tr>\n</table>\n")
                .arg(*documents)
                .arg(format::formattedCurrency(net, currency).toHtmlEscaped(),
                     format::formattedCurrency(tax, currency).toHtmlEscaped(),
                     format::formattedCurrency(total, currency).toHtmlEscaped());
    return html;
}

bool PeerHtml::write(const QString& path, const QString& html)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(html.toUtf8());
    return file.commit();
}

} // namespace corvanta::bench
