#include "formatter.h"

#include "recordref.h"

#include <QDateTime>

namespace corvanta::predicate {

namespace {

using Op = Predicate::Operator;

QString operatorText(Op op)
{
    switch (op) {
    case Op::Equal:
        return QStringLiteral("==");
    case Op::NotEqual:
        return QStringLiteral("!=");
    case Op::Less:
        return QStringLiteral("<");
    case Op::LessOrEqual:
        return QStringLiteral("<=");
    case Op::Greater:
        return QStringLiteral(">");
    case Op::GreaterOrEqual:
        return QStringLiteral(">=");
    case Op::Contains:
        return QStringLiteral("CONTAINS");
    case Op::BeginsWith:
        return QStringLiteral("BEGINSWITH");
    case Op::EndsWith:
        return QStringLiteral("ENDSWITH");
    case Op::Like:
        return QStringLiteral("LIKE");
    case Op::In:
        return QStringLiteral("IN");
    }
    return {};
}

QString constantText(const QVariant& value)
{
    if (value.isNull() || !value.isValid())
        return QStringLiteral("nil");
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("YES") : QStringLiteral("NO");
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return QString::number(value.toLongLong());
    case QMetaType::Double:
    case QMetaType::Float: {
        // Shortest text that reads back as the same double; a decimal point keeps it a double.
        QString text = QString::number(value.toDouble(), 'g', 17);
        const QString shortest = QString::number(value.toDouble(), 'g', 15);
        if (shortest.toDouble() == value.toDouble())
            text = shortest;
        if (!text.contains(QLatin1Char('.')) && !text.contains(QLatin1Char('e')) &&
            !text.contains(QLatin1String("n")))
            text += QLatin1String(".0");
        return text;
    }
    case QMetaType::QDateTime: {
        static const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
        const double seconds = double(reference.msecsTo(value.toDateTime())) / 1000.0;
        return QStringLiteral("CAST(%1, \"NSDate\")").arg(constantText(seconds));
    }
    case QMetaType::QVariantList:
    case QMetaType::QStringList: {
        QStringList items;
        for (const QVariant& item : value.toList())
            items << constantText(item);
        return QLatin1Char('{') + items.join(QLatin1String(", ")) + QLatin1Char('}');
    }
    default:
        break;
    }
    if (value.typeId() == qMetaTypeId<RecordRef>())
        return QStringLiteral("%@"); // records have no literal: they are bound again as arguments
    return Formatter::quoted(value.toString());
}

QString formatChild(const Predicate& child)
{
    const QString text = Formatter::format(child);
    if (child.kind() == Predicate::Kind::And || child.kind() == Predicate::Kind::Or)
        return QLatin1Char('(') + text + QLatin1Char(')');
    return text;
}

void collectRecords(const QVariant& value, QVariantList& records)
{
    if (value.typeId() == qMetaTypeId<RecordRef>())
        records << value;
}

void collectRecords(const Predicate& predicate, QVariantList& records)
{
    if (predicate.kind() == Predicate::Kind::Comparison) {
        for (const Expression* e : {&predicate.lhs(), &predicate.rhs()}) {
            if (e->isConstant())
                collectRecords(e->value(), records);
        }
        return;
    }
    for (const Predicate& child : predicate.children())
        collectRecords(child, records);
}

} // namespace

QVariantList Formatter::recordArguments(const Predicate& predicate)
{
    QVariantList records;
    collectRecords(predicate, records);
    return records;
}

QString Formatter::quoted(const QString& text)
{
    QString out;
    out.reserve(text.size() + 2);
    out += QLatin1Char('"');
    for (const QChar c : text) {
        switch (c.unicode()) {
        case '"':
            out += QLatin1String("\\\"");
            break;
        case '\\':
            out += QLatin1String("\\\\");
            break;
        case '\n':
            out += QLatin1String("\\n");
            break;
        case '\t':
            out += QLatin1String("\\t");
            break;
        case '\r':
            out += QLatin1String("\\r");
            break;
        case 0:
            out += QLatin1String("\\0");
            break;
        default:
            out += c;
        }
    }
    out += QLatin1Char('"');
    return out;
}

QString Formatter::format(const Expression& expression)
{
    switch (expression.kind()) {
    case Expression::Kind::Self:
        return QStringLiteral("SELF");
    case Expression::Kind::KeyPath:
        return expression.keyPath();
    case Expression::Kind::Constant:
        return constantText(expression.value());
    }
    return {};
}

QString Formatter::format(const Predicate& predicate)
{
    switch (predicate.kind()) {
    case Predicate::Kind::True:
        return QStringLiteral("TRUEPREDICATE");
    case Predicate::Kind::False:
        return QStringLiteral("FALSEPREDICATE");
    case Predicate::Kind::Not:
        return QLatin1String("NOT ") + [&] {
            const Predicate& child = predicate.children().front();
            const QString text = format(child);
            return child.kind() == Predicate::Kind::Comparison || child.kind() == Predicate::Kind::True ||
                           child.kind() == Predicate::Kind::False
                       ? text
                       : QLatin1Char('(') + text + QLatin1Char(')');
        }();
    case Predicate::Kind::And:
    case Predicate::Kind::Or: {
        if (predicate.children().empty())
            return predicate.kind() == Predicate::Kind::And ? QStringLiteral("TRUEPREDICATE")
                                                            : QStringLiteral("FALSEPREDICATE");
        QStringList parts;
        for (const Predicate& child : predicate.children())
            parts << formatChild(child);
        return parts.join(predicate.kind() == Predicate::Kind::And ? QLatin1String(" AND ")
                                                                   : QLatin1String(" OR "));
    }
    case Predicate::Kind::Comparison: {
        QString text;
        if (predicate.modifier() == Predicate::Modifier::Any)
            text += QLatin1String("ANY ");
        else if (predicate.modifier() == Predicate::Modifier::All)
            text += QLatin1String("ALL ");
        text += format(predicate.lhs()) + QLatin1Char(' ') + operatorText(predicate.op());
        const Predicate::Options options = predicate.options();
        if (options) {
            text += QLatin1Char('[');
            if (options.testFlag(Predicate::CaseInsensitive))
                text += QLatin1Char('c');
            if (options.testFlag(Predicate::DiacriticInsensitive))
                text += QLatin1Char('d');
            text += QLatin1Char(']');
        }
        return text + QLatin1Char(' ') + format(predicate.rhs());
    }
    }
    return {};
}

} // namespace corvanta::predicate
