#pragma once

#include "store/aggregate.h"
#include "store/datamodel.h"
#include "store/fetchrequest.h"
#include "store/storeerror.h"

#include <QVariantList>
#include <optional>

namespace corvanta::store {

// SQL text with the values bound to its `?` placeholders, in order.
struct SqlStatement
{
    QString text;
    QVariantList bindings;
};

// Compiles fetch requests to SQLite SQL. Key paths become joins through to-one relationships,
// EXISTS sub-queries through to-many ones and correlated sub-queries for aggregates; every
// constant is bound, never written into the text. The SQL follows the predicate language's
// rules for missing values: a missing value equals only NULL, `!=` a value is true for it,
// ordering and text comparisons with it are false, and `@sum` over nothing is 0.
class SqlCompiler
{
public:
    explicit SqlCompiler(const DataModel& model);

    // SELECT of the primary key and every stored column of the entity, in column order.
    std::optional<SqlStatement> select(const FetchRequest& request, StoreError* error = nullptr) const;
    // SELECT count(*).
    std::optional<SqlStatement> count(const FetchRequest& request, StoreError* error = nullptr) const;

    // One value over the selected rows, computed by the database: `Sum` is 0 over no rows and
    // skips missing values, `Max` and `Min` are NULL over no rows.
    std::optional<SqlStatement> aggregate(const FetchRequest& request, Aggregate function,
                                          const QString& keyPath, StoreError* error = nullptr) const;

    // Columns: the group's value, the number of its rows, then total() of each summed key
    // path; one row per group, ordered by the group's value. `groupEntity` is set to the
    // entity a relationship group points at (empty for an attribute) and `groupType` to the
    // attribute's type.
    std::optional<SqlStatement> groupedSums(const FetchRequest& request, const QString& groupKeyPath,
                                            const QStringList& sumKeyPaths, QString* groupEntity,
                                            std::optional<AttributeType>* groupType,
                                            StoreError* error = nullptr) const;

    // SELECT of the primary key and the values of `keyPaths`, in the request's order and window.
    std::optional<SqlStatement> values(const FetchRequest& request, const QStringList& keyPaths,
                                       StoreError* error = nullptr) const;

    // SQL names are always quoted, since the model uses words such as `order` and `desc`.
    static QString quoted(const QString& name);

private:
    enum class Shape { Records, Count, Aggregate, GroupedSums, Values };
    struct Projection
    {
        Shape shape = Shape::Records;
        Aggregate function = Aggregate::Sum;
        QString keyPath;              // the aggregated key path, or the group's
        QStringList sumKeyPaths = {}; // the summed key paths, or the values' key paths
        QString* groupEntity = nullptr;
        std::optional<AttributeType>* groupType = nullptr;
    };
    std::optional<SqlStatement> compile(const FetchRequest& request, const Projection& projection,
                                        StoreError* error) const;

    const DataModel& m_model;
};

} // namespace corvanta::store
