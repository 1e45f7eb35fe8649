#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <cstdint>
#include <vector>

namespace corvanta::bench {

// A fixed set of document rows, made once in memory so that the store and plain SQL insert
// exactly the same values in the same batches. The rows point at documents, items, units and
// taxes, which the sample also holds ("parents"); those are written beforehand by whoever
// compares and are not part of what is measured.
class RowSample
{
public:
    // The records of one parent entity: its columns (the key first) and one value list per record.
    struct Parents
    {
        QString entity;
        QStringList columns;
        std::vector<QVariantList> records;
    };

    // The rows of `documents` documents, about ten each, in batches of `documentsPerBatch`
    // documents' rows. Row keys run from 1 in row order.
    RowSample(int documents, int documentsPerBatch, std::uint32_t seed);

    static QString entity() { return QStringLiteral("DocumentRows"); }
    // The columns every row fills; relationships hold the destination's key.
    const QStringList& columns() const { return m_columns; }
    const std::vector<Parents>& parents() const { return m_parents; }

    qint64 rowCount() const { return qint64(m_values.size() / std::size_t(m_columns.size())); }
    int documentCount() const { return m_documents; }
    // Row `row`'s value of column `column`.
    const QVariant& value(qint64 row, int column) const
    {
        return m_values[std::size_t(row) * std::size_t(m_columns.size()) + std::size_t(column)];
    }
    // Where each batch ends: the index after its last row, increasing, the last one rowCount().
    const std::vector<qint64>& batchEnds() const { return m_batchEnds; }

private:
    int m_documents;
    QStringList m_columns;
    std::vector<Parents> m_parents;
    std::vector<QVariant> m_values;
    std::vector<qint64> m_batchEnds;
};

} // namespace corvanta::bench
