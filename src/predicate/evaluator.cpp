#include "evaluator.h"

#include "textrules.h"

#include <QDateTime>
#include <cmath>

namespace corvanta::predicate {

namespace {

using Op = Predicate::Operator;

bool isRecord(const QVariant& v)
{
    return v.typeId() == qMetaTypeId<RecordRef>();
}

// Pointers to records (of the store) convert to RecordRef through a registered converter.
QVariant normalized(const QVariant& v)
{
    if (v.isNull() || !v.isValid())
        return {};
    if (!isRecord(v) && (v.metaType().flags() & QMetaType::IsPointer) &&
        QMetaType::canConvert(v.metaType(), QMetaType::fromType<RecordRef>())) {
        RecordRef ref;
        if (QMetaType::convert(v.metaType(), v.constData(), QMetaType::fromType<RecordRef>(), &ref))
            return ref.isNull() ? QVariant() : QVariant::fromValue(ref);
    }
    if (v.typeId() == QMetaType::QDate)
        return v.toDate().startOfDay(Qt::UTC);
    return v;
}

bool isNumber(const QVariant& v)
{
    switch (v.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        return true;
    default:
        return false;
    }
}

bool isText(const QVariant& v)
{
    return v.typeId() == QMetaType::QString;
}

double numberOf(const QVariant& v)
{
    if (v.typeId() == QMetaType::QDateTime) {
        static const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
        return double(reference.msecsTo(v.toDateTime())) / 1000.0;
    }
    return v.toDouble();
}

bool isNumeric(const QVariant& v)
{
    return isNumber(v) || v.typeId() == QMetaType::QDateTime;
}

// Text that reads as a number compares with a number as that number (the store converts it
// the same way); otherwise the number is compared as text.
std::optional<double> textAsNumber(const QVariant& v)
{
    bool ok = false;
    const double d = v.toString().trimmed().toDouble(&ok);
    return ok ? std::optional<double>(d) : std::nullopt;
}

// <0, 0, >0; nullopt when the two cannot be ordered.
std::optional<int> order(const QVariant& a, const QVariant& b, Predicate::Options options)
{
    if (isRecord(a) || isRecord(b)) {
        if (isRecord(a) && isRecord(b)) {
            const RecordRef ra = a.value<RecordRef>(), rb = b.value<RecordRef>();
            if (ra.entity != rb.entity)
                return std::nullopt;
            return ra.pk < rb.pk ? -1 : ra.pk > rb.pk ? 1 : 0;
        }
        return std::nullopt;
    }
    std::optional<double> x, y;
    if (isNumeric(a) && isNumeric(b)) {
        x = numberOf(a);
        y = numberOf(b);
    } else if (isNumeric(a) && isText(b)) {
        x = numberOf(a);
        y = textAsNumber(b);
    } else if (isText(a) && isNumeric(b)) {
        x = textAsNumber(a);
        y = numberOf(b);
    }
    if (x && y)
        return *x < *y ? -1 : *x > *y ? 1 : 0;
    const QString ta = textrules::fold(a.toString(), options);
    const QString tb = textrules::fold(b.toString(), options);
    return textrules::compareCodePoints(ta, tb);
}

bool equal(const QVariant& a, const QVariant& b, Predicate::Options options)
{
    if (a.isNull() || b.isNull())
        return a.isNull() && b.isNull();
    if (isRecord(a) || isRecord(b))
        return isRecord(a) && isRecord(b) && a.value<RecordRef>() == b.value<RecordRef>();
    if (!(isText(a) && isText(b)))
        options = {};
    const std::optional<int> o = order(a, b, options);
    return o && *o == 0;
}

bool textOperation(const QVariant& a, Op op, const QVariant& b, Predicate::Options options)
{
    if (a.isNull() || b.isNull())
        return false;
    const QString needle = textrules::fold(b.toString(), options);
    if (needle.isEmpty())
        return false;
    const QString text = textrules::fold(a.toString(), options);
    switch (op) {
    case Op::Contains:
        return text.contains(needle);
    case Op::BeginsWith:
        return text.startsWith(needle);
    default:
        return text.endsWith(needle);
    }
}

bool compareScalar(const QVariant& a, Op op, const QVariant& b, Predicate::Options options)
{
    switch (op) {
    case Op::Equal:
        return equal(a, b, options);
    case Op::NotEqual:
        return !equal(a, b, options);
    case Op::Less:
    case Op::LessOrEqual:
    case Op::Greater:
    case Op::GreaterOrEqual: {
        if (a.isNull() || b.isNull())
            return false;
        const std::optional<int> o = order(a, b, isText(a) && isText(b) ? options : Predicate::Options());
        if (!o)
            return false;
        return op == Op::Less          ? *o < 0
               : op == Op::LessOrEqual ? *o <= 0
               : op == Op::Greater     ? *o > 0
                                       : *o >= 0;
    }
    case Op::Contains:
    case Op::BeginsWith:
    case Op::EndsWith:
        return textOperation(a, op, b, options);
    case Op::Like:
        if (a.isNull() || b.isNull())
            return false;
        return textrules::likeMatches(textrules::fold(a.toString(), options),
                                      textrules::fold(b.toString(), options));
    case Op::In:
        if (b.typeId() == QMetaType::QVariantList || b.typeId() == QMetaType::QStringList) {
            const QVariantList items = b.toList();
            return std::any_of(items.begin(), items.end(),
                               [&](const QVariant& item) { return equal(a, normalized(item), options); });
        }
        if (isText(b)) // a text IN a text: the second contains the first
            return !a.isNull() &&
                   textrules::fold(b.toString(), options).contains(textrules::fold(a.toString(), options));
        return equal(a, b, options);
    }
    return false;
}

QVariant valueOf(const Expression& e, const KeyPathSource& record)
{
    switch (e.kind()) {
    case Expression::Kind::Self:
        return QVariant::fromValue(record.selfRef());
    case Expression::Kind::KeyPath:
        return normalized(record.valueForKeyPath(e.keyPath()));
    case Expression::Kind::Constant:
        return normalized(e.value());
    }
    return {};
}

bool isCollection(const Expression& e, const QVariant& v)
{
    return e.isKeyPath() && v.typeId() == QMetaType::QVariantList;
}

bool comparison(const Predicate& p, const KeyPathSource& record)
{
    const QVariant lhs = valueOf(p.lhs(), record);
    const QVariant rhs = valueOf(p.rhs(), record);
    const Op op = p.op();
    const Predicate::Options options = p.options();
    if (isCollection(p.lhs(), lhs)) {
        const QVariantList members = lhs.toList();
        Op memberOp = op;
        // `tags CONTAINS %@` asks whether the collection holds a record.
        if (op == Op::Contains && !isText(rhs))
            memberOp = Op::Equal;
        const auto matches = [&](const QVariant& member) {
            return compareScalar(normalized(member), memberOp, rhs, options);
        };
        if (p.modifier() == Predicate::Modifier::All)
            return std::all_of(members.begin(), members.end(), matches);
        return std::any_of(members.begin(), members.end(), matches);
    }
    if (isCollection(p.rhs(), rhs) && op == Op::In) {
        const QVariantList members = rhs.toList();
        return std::any_of(members.begin(), members.end(),
                           [&](const QVariant& member) { return equal(lhs, normalized(member), options); });
    }
    return compareScalar(lhs, op, rhs, options);
}

} // namespace

int Evaluator::compareValues(const QVariant& a, const QVariant& b)
{
    const QVariant x = normalized(a);
    const QVariant y = normalized(b);
    if (x.isNull() || y.isNull())
        return x.isNull() == y.isNull() ? 0 : x.isNull() ? -1 : 1;
    return order(x, y, {}).value_or(0);
}

int Evaluator::compareLocalized(const QVariant& a, const QVariant& b)
{
    if (isText(a) && isText(b))
        return textrules::localizedCaseInsensitiveCompare(a.toString(), b.toString());
    return compareValues(a, b);
}

bool Evaluator::evaluate(const Predicate& predicate, const KeyPathSource& record)
{
    switch (predicate.kind()) {
    case Predicate::Kind::True:
        return true;
    case Predicate::Kind::False:
        return false;
    case Predicate::Kind::Not:
        return !evaluate(predicate.children().front(), record);
    case Predicate::Kind::And:
        return std::all_of(predicate.children().begin(), predicate.children().end(),
                           [&](const Predicate& child) { return evaluate(child, record); });
    case Predicate::Kind::Or:
        return std::any_of(predicate.children().begin(), predicate.children().end(),
                           [&](const Predicate& child) { return evaluate(child, record); });
    case Predicate::Kind::Comparison:
        return comparison(predicate, record);
    }
    return false;
}

} // namespace corvanta::predicate
