#pragma once

#include <QString>
#include <QVariant>

namespace corvanta::predicate {

// One side of a comparison: a constant value, a key path of the evaluated record, or the
// record itself (`self`). Constants are QVariants: null for NULL/nil, QString, qint64, double,
// bool, QDateTime, a RecordRef, or a QVariantList for IN.
class Expression
{
public:
    enum class Kind { Constant, KeyPath, Self };

    Expression() = default;
    static Expression constant(const QVariant& value);
    static Expression keyPath(const QString& path);
    static Expression self();

    Kind kind() const { return m_kind; }
    bool isConstant() const { return m_kind == Kind::Constant; }
    bool isKeyPath() const { return m_kind == Kind::KeyPath; }
    const QVariant& value() const { return m_value; }
    const QString& keyPath() const { return m_keyPath; }

    friend bool operator==(const Expression& a, const Expression& b);

private:
    Kind m_kind = Kind::Constant;
    QVariant m_value;
    QString m_keyPath;
};

} // namespace corvanta::predicate
