#include "referencelist.h"

namespace corvanta::editors {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

ReferenceList::ReferenceList(ReferenceListType type)
    : m_type(type)
    , m_namingKey(s("name"))
{
    using Kind = ReferenceListColumn::Kind;
    switch (type) {
    case ReferenceListType::Taxes:
        m_entity = s("Taxes");
        m_companyKey = s("default_tax");
        m_inUseEntity = s("DocumentRows");
        m_inUsePredicate = s("tax == %@");
        addColumn(s("name"), tr("Name"), Kind::Text);
        addColumn(s("rate1"), tr("Rate 1"), Kind::Decimal);
        addColumn(s("rate2"), tr("Rate 2"), Kind::Decimal);
        addColumn(s("cumulative"), tr("Cumulative"), Kind::Check);
        break;
    case ReferenceListType::Banks:
        m_entity = s("Banks");
        m_namingKey = s("line1");
        m_companyKey = s("default_bank");
        m_inUseEntity = s("Documents");
        m_inUsePredicate = s("bank == %@");
        addColumn(s("line1"), tr("Line 1"), Kind::Text);
        addColumn(s("line2"), tr("Line 2"), Kind::Text);
        addColumn(s("line3"), tr("Line 3"), Kind::Text);
        break;
    case ReferenceListType::DueDays:
        m_entity = s("DueDays");
        m_companyKey = s("default_due_day");
        addColumn(s("name"), tr("Name"), Kind::Text);
        addColumn(s("days"), tr("Days"), Kind::Integer);
        addColumn(s("type"), tr("Business Days"), Kind::BusinessDays);
        break;
    case ReferenceListType::PaymentTypes:
        m_entity = s("PaymentTypes");
        m_companyKey = s("default_payment_type");
        m_inUseEntity = s("Documents");
        m_inUsePredicate = s("payment_type == %@");
        addColumn(s("name"), tr("Name"), Kind::Text);
        break;
    case ReferenceListType::Units:
        m_entity = s("Units");
        m_companyKey = s("default_unit");
        m_inUseEntity = s("DocumentRows");
        m_inUsePredicate = s("unit == %@");
        addColumn(s("name"), tr("Name"), Kind::Text);
        break;
    case ReferenceListType::Currencies:
        m_entity = s("Currencies");
        m_namingKey = s("code");
        m_companyKey = s("default_currency");
        addColumn(s("code"), tr("Code"), Kind::Text);
        addColumn(s("symbol"), tr("Symbol"), Kind::Text);
        addColumn(s("symbol_format"), tr("Symbol Format"), Kind::Text);
        addColumn(s("grouping_separator"), tr("Grouping Separator"), Kind::Text);
        addColumn(s("decimal_separator"), tr("Decimal Separator"), Kind::Text);
        addColumn(s("digits"), tr("Digits"), Kind::Integer);
        addColumn(s("show_fixed_digits"), tr("Fixed Digits"), Kind::Check);
        addColumn(s("selectable"), tr("Selectable"), Kind::Check);
        addColumn(s("sample"), tr("Sample"), Kind::Computed);
        break;
    }
    m_sortKey = m_namingKey;
    addColumn(QString(), tr("Default"), Kind::Default);
}

void ReferenceList::addColumn(const QString& key, const QString& title, ReferenceListColumn::Kind kind)
{
    m_columns.append({key, title, kind});
}

QString ReferenceList::deleteRefusedTitle() const
{
    switch (m_type) {
    case ReferenceListType::Taxes:
        return tr("Tax cannot be deleted");
    case ReferenceListType::Banks:
        return tr("Bank cannot be deleted");
    case ReferenceListType::DueDays:
        return tr("Due Day cannot be deleted");
    case ReferenceListType::PaymentTypes:
        return tr("Payment type cannot be deleted");
    case ReferenceListType::Units:
        return tr("Unit cannot be deleted");
    case ReferenceListType::Currencies:
        break;
    }
    return {};
}

QString ReferenceList::inUseText(int count) const
{
    switch (m_type) {
    case ReferenceListType::Taxes:
        return tr("The chosen tax cannot be deleted, because it is in use in %n document lines.", nullptr,
                  count);
    case ReferenceListType::Banks:
        return tr("The chosen bank cannot be deleted, because it is in use in %n documents.", nullptr, count);
    case ReferenceListType::PaymentTypes:
        return tr("The chosen payment type cannot be deleted, because it is in use in %n documents.", nullptr,
                  count);
    case ReferenceListType::Units:
        return tr("The chosen unit cannot be deleted, because it is in use in %n document lines.", nullptr,
                  count);
    case ReferenceListType::DueDays:
    case ReferenceListType::Currencies:
        break;
    }
    return {};
}

QString ReferenceList::defaultText() const
{
    switch (m_type) {
    case ReferenceListType::Taxes:
        return tr("The chosen tax cannot be deleted, because it is a default tax.");
    case ReferenceListType::Banks:
        return tr("The chosen bank cannot be deleted, because it is a default bank.");
    case ReferenceListType::DueDays:
        return tr("The chosen due day cannot be deleted, because it is a default due day.");
    case ReferenceListType::PaymentTypes:
        return tr("The chosen payment type cannot be deleted, because it is a default payment type.");
    case ReferenceListType::Units:
        return tr("The chosen unit cannot be deleted, because it is a default unit.");
    case ReferenceListType::Currencies:
        break;
    }
    return {};
}

} // namespace corvanta::editors
