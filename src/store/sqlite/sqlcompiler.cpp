#include "sqlcompiler.h"

#include "predicate/textrules.h"
#include "sqlitefunctions.h"
#include "store/record.h"
#include "store/valueconversion.h"

#include <QCoreApplication>
#include <QRegularExpression>

namespace corvanta::store {

namespace {

using predicate::Expression;
using predicate::Predicate;
using predicate::RecordRef;
using Op = Predicate::Operator;

struct CompileFailure
{
    QString message;
};

// A piece of SQL with the values of its placeholders, so that pieces can be joined in any
// order and the bindings still follow the text.
struct Sql
{
    QString text;
    QVariantList binds;

    Sql() = default;
    Sql(const QString& t) // NOLINT: plain text converts implicitly
        : text(t)
    {}
    Sql(const char* t) // NOLINT
        : text(QString::fromLatin1(t))
    {}
    static Sql bound(const QVariant& value)
    {
        Sql s(QStringLiteral("?"));
        s.binds << value;
        return s;
    }
};

Sql operator+(Sql a, const Sql& b)
{
    a.text += b.text;
    a.binds += b.binds;
    return a;
}

Sql joined(const QList<Sql>& parts, const char* separator)
{
    Sql out;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (i)
            out.text += QLatin1String(separator);
        out = out + parts.at(i);
    }
    return out;
}

QString tr(const char* text)
{
    return QCoreApplication::translate("SqlCompiler", text);
}

// The tables visible to one level of a query: the fetched entity at the top, or the members
// of a to-many relationship inside an EXISTS or aggregate sub-query.
struct Scope
{
    const EntityDescription* entity = nullptr;
    QString alias;        // the entity's table alias, once joined
    QString pkExpression; // the member record's key
    QString from;         // FROM clause of a sub-query (empty at the top)
    QString link;         // condition tying a sub-query to its owner
    QString pendingJoin;  // join of the member table, added on first use of its columns
    QStringList joins;
    QHash<QString, QString> aliasByPath;
    int* counter = nullptr;

    QString tableAlias()
    {
        if (!pendingJoin.isEmpty()) {
            joins << pendingJoin;
            pendingJoin.clear();
        }
        return alias;
    }
    QString nextAlias(const char* prefix) { return QLatin1String(prefix) + QString::number(++*counter); }
};

struct Operand
{
    enum class Kind { Value, ToMany };
    Kind kind = Kind::Value;
    Sql sql;
    bool isConstant = false;
    QVariant constant;
    std::optional<AttributeType> type;
    QString recordEntity; // set when the value is a record's key (a relationship or self)

    // Kind::ToMany: the relationship crossed and the key path that follows it.
    const EntityDescription* owner = nullptr;
    const RelationshipDescription* relationship = nullptr;
    QString ownerKey;
    QStringList rest;
};

// `tags == X` with ANY (or `X IN tags`, `tags CONTAINS X`) on a many-to-many relationship of the
// fetched entity, with X a record: the shape of every folder and tag in the sidebar.
struct JoinMembership
{
    const RelationshipDescription* relationship = nullptr;
    RecordRef member;
};

std::optional<RecordRef> recordConstant(const Expression& e)
{
    if (!e.isConstant())
        return std::nullopt;
    const QVariant& v = e.value();
    if (v.typeId() == qMetaTypeId<RecordRef>())
        return v.value<RecordRef>();
    if (v.typeId() == qMetaTypeId<Record*>() && v.value<Record*>())
        return v.value<Record*>()->ref();
    return std::nullopt;
}

std::optional<JoinMembership> joinMembership(const Predicate& p, const EntityDescription& entity)
{
    if (p.kind() != Predicate::Kind::Comparison || p.modifier() == Predicate::Modifier::All)
        return std::nullopt;
    const Expression* collection = nullptr;
    const Expression* member = nullptr;
    if (p.op() == Op::Equal || p.op() == Op::Contains) {
        collection = &p.lhs();
        member = &p.rhs();
    } else if (p.op() == Op::In) {
        collection = &p.rhs();
        member = &p.lhs();
    } else {
        return std::nullopt;
    }
    if (!collection->isKeyPath())
        return std::nullopt;
    const RelationshipDescription* r = entity.relationship(collection->keyPath());
    const std::optional<RecordRef> ref = recordConstant(*member);
    if (!r || r->storage != RelationshipStorage::JoinTable || !ref)
        return std::nullopt;
    return JoinMembership{r, *ref};
}

class Compiler
{
public:
    explicit Compiler(const DataModel& model)
        : m_model(model)
    {}

    Sql condition(const Predicate& p, Scope& scope)
    {
        switch (p.kind()) {
        case Predicate::Kind::True:
            return "1";
        case Predicate::Kind::False:
            return "0";
        case Predicate::Kind::Not:
            return Sql("(NOT ") + condition(p.children().front(), scope) + ")";
        case Predicate::Kind::And:
        case Predicate::Kind::Or: {
            if (p.children().empty())
                return p.kind() == Predicate::Kind::And ? "1" : "0";
            QList<Sql> parts;
            for (const Predicate& child : p.children())
                parts << condition(child, scope);
            return Sql("(") + joined(parts, p.kind() == Predicate::Kind::And ? " AND " : " OR ") + ")";
        }
        case Predicate::Kind::Comparison: {
            if (const auto membership = joinMembership(p, *scope.entity))
                return memberOf(*membership, scope);
            const Operand lhs = operand(p.lhs(), scope);
            const Operand rhs = operand(p.rhs(), scope);
            return compare(lhs, p.op(), rhs, p.options(), p.modifier(), scope);
        }
        }
        return "0";
    }

    Operand valueOperand(const QString& keyPath, Scope& scope)
    {
        Operand o = resolve(scope, keyPath.split(QLatin1Char('.')), keyPath);
        if (o.kind == Operand::Kind::ToMany)
            throw CompileFailure{
                tr("The key path \"%1\" leads through a to-many relationship and has no single "
                   "value here.")
                    .arg(keyPath)};
        return o;
    }

    // The owner's key among the sources of the join rows that name the member: SQLite drives
    // this from the join table's index instead of probing it once per owner.
    static Sql memberOf(const JoinMembership& membership, Scope& scope)
    {
        const RelationshipDescription& r = *membership.relationship;
        if (membership.member.entity != r.destination)
            return "0";
        const char* own = r.joinOwner ? "source" : "target";
        const char* other = r.joinOwner ? "target" : "source";
        Sql sql(QStringLiteral("(%1 IN (SELECT %2 FROM %3 WHERE %4 = ?))")
                    .arg(scope.pkExpression, QLatin1String(own), SqlCompiler::quoted(r.joinTable),
                         QLatin1String(other)));
        sql.binds << membership.member.pk;
        return sql;
    }

private:
    Operand operand(const Expression& e, Scope& scope)
    {
        switch (e.kind()) {
        case Expression::Kind::Self:
            return selfOperand(scope);
        case Expression::Kind::KeyPath:
            return resolve(scope, e.keyPath().split(QLatin1Char('.')), e.keyPath());
        case Expression::Kind::Constant:
            return constantOperand(e.value());
        }
        return {};
    }

    static Operand selfOperand(Scope& scope)
    {
        Operand o;
        o.sql = scope.pkExpression;
        o.recordEntity = scope.entity->name();
        return o;
    }

    static Operand constantOperand(QVariant value)
    {
        if (value.typeId() == qMetaTypeId<Record*>()) {
            const Record* r = value.value<Record*>();
            value = r ? QVariant::fromValue(r->ref()) : QVariant();
        }
        Operand o;
        o.isConstant = true;
        o.constant = value;
        if (value.isNull() || !value.isValid())
            o.sql = "NULL";
        else if (value.typeId() != QMetaType::QVariantList && value.typeId() != QMetaType::QStringList)
            o.sql = Sql::bound(valueconversion::constantToSql(value));
        return o;
    }

    QString joinAlias(Scope& scope, const QString& path, const QString& table, const QString& onLeft,
                      const QString& onRight)
    {
        const auto it = scope.aliasByPath.constFind(path);
        if (it != scope.aliasByPath.cend())
            return *it;
        const QString alias = scope.nextAlias("t");
        scope.joins << QStringLiteral("LEFT JOIN %1 %2 ON %2.%3 = %4")
                           .arg(SqlCompiler::quoted(table), alias, onLeft, onRight);
        scope.aliasByPath.insert(path, alias);
        return alias;
    }

    Operand resolve(Scope& scope, const QStringList& parts, const QString& keyPath)
    {
        const EntityDescription* entity = scope.entity;
        QString alias;
        QString pkExpression = scope.pkExpression;
        QString path;
        for (int i = 0; i < parts.size(); ++i) {
            const QString& name = parts.at(i);
            const bool last = i == parts.size() - 1;
            if (alias.isEmpty() && i == 0 && name != QLatin1String("self"))
                alias = scope.tableAlias();
            if (name == QLatin1String("self")) {
                if (last) {
                    Operand o;
                    o.sql = pkExpression;
                    o.recordEntity = entity->name();
                    return o;
                }
                if (alias.isEmpty())
                    alias = scope.tableAlias();
                continue;
            }
            if (const AttributeDescription* a = entity->attribute(name)) {
                if (!last)
                    throw CompileFailure{tr("Unknown key path \"%1\": \"%2\" is an attribute of %3, not a "
                                            "relationship.")
                                             .arg(keyPath, name, entity->name())};
                if (a->transient)
                    throw CompileFailure{tr("The key \"%1\" of %2 is kept in memory only and cannot select "
                                            "or sort stored records.")
                                             .arg(name, entity->name())};
                Operand o;
                o.sql = alias + QLatin1Char('.') + SqlCompiler::quoted(name);
                o.type = a->type;
                return o;
            }
            const RelationshipDescription* r = entity->relationship(name);
            if (!r)
                throw CompileFailure{tr("Unknown key path \"%1\": %2 has no key named \"%3\".")
                                         .arg(keyPath, entity->name(), name)};
            const EntityDescription& destination = m_model.entity(r->destinationIndex);
            path += name + QLatin1Char('.');
            if (!r->toMany) {
                if (r->storage == RelationshipStorage::ForeignKey) {
                    const QString column = alias + QLatin1Char('.') + SqlCompiler::quoted(name);
                    if (last) {
                        Operand o;
                        o.sql = column;
                        o.recordEntity = destination.name();
                        return o;
                    }
                    alias = joinAlias(scope, path, destination.name(), QStringLiteral("pk"), column);
                } else {
                    const RelationshipDescription& inverse = m_model.inverseOf(*r);
                    alias = joinAlias(scope, path, destination.name(), SqlCompiler::quoted(inverse.name),
                                      alias + QLatin1String(".pk"));
                    if (last) {
                        Operand o;
                        o.sql = alias + QLatin1String(".pk");
                        o.recordEntity = destination.name();
                        return o;
                    }
                }
                entity = &destination;
                pkExpression = alias + QLatin1String(".pk");
                continue;
            }
            const QString ownerKey = alias + QLatin1String(".pk");
            if (!last && parts.at(i + 1).startsWith(QLatin1Char('@')))
                return aggregate(scope, *entity, *r, ownerKey, parts.at(i + 1), parts.mid(i + 2), keyPath);
            Operand o;
            o.kind = Operand::Kind::ToMany;
            o.owner = entity;
            o.relationship = r;
            o.ownerKey = ownerKey;
            o.rest = parts.mid(i + 1);
            return o;
        }
        throw CompileFailure{tr("The key path \"%1\" is empty.").arg(keyPath)};
    }

    Scope memberScope(Scope& outer, const RelationshipDescription& r, const QString& ownerKey)
    {
        Scope sub;
        sub.entity = &m_model.entity(r.destinationIndex);
        sub.counter = outer.counter;
        sub.alias = sub.nextAlias("s");
        const QString destination = SqlCompiler::quoted(sub.entity->name());
        if (r.storage == RelationshipStorage::JoinTable) {
            const QString j = sub.nextAlias("j");
            const QString ownerColumn = r.joinOwner ? QStringLiteral("source") : QStringLiteral("target");
            const QString memberColumn = r.joinOwner ? QStringLiteral("target") : QStringLiteral("source");
            sub.from = SqlCompiler::quoted(r.joinTable) + QLatin1Char(' ') + j;
            sub.link = j + QLatin1Char('.') + ownerColumn + QLatin1String(" = ") + ownerKey;
            sub.pkExpression = j + QLatin1Char('.') + memberColumn;
            sub.pendingJoin =
                QStringLiteral("JOIN %1 %2 ON %2.pk = %3").arg(destination, sub.alias, sub.pkExpression);
        } else {
            const RelationshipDescription& inverse = m_model.inverseOf(r);
            sub.from = destination + QLatin1Char(' ') + sub.alias;
            sub.link = sub.alias + QLatin1Char('.') + SqlCompiler::quoted(inverse.name) +
                       QLatin1String(" = ") + ownerKey;
            sub.pkExpression = sub.alias + QLatin1String(".pk");
        }
        return sub;
    }

    static QString subqueryHead(const Scope& sub, const QString& select)
    {
        QString head = QStringLiteral("SELECT %1 FROM %2").arg(select, sub.from);
        for (const QString& join : sub.joins)
            head += QLatin1Char(' ') + join;
        return head + QLatin1String(" WHERE ") + sub.link;
    }

    Operand aggregate(Scope& scope, const EntityDescription& owner, const RelationshipDescription& r,
                      const QString& ownerKey, const QString& function, const QStringList& rest,
                      const QString& keyPath)
    {
        Operand o;
        o.type = AttributeType::Decimal;
        if (function == QLatin1String("@sum") && rest.size() == 1) {
            for (const MaterializedSum& sum : owner.materializedSums()) {
                if (sum.relationship == r.name && sum.attribute == rest.first()) {
                    // The database keeps this sum current in a column of the owner.
                    o.sql = ownerKey.chopped(2) + SqlCompiler::quoted(sum.column()); // "t0." and the column
                    return o;
                }
            }
        }
        Scope sub = memberScope(scope, r, ownerKey);
        if (function == QLatin1String("@count") && rest.isEmpty()) {
            o.sql = QLatin1Char('(') + subqueryHead(sub, QStringLiteral("count(*)")) + QLatin1Char(')');
            o.type = AttributeType::Integer;
            return o;
        }
        if (rest.isEmpty())
            throw CompileFailure{tr("The aggregate in \"%1\" needs a key to work on.").arg(keyPath)};
        const Operand member = resolve(sub, rest, keyPath);
        if (member.kind == Operand::Kind::ToMany)
            throw CompileFailure{
                tr("The aggregate in \"%1\" crosses a second to-many relationship.").arg(keyPath)};
        QString select;
        if (function == QLatin1String("@sum"))
            select = QStringLiteral("total(%1)").arg(member.sql.text); // 0.0 over nothing, never NULL
        else if (function == QLatin1String("@avg"))
            select = QStringLiteral("avg(%1)").arg(member.sql.text);
        else if (function == QLatin1String("@min"))
            select = QStringLiteral("min(%1)").arg(member.sql.text), o.type = member.type;
        else if (function == QLatin1String("@max"))
            select = QStringLiteral("max(%1)").arg(member.sql.text), o.type = member.type;
        else if (function == QLatin1String("@count"))
            select = QStringLiteral("count(%1)").arg(member.sql.text), o.type = AttributeType::Integer;
        else
            throw CompileFailure{tr("Unknown aggregate \"%1\" in \"%2\".").arg(function, keyPath)};
        o.sql = QLatin1Char('(') + subqueryHead(sub, select) + QLatin1Char(')');
        return o;
    }

    Sql exists(const Scope& sub, const Sql& inner, bool all)
    {
        const Sql head = QLatin1String(all ? "(NOT EXISTS (" : "(EXISTS (") +
                         subqueryHead(sub, QStringLiteral("1")) + QLatin1String(" AND ");
        if (all)
            return head + "NOT " + inner + "))";
        return head + inner + "))";
    }

    Sql compare(const Operand& lhs, Op op, const Operand& rhs, Predicate::Options options,
                Predicate::Modifier modifier, Scope& scope)
    {
        if (lhs.kind == Operand::Kind::ToMany) {
            Scope sub = memberScope(scope, *lhs.relationship, lhs.ownerKey);
            Op memberOp = op;
            // `tags CONTAINS %@` asks whether the collection holds a record.
            if (op == Op::Contains && lhs.rest.isEmpty() &&
                !(rhs.isConstant && rhs.constant.typeId() == QMetaType::QString))
                memberOp = Op::Equal;
            const Operand member = lhs.rest.isEmpty()
                                       ? selfOperand(sub)
                                       : resolve(sub, lhs.rest, lhs.rest.join(QLatin1Char('.')));
            const Sql inner = compare(member, memberOp, rhs, options, modifier, sub);
            return exists(sub, inner, modifier == Predicate::Modifier::All);
        }
        if (rhs.kind == Operand::Kind::ToMany) {
            if (op != Op::In)
                throw CompileFailure{tr("A to-many key path on the right of a comparison needs IN.")};
            Scope sub = memberScope(scope, *rhs.relationship, rhs.ownerKey);
            const Operand member = rhs.rest.isEmpty()
                                       ? selfOperand(sub)
                                       : resolve(sub, rhs.rest, rhs.rest.join(QLatin1Char('.')));
            return exists(sub, compare(lhs, Op::Equal, member, options, Predicate::Modifier::Direct, sub),
                          false);
        }
        return compareValues(lhs, op, rhs, options);
    }

    static bool isTextual(const Operand& o)
    {
        if (o.isConstant)
            return o.constant.typeId() == QMetaType::QString;
        if (!o.recordEntity.isEmpty())
            return false;
        return !o.type || *o.type == AttributeType::String || *o.type == AttributeType::Variant;
    }

    // The operand with the [c]/[d] folding applied where the operand is text.
    static Sql folded(const Operand& o, Predicate::Options options)
    {
        if (!options || !isTextual(o))
            return o.sql;
        if (o.isConstant)
            return Sql::bound(predicate::textrules::fold(o.constant.toString(), options));
        return Sql("cv_fold(") + o.sql + QStringLiteral(", %1)").arg(int(options));
    }

    // A record constant compared with a relationship of another entity can never match; its key
    // is replaced by one that no record has.
    static Operand checkedRecordConstant(const Operand& constant, const Operand& other)
    {
        if (!constant.isConstant || constant.constant.typeId() != qMetaTypeId<RecordRef>())
            return constant;
        const RecordRef ref = constant.constant.value<RecordRef>();
        if (!other.recordEntity.isEmpty() && other.recordEntity == ref.entity)
            return constant;
        Operand o = constant;
        o.sql = Sql::bound(qint64(-1));
        return o;
    }

    Sql compareValues(Operand lhs, Op op, Operand rhs, Predicate::Options options)
    {
        lhs = checkedRecordConstant(lhs, rhs);
        rhs = checkedRecordConstant(rhs, lhs);
        switch (op) {
        case Op::Equal:
        case Op::NotEqual: {
            if (rhs.constant.typeId() == QMetaType::QVariantList ||
                lhs.constant.typeId() == QMetaType::QVariantList)
                throw CompileFailure{tr("A list can only be compared with IN.")};
            return Sql("(") + folded(lhs, options) + (op == Op::Equal ? " IS " : " IS NOT ") +
                   folded(rhs, options) + ")";
        }
        case Op::Less:
        case Op::LessOrEqual:
        case Op::Greater:
        case Op::GreaterOrEqual: {
            if ((lhs.isConstant && lhs.constant.isNull()) || (rhs.isConstant && rhs.constant.isNull()))
                return "0";
            const char* sign = op == Op::Less          ? " < "
                               : op == Op::LessOrEqual ? " <= "
                               : op == Op::Greater     ? " > "
                                                       : " >= ";
            QList<Sql> parts;
            if (!lhs.isConstant)
                parts << lhs.sql + " IS NOT NULL";
            if (!rhs.isConstant)
                parts << rhs.sql + " IS NOT NULL";
            parts << folded(lhs, options) + sign + folded(rhs, options);
            return Sql("(") + joined(parts, " AND ") + ")";
        }
        case Op::Contains:
        case Op::BeginsWith:
        case Op::EndsWith:
            return textOperation(lhs, op, rhs, options);
        case Op::Like: {
            if (!rhs.isConstant)
                throw CompileFailure{tr("LIKE needs a constant pattern.")};
            if (rhs.constant.isNull())
                return "0";
            const QString pattern = predicate::textrules::fold(rhs.constant.toString(), options);
            const Sql text = folded(lhs, options);
            return Sql("(") + lhs.sql + " IS NOT NULL AND " + text + " GLOB " +
                   Sql::bound(predicate::textrules::likePatternToGlob(pattern)) + ")";
        }
        case Op::In:
            return membership(lhs, rhs, options);
        }
        return "0";
    }

    Sql textOperation(const Operand& lhs, Op op, const Operand& rhs, Predicate::Options options)
    {
        if (!rhs.isConstant) {
            const int code = op == Op::Contains ? 0 : op == Op::BeginsWith ? 1 : 2;
            return Sql(QStringLiteral("cv_text_op(%1, ").arg(code)) + lhs.sql + ", " + rhs.sql +
                   QStringLiteral(", %1)").arg(int(options));
        }
        if (rhs.constant.isNull())
            return "0";
        const QString needle = predicate::textrules::fold(rhs.constant.toString(), options);
        if (needle.isEmpty())
            return "0"; // nothing contains, begins or ends with the empty text
        const Sql text = folded(lhs, options);
        const qsizetype length = needle.toUcs4().size();
        Sql out = Sql("(") + lhs.sql + " IS NOT NULL AND ";
        switch (op) {
        case Op::Contains:
            out = out + "instr(" + text + ", " + Sql::bound(needle) + ") > 0";
            break;
        case Op::BeginsWith:
            out = out + "substr(" + text + QStringLiteral(", 1, %1) = ").arg(length) + Sql::bound(needle);
            break;
        default:
            out = out + "length(" + text + QStringLiteral(") >= %1 AND substr(").arg(length) + text +
                  QStringLiteral(", -%1) = ").arg(length) + Sql::bound(needle);
            break;
        }
        return out + ")";
    }

    Sql membership(const Operand& lhs, const Operand& rhs, Predicate::Options options)
    {
        if (!rhs.isConstant)
            throw CompileFailure{tr("IN needs a list, a text or a to-many key path on its right.")};
        if (rhs.constant.typeId() == QMetaType::QString) // a text IN a text: the text contains it
            return Sql("(") + lhs.sql + " IS NOT NULL AND instr(" + folded(rhs, options) + ", " +
                   folded(lhs, options) + ") > 0)";
        if (rhs.constant.typeId() != QMetaType::QVariantList &&
            rhs.constant.typeId() != QMetaType::QStringList)
            return compareValues(lhs, Op::Equal, rhs, options);
        const QVariantList items = rhs.constant.toList();
        if (items.isEmpty())
            return "0";
        QList<Sql> placeholders;
        for (const QVariant& item : items) {
            Operand one = constantOperand(item);
            one = checkedRecordConstant(one, lhs);
            placeholders << folded(one, options);
        }
        return Sql("COALESCE(") + folded(lhs, options) + " IN (" + joined(placeholders, ", ") + "), 0)";
    }

    const DataModel& m_model;
};

// A to-one join whose table has a lookup index and reads no column outside it is told to use that
// index. SQLite otherwise finds each joined record by its key in the table itself, whose wide
// rows spread over many pages; the narrow index stays in the cache.
QString withLookupIndexes(QString text, const DataModel& model)
{
    static const QRegularExpression join(QStringLiteral("LEFT JOIN \"([^\"]+)\" (t\\d+) ON "));
    QList<std::pair<QString, QString>> replacements;
    for (QRegularExpressionMatchIterator it = join.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        const EntityDescription* entity = model.entity(m.captured(1));
        const IndexDescription* index = entity ? entity->lookupIndex() : nullptr;
        if (!index)
            continue;
        const QRegularExpression use(QStringLiteral("\\b%1\\.(\"[^\"]+\"|\\w+)").arg(m.captured(2)));
        bool covered = true;
        for (QRegularExpressionMatchIterator u = use.globalMatch(text); covered && u.hasNext();) {
            QString column = u.next().captured(1);
            if (column.startsWith(QLatin1Char('"')))
                column = column.mid(1, column.size() - 2);
            covered = index->columns.contains(column);
        }
        if (covered)
            replacements.append({m.captured(0), QStringLiteral("LEFT JOIN %1 %2 INDEXED BY %3 ON ")
                                                    .arg(SqlCompiler::quoted(entity->name()), m.captured(2),
                                                         SqlCompiler::quoted(index->name(entity->name())))});
    }
    for (const auto& [from, to] : std::as_const(replacements))
        text.replace(from, to);
    return text;
}

} // namespace

SqlCompiler::SqlCompiler(const DataModel& model)
    : m_model(model)
{}

QString SqlCompiler::quoted(const QString& name)
{
    QString q = name;
    q.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + q + QLatin1Char('"');
}

std::optional<SqlStatement> SqlCompiler::select(const FetchRequest& request, StoreError* error) const
{
    return compile(request, {}, error);
}

std::optional<SqlStatement> SqlCompiler::count(const FetchRequest& request, StoreError* error) const
{
    return compile(request, {Shape::Count, Aggregate::Sum, {}}, error);
}

std::optional<SqlStatement> SqlCompiler::aggregate(const FetchRequest& request, Aggregate function,
                                                   const QString& keyPath, StoreError* error) const
{
    return compile(request, {Shape::Aggregate, function, keyPath}, error);
}

std::optional<SqlStatement> SqlCompiler::groupedSums(const FetchRequest& request, const QString& groupKeyPath,
                                                     const QStringList& sumKeyPaths, QString* groupEntity,
                                                     std::optional<AttributeType>* groupType,
                                                     StoreError* error) const
{
    return compile(request,
                   {Shape::GroupedSums, Aggregate::Sum, groupKeyPath, sumKeyPaths, groupEntity, groupType},
                   error);
}

std::optional<SqlStatement> SqlCompiler::values(const FetchRequest& request, const QStringList& keyPaths,
                                                StoreError* error) const
{
    return compile(request, {Shape::Values, Aggregate::Sum, {}, keyPaths}, error);
}

std::optional<SqlStatement> SqlCompiler::compile(const FetchRequest& request, const Projection& projection,
                                                 StoreError* error) const
{
    const bool countOnly = projection.shape == Shape::Count;
    const bool ordered = projection.shape == Shape::Records || projection.shape == Shape::Values;
    const EntityDescription* entity = m_model.entity(request.entity);
    if (!entity) {
        report(error,
               StoreError::make(StoreError::InvalidFetch, tr("Unknown entity \"%1\".").arg(request.entity)));
        return std::nullopt;
    }
    int counter = 0;
    Scope top;
    top.entity = entity;
    top.alias = QStringLiteral("t0");
    top.pkExpression = QStringLiteral("t0.pk");
    top.counter = &counter;
    Compiler compiler(m_model);
    if (countOnly) {
        // Counting the members of one folder or tag: the join table holds one row per member.
        if (const auto membership = joinMembership(request.predicate, *entity)) {
            const RelationshipDescription& r = *membership->relationship;
            if (membership->member.entity != r.destination)
                return SqlStatement{QStringLiteral("SELECT 0"), {}};
            return SqlStatement{
                QStringLiteral("SELECT count(*) FROM %1 WHERE %2 = ?")
                    .arg(quoted(r.joinTable), QLatin1String(r.joinOwner ? "target" : "source")),
                {membership->member.pk}};
        }
    }
    try {
        const Sql where = compiler.condition(request.predicate, top);
        QStringList order;
        if (ordered) {
            for (const SortDescriptor& sort : request.sortDescriptors) {
                const Operand o = compiler.valueOperand(sort.keyPath, top);
                QString term = o.sql.text;
                if (sort.comparison == SortDescriptor::Comparison::LocalizedCaseInsensitive)
                    term += QLatin1String(" COLLATE ") + QLatin1String(sqlitefunctions::kLocalizedCollation);
                order << term + QLatin1String(sort.ascending ? " ASC" : " DESC");
            }
            const bool lastDescending =
                !request.sortDescriptors.isEmpty() && !request.sortDescriptors.last().ascending;
            order << QLatin1String(lastDescending ? "t0.pk DESC" : "t0.pk ASC");
        }

        QString columns;
        QVariantList columnBinds;
        if (countOnly) {
            columns = QStringLiteral("count(*)");
        } else if (projection.shape == Shape::Aggregate) {
            const Operand o = compiler.valueOperand(projection.keyPath, top);
            static const char* const functions[] = {"total(%1)", "max(%1)", "min(%1)"};
            columns = QString::fromLatin1(functions[int(projection.function)]).arg(o.sql.text);
            columnBinds = o.sql.binds;
        } else if (projection.shape == Shape::GroupedSums) {
            const Operand group = compiler.valueOperand(projection.keyPath, top);
            if (projection.groupEntity)
                *projection.groupEntity = group.recordEntity;
            if (projection.groupType)
                *projection.groupType = group.type;
            Sql list = group.sql + ", count(*)";
            for (const QString& keyPath : projection.sumKeyPaths)
                list = list + ", total(" + compiler.valueOperand(keyPath, top).sql + ")";
            columns = list.text;
            columnBinds = list.binds;
        } else if (projection.shape == Shape::Values) {
            Sql list("t0.pk");
            for (const QString& keyPath : projection.sumKeyPaths)
                list = list + ", " + compiler.valueOperand(keyPath, top).sql;
            columns = list.text;
            columnBinds = list.binds;
        } else {
            columns = QStringLiteral("t0.pk");
            for (const QString& column : entity->columns())
                columns += QLatin1String(", t0.") + quoted(column);
        }
        SqlStatement statement;
        statement.text = QStringLiteral("SELECT %1 FROM %2 t0").arg(columns, quoted(entity->name()));
        for (const QString& join : top.joins)
            statement.text += QLatin1Char(' ') + join;
        if (where.text != QLatin1String("1"))
            statement.text += QLatin1String(" WHERE ") + where.text;
        statement.bindings = columnBinds + where.binds;
        if (projection.shape == Shape::GroupedSums)
            statement.text += QLatin1String(" GROUP BY 1 ORDER BY 1");
        if (ordered) {
            statement.text += QLatin1String(" ORDER BY ") + order.join(QLatin1String(", "));
            if (request.limit > 0 || request.offset > 0)
                statement.text += QStringLiteral(" LIMIT %1 OFFSET %2")
                                      .arg(request.limit > 0 ? request.limit : -1)
                                      .arg(qMax(0, request.offset));
        }
        statement.text = withLookupIndexes(statement.text, m_model);
        return statement;
    } catch (const CompileFailure& failure) {
        report(error, StoreError::make(StoreError::InvalidFetch, failure.message));
        return std::nullopt;
    }
}

} // namespace corvanta::store
