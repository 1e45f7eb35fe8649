#include "browse/documentpage.h"

#include "browse/htmltext.h"
#include "documents/paymentstatus.h"
#include "format/currencyformatter.h"
#include "format/nodigitlimitnumberformatter.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"

namespace corvanta::browse {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QString cell(const QString& html, bool number)
{
    return number ? QStringLiteral("<td class='number' style='text-align:right;'>%1</td>").arg(html)
                  : QStringLiteral("<td>%1</td>").arg(html);
}

QString heading(const QString& text, bool number)
{
    return number ? QStringLiteral("<th class='number' style='text-align:right;'>%1</th>")
                        .arg(HtmlText::escaped(text))
                  : QStringLiteral("<th>%1</th>").arg(HtmlText::escaped(text));
}

QList<Record*> rowsOf(Record* document)
{
    return document->context()->fetch(store::FetchRequest(
        s("DocumentRows"), predicate::literal("document == %@", {QVariant::fromValue(document->ref())}),
        {store::SortDescriptor{s("order")}}));
}

} // namespace

QString DocumentPage::pieValues(double paid, double unpaid)
{
    return QStringLiteral("addPieValues([%1], [%2])")
        .arg(QString::asprintf("%f, %f", paid, unpaid), HtmlText::scriptString(tr("Paid")) +
                                                            QStringLiteral(", ") +
                                                            HtmlText::scriptString(tr("Unpaid")));
}

QString DocumentPage::paymentState(bool paid)
{
    return paid ? QStringLiteral("<span style='color:#0acd8c;'>%1<span>").arg(HtmlText::escaped(tr("Paid")))
                : QStringLiteral("<span style='color:#d10103'>%1<span>").arg(HtmlText::escaped(tr("Unpaid")));
}

DetailPage DocumentPage::fill(Record* document)
{
    DetailPage page(ListKind::Documents);
    if (!document)
        return page;
    const Record* currency = document->related(s("currency"));
    const format::CurrencyFormatter amount(currency);
    const format::NoDigitLimitNumberFormatter quantity(currency);
    const auto money = [&amount](const Record* record, const char* key) {
        return HtmlText::escaped(amount.stringForObjectValue(record->value(s(key))));
    };

    page.setContent(s("name"), HtmlText::escaped(document->value(s("number_formatted")).toString()));
    page.setContent(s("tags"), DetailPage::tagLabels(document));

    QString properties;
    const auto add = [&properties](const QString& label, const QString& text) {
        if (!text.isEmpty())
            properties += DetailPage::propertyRow(label, HtmlText::multiline(text));
    };
    add(tr("Client"), document->value(s("client_full_name")).toString());
    add(tr("Date"), DetailPage::shortDate(document->value(s("date_creation"))));
    add(tr("Completion Date"), DetailPage::shortDate(document->value(s("date_completion"))));
    add(tr("Due Date"), DetailPage::shortDate(document->value(s("date_due"))));
    add(tr("Payment Type"), document->value(s("payment_type_name")).toString());
    add(tr("Note"), document->value(s("note")).toString());
    page.setContent(s("properties"), properties);

    QString rows = QStringLiteral("<tr>") + heading(tr("Name"), false) + heading(tr("Quantity"), true) +
                   heading(tr("Unit Price"), true) + heading(tr("Net"), true) + heading(tr("Tax"), true) +
                   heading(tr("Total"), true) + QStringLiteral("</tr>");
    for (const Record* row : rowsOf(document)) {
        rows += QStringLiteral("<tr>") + cell(HtmlText::multiline(row->value(s("name")).toString()), false) +
                cell(HtmlText::escaped(quantity.stringForObjectValue(row->value(s("quantity")))), true) +
                cell(money(row, "unit_price"), true) + cell(money(row, "net"), true) +
                cell(HtmlText::escaped(row->value(s("tax_value")).toString()), true) +
                cell(money(row, "total"), true) + QStringLiteral("</tr>");
    }
    const double taxes =
        document->value(s("sum_tax1")).toDouble() + document->value(s("sum_tax2")).toDouble();
    rows += QStringLiteral("<tr class='sum'>") + cell(HtmlText::escaped(tr("Total")), false) +
            cell({}, true) + cell({}, true) + cell(money(document, "sum_net"), true) +
            cell(HtmlText::escaped(amount.stringFromNumber(taxes)), true) +
            cell(money(document, "sum_total"), true) + QStringLiteral("</tr>");
    page.setContent(s("rows"), rows);

    // Payments concern invoices alone.
    if (document->value(s("type")).toLongLong() == 0) {
        const double paid = document->valueForKeyPath(s("payments.@sum.amount")).toDouble();
        const double unpaid = document->value(s("sum_total")).toDouble() - paid;
        page.addCall(pieValues(paid, unpaid));
        page.setContent(s("payment"), paymentState(documents::PaymentStatus::isPaid(document)));
    } else {
        page.hide(s("payment_group"));
    }
    return page;
}

} // namespace corvanta::browse
