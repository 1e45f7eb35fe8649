#pragma once

#include "browse/predicaterows.h"

#include <QCoreApplication>
#include <QList>
#include <QString>

namespace corvanta::store {
class Record;
}

namespace corvanta::browse {

// The rows of one smart folder while its condition is edited, in the scratch context the
// sidebar opened for it. The rows are read from the folder's `predicate` when it opens (a new
// folder starts with one row) and written back as text when it is saved. A system smart folder
// (one with a `subtype`) is shown but not bound: saving never changes its condition. Nor is a
// condition the rows cannot show (`openError()` says why), which is kept rather than replaced.
//
// A row is addressed by its path of child positions from the top compound row (the empty path).
class SmartFolderPredicate
{
    Q_DECLARE_TR_FUNCTIONS(SmartFolderPredicate)

public:
    explicit SmartFolderPredicate(store::Record* category);

    const PredicateRows& rows() const { return m_rows; }
    const PredicateRowTemplates& templates() const { return m_rows.templates(); }
    bool isBound() const { return m_bound; }
    const QString& openError() const { return m_openError; }

    const PredicateRow& root() const { return m_root; }
    const PredicateRow* row(const QList<int>& path) const;

    // Puts `row` under the compound at `parentPath`, at `position` (-1: at the end).
    bool insertRow(const QList<int>& parentPath, int position, const PredicateRow& row);
    // Replaces the row at `path`; the top row can only become another non-empty compound.
    bool replaceRow(const QList<int>& path, const PredicateRow& row);
    // Removes the row at `path`, and a nested compound left empty by it. Refused when no
    // comparison would be left: the editor always keeps at least one row.
    bool removeRow(const QList<int>& path);

    // Every row the sheet shows, the compound rows included.
    int shownRowCount() const { return m_root.shownRowCount(); }
    // The sheet grows and shrinks with its rows.
    static int sheetHeight(int shownRows, int rowHeight) { return shownRows * rowHeight; }

    // The condition the rows stand for, as it would be stored.
    std::optional<QString> predicateText(QString* error = nullptr) const;
    // Writes the rows into the folder's `predicate` (a bound folder only) and saves the context.
    bool save(QString* error = nullptr);

private:
    PredicateRow* mutableRow(const QList<int>& path);
    static int comparisonCount(const PredicateRow& row);

    store::Record* m_category;
    PredicateRows m_rows;
    PredicateRow m_root;
    bool m_bound = true;
    QString m_openError;
};

} // namespace corvanta::browse
