#pragma once

#include "browse/listkind.h"
#include "predicate/recordref.h"
#include "store/fetchrequest.h"

#include <QAbstractTableModel>
#include <QDateTime>
#include <QHash>
#include <functional>

namespace corvanta::store {
class ChangeSet;
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::browse {

// The records a sidebar node selects, as the browser's table shows them. Every change of node,
// order or stored data fetches again from the store; rows arrive a page at a time through
// canFetchMore()/fetchMore(), so that a node with a hundred thousand documents shows its first
// rows without reading the rest. Records with unsaved changes in the context are listed as
// they are stored.
//
// Columns depend on the kind: clients (name, e-mails, phones), items (name, code, price, stock),
// documents (number, date, client, total in the document's currency), to-dos (title, start,
// done). Qt::DisplayRole gives the shown text, Qt::EditRole the stored value, and the roles
// below the row's record.
class RecordListModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Role {
        RecordRole = Qt::UserRole + 1, // store::Record* in the model's context
        RefRole,                       // predicate::RecordRef
        IdentifierRole,                // the record's `identifier`
    };
    static constexpr int kPageSize = 100;

    using Clock = std::function<QDateTime()>;

    // `now` fixes the relative dates of documents' smart folders at each fetch.
    explicit RecordListModel(store::EditingContext& context, Clock now = {}, QObject* parent = nullptr);
    ~RecordListModel() override;

    // Lists what `category` selects, fetched anew even when it is the node already shown. A
    // group heading, an unreadable smart folder or null empties the list.
    void setCategory(store::Record* category);
    const predicate::RecordRef& category() const { return m_category; }
    ListKind kind() const { return m_kind; }
    // Why the last fetch listed nothing although a node was given; empty otherwise.
    const QString& fetchError() const { return m_error; }

    // The order of the kind shown now; each kind keeps its own, starting with its default.
    QList<store::SortDescriptor> sortDescriptors() const;
    void setSortDescriptors(const QList<store::SortDescriptor>& sort);

    // The attribute behind each column of the kind shown.
    QStringList columnKeys() const;
    store::Record* recordAt(int row) const;
    // The loaded row of a record; -1 when it is not (yet) among them.
    int rowOf(const predicate::RecordRef& record) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;
    bool canFetchMore(const QModelIndex& parent = {}) const override;
    void fetchMore(const QModelIndex& parent = {}) override;

private:
    struct Column;
    static const QList<Column>& columnsOf(ListKind kind);

    // Fetches the first `rows` records (at least a page) of the current node again.
    void refetch(int rows);
    QList<store::Record*> fetchPage(int offset, int limit);
    void contextChanged(const store::ChangeSet& changes);
    QString displayText(const Column& column, store::Record* record) const;

    store::EditingContext& m_context;
    Clock m_now;
    predicate::RecordRef m_category;
    ListKind m_kind = ListKind::None;
    std::optional<store::FetchRequest> m_request;
    QHash<int, QList<store::SortDescriptor>> m_sortByKind;
    QList<store::Record*> m_records;
    bool m_complete = true;
    bool m_fetching = false;
    QString m_error;
};

} // namespace corvanta::browse
