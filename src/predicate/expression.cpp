#include "expression.h"

namespace corvanta::predicate {

Expression Expression::constant(const QVariant& value)
{
    Expression e;
    e.m_kind = Kind::Constant;
    e.m_value = value;
    return e;
}

Expression Expression::keyPath(const QString& path)
{
    if (path == QLatin1String("self"))
        return self();
    Expression e;
    e.m_kind = Kind::KeyPath;
    e.m_keyPath = path;
    return e;
}

Expression Expression::self()
{
    Expression e;
    e.m_kind = Kind::Self;
    return e;
}

bool operator==(const Expression& a, const Expression& b)
{
    if (a.m_kind != b.m_kind)
        return false;
    switch (a.m_kind) {
    case Expression::Kind::Constant:
        return a.m_value == b.m_value && a.m_value.isNull() == b.m_value.isNull();
    case Expression::Kind::KeyPath:
        return a.m_keyPath == b.m_keyPath;
    case Expression::Kind::Self:
        return true;
    }
    return false;
}

} // namespace corvanta::predicate
