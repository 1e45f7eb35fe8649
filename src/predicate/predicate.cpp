#include "predicate.h"

namespace corvanta::predicate {

Predicate Predicate::truePredicate()
{
    return Predicate();
}

Predicate Predicate::falsePredicate()
{
    Predicate p;
    p.m_kind = Kind::False;
    return p;
}

Predicate Predicate::comparison(const Expression& lhs, Operator op, const Expression& rhs, Options options,
                                Modifier modifier)
{
    Predicate p;
    p.m_kind = Kind::Comparison;
    p.m_lhs = lhs;
    p.m_op = op;
    p.m_rhs = rhs;
    p.m_options = options;
    p.m_modifier = modifier;
    return p;
}

Predicate Predicate::compare(const QString& keyPath, Operator op, const QVariant& value, Options options,
                             Modifier modifier)
{
    return comparison(Expression::keyPath(keyPath), op, Expression::constant(value), options, modifier);
}

Predicate Predicate::andOf(std::vector<Predicate> children)
{
    Predicate p;
    p.m_kind = Kind::And;
    p.m_children = std::move(children);
    return p;
}

Predicate Predicate::orOf(std::vector<Predicate> children)
{
    Predicate p;
    p.m_kind = Kind::Or;
    p.m_children = std::move(children);
    return p;
}

Predicate Predicate::notOf(Predicate child)
{
    Predicate p;
    p.m_kind = Kind::Not;
    p.m_children.push_back(std::move(child));
    return p;
}

bool operator==(const Predicate& a, const Predicate& b)
{
    if (a.m_kind != b.m_kind)
        return false;
    if (a.m_kind == Predicate::Kind::Comparison)
        return a.m_op == b.m_op && a.m_modifier == b.m_modifier && a.m_options == b.m_options &&
               a.m_lhs == b.m_lhs && a.m_rhs == b.m_rhs;
    return a.m_children == b.m_children;
}

} // namespace corvanta::predicate
