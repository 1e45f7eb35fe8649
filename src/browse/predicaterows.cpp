#include "browse/predicaterows.h"

#include "predicate/formatter.h"
#include "predicate/parser.h"

#include <QDateTime>

namespace corvanta::browse {

using predicate::Expression;
using predicate::Predicate;

namespace {

bool fail(QString* error, const QString& message)
{
    if (error)
        *error = message;
    return false;
}

bool isInteger(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return true;
    default:
        return false;
    }
}

// The type of row a stored constant can come from, given the rows the key path has.
std::optional<RowValueType> valueTypeOf(const QVariant& value, const PredicateRowTemplate* relativeDate)
{
    if (value.typeId() == QMetaType::QString)
        return relativeDate && relativeDate->choice(value) ? RowValueType::RelativeDate : RowValueType::Text;
    if (value.typeId() == QMetaType::QDateTime)
        return RowValueType::Date;
    if (isInteger(value))
        return RowValueType::Choice;
    return std::nullopt;
}

} // namespace

PredicateRow PredicateRow::compound(Kind kind, QList<PredicateRow> children)
{
    PredicateRow row;
    row.kind = kind;
    row.children = std::move(children);
    return row;
}

PredicateRow PredicateRow::comparison(const QString& keyPath, RowValueType valueType, Predicate::Operator op,
                                      const QVariant& value)
{
    PredicateRow row;
    row.kind = Kind::Comparison;
    row.keyPath = keyPath;
    row.valueType = valueType;
    row.op = op;
    row.value = value;
    return row;
}

int PredicateRow::shownRowCount() const
{
    int count = 1;
    for (const PredicateRow& child : children)
        count += child.shownRowCount();
    return count;
}

bool operator==(const PredicateRow& a, const PredicateRow& b)
{
    if (a.kind != b.kind)
        return false;
    if (a.isCompound())
        return a.children == b.children;
    return a.keyPath == b.keyPath && a.valueType == b.valueType && a.op == b.op && a.value == b.value;
}

PredicateRows::PredicateRows(PredicateRowTemplates templates)
    : m_templates(std::move(templates))
{}

PredicateRow PredicateRows::defaultRow() const
{
    if (m_templates.rows().isEmpty())
        return PredicateRow::comparison({}, RowValueType::Text, Predicate::Operator::Equal, QString());
    const PredicateRowTemplate& first = m_templates.rows().constFirst();
    QVariant value;
    switch (first.valueType) {
    case RowValueType::Text:
        value = QString();
        break;
    case RowValueType::Date:
        value = QDateTime(QDate::currentDate(), QTime(0, 0));
        break;
    case RowValueType::RelativeDate:
    case RowValueType::Choice:
        value = first.choices.value(0).value;
        break;
    }
    return PredicateRow::comparison(first.keyPath, first.valueType,
                                    PredicateOperators::of(first.operators).constFirst(), value);
}

PredicateRow PredicateRows::defaultRoot() const
{
    return PredicateRow::compound(PredicateRow::Kind::All, {defaultRow()});
}

std::optional<Predicate> PredicateRows::toPredicate(const PredicateRow& row, QString* error) const
{
    if (row.isCompound()) {
        if (row.children.isEmpty()) {
            fail(error, tr("A group of conditions needs at least one row."));
            return std::nullopt;
        }
        std::vector<Predicate> children;
        for (const PredicateRow& child : row.children) {
            std::optional<Predicate> condition = toPredicate(child, error);
            if (!condition)
                return std::nullopt;
            children.push_back(std::move(*condition));
        }
        return row.kind == PredicateRow::Kind::All ? Predicate::andOf(std::move(children))
                                                   : Predicate::orOf(std::move(children));
    }

    const PredicateRowTemplate* field = m_templates.find(row.keyPath, row.valueType);
    if (!field) {
        fail(error, tr("This list offers no row for \"%1\".").arg(row.keyPath));
        return std::nullopt;
    }
    if (!PredicateOperators::offers(field->operators, row.op)) {
        fail(error, tr("The row \"%1\" offers no such comparison.").arg(field->label));
        return std::nullopt;
    }
    QVariant value;
    switch (row.valueType) {
    case RowValueType::Text:
        value = row.value.toString();
        break;
    case RowValueType::Date:
        value = row.value.toDateTime();
        if (!value.toDateTime().isValid()) {
            fail(error, tr("The row \"%1\" needs a date.").arg(field->label));
            return std::nullopt;
        }
        break;
    case RowValueType::RelativeDate:
    case RowValueType::Choice:
        if (!field->choice(row.value)) {
            fail(error, tr("The row \"%1\" has no choice \"%2\".").arg(field->label, row.value.toString()));
            return std::nullopt;
        }
        value = row.value;
        break;
    }
    return Predicate::compare(row.keyPath, row.op, value, field->options);
}

std::optional<QString> PredicateRows::toText(const PredicateRow& root, QString* error) const
{
    const std::optional<Predicate> condition = toPredicate(root, error);
    if (!condition)
        return std::nullopt;
    return predicate::Formatter::format(*condition);
}

std::optional<PredicateRow> PredicateRows::fromText(const QString& text, QString* error) const
{
    predicate::ParseError parseError;
    const std::optional<Predicate> condition = predicate::Parser::parse(text, {}, &parseError);
    if (!condition) {
        fail(error, parseError.message());
        return std::nullopt;
    }
    return fromPredicate(*condition, error);
}

std::optional<PredicateRow> PredicateRows::fromPredicate(const Predicate& condition, QString* error) const
{
    switch (condition.kind()) {
    case Predicate::Kind::Comparison: {
        std::optional<PredicateRow> row = readComparison(condition, error);
        if (!row)
            return std::nullopt;
        return PredicateRow::compound(PredicateRow::Kind::All, {*row});
    }
    case Predicate::Kind::And:
    case Predicate::Kind::Or:
        return readCompound(condition, error);
    default:
        fail(
            error,
            tr("The condition \"%1\" cannot be shown as rows.").arg(predicate::Formatter::format(condition)));
        return std::nullopt;
    }
}

std::optional<PredicateRow> PredicateRows::readCompound(const Predicate& compound, QString* error) const
{
    QList<PredicateRow> children;
    for (const Predicate& child : compound.children()) {
        std::optional<PredicateRow> row;
        if (child.kind() == Predicate::Kind::Comparison)
            row = readComparison(child, error);
        else if (child.kind() == Predicate::Kind::And || child.kind() == Predicate::Kind::Or)
            row = readCompound(child, error);
        else
            fail(
                error,
                tr("The condition \"%1\" cannot be shown as rows.").arg(predicate::Formatter::format(child)));
        if (!row)
            return std::nullopt;
        children << *row;
    }
    if (children.isEmpty()) {
        fail(error, tr("A group of conditions needs at least one row."));
        return std::nullopt;
    }
    return PredicateRow::compound(compound.kind() == Predicate::Kind::And ? PredicateRow::Kind::All
                                                                          : PredicateRow::Kind::Any,
                                  children);
}

std::optional<PredicateRow> PredicateRows::readComparison(const Predicate& comparison, QString* error) const
{
    const auto refuse = [&] {
        fail(error, tr("The condition \"%1\" cannot be shown as a row.")
                        .arg(predicate::Formatter::format(comparison)));
        return std::nullopt;
    };
    if (!comparison.lhs().isKeyPath() || !comparison.rhs().isConstant() ||
        comparison.modifier() != Predicate::Modifier::Direct)
        return refuse();
    const QString keyPath = comparison.lhs().keyPath();
    const QVariant value = comparison.rhs().value();
    const std::optional<RowValueType> valueType =
        valueTypeOf(value, m_templates.find(keyPath, RowValueType::RelativeDate));
    if (!valueType)
        return refuse();
    const PredicateRowTemplate* field = m_templates.find(keyPath, *valueType);
    if (!field || !PredicateOperators::offers(field->operators, comparison.op()) ||
        comparison.options() != field->options)
        return refuse();
    if (*valueType == RowValueType::Choice && !field->choice(value))
        return refuse();
    return PredicateRow::comparison(keyPath, *valueType, comparison.op(),
                                    *valueType == RowValueType::Choice ? QVariant(value.toLongLong())
                                                                       : value);
}

} // namespace corvanta::browse
