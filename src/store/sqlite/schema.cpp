#include "schema.h"

#include "sqlcompiler.h"

#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <algorithm>

namespace corvanta::store::schema {

namespace {

QString sqlType(AttributeType type)
{
    switch (type) {
    case AttributeType::String:
    case AttributeType::Colour:
    case AttributeType::IntegerSet:
        return QStringLiteral("TEXT");
    case AttributeType::Integer:
    case AttributeType::Boolean:
        return QStringLiteral("INTEGER");
    case AttributeType::Decimal:
    case AttributeType::Date:
        return QStringLiteral("REAL");
    case AttributeType::Image:
        return QStringLiteral("BLOB");
    case AttributeType::Variant:
        return QString(); // no affinity: a value keeps the type it was stored with
    }
    return QString();
}

QString columnDefinition(const EntityDescription& entity, int column, const DataModel& model)
{
    const QString& name = entity.columns().at(column);
    QString definition = SqlCompiler::quoted(name);
    if (const RelationshipDescription* r = entity.relationship(name)) {
        definition += QStringLiteral(" INTEGER REFERENCES %1(pk) DEFERRABLE INITIALLY DEFERRED")
                          .arg(SqlCompiler::quoted(model.entity(r->destinationIndex).name()));
    } else {
        const QString type = sqlType(entity.columnTypes().at(column));
        if (!type.isEmpty())
            definition += QLatin1Char(' ') + type;
    }
    return definition;
}

QSet<QString> existingColumns(QSqlDatabase& db, const QString& table)
{
    QSet<QString> columns;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("PRAGMA table_info(%1)").arg(SqlCompiler::quoted(table)))) {
        while (q.next())
            columns.insert(q.value(1).toString());
    }
    return columns;
}

// A declared index that starts with the column serves every search by that column alone.
bool leadsAnIndex(const EntityDescription& entity, const QString& column)
{
    return std::any_of(entity.indexes().begin(), entity.indexes().end(),
                       [&](const IndexDescription& index) { return index.columns.value(0) == column; });
}

QString quotedList(const QStringList& names)
{
    QStringList quoted;
    for (const QString& n : names)
        quoted << SqlCompiler::quoted(n);
    return quoted.join(QLatin1String(", "));
}

// The triggers that keep a materialized sum current: each recomputes the column of one owner
// when a member is added, removed or changed, and for a new owner, whose members may have been
// written before it within one transaction.
QStringList materializedSumTriggers(const EntityDescription& owner, const MaterializedSum& sum,
                                    const DataModel& model)
{
    const RelationshipDescription& r = *owner.relationship(sum.relationship);
    const QString ownerTable = SqlCompiler::quoted(owner.name());
    const QString memberTable = SqlCompiler::quoted(r.destination);
    const QString column = SqlCompiler::quoted(sum.column());
    const QString key = SqlCompiler::quoted(model.inverseOf(r).name);
    const QString amount = SqlCompiler::quoted(sum.attribute);
    const QString name = owner.name() + QLatin1Char('.') + sum.column();
    const auto recompute = [&](const QString& ownerKey) {
        return QStringLiteral("UPDATE %1 SET %2 = (SELECT total(%3) FROM %4 WHERE %5 = %6) WHERE pk = %6;")
            .arg(ownerTable, column, amount, memberTable, key, ownerKey);
    };
    return {
        QStringLiteral(
            "CREATE TRIGGER IF NOT EXISTS %1 AFTER INSERT ON %2 WHEN NEW.%3 IS NOT NULL BEGIN %4 END")
            .arg(SqlCompiler::quoted(name + QLatin1String(" member added")), memberTable, key,
                 recompute(QStringLiteral("NEW.") + key)),
        QStringLiteral(
            "CREATE TRIGGER IF NOT EXISTS %1 AFTER DELETE ON %2 WHEN OLD.%3 IS NOT NULL BEGIN %4 END")
            .arg(SqlCompiler::quoted(name + QLatin1String(" member removed")), memberTable, key,
                 recompute(QStringLiteral("OLD.") + key)),
        QStringLiteral("CREATE TRIGGER IF NOT EXISTS %1 AFTER UPDATE OF %2, %3 ON %4 BEGIN %5 %6 END")
            .arg(SqlCompiler::quoted(name + QLatin1String(" member changed")), amount, key, memberTable,
                 recompute(QStringLiteral("OLD.") + key), recompute(QStringLiteral("NEW.") + key)),
        QStringLiteral(
            "CREATE TRIGGER IF NOT EXISTS %1 AFTER INSERT ON %2 WHEN EXISTS (SELECT 1 FROM %3 WHERE %4 = "
            "NEW.pk) BEGIN %5 END")
            .arg(SqlCompiler::quoted(name + QLatin1String(" owner added")), ownerTable, memberTable, key,
                 recompute(QStringLiteral("NEW.pk"))),
    };
}

// Computes a materialized sum for every owner, for a file written before the column existed.
QString recomputeMaterializedSum(const EntityDescription& owner, const MaterializedSum& sum,
                                 const DataModel& model)
{
    const RelationshipDescription& r = *owner.relationship(sum.relationship);
    return QStringLiteral("UPDATE %1 SET %2 = (SELECT total(m.%3) FROM %4 m WHERE m.%5 = %1.pk)")
        .arg(SqlCompiler::quoted(owner.name()), SqlCompiler::quoted(sum.column()),
             SqlCompiler::quoted(sum.attribute), SqlCompiler::quoted(r.destination),
             SqlCompiler::quoted(model.inverseOf(r).name));
}

QString materializedSumDefinition(const MaterializedSum& sum)
{
    return SqlCompiler::quoted(sum.column()) + QLatin1String(" REAL NOT NULL DEFAULT 0");
}

} // namespace

bool migrate(QSqlDatabase& db, const DataModel& model, QSqlError* failure)
{
    QSqlQuery q(db);
    QStringList statements;
    QStringList recomputations; // run once every table and column exists
    QStringList triggers;

    QSet<QString> tables;
    if (q.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'"))) {
        while (q.next())
            tables.insert(q.value(0).toString());
    }

    for (const EntityDescription& entity : model.entities()) {
        const QString table = SqlCompiler::quoted(entity.name());
        if (!tables.contains(entity.name())) {
            QStringList definitions{QStringLiteral("pk INTEGER PRIMARY KEY")};
            for (int i = 0; i < entity.columns().size(); ++i)
                definitions << columnDefinition(entity, i, model);
            for (const MaterializedSum& sum : entity.materializedSums())
                definitions << materializedSumDefinition(sum);
            statements
                << QStringLiteral("CREATE TABLE %1 (%2)").arg(table, definitions.join(QLatin1String(", ")));
        } else {
            const QSet<QString> present = existingColumns(db, entity.name());
            for (int i = 0; i < entity.columns().size(); ++i) {
                if (!present.contains(entity.columns().at(i)))
                    statements << QStringLiteral("ALTER TABLE %1 ADD COLUMN %2")
                                      .arg(table, columnDefinition(entity, i, model));
            }
            for (const MaterializedSum& sum : entity.materializedSums()) {
                if (!present.contains(sum.column())) {
                    statements << QStringLiteral("ALTER TABLE %1 ADD COLUMN %2")
                                      .arg(table, materializedSumDefinition(sum));
                    recomputations << recomputeMaterializedSum(entity, sum, model);
                }
            }
        }
        for (const MaterializedSum& sum : entity.materializedSums())
            triggers << materializedSumTriggers(entity, sum, model);
        for (const RelationshipDescription& r : entity.relationships()) {
            if (r.storage == RelationshipStorage::ForeignKey && !leadsAnIndex(entity, r.name))
                statements << QStringLiteral("CREATE INDEX IF NOT EXISTS %1 ON %2(%3)")
                                  .arg(SqlCompiler::quoted(IndexDescription{{r.name}}.name(entity.name())),
                                       table, SqlCompiler::quoted(r.name));
            if (r.storage == RelationshipStorage::JoinTable && r.joinOwner) {
                const QString join = SqlCompiler::quoted(r.joinTable);
                statements
                    << QStringLiteral(
                           "CREATE TABLE IF NOT EXISTS %1 ("
                           "source INTEGER NOT NULL REFERENCES %2(pk) ON DELETE CASCADE DEFERRABLE INITIALLY "
                           "DEFERRED, "
                           "target INTEGER NOT NULL REFERENCES %3(pk) ON DELETE CASCADE DEFERRABLE INITIALLY "
                           "DEFERRED, "
                           "PRIMARY KEY (source, target)) WITHOUT ROWID")
                           .arg(join, table, SqlCompiler::quoted(r.destination));
                statements << QStringLiteral("CREATE INDEX IF NOT EXISTS %1 ON %2(target, source)")
                                  .arg(SqlCompiler::quoted(r.joinTable + QLatin1String("_target")), join);
            }
        }
        for (const IndexDescription& index : entity.indexes()) {
            statements << QStringLiteral("CREATE %1INDEX IF NOT EXISTS %2 ON %3(%4)")
                              .arg(QLatin1String(index.unique ? "UNIQUE " : ""),
                                   SqlCompiler::quoted(index.name(entity.name())), table,
                                   quotedList(index.columns));
        }
    }
    statements << recomputations << triggers;
    // Setting the id writes the file even when it is unchanged; a file opened only to be read
    // stays as it was.
    if (!q.exec(QStringLiteral("PRAGMA application_id")) || !q.next() ||
        q.value(0).toInt() != model.applicationId())
        statements << QStringLiteral("PRAGMA application_id = %1").arg(model.applicationId());
    q.finish();

    if (!q.exec(QStringLiteral("BEGIN IMMEDIATE"))) {
        *failure = q.lastError();
        return false;
    }
    for (const QString& statement : statements) {
        if (!q.exec(statement)) {
            const QSqlError e = q.lastError();
            *failure = QSqlError(e.driverText(), QStringLiteral("%1 (%2)").arg(e.databaseText(), statement),
                                 e.type(), e.nativeErrorCode());
            q.exec(QStringLiteral("ROLLBACK"));
            return false;
        }
    }
    if (!q.exec(QStringLiteral("COMMIT"))) {
        *failure = q.lastError();
        q.exec(QStringLiteral("ROLLBACK"));
        return false;
    }
    return true;
}

} // namespace corvanta::store::schema
