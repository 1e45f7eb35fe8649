#pragma once

#include "browse/predicaterowtemplates.h"

#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QVariant>
#include <optional>

namespace corvanta::browse {

// One row of the smart-folder editor: a compound ("All" or "Any" of the rows under it) or a
// comparison of a field with a value. A comparison's value is text for the text rows, a
// QDateTime for a date, a token ("@this_month") for a relative date, a number for a choice.
struct PredicateRow
{
    enum class Kind { All, Any, Comparison };

    Kind kind = Kind::All;
    QList<PredicateRow> children;
    QString keyPath;
    RowValueType valueType = RowValueType::Text;
    predicate::Predicate::Operator op = predicate::Predicate::Operator::Equal;
    QVariant value;

    static PredicateRow compound(Kind kind, QList<PredicateRow> children);
    static PredicateRow comparison(const QString& keyPath, RowValueType valueType,
                                   predicate::Predicate::Operator op, const QVariant& value);
    bool isCompound() const { return kind != Kind::Comparison; }
    // This row and every row under it, as the editor shows them.
    int shownRowCount() const;

    friend bool operator==(const PredicateRow& a, const PredicateRow& b);
};

// Turns the rows of one kind of smart folder into the stored predicate and back. Only the
// conditions the rows can show are read; anything else is reported, never guessed at.
class PredicateRows
{
    Q_DECLARE_TR_FUNCTIONS(PredicateRows)

public:
    explicit PredicateRows(PredicateRowTemplates templates);

    const PredicateRowTemplates& templates() const { return m_templates; }

    // The row a new smart folder starts with: the first field, its first operator and value.
    PredicateRow defaultRow() const;
    // "All" over the default row.
    PredicateRow defaultRoot() const;

    std::optional<predicate::Predicate> toPredicate(const PredicateRow& row, QString* error = nullptr) const;
    std::optional<QString> toText(const PredicateRow& root, QString* error = nullptr) const;

    // The rows of a stored condition, always under a compound: a single comparison comes back
    // as "All" over that one row.
    std::optional<PredicateRow> fromPredicate(const predicate::Predicate& condition,
                                              QString* error = nullptr) const;
    std::optional<PredicateRow> fromText(const QString& text, QString* error = nullptr) const;

private:
    std::optional<PredicateRow> readComparison(const predicate::Predicate& comparison, QString* error) const;
    std::optional<PredicateRow> readCompound(const predicate::Predicate& compound, QString* error) const;

    PredicateRowTemplates m_templates;
};

} // namespace corvanta::browse
