#include "documenttext.h"

#include "documents/documenttypes.h"
#include "documentstatus.h"
#include "format/formattedcurrency.h"
#include "model/documentrowsrecord.h"
#include "store/record.h"
#include "texttable.h"
#include "valuetext.h"

#include <algorithm>

namespace corvanta::cli {

using store::Record;
using Align = TextTable::Align;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

QString DocumentText::amount(const Record* document, double value)
{
    return format::formattedCurrency(value, document->related(s("currency")));
}

QString DocumentText::typeName(const Record* document)
{
    // The negative twin of a cancelled invoice is shown as the sidebar files it.
    if (isCancellation(document))
        return tr("Cancellation");
    return documents::DocumentTypes::displayName(document->value(s("type")).toLongLong());
}

bool DocumentText::isCancellation(const Record* document)
{
    if (document->value(s("cancel_reference")).isNull())
        return false;
    const QList<Record*> tags = document->relatedList(s("tags"));
    return std::any_of(tags.cbegin(), tags.cend(), [](const Record* tag) {
        return tag->value(s("type")).toLongLong() == 3 &&
               tag->value(s("subtype")).toLongLong() == documents::DocumentTypes::kCancellationSubtype;
    });
}

void DocumentText::write(QTextStream& out, const Record* document)
{
    const auto text = [&](const char* key) { return document->value(s(key)).toString(); };
    const auto money = [&](const QVariant& value) { return amount(document, value.toDouble()); };
    FieldList fields;
    const auto field = [&](const QString& label, const QString& value) { fields.add(label, value); };

    QString heading = text("number_formatted") + QStringLiteral("  ") + typeName(document);
    const QString status = DocumentStatus::of(document);
    if (!status.isEmpty())
        heading += QStringLiteral(", ") + status;
    out << heading << '\n';
    field(tr("Identifier"), text("identifier"));
    field(tr("Client"), text("client_full_name"));
    field(tr("Date"), ValueText::day(document->value(s("date_creation"))));
    field(tr("Due"), ValueText::day(document->value(s("date_due"))));
    const Record* currency = document->related(s("currency"));
    const Record* companyCurrency = document->related(s("default_currency"));
    if (currency) {
        QString line = currency->value(s("code")).toString();
        if (companyCurrency && companyCurrency != currency)
            line += QStringLiteral(", ") +
                    tr("1 %1 = %2 %3")
                        .arg(line, ValueText::plain(document->value(s("exchange_rate")).toDouble()),
                             companyCurrency->value(s("code")).toString());
        field(tr("Currency"), line);
    }
    field(tr("Payment"), text("payment_type_name"));
    if (const Record* other = document->related(s("cancel_reference")))
        field(isCancellation(document) ? tr("Cancels") : tr("Cancelled by"),
              other->value(s("number_formatted")).toString());
    field(tr("Header"), text("note_header").split(QLatin1Char('\n'), Qt::SkipEmptyParts).join(s(" / ")));
    fields.write(out);

    const QList<Record*> rows = model::DocumentRowsRecord::displayOrder(document);
    if (!rows.isEmpty()) {
        TextTable table({{s("#"), Align::Right},
                         {tr("Name")},
                         {tr("Quantity"), Align::Right},
                         {tr("Unit")},
                         {tr("Unit price"), Align::Right},
                         {tr("Net"), Align::Right},
                         {tr("Tax")},
                         {tr("Total"), Align::Right}});
        for (const Record* row : rows) {
            table.addRow({row->value(s("order")).toString(), row->value(s("name")).toString(),
                          ValueText::plain(row->value(s("quantity")).toDouble()),
                          row->value(s("unit_name")).toString(), money(row->value(s("unit_price"))),
                          money(row->value(s("net"))), row->value(s("tax_name")).toString(),
                          money(row->value(s("total")))});
        }
        out << '\n';
        table.write(out, 2);
    }

    QList<Record*> summaries = document->relatedList(s("summaries"));
    std::stable_sort(summaries.begin(), summaries.end(), [](const Record* a, const Record* b) {
        return a->value(s("order")).toLongLong() < b->value(s("order")).toLongLong();
    });
    if (!summaries.isEmpty()) {
        TextTable table({{tr("Tax")},
                         {tr("Net"), Align::Right},
                         {tr("Tax 1"), Align::Right},
                         {tr("Tax 2"), Align::Right},
                         {tr("Total"), Align::Right}});
        for (const Record* summary : std::as_const(summaries))
            table.addRow({summary->value(s("tax_name")).toString(), money(summary->value(s("net"))),
                          money(summary->value(s("tax1_value"))), money(summary->value(s("tax2_value"))),
                          money(summary->value(s("total")))});
        out << '\n';
        table.write(out, 2);
    }

    TextTable sums({{QString()}, {QString(), Align::Right}});
    sums.addRow({tr("Net"), money(document->value(s("sum_net")))});
    sums.addRow({tr("Tax 1"), money(document->value(s("sum_tax1")))});
    sums.addRow({tr("Tax 2"), money(document->value(s("sum_tax2")))});
    sums.addRow({tr("Total"), money(document->value(s("sum_total")))});
    out << '\n';
    sums.write(out, 2, false);

    QList<Record*> payments = document->relatedList(s("payments"));
    if (!payments.isEmpty()) {
        std::stable_sort(payments.begin(), payments.end(), [](const Record* a, const Record* b) {
            return a->value(s("date")).toDateTime() < b->value(s("date")).toDateTime();
        });
        TextTable table({{tr("Date")}, {tr("Payment")}, {tr("Amount"), Align::Right}});
        for (const Record* payment : std::as_const(payments)) {
            table.addRow({ValueText::day(payment->value(s("date"))),
                          payment->valueForKeyPath(s("payment.name")).toString(),
                          money(payment->value(s("amount")))});
        }
        out << '\n' << tr("Payments:") << '\n';
        table.write(out, 2);
        const double paid = document->valueForKeyPath(s("payments.@sum.amount")).toDouble();
        out << "  "
            << tr("Paid %1, remaining %2")
                   .arg(amount(document, paid),
                        amount(document, document->value(s("sum_total")).toDouble() - paid))
            << '\n';
    }
}

} // namespace corvanta::cli
