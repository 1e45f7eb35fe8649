#include "plainrowwriter.h"

#include "model/corvantamodel.h"
#include "rowsample.h"

#include <QSqlError>
#include <QSqlQuery>

namespace corvanta::bench {

namespace {

QString quoted(const QString& name)
{
    return QLatin1Char('"') + name + QLatin1Char('"');
}

QString insertStatement(const QString& table, const QStringList& columns)
{
    QStringList names;
    QStringList marks;
    for (const QString& column : columns) {
        names << quoted(column);
        marks << QStringLiteral("?");
    }
    return QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
        .arg(quoted(table), names.join(QLatin1String(", ")), marks.join(QLatin1String(", ")));
}

} // namespace

PlainRowWriter::PlainRowWriter(QSqlDatabase database)
    : m_database(std::move(database))
{}

bool PlainRowWriter::run(const QString& sql, QString* error)
{
    QSqlQuery q(m_database);
    if (q.exec(sql))
        return true;
    *error = QStringLiteral("%1: %2").arg(sql, q.lastError().text());
    return false;
}

bool PlainRowWriter::writeParents(const RowSample& sample, QString* error)
{
    if (!run(QStringLiteral("BEGIN IMMEDIATE"), error))
        return false;
    for (const RowSample::Parents& parents : sample.parents()) {
        QSqlQuery insert(m_database);
        if (!insert.prepare(insertStatement(parents.entity, parents.columns))) {
            *error = insert.lastError().text();
            run(QStringLiteral("ROLLBACK"), error);
            return false;
        }
        for (const QVariantList& record : parents.records) {
            for (qsizetype i = 0; i < record.size(); ++i)
                insert.bindValue(int(i), record.at(i));
            if (!insert.exec()) {
                *error = QStringLiteral("%1: %2").arg(parents.entity, insert.lastError().text());
                QString ignored;
                run(QStringLiteral("ROLLBACK"), &ignored);
                return false;
            }
        }
    }
    return run(QStringLiteral("COMMIT"), error);
}

bool PlainRowWriter::writeRows(const RowSample& sample, Columns columns, QString* error)
{
    // Which sample column feeds each statement column (-1: none, bound as NULL; -2: the key).
    QStringList names{QStringLiteral("pk")};
    QList<int> sources{-2};
    if (columns == Columns::Filled) {
        names << sample.columns();
        for (int i = 0; i < int(sample.columns().size()); ++i)
            sources << i;
    } else {
        const store::EntityDescription* entity = model::corvantaDataModel().entity(RowSample::entity());
        for (const QString& column : entity->columns()) {
            names << column;
            sources << int(sample.columns().indexOf(column));
        }
    }

    QSqlQuery insert(m_database);
    if (!insert.prepare(insertStatement(RowSample::entity(), names))) {
        *error = insert.lastError().text();
        return false;
    }
    const QVariant null;
    qint64 row = 0;
    for (const qint64 end : sample.batchEnds()) {
        if (!run(QStringLiteral("BEGIN IMMEDIATE"), error))
            return false;
        for (; row < end; ++row) {
            for (int i = 0; i < int(sources.size()); ++i) {
                const int source = sources.at(i);
                insert.bindValue(i, source == -2 ? QVariant(row + 1)
                                    : source < 0 ? null
                                                 : sample.value(row, source));
            }
            if (!insert.exec()) {
                *error = insert.lastError().text();
                QString ignored;
                run(QStringLiteral("ROLLBACK"), &ignored);
                return false;
            }
        }
        if (!run(QStringLiteral("COMMIT"), error))
            return false;
    }
    return true;
}

} // namespace corvanta::bench
