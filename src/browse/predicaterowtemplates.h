#pragma once

#include "browse/listkind.h"
#include "browse/predicateoperators.h"

#include <QCoreApplication>
#include <QList>
#include <QString>

namespace corvanta::store {
class EditingContext;
}

namespace corvanta::browse {

// What a row's value is entered as: free text, a date, one of the named date ranges, or one of
// a list of labelled numbers.
enum class RowValueType { Text, Date, RelativeDate, Choice };

// One kind of row the smart-folder editor offers: a field of the folder's records (shown by its
// label), the operators it may be compared with, and the value it takes.
struct PredicateRowTemplate
{
    QString label;
    QString keyPath;
    RowValueType valueType = RowValueType::Text;
    OperatorSet operators = OperatorSet::Text;
    // [cd] for the text rows; none for numbers, choices and dates.
    predicate::Predicate::Options options;
    // The menu of a choice or relative-date value.
    QList<RowChoice> choices;

    const RowChoice* choice(const QVariant& value) const;
};

// The rows offered for one kind of smart folder, the custom-field rows read from the company's
// `Compose` definitions when they are built.
class PredicateRowTemplates
{
    Q_DECLARE_TR_FUNCTIONS(PredicateRowTemplates)

public:
    static PredicateRowTemplates forKind(ListKind kind, store::EditingContext& context);

    ListKind kind() const { return m_kind; }
    const QList<PredicateRowTemplate>& rows() const { return m_rows; }
    // The row of a key path taking a value of that type; null when the kind has none.
    const PredicateRowTemplate* find(const QString& keyPath, RowValueType valueType) const;

    // The compound row: "Any" or "All", then "of the following are true".
    static QString anyLabel();
    static QString allLabel();
    static QString compoundTrailingLabel();

private:
    ListKind m_kind = ListKind::None;
    QList<PredicateRowTemplate> m_rows;
};

} // namespace corvanta::browse
