#include "demorecords.h"

#include "documents/documenttotals.h"
#include "format/relativedates.h"
#include "model/companyrecord.h"
#include "model/documentrowsrecord.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "templatetypes.h"

namespace corvanta::templates {

namespace {

using store::Record;

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// "%1" filled with n, two digits wide when `twoDigits`.
QString numbered(const char* pattern, int n, bool twoDigits = false)
{
    return s(pattern).arg(n, twoDigits ? 2 : 0, 10, QLatin1Char('0'));
}

// The tax and unit of demo items: the company's defaults, or made here when it has none.
Record* companyDefault(store::EditingContext& scratch, const char* key, const char* entity,
                       const QVariantMap& values)
{
    if (Record* record = model::CompanyRecord::defaultRecord(scratch, s(key)))
        return record;
    return scratch.insertRecord(s(entity), values);
}

Record* demoTax(store::EditingContext& scratch)
{
    return companyDefault(scratch, "default_tax", "Taxes", {{s("name"), s("10%")}, {s("rate1"), 10.0}});
}

// The sums of a client's or an item's documents: `net` with the tax on top.
QVariantMap documentSums(double net, const Record* tax)
{
    const auto prices = model::DocumentRowsRecord::computePrices(
        1.0, net, tax ? tax->value(s("rate1")).toDouble() : 0.0,
        tax ? tax->value(s("rate2")).toDouble() : 0.0, tax && tax->value(s("cumulative")).toBool());
    return {{s("documents_sum_net"), prices.net},
            {s("documents_sum_tax1"), prices.tax1Value},
            {s("documents_sum_tax2"), prices.tax2Value},
            {s("documents_sum_total"), prices.total}};
}

// A demo document of the report period with `rowCount` rows and its tax summary and sums.
Record* reportDocument(store::EditingContext& scratch, int n, int rowCount, const QDateTime& date,
                       Record* currency, Record* tax)
{
    Record* document = scratch.insertRecord(
        s("Documents"), {{s("type"), 0},
                         {s("number"), n},
                         {s("number_formatted"), s("%1-%2").arg(date.date().year()).arg(n)},
                         {s("date_creation"), date},
                         {s("date_completion"), date},
                         {s("date_due"), format::dates::addDays(date, 8)},
                         {s("payment_type_name"), s("Bank Transfer")},
                         {s("note_header"), s("Document Header Text")},
                         {s("exchange_rate"), 1.0},
                         {s("client_full_name"), numbered("Client Name %1", n)},
                         {s("client_tax_number"), s("Tax Number")},
                         {s("client_street"), s("Street")},
                         {s("client_city"), s("City")},
                         {s("client_state"), s("State")},
                         {s("client_zip_code"), s("Zip Code")},
                         {s("client_country"), s("Country")},
                         {s("client_address_note"), s("Address Note")},
                         {s("client_email"), s("client@example.com")},
                         {s("client_phone"), s("123/456-7890")},
                         {s("client_desc"), s("Description")}});
    document->setRelated(s("currency"), currency);
    document->setRelated(s("default_currency"), currency);
    for (int i = 1; i <= rowCount; ++i) {
        Record* row = scratch.insertRecord(s("DocumentRows"), {{s("name"), numbered("Item Name %1", i)},
                                                               {s("code"), s("CODE1234")},
                                                               {s("unit_name"), s("Each")},
                                                               {s("unit_price"), 10.0 * (n + i)}});
        row->setRelated(s("document"), document);
        model::DocumentRowsRecord::setTax(row, tax);
        row->setValue(s("quantity"), double(i));
    }
    documents::DocumentTotals::updateTaxSummary(document);
    return document;
}

} // namespace

Record* DemoRecords::testDocument(store::EditingContext& scratch, const QDateTime& now)
{
    Record* currency = model::CompanyRecord::defaultRecord(scratch, s("default_currency"));
    Record* tax = model::CompanyRecord::defaultRecord(scratch, s("default_tax"));
    const QDateTime today = format::dates::today(now);

    QVariantMap values{{s("bank_line1"), s("BANK 12345678-12345678-12345678")},
                       {s("date_creation"), today},
                       {s("date_completion"), format::dates::addDays(today, -1)},
                       {s("date_due"), format::dates::addDays(today, 2)},
                       {s("note_header"), s("Document Header Text")},
                       {s("note_footer"), s("Document Footer Text")},
                       {s("number_formatted"), s("2014/001234")},
                       {s("payment_type_name"), s("Bank Transfer")},
                       // In the default currency, as its currencies say: a rate text vanishes
                       // as it does on such a document.
                       {s("exchange_rate"), 1.0},
                       {s("sum_net"), 10000.0},
                       {s("sum_total"), 11000.0},
                       {s("client_full_name"), s("Demo Client Company Name")},
                       {s("client_tax_number"), s("12345678")},
                       {s("client_street"), s("Client Street 123.")},
                       {s("client_city"), s("Client City")},
                       {s("client_state"), s("STATE")},
                       {s("client_zip_code"), s("123456")},
                       {s("client_country"), s("Client Country")},
                       {s("client_address_note"), s("Address Note")},
                       {s("client_desc"), s("Client Description")},
                       {s("client_email"), s("client@example.com")},
                       {s("client_phone"), s("001 123-45678")},
                       {s("my_name"), s("Demo My Company Name")},
                       {s("my_tax_number"), s("TAX nr. 9876543")},
                       {s("my_address"), s("My Long Long Address")},
                       {s("my_desc"), s("My Company Description")},
                       {s("my_email"), s("company@example.com")},
                       {s("my_phone"), s("002 321-876543")}};
    for (int n = 1; n <= 10; ++n) {
        values.insert(numbered("client_custom%1", n, true), numbered("Client Custom %1", n, true));
        values.insert(numbered("my_custom%1", n, true), numbered("My Company Custom %1", n, true));
    }
    Record* document = scratch.insertRecord(s("Documents"), values);
    document->setRelated(s("currency"), currency);
    document->setRelated(s("default_currency"), currency);

    double net = 0.0;
    double tax1 = 0.0;
    double tax2 = 0.0;
    double total = 0.0;
    for (int i = 1; i <= kDocumentRows; ++i) {
        Record* row = scratch.insertRecord(s("DocumentRows"));
        row->setRelated(s("document"), document);
        // The tax and the quantity recompute a row's amounts, so the fixed amounts come after.
        model::DocumentRowsRecord::setTax(row, tax);
        row->setValue(s("quantity"), double(i));
        row->setValue(s("order"), i);
        row->setValue(s("name"), numbered("Item Name %1", i));
        row->setValue(s("code"), numbered("Item Code %1", i));
        row->setValue(s("desc"), numbered("Item Description %1", i));
        row->setValue(s("note"), numbered("Line Note %1", i));
        row->setValue(s("tax_name"), s("Tax Name"));
        row->setValue(s("unit_name"), s("Unit"));
        row->setValue(s("net"), 10.0 * i);
        row->setValue(s("tax1_value"), 10.0 * i);
        row->setValue(s("tax2_value"), 10.0 * i);
        row->setValue(s("total"), 100.0 * i);
        for (int n = 1; n <= 5; ++n) {
            row->setValue(numbered("custom%1", n, true), numbered("Custom %1", n));
            row->setValue(numbered("custom_price%1", n, true), 10.0 * n);
        }
        net += 10.0 * i;
        tax1 += 10.0 * i;
        tax2 += 10.0 * i;
        total += 100.0 * i;
    }

    // Every row has the company's tax: one summary, with the rows' amounts.
    if (tax) {
        Record* summary =
            scratch.insertRecord(s("DocumentSummaries"), {{s("order"), 1},
                                                          {s("tax_name"), tax->value(s("name"))},
                                                          {s("tax_cumulative"), tax->value(s("cumulative"))},
                                                          {s("tax1_rate"), tax->value(s("rate1"))},
                                                          {s("tax2_rate"), tax->value(s("rate2"))},
                                                          {s("rate1"), tax->value(s("rate1"))},
                                                          {s("rate2"), tax->value(s("rate2"))},
                                                          {s("net"), net},
                                                          {s("tax1_value"), tax1},
                                                          {s("tax2_value"), tax2},
                                                          {s("default_currency_tax1_value"), tax1},
                                                          {s("default_currency_tax2_value"), tax2},
                                                          {s("total"), total}});
        summary->setRelated(s("document"), document);
    }
    return document;
}

ReportInput DemoRecords::demoReport(store::EditingContext& scratch, int templateType, const QDateTime& now)
{
    ReportInput input;
    const QDate today = now.date();
    input.dateStart = QDate(today.year(), today.month(), 1);
    input.dateEnd = input.dateStart.addMonths(1).addDays(-1);
    input.currency = model::CompanyRecord::defaultRecord(scratch, s("default_currency"));
    Record* tax = demoTax(scratch);
    const QDateTime dated = format::dates::midday(now);

    switch (templateType) {
    case TemplateTypes::DocumentReport:
        for (int n = 1; n <= kReportRows; ++n)
            input.rows.append({reportDocument(scratch, n, 2, dated, input.currency, tax), {}, {}});
        break;
    case TemplateTypes::DocumentsGroupedReport:
        for (int n = 1; n <= kGroupedDocuments; ++n) {
            Record* document = reportDocument(scratch, n, 2, dated, input.currency, tax);
            input.rows.append({document, s("group_header"), {}});
            for (Record* row : model::DocumentRowsRecord::displayOrder(document))
                input.rows.append({row, s("group_detail"), {}});
            input.rows.append({document, s("group_footer"), {}});
        }
        break;
    case TemplateTypes::ClientReport:
        for (int n = 1; n <= kReportRows; ++n) {
            Record* client =
                scratch.insertRecord(s("Clients"), {{s("type"), 0},
                                                    {s("company_name"), numbered("Client Name %1", n)},
                                                    {s("tax_number"), s("Tax Number")},
                                                    {s("emails"), s("client@example.com")},
                                                    {s("phones"), s("123/456-7890")},
                                                    {s("desc"), s("Description")}});
            Record* address = scratch.insertRecord(s("Addresses"), {{s("street"), s("Street")},
                                                                    {s("city"), s("City")},
                                                                    {s("state"), s("State")},
                                                                    {s("country"), s("Country")},
                                                                    {s("zip_code"), s("Zip Code")},
                                                                    {s("address_note"), s("Address Note")}});
            address->setRelated(s("client"), client);
            client->setRelated(s("default_address"), address);
            input.rows.append({client, {}, documentSums(100.0 * n, tax)});
        }
        break;
    case TemplateTypes::ItemReport: {
        Record* unit = companyDefault(scratch, "default_unit", "Units", {{s("name"), s("Each")}});
        for (int n = 1; n <= kReportRows; ++n) {
            Record* item = scratch.insertRecord(s("Items"), {{s("type"), 1},
                                                             {s("name"), numbered("Item Name %1", n)},
                                                             {s("code"), s("CODE1234")},
                                                             {s("desc"), s("Description")},
                                                             {s("unit_price"), 10.0 * n},
                                                             {s("stock_current"), 5.0 * n}});
            item->setRelated(s("tax"), tax);
            item->setRelated(s("unit"), unit);
            input.rows.append({item, {}, documentSums(100.0 * n, tax)});
        }
        break;
    }
    default:
        break;
    }
    return input;
}

} // namespace corvanta::templates
