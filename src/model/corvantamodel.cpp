#include "corvantamodel.h"

namespace corvanta::model {

using store::DataModel;
using store::DataModelBuilder;

namespace {

using T = store::AttributeType;
using R = store::DeleteRule;

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

void defineReferenceLists(DataModelBuilder& b)
{
    b.entity(s("Settings"))
        .string(s("key"))
        .attribute(s("value"), T::Variant)
        .integer(s("id"))
        .index({s("key")}, true);

    b.entity(s("Units")).string(s("name"));
    b.entity(s("Taxes")).string(s("name")).decimal(s("rate1")).decimal(s("rate2")).boolean(s("cumulative"));
    b.entity(s("Currencies"))
        .string(s("code"))
        .string(s("symbol"))
        .string(s("symbol_format"))
        .string(s("grouping_separator"))
        .string(s("decimal_separator"))
        .integer(s("digits"))
        .boolean(s("show_fixed_digits"))
        .boolean(s("selectable"))
        .string(s("sample"))
        .index({s("code")});
    b.entity(s("Banks")).string(s("line1")).string(s("line2")).string(s("line3"));
    b.entity(s("DueDays")).string(s("name")).integer(s("days")).integer(s("type"));
    b.entity(s("PaymentTypes")).string(s("name"));
    b.entity(s("Compose")).string(s("name")).string(s("label")).boolean(s("hidden")).index({s("name")});
    b.entity(s("EmailTemplates")).string(s("name")).string(s("subject")).string(s("body"));
    b.entity(s("DocumentRowNotes")).string(s("note"));
}

void defineCompany(DataModelBuilder& b)
{
    b.entity(s("MyCompany"))
        .string(s("name"))
        .string(s("address"))
        .string(s("email"))
        .string(s("phone"))
        .string(s("tax_number"))
        .string(s("desc"))
        .numbered(s("custom"), 10, T::String)
        .string(s("default_note_header"))
        .string(s("default_note_footer"));

    // Each company default is a one-to-one whose inverse begins with "my_company_", so that a
    // record can tell whether it is the company's default of its kind.
    const struct
    {
        const char* key;
        const char* entity;
    } defaults[] = {
        {"default_currency", "Currencies"},
        {"default_unit", "Units"},
        {"default_tax", "Taxes"},
        {"default_payment_type", "PaymentTypes"},
        {"default_bank", "Banks"},
        {"default_due_day", "DueDays"},
        {"default_email_template", "EmailTemplates"},
        {"default_template_invoice", "Templates"},
        {"default_template_proforma", "Templates"},
        {"default_template_estimate", "Templates"},
        {"default_template_quotation", "Templates"},
        {"default_template_delivery_note", "Templates"},
        {"default_template_credit_note", "Templates"},
        {"default_template_credit_memo", "Templates"},
        {"default_template_purchase_order", "Templates"},
        {"default_template_report_documents", "Templates"},
        {"default_template_report_documents_grouped", "Templates"},
        {"default_template_report_summary_client", "Templates"},
        {"default_template_report_summary_item", "Templates"},
    };
    for (const auto& d : defaults)
        b.oneToOne(s("MyCompany"), s(d.key), R::Nullify, s(d.entity), s("my_company_") + s(d.key),
                   R::Nullify);

    b.oneToMany(s("MyCompany"), s("category_selected"), R::Nullify, s("Categories"),
                s("my_company_category_selected"), R::Nullify);
    b.oneToMany(s("MyCompany"), s("category_expanded"), R::Nullify, s("Categories"),
                s("my_company_category_expanded"), R::Nullify);
}

void defineClients(DataModelBuilder& b)
{
    b.entity(s("Clients"))
        .integer(s("type"))
        .integer(s("subtype"))
        .string(s("company_name"))
        .string(s("first_name"))
        .string(s("last_name"))
        .string(s("full_name"))
        .string(s("tax_number"))
        .string(s("desc"))
        .string(s("identifier"))
        .string(s("emails"))
        .string(s("phones"))
        .integer(s("rating"))
        .integer(s("status"))
        .numbered(s("custom"), 10, T::String)
        .date(s("created"))
        .transientAttribute(s("documents_sum_net"), T::Decimal)
        .transientAttribute(s("documents_sum_tax1"), T::Decimal)
        .transientAttribute(s("documents_sum_tax2"), T::Decimal)
        .transientAttribute(s("documents_sum_total"), T::Decimal)
        .index({s("full_name")})
        .index({s("identifier")});

    b.entity(s("Addresses"))
        .string(s("street"))
        .string(s("city"))
        .string(s("state"))
        .string(s("zip_code"))
        .string(s("country"))
        .string(s("address_note"));
    b.entity(s("Contacts")).string(s("name")).string(s("email")).string(s("phone")).string(s("contact_note"));

    b.oneToMany(s("Clients"), s("addresses"), R::Cascade, s("Addresses"), s("client"), R::Nullify);
    b.oneToOne(s("Clients"), s("default_address"), R::Nullify, s("Addresses"), s("default_address_client"),
               R::Nullify);
    b.oneToMany(s("Clients"), s("contacts"), R::Cascade, s("Contacts"), s("client"), R::Nullify);
    b.oneToOne(s("Clients"), s("default_contact"), R::Nullify, s("Contacts"), s("default_contact_client"),
               R::Nullify);
    b.oneToMany(s("PaymentTypes"), s("clients"), R::Nullify, s("Clients"), s("default_payment_type"),
                R::Nullify);
    b.oneToMany(s("Banks"), s("clients"), R::Nullify, s("Clients"), s("default_bank"), R::Nullify);
    b.oneToMany(s("DueDays"), s("clients"), R::Nullify, s("Clients"), s("default_due_day"), R::Nullify);
}

void defineItems(DataModelBuilder& b)
{
    b.entity(s("Items"))
        .integer(s("type"))
        .integer(s("subtype"))
        .string(s("name"))
        .string(s("code"))
        .string(s("desc"))
        .string(s("identifier"))
        .decimal(s("unit_price"))
        .numbered(s("custom_price"), 5, T::Decimal)
        .numbered(s("custom"), 5, T::String)
        .decimal(s("stock_current"))
        .decimal(s("stock_critical"))
        .boolean(s("use_warehouse"))
        .transientAttribute(s("documents_sum_net"), T::Decimal)
        .transientAttribute(s("documents_sum_tax1"), T::Decimal)
        .transientAttribute(s("documents_sum_tax2"), T::Decimal)
        .transientAttribute(s("documents_sum_total"), T::Decimal)
        .index({s("name")})
        .index({s("identifier")});
    b.oneToMany(s("Units"), s("items"), R::Nullify, s("Items"), s("unit"), R::Nullify);
    b.oneToMany(s("Taxes"), s("items"), R::Nullify, s("Items"), s("tax"), R::Nullify);

    // The index covers an item's deliveries, which stock is recomputed from.
    b.entity(s("Warehouse")).date(s("date")).decimal(s("quantity")).index({s("item"), s("quantity")});
    b.oneToMany(s("Items"), s("warehouse"), R::Cascade, s("Warehouse"), s("item"), R::Nullify);
    b.oneToMany(s("Clients"), s("warehouse"), R::Nullify, s("Warehouse"), s("client"), R::Nullify);
}

void defineDocuments(DataModelBuilder& b)
{
    b.entity(s("Documents"))
        .integer(s("type"))
        .integer(s("number"))
        .string(s("number_formatted"))
        .boolean(s("draft"))
        .date(s("created"))
        .date(s("date_creation"))
        .date(s("date_completion"))
        .date(s("date_due"))
        .string(s("identifier"))
        .integer(s("client_type"))
        .string(s("client_full_name"))
        .string(s("client_street"))
        .string(s("client_city"))
        .string(s("client_state"))
        .string(s("client_zip_code"))
        .string(s("client_country"))
        .string(s("client_address_note"))
        .string(s("client_email"))
        .string(s("client_phone"))
        .string(s("client_tax_number"))
        .string(s("client_desc"))
        .numbered(s("client_custom"), 10, T::String)
        .string(s("my_name"))
        .string(s("my_address"))
        .string(s("my_email"))
        .string(s("my_phone"))
        .string(s("my_tax_number"))
        .string(s("my_desc"))
        .numbered(s("my_custom"), 10, T::String)
        .string(s("payment_type_name"))
        .string(s("bank_line1"))
        .string(s("bank_line2"))
        .string(s("bank_line3"))
        .decimal(s("exchange_rate"))
        .string(s("note_header"))
        .string(s("note_footer"))
        .string(s("note"))
        .decimal(s("sum_net"))
        .decimal(s("sum_tax1"))
        .decimal(s("sum_tax2"))
        .decimal(s("sum_total"))
        .materializedSum(s("payments"), s("amount"))
        // Read instead of the table when another record's condition looks at its document.
        .index({s("pk"), s("type"), s("draft")})
        // Covers the search for the year's highest number as well as lists by type and date.
        .index({s("type"), s("date_creation"), s("draft"), s("number")})
        // Covers the paid and unpaid invoice rules.
        .index({s("type"), s("draft"), s("cancel_reference"), s("sum_total"), s("payments.@sum.amount")})
        .index({s("date_creation")})
        .index({s("identifier")})
        .index({s("number_formatted")})
        // Covers the reports by creation date: a currency's documents over a period with their
        // payment type, client, number and amounts, read without touching the wide table.
        .index({s("currency"), s("date_creation"), s("draft"), s("payment_type"), s("client"),
                s("number_formatted"), s("sum_net"), s("sum_tax1"), s("sum_tax2"), s("sum_total")})
        // Covers the client sums: a currency's documents in the order of their client, summed
        // client by client without sorting them first.
        .index({s("currency"), s("client"), s("date_creation"), s("draft"), s("payment_type"), s("sum_net"),
                s("sum_tax1"), s("sum_tax2"), s("sum_total")});

    b.symmetricToOne(s("Documents"), s("cancel_reference"), R::Nullify);
    b.oneToMany(s("Clients"), s("documents"), R::Nullify, s("Documents"), s("client"), R::Nullify);
    b.oneToMany(s("PaymentTypes"), s("documents"), R::Deny, s("Documents"), s("payment_type"), R::Nullify);
    b.oneToMany(s("Banks"), s("documents"), R::Deny, s("Documents"), s("bank"), R::Nullify);
    b.oneToMany(s("Currencies"), s("documents"), R::Deny, s("Documents"), s("currency"), R::Nullify);
    b.oneToMany(s("Currencies"), s("default_currency_documents"), R::Nullify, s("Documents"),
                s("default_currency"), R::Nullify);

    b.entity(s("DocumentRows"))
        .integer(s("order"))
        .integer(s("type"))
        .string(s("name"))
        .string(s("code"))
        .string(s("desc"))
        .string(s("note"))
        .string(s("unit_name"))
        .string(s("tax_name"))
        .decimal(s("tax1_rate"))
        .decimal(s("tax2_rate"))
        .boolean(s("tax_cumulative"))
        .decimal(s("quantity"))
        .decimal(s("unit_price"))
        .numbered(s("custom"), 5, T::String)
        .numbered(s("custom_price"), 5, T::Decimal)
        .decimal(s("rate1"))
        .decimal(s("rate2"))
        .boolean(s("cumulative"))
        .decimal(s("net"))
        .decimal(s("tax1_value"))
        .decimal(s("tax2_value"))
        .string(s("tax_value"))
        .decimal(s("total"))
        .decimal(s("default_currency_tax1_value"))
        .decimal(s("default_currency_tax2_value"))
        // Covers an item's sold quantity, which stock is recomputed from.
        .index({s("item"), s("document"), s("quantity")});
    b.oneToMany(s("Documents"), s("rows"), R::Cascade, s("DocumentRows"), s("document"), R::Nullify);
    b.oneToMany(s("Items"), s("document_rows"), R::Nullify, s("DocumentRows"), s("item"), R::Nullify);
    b.oneToMany(s("Units"), s("document_rows"), R::Deny, s("DocumentRows"), s("unit"), R::Nullify);
    b.oneToMany(s("Taxes"), s("document_rows"), R::Deny, s("DocumentRows"), s("tax"), R::Nullify);

    b.entity(s("DocumentSummaries"))
        .integer(s("order"))
        .string(s("tax_name"))
        .decimal(s("tax1_rate"))
        .decimal(s("tax2_rate"))
        .boolean(s("tax_cumulative"))
        .decimal(s("rate1"))
        .decimal(s("rate2"))
        .decimal(s("net"))
        .decimal(s("tax1_value"))
        .decimal(s("tax2_value"))
        .decimal(s("default_currency_tax1_value"))
        .decimal(s("default_currency_tax2_value"))
        .decimal(s("total"));
    b.oneToMany(s("Documents"), s("summaries"), R::Cascade, s("DocumentSummaries"), s("document"),
                R::Nullify);

    b.entity(s("Payments")).decimal(s("amount")).date(s("date"));
    b.oneToMany(s("Documents"), s("payments"), R::Cascade, s("Payments"), s("document"), R::Nullify);
    b.oneToMany(s("PaymentTypes"), s("payments"), R::Nullify, s("Payments"), s("payment"), R::Nullify);
}

void defineTemplates(DataModelBuilder& b)
{
    b.entity(s("Templates"))
        .string(s("name"))
        .integer(s("type"))
        .string(s("identifier"))
        .integer(s("unit"))
        .decimal(s("margin_left"))
        .decimal(s("margin_top"))
        .decimal(s("margin_right"))
        .decimal(s("margin_bottom"))
        .string(s("sections_height_first"))
        .string(s("sections_height_following"))
        .boolean(s("show_grid"))
        .decimal(s("grid_spacing"))
        .integer(s("zoom"))
        .index({s("identifier")});

    b.entity(s("TemplateElements"))
        .string(s("identifier"))
        .integer(s("page_side"))
        .string(s("section"))
        .string(s("type"))
        .integer(s("zorder"))
        .decimal(s("position_x"))
        .decimal(s("position_y"))
        .decimal(s("position_width"))
        .decimal(s("position_height"))
        .string(s("text"))
        .string(s("format"))
        .integer(s("alignment"))
        .string(s("font_family"))
        .string(s("font_member"))
        .string(s("font_name"))
        .decimal(s("font_size"))
        .colour(s("font_color"))
        .integer(s("font_underline"))
        .integer(s("font_strikethrough"))
        .integer(s("fill_style"))
        .colour(s("background_color"))
        .colour(s("border_color"))
        .integer(s("border_style"))
        .decimal(s("border_line_width"))
        .boolean(s("border_top_show"))
        .boolean(s("border_bottom_show"))
        .boolean(s("border_left_show"))
        .boolean(s("border_right_show"))
        .decimal(s("text_padding_top"))
        .decimal(s("text_padding_bottom"))
        .decimal(s("text_padding_left"))
        .decimal(s("text_padding_right"))
        .decimal(s("opacity"))
        .boolean(s("scale_proportionally"));
    b.oneToMany(s("Templates"), s("template_elements"), R::Cascade, s("TemplateElements"), s("template"),
                R::Nullify);
    b.oneToMany(s("Templates"), s("documents"), R::Deny, s("Documents"), s("template"), R::Nullify);
}

void defineOrganising(DataModelBuilder& b)
{
    b.entity(s("ReportColumns"))
        .integer(s("view"))
        .integer(s("type"))
        .string(s("column"))
        .string(s("title"))
        .decimal(s("width"))
        .integer(s("order"))
        .boolean(s("hidden"))
        .index({s("view")});

    b.entity(s("Categories"))
        .string(s("name"))
        .string(s("indexpath"))
        .integer(s("type"))
        .integer(s("subtype"))
        .string(s("predicate"))
        .string(s("count"))
        .colour(s("foreground_color"))
        .colour(s("background_color"))
        .index({s("type"), s("subtype")})
        .index({s("indexpath")});
    b.oneToMany(s("Categories"), s("children"), R::Cascade, s("Categories"), s("parent"), R::Nullify);

    b.entity(s("ToDos"))
        .string(s("title"))
        .string(s("desc"))
        .date(s("date_start"))
        .date(s("date_end"))
        .boolean(s("all_day"))
        .boolean(s("done"))
        .date(s("created"))
        .string(s("identifier"))
        .colour(s("foreground_color"))
        .colour(s("background_color"))
        .integer(s("repeat_type"))
        .integer(s("repeat_frequency"))
        .attribute(s("repeat_weekdays"), T::IntegerSet)
        .integer(s("repeat_monthly_day_of"))
        .integer(s("repeat_end_type"))
        .integer(s("repeat_occurrences"))
        .date(s("repeat_end_date"))
        .string(s("repeat_summary"))
        .index({s("date_start")});
    b.oneToMany(s("Clients"), s("todos"), R::Nullify, s("ToDos"), s("client"), R::Nullify);
    b.oneToMany(s("Items"), s("todos"), R::Nullify, s("ToDos"), s("item"), R::Nullify);

    // Folders and tags: records carry them through `tags`.
    b.manyToMany(s("Clients"), s("tags"), R::Nullify, s("Categories"), s("clients"), R::Nullify);
    b.manyToMany(s("Items"), s("tags"), R::Nullify, s("Categories"), s("items"), R::Nullify);
    b.manyToMany(s("Documents"), s("tags"), R::Nullify, s("Categories"), s("documents"), R::Nullify);
    b.manyToMany(s("ToDos"), s("tags"), R::Nullify, s("Categories"), s("todos"), R::Nullify);
}

DataModel buildModel()
{
    DataModelBuilder b(QString::fromLatin1(kModelVersion));
    b.setApplicationId(kApplicationId);
    b.setVersionSetting(s("Settings"), s("key"), s("value"), s("version"));
    defineReferenceLists(b);
    b.entity(s("Templates"));
    b.entity(s("Categories"));
    defineCompany(b);
    defineClients(b);
    defineItems(b);
    defineDocuments(b);
    defineTemplates(b);
    defineOrganising(b);
    return b.build();
}

} // namespace

const DataModel& corvantaDataModel()
{
    static const DataModel model = buildModel();
    return model;
}

} // namespace corvanta::model
