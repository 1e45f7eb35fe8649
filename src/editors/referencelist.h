#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>

namespace corvanta::editors {

enum class ReferenceListType { Taxes, Banks, DueDays, PaymentTypes, Units, Currencies };

// One column of a reference list as its window shows it.
struct ReferenceListColumn
{
    enum class Kind {
        Text,         // a text attribute, edited in place
        Decimal,      // a number shown and read with the entry-field formatter
        Integer,      // a whole number
        Check,        // a boolean attribute as a tick
        BusinessDays, // the due days' `type` as a tick: on counts business days (1), off calendar days (0)
        Default,      // the company's default of the list, ticked to choose it
        Computed,     // shown only (the currency's sample)
    };

    QString key; // the attribute; empty for Default
    QString title;
    Kind kind = Kind::Text;
};

// What sets one reference list apart from the others: its entity, naming field and sort
// order, the company default it feeds, its in-use guard and the texts of its refusals.
class ReferenceList
{
    Q_DECLARE_TR_FUNCTIONS(ReferenceList)

public:
    explicit ReferenceList(ReferenceListType type);

    ReferenceListType type() const { return m_type; }
    const QString& entity() const { return m_entity; }
    // The field that names a record: " New " for an added one, "%1 Copy" for a copy, "-" when emptied.
    const QString& namingKey() const { return m_namingKey; }
    const QString& sortKey() const { return m_sortKey; }
    // The company's key of the default record ("default_tax").
    const QString& companyKey() const { return m_companyKey; }
    // Currencies come from the system's list and are never added, copied or deleted here.
    bool canAddAndDelete() const { return m_type != ReferenceListType::Currencies; }

    // The records that use one of this list, counted before a delete ("tax == %@" on
    // `DocumentRows`); no entity when the list has no in-use guard.
    const QString& inUseEntity() const { return m_inUseEntity; }
    const QString& inUsePredicate() const { return m_inUsePredicate; }

    QString deleteRefusedTitle() const;
    QString inUseText(int count) const;
    QString defaultText() const;

    const QList<ReferenceListColumn>& columns() const { return m_columns; }

private:
    void addColumn(const QString& key, const QString& title, ReferenceListColumn::Kind kind);

    ReferenceListType m_type;
    QString m_entity;
    QString m_namingKey;
    QString m_sortKey;
    QString m_companyKey;
    QString m_inUseEntity;
    QString m_inUsePredicate;
    QList<ReferenceListColumn> m_columns;
};

} // namespace corvanta::editors
