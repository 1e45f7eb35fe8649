#include "defaultrecords.h"

#include "corvantamodel.h"
#include "modellog.h"
#include "store/editingcontext.h"
#include "store/storeerror.h"
#include "systemcurrency.h"

#include <QColor>
#include <optional>

namespace corvanta::model {

using store::EditingContext;
using store::FetchRequest;
using store::Record;
using store::report;
using store::StoreError;

namespace {

using predicate::Predicate;

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

const char* const kTypeKeys[] = {"invoice",       "proforma",    "estimate",    "quotation",
                                 "delivery_note", "credit_note", "credit_memo", "purchase_order"};

const char* const kNumberFormats[] = {
    QT_TRANSLATE_NOOP("DefaultRecords", "INVOICE/,YYYY,-,NNNN"),
    QT_TRANSLATE_NOOP("DefaultRecords", "PROFORMA/,YYYY,-,NNNN"),
    QT_TRANSLATE_NOOP("DefaultRecords", "ESTIMATE/,YYYY,-,NNNN"),
    QT_TRANSLATE_NOOP("DefaultRecords", "QUOTATION/,YYYY,-,NNNN"),
    QT_TRANSLATE_NOOP("DefaultRecords", "DELIVERY NOTE/,YYYY,-,NNNN"),
    QT_TRANSLATE_NOOP("DefaultRecords", "CREDIT NOTE/,YYYY,-,NNNN"),
    QT_TRANSLATE_NOOP("DefaultRecords", "CREDIT MEMO/,YYYY,-,NNNN"),
    QT_TRANSLATE_NOOP("DefaultRecords", "PURCHASE ORDER/,YYYY,-,NNNN"),
};

struct Rgb
{
    double red;
    double green;
    double blue;
};

struct CategoryDefault
{
    const char* indexpath;
    const char* caption;
    std::optional<int> type;
    std::optional<int> subtype;
    std::optional<Rgb> text;
    std::optional<Rgb> background;
    const char* predicate;
};

constexpr Rgb kWhite{1, 1, 1};
constexpr Rgb kBlack{0, 0, 0};
constexpr Rgb kGrey{0.9, 0.9, 0.9};

const CategoryDefault kCategories[] = {
    {"000", QT_TRANSLATE_NOOP("DefaultRecords", "Clients"), -1, {}, {}, {}, nullptr},
    {"000000", QT_TRANSLATE_NOOP("DefaultRecords", "All Clients"), -1, -1, {}, {}, nullptr},
    {"000001", QT_TRANSLATE_NOOP("DefaultRecords", "Company"), 1, 0, kWhite, Rgb{0.0, 0.333, 0.647}, nullptr},
    {"000002", QT_TRANSLATE_NOOP("DefaultRecords", "Supplier"), 1, 1, kWhite, Rgb{0.0, 0.576, 0.816},
     nullptr},
    {"000003", QT_TRANSLATE_NOOP("DefaultRecords", "Individual"), 1, 2, kWhite, Rgb{0.2, 0.192, 0.573},
     nullptr},
    {"001", QT_TRANSLATE_NOOP("DefaultRecords", "Items"), -2, {}, {}, {}, nullptr},
    {"001000", QT_TRANSLATE_NOOP("DefaultRecords", "All Items"), -2, -2, {}, {}, nullptr},
    {"001001",
     QT_TRANSLATE_NOOP("DefaultRecords", "Critical Stock"),
     -2,
     -2,
     {},
     {},
     "stock_current <= stock_critical && type == 1"},
    {"001002", QT_TRANSLATE_NOOP("DefaultRecords", "Service"), 2, 0, kWhite, Rgb{0.0, 0.659, 0.565}, nullptr},
    {"001003", QT_TRANSLATE_NOOP("DefaultRecords", "Product"), 2, 1, kWhite, Rgb{0.0, 0.859, 0.729}, nullptr},
    {"002", QT_TRANSLATE_NOOP("DefaultRecords", "Documents"), -3, {}, {}, {}, nullptr},
    {"002000", QT_TRANSLATE_NOOP("DefaultRecords", "All Documents"), -3, -3, {}, {}, nullptr},
    {"002001",
     QT_TRANSLATE_NOOP("DefaultRecords", "Paid Invoices"),
     -3,
     -3,
     {},
     {},
     "sum_total == payments.@sum.amount && type == 0 && draft == NO"},
    {"002002",
     QT_TRANSLATE_NOOP("DefaultRecords", "Unpaid Invoices"),
     -3,
     -3,
     {},
     {},
     "sum_total != payments.@sum.amount && type == 0 && draft == NO && cancel_reference == NULL"},
    {"002003", QT_TRANSLATE_NOOP("DefaultRecords", "Draft Invoices"), -3, -3, {}, {}, "draft == YES"},
    {"002004", QT_TRANSLATE_NOOP("DefaultRecords", "Invoice"), 3, 0, kBlack, Rgb{1.0, 0.824, 0.0}, nullptr},
    {"002005", QT_TRANSLATE_NOOP("DefaultRecords", "Pro Forma"), 3, 1, kBlack, kGrey, nullptr},
    {"002006", QT_TRANSLATE_NOOP("DefaultRecords", "Estimate"), 3, 2, kBlack, kGrey, nullptr},
    {"002007", QT_TRANSLATE_NOOP("DefaultRecords", "Quotation"), 3, 3, kBlack, kGrey, nullptr},
    {"002008", QT_TRANSLATE_NOOP("DefaultRecords", "Delivery Note"), 3, 4, kBlack, kGrey, nullptr},
    {"002009", QT_TRANSLATE_NOOP("DefaultRecords", "Credit Note"), 3, 5, kBlack, kGrey, nullptr},
    {"002010", QT_TRANSLATE_NOOP("DefaultRecords", "Credit Memo"), 3, 6, kBlack, kGrey, nullptr},
    {"002011", QT_TRANSLATE_NOOP("DefaultRecords", "Purchase Order"), 3, 7, kBlack, kGrey, nullptr},
    {"002012", QT_TRANSLATE_NOOP("DefaultRecords", "Cancellation"), 3, 100, kWhite, Rgb{0.937, 0.25, 0.208},
     nullptr},
    {"003", QT_TRANSLATE_NOOP("DefaultRecords", "ToDos"), -4, {}, {}, {}, nullptr},
    {"003000", QT_TRANSLATE_NOOP("DefaultRecords", "All ToDos"), -4, -4, {}, {}, nullptr},
    {"003001", QT_TRANSLATE_NOOP("DefaultRecords", "Pending"), 4, 0, kWhite, {}, nullptr},
    {"003002", QT_TRANSLATE_NOOP("DefaultRecords", "Done"), 4, 1, kWhite, Rgb{0.447, 0.761, 0.404}, nullptr},
    {"004", QT_TRANSLATE_NOOP("DefaultRecords", "My Group"), {}, {}, {}, {}, nullptr},
    {"004000", QT_TRANSLATE_NOOP("DefaultRecords", "My Folder"), {}, {}, {}, {}, nullptr},
};

QColor colour(const Rgb& rgb)
{
    return QColor::fromRgbF(float(rgb.red), float(rgb.green), float(rgb.blue));
}

// Report and list views the default column sets belong to. Views 0 to 3 are the report
// screen's (documents, document rows, client sums, item sums); 4 is the to-do list.
enum View { DocumentsView = 0, DocumentRowsView = 1, ClientSumsView = 2, ItemSumsView = 3, ToDosView = 4 };
// The list kind of the records a view shows: 1 clients, 2 items, 3 documents, 4 to-dos.
int listKindOf(int view)
{
    switch (view) {
    case ClientSumsView:
        return 1;
    case ItemSumsView:
        return 2;
    case ToDosView:
        return 4;
    default:
        return 3;
    }
}

} // namespace

DefaultRecords::DefaultRecords(EditingContext& mainContext, TemplateInstaller installTemplates)
    : m_context(mainContext)
    , m_installTemplates(std::move(installTemplates))
{}

bool DefaultRecords::initDatabaseRecords(StoreError* error)
{
    m_inserted = false;
    m_foundVersion.clear();
    const int settings = m_context.count(FetchRequest(s("Settings")), error);
    if (settings < 0)
        return false;
    if (settings == 0) {
        if (!insertDefaults(error)) {
            m_context.rollback();
            return false;
        }
        m_inserted = true;
    } else {
        const Record* version = m_context.fetchFirst(FetchRequest(
            s("Settings"), Predicate::compare(s("key"), Predicate::Operator::Equal, s("version"))));
        m_foundVersion = version ? version->value(s("value")).toString() : QString();
        // Version 1.0 is the only data model so far: there is nothing to upgrade from.
        if (m_foundVersion != QLatin1String(kModelVersion))
            qCInfo(lcModel, "The company database records data-model version \"%s\".",
                   qPrintable(m_foundVersion));
    }
    if (!m_context.save(error)) {
        if (m_inserted)
            m_context.rollback();
        m_inserted = false;
        return false;
    }
    return true;
}

bool DefaultRecords::insertDefaults(StoreError* error)
{
    insertSettings();
    Record* company = insertCompany();
    insertReferenceLists(company);
    insertCategories(company);
    insertCustomFieldDefinitions();
    if (m_installTemplates) {
        QString why;
        if (!m_installTemplates(m_context, company, &why)) {
            report(error, StoreError::make(
                              StoreError::StoreInitFailed,
                              tr("The templates of the new company database could not be loaded."), why));
            return false;
        }
    }
    Record* emailTemplate = m_context.insertRecord(s("EmailTemplates"), {{s("name"), tr("Empty Template")}});
    company->setRelated(s("default_email_template"), emailTemplate);
    insertCurrencies(company);
    insertReportColumns();
    return true;
}

void DefaultRecords::insertSettings()
{
    const auto setting = [&](const QString& key, const QVariant& value,
                             std::optional<int> id = std::nullopt) {
        QVariantMap values{{s("key"), key}, {s("value"), value}};
        if (id)
            values.insert(s("id"), *id);
        m_context.insertRecord(s("Settings"), values);
    };
    setting(s("version"), s(kModelVersion));
    for (int type = 0; type < 8; ++type)
        setting(s("number_format_") + s(kTypeKeys[type]), tr(kNumberFormats[type]), type);
    for (int type = 0; type < 8; ++type)
        setting(s("print_copy_") + s(kTypeKeys[type]), type == 0 ? 2 : 1, type);
    const std::pair<const char*, QVariant> others[] = {
        {"first_name_position", 0},
        {"use_warehouse", 1},
        {"default_search_type", 1},
        {"default_client_type", 0},
        {"default_item_type", 1},
        {"default_calendar_view_show_documents", 1},
        {"default_calendar_view_show_done_todos", 1},
        {"default_note_header", QString()}, // stored as empty text
        {"default_note_footer", QString()},
        {"sound_finalize_invoice", 1},
        {"system_tags_client_hidden", 0},
        {"system_tags_item_hidden", 0},
    };
    for (const auto& [key, value] : others)
        setting(s(key), value);
}

Record* DefaultRecords::insertCompany()
{
    return m_context.insertRecord(s("MyCompany"), {{s("name"), tr("My Company")}});
}

void DefaultRecords::insertReferenceLists(Record* company)
{
    Record* each = m_context.insertRecord(s("Units"), {{s("name"), tr("Each")}});
    m_context.insertRecord(s("Units"), {{s("name"), tr("Hours")}});
    company->setRelated(s("default_unit"), each);

    Record* tax = m_context.insertRecord(s("Taxes"), {{s("name"), tr("10%")}, {s("rate1"), 10.0}});
    m_context.insertRecord(s("Taxes"), {{s("name"), tr("GST / PST")}, {s("rate1"), 5.0}, {s("rate2"), 7.0}});
    company->setRelated(s("default_tax"), tax);

    Record* transfer = m_context.insertRecord(s("PaymentTypes"), {{s("name"), tr("Bank Transfer")}});
    m_context.insertRecord(s("PaymentTypes"), {{s("name"), tr("Cash")}});
    company->setRelated(s("default_payment_type"), transfer);

    Record* bank = m_context.insertRecord(s("Banks"), {{s("line1"), tr("My Bank")}});
    company->setRelated(s("default_bank"), bank);

    Record* dueDay = m_context.insertRecord(
        s("DueDays"), {{s("name"), tr("8 Business Days")}, {s("days"), 8}, {s("type"), 1}});
    company->setRelated(s("default_due_day"), dueDay);
}

void DefaultRecords::insertCategories(Record* company)
{
    QHash<QString, Record*> headers;
    for (const CategoryDefault& category : kCategories) {
        QVariantMap values{{s("indexpath"), s(category.indexpath)}, {s("name"), tr(category.caption)}};
        if (category.type)
            values.insert(s("type"), *category.type);
        if (category.subtype)
            values.insert(s("subtype"), *category.subtype);
        if (category.text)
            values.insert(s("foreground_color"), colour(*category.text));
        if (category.background)
            values.insert(s("background_color"), colour(*category.background));
        if (category.predicate)
            values.insert(s("predicate"), s(category.predicate));
        Record* record = m_context.insertRecord(s("Categories"), values);
        const QString indexpath = s(category.indexpath);
        if (indexpath.size() == 3) {
            headers.insert(indexpath, record);
            // Every section starts expanded.
            company->addRelated(s("category_expanded"), record);
        } else {
            record->setRelated(s("parent"), headers.value(indexpath.left(3)));
        }
    }
}

void DefaultRecords::insertCustomFieldDefinitions()
{
    // Each definition is "name:label", with ":YES" added for a field that starts hidden.
    QStringList definitions;
    const auto number = [](int n) { return QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0')); };
    for (int n = 1; n <= 5; ++n)
        definitions << QStringLiteral("item_custom%1:%2").arg(number(n), tr("Custom Field %1").arg(n));
    definitions << QStringLiteral("item_custom_price01:%1").arg(tr("Unit Price"));
    for (int n = 2; n <= 5; ++n)
        definitions << QStringLiteral("item_custom_price%1:%2").arg(number(n), tr("Custom Price %1").arg(n));
    for (const char* prefix : {"client_custom", "my_custom"}) {
        for (int n = 1; n <= 10; ++n)
            definitions << QStringLiteral("%1%2:%3%4")
                               .arg(s(prefix), number(n), tr("Custom Field %1").arg(n),
                                    n > 5 ? QStringLiteral(":YES") : QString());
    }
    for (const QString& definition : definitions) {
        // The name ends at the first colon; a label may hold colons of its own.
        QString rest = definition.section(QLatin1Char(':'), 1);
        const bool hidden = rest.endsWith(QLatin1String(":YES"));
        if (hidden)
            rest.chop(4);
        m_context.insertRecord(s("Compose"), {{s("name"), definition.section(QLatin1Char(':'), 0, 0)},
                                              {s("label"), rest},
                                              {s("hidden"), hidden}});
    }
}

void DefaultRecords::insertCurrencies(Record* company)
{
    Record* usd = nullptr;
    for (const SystemCurrency& currency : SystemCurrency::all()) {
        Record* record =
            m_context.insertRecord(s("Currencies"), {{s("code"), currency.code},
                                                     {s("symbol"), currency.symbol},
                                                     {s("grouping_separator"), currency.groupingSeparator},
                                                     {s("decimal_separator"), currency.decimalSeparator},
                                                     {s("digits"), 2},
                                                     {s("show_fixed_digits"), false},
                                                     {s("symbol_format"), s("l")}});
        if (currency.code == QLatin1String("USD"))
            usd = record;
    }
    if (usd)
        company->setRelated(s("default_currency"), usd);
}

void DefaultRecords::insertReportColumns()
{
    QHash<int, int> nextOrder;
    const auto column = [&](int view, const QString& key, const QString& title) {
        m_context.insertRecord(s("ReportColumns"), {{s("view"), view},
                                                    {s("type"), listKindOf(view)},
                                                    {s("column"), key},
                                                    {s("title"), title},
                                                    {s("order"), nextOrder[view]++}});
    };
    const auto number = [](int n) { return QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0')); };

    const QList<std::pair<const char*, QString>> documentColumns = {
        {"number_formatted", tr("Number")},
        {"date_creation", tr("Creation")},
        {"date_completion", tr("Completion")},
        {"date_due", tr("Due")},
        {"sum_tax1", tr("Tax 1 Value")},
        {"sum_tax2", tr("Tax 2 Value")},
        {"sum_net", tr("Net")},
        {"sum_total", tr("Total")},
        {"exchange_rate", tr("Exchange Rate")},
        {"client_full_name", tr("Client Name")},
        {"client_tax_number", tr("Tax Number")},
        {"client_street", tr("Street")},
        {"client_city", tr("City")},
        {"client_state", tr("State")},
        {"client_zip_code", tr("Zip Code")},
        {"client_country", tr("Country")},
        {"client_address_note", tr("Address Note")},
        {"client_email", tr("Email")},
        {"client_phone", tr("Phone")},
    };
    const auto documentSet = [&](int view, const QString& prefix) {
        for (const auto& [key, title] : documentColumns)
            column(view, prefix + s(key), title);
        for (int n = 1; n <= 10; ++n)
            column(view, prefix + QStringLiteral("client_custom") + number(n),
                   tr("Custom %1").arg(number(n)));
    };

    documentSet(DocumentsView, QString());

    documentSet(DocumentRowsView, QStringLiteral("document."));
    column(DocumentRowsView, s("name"), tr("Item Name"));
    column(DocumentRowsView, s("code"), tr("Code"));
    column(DocumentRowsView, s("tax_name"), tr("Tax Name"));
    column(DocumentRowsView, s("tax1_rate"), tr("Tax 1 Rate"));
    column(DocumentRowsView, s("tax2_rate"), tr("Tax 2 Rate"));
    column(DocumentRowsView, s("unit_name"), tr("Unit"));
    column(DocumentRowsView, s("unit_price"), tr("Unit Price"));
    column(DocumentRowsView, s("quantity"), tr("Quantity"));
    column(DocumentRowsView, s("tax1_value"), tr("Tax 1 Value"));
    column(DocumentRowsView, s("tax2_value"), tr("Tax 2 Value"));
    column(DocumentRowsView, s("net"), tr("Net"));
    column(DocumentRowsView, s("total"), tr("Line Total"));
    for (int n = 1; n <= 5; ++n)
        column(DocumentRowsView, QStringLiteral("custom") + number(n), tr("Custom %1").arg(number(n)));

    const auto summarySet = [&](int view) {
        column(view, s("documents_sum_total"), tr("Sum Total"));
        column(view, s("documents_sum_net"), tr("Sum Net"));
        column(view, s("documents_sum_tax1"), tr("Sum Tax 1"));
        column(view, s("documents_sum_tax2"), tr("Sum Tax 2"));
    };

    column(ClientSumsView, s("full_name"), tr("Name"));
    column(ClientSumsView, s("tax_number"), tr("Tax Number"));
    column(ClientSumsView, s("default_address.street"), tr("Street"));
    column(ClientSumsView, s("default_address.city"), tr("City"));
    column(ClientSumsView, s("default_address.state"), tr("State"));
    column(ClientSumsView, s("default_address.zip_code"), tr("Zip Code"));
    column(ClientSumsView, s("default_address.country"), tr("Country"));
    column(ClientSumsView, s("default_address.address_note"), tr("Address Note"));
    column(ClientSumsView, s("emails"), tr("Emails"));
    column(ClientSumsView, s("phones"), tr("Phones"));
    summarySet(ClientSumsView);

    column(ItemSumsView, s("stock"), tr("Stock"));
    column(ItemSumsView, s("tax.name"), tr("Tax"));
    column(ItemSumsView, s("unit.name"), tr("Unit"));
    for (int n = 1; n <= 5; ++n)
        column(ItemSumsView, QStringLiteral("custom_price") + number(n),
               tr("Custom Price %1").arg(number(n)));
    column(ItemSumsView, s("tags"), tr("Tags"));
    summarySet(ItemSumsView);

    column(ToDosView, s("date_start"), tr("Start"));
    column(ToDosView, s("date_end"), tr("End"));
    column(ToDosView, s("repeat_end_date"), tr("Repeat End"));
    column(ToDosView, s("repeat_weekdays"), tr("Weekdays"));
}

} // namespace corvanta::model
