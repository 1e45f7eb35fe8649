#include "browse/predicaterowtemplates.h"

#include "documents/customfields.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"

namespace corvanta::browse {

using predicate::Predicate;
using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

constexpr Predicate::Options kIgnoringCaseAndDiacritics =
    Predicate::Options(Predicate::CaseInsensitive | Predicate::DiacriticInsensitive);

struct Field
{
    const char* label;
    const char* keyPath;
};

QString label(const char* text)
{
    return QCoreApplication::translate("PredicateRowTemplates", text);
}

PredicateRowTemplate textRow(const QString& label, const QString& keyPath)
{
    return {label, keyPath, RowValueType::Text, OperatorSet::Text, kIgnoringCaseAndDiacritics, {}};
}

// Tax rates and price fields: ordered like numbers, but the value is entered (and stored) as text.
PredicateRowTemplate numberAsTextRow(const QString& label, const QString& keyPath, Predicate::Options options)
{
    return {label, keyPath, RowValueType::Text, OperatorSet::Number, options, {}};
}

PredicateRowTemplate choiceRow(const char* text, const char* keyPath, const QList<RowChoice>& choices,
                               OperatorSet operators = OperatorSet::Choice)
{
    return {label(text), s(keyPath), RowValueType::Choice, operators, {}, choices};
}

void appendTextRows(QList<PredicateRowTemplate>& rows, std::initializer_list<Field> fields)
{
    for (const Field& field : fields)
        rows << textRow(label(field.label), s(field.keyPath));
}

QList<RowChoice> numbered(std::initializer_list<const char*> labels)
{
    QList<RowChoice> choices;
    qint64 number = 0;
    for (const char* text : labels)
        choices.append({number++, label(text)});
    return choices;
}

QList<RowChoice> clientTypes()
{
    return numbered({QT_TRANSLATE_NOOP("PredicateRowTemplates", "company"),
                     QT_TRANSLATE_NOOP("PredicateRowTemplates", "individual")});
}

// The custom-field definitions of a group that are shown, by name.
QList<Record*> customFields(store::EditingContext& context, const QString& prefix, const char* condition)
{
    QList<Record*> shown;
    const store::FetchRequest request(s("Compose"), predicate::literal(condition, {prefix}),
                                      {store::SortDescriptor{s("name")}});
    for (Record* definition : context.fetch(request)) {
        if (!definition->value(s("hidden")).toBool())
            shown << definition;
    }
    return shown;
}

constexpr const char* kAllDefinitions = "name BEGINSWITH[c] %@";
constexpr const char* kPriceDefinitions = "name BEGINSWITH[c] %@ AND name CONTAINS 'price'";
constexpr const char* kTextDefinitions = "name BEGINSWITH[c] %@ AND NOT (name CONTAINS 'price')";

QString customLabel(const Record* definition)
{
    return documents::CustomFields::displayName(definition);
}

QList<PredicateRowTemplate> clientRows(store::EditingContext& context)
{
    QList<PredicateRowTemplate> rows;
    rows << choiceRow(QT_TRANSLATE_NOOP("PredicateRowTemplates", "Client Type"), "type", clientTypes());
    appendTextRows(rows, {{QT_TRANSLATE_NOOP("PredicateRowTemplates", "Company Name"), "company_name"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "First Name"), "first_name"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Last Name"), "last_name"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Tax Number"), "tax_number"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Email"), "emails"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Phone"), "phones"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Description"), "desc"}});
    const QString prefix = s("client_");
    for (const Record* definition : customFields(context, prefix, kAllDefinitions))
        rows << textRow(customLabel(definition), definition->value(s("name")).toString().mid(prefix.size()));
    appendTextRows(rows,
                   {{QT_TRANSLATE_NOOP("PredicateRowTemplates", "Street"), "addresses.street"},
                    {QT_TRANSLATE_NOOP("PredicateRowTemplates", "City"), "addresses.city"},
                    {QT_TRANSLATE_NOOP("PredicateRowTemplates", "State"), "addresses.state"},
                    {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Zip Code"), "addresses.zip_code"},
                    {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Country"), "addresses.country"},
                    {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Address Note"), "addresses.address_note"},
                    {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Contact Name"), "contacts.name"},
                    {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Contact Email"), "contacts.email"},
                    {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Contact Phone"), "contacts.phone"},
                    {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Contact Note"), "contacts.contact_note"}});
    rows << choiceRow(QT_TRANSLATE_NOOP("PredicateRowTemplates", "Status"), "status",
                      numbered({QT_TRANSLATE_NOOP("PredicateRowTemplates", "lost"),
                                QT_TRANSLATE_NOOP("PredicateRowTemplates", "possible"),
                                QT_TRANSLATE_NOOP("PredicateRowTemplates", "available")}));
    QList<RowChoice> ratings{{qint64(0), s("-")}};
    for (qint64 stars = 1; stars <= 5; ++stars)
        ratings.append({stars, QString::number(stars)});
    rows << choiceRow(QT_TRANSLATE_NOOP("PredicateRowTemplates", "Rating"), "rating", ratings,
                      OperatorSet::Number);
    return rows;
}

QList<PredicateRowTemplate> itemRows(store::EditingContext& context)
{
    QList<PredicateRowTemplate> rows;
    rows << choiceRow(QT_TRANSLATE_NOOP("PredicateRowTemplates", "Item Type"), "type",
                      numbered({QT_TRANSLATE_NOOP("PredicateRowTemplates", "service"),
                                QT_TRANSLATE_NOOP("PredicateRowTemplates", "product")}));
    appendTextRows(rows, {{QT_TRANSLATE_NOOP("PredicateRowTemplates", "Name"), "name"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Code"), "code"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Tax Name"), "tax.name"}});
    rows << numberAsTextRow(label(QT_TRANSLATE_NOOP("PredicateRowTemplates", "Tax Rate 1")), s("tax.rate1"),
                            kIgnoringCaseAndDiacritics)
         << numberAsTextRow(label(QT_TRANSLATE_NOOP("PredicateRowTemplates", "Tax Rate 2")), s("tax.rate2"),
                            kIgnoringCaseAndDiacritics);
    appendTextRows(rows, {{QT_TRANSLATE_NOOP("PredicateRowTemplates", "Unit"), "unit.name"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Description"), "desc"}});
    const QString prefix = s("item_");
    for (const Record* definition : customFields(context, prefix, kTextDefinitions))
        rows << textRow(customLabel(definition), definition->value(s("name")).toString().mid(prefix.size()));
    for (const Record* definition : customFields(context, prefix, kPriceDefinitions))
        rows << numberAsTextRow(customLabel(definition),
                                definition->value(s("name")).toString().mid(prefix.size()), {});
    return rows;
}

QList<PredicateRowTemplate> documentRows(store::EditingContext& context)
{
    QList<PredicateRowTemplate> rows;
    rows << choiceRow(QT_TRANSLATE_NOOP("PredicateRowTemplates", "Document Type"), "type",
                      numbered({QT_TRANSLATE_NOOP("PredicateRowTemplates", "Invoice"),
                                QT_TRANSLATE_NOOP("PredicateRowTemplates", "Pro Forma"),
                                QT_TRANSLATE_NOOP("PredicateRowTemplates", "Estimate"),
                                QT_TRANSLATE_NOOP("PredicateRowTemplates", "Quotation"),
                                QT_TRANSLATE_NOOP("PredicateRowTemplates", "Delivery Note"),
                                QT_TRANSLATE_NOOP("PredicateRowTemplates", "Credit Note"),
                                QT_TRANSLATE_NOOP("PredicateRowTemplates", "Credit Memo"),
                                QT_TRANSLATE_NOOP("PredicateRowTemplates", "Purchase Order")}));
    appendTextRows(rows, {{QT_TRANSLATE_NOOP("PredicateRowTemplates", "Document Number"), "number_formatted"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Currency Code"), "currency.code"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Payment Type"), "payment_type_name"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Bank Line 1"), "bank_line1"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Bank Line 2"), "bank_line2"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Bank Line 3"), "bank_line3"}});
    // Each date is offered twice: as a fixed date and as a range relative to the day it is used.
    for (const Field& date :
         {Field{QT_TRANSLATE_NOOP("PredicateRowTemplates", "Creation Date"), "date_creation"},
          Field{QT_TRANSLATE_NOOP("PredicateRowTemplates", "Completion Date"), "date_completion"},
          Field{QT_TRANSLATE_NOOP("PredicateRowTemplates", "Due Date"), "date_due"}}) {
        rows << PredicateRowTemplate{
            label(date.label), s(date.keyPath), RowValueType::Date, OperatorSet::Date, {}, {}};
        rows << PredicateRowTemplate{label(date.label),
                                     s(date.keyPath),
                                     RowValueType::RelativeDate,
                                     OperatorSet::RelativeDate,
                                     {},
                                     PredicateOperators::relativeDates()};
    }
    rows << choiceRow(QT_TRANSLATE_NOOP("PredicateRowTemplates", "Client Type"), "client_type",
                      clientTypes());
    appendTextRows(
        rows, {{QT_TRANSLATE_NOOP("PredicateRowTemplates", "Client Name"), "client_full_name"},
               {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Client Tax Number"), "client_tax_number"},
               {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Client Email"), "client_email"},
               {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Client Phone"), "client_phone"},
               {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Client Description"), "client_desc"},
               {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Client Street"), "client_street"},
               {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Client City"), "client_city"},
               {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Client State"), "client_state"},
               {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Client Zip Code"), "client_zip_code"},
               {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Client Country"), "client_country"},
               {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Client Address Note"), "client_address_note"}});
    // A document keeps its own copy of each client custom field under the definition's full name.
    for (const Record* definition : customFields(context, s("client_"), kAllDefinitions))
        rows << textRow(
            label(QT_TRANSLATE_NOOP("PredicateRowTemplates", "Client %1")).arg(customLabel(definition)),
            definition->value(s("name")).toString());
    appendTextRows(rows, {{QT_TRANSLATE_NOOP("PredicateRowTemplates", "Item Name"), "rows.name"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Item Code"), "rows.code"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Item Description"), "rows.desc"}});
    return rows;
}

QList<PredicateRowTemplate> toDoRows()
{
    QList<PredicateRowTemplate> rows;
    appendTextRows(rows, {{QT_TRANSLATE_NOOP("PredicateRowTemplates", "Event"), "title"},
                          {QT_TRANSLATE_NOOP("PredicateRowTemplates", "Description"), "desc"}});
    return rows;
}

} // namespace

const RowChoice* PredicateRowTemplate::choice(const QVariant& value) const
{
    for (const RowChoice& entry : choices) {
        if (entry.value == value)
            return &entry;
    }
    return nullptr;
}

PredicateRowTemplates PredicateRowTemplates::forKind(ListKind kind, store::EditingContext& context)
{
    PredicateRowTemplates templates;
    templates.m_kind = kind;
    switch (kind) {
    case ListKind::Clients:
        templates.m_rows = clientRows(context);
        break;
    case ListKind::Items:
        templates.m_rows = itemRows(context);
        break;
    case ListKind::Documents:
        templates.m_rows = documentRows(context);
        break;
    case ListKind::ToDos:
        templates.m_rows = toDoRows();
        break;
    case ListKind::None:
        break;
    }
    return templates;
}

const PredicateRowTemplate* PredicateRowTemplates::find(const QString& keyPath, RowValueType valueType) const
{
    for (const PredicateRowTemplate& row : m_rows) {
        if (row.keyPath == keyPath && row.valueType == valueType)
            return &row;
    }
    return nullptr;
}

QString PredicateRowTemplates::anyLabel()
{
    return tr("Any");
}

QString PredicateRowTemplates::allLabel()
{
    return tr("All");
}

QString PredicateRowTemplates::compoundTrailingLabel()
{
    return tr("of the following are true");
}

} // namespace corvanta::browse
