#pragma once

#include "expression.h"

#include <QFlags>
#include <vector>

namespace corvanta::predicate {

// The syntax tree of one predicate of the selection language: TRUEPREDICATE / FALSEPREDICATE,
// a comparison of two expressions, or AND / OR / NOT over sub-predicates. A default-constructed
// predicate is TRUEPREDICATE and selects every record.
class Predicate
{
public:
    enum class Kind { True, False, Comparison, And, Or, Not };
    enum class Operator {
        Equal,
        NotEqual,
        Less,
        LessOrEqual,
        Greater,
        GreaterOrEqual,
        Contains,
        BeginsWith,
        EndsWith,
        Like,
        In
    };
    // ANY / ALL in front of a key path that crosses a to-many relationship. Direct behaves as ANY.
    enum class Modifier { Direct, Any, All };
    enum Option { NoOption = 0, CaseInsensitive = 0x1, DiacriticInsensitive = 0x2 };
    Q_DECLARE_FLAGS(Options, Option)

    Predicate() = default;
    static Predicate truePredicate();
    static Predicate falsePredicate();
    static Predicate comparison(const Expression& lhs, Operator op, const Expression& rhs,
                                Options options = {}, Modifier modifier = Modifier::Direct);
    // Shorthand for `keyPath op value`.
    static Predicate compare(const QString& keyPath, Operator op, const QVariant& value, Options options = {},
                             Modifier modifier = Modifier::Direct);
    static Predicate andOf(std::vector<Predicate> children);
    static Predicate orOf(std::vector<Predicate> children);
    static Predicate notOf(Predicate child);

    Kind kind() const { return m_kind; }
    Operator op() const { return m_op; }
    Modifier modifier() const { return m_modifier; }
    Options options() const { return m_options; }
    const Expression& lhs() const { return m_lhs; }
    const Expression& rhs() const { return m_rhs; }
    const std::vector<Predicate>& children() const { return m_children; }

    friend bool operator==(const Predicate& a, const Predicate& b);

private:
    Kind m_kind = Kind::True;
    Operator m_op = Operator::Equal;
    Modifier m_modifier = Modifier::Direct;
    Options m_options;
    Expression m_lhs;
    Expression m_rhs;
    std::vector<Predicate> m_children;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(Predicate::Options)

} // namespace corvanta::predicate
