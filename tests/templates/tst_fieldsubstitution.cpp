#include "../model/modeltestsupport.h"
#include "documents/documenttotals.h"
#include "model/companyrecord.h"
#include "model/defaultrecords.h"
#include "model/documentrowsrecord.h"
#include "store/fetchrequest.h"
#include "templates/demorecords.h"
#include "templates/documentfiller.h"
#include "templates/fieldlists.h"
#include "templates/fieldreplacer.h"
#include "templates/reportfiller.h"
#include "templates/templatetypes.h"

#include <QLocale>

using namespace corvanta;
using namespace corvanta::model::testing;
using store::Record;
using templates::DemoRecords;
using templates::DocumentFiller;
using templates::FieldLists;
using templates::FieldReplacer;
using templates::FilledTemplate;
using templates::ReportFiller;
using templates::ReportInput;
using templates::TemplateTypes;
using templates::WorkingElements;

namespace {

// A company with its default records, whose default currency writes amounts as "1,234.50 €".
class Company
{
public:
    Company()
    {
        store::StoreError error;
        if (!model::DefaultRecords(main()).initDatabaseRecords(&error))
            qFatal("cannot insert the default records: %s", qPrintable(error.message()));
        m_euro = currency("EUR", "€", "sr");
        model::CompanyRecord::of(main())->setRelated(s("default_currency"), m_euro);
        saveOrFail(main());
    }

    store::EditingContext& main() { return m_scratch.main(); }
    store::Store& store() { return m_scratch.store(); }
    Record* euro() const { return m_euro; }

    // A currency of two fixed digits; `format` places the symbol ("sr": after a space, "l": before).
    Record* currency(const char* code, const char* symbol, const char* format)
    {
        return main().insertRecord(s("Currencies"), {{s("code"), s(code)},
                                                     {s("symbol"), s(symbol)},
                                                     {s("symbol_format"), s(format)},
                                                     {s("grouping_separator"), s(",")},
                                                     {s("decimal_separator"), s(".")},
                                                     {s("digits"), 2},
                                                     {s("show_fixed_digits"), true}});
    }

    // A template of `type` with one element per (section, text); a text of "box" makes a box.
    Record* addTemplate(qint64 type, const QList<std::pair<const char*, const char*>>& elements)
    {
        Record* templ = main().insertRecord(s("Templates"), {{s("type"), type}, {s("name"), s("Test")}});
        int zorder = 0;
        for (const auto& [section, text] : elements) {
            const bool box = s(text) == s("box");
            Record* element =
                main().insertRecord(s("TemplateElements"), {{s("section"), s(section)},
                                                            {s("type"), box ? s("shape_box") : s("text")},
                                                            {s("format"), box ? s("") : s(text)},
                                                            {s("identifier"), s("e%1").arg(zorder)},
                                                            {s("page_side"), 0},
                                                            {s("zorder"), zorder}});
            ++zorder;
            element->setRelated(s("template"), templ);
        }
        return templ;
    }

    // A document in euro with rows of (tax, quantity, unit price), inserted last row first, and
    // its summaries and sums computed as the document editor computes them.
    Record* addDocument(const QList<std::tuple<Record*, double, double>>& rows,
                        const QVariantMap& values = {})
    {
        Record* document = main().insertRecord(s("Documents"), values);
        document->setRelated(s("currency"), m_euro);
        document->setRelated(s("default_currency"), m_euro);
        for (qsizetype i = rows.size() - 1; i >= 0; --i) {
            const auto& [tax, quantity, price] = rows.at(i);
            Record* row = main().insertRecord(
                s("DocumentRows"),
                {{s("name"), s("Row %1").arg(i + 1)}, {s("unit_price"), price}, {s("order"), i + 1}});
            row->setRelated(s("document"), document);
            model::DocumentRowsRecord::setTax(row, tax);
            row->setValue(s("quantity"), quantity);
        }
        documents::DocumentTotals::updateTaxSummary(document);
        return document;
    }

    Record* tax(const char* name, double rate1)
    {
        return main().insertRecord(s("Taxes"), {{s("name"), s(name)}, {s("rate1"), rate1}});
    }

private:
    ScratchCompany m_scratch;
    Record* m_euro = nullptr;
};

// The filled texts of the elements of `section`, joined by " | ".
QString texts(const WorkingElements& elements, const char* section)
{
    QStringList result;
    for (const auto& element : elements) {
        if (element.section == s(section))
            result << element.text;
    }
    return result.join(s(" | "));
}

QString rowTexts(const FilledTemplate& filled)
{
    QStringList result;
    for (const auto& row : filled.rows)
        result << row.sectionType + s(": ") + texts(row.values, qPrintable(row.sectionType));
    return result.join(s("\n"));
}

} // namespace

class tst_FieldSubstitution : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void conversions_data();
    void conversions();
    void everyFieldRoundTrips();
    void customFieldDefinitions();
    void fieldMenu();
    void replacement_data();
    void replacement();
    void longerKeysReplacedFirst();
    void document_data();
    void document();
    void tableFooter();
    void reports_data();
    void reports();
    void clientReportFirstPhoneAndEmail();
    void demoDocument();
};

void tst_FieldSubstitution::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void tst_FieldSubstitution::conversions_data()
{
    QTest::addColumn<qint64>("type");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("friendly");

    const auto row = [](const char* tag, qint64 type, const char* stored, const char* friendly) {
        QTest::newRow(tag) << type << s(stored) << s(friendly);
    };
    row("header field in a sentence", 0, "Invoice @number_formatted, due @date_due",
        "Invoice @DocumentNumber, due @DueDate");
    row("field glued to a word", 0, "No.@number_formatted", "No.@DocumentNumber");
    row("page count before page number", 0, "@page_number / @page_number_total",
        "@PageNumber / @PageNumberTotal");
    row("custom field 10 not cut by field 1", 0, "@client_custom10 @my_custom10",
        "@ClientCustomField10 @MyCompanyCustomField10");
    row("row custom fields lose item_", 1, "@custom02 @custom_price01", "@CustomField2 @UnitPrice");
    row("client report key paths and custom", 120, "@default_address.zip_code @custom03",
        "@ClientZipCode @ClientCustomField3");
    row("unknown names stay", 0, "@nothing @ 100% @quantity", "@nothing @ 100% @Quantity");
}

void tst_FieldSubstitution::conversions()
{
    QFETCH(qint64, type);
    QFETCH(QString, stored);
    QFETCH(QString, friendly);
    Company company;
    const FieldLists lists(company.main(), int(type));
    Record* element = company.main().insertRecord(s("TemplateElements"));

    QCOMPARE(lists.formatToUserFriendly(stored), friendly);
    QCOMPARE(lists.formatToDatabase(friendly, element), stored);
    QCOMPARE(element->value(s("format")).toString(), stored);
}

// With the default custom fields no name of a type's lists hides another: a text of every field
// converts to the friendly names and back.
void tst_FieldSubstitution::everyFieldRoundTrips()
{
    Company company;
    for (const qint64 type : TemplateTypes::all()) {
        const FieldLists lists(company.main(), int(type));
        QStringList tokens;
        QStringList friendly;
        for (const auto& field : lists.all()) {
            tokens << field.token;
            friendly << QLatin1Char('@') + field.friendlyName;
        }
        QCOMPARE(lists.formatToUserFriendly(tokens.join(QLatin1Char(' '))), friendly.join(QLatin1Char(' ')));
        QCOMPARE(lists.formatToDatabase(friendly.join(QLatin1Char(' ')), nullptr),
                 tokens.join(QLatin1Char(' ')));
    }
}

void tst_FieldSubstitution::customFieldDefinitions()
{
    Company company;
    // Labelled like a built-in field, and a prefix written in capitals.
    company.main().insertRecord(s("Compose"), {{s("name"), s("client_custom11")}, {s("label"), s("Name")}});
    company.main().insertRecord(s("Compose"),
                                {{s("name"), s("CLIENT_extra")}, {s("label"), s(" Extra  Field ")}});
    const FieldLists lists(company.main(), 0);

    QCOMPARE(lists.formatToDatabase(s("@ClientName"), nullptr), s("@client_full_name"));
    QCOMPARE(lists.formatToDatabase(s("@ClientExtraField"), nullptr), s("@CLIENT_extra"));

    QStringList custom;
    for (const auto& field : lists.documentHeader()) {
        if (field.token.contains(s("custom")) || field.token.contains(s("extra")))
            custom << field.token + s("=") + field.friendlyName;
    }
    QCOMPARE(custom.first(), s("@CLIENT_extra=ClientExtraField"));
    QCOMPARE(custom.at(1), s("@client_custom01=ClientCustomField1"));
    QCOMPARE(custom.at(11), s("@client_custom11=ClientName"));
    QCOMPARE(custom.at(12), s("@my_custom01=MyCompanyCustomField1"));
    QCOMPARE(custom.size(), 22);
    QCOMPARE(lists.documentHeader().indexOf(FieldLists::Field{s("@my_name"), s("MyCompanyName")}),
             9 + 11 + 12);

    // The joined list: a grouped report's sections in their order.
    const FieldLists grouped(company.main(), TemplateTypes::DocumentsGroupedReport);
    QStringList tokens;
    for (const auto& field : grouped.all())
        tokens << field.token;
    QCOMPARE(tokens.mid(0, 3), QStringList({s("@date_start"), s("@date_end"), s("@number_formatted")}));
    QCOMPARE(tokens.indexOf(s("@name")), 2 + grouped.detailsHeader().size());
    QCOMPARE(tokens.mid(tokens.size() - 6),
             QStringList({s("@grand_net"), s("@grand_tax1"), s("@grand_tax2"), s("@grand_total"),
                          s("@page_number_total"), s("@page_number")}));
    QVERIFY(FieldLists(company.main(), 0).detailsHeader().isEmpty());
}

void tst_FieldSubstitution::fieldMenu()
{
    Company company;
    const FieldLists lists(company.main(), 0);
    Record* element =
        company.main().insertRecord(s("TemplateElements"), {{s("format"), s("Due @date_due ")}});
    QCOMPARE(lists.formulaSelected(element, s("PageNumberTotal")), s("Due @DueDate @PageNumberTotal"));
    QCOMPARE(element->value(s("format")).toString(), s("Due @date_due @page_number_total"));
}

void tst_FieldSubstitution::replacement_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char* tag, const char* entity, const char* key, const char* text,
                        const QVariant& value, const char* expected) {
        QTest::newRow(tag) << s(entity) << s(key) << s(text) << value << s(expected);
    };
    const QVariant none;
    row("string", "Documents", "client_full_name", "To: @client_full_name, @client_full_name", s("Acme"),
        "To: Acme, Acme");
    row("string without a value is empty", "Documents", "note_header", "[@note_header]", none, "[]");
    row("amount in the currency", "DocumentRows", "net", "@net", 1234.5, "1,234.50 €");
    row("quantity without digit limit", "DocumentRows", "quantity", "@quantity pcs", 1234.125,
        "1234.125 pcs");
    row("whole quantity with the fixed digits", "DocumentRows", "quantity", "@quantity", 3.0, "3.00");
    row("date in the short style", "Documents", "date_due", "Due @date_due",
        QDateTime(QDate(2024, 3, 15), QTime(12, 0)), "Due 3/15/24");
    row("missing date keeps the token", "Documents", "date_due", "Due @date_due", none, "Due @date_due");
    row("missing amount keeps the token", "Documents", "sum_total", "@sum_total", none, "@sum_total");
    row("integer keeps the token", "Documents", "number", "@number", 12, "@number");
    row("unknown key keeps the token", "Documents", "nothing", "@nothing", s("x"), "@nothing");
}

void tst_FieldSubstitution::replacement()
{
    QFETCH(QString, entity);
    QFETCH(QString, key);
    QFETCH(QString, text);
    QFETCH(QVariant, value);
    QFETCH(QString, expected);
    Company company;
    const Record* record = company.main().insertRecord(entity);
    QCOMPARE(FieldReplacer::replacedText(record->entity(), key, text, value, company.euro()), expected);
}

void tst_FieldSubstitution::longerKeysReplacedFirst()
{
    Company company;
    Record* document = company.main().insertRecord(
        s("Documents"),
        {{s("note"), s("N")}, {s("note_header"), s("H")}, {s("client_full_name"), s("Acme")}});
    const FieldReplacer replacer(document->entity(), company.euro());
    QCOMPARE(replacer.replaced(s("@note_header|@note|@client_full_name|@client_full|@page_number_total"),
                               *document),
             s("H|N|Acme|@client_full|@page_number_total"));
    // A value is put in as it stands, never searched for references itself.
    document->setValue(s("client_full_name"), s("Acme @note"));
    QCOMPARE(replacer.replaced(s("@client_full_name@note"), *document), s("Acme @noteN"));
}

void tst_FieldSubstitution::document_data()
{
    QTest::addColumn<QVariant>("exchangeRate");
    QTest::addColumn<QString>("header");

    const QString page = s(" | Page @page_number of @page_number_total");
    QTest::newRow("default currency: the rate's text is gone")
        << QVariant(1.0) << s("No. 2024/7 due 4/1/24 | Acme Ltd |  | ") + page;
    QTest::newRow("foreign currency: the rate is shown")
        << QVariant(1.5) << s("No. 2024/7 due 4/1/24 | Acme Ltd |  | Rate: 1.50 €") + page;
}

void tst_FieldSubstitution::document()
{
    QFETCH(QVariant, exchangeRate);
    QFETCH(QString, header);
    Company company;
    Record* tax = company.tax("VAT 20", 20);
    Record* document = company.addDocument({{tax, 2, 10.0}, {tax, 1, 5.5}, {tax, 3, 1.0}},
                                           {{s("number_formatted"), s("2024/7")},
                                            {s("client_full_name"), s("Acme Ltd")},
                                            {s("exchange_rate"), exchangeRate},
                                            {s("date_due"), QDateTime(QDate(2024, 4, 1), QTime(12, 0))}});
    Record* templ = company.addTemplate(0, {{"document_header", "No. @number_formatted due @date_due"},
                                            {"document_header", "@client_full_name"},
                                            {"document_header", "box"},
                                            {"document_footer", "Rate: @exchange_rate"},
                                            {"document_footer", "Page @page_number of @page_number_total"},
                                            {"details", "@order. @name: @quantity x @net = @total"},
                                            {"table_footer", "@sum_total @grand_total"}});

    const FilledTemplate filled = DocumentFiller::fill(templ, document);
    QCOMPARE(filled.page.size(), 7);
    QCOMPARE(texts(filled.page, "document_header") + s(" | ") + texts(filled.page, "document_footer"),
             header);
    // The table's sections are not filled on the page.
    QCOMPARE(texts(filled.page, "details"), s("@order. @name: @quantity x @net = @total"));
    QCOMPARE(texts(filled.page, "table_footer"), s("@sum_total @grand_total"));
    QCOMPARE(rowTexts(filled), s("details: @order. Row 1: 2.00 x 20.00 € = 24.00 €\n"
                                 "details: @order. Row 2: 1.00 x 5.50 € = 6.60 €\n"
                                 "details: @order. Row 3: 3.00 x 3.00 € = 3.60 €"));
    // The document's own fields stay outside the table footer's vocabulary.
    QCOMPARE(texts(filled.tableFooter, "table_footer"), s("@sum_total 34.20 €"));
}

void tst_FieldSubstitution::tableFooter()
{
    Company company;
    Record* dollar = company.currency("USD", "$", "l");
    Record* vat = company.tax("VAT 20", 20);
    Record* reduced = company.tax("Reduced 5", 5);
    Record* document = company.addDocument({{vat, 1, 100.0}, {reduced, 2, 50.0}, {vat, 1, 0.5}},
                                           {{s("exchange_rate"), 2.0}});
    document->setRelated(s("currency"), dollar);
    Record* templ =
        company.addTemplate(0, {{"document_header", "@summary_net"},
                                {"table_footer", "@summary_tax_name"},
                                {"table_footer", "@summary_net"},
                                {"table_footer", "@summary_tax1"},
                                {"table_footer", "@summary_tax2"},
                                {"table_footer", "@summary_default_currency_tax1"},
                                {"table_footer", "@summary_total"},
                                {"table_footer", "@summary_sum_net / @summary_sum_tax1 / @summary_sum_tax2 / "
                                                 "@summary_sum_default_currency_tax1 / @summary_sum_total"},
                                {"table_footer", "@grand_total"},
                                {"table_footer", "@amount_by_text"}});

    FilledTemplate filled = DocumentFiller::fill(templ, document);
    QCOMPARE(texts(filled.tableFooter, "table_footer"),
             s("VAT 20\nReduced 5 | $100.50\n$100.00 | $20.10\n$5.00 | $0.00\n$0.00 | 40.20 €\n10.00 € | "
               "$120.60\n$105.00 | $200.50 / $25.10 / $0.00 / 50.20 € / $225.60 | $225.60 | "
               "Kettőszázhuszonöt 60/100"));
    QCOMPARE(texts(filled.tableFooter, "document_header"), s("@summary_net"));

    // Without rows: no summary lines, sums of nothing.
    Record* empty = company.addDocument({});
    filled = DocumentFiller::fill(templ, empty);
    QVERIFY(filled.rows.isEmpty());
    QCOMPARE(texts(filled.tableFooter, "table_footer"),
             s(" |  |  |  |  |  | 0.00 € / 0.00 € / 0.00 € / 0.00 € / 0.00 € | 0.00 € | Nulla"));
}

void tst_FieldSubstitution::reports_data()
{
    QTest::addColumn<qint64>("type");
    QTest::addColumn<int>("entries");
    QTest::addColumn<QString>("firstEntries");
    QTest::addColumn<QString>("grandTotals");

    QTest::newRow("documents") << qint64(TemplateTypes::DocumentReport) << 12
                               << "details: 2024-1 Client Name 1 88.00 €"
                               << "2,940.00 € / 294.00 € / 0.00 € / 3,234.00 €";
    QTest::newRow("documents grouped") << qint64(TemplateTypes::DocumentsGroupedReport) << 16
                                       << "details_header: 2024-1 Client Name 1\n"
                                          "details: Item Name 1 1.00 22.00 €\n"
                                          "details: Item Name 2 2.00 66.00 €\n"
                                          "details_footer: 10%: 88.00 € (88.00 €)\n"
                                          "details_header: 2024-2 Client Name 2"
                                       << "500.00 € / 50.00 € / 0.00 € / 550.00 €";
    QTest::newRow("clients") << qint64(TemplateTypes::ClientReport) << 12
                             << "details: Client Name 1, City, 123/456-7890, client@example.com: 110.00 €"
                             << "7,800.00 € / 780.00 € / 0.00 € / 8,580.00 €";
    QTest::newRow("items") << qint64(TemplateTypes::ItemReport) << 12
                           << "details: Item Name 1 CODE1234 10% Each 5.00: 100.00 €"
                           << "7,800.00 € / 780.00 € / 0.00 € / 8,580.00 €";
}

void tst_FieldSubstitution::reports()
{
    QFETCH(qint64, type);
    QFETCH(int, entries);
    QFETCH(QString, firstEntries);
    QFETCH(QString, grandTotals);
    Company company;
    Record* templ = company.addTemplate(
        type,
        {{"document_header", "@date_start - @date_end"},
         {"details_header", "@number_formatted @client_full_name"},
         {"details", type == TemplateTypes::DocumentReport ? "@number_formatted @client_full_name @sum_total"
                     : type == TemplateTypes::ClientReport ? "@full_name, @default_address.city, @phones, "
                                                             "@emails: @documents_sum_total"
                     : type == TemplateTypes::ItemReport
                         ? "@name @code @tax.name @unit.name @stock: @documents_sum_net"
                         : "@name @quantity @total"},
         {"details_footer", "@summary_tax_name: @summary_total (@summary_sum_total)"},
         {"table_footer", "@grand_net / @grand_tax1 / @grand_tax2 / @grand_total"},
         {"document_footer", "@page_number"}});
    const ReportInput input =
        DemoRecords::demoReport(company.main(), int(type), QDateTime(QDate(2024, 3, 15), QTime(9, 0)));

    const FilledTemplate filled = ReportFiller::fill(templ, input);
    QCOMPARE(filled.rows.size(), entries);
    const QString all = rowTexts(filled);
    QCOMPARE(all.left(firstEntries.size()), firstEntries);
    QCOMPARE(texts(filled.tableFooter, "table_footer"), grandTotals);
    QCOMPARE(texts(filled.page, "document_header"), s("3/1/24 - 3/31/24"));
    QCOMPARE(texts(filled.page, "document_footer"), s("@page_number"));
}

void tst_FieldSubstitution::clientReportFirstPhoneAndEmail()
{
    Company company;
    Record* templ =
        company.addTemplate(TemplateTypes::ClientReport,
                            {{"details", "[@phones] [@emails] [@default_address.street] @documents_sum_net"},
                             {"table_footer", "@grand_net"}});
    ReportInput input;
    input.currency = company.euro();
    Record* two = company.main().insertRecord(
        s("Clients"),
        {{s("type"), 0}, {s("phones"), s("111 222,333 444")}, {s("emails"), s("a@x.com,b@x.com")}});
    Record* none = company.main().insertRecord(s("Clients"), {{s("type"), 0}});
    input.rows = {{two, {}, {{s("documents_sum_net"), 10.25}}}, {none, {}, {{s("documents_sum_net"), 5.0}}}};

    const FilledTemplate filled = ReportFiller::fill(templ, input);
    QCOMPARE(rowTexts(filled), s("details: [111 222] [a@x.com] [] 10.25 €\ndetails: [] [] [] 5.00 €"));
    QCOMPARE(texts(filled.tableFooter, "table_footer"), s("15.25 €"));
}

void tst_FieldSubstitution::demoDocument()
{
    Company company;
    Record* templ = company.addTemplate(
        0, {{"document_header", "@number_formatted @date_creation @date_completion @date_due"},
            {"document_header", "@client_full_name @client_custom10 @my_custom01 @bank_line1"},
            {"details", "@name|@code|@desc|@note|@quantity|@net|@tax1_value|@total|@custom05|@custom_price05|"
                        "@tax_name|@unit_name"},
            {"table_footer", "@summary_tax_name"}});
    const std::unique_ptr<store::EditingContext> scratch = company.store().newContext();
    Record* document = DemoRecords::testDocument(*scratch, QDateTime(QDate(2024, 3, 15), QTime(10, 30)));

    const FilledTemplate filled = DocumentFiller::fill(templ, document);
    // Every field the template names is filled, from the document, its rows and the company.
    const QString all = texts(filled.page, "document_header") + texts(filled.rows.last().values, "details");
    QVERIFY2(!all.contains(QLatin1Char('@')), qPrintable(all));
    QCOMPARE(filled.rows.size(), DemoRecords::kDocumentRows);
    QCOMPARE(texts(filled.tableFooter, "table_footer"),
             model::CompanyRecord::defaultRecord(*scratch, s("default_tax"))->value(s("name")).toString());
    // Nothing of it reaches the company's database.
    QCOMPARE(company.main().count(store::FetchRequest(s("Documents"))), 0);
}

QTEST_GUILESS_MAIN(tst_FieldSubstitution)
#include "tst_fieldsubstitution.moc"
