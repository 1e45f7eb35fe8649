#pragma once

#include <QSqlDatabase>
#include <QString>

namespace corvanta::bench {

class RowSample;

// Inserts a row sample with plain prepared statements: one INSERT prepared once, values bound
// by position, one transaction per batch of the sample.
class PlainRowWriter
{
public:
    enum class Columns {
        Filled, // the key and the columns the sample fills
        All,    // the key and every stored column of the entity, as the store's INSERT names them
    };

    explicit PlainRowWriter(QSqlDatabase database);

    // The records the rows point at, in one transaction.
    bool writeParents(const RowSample& sample, QString* error);
    bool writeRows(const RowSample& sample, Columns columns, QString* error);

private:
    bool run(const QString& sql, QString* error);

    QSqlDatabase m_database;
};

} // namespace corvanta::bench
