#include "fieldlists.h"

#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"
#include "templatetypes.h"

namespace corvanta::templates {

namespace {

using Field = FieldLists::Field;

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QList<Field> fields(std::initializer_list<std::pair<const char*, const char*>> pairs)
{
    QList<Field> list;
    list.reserve(qsizetype(pairs.size()));
    for (const auto& [token, friendlyName] : pairs)
        list.append({s(token), s(friendlyName)});
    return list;
}

const QStringList kCustomPrefixes{s("client_"), s("my_"), s("item_")};

// Replaces, at every "@" of `text`, the longest `from` that starts there by its `to`; of equally
// long ones the first in the list wins. For the lists' own names this is what replacing each
// pair in list order gives, except that a name which is the start of a longer one
// ("@ClientCustomField1" of "@ClientCustomField10") can no longer cut the longer one apart.
QString replacedInOrder(const QString& text, const QList<std::pair<QString, QString>>& pairs)
{
    QString result;
    result.reserve(text.size());
    qsizetype from = 0;
    for (qsizetype at = text.indexOf(QLatin1Char('@')); at >= 0; at = text.indexOf(QLatin1Char('@'), from)) {
        const std::pair<QString, QString>* best = nullptr;
        const QStringView rest = QStringView(text).mid(at);
        for (const auto& pair : pairs) {
            if ((!best || pair.first.size() > best->first.size()) && rest.startsWith(pair.first))
                best = &pair;
        }
        result += QStringView(text).mid(from, at - from);
        if (best) {
            result += best->second;
            from = at + best->first.size();
        } else {
            result += QLatin1Char('@');
            from = at + 1;
        }
    }
    result += QStringView(text).mid(from);
    return result;
}

} // namespace

FieldLists::FieldLists(store::EditingContext& context, int templateType)
    : m_type(templateType)
{
    for (const QString& prefix : kCustomPrefixes) {
        const store::FetchRequest request(s("Compose"), predicate::literal("name beginswith[c] %@", {prefix}),
                                          {{s("name"), true}});
        for (const store::Record* definition : context.fetch(request)) {
            m_custom.append({definition->value(s("name")).toString(),
                             definition->value(s("label")).toString().remove(QLatin1Char(' '))});
        }
    }
}

QList<FieldLists::CustomField> FieldLists::customFields(const QString& prefix) const
{
    QList<CustomField> group;
    for (const CustomField& field : m_custom) {
        if (field.name.startsWith(prefix, Qt::CaseInsensitive))
            group.append(field);
    }
    return group;
}

// `stripPrefix`: the key is the name without the prefix (the field of a client or item record
// rather than the document's copy of it).
QList<Field> FieldLists::customList(const QString& prefix, bool stripPrefix,
                                    const QString& friendlyPrefix) const
{
    QList<Field> list;
    for (const CustomField& field : customFields(prefix)) {
        const QString key = stripPrefix ? field.name.mid(prefix.size()) : field.name;
        list.append({QLatin1Char('@') + key, friendlyPrefix + field.label});
    }
    return list;
}

// The eleven client fields of a document, then the client's custom fields.
QList<Field> FieldLists::clientFields() const
{
    return fields({{"@client_full_name", "ClientName"},
                   {"@client_tax_number", "ClientTaxNumber"},
                   {"@client_street", "ClientStreet"},
                   {"@client_city", "ClientCity"},
                   {"@client_state", "ClientState"},
                   {"@client_zip_code", "ClientZipCode"},
                   {"@client_country", "ClientCountry"},
                   {"@client_address_note", "ClientAddressNote"},
                   {"@client_email", "ClientEmail"},
                   {"@client_phone", "ClientPhone"},
                   {"@client_desc", "ClientDescription"}}) +
           customList(s("client_"), false, s("Client"));
}

QList<Field> FieldLists::documentHeader() const
{
    if (TemplateTypes::isReportTemplate(m_type))
        return fields({{"@date_start", "DateStart"}, {"@date_end", "DateEnd"}});
    return fields({{"@number_formatted", "DocumentNumber"},
                   {"@date_creation", "CreationDate"},
                   {"@date_completion", "CompletionDate"},
                   {"@date_due", "DueDate"},
                   {"@payment_type_name", "PaymentType"},
                   {"@bank_line1", "BankLine1"},
                   {"@bank_line2", "BankLine2"},
                   {"@bank_line3", "BankLine3"},
                   {"@note_header", "HeaderNote"}}) +
           clientFields() +
           fields({{"@my_name", "MyCompanyName"},
                   {"@my_tax_number", "MyCompanyTaxNumber"},
                   {"@my_address", "MyCompanyAddress"},
                   {"@my_email", "MyCompanyEmail"},
                   {"@my_phone", "MyCompanyPhone"},
                   {"@my_desc", "MyCompanyDescription"}}) +
           customList(s("my_"), false, s("MyCompany"));
}

QList<Field> FieldLists::detailsHeader() const
{
    if (!TemplateTypes::isDocumentsGroupedReportTemplate(m_type))
        return {};
    return fields({{"@number_formatted", "DocumentNumber"},
                   {"@date_creation", "CreationDate"},
                   {"@date_completion", "CompletionDate"},
                   {"@date_due", "DueDate"},
                   {"@payment_type_name", "PaymentType"},
                   {"@note_header", "HeaderNote"}}) +
           clientFields();
}

QList<Field> FieldLists::details() const
{
    switch (m_type) {
    case TemplateTypes::DocumentReport:
        return fields({{"@number_formatted", "DocumentNumber"},
                       {"@date_creation", "CreationDate"},
                       {"@date_completion", "CompletionDate"},
                       {"@date_due", "DueDate"},
                       {"@payment_type_name", "PaymentType"},
                       {"@note_header", "HeaderNote"},
                       {"@sum_net", "SumNet"},
                       {"@sum_tax1", "SumTax1"},
                       {"@sum_tax2", "SumTax2"},
                       {"@sum_total", "SumTotal"}}) +
               clientFields();
    case TemplateTypes::ClientReport:
        return fields({{"@full_name", "ClientName"},
                       {"@tax_number", "ClientTaxNumber"},
                       {"@default_address.street", "ClientStreet"},
                       {"@default_address.city", "ClientCity"},
                       {"@default_address.state", "ClientState"},
                       {"@default_address.zip_code", "ClientZipCode"},
                       {"@default_address.country", "ClientCountry"},
                       {"@default_address.address_note", "ClientAddressNote"},
                       {"@emails", "ClientEmail"},
                       {"@phones", "ClientPhone"},
                       {"@desc", "ClientDescription"}}) +
               customList(s("client_"), true, s("Client")) +
               fields({{"@documents_sum_total", "ClientSumTotal"},
                       {"@documents_sum_net", "ClientSumNet"},
                       {"@documents_sum_tax1", "ClientSumTax1"},
                       {"@documents_sum_tax2", "ClientSumTax2"}});
    case TemplateTypes::ItemReport:
        return fields({{"@name", "ItemName"},
                       {"@code", "ItemCode"},
                       {"@tax.name", "ItemTaxName"},
                       {"@unit.name", "ItemUnitName"},
                       {"@desc", "ItemDescription"}}) +
               customList(s("item_"), true, s("Item")) +
               fields({{"@documents_sum_total", "ItemSumTotal"},
                       {"@documents_sum_net", "ItemSumNet"},
                       {"@documents_sum_tax1", "ItemSumTax1"},
                       {"@documents_sum_tax2", "ItemSumTax2"},
                       {"@stock", "ItemStock"}});
    default: // document templates and the grouped report: one row of a document
        return fields({{"@name", "Name"}, {"@code", "Code"}}) + customList(s("item_"), true, QString()) +
               fields({{"@desc", "Description"},
                       {"@note", "LineNote"},
                       {"@quantity", "Quantity"},
                       {"@unit_name", "Unit"},
                       {"@net", "Net"},
                       {"@tax_name", "TaxName"},
                       {"@tax1_value", "Tax1"},
                       {"@tax2_value", "Tax2"},
                       {"@total", "Total"}});
    }
}

QList<Field> FieldLists::detailsFooter() const
{
    if (!TemplateTypes::isDocumentsGroupedReportTemplate(m_type))
        return {};
    return fields({{"@summary_tax_name", "SummaryTaxName"},
                   {"@summary_net", "SummaryNet"},
                   {"@summary_tax1", "SummaryTax1"},
                   {"@summary_tax2", "SummaryTax2"},
                   {"@summary_total", "SummaryTotal"},
                   {"@summary_sum_net", "SummarySumNet"},
                   {"@summary_sum_tax1", "SummarySumTax1"},
                   {"@summary_sum_tax2", "SummarySumTax2"},
                   {"@summary_sum_total", "SummarySumTotal"}});
}

QList<Field> FieldLists::tableFooter() const
{
    if (TemplateTypes::isReportTemplate(m_type)) {
        return fields({{"@grand_net", "GrandNet"},
                       {"@grand_tax1", "GrandTax1"},
                       {"@grand_tax2", "GrandTax2"},
                       {"@grand_total", "GrandTotal"}});
    }
    return fields({{"@summary_tax_name", "SummaryTaxName"},
                   {"@summary_net", "SummaryNet"},
                   {"@summary_tax1", "SummaryTax1"},
                   {"@summary_tax2", "SummaryTax2"},
                   {"@summary_default_currency_tax1", "SummaryDefaultCurrencyTax1"},
                   {"@summary_default_currency_tax2", "SummaryDefaultCurrencyTax2"},
                   {"@summary_total", "SummaryTotal"},
                   {"@summary_sum_net", "SummarySumNet"},
                   {"@summary_sum_tax1", "SummarySumTax1"},
                   {"@summary_sum_tax2", "SummarySumTax2"},
                   {"@summary_sum_default_currency_tax1", "SummarySumDefaultCurrencyTax1"},
                   {"@summary_sum_default_currency_tax2", "SummarySumDefaultCurrencyTax2"},
                   {"@summary_sum_total", "SummarySumTotal"},
                   {"@grand_total", "GrandTotal"}});
}

QList<Field> FieldLists::documentFooter() const
{
    // The total comes before the page number, whose token begins the total's.
    if (TemplateTypes::isReportTemplate(m_type))
        return fields({{"@page_number_total", "PageNumberTotal"}, {"@page_number", "PageNumber"}});
    return fields({{"@page_number_total", "PageNumberTotal"},
                   {"@page_number", "PageNumber"},
                   {"@note_footer", "FooterNote"},
                   {"@exchange_rate", "ExchangeRate"}});
}

QList<Field> FieldLists::all() const
{
    return documentHeader() + detailsHeader() + details() + detailsFooter() + tableFooter() +
           documentFooter();
}

QString FieldLists::formatToUserFriendly(const QString& text) const
{
    QList<std::pair<QString, QString>> pairs;
    for (const Field& field : all())
        pairs.append({field.token, QLatin1Char('@') + field.friendlyName});
    return replacedInOrder(text, pairs);
}

QString FieldLists::formatToDatabase(const QString& text, store::Record* element) const
{
    QList<std::pair<QString, QString>> pairs;
    for (const Field& field : all())
        pairs.append({QLatin1Char('@') + field.friendlyName, field.token});
    const QString stored = replacedInOrder(text, pairs);
    if (element)
        element->setValue(s("format"), stored);
    return stored;
}

QString FieldLists::formulaSelected(store::Record* element, const QString& friendlyName) const
{
    if (!element)
        return {};
    const QString friendly =
        formatToUserFriendly(element->value(s("format")).toString()) + QLatin1Char('@') + friendlyName;
    formatToDatabase(friendly, element);
    return friendly;
}

} // namespace corvanta::templates
